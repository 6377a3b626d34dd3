// The composed pictures and what the paper paints. A change only marks what it touched; the pictures are composed when
// somebody looks, and that costs what the ink costs, not the frame.

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/picturepainter.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/blending.h"
#include "libmodel/strokes/coveragepainter.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"

#include <QPainter>

#include <utility>

namespace Model {

namespace {

/// How much of the other layers is left beside one that stands out.
constexpr double faintOpacity = 0.25;

/// Work with the lasso or the cutter is on the active layer alone, so that layer stands out.
bool activeLayerStandsOut()
{
    const ToolManager *tools = ToolManager::instance();
    return tools->isLassoOrCutter() && tools->currentToolMode() == 0;
}

/// Lets \a paint (a QPainter *, a QRect) paint \a rect of a frame that covers \a frame. Where the painter turns or
/// scales, this is done through a picture of that part: layers are put together pixel on pixel, and the result is
/// smoothed once. So a stroke looks the same while it is drawn and when it is in the composed pictures.
template<typename Paint>
void paintTogether(QPainter *painter, QRect rect, QRect frame, const Paint &paint)
{
    QPoint offset;
    if (isPixelOnPixel(painter, &offset)) {
        paint(painter, rect);
        return;
    }
    const QRect part = alignedTo(rect, reductionFor(painter)) & frame;
    QImage picture(part.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter together(&picture);
    together.translate(-part.topLeft());
    paint(&together, part);
    together.end();
    paintPicture(painter, picture, part.topLeft(), rect);
}

QPixmap transparentPixmap(QSize size)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

} // namespace

int Scene::Private::composedFrame() const
{
    return hasScrubFrame() ? scrubFrame : frameInRange();
}

QPixmap Scene::framePixmap() const
{
    return d->hasPicture() ? d->composeFrame().pixmap() : QPixmap();
}

QPixmap Scene::currentFramePixmap() const
{
    return d->hasPicture() ? d->composeCurrent().pixmap() : QPixmap();
}

QPixmap Scene::backlightPixmap() const
{
    if (!d->hasPicture())
        return {};
    const PictureCache &backlight = d->composeBacklight();
    return backlight.image().isNull() ? transparentPixmap(d->frameSize) : backlight.pixmap();
}

void Scene::updateCachedFramePixmap(bool updateBacklight)
{
    if (!d->hasVisualLayer()) {
        // Only the last layer's leave-taking is left to do.
        d->markStale();
        d->tellBacklightFrames();
        return;
    }
    updateCachedCurrentFramePixmap();
    if (updateBacklight)
        updateCachedBacklightPixmap();
}

void Scene::updateCachedFramePixmap()
{
    updateCachedFramePixmap(false);
}

void Scene::updateCachedCurrentFramePixmap()
{
    d->pixmapFrame = d->composedFrame();
    for (PictureCache *picture : {&d->currentPicture, &d->framePicture, &d->scrubPicture}) {
        if (d->hasPicture())
            picture->markStale();
        else
            picture->release();
    }
}

void Scene::Private::markStale()
{
    decideBacklightFrames();
    pixmapFrame = composedFrame();
    for (PictureCache *picture : {&currentPicture, &backlightPicture, &framePicture, &scrubPicture}) {
        if (hasPicture())
            picture->markStale();
        else
            picture->release();
    }
}

void Scene::Private::markBeforeTelling()
{
    if (!scene->signalsBlocked())
        markStale();
}

void Scene::recompose()
{
    d->markStale();
    d->tellBacklightFrames();
    emit rectChanged(d->frameRect());
}

// After a change that lies inside rect.
void Scene::recompose(QRect rect)
{
    d->decideBacklightFrames();
    if (d->backlightFrames != d->toldBacklightFrames) {
        recompose();
        return;
    }
    const QRect touched = rect | d->seenInBacklight(rect);
    if (d->pixmapFrame == 0 || d->pixmapFrame != d->composedFrame()) {
        d->markStale();
    } else {
        d->currentPicture.markStale(rect);
        for (PictureCache *picture : {&d->backlightPicture, &d->framePicture, &d->scrubPicture})
            picture->markStale(touched);
    }
    emit rectChanged(touched);
}

PictureCache &Scene::Private::composeCurrent()
{
    const QRect rect = currentPicture.begin(frameSize);
    if (rect.isEmpty())
        return currentPicture;
    QPainter painter(&currentPicture.canvas());
    scene->paintLayers(&painter, rect, pixmapFrame, activeLayerIdx);
    if (scene->isLayerShown(activeLayerIdx))
        scene->visualLayer(activeLayerIdx)->drawPlain(pixmapFrame, &painter, rect);
    addInk(currentPicture, pixmapFrame, rect);
    return currentPicture;
}

void Scene::Private::watchTools()
{
    if (toolWatch)
        return;
    standsOutOnShow = activeLayerStandsOut();
    const auto onToolChanged = [this] {
        const bool wasStandingOut = std::exchange(standsOutOnShow, activeLayerStandsOut());
        if (standsOutOnShow != wasStandingOut && hasPicture())
            emit scene->rectChanged(frameRect());
    };
    toolWatch = connect(ToolManager::instance(), &ToolManager::currentToolTypeChanged, scene, onToolChanged);
}

PictureCache &Scene::Private::composeFrame()
{
    watchTools();
    if (activeLayerStandsOut() != standsOutInPicture) {
        standsOutInPicture = !standsOutInPicture;
        framePicture.markStale();
    }
    const PictureCache &backlight = composeBacklight();
    if (!standsOutInPicture && backlight.ink().isEmpty())
        return composeCurrent();

    const QRect rect = framePicture.begin(frameSize);
    if (rect.isEmpty())
        return framePicture;
    framePicture.addInk(backlight.ink(), rect);
    if (standsOutInPicture) {
        QPainter painter(&framePicture.canvas());
        backlight.paint(&painter, rect);
        paintStandingOut(&painter, rect);
        addInk(framePicture, frameInRange(), rect);
    } else {
        const PictureCache &current = composeCurrent();
        framePicture.addInk(current.ink(), rect);
        framePicture.ink().forEachRun(
            rect, [&](QRect run) { blendPictures(framePicture.canvas(), backlight.image(), current.image(), run); });
    }
    return framePicture;
}

PictureCache &Scene::Private::composeScrub()
{
    const PictureCache &backlight = composeBacklight();
    if (scrubPictureFrame != scrubFrame)
        scrubPicture.markStale();
    scrubPictureFrame = scrubFrame;
    const QRect rect = scrubPicture.begin(frameSize);
    if (rect.isEmpty())
        return scrubPicture;
    QPainter painter(&scrubPicture.canvas());
    backlight.paint(&painter, rect);
    scene->paintLayers(&painter, rect, scrubFrame, -1);
    scrubPicture.addInk(backlight.ink(), rect);
    addInk(scrubPicture, scrubFrame, rect);
    return scrubPicture;
}

void Scene::Private::paintStandingOut(QPainter *painter, QRect rect) const
{
    const double opacity = painter->opacity();
    painter->setOpacity(opacity * faintOpacity);
    scene->paintLayers(painter, rect, frameInRange(), activeLayerIdx);
    painter->setOpacity(opacity);
    if (scene->isLayerShown(activeLayerIdx))
        scene->visualLayer(activeLayerIdx)->drawPlain(frameInRange(), painter, rect);
}

void Scene::Private::addInk(PictureCache &picture, int frameId, QRect rect) const
{
    for (int layerIdx = 0; layerIdx < layers.size(); ++layerIdx) {
        if (scene->isLayerShown(layerIdx))
            addInk(picture, *scene->visualLayer(layerIdx), frameId, rect);
    }
}

void Scene::Private::addInk(PictureCache &picture, const VisualLayer &layer, int frameId, QRect rect) const
{
    const QRect inked = layer.inkedRect(frameId) & rect;
    if (inked.isEmpty())
        return;
    const auto cell = layer.item(layer.shownFrame(frameId));
    const auto *drawing = cell ? dynamic_cast<const StrokeDrawing *>(cell->drawing.get()) : nullptr;
    if (drawing && drawing->size() == frameSize)
        picture.addInk(drawing->ink(), inked);
    else
        picture.addInk(inked);
}

// The shown layers from the bottom of the display order up, but for one (-1 for none).
void Scene::paintLayers(QPainter *painter, QRect rect, int frameId, int exceptLayerIdx) const
{
    for (auto it = d->visualToLayer.crbegin(); it != d->visualToLayer.crend(); ++it) {
        if (*it != exceptLayerIdx && isLayerShown(*it))
            visualLayer(*it)->drawPlain(frameId, painter, rect);
    }
}

void Scene::paintFrame(QPainter *painter, QRect rect) const
{
    rect &= d->frameRect();
    if (rect.isEmpty() || !d->hasPicture())
        return;
    if (d->hasScrubFrame() || !d->driver.hasActiveStroke()) {
        d->composeShown().paint(painter, rect);
        return;
    }
    paintTogether(painter, rect, d->frameRect(), [this](QPainter *together, QRect part) {
        paintBacklight(together, part);
        paintFrames(together, part);
        paintActiveStroke(together, part, 1.0);
    });
}

void Scene::paintFrames(QPainter *painter, QRect rect) const
{
    rect &= d->frameRect();
    if (rect.isEmpty() || !d->hasPicture())
        return;
    d->watchTools();
    if (!d->hasScrubFrame() && !d->driver.hasActiveStroke() && !activeLayerStandsOut()) {
        d->composeCurrent().paint(painter, rect);
        return;
    }
    paintTogether(painter, rect, d->frameRect(), [this](QPainter *together, QRect part) {
        if (d->hasScrubFrame())
            paintLayers(together, part, d->scrubFrame, -1);
        else if (d->driver.hasActiveStroke())
            paintLayers(together, part, d->frameInRange(), d->activeLayerIdx);
        else
            d->paintStandingOut(together, part);
    });
}

void Scene::paintActiveStroke(QPainter *painter, QRect rect, double opacity) const
{
    rect &= d->frameRect();
    if (rect.isEmpty() || d->hasScrubFrame() || !d->driver.hasActiveStroke() || !isLayerShown(d->activeLayerIdx))
        return;
    const double opacityBefore = painter->opacity();
    painter->setOpacity(opacityBefore * opacity);
    paintTogether(painter, rect, d->frameRect(), [this](QPainter *together, QRect part) {
        visualLayer(d->activeLayerIdx)->drawWithActiveStroke(d->frameInRange(), together, part, *activeStroke());
    });
    painter->setOpacity(opacityBefore);
}

} // namespace Model
