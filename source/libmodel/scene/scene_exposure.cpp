// Cells: what stands where, adding cells, committed strokes.

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QSignalBlocker>

#include <algorithm>

namespace Model {

namespace {

/// How long a layer's column is, annotations included.
qsizetype columnLength(const Layer &layer)
{
    const auto *annotation = qobject_cast<const AnnotationLayer *>(&layer);
    return annotation ? annotation->images().size() : layer.numFrames();
}

StrokeDrawing *strokeDrawingOf(const std::shared_ptr<LayerItem> &cell)
{
    return cell ? dynamic_cast<StrokeDrawing *>(cell->drawing.get()) : nullptr;
}

} // namespace

std::shared_ptr<LayerItem> Scene::item(int layerIdx, int frameId) const
{
    const VisualLayer *visual = visualLayer(layerIdx);
    return visual ? visual->item(frameId) : nullptr;
}

std::shared_ptr<LayerItem> Scene::findItem(const CellRef &ref, int *layerIdx, int *frameId) const
{
    if (ref.isNull())
        return {};
    const int foundLayer = indexOfLayer(ref.layer);
    const VisualLayer *visual = visualLayer(foundLayer);
    if (!visual)
        return {};
    const auto &frames = visual->frames();
    const auto found =
        std::find_if(frames.begin(), frames.end(), [&ref](const auto &cell) { return cell->identifier == ref.cell; });
    if (found == frames.end())
        return {};
    if (layerIdx)
        *layerIdx = foundLayer;
    if (frameId)
        *frameId = static_cast<int>(found - frames.begin()) + 1;
    return *found;
}

CellRef Scene::originOfFrame(int layerIdx, int frameId) const
{
    auto cell = item(layerIdx, frameId);
    while (cell && cell->isClone())
        cell = item(layerIdx, --frameId);
    if (!cell)
        return {};
    return cell->isDistantClone() ? cell->origin : CellRef{layer(layerIdx)->identifier(), cell->identifier};
}

QList<SceneChange> Scene::addBlankDrawing(int layerIdx, int frameId)
{
    return addCell(layerIdx, frameId, true, true);
}

QList<SceneChange> Scene::insertBlankDrawing(int layerIdx, int frameId)
{
    return frameId < 1 ? QList<SceneChange>() : addCell(layerIdx, frameId - 1, true, true);
}

QList<SceneChange> Scene::addCloneDrawing(int layerIdx, int frameId, bool blockSignals)
{
    const QSignalBlocker blocker(blockSignals ? this : nullptr);
    return addCell(layerIdx, frameId, false, true);
}

QList<SceneChange> Scene::addCloneDrawings(int layerIdx, int frameId, int count)
{
    const VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || count < 1 || count > Layer::maximumFrames - visual->numFrames())
        return {};
    QList<QList<SceneChange>> oldestFirst;
    {
        const QSignalBlocker blocker(this);
        for (int i = 1; i < count; ++i)
            oldestFirst.append(addCell(layerIdx, frameId, false, false));
    }
    oldestFirst.append(addCell(layerIdx, frameId, false, true));
    QList<SceneChange> changes;
    for (auto step = oldestFirst.crbegin(); step != oldestFirst.crend(); ++step)
        changes += *step;
    return changes;
}

void Scene::appendCloneDrawings(int layerIdx, int frameId, int count)
{
    const VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || frameId < 0 || frameId > visual->numFrames() || count < 1 ||
        count > Layer::maximumFrames - visual->numFrames())
        return;
    {
        const QSignalBlocker blocker(this);
        for (int i = 0; i < count - 1; ++i)
            addCell(layerIdx, frameId + i, false, false);
    }
    addCell(layerIdx, frameId + count - 1, false, true);
}

