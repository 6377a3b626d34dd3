#include "support/sceneoperation.h"

#include "libmodel/scene/scene.h"

using namespace Model;

namespace TestSupport {

SceneOperation::SceneOperation(Scene *scene, Operation operation) : m_scene(scene), m_operation(std::move(operation))
{
}

SceneOperation::Position SceneOperation::position() const
{
    return {m_scene->rangeFirst(), m_scene->rangeLast(), m_scene->activeFrame(), m_scene->activeLayerIdx()};
}

void SceneOperation::goTo(const Position &position)
{
    m_scene->setFrameRange(position.first, position.last, position.frame, position.layerIdx);
}

void SceneOperation::redo()
{
    if (m_operation) {
        m_before = position();
        m_changes = m_operation(*m_scene);
        m_operation = nullptr;
        setObsolete(m_changes.isEmpty());
        return;
    }
    m_changes = m_scene->undoChanges(m_changes);
    goTo(m_after);
}

void SceneOperation::undo()
{
    m_after = position();
    m_changes = m_scene->undoChanges(m_changes);
    goTo(m_before);
}

} // namespace TestSupport
