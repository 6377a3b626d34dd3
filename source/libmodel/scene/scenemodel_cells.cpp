// The operations of the scene on the cells that indexes name.

#include "libmodel/layers/layer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/stroke.h"

#include <QMimeData>

#include <algorithm>

namespace Model {

namespace {

int frameOf(const QModelIndex &index)
{
    return index.row() + 1;
}

} // namespace

std::shared_ptr<LayerItem> SceneModel::item(const QModelIndex &index) const
{
    return isOwnIndex(index) ? m_scene->item(index.column(), frameOf(index)) : nullptr;
}

std::shared_ptr<Drawing> SceneModel::drawing(const QModelIndex &index) const
{
    const auto cell = item(index);
    return cell ? cell->drawing : nullptr;
}

QList<SceneChange> SceneModel::addBlankDrawing(const QModelIndex &index)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->addBlankDrawing(index.column(), frameOf(index));
}

QList<SceneChange> SceneModel::insertBlankDrawing(const QModelIndex &index)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->insertBlankDrawing(index.column(), frameOf(index));
}

QList<SceneChange> SceneModel::addCloneDrawing(const QModelIndex &index)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->addCloneDrawing(index.column(), frameOf(index));
}

QList<SceneChange> SceneModel::addCloneDrawings(const QModelIndex &index, int count)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->addCloneDrawings(index.column(), frameOf(index), count);
}

QList<SceneChange> SceneModel::deleteDrawing(const QModelIndex &index)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->deleteFrame(index.column(), frameOf(index));
}

QList<SceneChange> SceneModel::deleteDrawings(const QModelIndex &index, int count)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->deleteFrames(index.column(), frameOf(index), count);
}

QList<SceneChange> SceneModel::replaceDrawing(const QModelIndex &index, std::shared_ptr<Drawing> drawing,
                                              bool updateDistantClones, bool blockSignals)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->replaceDrawing(index.column(), frameOf(index), std::move(drawing), updateDistantClones,
                                   blockSignals);
}

QList<SceneChange> SceneModel::makeDistantClone(const QModelIndex &index, const CellRef &origin, bool blockSignals)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->makeDistantClone(index.column(), frameOf(index), origin, blockSignals);
}

QList<SceneChange> SceneModel::loseDrawing(const QModelIndex &index, bool blockSignals)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->loseDrawing(index.column(), frameOf(index), blockSignals);
}

QList<SceneChange> SceneModel::turnCloneIntoOriginal(const QModelIndex &index, const QUuid &copyId)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->turnCloneIntoOriginal(index.column(), frameOf(index), copyId);
}

QList<SceneChange> SceneModel::slideOriginalDrawing(const QModelIndex &index, int offset, int lowestOffset,
                                                    int highestOffset)
{
    if (!isOwnIndex(index))
        return {};
    return m_scene->slideOriginalDrawing(index.column(), frameOf(index), offset, lowestOffset, highestOffset);
}

QList<SceneChange> SceneModel::undoChanges(const QList<SceneChange> &changes)
{
    if (!m_scene)
        return {};
    return m_scene->undoChanges(changes);
}

CellRef SceneModel::originOfCell(const QModelIndex &index) const
{
    const auto cell = item(index);
    if (!cell || !cell->isOriginal())
        return {};
    return {m_scene->layer(index.column())->identifier(), cell->identifier};
}

QModelIndex SceneModel::findOriginal(const QUuid &copyId) const
{
    int layerIdx = -1;
    int frameId = -1;
    if (!m_scene || !m_scene->findOriginalByCopyId(copyId, nullptr, &layerIdx, &frameId))
        return {};
    return index(frameId - 1, layerIdx);
}

QModelIndex SceneModel::indexOfCell(const CellRef &ref) const
{
    int layerIdx = -1;
    int frameId = -1;
    if (!m_scene || !m_scene->findItem(ref, &layerIdx, &frameId))
        return {};
    return index(frameId - 1, layerIdx);
}

QModelIndex SceneModel::originIndex(const QModelIndex &index) const
{
    return isOwnIndex(index) ? indexOfCell(m_scene->originOfFrame(index.column(), frameOf(index))) : QModelIndex();
}

bool SceneModel::addStroke(const QModelIndex &index, std::unique_ptr<Stroke> stroke)
{
    return isOwnIndex(index) && m_scene->addStroke(index.column(), frameOf(index), std::move(stroke));
}

std::unique_ptr<Stroke> SceneModel::removeLastStroke(const QModelIndex &index)
{
    return isOwnIndex(index) ? m_scene->removeLastStroke(index.column(), frameOf(index)) : nullptr;
}

QList<SceneChange> SceneModel::cutPath(const QModelIndex &index, const QPainterPath &path)
{
    return isOwnIndex(index) ? m_scene->cutPath(index.column(), frameOf(index), path) : QList<SceneChange>();
}

QMimeData *SceneModel::copyToMimeData(const QModelIndex &index) const
{
    return isOwnIndex(index) ? m_scene->copyToMimeData(index.column(), frameOf(index), 1) : nullptr;
}

QMimeData *SceneModel::copyToMimeData(const QModelIndexList &indexes) const
{
    if (indexes.isEmpty())
        return nullptr;
    const QModelIndex &any = indexes.constFirst();
    int first = any.row();
    int last = any.row();
    for (const QModelIndex &index : indexes) {
        if (!isOwnIndex(index) || index.column() != any.column())
            return nullptr;
        first = std::min(first, index.row());
        last = std::max(last, index.row());
    }
    return m_scene->copyToMimeData(any.column(), first + 1, last - first + 1);
}

} // namespace Model
