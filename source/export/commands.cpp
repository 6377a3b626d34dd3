#include "export/commands.h"

#include "export/framescommand.h"
#include "export/infocommand.h"

namespace Export {

const QList<Command> &allCommands()
{
    static const QList<Command> commands{
        framesCommand(),
        infoCommand(),
    };
    return commands;
}

} // namespace Export
