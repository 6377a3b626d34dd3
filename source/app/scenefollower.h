#pragma once

#include "libmodel/scene/mrscene.h"

#include <QMetaObject>
#include <QObject>
#include <QPointer>

namespace Model {
class Scene;
}

/// Something of the window that acts on the open scene and follows what becomes of it.
///
/// The connections to a scene die with the change to another one: follow() keeps them.
class SceneFollower : public QObject
{
    Q_OBJECT

public:
    ~SceneFollower() override;

    /// Follows \a scene (not owned; null for none) from now on.
    void setCurrentScene(Model::MRScene *scene);

protected:
    explicit SceneFollower(QObject *parent);

    /// The open scene and its document; null for none.
    [[nodiscard]] Model::MRScene *mrScene() const { return m_scene; }
    [[nodiscard]] Model::Scene *scene() const;

    /// Connects to what is of interest of \a scene, each connection through follow(). Nothing is, unless reimplemented.
    virtual void connectScene(Model::MRScene &scene);
    /// Takes over how things stand, also without a scene. Called after connectScene(). Does nothing itself.
    virtual void actualize();
    /// Keeps a connection to the open scene until another one is opened.
    void follow(const QMetaObject::Connection &connection);

private:
    QPointer<Model::MRScene> m_scene;
    QList<QMetaObject::Connection> m_connections;
};
