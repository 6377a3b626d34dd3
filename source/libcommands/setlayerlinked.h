#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Takes a layer into the group of linked layers, or out of it.
class SetLayerLinked : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetLayerLinked)

public:
    /// Obsolete if it is as wanted.
    SetLayerLinked(Model::MRScene *scene, int layerIdx, bool linked, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    bool m_linked;
};

} // namespace Commands
