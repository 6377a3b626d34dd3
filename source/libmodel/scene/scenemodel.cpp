#include "libmodel/scene/scenemodel.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/stroke.h"

#include <algorithm>

namespace Model {

SceneModel::SceneModel(QObject *parent) : QAbstractTableModel(parent)
{
}

SceneModel::~SceneModel() = default;

Scene *SceneModel::scene() const
{
    return m_scene;
}

void SceneModel::setScene(Scene *scene)
{
    if (scene == m_scene)
        return;
    beginResetModel();
    if (m_scene)
        m_scene->disconnect(this);
    m_scene = scene;
    endResetModel();
    if (m_scene)
        connectScene();
}

void SceneModel::connectScene()
{
    connect(m_scene, &QObject::destroyed, this, &SceneModel::onSceneDestroyed);
    connect(m_scene, &Scene::beginInsertLayer, this,
            [this](int layerIdx) { beginInsertColumns({}, layerIdx, layerIdx); });
    connect(m_scene, &Scene::endInsertLayer, this, &SceneModel::endInsertColumns);
    connect(m_scene, &Scene::beginRemoveLayer, this,
            [this](int layerIdx) { beginRemoveColumns({}, layerIdx, layerIdx); });
    connect(m_scene, &Scene::endRemoveLayer, this, &SceneModel::endRemoveColumns);
    connect(m_scene, &Scene::maximumFrameNumberChanged, this, &SceneModel::announceLayout);
    connect(m_scene, &Scene::frameRangeChanged, this, &SceneModel::announceLayout);
    connect(m_scene, &Scene::layerMoved, this, &SceneModel::announceLayout);
    connect(m_scene, &Scene::layersChanged, this, &SceneModel::onLayersChanged);
    connect(m_scene, &Scene::drawingsChanged, this, &SceneModel::onDrawingsChanged);
}

void SceneModel::onSceneDestroyed()
{
    beginResetModel();
    m_scene = nullptr;
    endResetModel();
}

void SceneModel::announceLayout()
{
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

void SceneModel::onLayersChanged(int firstLayerIndex, int lastLayerIndex)
{
    announceLayout();
    emit headerDataChanged(Qt::Horizontal, firstLayerIndex, lastLayerIndex);
}

void SceneModel::onDrawingsChanged(const QList<std::pair<int, int>> &cells)
{
    for (const auto &[frameId, layerIdx] : cells) {
        const QModelIndex changed = index(frameId - 1, layerIdx);
        if (changed.isValid())
            emit dataChanged(changed, changed);
    }
}

int SceneModel::rowCount(const QModelIndex &parent) const
{
    return m_scene && !parent.isValid() ? m_scene->maximumFrameNumber() : 0;
}

int SceneModel::columnCount(const QModelIndex &parent) const
{
    return m_scene && !parent.isValid() ? m_scene->layerCount() : 0;
}

QModelIndex SceneModel::index(int row, int column, const QModelIndex &parent) const
{
    const Layer *layer = m_scene && !parent.isValid() ? m_scene->layer(column) : nullptr;
    if (!layer || row < 0)
        return {};
    bool valid = row < rowCount();
    if (layer->layerType() == Layer::Annotation)
        valid = true;
    else if (layer->layerType() == Layer::Audio)
        valid = row < layer->numFrames();
    else if (Layer::isVisualType(layer->layerType()))
        valid = row <= m_scene->lastFrame(column);
    return valid ? createIndex(row, column) : QModelIndex();
}

Qt::ItemFlags SceneModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (!isOwnIndex(index))
        return flags;
    if (!m_scene->visualLayer(index.column()))
        flags &= ~(Qt::ItemIsSelectable | Qt::ItemIsEditable);
    else if (m_scene->isAfterLast(index.column(), index.row() + 1))
        flags &= ~Qt::ItemFlags(Qt::ItemIsSelectable);
    return flags;
}

QVariant SceneModel::data(const QModelIndex &index, int role) const
{
    if (!isOwnIndex(index))
        return {};
    const VisualLayer *visual = m_scene->visualLayer(index.column());
    const int frameId = index.row() + 1;
    if (!visual)
        return {};
    if (role == BeyondLastRole)
        return m_scene->isAfterLast(index.column(), frameId);
    if (role == Qt::ToolTipRole)
        return visual->frameLabel(frameId);

    const auto cell = visual->item(frameId);
    switch (role) {
    case OriginalDrawingRole:
        return cell && cell->isOriginal();
    case DistantCloneRole:
        return cell && cell->isDistantClone();
    case LocalCloneRole:
        return cell && cell->isClone();
    case KeyDrawingRole:
        return cell && cell->keyDrawing;
    default:
        return {};
    }
}

QVariant SceneModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const Layer *layer = m_scene && orientation == Qt::Horizontal ? m_scene->layer(section) : nullptr;
    if (layer && role == LayerIsVisualRole)
        return Layer::isVisualType(layer->layerType());
    if (layer && role == Qt::DisplayRole && layer->layerType() != Layer::Audio)
        return layer->name();
    return {};
}

std::shared_ptr<LayerItem> SceneModel::item(const QModelIndex &index) const
{
    return isOwnIndex(index) ? m_scene->item(index.column(), index.row() + 1) : nullptr;
}

std::shared_ptr<Drawing> SceneModel::drawing(const QModelIndex &index) const
{
    const auto cell = item(index);
    return cell ? cell->drawing : nullptr;
}

bool SceneModel::addStroke(const QModelIndex &index, std::unique_ptr<Stroke> stroke)
{
    return isOwnIndex(index) && m_scene->addStroke(index.column(), index.row() + 1, std::move(stroke));
}

std::unique_ptr<Stroke> SceneModel::removeLastStroke(const QModelIndex &index)
{
    return isOwnIndex(index) ? m_scene->removeLastStroke(index.column(), index.row() + 1) : nullptr;
}

bool SceneModel::isOwnIndex(const QModelIndex &index) const
{
    return m_scene && index.isValid() && index.model() == this;
}

} // namespace Model
