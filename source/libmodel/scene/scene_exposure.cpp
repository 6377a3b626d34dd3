// Adding, deleting and sliding frames.

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"

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

/// Puts a new cell behind \a frameId. \return the step taken, nothing for a layer that does not reach this frame.
QList<LayerChange> insertAfter(Layer &layer, int frameId, bool blank)
{
    auto *annotation = qobject_cast<AnnotationLayer *>(&layer);
    // In front of frame 1 the layer itself makes no room, but its notes have to stay beside their frames.
    if (annotation && frameId == 0)
        return annotation->insertImage(1, {});
    const qsizetype lengthBefore = columnLength(layer);
    if (blank)
        layer.insertBlankAfter(frameId);
    else
        layer.insertCloneAfter(frameId);
    if (columnLength(layer) == lengthBefore)
        return {};
    return {LayerChange(annotation ? LayerChange::AnnotationInserted : LayerChange::ItemInserted, frameId + 1)};
}

void prepend(QList<SceneChange> &changes, const QList<LayerChange> &steps, int layerIdx)
{
    QList<SceneChange> newest;
    for (const LayerChange &step : steps)
        newest.append(SceneChange(step, layerIdx));
    changes = newest + changes;
}

} // namespace

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
    if (!visual || frameId < 0 || frameId > visual->numFrames() || count < 1 || !canGrow(layerIdx, count))
        return {};
    const QList<QList<SceneChange>> oldestFirst = addHolds(layerIdx, frameId, count, 0);
    QList<SceneChange> changes;
    for (auto step = oldestFirst.crbegin(); step != oldestFirst.crend(); ++step)
        changes += *step;
    return changes;
}

void Scene::appendCloneDrawings(int layerIdx, int frameId, int count)
{
    const VisualLayer *visual = visualLayer(layerIdx);
    if (visual && frameId >= 0 && frameId <= visual->numFrames() && count >= 1 && canGrow(layerIdx, count))
        addHolds(layerIdx, frameId, count, 1);
}

// Adds holds behind frameId, each step frames further than the one before; the views are told once.
QList<QList<SceneChange>> Scene::addHolds(int layerIdx, int frameId, int count, int step)
{
    const Private::OffPegsWatch watch(*d);
    const std::pair before(d->activeFrame, d->activeLayerIdx);
    const int scrubFrameBefore = d->scrubFrame;
    QList<QList<SceneChange>> oldestFirst;
    {
        const QSignalBlocker blocker(this);
        for (int i = 0; i < count - 1; ++i)
            oldestFirst.append(addCell(layerIdx, frameId + i * step, false, false));
    }
    const std::pair unheard(d->activeFrame, d->activeLayerIdx);
    const int scrubFrameUnheard = d->scrubFrame;
    oldestFirst.append(addCell(layerIdx, frameId + (count - 1) * step, false, true));
    // Everything else that changes goes on changing to the last; the active frame may have come to the end of its
    // layer, the scrub frame to that of the scene.
    if (unheard != before && unheard == std::pair(d->activeFrame, d->activeLayerIdx))
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    if (scrubFrameUnheard != scrubFrameBefore && scrubFrameUnheard == d->scrubFrame)
        emit scrubFrameChanged(d->scrubFrame, scrubFrameBefore);
    return oldestFirst;
}

// Linked layers stay in step, so that one which is full keeps all of them from growing.
bool Scene::canGrow(int layerIdx, int count) const
{
    const bool isLinked = layer(layerIdx)->isLinked();
    for (int idx = 0; idx < layerCount(); ++idx) {
        if ((idx == layerIdx || (isLinked && layer(idx)->isLinked())) &&
            columnLength(*layer(idx)) > Layer::maximumFrames - count)
            return false;
    }
    return true;
}

QList<SceneChange> Scene::addCell(int layerIdx, int frameId, bool blank, bool composeAfterwards)
{
    const VisualLayer *acted = visualLayer(layerIdx);
    if (!acted || frameId < 0 || frameId > acted->numFrames() || !canGrow(layerIdx, 1))
        return {};

    const Private::OffPegsWatch watch(*d);
    QList<SceneChange> changes;
    bool growRange = false;
    for (int idx = 0; idx < layerCount(); ++idx) {
        Layer &target = *d->layers.at(idx);
        if (idx != layerIdx && !(acted->isLinked() && target.isLinked()))
            continue;
        const QList<LayerChange> steps = insertAfter(target, frameId, blank && idx == layerIdx);
        if (steps.isEmpty())
            continue;
        prepend(changes, steps, idx);
        growRange |= frameId <= d->rangeLast && target.numFrames() > d->rangeLast;
    }
    d->markBeforeTelling();
    updateMaxFrameNumber();
    shiftForInsertion(frameId, growRange);
    d->markBeforeTelling();
    emit layersChanged(changes.last().layerIndex, changes.first().layerIndex);
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
        d->markBeforeTelling();
        emit frameRangeChanged(d->rangeFirst, d->rangeLast);
    }
    // The active layer may not have taken part: then the position must not leave it.
    if (frameId < d->activeFrame && isLegalPosition(d->activeFrame + 1, d->activeLayerIdx)) {
        ++d->activeFrame;
        d->markBeforeTelling();
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    }
    if (frameId < d->scrubFrame && d->scrubFrame < d->maximumFrameNumber) {
        ++d->scrubFrame;
        emit scrubFrameChanged(d->scrubFrame, d->scrubFrame - 1);
    }
    keepPositionLegal();
}

