#include "libmodel/scene/scenemodel.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/cellsizes.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/stroke.h"

#include <algorithm>

namespace Model {

namespace {

/// \a layer as what its type number says, which spares the roles of every painted cell a cast by name; null for another
/// kind.
const VisualLayer *asVisual(const Layer *layer)
{
    return layer && Layer::isVisualType(layer->layerType()) ? static_cast<const VisualLayer *>(layer) : nullptr;
}

const AnnotationLayer *asAnnotation(const Layer *layer)
{
    return layer && layer->layerType() == Layer::Annotation ? static_cast<const AnnotationLayer *>(layer) : nullptr;
}

} // namespace

SceneModel::SceneModel(QObject *parent)
    : QAbstractTableModel(parent),
      m_drawingCellSize(Model::drawingCellSize(MR::ThumbnailSize::ThumbnailMedium)),
      m_annotationCellSize(Model::annotationCellSize(MR::ThumbnailSize::ThumbnailMedium))
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
    if (m_scene) {
        m_drawingCellSize = Model::drawingCellSize(m_scene->thumbnailSize());
        m_annotationCellSize = Model::annotationCellSize(m_scene->thumbnailSize());
    }
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

    connect(m_scene, &Scene::frameRangeChanged, this, &SceneModel::announceLayout);
    connect(m_scene, &Scene::maximumFrameNumberChanged, this, &SceneModel::announceLayout);
    connect(m_scene, &Scene::layersChanged, this, &SceneModel::onLayersChanged);
    connect(m_scene, &Scene::layerMoved, this, [this] { onLayersChanged(0, columnCount() - 1); });
    connect(m_scene, &Scene::drawingsChanged, this, &SceneModel::onDrawingsChanged);

    connect(m_scene, &Scene::layerColorChanged, this, &SceneModel::onLayerColorChanged);
    connect(m_scene, &Scene::layerOpacityChanged, this, [this](int layerIdx) { announceLayers(layerIdx, layerIdx); });
    connect(m_scene, &Scene::thumbnailSizeChanged, this, &SceneModel::onThumbnailSizeChanged);
    connect(m_scene, &Scene::activeFrameAndLayerChanged, this, [this] { announceFrames(1, rowCount()); });
    connect(m_scene, &Scene::backlightFramesChanged, this, [this] { announceFrames(1, rowCount()); });
    connect(m_scene, &Scene::scrubFrameChanged, this, &SceneModel::onScrubFrameChanged);
}

void SceneModel::onSceneDestroyed()
{
    // The scene is gone already: nobody may ask for a cell of it on the way.
    beginResetModel();
    m_scene = nullptr;
    endResetModel();
}

void SceneModel::announceLayout()
{
    emit layoutAboutToBeChanged();
    const QModelIndexList held = persistentIndexList();
    for (const QModelIndex &position : held) {
        if (!index(position.row(), position.column()).isValid())
            changePersistentIndex(position, {});
    }
    emit layoutChanged();
}

void SceneModel::announceLayers(int firstLayerIndex, int lastLayerIndex)
{
    const int first = std::max(firstLayerIndex, 0);
    const int last = std::min(lastLayerIndex, columnCount() - 1);
    if (first <= last)
        emit headerDataChanged(Qt::Horizontal, first, last);
}

void SceneModel::announceFrames(int firstFrame, int lastFrame)
{
    const int first = std::max(firstFrame - 1, 0);
    const int last = std::min(lastFrame, rowCount()) - 1;
    if (first <= last)
        emit headerDataChanged(Qt::Vertical, first, last);
}

void SceneModel::onLayersChanged(int firstLayerIndex, int lastLayerIndex)
{
    announceLayout();
    announceLayers(firstLayerIndex, lastLayerIndex);
}

void SceneModel::onDrawingsChanged(const QList<std::pair<int, int>> &cells)
{
    for (const auto &[frameId, layerIdx] : cells) {
        const QModelIndex changed = index(frameId - 1, layerIdx);
        if (changed.isValid())
            emit dataChanged(changed, changed);
    }
}

void SceneModel::onLayerColorChanged(int layerIndex)
{
    announceLayers(layerIndex, layerIndex);
    const int numFrames = m_scene->lastFrame(layerIndex);
    if (asVisual(m_scene->layer(layerIndex)) && numFrames > 0)
        emit dataChanged(index(0, layerIndex), index(numFrames - 1, layerIndex));
}

void SceneModel::onScrubFrameChanged(int current, int previous)
{
    const auto [smaller, greater] = std::minmax(current, previous);
    announceFrames(smaller < 1 ? greater : smaller, greater);
}

void SceneModel::onThumbnailSizeChanged()
{
    m_drawingCellSize = Model::drawingCellSize(m_scene->thumbnailSize());
    m_annotationCellSize = Model::annotationCellSize(m_scene->thumbnailSize());
    for (int column = 0; column < columnCount(); ++column) {
        if (const QModelIndex first = index(0, column); first.isValid()) {
            emit dataChanged(first, first, {Qt::SizeHintRole});
            break;
        }
    }
    announceLayers(0, columnCount() - 1);
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
    const int type = layer->layerType();
    bool valid = row < m_scene->maximumFrameNumber();
    if (Layer::isVisualType(type))
        valid = row <= layer->numFrames();
    else if (type == Layer::Annotation)
        valid = row < Layer::maximumFrames;
    else if (type == Layer::Audio)
        valid = row < Layer::maximumFrames && layer->isValidFrame(row + 1);
    return valid ? createIndex(row, column) : QModelIndex();
}

