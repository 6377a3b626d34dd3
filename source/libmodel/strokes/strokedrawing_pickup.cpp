// What is picked up from a drawing, and what stays of it.

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/changedtiles.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/pathmask.h"
#include "libmodel/strokes/strokedrawing_p.h"

#include <QPainterPath>

namespace Model {

namespace {

constexpr double paperScale = 1.0;

bool isDrawable(const CompoundStroke &compound, QRect rect)
{
    constexpr qint64 mostEffort = qint64(1) << 33; // some seconds
    if (needsRenderer(compound) && !OffscreenRenderer::instance()->isInitialized())
        return false;
    return drawableChildren(compound, rect, mostEffort) == compound.count();
}

/// Draws \a rect of \a compound anew into \a picture, which begins at the pixel \a origin.
void redraw(QImage &picture, QPoint origin, const CompoundStroke &compound, QRect rect)
{
    const QRect part = rect.translated(-origin) & picture.rect();
    for (int y = part.top(); y <= part.bottom(); ++y)
        std::fill_n(picture.scanLine(y) + part.left(), part.width(), uchar(0));
    compound.render(picture, part, QTransform::fromTranslate(-origin.x(), -origin.y()), origin, paperScale);
}

/// Gives \a part its picture: that of \a whole where \a path keeps it, and \a changed drawn anew.
void tellPicture(CompoundStroke &part, const QImage &whole, const QPainterPath &path, const ChangedTiles &changed)
{
    QRect rect = grownByRim(part.boundingRect(), paperScale) & whole.rect();
    if (rect.isEmpty())
        return;
    // At even pixels, as everything that is drawn in parts.
    rect.setTopLeft({rect.left() & ~1, rect.top() & ~1});
    const QList<QRect> redrawn = changed.rects();
    if (!redrawn.isEmpty() && !isDrawable(part, rect))
        return;
    QImage picture = whole.copy(rect);
    if (!path.isEmpty())
        clearOutside(picture, rect.topLeft(), path, rect);
    for (const QRect &tile : redrawn)
        redraw(picture, rect.topLeft(), part, tile & rect);
    part.setPicture(picture, rect);
}

} // namespace

bool StrokeDrawing::cutPath(const QPainterPath &path)
{
    const bool wasWhole = d->isImageWhole();
    ChangedTiles changed(wasWhole ? d->image : QImage());
    if (!d->strokes->takeAway(path, d->reach(), changed))
        return false;
    // Where no mask was needed after all, taking a later stroke off again must find the strokes as they are.
    d->strokes->unwrap();
    const QRect cut = alignedBounds(path.boundingRect()) & d->frame();
    if (!wasWhole || isEmpty()) {
        rebuild(cut);
    } else {
        clearInside(d->image, QPoint(0, 0), path, cut);
        d->unscanned |= cut;
        for (const QRect &rect : changed.rects())
            rebuild(rect);
    }
    contentChanged();
    return true;
}

std::unique_ptr<CompoundStroke> StrokeDrawing::extract(const QPainterPath &path) const
{
    auto part = std::make_unique<CompoundStroke>(*d->strokes);
    ChangedTiles changed(d->isImageWhole() ? d->image : QImage());
    if (!path.isEmpty() && !part->limitTo(path, d->reach(), changed))
        return part;
    if (d->isImageWhole())
        tellPicture(*part, d->image, path, changed);
    return part;
}

bool StrokeDrawing::collapse(int scale, QRect rect, Progress *progress)
{
    if (!d->strokes->collapse(scale, rect, progress))
        return false;
    contentChanged();
    rebuild(d->frame());
    return true;
}

} // namespace Model
