// The way back of every operation on cells and notes.

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/celllinks.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"

#include <QSet>

#include <algorithm>

namespace Model {

namespace {

QList<SceneChange> onLayer(const QList<LayerChange> &steps, int layerIdx)
{
    QList<SceneChange> changes;
    for (const LayerChange &step : steps)
        changes.append(SceneChange(step, layerIdx));
    return changes;
}

/// The kind of a cell as a number, -1 for none.
int kindOf(const std::shared_ptr<LayerItem> &cell)
{
    return cell ? static_cast<int>(cell->type) : -1;
}

/// The step that takes away again what was put back on the annotation layer.
QList<LayerChange> reverseNote(AnnotationLayer &layer, const LayerChange &change)
{
    switch (change.type) {
    case LayerChange::AnnotationRemoved:
        return layer.insertImage(change.frameId, change.image);
    case LayerChange::AnnotationChanged:
        return layer.setImage(change.frameId, change.image);
    case LayerChange::AnnotationInserted:
        return layer.removeFrame(change.frameId);
    default:
        return {};
    }
}

} // namespace

// Lets a cell that was put back show what it has to, and links it again.
void Scene::repairCell(int layerIdx, int frameId)
{
    VisualLayer &visual = *visualLayer(layerIdx);
    LayerItem &cell = *visual.item(frameId);
    const CellRef ref = visual.cellRef(frameId);
    if (cell.isClone() && frameId > 1) {
        cell.drawing = visual.item(frameId - 1)->drawing;
    } else if (cell.isDistantClone()) {
        // A link that led nowhere from the beginning, as files may have it, goes on doing so.
        const bool wasLinked = cell.formerLink >= 0;
        if (relinkDistantClone(cell, ref, d->finder()) || !wasLinked) {
            visual.spreadDrawing(frameId);
            return;
        }
        // Its original is gone.
        cell.type = LayerItem::Type::Original;
        cell.origin = {};
        cell.formerLink = -1;
        cell.drawing = visual.newBlankItem()->drawing;
    } else if (cell.isOriginal()) {
        demoteClones(cell, ref, d->finder());
        d->spread(cell.clones);
    }
    visual.spreadDrawing(frameId);
}

std::shared_ptr<LayerItem> Scene::putBack(const SceneChange &change)
{
    VisualLayer &visual = *visualLayer(change.layerIndex);
    const auto present = visual.item(change.frameId);
    const bool handsOver = !change.item->isOriginal() || change.item->clones.isEmpty();
    if (present->isOriginal() && handsOver)
        promoteFirstClone(*present, d->finder());
    else if (present->isDistantClone())
        unlinkDistantClone(*present, visual.cellRef(change.frameId), d->finder());
    visual.replaceItem(change.frameId, change.item);
    repairCell(change.layerIndex, change.frameId);
    return present;
}

// Reverses one step. \return the steps that were taken for it, the last first.
QList<SceneChange> Scene::reverse(const SceneChange &change)
{
    const int layerIdx = change.layerIndex;
    if (auto *annotation = qobject_cast<AnnotationLayer *>(layer(layerIdx)))
        return onLayer(reverseNote(*annotation, change), layerIdx);
    VisualLayer *visual = visualLayer(layerIdx);
    const auto cell = item(layerIdx, change.frameId);
    if (!visual)
        return {};
    SceneChange taken(LayerChange::NoChange, change.frameId, layerIdx);
    switch (change.type) {
    case LayerChange::ItemRemoved:
        if (!visual->insertItem(change.frameId, change.item))
            return {};
        repairCell(layerIdx, change.frameId);
        taken.type = LayerChange::ItemInserted;
        return {taken};
    case LayerChange::ItemReplaced:
        if (!cell || !change.item)
            return {};
        taken.type = LayerChange::ItemReplaced;
        taken.item = putBack(change);
        return {taken};
    case LayerChange::ItemInserted:
        return onLayer(visual->removeFrame(change.frameId), layerIdx);
    case LayerChange::TransformChanged:
        if (!cell)
            return {};
        taken.type = LayerChange::TransformChanged;
        taken.transform = std::exchange(cell->offPegsTransform, change.transform);
        return {taken};
    default:
        return {};
    }
}

QList<SceneChange> Scene::undoChanges(const QList<SceneChange> &changes)
{
    QList<QList<SceneChange>> oldestFirst;
    CellList touched;
    int firstLayer = layerCount();
    int lastLayer = -1;
    bool pushesRange = false;
    bool growsRange = false;
    const QTransform transformBefore = offPegsTransformOfFrame(d->activeFrame);
    const int kindBefore = kindOf(item(d->activeLayerIdx, d->activeFrame));
    for (const SceneChange &change : changes) {
        const int layerIdx = change.layerIndex;
        const int frameId = change.frameId;
        const QList<SceneChange> taken = reverse(change);
        if (taken.isEmpty())
            continue;
        oldestFirst.append(taken);
        firstLayer = std::min(firstLayer, layerIdx);
        lastLayer = std::max(lastLayer, layerIdx);
        if (!visualLayer(layerIdx))
            continue;
        touched.append({frameId, layerIdx});
        if (change.type == LayerChange::ItemRemoved) {
            pushesRange |= frameId < d->rangeFirst;
            growsRange |= frameId <= d->rangeLast && lastFrame(layerIdx) > d->rangeLast;
        }
    }
    if (oldestFirst.isEmpty())
        return {};

    d->markBeforeTelling();
    updateMaxFrameNumber();
    if (d->scrubFrame > d->maximumFrameNumber)
        unsetScrubFrame();
    setFrameRange(d->rangeFirst + (pushesRange ? 1 : 0), d->rangeLast + (growsRange ? 1 : 0), d->activeFrame,
                  d->activeLayerIdx);
    keepPositionLegal();
    d->markBeforeTelling();
    emit layersChanged(firstLayer, lastLayer);
    recompose();
    if (offPegsTransformOfFrame(d->activeFrame) != transformBefore)
        d->tellOffPegsTransform();
    CellList shown;
    QSet<const Drawing *> told;
    for (const auto &[frameId, layerIdx] : sorted(touched)) {
        const auto cell = item(layerIdx, frameId);
        // All cells of a hold show one drawing, and with it the same others.
        if (!cell || told.contains(cell->drawing.get()))
            continue;
        told.insert(cell->drawing.get());
        shown += cellsShowing(layerIdx, frameId);
    }
    emit drawingsChanged(sorted(std::move(shown)));
    if (kindOf(item(d->activeLayerIdx, d->activeFrame)) != kindBefore)
        emit currentDrawingTypeUpdated();

    QList<SceneChange> newestFirst;
    for (auto taken = oldestFirst.crbegin(); taken != oldestFirst.crend(); ++taken)
        newestFirst += *taken;
    return newestFirst;
}

} // namespace Model
