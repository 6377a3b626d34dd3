#pragma once

#include "export/command.h"

namespace Export {

/// The program's name, as messages and help show it.
inline const QString programName = QStringLiteral("mirelle-export");

/// Options of the program itself, given instead of a command: --help, --version.
[[nodiscard]] const QList<Option> &programOptions();

/// How to call the program, one line for each of \a commands, for whoever called it without saying anything.
[[nodiscard]] QString usage(const QList<Command> &commands);
/// What the program can do, with its \a commands.
[[nodiscard]] QString helpText(const QList<Command> &commands);
/// What \a command does, with all its options.
[[nodiscard]] QString helpText(const Command &command);
/// A half sentence that points at the help of \a command.
[[nodiscard]] QString seeHelp(const Command &command);

} // namespace Export
