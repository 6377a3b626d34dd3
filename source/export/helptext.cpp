#include "export/helptext.h"

#include "export/arguments.h"

namespace Export {

namespace {

QString optionLines(const Option &option)
{
    QString line = QStringLiteral("  --") + option.name;
    if (!option.words.isEmpty())
        line += u' ' + option.words.join(u'|');
    else if (option.takesValue())
        line += u' ' + option.valueName;
    return line + QStringLiteral("\n      ") + option.help + u'\n';
}

QString optionLines(const QList<Option> &options)
{
    QString lines;
    for (const Option &option : options)
        lines += optionLines(option);
    return lines;
}

QString callLine(const Command &command)
{
    return QStringLiteral("%1 %2 [OPTION...] %3\n").arg(programName, command.name, command.operands.join(u' '));
}

} // namespace

const QList<Option> &programOptions()
{
    static const QList<Option> options{
        {QStringLiteral("help"), {}, {}, QStringLiteral("show this text")},
        {QStringLiteral("version"), {}, {}, QStringLiteral("show the version")},
    };
    return options;
}

QString usage(const QList<Command> &commands)
{
    QString text = QStringLiteral("Usage:\n");
    for (const Command &command : commands)
        text += QStringLiteral("  ") + callLine(command);
    return text + QStringLiteral("See %1 --help.\n").arg(programName);
}

QString helpText(const QList<Command> &commands)
{
    QString text = QStringLiteral("Takes scenes of Mirelle apart: into images and into text.\n\nUsage:\n");
    for (const Command &command : commands)
        text += QStringLiteral("  ") + callLine(command);
    text += QStringLiteral("\nCommands:\n");
    for (const Command &command : commands)
        text += QStringLiteral("  %1\n      %2\n").arg(command.name, command.summary);
    text += QStringLiteral("\nOptions:\n") + optionLines(programOptions());
    text += QStringLiteral("\nEach command has a --help of its own.\n"
                           "Exit codes: 0 done, 1 error, 2 cancelled by a signal.\n");
    return text;
}

QString helpText(const Command &command)
{
    return QStringLiteral("Usage: %1\n%2\n\nOptions:\n").arg(callLine(command), command.summary) +
           optionLines(command.options) + optionLines(Arguments::commonOptions());
}

QString seeHelp(const Command &command)
{
    return QStringLiteral("see %1 %2 --help").arg(programName, command.name);
}

} // namespace Export
