#pragma once

#include <QStringList>

#include <functional>

class Application;
class MainWindow;

/// The steps of the entry point, apart from it so that they can be tried one by one.
namespace Program {

/// Lets \a window answer what the platform asks of \a application: opening files, turning the stylus round.
void connectWindow(Application &application, MainWindow &window);

/// Once the event loop runs, opens the scene that \a arguments (the program's name first) names in \a window, or makes
/// a new one; a file that cannot be opened leaves the user with a new scene, too. Further arguments are ignored.
void scheduleFirstScene(MainWindow &window, const QStringList &arguments);

/// Runs \a program and gives back its exit value; an exception that leaves it is written to the standard error
/// stream and gives -1.
int runGuarded(const std::function<int()> &program);

} // namespace Program
