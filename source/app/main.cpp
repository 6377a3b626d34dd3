#include "app/application.h"
#include "app/diagnosticlog.h"
#include "app/mainwindow.h"
#include "libmodel/startup.h"
#include "libui/uistartup.h"

#include <QMessageBox>
#include <QTimer>
#include <exception>
#include <iostream>

namespace {

/// The exit value of a run that could not start or was ended by an exception.
constexpr int failed = -1;

/// Opens the scene that the command line names, or makes a new one, once the event loop runs.
void scheduleFirstScene(MainWindow &window)
{
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        QTimer::singleShot(0, &window, &MainWindow::newSceneIfNoneOpen);
        return;
    }
    QTimer::singleShot(0, &window, [&window, filename = arguments[1]] {
        if (!window.openFile(filename))
            window.newSceneIfNoneOpen();
    });
}

/// Everything from the model's start to the end of the event loop. \return the process's exit value.
int runProgram(Application &application)
{
    Model::startUp();
    UI::startUp();

    MainWindow window;
    if (!window.startupError().isEmpty()) {
        std::cerr << window.startupError().toLocal8Bit().constData() << std::endl;
        QMessageBox::critical(nullptr, QGuiApplication::applicationDisplayName(), window.startupError());
        return failed;
    }
    QObject::connect(&application, &Application::requestFileOpen, &window, &MainWindow::openFile);
    scheduleFirstScene(window);
    QObject::connect(&application, &Application::tabletPointerTypeChanged, &window, &MainWindow::setTabletPointerType);
    window.show();
    const int exitValue = QApplication::exec();

    Model::shutDown();
    UI::shutDown();
    return exitValue;
}

} // namespace

int main(int argc, char *argv[])
{
    // Qt reads this list of OpenGL drivers to avoid when it first looks at the driver.
    qputenv("QT_OPENGL_BUGLIST", "opengl-buglist.json");
    QCoreApplication::setOrganizationName(QStringLiteral("Mirelle"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("mirelle.app"));
    QCoreApplication::setApplicationName(QStringLiteral("Mirelle"));

    Application application(argc, argv);
    startDiagnosticLog();
    try {
        return runProgram(application);
    } catch (const std::exception &exception) {
        std::cerr << exception.what() << std::endl;
    } catch (...) {
        std::cerr << "Unknown exception" << std::endl;
    }
    return failed;
}
