#include "libcommands/recordedcommand.h"

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

RecordedCommand::RecordedCommand(Model::MRScene *scene, QUndoCommand *parent) : SceneCommand(scene, parent)
{
    if (scene)
        m_before = ScenePosition::of(*scene->scene());
}

void RecordedCommand::redo()
{
    Model::MRScene *scene = mrScene();
    if (!scene)
        return;
    if (m_ran) {
        m_changes = scene->sceneModel()->undoChanges(m_changes);
        m_after.restore(*scene->scene());
        return;
    }
    m_changes = run(*scene->sceneModel());
    if (m_changes.isEmpty()) {
        setObsolete(true);
        return;
    }
    moveOn(*scene->scene());
    m_after = ScenePosition::of(*scene->scene());
    m_ran = true;
}

void RecordedCommand::undo()
{
    Model::MRScene *scene = mrScene();
    if (!scene || !m_ran)
        return;
    m_after.rangeFirst = scene->scene()->rangeFirst();
    m_after.rangeLast = scene->scene()->rangeLast();
    m_changes = scene->sceneModel()->undoChanges(m_changes);
    m_before.restore(*scene->scene());
}

} // namespace Commands
