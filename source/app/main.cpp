#include "app/application.h"
#include "app/diagnosticlog.h"
#include "app/mainwindow.h"
#include "app/program.h"
#include "libmodel/startup.h"
#include "libui/uistartup.h"

#include <QMessageBox>

#include <iostream>

namespace {

/// The exit value of a run that found no usable OpenGL.
constexpr int cannotStart = -1;

/// Everything from the model's start to the end of the event loop. \return the process's exit value.
int run(Application &application)
{
    Model::startUp();
    UI::startUp();

    MainWindow window;
    if (!window.startupError().isEmpty()) {
        std::cerr << window.startupError().toLocal8Bit().constData() << std::endl;
        QMessageBox::critical(nullptr, QGuiApplication::applicationDisplayName(), window.startupError());
        return cannotStart;
    }
    Program::scheduleFirstScene(window, QCoreApplication::arguments());
    Program::connectWindow(application, window);
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
    return Program::runGuarded([&application] { return run(application); });
}
