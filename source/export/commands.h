#pragma once

#include "export/command.h"

namespace Export {

/// All sub-commands, in the order of help. A new one is a file of its own and a line here.
[[nodiscard]] const QList<Command> &allCommands();

} // namespace Export
