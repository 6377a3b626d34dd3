#include "libcommands/movelayer.h"

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

MoveLayer::MoveLayer(Model::MRScene *scene, int layerIdx, int newVisualIndex, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_newVisualIndex(newVisualIndex)
{
    setText(tr("Move Layer"));
    if (scene &&
        (newVisualIndex == visualIndex() || newVisualIndex < 0 || newVisualIndex >= scene->scene()->layerCount()))
        setObsolete(true);
}

void MoveLayer::redo()
{
    Model::Scene *model = scene();
    if (model && !model->moveLayer(layerIdx(), m_newVisualIndex))
        setObsolete(true);
}

void MoveLayer::undo()
{
    if (Model::Scene *model = scene())
        model->moveLayer(layerIdx(), visualIndex());
}

} // namespace Commands
