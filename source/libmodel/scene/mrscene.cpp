#include "libmodel/scene/mrscene.h"

#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QDebug>
#include <QItemSelectionModel>
#include <QUndoCommand>
#include <QUndoStack>

#include <utility>

namespace Model {

namespace {

MRScene *currentScene = nullptr;

} // namespace

MRScene::MRScene(QObject *parent)
    : QObject(parent),
      m_scene(std::make_unique<Scene>()),
      m_sceneModel(std::make_unique<SceneModel>()),
      m_frameRangeModel(std::make_unique<FrameRangeModel>()),
      m_selectionModel(new QItemSelectionModel(m_frameRangeModel.get(), nullptr))
{
    m_sceneModel->setScene(m_scene.get());
    m_frameRangeModel->setSourceModel(m_sceneModel.get());
    m_frameRangeModel->setScene(m_scene.get());

    connect(this, &QObject::destroyed, m_selectionModel, &QObject::deleteLater);
    connect(m_scene.get(), &Scene::activeFrameAndLayerChanged, this, &MRScene::followActivePosition);
    // Where rows or columns went, the selection has lost a current cell that was not on the sheet for a while.
    connect(m_frameRangeModel.get(), &QAbstractItemModel::layoutChanged, this, &MRScene::onSheetChanged);
    connect(m_frameRangeModel.get(), &QAbstractItemModel::columnsInserted, this, &MRScene::onSheetChanged);
    connect(m_frameRangeModel.get(), &QAbstractItemModel::columnsRemoved, this, &MRScene::onSheetChanged);
    connect(m_frameRangeModel.get(), &QAbstractItemModel::modelReset, this, &MRScene::onSheetChanged);
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

FrameRangeModel *MRScene::frameRangeModel() const
{
    return m_frameRangeModel.get();
}

QItemSelectionModel *MRScene::selectionModel() const
{
    return m_selectionModel;
}

void MRScene::clearSelection()
{
    m_selectionModel->clearSelection();
}

void MRScene::followActivePosition()
{
    const QModelIndex active = m_sceneModel->index(m_scene->activeFrame() - 1, m_scene->activeLayerIdx());
    m_selectionModel->setCurrentIndex(m_frameRangeModel->mapFromSource(active), QItemSelectionModel::NoUpdate);
}

void MRScene::onSheetChanged()
{
    if (m_frameRangeModel->dragMode() == FrameRangeModel::NoDrag)
        followActivePosition();
}

const FloatingSelection &MRScene::floatingSelection() const
{
    return m_floatingSelection;
}

FloatingSelection MRScene::setFloatingSelection(const FloatingSelection &selection)
{
    FloatingSelection former = std::exchange(m_floatingSelection, selection);
    emit floatingSelectionChanged();
    return former;
}

void MRScene::setFloatingSelectionTransform(const FloatingSelection::Transform &transform)
{
    if (m_floatingSelection.isNull() || !transform.isUsable() || m_floatingSelection.transform() == transform)
        return;
    m_floatingSelection.setTransform(transform);
    emit floatingSelectionTransformChanged(transform);
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
    if (!command)
        return;
    if (!currentScene)
        qDebug("Trying to push command with no current scene");
    // The stack itself drops what could be redone, and a clean state among it, before it deletes an obsolete command.
    if (!currentScene || command->isObsolete())
        delete command;
    else
        currentScene->m_scene->undoStack()->push(command);
}

} // namespace Model
