#include "libmodel/scene/framerangemodel.h"

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/framerangemodel_p.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Model {

FrameRangeModel::FrameRangeModel(QObject *parent) : QAbstractProxyModel(parent), d(std::make_unique<Private>())
{
}

FrameRangeModel::~FrameRangeModel() = default;

Scene *FrameRangeModel::scene() const
{
    return d->scene;
}

void FrameRangeModel::setScene(Scene *scene)
{
    beginResetModel();
    if (d->scene)
        d->scene->disconnect(this);
    d->scene = scene;
    d->dropDrag();
    d->takeOverRange();
    endResetModel();
    if (!scene)
        return;
    connect(scene, &Scene::frameRangeChanged, this, &FrameRangeModel::onFrameRangeChanged);
    connect(scene, &QObject::destroyed, this, [this] { setScene(nullptr); });
}

void FrameRangeModel::setSourceModel(QAbstractItemModel *model)
{
    beginResetModel();
    for (const QMetaObject::Connection &connection : std::as_const(d->sourceConnections))
        disconnect(connection);
    d->sourceConnections.clear();
    d->dropDrag();
    QAbstractProxyModel::setSourceModel(model);
    d->takeOverRange();
    if (model)
        connectSource(*model);
    endResetModel();
}

void FrameRangeModel::connectSource(QAbstractItemModel &model)
{
    using Source = QAbstractItemModel;
    d->sourceConnections = {
        connect(&model, &Source::headerDataChanged, this, &FrameRangeModel::onSourceHeaderDataChanged),
        connect(&model, &Source::dataChanged, this, &FrameRangeModel::onSourceDataChanged),
        connect(&model, &Source::columnsAboutToBeInserted, this,
                [this](const QModelIndex &, int first, int last) {
                    onColumnsAboutToChange();
                    beginInsertColumns({}, first, last);
                }),
        connect(&model, &Source::columnsInserted, this, &FrameRangeModel::endInsertColumns),
        connect(&model, &Source::columnsAboutToBeRemoved, this,
                [this](const QModelIndex &, int first, int last) {
                    onColumnsAboutToChange();
                    beginRemoveColumns({}, first, last);
                }),
        connect(&model, &Source::columnsRemoved, this, &FrameRangeModel::endRemoveColumns),
        connect(&model, &Source::layoutChanged, this, &FrameRangeModel::takeOverLayout),
        connect(&model, &Source::modelAboutToBeReset, this,
                [this] {
                    d->dropDrag();
                    beginResetModel();
                }),
        connect(&model, &Source::modelReset, this,
                [this] {
                    d->takeOverRange();
                    endResetModel();
                }),
    };
}

void FrameRangeModel::onColumnsAboutToChange()
{
    if (d->mode == NoDrag)
        return;
    endDrag();
    d->dropDrag();
}

void FrameRangeModel::onFrameRangeChanged()
{
    // The source tells of it too, and may have been first.
    if (d->range != d->sceneRange())
        takeOverLayout();
}

void FrameRangeModel::takeOverLayout()
{
    const DragMode mode = d->mode;
    emit layoutAboutToBeChanged();
    keepHeldIndexes(d->dropDragAndTakeOverRange());
    emit layoutChanged();
    announceDragHeaders(mode);
}

void FrameRangeModel::keepHeldIndexes(int rowsUp)
{
    const QModelIndexList held = persistentIndexList();
    for (const QModelIndex &position : held) {
        if (const QModelIndex moved = index(position.row() - rowsUp, position.column()); moved != position)
            changePersistentIndex(position, moved);
    }
}

void FrameRangeModel::onSourceDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                          const QList<int> &roles)
{
    if (!d->scene)
        return;
    if (roles.contains(Qt::SizeHintRole)) {
        announceSize(roles);
        return;
    }
    for (int column = topLeft.column(); column <= bottomRight.column(); ++column) {
        int top = std::max(topLeft.row() - (d->range.first - 1), 0);
        int bottom = std::min(bottomRight.row() - (d->range.first - 1), rowCount() - 1);
        if (d->mode != NoDrag) {
            top = 0;
            bottom = rowCount() - 1;
        }
        while (bottom >= top && !index(bottom, column).isValid())
            --bottom;
        if (top <= bottom)
            emit dataChanged(index(top, column), index(bottom, column), roles);
    }
}

// The size of cells is told at one cell for all, which need not be in the range, nor its layer reach there.
void FrameRangeModel::announceSize(const QList<int> &roles)
{
    for (int column = 0; column < columnCount(); ++column) {
        if (const QModelIndex first = index(0, column); first.isValid()) {
            emit dataChanged(first, first, roles);
            return;
        }
    }
}

void FrameRangeModel::onSourceHeaderDataChanged(Qt::Orientation orientation, int first, int last)
{
    if (orientation == Qt::Horizontal) {
        emit headerDataChanged(orientation, first, last);
        return;
    }
    // The frame behind all rows of the source has a row here, but is no section there to be told of.
    if (last == sourceModel()->rowCount() - 1)
        ++last;
    first = std::max(first - (d->range.first - 1), 0);
    last = std::min(last - (d->range.first - 1), rowCount() - 1);
    if (first <= last)
        emit headerDataChanged(orientation, first, last);
}

