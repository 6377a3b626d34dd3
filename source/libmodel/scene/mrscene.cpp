#include "libmodel/scene/mrscene.h"

#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QDebug>
#include <QUndoCommand>
#include <QUndoStack>

namespace Model {

namespace {

MRScene *currentScene = nullptr;

} // namespace

MRScene::MRScene(QObject *parent)
    : QObject(parent), m_scene(std::make_unique<Scene>()), m_sceneModel(std::make_unique<SceneModel>())
{
    m_sceneModel->setScene(m_scene.get());
}

MRScene::~MRScene()
{
    if (currentScene == this)
        currentScene = nullptr;
}

Scene *MRScene::scene() const
{
    return m_scene.get();
}

SceneModel *MRScene::sceneModel() const
{
    return m_sceneModel.get();
}

MRScene *MRScene::current()
{
    return currentScene;
}

void MRScene::setCurrent(MRScene *scene)
{
    currentScene = scene;
}

void MRScene::pushCommand(QUndoCommand *command)
{
    // The stack itself drops what could be redone, and a clean state among it, before it deletes an obsolete command.
    if (command && command->isObsolete()) {
        delete command;
        return;
    }
    if (currentScene) {
        currentScene->m_scene->undoStack()->push(command);
        return;
    }
    qDebug("Trying to push command with no current scene");
    delete command;
}

} // namespace Model
