#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Puts another layer in the place of one, in both orders.
class SwapLayer : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SwapLayer)

public:
    /// Obsolete for a null \a layer, for one that is in the scene, and for one of another kind: sounds and notes
    /// have one layer each.
    SwapLayer(Model::MRScene *scene, int layerIdx, std::shared_ptr<Model::Layer> layer, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    void swap(Model::Scene &scene);

    std::shared_ptr<Model::Layer> m_layer; ///< the one that is not in the scene now
};

} // namespace Commands
