#include "export/program.h"

#include "export/arguments.h"
#include "export/commands.h"
#include "export/console.h"
#include "export/helptext.h"
#include "export/surroundings.h"

#include <QGuiApplication>

#include <algorithm>
#include <new>

/// Resource initialisation has to be written outside of any namespace.
static void registerModelResources()
{
    Q_INIT_RESOURCE(model);
}

namespace Export {

namespace {

ExitCode show(const QString &text, Console &console)
{
    return console.write(text) ? ExitCode::Done : ExitCode::Error;
}

/// What the program answers to \a words that begin with no command.
ExitCode runWithoutCommand(const QStringList &words, Console &console)
{
    const QString &word = words.first();
    if (word == u"--help")
        return show(helpText(allCommands()), console);
    if (word == u"--version")
        return show(QStringLiteral("%1 %2\n").arg(programName, QStringLiteral(MIRELLE_VERSION)), console);
    if (word.startsWith(u'-')) {
        console.message(QStringLiteral("%1: no such option; see %2 --help").arg(word, programName));
        return ExitCode::Error;
    }
    QStringList names;
    for (const Command &command : allCommands())
        names += command.name;
    console.message(QStringLiteral("\"%1\" is not one of %2").arg(word, names.join(QStringLiteral(", "))));
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

} // namespace

ExitCode runProgram(const QStringList &words, Console &console)
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
        return show(helpText(*command), console);
    try {
        return runCommand(*command, arguments, console);
    } catch (const std::bad_alloc &) {
        console.message(QStringLiteral("there is not enough memory"));
    }
    return ExitCode::Error;
}

} // namespace Export
