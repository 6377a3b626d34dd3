#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Puts a copy of a layer, with drawings of its own, over it and makes it the active one. Done again it brings the
/// same copy back.
class DuplicateLayer : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::DuplicateLayer)

public:
    /// Obsolete if the layer at \a layerIdx is not visual.
    DuplicateLayer(Model::MRScene *scene, int layerIdx, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    std::shared_ptr<Model::Layer> m_copy;
};

} // namespace Commands
