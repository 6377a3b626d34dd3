#include "libcommands/setlayervisible.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

SetLayerVisible::SetLayerVisible(Model::MRScene *scene, int layerIdx, bool visible, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_visible(visible)
{
    setText(visible ? tr("Set Layer Visible") : tr("Set Layer Invisible"));
    if (isObsolete())
        return;
    const Model::VisualLayer *layer = scene->scene()->visualLayer(layerIdx);
    setObsolete(!layer || layer->isVisible() == visible);
}

void SetLayerVisible::redo()
{
    if (Model::Scene *model = scene())
        model->setLayerVisible(layerIdx(), m_visible);
}

void SetLayerVisible::undo()
{
    if (Model::Scene *model = scene())
        model->setLayerVisible(layerIdx(), !m_visible);
}

} // namespace Commands
