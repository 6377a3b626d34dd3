#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Shows or hides a layer.
class SetLayerVisible : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetLayerVisible)

public:
    /// Obsolete if it is as wanted, or not visual.
    SetLayerVisible(Model::MRScene *scene, int layerIdx, bool visible, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    bool m_visible;
};

} // namespace Commands