QList<SceneChange> Scene::deleteFrame(int layerIdx, int frameId)
{
    const VisualLayer *acted = visualLayer(layerIdx);
    if (!acted || !acted->isValidFrame(frameId))
        return {};
    const Private::OffPegsWatch watch(*d);
    const bool wasActive = frameId == d->activeFrame;
    const bool isLinked = acted->isLinked();

    QList<SceneChange> changes;
    bool shrinkRange = true;
    for (int idx = 0; idx < layerCount(); ++idx) {
        Layer &target = *d->layers.at(idx);
        QList<LayerChange> steps;
        if (idx == layerIdx || (isLinked && target.isLinked()))
            steps = target.removeFrame(frameId);
        if (steps.isEmpty())
            shrinkRange &= target.numFrames() < d->rangeLast;
        else
            prepend(changes, steps, idx);
    }
    d->markBeforeTelling();
    updateMaxFrameNumber();
    if (d->scrubFrame > d->maximumFrameNumber)
        unsetScrubFrame();
    shrinkForRemoval(frameId, shrinkRange);
    d->markBeforeTelling();
    emit layersChanged(changes.last().layerIndex, changes.first().layerIndex);
    recompose();
    if (wasActive)
        d->tellOffPegsTransform();
    return changes;
}

void Scene::shrinkForRemoval(int frameId, bool shrinkRange)
{
    int first = d->rangeFirst;
    int last = d->rangeLast;
    int frame = d->activeFrame;
    if (shrinkRange && last > first) {
        --last;
        if (frameId < first)
            --first;
    }
    if (frameId == d->rangeLast && visualLayer(d->activeLayerIdx))
        frame = lastFrame(d->activeLayerIdx) + 1;
    setFrameRange(first, last, frame, d->activeLayerIdx);
    keepPositionLegal();
}

QList<SceneChange> Scene::deleteFrames(int layerIdx, int frameId, int count)
{
    const VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || !visual->isValidFrame(frameId))
        return {};
    QList<QList<SceneChange>> oldestFirst;
    for (int frame = frameId; frame >= 1 && frameId - frame < count; --frame)
        oldestFirst.append(deleteFrame(layerIdx, frame));
    QList<SceneChange> changes;
    for (auto step = oldestFirst.crbegin(); step != oldestFirst.crend(); ++step)
        changes += *step;
    return changes;
}

bool Scene::canSlide(int layerIdx, int frameId, int offset, int lowestOffset, int highestOffset) const
{
    const VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || frameId < 2 || !visual->isValidFrame(frameId) || visual->item(frameId)->isClone())
        return false;
    if (lowestOffset > 0 || highestOffset < 0 || offset < lowestOffset || offset > highestOffset ||
        lowestOffset == highestOffset)
        return false;
    const auto isClone = [](const auto &cell) { return cell->isClone(); };
    const auto &frames = visual->frames();
    const auto dragged = frames.begin() + (frameId - 1);
    return -qint64(lowestOffset) <= std::count_if(frames.begin(), dragged, isClone) &&
           highestOffset <= std::count_if(dragged, frames.end(), isClone);
}

QList<SceneChange> Scene::slideOriginalDrawing(int layerIdx, int frameId, int offset, int lowestOffset,
                                               int highestOffset)
{
    if (!canSlide(layerIdx, frameId, offset, lowestOffset, highestOffset))
        return {};
    const Private::OffPegsWatch watch(*d);
    VisualLayer &visual = *visualLayer(layerIdx);
    int start = frameId;
    for (int clones = 0; clones < -lowestOffset;)
        clones += visual.item(--start)->isClone() ? 1 : 0;

    QList<SceneChange> changes;
    int end = start;
    for (int left = highestOffset - lowestOffset; left > 0;) {
        if (!visual.item(end)->isClone()) {
            ++end;
            continue;
        }
        prepend(changes, visual.removeFrame(end), layerIdx);
        --left;
    }
    const int dragged = frameId + lowestOffset;
    for (int i = offset; i < highestOffset; ++i)
        prepend(changes, insertAfter(visual, dragged, false), layerIdx);
    for (int i = lowestOffset; i < offset; ++i)
        prepend(changes, insertAfter(visual, dragged - 1, false), layerIdx);

    CellList cells;
    const int lastChanged = std::min(end + highestOffset - lowestOffset, visual.numFrames());
    for (int frame = start; frame <= lastChanged; ++frame)
        cells.append({frame, layerIdx});
    d->markBeforeTelling();
    emit drawingsChanged(cells);
    emit layersChanged(layerIdx, layerIdx);
    recompose();
    return changes;
}

} // namespace Model
