#include "libcommands/setlayerlinked.h"

#include "libmodel/layers/layer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

SetLayerLinked::SetLayerLinked(Model::MRScene *scene, int layerIdx, bool linked, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_linked(linked)
{
    setText(linked ? tr("Link Layer") : tr("Unlink Layer"));
    if (isObsolete())
        return;
    setObsolete(scene->scene()->layer(layerIdx)->isLinked() == linked);
}

void SetLayerLinked::redo()
{
    if (Model::Scene *model = scene())
        model->setLayerLinked(layerIdx(), m_linked);
}

void SetLayerLinked::undo()
{
    if (Model::Scene *model = scene())
        model->setLayerLinked(layerIdx(), !m_linked);
}

} // namespace Commands
