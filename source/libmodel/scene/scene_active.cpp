// The active position, the playback range and the scrub frame.

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"

#include <algorithm>
#include <utility>

namespace Model {

int Scene::maximumFrameNumber() const
{
    return d->maximumFrameNumber;
}

int Scene::lastFrame(int layerIdx) const
{
    if (!d->isLayer(layerIdx))
        return 0;
    const VisualLayer *visual = visualLayer(layerIdx);
    return visual ? visual->numFrames() : d->maximumFrameNumber;
}

bool Scene::isAfterLast(int layerIdx, int frameId) const
{
    return d->isLayer(layerIdx) && frameId == lastFrame(layerIdx) + 1;
}

int Scene::activeFrame() const
{
    return d->activeFrame;
}

int Scene::activeLayerIdx() const
{
    return d->activeLayerIdx;
}

int Scene::scrubFrame() const
{
    return d->scrubFrame;
}

int Scene::rangeFirst() const
{
    return d->rangeFirst;
}

int Scene::rangeLast() const
{
    return d->rangeLast;
}

/// A hold counts: what is drawn on it is drawn on its original, which is shown on all of its frames.
bool Scene::activeCellHasDrawing() const
{
    return item(d->activeLayerIdx, d->activeFrame) != nullptr;
}

void Scene::updateMaxFrameNumber()
{
    int longest = 1;
    for (const auto &layer : std::as_const(d->layers))
        longest = std::max(longest, layer->numFrames());
    if (longest == d->maximumFrameNumber)
        return;
    d->maximumFrameNumber = longest;
    emit maximumFrameNumberChanged(longest);
}

void Scene::keepRangeInside()
{
    int first = d->rangeFirst;
    int last = std::min(d->rangeLast, d->maximumFrameNumber);
    // A range of one frame is for scenes of one frame only.
    first = std::clamp(first, 1, std::max(last - 1, 1));
    if (first == last && d->maximumFrameNumber > 1)
        ++last;
    if (first != d->rangeFirst || last != d->rangeLast) {
        d->rangeFirst = first;
        d->rangeLast = last;
        d->markBeforeTelling();
        emit frameRangeChanged(first, last);
    }
    if (d->scrubFrame > d->maximumFrameNumber)
        unsetScrubFrame();
    keepPositionLegal();
}

// On a cell of the layer within the range, or just behind the layer's last cell where the range allows.
bool Scene::isLegalPosition(int frameId, int layerIdx) const
{
    if (!visualLayer(layerIdx))
        return false;
    const int last = lastFrame(layerIdx);
    if (frameId == last + 1)
        return d->rangeFirst <= frameId;
    return frameId >= d->rangeFirst && frameId <= std::min(last, d->rangeLast);
}

// The wanted position, or the nearest that the range allows. False when it stays where it is.
bool Scene::moveToLegalPosition(int wantedFrameId, int wantedLayerIdx)
{
    const int layerIdx = layerForRange(wantedLayerIdx, d->rangeFirst);
    const bool afterLast = isAfterLast(layerIdx, wantedFrameId);
    if (!afterLast)
        wantedFrameId = std::max(d->rangeFirst, std::min({d->rangeLast, lastFrame(layerIdx), wantedFrameId}));
    return setActivePosition(wantedFrameId, layerIdx, afterLast ? AllowFrameAfterLast : KeepFrameOnDrawing);
}

void Scene::keepPositionLegal()
{
    if (d->activeLayerIdx < 0 || isLegalPosition(d->activeFrame, d->activeLayerIdx) ||
        !moveToLegalPosition(d->activeFrame, d->activeLayerIdx))
        return;
    d->tellOffPegsTransform();
    emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
}

bool Scene::setActivePosition(int frameId, int layerIdx, SetFrameBehaviour behaviour)
{
    if (frameId == d->activeFrame && layerIdx == d->activeLayerIdx) {
        // Only one thing is left to do on the same spot: to be pulled off the empty position.
        if (behaviour == AllowFrameAfterLast || d->scrubFrame >= 1 || !isAfterLast(layerIdx, frameId))
            return false;
    }
    if (!visualLayer(layerIdx) || frameId < 1)
        return false;
    const int last = lastFrame(layerIdx);
    if (d->rangeFirst > last + 1)
        return false;

    if (frameId != last + 1 || behaviour == KeepFrameOnDrawing) {
        if (last < d->rangeFirst)
            frameId = d->rangeFirst;
        else
            frameId = std::clamp(frameId, d->rangeFirst, std::min(last, d->rangeLast));
    }
    d->activeLayerIdx = layerIdx;
    d->activeFrame = frameId;
    const int previous = std::exchange(d->scrubFrame, -1);
    d->markBeforeTelling();
    if (previous >= 1) {
        emit scrubFrameChanged(-1, previous);
        d->soundScrubFrame();
    }
    return true;
}

void Scene::setActiveFrameAndLayer(int frameId, int layerIdx, Model::Scene::SetFrameBehaviour setFrameBehaviour)
{
    const QTransform offPegsBefore = offPegsTransformOfFrame(d->activeFrame);
    if (!setActivePosition(frameId, layerIdx, setFrameBehaviour))
        return;
    if (offPegsTransformOfFrame(d->activeFrame) != offPegsBefore)
        d->tellOffPegsTransform();
    emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    updateCachedFramePixmap(true);
}

void Scene::activateNear(int visualIndex)
{
    const int wanted = d->activeFrame;
    d->activeFrame = -1;
    QList<int> candidates;
    for (int index = std::min(visualIndex, layerCount()) - 1; index >= 0; --index)
        candidates.append(layerAtVisualIndex(index));
    for (int index = std::max(visualIndex, 0); index < layerCount(); ++index)
        candidates.append(layerAtVisualIndex(index));
    for (const int layerIdx : std::as_const(candidates)) {
        if (setActivePosition(wanted, layerIdx, AllowFrameAfterLast))
            return;
    }
    d->activeLayerIdx = -1;
}

void Scene::setScrubFrame(int frameId)
{
    if (frameId == d->scrubFrame || frameId > d->maximumFrameNumber || (frameId < 1 && d->scrubFrame < 1))
        return;
    const int previous = d->scrubFrame;
    d->scrubFrame = frameId < 1 ? -1 : frameId;
    // While a scrub frame is set the layers are painted directly, so the pixmaps may be left as they are; something
    // else may have composed them for the scrub frame meanwhile.
    if (d->scrubFrame < 1 && d->pixmapFrame != d->composedFrame())
        updateCachedFramePixmap(false);
    emit scrubFrameChanged(d->scrubFrame, previous);
    if (d->scrubFrame < 1)
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    d->soundScrubFrame();
}

void Scene::unsetScrubFrame()
{
    setScrubFrame(-1);
}

int Scene::layerForRange(int wantedLayerIdx, int first) const
{
    for (int index = visualIndex(wantedLayerIdx); index >= 0; --index) {
        const int layerIdx = layerAtVisualIndex(index);
        if (visualLayer(layerIdx) && lastFrame(layerIdx) + 1 >= first)
            return layerIdx;
    }
    // Standing behind the last cell is good enough for a layer that was asked for, not for one that was not.
    for (const int layerIdx : std::as_const(d->visualToLayer)) {
        if (visualLayer(layerIdx) && lastFrame(layerIdx) >= first)
            return layerIdx;
    }
    return -1;
}

void Scene::setFrameRange(int lower, int upper, int wantedFrameId, int wantedLayerIdx)
{
    lower = std::clamp(lower, 1, d->maximumFrameNumber);
    upper = std::clamp(upper, 1, d->maximumFrameNumber);
    if (lower > upper)
        return;
    if (lower == upper && d->maximumFrameNumber != 1) {
        if (lower != 1)
            --lower;
        else
            ++upper;
    }
    if (lower == d->rangeFirst && upper == d->rangeLast && wantedFrameId == d->activeFrame &&
        wantedLayerIdx == d->activeLayerIdx && wantedFrameId >= lower && wantedFrameId <= upper &&
        isLegalPosition(wantedFrameId, wantedLayerIdx))
        return;
    d->rangeFirst = lower;
    d->rangeLast = upper;
    d->markBeforeTelling();
    emit frameRangeChanged(lower, upper);
    moveToLegalPosition(wantedFrameId, wantedLayerIdx);
    updateCachedFramePixmap(true);
    d->tellOffPegsTransform();
    emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
}

} // namespace Model
