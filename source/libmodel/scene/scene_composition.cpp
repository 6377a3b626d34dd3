// The composed pixmaps and what the paper paints. Costs follow the inked rectangles of the drawings, not the frame.

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/singlestroke.h"

#include <QPainter>

namespace Model {

namespace {

/// Pixels around the ink that go along when it is painted scaled: a smooth edge needs its transparent neighbours.
constexpr int smoothEdge = 2;

} // namespace

int Scene::Private::composedFrame() const
{
    return hasScrubFrame() ? scrubFrame : frameInRange();
}

QPixmap Scene::framePixmap() const
{
    return d->framePixmap;
}

QPixmap Scene::currentFramePixmap() const
{
    return d->currentFramePixmap;
}

void Scene::updateCachedFramePixmap(bool updateBacklight)
{
    // Nothing shines through yet, so there is nothing of it to update.
    Q_UNUSED(updateBacklight)
    updateCachedCurrentFramePixmap();
    d->framePixmap = d->currentFramePixmap;
}

void Scene::updateCachedFramePixmap()
{
    updateCachedFramePixmap(false);
}

void Scene::updateCachedCurrentFramePixmap()
{
    // A share in the pixels would make the painter below copy them all.
    d->framePixmap = {};
    if (d->frameSize.isEmpty() || !d->hasVisualLayer()) {
        d->currentFramePixmap = {};
        d->composedRect = {};
        d->pixmapFrame = 0;
        return;
    }
    if (d->currentFramePixmap.size() != d->frameSize) {
        d->currentFramePixmap = QPixmap(d->frameSize);
        d->currentFramePixmap.fill(Qt::transparent);
        d->composedRect = {};
    }
    d->pixmapFrame = d->composedFrame();
    QRect rect = d->composedRect;
    for (int layerIdx = 0; layerIdx < layerCount(); ++layerIdx) {
        if (isLayerShown(layerIdx))
            rect |= visualLayer(layerIdx)->inkedRect(d->pixmapFrame);
    }
    compose(rect);
}

// Makes the pixels of rect anew from the layers at pixmapFrame; the others must be right already.
void Scene::compose(QRect rect)
{
    rect &= d->frameRect();
    if (!rect.isEmpty()) {
        QPainter painter(&d->currentFramePixmap);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        paintLayers(&painter, rect, d->pixmapFrame, d->activeLayerIdx);
        if (isLayerShown(d->activeLayerIdx))
            visualLayer(d->activeLayerIdx)->drawPlain(d->pixmapFrame, &painter, rect);
    }
    d->composedRect = {};
    for (int layerIdx = 0; layerIdx < layerCount(); ++layerIdx) {
        if (isLayerShown(layerIdx))
            d->composedRect |= visualLayer(layerIdx)->inkedRect(d->pixmapFrame);
    }
}

void Scene::recompose()
{
    updateCachedFramePixmap(true);
    emit rectChanged(d->frameRect());
}

// After a change that lies inside rect.
void Scene::recompose(QRect rect)
{
    if (d->currentFramePixmap.size() == d->frameSize && d->pixmapFrame == d->composedFrame() && d->pixmapFrame != 0) {
        d->framePixmap = {};
        compose(rect);
        d->framePixmap = d->currentFramePixmap;
    } else {
        updateCachedFramePixmap(true);
    }
    emit rectChanged(rect);
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
    if (rect.isEmpty())
        return;
    if (d->hasScrubFrame()) {
        paintLayers(painter, rect, d->scrubFrame, -1);
        return;
    }
    if (!d->driver.hasActiveStroke()) {
        const QRect inked = d->composedRect.adjusted(-smoothEdge, -smoothEdge, smoothEdge, smoothEdge) & rect;
        if (!d->composedRect.isEmpty() && !inked.isEmpty())
            painter->drawPixmap(inked, d->framePixmap, inked);
        return;
    }
    paintLayers(painter, rect, d->frameInRange(), d->activeLayerIdx);
    if (isLayerShown(d->activeLayerIdx))
        visualLayer(d->activeLayerIdx)->drawWithActiveStroke(d->frameInRange(), painter, rect, *activeStroke());
}

} // namespace Model
