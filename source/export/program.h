#pragma once

#include "export/command.h"

#include <functional>

namespace Export {

/// The whole program behind its entry point: does what \a words (the command line without the program's name) ask for,
/// telling on \a console. Makes the application object where a command needs one, so there must be none yet.
[[nodiscard]] ExitCode runProgram(const QStringList &words, Console &console);

/// What \a work answers; Error, told on \a console, where it ends with an exception.
[[nodiscard]] ExitCode runCaught(Console &console, const std::function<ExitCode()> &work);

} // namespace Export
