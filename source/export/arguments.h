#pragma once

#include "export/command.h"

#include <QHash>

namespace Export {

/// The words behind a command's name, taken apart by what the command says about itself.
///
/// Options and operands may stand in any order; everything behind "--" is an operand. A value follows its option as the
/// next word or behind "=". An option given again replaces what was given before, so that scripts can add to a line.
/// Names are never completed: what a script says today must not become ambiguous with the next option.
class Arguments
{
public:
    /// Options that every command has: --verbose, --help, --version.
    [[nodiscard]] static const QList<Option> &commonOptions();

    /// Takes \a words apart for \a command. A --help or --version among them makes everything else good.
    Arguments(const Command &command, const QStringList &words);

    /// What is wrong with the words, in one line; empty if nothing is. With an error the rest means nothing.
    [[nodiscard]] QString error() const { return m_error; }

    [[nodiscard]] bool has(const QString &option) const { return m_values.contains(option); }
    /// The value given to \a option, otherwise \a otherwise.
    [[nodiscard]] QString value(const QString &option, const QString &otherwise = {}) const;
    /// The place of the chosen word among those of \a option: 0, the default, if it was not given.
    [[nodiscard]] int choice(const QString &option) const;
    /// The operand in place \a index, from 0; there are as many as the command names.
    [[nodiscard]] QString operand(int index) const { return m_operands.at(index); }

private:
    void takeOption(const QString &word, QStringList &following);
    void takeValue(const Option &option, QStringView given, QStringList &following);
    void checkOperands();
    void fail(const QString &error);

    const Command &m_command;
    QHash<QString, QString> m_values;
    QStringList m_operands;
    QString m_error;
};

} // namespace Export
