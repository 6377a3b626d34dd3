#include "app/program.h"

#include "app/application.h"
#include "app/mainwindow.h"

#include <QTimer>

#include <exception>
#include <iostream>

namespace Program {

namespace {

/// The exit value of a run that an exception has ended.
constexpr int endedByException = -1;

} // namespace

void connectWindow(Application &application, MainWindow &window)
{
    QObject::connect(&application, &Application::requestFileOpen, &window, &MainWindow::openFile);
    QObject::connect(&application, &Application::tabletPointerTypeChanged, &window, &MainWindow::setTabletPointerType);
}

void scheduleFirstScene(MainWindow &window, const QStringList &arguments)
{
    if (arguments.size() < 2) {
        QTimer::singleShot(0, &window, &MainWindow::newSceneIfNoneOpen);
        return;
    }
    QTimer::singleShot(0, &window, [&window, filename = arguments[1]] {
        if (!window.openFile(filename))
            window.newSceneIfNoneOpen();
    });
}

int runGuarded(const std::function<int()> &program)
{
    try {
        return program();
    } catch (const std::exception &exception) {
        std::cerr << exception.what() << std::endl;
    } catch (...) {
        std::cerr << "Unknown exception" << std::endl;
    }
    return endedByException;
}

} // namespace Program
