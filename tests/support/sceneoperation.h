#pragma once

#include "libmodel/scene/scenechange.h"

#include <QList>
#include <QUndoCommand>

#include <functional>

namespace Model {
class Scene;
}

namespace TestSupport {

/// An operation of the scene that returns its changes, as a command of no further cleverness: undo takes the changes
/// back and restores the range and the active position, redo takes back what undo did. Obsolete if nothing was done.
class SceneOperation : public QUndoCommand
{
public:
    using Operation = std::function<QList<Model::SceneChange>(Model::Scene &)>;

    SceneOperation(Model::Scene *scene, Operation operation);

    void redo() override;
    void undo() override;

private:
    struct Position
    {
        int first = 1;
        int last = 1;
        int frame = -1;
        int layerIdx = -1;
    };
    [[nodiscard]] Position position() const;
    void goTo(const Position &position);

    Model::Scene *m_scene;
    Operation m_operation; ///< empty once it was done
    QList<Model::SceneChange> m_changes;
    Position m_before;
    Position m_after;
};

} // namespace TestSupport
