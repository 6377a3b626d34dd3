#pragma once

#include "libcommands/scenecommand.h"

#include <QCoreApplication>

namespace Commands {

/// Links or unlinks all visual layers, by a SetLayerLinked for each.
class SetAllLayersLinked : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetAllLayersLinked)

public:
    /// Obsolete if all are as wanted.
    SetAllLayersLinked(Model::MRScene *scene, bool linked, QUndoCommand *parent = nullptr);
};

} // namespace Commands
