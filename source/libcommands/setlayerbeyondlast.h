#pragma once

#include "libcommands/layercommand.h"
#include "libmodel/layers/layer.h"

#include <QCoreApplication>

namespace Commands {

/// Changes what a layer shows past its last cell.
class SetLayerBeyondLast : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetLayerBeyondLast)

public:
    /// Obsolete if the layer is not visual, and for its present or an unknown mode.
    SetLayerBeyondLast(Model::MRScene *scene, int layerIdx, Model::Layer::LayerBeyondLast beyondLast,
                       QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    Model::Layer::LayerBeyondLast m_new;
    Model::Layer::LayerBeyondLast m_old = Model::Layer::ShowNothing;
};

} // namespace Commands
