#pragma once

#include "libcommands/scenecommand.h"
#include "libcommands/sceneposition.h"

#include <memory>

namespace Model {
class Layer;
} // namespace Model

namespace Commands {

/// An edit of one layer. An index without a layer makes it obsolete.
class LayerCommand : public SceneCommand
{
protected:
    /// For the layer at \a layerIdx of the storage order.
    LayerCommand(Model::MRScene *scene, int layerIdx, QUndoCommand *parent);

    [[nodiscard]] int layerIdx() const { return m_layerIdx; }
    /// The layer's place in the display order when the command was made.
    [[nodiscard]] int visualIndex() const { return m_visualIndex; }
    /// Where the scene stood when the command was made.
    [[nodiscard]] const ScenePosition &before() const { return m_before; }
    /// Puts \a layer at \a layerIdx of the storage order and \a visualIndex of the display order.
    static void insert(Model::Scene &scene, const std::shared_ptr<Model::Layer> &layer, int layerIdx, int visualIndex);

private:
    int m_layerIdx;
    int m_visualIndex = -1;
    ScenePosition m_before;
};

} // namespace Commands