QList<SceneChange> Scene::addCell(int layerIdx, int frameId, bool blank, bool composeAfterwards)
{
    const VisualLayer *acted = visualLayer(layerIdx);
    if (!acted || frameId < 0 || frameId > acted->numFrames() || acted->numFrames() >= Layer::maximumFrames)
        return {};

    QList<SceneChange> changes;
    bool growRange = false;
    for (int idx = 0; idx < layerCount(); ++idx) {
        Layer &target = *d->layers.at(idx);
        if (idx != layerIdx && !(acted->isLinked() && target.isLinked()))
            continue;
        const qsizetype lengthBefore = columnLength(target);
        if (blank && idx == layerIdx)
            target.insertBlankAfter(frameId);
        else
            target.insertCloneAfter(frameId);
        if (columnLength(target) == lengthBefore)
            continue;
        const auto type =
            qobject_cast<AnnotationLayer *>(&target) ? LayerChange::AnnotationInserted : LayerChange::ItemInserted;
        changes.append(SceneChange(type, frameId + 1, idx));
        growRange |= frameId <= d->rangeLast && target.numFrames() > d->rangeLast;
    }
    updateMaxFrameNumber();
    shiftForInsertion(frameId, growRange);
    emit layersChanged(changes.first().layerIndex, changes.last().layerIndex);
    if (composeAfterwards)
        recompose();
    return changes;
}

void Scene::shiftForInsertion(int frameId, bool growRange)
{
    if (growRange) {
        ++d->rangeLast;
        if (frameId < d->rangeFirst - 1)
            ++d->rangeFirst;
        emit frameRangeChanged(d->rangeFirst, d->rangeLast);
    }
    if (d->scrubFrame > frameId && d->scrubFrame < d->maximumFrameNumber)
        ++d->scrubFrame;
    // The active layer may not have taken part: then the position must not leave its end.
    if (frameId < d->activeFrame && d->activeFrame <= lastFrame(d->activeLayerIdx)) {
        ++d->activeFrame;
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    }
}

bool Scene::addStroke(int layerIdx, int frameId, std::unique_ptr<Model::Stroke> stroke)
{
    StrokeDrawing *drawing = strokeDrawingOf(item(layerIdx, frameId));
    if (!drawing || !stroke)
        return false;
    const QRect bounds = stroke->boundingRect();
    if (!drawing->addStroke(std::move(stroke)))
        return false;
    recompose(bounds);
    emit drawingsChanged(cellsShowing(layerIdx, frameId));
    return true;
}

std::unique_ptr<Model::Stroke> Scene::removeLastStroke(int layerIdx, int frameId)
{
    StrokeDrawing *drawing = strokeDrawingOf(item(layerIdx, frameId));
    // A drawing that was resized shows its strokes through a transform.
    const QTransform shown = drawing ? drawing->strokes().transform() : QTransform();
    std::unique_ptr<Model::Stroke> stroke = drawing ? drawing->removeLastStroke() : nullptr;
    if (!stroke)
        return {};
    const QRect bounds = stroke->boundingRect();
    recompose(shown.isIdentity() ? bounds : grownByRim(mappedBounds(shown, bounds), 1.0));
    emit drawingsChanged(cellsShowing(layerIdx, frameId));
    return stroke;
}

// All cells that show the drawing of a cell, as (frame, layer), sorted: its original, the original's distant clones,
// and the holds behind each of these. The cell acted on is always among them, whatever the links say.
QList<std::pair<int, int>> Scene::cellsShowing(int layerIdx, int frameId) const
{
    QList<std::pair<int, int>> cells;
    const auto addWithHolds = [&](int layer, int frame) {
        do
            cells.append({frame, layer});
        while (item(layer, ++frame) && item(layer, frame)->isClone());
    };

    while (frameId > 1 && item(layerIdx, frameId)->isClone())
        --frameId;
    addWithHolds(layerIdx, frameId);
    auto original = item(layerIdx, frameId);
    if (original->isDistantClone()) {
        // A link to nowhere leaves the cell to itself.
        if (const auto origin = findItem(original->origin, &layerIdx, &frameId))
            original = origin;
    }
    addWithHolds(layerIdx, frameId);
    for (const CellRef &ref : std::as_const(original->clones)) {
        int cloneLayer = -1;
        int cloneFrame = -1;
        if (findItem(ref, &cloneLayer, &cloneFrame))
            addWithHolds(cloneLayer, cloneFrame);
    }
    std::sort(cells.begin(), cells.end());
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    return cells;
}

} // namespace Model
