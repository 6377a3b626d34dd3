#include "libmodel/base/progress.h"
#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/linequeue.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/pathmask.h"
#include "libmodel/strokes/singlestroke.h"

#include <QImage>

#include <algorithm>
#include <limits>
#include <utility>

namespace Model {

/// Where a compound draws: an image that may show only a part of the target. Rectangles are always in the target's
/// pixels, so that nothing moves when the image does.
struct CompoundStroke::Canvas
{
    QImage &image;
    QPoint origin;        ///< The target's pixel that is the image's first.
    QTransform transform; ///< From the compound's coordinates to the target's pixels.
    QPoint textureOffset; ///< Of the target.
    double renderScale;
    Progress *progress; ///< May be null.

    /// The same with \a own in the place of the transform.
    [[nodiscard]] Canvas with(const QTransform &own) const
    {
        return {image, origin, own, textureOffset, renderScale, progress};
    }

    /// A canvas like this one with the image of \a part.
    [[nodiscard]] Canvas on(CoveragePart &part) const
    {
        return {part.image, part.origin, transform, textureOffset, renderScale, progress};
    }

    [[nodiscard]] bool isCancelled() const { return progress && progress->wasCancelled(); }

    /// So many strokes and compounds more are done with.
    void advance(int steps) const
    {
        for (int i = 0; i < steps && progress; ++i) {
            progress->advance();
            progress->poll();
        }
    }

    [[nodiscard]] QTransform toImage() const { return transform * QTransform::fromTranslate(-origin.x(), -origin.y()); }

    [[nodiscard]] LineView lineView() const { return {toImage(), textureOffset + origin, renderScale}; }

    /// The pixels that \a stroke, in the compound's coordinates, can have ink in.
    [[nodiscard]] QRect inkBounds(const Stroke &stroke) const
    {
        return grownByRim(mappedBounds(transform, stroke.boundingRect()), renderScale);
    }

    void clearInside(const QPainterPath &path, QRect rect) const
    {
        Model::clearInside(image, origin, transform.map(path), rect);
    }

    void clearOutside(const QPainterPath &path, QRect rect) const
    {
        Model::clearOutside(image, origin, transform.map(path), rect);
    }
};

QRect CompoundStroke::render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                             double renderScale) const
{
    return render(target, dirtyRect, transform, textureOffset, renderScale, nullptr);
}

QRect CompoundStroke::render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                             double renderScale, Progress *progress) const
{
    const QRect bounds = grownByRim(mappedBounds(transform, boundingRect()), renderScale);
    const QRect rect = dirtyRect & target.rect() & bounds;
    const int rows = rowsAtOnce(rect, transform, renderScale);
    const int bands = rect.isEmpty() ? 0 : (rect.height() - 1) / rows + 1;
    const Canvas canvas{target, {0, 0}, transform, textureOffset, renderScale, progress};
    if (bands == 0)
        canvas.advance(recursiveCount());
    else if (bands > 1 && progress)
        progress->setSteps(int(std::min<qint64>(qint64(bands) * recursiveCount(), std::numeric_limits<int>::max())), 0);
    QRect touched;
    for (int band = 0; band < bands && !canvas.isCancelled(); ++band) {
        const int top = rect.top() + band * rows;
        touched |= drawBand(canvas, {rect.left(), top, rect.width(), std::min(rows, rect.bottom() - top + 1)});
    }
    return canvas.isCancelled() ? QRect() : touched;
}

QRect CompoundStroke::drawBand(const Canvas &target, QRect rect) const
{
    CoveragePart local(rect);
    const QRect touched = drawOnBlank(target.on(local), rect);
    if (!touched.isEmpty())
        composite(target.image, local.image, touched.translated(-local.origin), true, local.origin);
    return touched;
}

// Draws into a canvas that holds nothing within rect, which saves a scratch image and its compositing.
QRect CompoundStroke::drawOnBlank(const Canvas &canvas, QRect rect) const
{
    const Canvas own = canvas.with(d->transform * canvas.transform);
    const QRect touched = drawChildren(own, rect);
    if (!touched.isEmpty() && !d->cutPath.isEmpty())
        own.clearInside(d->cutPath, touched);
    if (!touched.isEmpty() && !d->keepPath.isEmpty())
        own.clearOutside(d->keepPath, touched);
    own.advance(1);
    return touched;
}

// Whoever is told of progress may look at other pictures meanwhile, so no lines are on their way then.
QRect CompoundStroke::drawChildren(const Canvas &canvas, QRect rect) const
{
    constexpr int linesAtOnce = 32;
    QRect touched;
    LineQueue lines(canvas.image);
    int steps = 0;
    const auto finishLines = [&] {
        lines.finish();
        canvas.advance(std::exchange(steps, 0));
    };
    for (const auto &stroke : d->strokes) {
        if (canvas.isCancelled())
            return {};
        const QRect childRect = canvas.inkBounds(*stroke) & rect;
        if (stroke->type() == Type::Single) {
            touched |= drawSingle(canvas, static_cast<const SingleStroke &>(*stroke), childRect, touched, lines);
            if (++steps == linesAtOnce && canvas.progress)
                finishLines();
            continue;
        }
        finishLines();
        if (stroke->type() == Type::Compound)
            touched |= drawCompound(canvas, static_cast<const CompoundStroke &>(*stroke), childRect, touched);
        else
            touched |= drawBitmap(canvas, *stroke, childRect);
    }
    finishLines();
    return touched;
}

QRect CompoundStroke::drawSingle(const Canvas &canvas, const SingleStroke &stroke, QRect rect, QRect touched,
                                 LineQueue &lines)
{
    // An eraser has nothing to do where nothing has been drawn.
    const QRect needed = stroke.isPen() ? rect : rect & touched;
    if (!needed.isEmpty())
        lines.add(stroke.line(), needed.translated(-canvas.origin), canvas.lineView());
    return needed;
}

QRect CompoundStroke::drawBitmap(const Canvas &canvas, const Stroke &stroke, QRect rect)
{
    QRect touched;
    if (!rect.isEmpty()) {
        const LineView view = canvas.lineView();
        const QRect part = rect.translated(-canvas.origin);
        touched = stroke.render(canvas.image, part, view.transform, view.textureOffset, view.renderScale);
    }
    canvas.advance(1);
    return touched.translated(canvas.origin);
}

QRect CompoundStroke::drawCompound(const Canvas &canvas, const CompoundStroke &compound, QRect rect, QRect touched)
{
    if (rect.isEmpty()) {
        canvas.advance(canvas.progress ? compound.recursiveCount() : 0);
        return {};
    }
    if (!rect.intersects(touched))
        return compound.drawOnBlank(canvas, rect);
    CoveragePart scratch(rect);
    const QRect drawn = compound.drawOnBlank(canvas.on(scratch), rect);
    if (!drawn.isEmpty())
        composite(canvas.image, scratch.image, drawn.translated(-scratch.origin), true, scratch.origin - canvas.origin);
    return drawn;
}

} // namespace Model
