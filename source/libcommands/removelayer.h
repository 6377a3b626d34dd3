#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Takes a visual layer out of the scene.
class RemoveLayer : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::RemoveLayer)

public:
    /// Obsolete if the layer at \a layerIdx is not visual, or the only one that is.
    RemoveLayer(Model::MRScene *scene, int layerIdx, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    std::shared_ptr<Model::Layer> m_layer;
};

} // namespace Commands
