#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Moves a layer within the display order.
class MoveLayer : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::MoveLayer)

public:
    /// To \a newVisualIndex, 0 being the top.
    MoveLayer(Model::MRScene *scene, int layerIdx, int newVisualIndex, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    int m_newVisualIndex;
};

} // namespace Commands
