#include "app/scenefollower.h"

#include <utility>

SceneFollower::SceneFollower(QObject *parent) : QObject(parent)
{
}

SceneFollower::~SceneFollower() = default;

void SceneFollower::setCurrentScene(Model::MRScene *scene)
{
    const QList<QMetaObject::Connection> former = std::exchange(m_connections, {});
    for (const QMetaObject::Connection &connection : former)
        disconnect(connection);
    m_scene = scene;
    if (scene)
        connectScene(*scene);
    actualize();
}

void SceneFollower::connectScene(Model::MRScene &)
{
}

void SceneFollower::actualize()
{
}

Model::Scene *SceneFollower::scene() const
{
    return m_scene ? m_scene->scene() : nullptr;
}

void SceneFollower::follow(const QMetaObject::Connection &connection)
{
    m_connections.append(connection);
}