// A drag takes the marks off the rows; where it makes layers longer or shorter, their last frames move.
void FrameRangeModel::announceDragHeaders(DragMode mode)
{
    if (const int rows = rowCount(); mode != NoDrag && rows > 0)
        emit headerDataChanged(Qt::Vertical, 0, rows - 1);
    if (mode == AddClonesMode)
        announceLastFrames();
}

void FrameRangeModel::announceLastFrames()
{
    if (const int columns = columnCount(); columns > 0)
        emit headerDataChanged(Qt::Horizontal, 0, columns - 1);
}

bool FrameRangeModel::isOwnIndex(const QModelIndex &index) const
{
    return d->scene && index.isValid() && index.model() == this;
}

int FrameRangeModel::displayedLastFrame() const
{
    return d->scene ? d->lastShown() : 0;
}

int FrameRangeModel::rowCount(const QModelIndex &parent) const
{
    if (!d->scene || !sourceModel() || parent.isValid())
        return 0;
    // A range that is to move up altogether would leave the sheet without a row, and all who hold one with nothing.
    return std::max(d->lastShown() + 2 - d->range.first, d->mode == NoDrag ? 0 : 2);
}

int FrameRangeModel::columnCount(const QModelIndex &parent) const
{
    return d->scene && sourceModel() && !parent.isValid() ? sourceModel()->columnCount() : 0;
}

QModelIndex FrameRangeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column < 0 || row >= rowCount(parent) || column >= columnCount(parent))
        return {};
    const bool valid = d->isVisual(column) ? sourceModel()->index(d->shownAt(row, column).source, column).isValid()
                                           : row < rowCount() - 1;
    return valid ? createIndex(row, column) : QModelIndex();
}

QModelIndex FrameRangeModel::parent(const QModelIndex &child) const
{
    Q_UNUSED(child);
    return {};
}

bool FrameRangeModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0 && columnCount(parent) > 0;
}

Qt::ItemFlags FrameRangeModel::flags(const QModelIndex &index) const
{
    if (!isOwnIndex(index))
        return {};
    const QModelIndex source = mapToSource(index);
    return source.isValid() ? source.flags() : Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
}

QModelIndex FrameRangeModel::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!isOwnIndex(proxyIndex) || !sourceModel())
        return {};
    const int column = proxyIndex.column();
    return sourceModel()->index(d->shownAt(proxyIndex.row(), column).source, column);
}

QModelIndex FrameRangeModel::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!d->scene || !sourceIndex.isValid() || sourceIndex.model() != sourceModel())
        return {};
    const int position = d->positionOf(sourceIndex.row(), sourceIndex.column());
    return position < 0 ? QModelIndex() : index(position - (d->range.first - 1), sourceIndex.column());
}

QVariant FrameRangeModel::data(const QModelIndex &index, int role) const
{
    if (!isOwnIndex(index))
        return {};
    if (d->mode != NoDrag && d->shownAt(index.row(), index.column()).isNewHold) {
        // A hold that is yet to be made has nothing of its own but what it is.
        switch (role) {
        case SceneModel::LocalCloneRole:
            return d->isVisual(index.column()) ? QVariant(true) : QVariant();
        case SceneModel::OriginalDrawingRole:
        case SceneModel::DistantCloneRole:
        case SceneModel::KeyDrawingRole:
            return d->isVisual(index.column()) ? QVariant(false) : QVariant();
        case SceneModel::AnnotationImageRole:
            return d->isVisual(index.column()) ? QVariant() : QVariant(QImage());
        default:
            break;
        }
    }
    return mapToSource(index).data(role);
}

bool FrameRangeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!isOwnIndex(index) || d->shownAt(index.row(), index.column()).isNewHold)
        return false;
    return QAbstractProxyModel::setData(index, value, role);
}

QVariant FrameRangeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!d->scene || !sourceModel())
        return {};
    if (orientation == Qt::Vertical) {
        if (section < 0 || section >= rowCount() || (role == SceneModel::FrameBacklitRole && d->mode != NoDrag))
            return {};
        return sourceModel()->headerData(section - 1 + d->range.first, orientation, role);
    }
    const QVariant value = sourceModel()->headerData(section, orientation, role);
    if (role != SceneModel::LayerLastFrameRole || d->mode != AddClonesMode || !value.isValid())
        return value;
    if (!d->goesAlong(section))
        return std::min(value.toInt(), d->displayedLast);
    // What is not visual goes by the length of the scene, which moves with the end of the range.
    const int shift = d->isVisual(section) ? d->shiftOf(section) : d->displayedLast - d->range.last;
    return value.toInt() + shift;
}

bool FrameRangeModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant &value, int role)
{
    if (!d->scene || !sourceModel() || section < 0 || section > Layer::maximumFrames)
        return false;
    const int shift = orientation == Qt::Vertical ? d->range.first - 1 : 0;
    return sourceModel()->setHeaderData(section + shift, orientation, value, role);
}

QImage FrameRangeModel::thumbnail(const QModelIndex &index, QSize size) const
{
    if (!isOwnIndex(index))
        return {};
    const ShownCell shown = d->shownAt(index.row(), index.column());
    const Layer *layer = d->scene->layer(index.column());
    if (const auto *visual = qobject_cast<const VisualLayer *>(layer))
        return visual->frameImage(shown.source + 1, size);
    const auto *annotation = qobject_cast<const AnnotationLayer *>(layer);
    return annotation && !shown.isNewHold ? annotation->displayImage(shown.source + 1, size) : QImage();
}

} // namespace Model