Qt::ItemFlags SceneModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (!isOwnIndex(index))
        return flags;
    const VisualLayer *visual = asVisual(m_scene->layer(index.column()));
    if (!visual)
        flags &= ~(Qt::ItemIsSelectable | Qt::ItemIsEditable);
    else if (index.row() == visual->numFrames())
        flags &= ~Qt::ItemFlags(Qt::ItemIsSelectable);
    return flags;
}

QVariant SceneModel::data(const QModelIndex &index, int role) const
{
    if (!isOwnIndex(index))
        return {};
    const Layer *layer = m_scene->layer(index.column());
    const int row = index.row();
    if (role == AnnotationImageRole) {
        const AnnotationLayer *annotation = asAnnotation(layer);
        return annotation ? QVariant(annotation->image(row + 1)) : QVariant();
    }
    const VisualLayer *visual = asVisual(layer);
    if (!visual)
        return {};
    if (role == Qt::ToolTipRole)
        return visual->frameLabel(row + 1);
    if (role == BeyondLastRole)
        return row == visual->numFrames();

    const LayerItem *cell = row < visual->numFrames() ? visual->frames().at(row).get() : nullptr;
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

bool SceneModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!isOwnIndex(index))
        return false;
    if (role != AnnotationImageRole || !asAnnotation(m_scene->layer(index.column())))
        return QAbstractTableModel::setData(index, value, role);
    return value.canConvert<QImage>() && m_scene->setAnnotation(index.row() + 1, value.value<QImage>());
}

QVariant SceneModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!m_scene)
        return {};
    if (orientation == Qt::Vertical) {
        // The frame behind all rows, where the next drawing goes, can be the active one.
        const int sections = role == FrameBacklitRole || role == Qt::SizeHintRole ? rowCount() + 1 : rowCount();
        return section >= 0 && section < sections ? frameHeaderData(section + 1, role) : QVariant();
    }
    const Layer *layer = m_scene->layer(section);
    if (!layer)
        return {};

    const int type = layer->layerType();
    switch (role) {
    case Qt::SizeHintRole:
        return type == Layer::Annotation ? m_annotationCellSize : m_drawingCellSize;
    case LayerTypeRole:
        return type;
    case LayerLinkedRole:
        return layer->isLinked();
    case LayerIsDrawnRole:
        return Layer::isDrawType(type);
    case LayerIsVisualRole:
        return Layer::isVisualType(type);
    case LayerBeyondLastRole:
        return static_cast<int>(layer->beyondLast());
    case LayerLastFrameRole:
        return m_scene->lastFrame(section) + 1;
    default:
        break;
    }
    if (type == Layer::Audio)
        return audioHeaderData(static_cast<const AudioLayer &>(*layer), role);
    return role == Qt::DisplayRole ? QVariant(layer->name()) : visualHeaderData(section, role);
}

QVariant SceneModel::audioHeaderData(const AudioLayer &audio, int role) const
{
    if (role == Qt::DisplayRole)
        return static_cast<double>(audio.numFrames());
    return role == LayerAudibleRole ? QVariant(audio.isAudible()) : QVariant();
}

QVariant SceneModel::visualHeaderData(int section, int role) const
{
    const Layer *layer = m_scene->layer(section);
    const VisualLayer *visual = asVisual(layer);
    if (visual && role == LayerVisibleRole)
        return visual->isVisible();
    if (visual && role == LayerOpacityRole)
        return visual->opacity();
    if (role == LayerColorRole && layer->layerType() == Layer::Stroke)
        return static_cast<const StrokeLayer *>(layer)->color();
    return {};
}

QVariant SceneModel::frameHeaderData(int frameId, int role) const
{
    switch (role) {
    case Qt::SizeHintRole:
        return m_drawingCellSize;
    case ScrubFrameRole:
        return frameId == m_scene->scrubFrame();
    case FrameBacklitRole: {
        if (!m_scene->backlightSettings().on)
            return false;
        const QList<BacklightFrame> frames = m_scene->backlightFrames();
        const auto isFrame = [frameId](const BacklightFrame &frame) { return frame.frameId == frameId; };
        return frameId == m_scene->activeFrame() || std::any_of(frames.begin(), frames.end(), isFrame);
    }
    default:
        return {};
    }
}

bool SceneModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant &value, int role)
{
    Layer *layer = m_scene && orientation == Qt::Horizontal ? m_scene->layer(section) : nullptr;
    if (!layer)
        return false;
    switch (role) {
    case Qt::DisplayRole:
        return m_scene->setLayerName(section, value.toString());
    case LayerLinkedRole:
        return m_scene->setLayerLinked(section, value.toBool());
    case LayerVisibleRole:
        return m_scene->setLayerVisible(section, value.toBool());
    case LayerAudibleRole:
        if (layer->layerType() != Layer::Audio)
            return false;
        static_cast<AudioLayer *>(layer)->setAudible(value.toBool());
        announceLayers(section, section);
        return true;
    case LayerColorRole:
        return m_scene->setLayerColor(section, value.value<QColor>());
    case LayerOpacityRole: {
        bool isNumber = false;
        const double opacity = value.toDouble(&isNumber);
        return isNumber && m_scene->setLayerOpacity(section, opacity);
    }
    default:
        return QAbstractTableModel::setHeaderData(section, orientation, value, role);
    }
}

QSize SceneModel::drawingCellSize() const
{
    return m_drawingCellSize;
}

QSize SceneModel::annotationCellSize() const
{
    return m_annotationCellSize;
}

bool SceneModel::isOwnIndex(const QModelIndex &index) const
{
    return m_scene && index.isValid() && index.model() == this;
}

} // namespace Model
