#include "export/arguments.h"

#include "export/helptext.h"

#include <algorithm>

namespace Export {

namespace {

const QString dashes = QStringLiteral("--");

/// The option whose name, or whose short form, \a member is \a name.
const Option *findOption(const Command &command, QStringView name, QString Option::*member = &Option::name)
{
    if (name.isEmpty())
        return nullptr;
    for (const QList<Option> *options : {&command.options, &Arguments::commonOptions()}) {
        const auto found = std::ranges::find(*options, name, member);
        if (found != options->end())
            return &*found;
    }
    return nullptr;
}

/// What \a option wants, for whoever forgot it.
QString wantedValue(const Option &option)
{
    if (option.words.isEmpty())
        return QStringLiteral("needs a value");
    return QStringLiteral("needs a value, one of %1").arg(option.words.join(QStringLiteral(", ")));
}

} // namespace

const QList<Option> &Arguments::commonOptions()
{
    static const QList<Option> options{
        {QStringLiteral("verbose"), {}, {}, QStringLiteral("also tell what the libraries have to say")},
        {QStringLiteral("help"), {}, {}, QStringLiteral("show this text"), QStringLiteral("h")},
        {QStringLiteral("version"), {}, {}, QStringLiteral("show the version")},
    };
    return options;
}

Arguments::Arguments(const Command &command, const QStringList &words) : m_command(command)
{
    QStringList following = words;
    bool onlyOperands = false;
    while (!following.isEmpty()) {
        const QString word = following.takeFirst();
        if (!onlyOperands && word == dashes)
            onlyOperands = true;
        else if (!onlyOperands && word.startsWith(u'-') && word.size() > 1)
            takeOption(word, following);
        else
            m_operands.append(word);
    }
    if (has(QStringLiteral("help")) || has(QStringLiteral("version")))
        m_error.clear();
    else
        checkOperands();
}

QString Arguments::value(const QString &option, const QString &otherwise) const
{
    return m_values.value(option, otherwise);
}

int Arguments::choice(const QString &option) const
{
    const Option *described = findOption(m_command, option);
    if (!described || !has(option))
        return 0;
    return std::max(0, int(described->words.indexOf(m_values.value(option))));
}

void Arguments::takeOption(const QString &word, QStringList &following)
{
    const qsizetype equals = word.indexOf(u'=');
    const QString name = equals < 0 ? word : word.left(equals);
    const Option *option = name.startsWith(dashes) ? findOption(m_command, QStringView(name).mid(dashes.size()))
                                                   : findOption(m_command, QStringView(name).mid(1), &Option::letter);
    if (!option) {
        fail(QStringLiteral("%1: no such option; %2").arg(name, seeHelp(m_command)));
    } else if (option->takesValue()) {
        takeValue(*option, equals < 0 ? QStringView() : QStringView(word).mid(equals), following);
    } else if (equals >= 0) {
        fail(QStringLiteral("%1: takes no value").arg(name));
    } else {
        m_values.insert(option->name, {});
    }
}

/// \a given is what stands behind the name in the same word, the equals sign first; null if nothing does.
void Arguments::takeValue(const Option &option, QStringView given, QStringList &following)
{
    const QString shownName = dashes + option.name;
    QString value;
    if (!given.isNull()) {
        value = given.mid(1).toString();
    } else if (following.isEmpty() || following.first().startsWith(dashes)) {
        // A forgotten value is likelier than one that begins like an option, which can still be given behind "=".
        fail(QStringLiteral("%1: %2").arg(shownName, wantedValue(option)));
        return;
    } else {
        value = following.takeFirst();
    }
    if (!option.words.isEmpty() && !option.words.contains(value))
        fail(QStringLiteral("%1: \"%2\" is not one of %3")
                 .arg(shownName, value, option.words.join(QStringLiteral(", "))));
    else
        m_values.insert(option.name, value);
}

void Arguments::checkOperands()
{
    const qsizetype wanted = m_command.operands.size();
    if (m_operands.size() < wanted)
        fail(QStringLiteral("%1 is missing; %2").arg(m_command.operands.at(m_operands.size()), seeHelp(m_command)));
    else if (m_operands.size() > wanted)
        fail(QStringLiteral("\"%1\" is one argument too many; %2").arg(m_operands.at(wanted), seeHelp(m_command)));
}

void Arguments::fail(const QString &error)
{
    if (m_error.isEmpty())
        m_error = error;
}

} // namespace Export
