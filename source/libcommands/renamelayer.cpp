#include "libcommands/renamelayer.h"

#include "libmodel/layers/layer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

RenameLayer::RenameLayer(Model::MRScene *scene, int layerIdx, const QString &name, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_new(name)
{
    setText(tr("Rename Layer"));
    if (isObsolete())
        return;
    m_old = scene->scene()->layer(layerIdx)->name();
    setObsolete(m_new == m_old);
}

void RenameLayer::redo()
{
    if (Model::Scene *model = scene())
        model->setLayerName(layerIdx(), m_new);
}

void RenameLayer::undo()
{
    if (Model::Scene *model = scene())
        model->setLayerName(layerIdx(), m_old);
}

} // namespace Commands
