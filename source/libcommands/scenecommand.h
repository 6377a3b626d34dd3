#pragma once

#include <QPointer>
#include <QUndoCommand>

namespace Model {
class MRScene;
class Scene;
} // namespace Model

namespace Commands {

/// An undoable edit of a scene. A null scene makes it obsolete at once; a scene that is gone leaves it without effect.
class SceneCommand : public QUndoCommand
{
protected:
    SceneCommand(Model::MRScene *scene, QUndoCommand *parent);

    /// The scene to work on; null when it is gone or when there is nothing to do, in which case nothing may be done.
    [[nodiscard]] Model::MRScene *mrScene() const;
    [[nodiscard]] Model::Scene *scene() const;

private:
    QPointer<Model::MRScene> m_scene;
};

} // namespace Commands
