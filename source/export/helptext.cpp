#include "export/helptext.h"

#include "export/arguments.h"

namespace Export {

namespace {

/// \a text in lines that fit a terminal, each behind \a indent.
QString wrapped(const QString &text, const QString &indent)
{
    constexpr qsizetype width = 79;
    QString lines;
    QString line = indent;
    const QStringList words = text.split(u' ');
    for (const QString &word : words) {
        if (line.size() > indent.size() && line.size() + 1 + word.size() > width) {
            lines += line + u'\n';
            line = indent;
        }
        line += (line.size() > indent.size() ? QStringLiteral(" ") : QString()) + word;
    }
    return lines + line + u'\n';
}

QString optionLines(const Option &option)
{
    QString line = QStringLiteral("  --") + option.name;
    if (!option.letter.isEmpty())
        line += QStringLiteral(", -") + option.letter;
    if (!option.words.isEmpty())
        line += u' ' + option.words.join(u'|');
    else if (option.takesValue())
        line += u' ' + option.valueName;
    const QString byDefault =
        option.words.isEmpty() ? QString() : QStringLiteral("; default: %1").arg(option.words.first());
    return line + u'\n' + wrapped(option.help + byDefault, QStringLiteral("      "));
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
        {QStringLiteral("help"), {}, {}, QStringLiteral("show this text"), QStringLiteral("h")},
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
