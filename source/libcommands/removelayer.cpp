#include "libcommands/removelayer.h"

#include "libcommands/visuallayers.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

RemoveLayer::RemoveLayer(Model::MRScene *scene, int layerIdx, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent)
{
    setText(tr("Remove Layer"));
    if (scene && (!scene->scene()->visualLayer(layerIdx) || visualLayerCount(*scene->scene()) < 2))
        setObsolete(true);
}

void RemoveLayer::redo()
{
    if (Model::Scene *model = scene())
        m_layer = model->removeLayer(layerIdx());
}

void RemoveLayer::undo()
{
    Model::Scene *model = scene();
    if (!model || !m_layer)
        return;
    insert(*model, m_layer, layerIdx(), visualIndex());
    before().restore(*model);
}

} // namespace Commands
