#include "libcommands/markaskeydrawing.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

MarkAsKeyDrawing::MarkAsKeyDrawing(Model::MRScene *scene, bool on, QUndoCommand *parent)
    : SceneCommand(scene, parent), m_on(on)
{
    setText(on ? tr("Mark as Key Drawing") : tr("Unmark as Key Drawing"));
    if (!scene)
        return;
    m_frameId = scene->scene()->activeFrame();
    m_layerIdx = scene->scene()->activeLayerIdx();
    const std::shared_ptr<Model::LayerItem> cell = scene->scene()->item(m_layerIdx, m_frameId);
    setObsolete(!cell || cell->keyDrawing == on);
}

void MarkAsKeyDrawing::redo()
{
    if (Model::Scene *model = scene())
        model->setKeyDrawing(m_layerIdx, m_frameId, m_on);
}

void MarkAsKeyDrawing::undo()
{
    if (Model::Scene *model = scene())
        model->setKeyDrawing(m_layerIdx, m_frameId, !m_on);
}

} // namespace Commands
