#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/singlestroke.h"

#include <QImage>
#include <QPainter>

#include <algorithm>

namespace Model {

namespace {

/// Takes away from \a image what \a mask covers, whose top left lies at \a topLeft of \a image.
void eraseByMask(QImage &image, const QImage &mask, QPoint topLeft)
{
    composite(image, mask, mask.rect(), false, topLeft);
}

void fill(QImage &mask, const QPainterPath &path, QPoint origin, QPainter::CompositionMode mode, const QColor &color)
{
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(mode);
    painter.translate(-origin);
    painter.fillPath(path, color);
}

} // namespace

/// Where a compound draws: an image that may show only a part of the target. Rectangles are always in the target's
/// pixels, so that nothing moves when the image does.
struct CompoundStroke::Canvas
{
    QImage &image;
    QPoint origin;        ///< The target's pixel that is the image's first.
    QTransform transform; ///< From the compound's coordinates to the target's pixels.
    QPoint textureOffset; ///< Of the target.
    double renderScale;

    [[nodiscard]] QTransform toImage() const { return transform * QTransform::fromTranslate(-origin.x(), -origin.y()); }

    /// The pixels that \a stroke, in the compound's coordinates, can have ink in.
    [[nodiscard]] QRect inkBounds(const Stroke &stroke) const
    {
        return grownByRim(mappedBounds(transform, stroke.boundingRect()), renderScale);
    }

    QRect render(const Stroke &stroke, QRect rect) const
    {
        return stroke.render(image, rect.translated(-origin), toImage(), textureOffset + origin, renderScale);
    }

    void clearInside(const QPainterPath &path, QRect rect) const
    {
        const QPainterPath region = transform.map(path);
        const QRect cut = rect & alignedBounds(region.boundingRect());
        if (cut.isEmpty())
            return;
        QImage mask = blankCoverage(cut.size());
        fill(mask, region, cut.topLeft(), QPainter::CompositionMode_Source, Qt::black);
        eraseByMask(image, mask, cut.topLeft() - origin);
    }

    void clearOutside(const QPainterPath &path, QRect rect) const
    {
        QImage mask = blankCoverage(rect.size());
        mask.fill(255);
        fill(mask, transform.map(path), rect.topLeft(), QPainter::CompositionMode_Source, Qt::transparent);
        eraseByMask(image, mask, rect.topLeft() - origin);
    }
};

QRect CompoundStroke::render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                             double renderScale) const
{
    const QRect bounds = grownByRim(mappedBounds(transform, boundingRect()), renderScale);
    const QRect rect = dirtyRect & target.rect() & bounds;
    if (rect.isEmpty())
        return {};
    const int rows = rowsAtOnce(rect, transform, renderScale);
    QRect touched;
    for (int top = rect.top(); top <= rect.bottom(); top += rows) {
        const QRect band(rect.left(), top, rect.width(), std::min(rows, rect.bottom() - top + 1));
        touched |= renderBand(target, band, transform, textureOffset, renderScale);
    }
    return touched;
}

QRect CompoundStroke::renderBand(QImage &target, QRect rect, const QTransform &transform, QPoint textureOffset,
                                 double renderScale) const
{
    CoveragePart local(rect);
    const QRect touched = drawOnBlank({local.image, local.origin, transform, textureOffset, renderScale}, rect);
    if (!touched.isEmpty())
        composite(target, local.image, touched.translated(-local.origin), true, local.origin);
    return touched;
}

// Draws into a canvas that holds nothing within rect, which saves a scratch image and its compositing.
QRect CompoundStroke::drawOnBlank(const Canvas &canvas, QRect rect) const
{
    const Canvas own{canvas.image, canvas.origin, d->transform * canvas.transform, canvas.textureOffset,
                     canvas.renderScale};
    const QRect touched = drawChildren(own, rect);
    if (touched.isEmpty())
        return {};
    if (!d->cutPath.isEmpty())
        own.clearInside(d->cutPath, touched);
    if (!d->keepPath.isEmpty())
        own.clearOutside(d->keepPath, touched);
    return touched;
}

QRect CompoundStroke::drawChildren(const Canvas &canvas, QRect rect) const
{
    QRect touched;
    for (const auto &stroke : d->strokes) {
        const QRect childRect = canvas.inkBounds(*stroke) & rect;
        if (childRect.isEmpty())
            continue;
        switch (stroke->type()) {
        case Type::Single:
            touched |= drawSingle(canvas, static_cast<const SingleStroke &>(*stroke), childRect, touched);
            break;
        case Type::Compound:
            touched |= drawCompound(canvas, static_cast<const CompoundStroke &>(*stroke), childRect, touched);
            break;
        case Type::Bitmap:
            touched |= canvas.render(*stroke, childRect).translated(canvas.origin);
            break;
        }
    }
    return touched;
}

QRect CompoundStroke::drawSingle(const Canvas &canvas, const SingleStroke &stroke, QRect rect, QRect touched)
{
    // An eraser has nothing to do where nothing has been drawn; a pen may draw there without a detour.
    const QRect needed = stroke.isPen() ? rect : rect & touched;
    if (needed.isEmpty())
        return {};
    if (!needed.intersects(touched))
        return canvas.render(stroke, needed).isEmpty() ? QRect() : needed;
    CoveragePart scratch(needed);
    const Canvas own{scratch.image, scratch.origin, canvas.transform, canvas.textureOffset, canvas.renderScale};
    if (own.render(stroke, needed).isEmpty())
        return {};
    composite(canvas.image, scratch.image, needed.translated(-scratch.origin), stroke.isPen(),
              scratch.origin - canvas.origin);
    return needed;
}

QRect CompoundStroke::drawCompound(const Canvas &canvas, const CompoundStroke &compound, QRect rect, QRect touched)
{
    if (!rect.intersects(touched))
        return compound.drawOnBlank(canvas, rect);
    CoveragePart scratch(rect);
    const Canvas own{scratch.image, scratch.origin, canvas.transform, canvas.textureOffset, canvas.renderScale};
    const QRect drawn = compound.drawOnBlank(own, rect);
    if (!drawn.isEmpty())
        composite(canvas.image, scratch.image, drawn.translated(-scratch.origin), true, scratch.origin - canvas.origin);
    return drawn;
}

} // namespace Model
