// The neighbouring frames that shine through.

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/backlightframes.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/coveragepainter.h"
#include "libmodel/strokes/mappedbounds.h"

#include <QPainter>

#include <algorithm>

namespace Model {

namespace {

/// The scale whose rim is room enough around what is painted turned or between pixels.
constexpr double smoothScale = 2.0;

} // namespace

BacklightSettings Scene::backlightSettings() const
{
    return d->backlightSettings;
}

QList<BacklightFrame> Scene::backlightFrames() const
{
    return d->backlightFrames;
}

void Scene::setBacklightSettings(const BacklightSettings &backlightSettings)
{
    if (backlightSettings == d->backlightSettings)
        return;
    d->backlightSettings = backlightSettings;
    recompose();
    if (!backlightSettings.on) {
        d->backlightPicture.release();
        d->framePicture.release();
    }
}

void Scene::updateCachedBacklightPixmap()
{
    d->decideBacklightFrames();
    for (PictureCache *picture : {&d->backlightPicture, &d->framePicture, &d->scrubPicture})
        picture->markStale();
    const bool wasBlocked = d->tellingWasBlocked;
    // The signal that would have had the views paint was not heard either.
    if (d->tellBacklightFrames() && wasBlocked)
        emit rectChanged(d->frameRect());
}

bool Scene::Private::tellBacklightFrames()
{
    const bool isNews = backlightFrames != toldBacklightFrames;
    tellingWasBlocked = isNews && scene->signalsBlocked();
    if (!isNews || tellingWasBlocked)
        return false;
    toldBacklightFrames = backlightFrames;
    emit scene->backlightFramesChanged();
    return true;
}

void Scene::Private::decideBacklightFrames()
{
    backlightFrames.clear();
    if (backlightSettings.on && scene->visualLayer(activeLayerIdx)) {
        const VisualLayer *active = scene->visualLayer(activeLayerIdx);
        // The longest first: looking ends where the layers do that reach so far.
        QList<const VisualLayer *> considered = backlightLayers();
        std::ranges::stable_sort(considered, std::ranges::greater(), &VisualLayer::numFrames);
        const auto hasNewDrawing = [&considered = std::as_const(considered)](int frameId) {
            const auto end = std::ranges::find_if_not(
                considered, [frameId](const VisualLayer *layer) { return layer->isValidFrame(frameId); });
            return std::any_of(considered.begin(), end, [frameId](const VisualLayer *layer) {
                return !layer->frames().at(frameId - 1)->isClone();
            });
        };
        const auto isKeyDrawing = [active](int frameId) {
            return active->isValidFrame(frameId) && active->frames().at(frameId - 1)->keyDrawing;
        };
        const BacklightSheet sheet{.activeFrame = activeFrame,
                                   .rangeFirst = rangeFirst,
                                   .rangeLast = rangeLast,
                                   .maximumFrame = maximumFrameNumber,
                                   .lastFrame = active->numFrames(),
                                   .hasNewDrawing = hasNewDrawing,
                                   .isKeyDrawing = isKeyDrawing};
        backlightFrames = Model::backlightFrames(backlightSettings.current(), backlightSettings.onlyKeyFrames, sheet);
    }
}

QList<const VisualLayer *> Scene::Private::backlightLayers() const
{
    QList<const VisualLayer *> shown;
    if (backlightSettings.current().layers == BacklightSetting::Layers::BacklightActiveLayerOnly) {
        // While the active layer is being removed there is none.
        if (const VisualLayer *active = scene->visualLayer(activeLayerIdx))
            shown.append(active);
        return shown;
    }
    for (auto it = visualToLayer.crbegin(); it != visualToLayer.crend(); ++it) {
        if (scene->isLayerShown(*it))
            shown.append(scene->visualLayer(*it));
    }
    return shown;
}

PictureCache &Scene::Private::composeBacklight()
{
    // A scene that never had a backlight needs no picture of it.
    if (backlightFrames.isEmpty() && backlightPicture.image().isNull())
        return backlightPicture;
    const QRect rect = backlightPicture.begin(frameSize);
    if (rect.isEmpty() || backlightFrames.isEmpty())
        return backlightPicture;
    QPainter painter(&backlightPicture.canvas());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const BacklightFrame &frame : std::as_const(backlightFrames)) {
        if (frame.frameId >= 1 && frame.frameId <= maximumFrameNumber)
            paintBacklightFrame(&painter, frame, rect);
    }
    return backlightPicture;
}

// A frame off its pegs is seen where the paper shows it while it is the active frame. The transform takes the desk's
// coordinates to those of the paper, so its inverse puts the neighbour where its paper lies on the desk.
void Scene::Private::paintBacklightFrame(QPainter *painter, const BacklightFrame &frame, QRect rect)
{
    const QTransform toPegs = scene->offPegsTransformOfFrame(frame.frameId).inverted();
    painter->save();
    painter->setTransform(toPegs, true);
    QRect part = rect;
    QPoint offset;
    if (isPixelOnPixel(painter, &offset)) {
        part.translate(-offset);
    } else {
        part = frameRect();
        if (!rect.contains(part)) {
            painter->resetTransform();
            painter->setClipRect(rect);
            painter->setTransform(toPegs);
        }
    }
    for (const VisualLayer *layer : backlightLayers()) {
        if (!layer->isShown())
            continue;
        layer->drawHueShifted(frame.frameId, painter, part, frame.hueShift, frame.opacity);
        const QRect inked = layer->inkedRect(frame.frameId) & part;
        if (toPegs.isIdentity())
            addInk(backlightPicture, *layer, frame.frameId, inked);
        else
            backlightPicture.addInk(grownByRim(mappedBounds(toPegs, inked), smoothScale) & rect);
    }
    painter->restore();
}

QRect Scene::Private::seenInBacklight(QRect rect) const
{
    QRect seen;
    for (const BacklightFrame &frame : backlightFrames) {
        const QTransform toPegs = scene->offPegsTransformOfFrame(frame.frameId).inverted();
        // A part of a turned drawing does not come out pixel for pixel as in the whole, so the whole is made anew.
        seen |= toPegs.type() > QTransform::TxTranslate ? frameRect() : mappedBounds(toPegs, rect);
    }
    return seen;
}

void Scene::paintBacklight(QPainter *painter, QRect rect) const
{
    rect &= d->frameRect();
    if (!rect.isEmpty() && d->hasPicture())
        d->composeBacklight().paint(painter, rect);
}

} // namespace Model
