#include "libcommands/setactiveframeandlayer.h"

#include "libcommands/mergeids.h"
#include "libmodel/scene/mrscene.h"

namespace Commands {

SetActiveFrameAndLayer::SetActiveFrameAndLayer(Model::MRScene *scene, int frameId, int layerIdx,
                                               Model::Scene::SetFrameBehaviour behaviour, QUndoCommand *parent)
    : SceneCommand(scene, parent), m_new{frameId, layerIdx}, m_behaviour(behaviour)
{
    if (scene) {
        m_old = {scene->scene()->activeFrame(), scene->scene()->activeLayerIdx()};
        setObsolete(m_new == m_old && behaviour == Model::Scene::AllowFrameAfterLast);
    }
    updateText();
}

void SetActiveFrameAndLayer::updateText()
{
    if (m_new.frameId == m_old.frameId)
        setText(tr("Change Active Layer"));
    else if (m_new.layerIdx == m_old.layerIdx)
        setText(tr("Change Active Frame"));
    else
        setText(tr("Change Active Frame and Layer"));
}

void SetActiveFrameAndLayer::redo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    if (m_arrived.frameId != -1) {
        model->setActiveFrameAndLayer(m_arrived.frameId, m_arrived.layerIdx, Model::Scene::AllowFrameAfterLast);
        return;
    }
    model->setActiveFrameAndLayer(m_new.frameId, m_new.layerIdx, m_behaviour);
    m_arrived = {model->activeFrame(), model->activeLayerIdx()};
    if (m_arrived == m_old)
        setObsolete(true);
}

void SetActiveFrameAndLayer::undo()
{
    if (Model::Scene *model = scene())
        model->setActiveFrameAndLayer(m_old.frameId, m_old.layerIdx, Model::Scene::AllowFrameAfterLast);
}

int SetActiveFrameAndLayer::id() const
{
    return SetActiveFrameAndLayerId;
}

bool SetActiveFrameAndLayer::mergeWith(const QUndoCommand *other)
{
    const auto *later = dynamic_cast<const SetActiveFrameAndLayer *>(other);
    if (!later || later->isObsolete())
        return false;
    if (later->m_new.layerIdx != m_new.layerIdx && later->m_behaviour != m_behaviour)
        return false;
    m_new = later->m_new;
    m_arrived = later->m_arrived;
    updateText();
    setObsolete(m_arrived == m_old);
    return true;
}

} // namespace Commands
