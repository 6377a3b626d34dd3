#include "libcommands/layercommand.h"

#include "libmodel/layers/layer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

LayerCommand::LayerCommand(Model::MRScene *scene, int layerIdx, QUndoCommand *parent)
    : SceneCommand(scene, parent), m_layerIdx(layerIdx)
{
    if (!scene)
        return;
    m_before = ScenePosition::of(*scene->scene());
    m_visualIndex = scene->scene()->visualIndex(layerIdx);
    setObsolete(!scene->scene()->layer(layerIdx));
}

void LayerCommand::insert(Model::Scene &scene, const std::shared_ptr<Model::Layer> &layer, int layerIdx,
                          int visualIndex)
{
    scene.moveLayer(scene.insertLayer(layer, layerIdx), visualIndex);
}

} // namespace Commands
