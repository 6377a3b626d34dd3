#pragma once

#include <QObject>

#include <memory>

class QUndoCommand;

namespace Model {

class Scene;
class SceneModel;

/// A scene as it is worked on: the document with the table model that views and commands see it through.
/// One of them is the current one, which commands are pushed on.
class MRScene : public QObject
{
    Q_OBJECT

public:
    explicit MRScene(QObject *parent = nullptr);
    /// If this is the current scene, there is none afterwards.
    ~MRScene() override;

    /// The document; owned by this object.
    [[nodiscard]] Scene *scene() const;
    /// The table over the document; owned by this object.
    [[nodiscard]] SceneModel *sceneModel() const;

    /// The scene that is being worked on, null for none.
    [[nodiscard]] static MRScene *current();
    /// \a scene (may be null) is not owned.
    static void setCurrent(MRScene *scene);
    /// Pushes \a command on the undo stack of the current scene, which runs and owns it. Without a current scene the
    /// command is deleted, and so is one that is obsolete already, which leaves the stack as it stands.
    static void pushCommand(QUndoCommand *command);

private:
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<SceneModel> m_sceneModel;
};

} // namespace Model
