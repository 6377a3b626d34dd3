#include "export/program.h"

#include "export/arguments.h"
#include "export/commands.h"
#include "export/console.h"
#include "export/helptext.h"
#include "export/surroundings.h"

#include <QGuiApplication>

#include <algorithm>
#include <exception>
#include <new>

/// Resource initialisation has to be written outside of any namespace.
static void registerModelResources()
{
    Q_INIT_RESOURCE(model);
}

namespace Export {

namespace {

ExitCode showVersion(Console &console)
{
    return console.write(QStringLiteral("%1 %2\n").arg(programName, QStringLiteral(MIRELLE_VERSION)));
}

/// What the program answers to \a words that begin with no command.
ExitCode runWithoutCommand(const QStringList &words, Console &console)
{
    const QString &word = words.first();
    if (word == u"--help" || word == u"-h")
        return console.write(helpText(allCommands()));
    if (word == u"--version")
        return showVersion(console);
    if (word.startsWith(u'-')) {
        console.message(QStringLiteral("%1: no such option; see %2 --help").arg(word, programName));
        return ExitCode::Error;
    }
    QStringList names;
    for (const Command &command : allCommands())
        names += command.name;
    console.message(QStringLiteral("\"%1\" is not one of %2; see %3 --help")
                        .arg(word, names.join(QStringLiteral(", ")), programName));
    return ExitCode::Error;
}

ExitCode runCommand(const Command &command, const Arguments &arguments, Console &console)
{
    quietLibraries(arguments.has(QStringLiteral("verbose")));
    choosePlatform();
    // The same names as the program with the windows has, for they lead to the user's own pen textures; of its
    // preferences nothing is read and nothing written.
    QCoreApplication::setOrganizationName(QStringLiteral("Mirelle"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("mirelle.app"));
    QCoreApplication::setApplicationName(QStringLiteral("Mirelle"));
    // Qt sees none of our arguments: it would take some for its own.
    int count = 1;
    QByteArray name = programName.toLatin1();
    char *values[] = {name.data(), nullptr};
    const QGuiApplication application(count, values);
    registerModelResources();
    return command.run(arguments, console);
}

ExitCode runWords(const QStringList &words, Console &console)
{
    if (words.isEmpty()) {
        console.plainError(usage(allCommands()));
        return ExitCode::Error;
    }
    const auto command = std::ranges::find(allCommands(), words.first(), &Command::name);
    if (command == allCommands().end())
        return runWithoutCommand(words, console);

    const Arguments arguments(*command, words.mid(1));
    if (!arguments.error().isEmpty()) {
        console.message(arguments.error());
        return ExitCode::Error;
    }
    if (arguments.has(QStringLiteral("help")))
        return console.write(helpText(*command));
    if (arguments.has(QStringLiteral("version")))
        return showVersion(console);
    return runCommand(*command, arguments, console);
}

} // namespace

ExitCode runProgram(const QStringList &words, Console &console)
{
    return runCaught(console, [&] { return runWords(words, console); });
}

ExitCode runCaught(Console &console, const std::function<ExitCode()> &work)
{
    try {
        return work();
    } catch (const std::bad_alloc &) {
        console.message(QStringLiteral("there is not enough memory"));
    } catch (const std::exception &exception) {
        console.message(QString::fromLocal8Bit(exception.what()));
    }
    return ExitCode::Error;
}

} // namespace Export
