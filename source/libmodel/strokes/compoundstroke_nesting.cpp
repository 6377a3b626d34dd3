#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/rendereffort.h"

#include <algorithm>
#include <utility>

namespace Model {

namespace {

/// Levels of a compound that has become too deep that stay what they are.
constexpr int keptLevels = CompoundStroke::maximumDepth / 2 - 1;

constexpr double paperScale = 1.0;

/// The part of the paper in which \a stroke is made pixels of.
QRect pixelBounds(const Stroke &stroke)
{
    // Around a frame of any size; ink further out has never been seen.
    constexpr QRect reach(-4096, -4096, 16384, 16384);
    return grownByRim(stroke.boundingRect(), paperScale) & reach;
}

/// What \a stroke looks like, for where it is too deep down to be kept as it is; null if it has no ink.
std::unique_ptr<Stroke> pixelsOf(const Stroke &stroke)
{
    const QRect bounds = pixelBounds(stroke);
    if (bounds.isEmpty())
        return nullptr;
    QImage image = blankCoverage(bounds.size());
    stroke.render(image, image.rect(), QTransform::fromTranslate(-bounds.x(), -bounds.y()), bounds.topLeft(),
                  paperScale);
    return std::make_unique<BitmapStroke>(image, bounds);
}

/// True if pixels can be made of \a stroke with an effort of \a effortLeft, from which it is taken.
bool canBePixels(const CompoundStroke &stroke, qint64 &effortLeft)
{
    constexpr qint64 memoryPasses = 64; // the pixels stay, which weighs more than drawing them
    if (needsRenderer(stroke) && !OffscreenRenderer::instance()->isInitialized())
        return false;
    const QRect bounds = pixelBounds(stroke);
    qint64 effort = 0;
    const bool isDrawable = drawableChildren(stroke, bounds, effortLeft, &effort) == stroke.count();
    effortLeft -= effort + (bounds.isEmpty() ? 0 : memoryPasses * bounds.width() * bounds.height());
    return isDrawable && effortLeft >= 0;
}

} // namespace

int CompoundStroke::nesting() const
{
    int deepest = 0;
    for (const auto &stroke : d->strokes) {
        if (stroke->type() == Type::Compound)
            deepest = std::max(deepest, static_cast<const CompoundStroke &>(*stroke).nesting());
    }
    return deepest + 1;
}

// Every cut that is drawn over wraps what there was once more, and nothing must become too deep to be read again. Half
// of the levels, more than can be undone, stay what they are.
void CompoundStroke::limitNesting(Stroke &child)
{
    if (child.type() == Type::Compound && static_cast<CompoundStroke &>(child).isAtMaximumDepth())
        static_cast<CompoundStroke &>(child).flattenBelow(keptLevels);
}

bool CompoundStroke::isAtMaximumDepth() const
{
    return nesting() >= maximumDepth;
}

// Content of a file may be as deep as it may be from the start, and take any effort.
bool CompoundStroke::canGoDeeper() const
{
    qint64 effortLeft = qint64(1) << 34; // some seconds, once in a thousand cuts
    return !isAtMaximumDepth() || canFlattenBelow(keptLevels, effortLeft);
}

bool CompoundStroke::canAppend(const Stroke &stroke) const
{
    if (isWrappedByAppend() && !canGoDeeper())
        return false;
    return stroke.type() != Type::Compound || static_cast<const CompoundStroke &>(stroke).canGoDeeper();
}

bool CompoundStroke::isWrappedByAppend() const
{
    return !isEmpty() && (hasMasks() || !d->transform.isIdentity());
}

bool CompoundStroke::canFlattenBelow(int levels, qint64 &effortLeft) const
{
    return std::all_of(d->strokes.begin(), d->strokes.end(), [&](const auto &stroke) {
        if (stroke->type() != Type::Compound)
            return true;
        const auto &compound = static_cast<const CompoundStroke &>(*stroke);
        return levels > 1 ? compound.canFlattenBelow(levels - 1, effortLeft) : canBePixels(compound, effortLeft);
    });
}

void CompoundStroke::flattenBelow(int levels)
{
    for (auto &stroke : d->strokes) {
        if (stroke->type() != Type::Compound)
            continue;
        if (levels > 1)
            static_cast<CompoundStroke &>(*stroke).flattenBelow(levels - 1);
        else
            stroke = pixelsOf(*stroke);
    }
    std::erase(d->strokes, nullptr);
    recompute();
}

CompoundStroke::Scratch CompoundStroke::scratchNeeded(QRect rect, const QTransform &transform, double renderScale) const
{
    const QTransform own = d->transform * transform;
    Scratch most;
    bool isFirst = true;
    for (const auto &stroke : d->strokes) {
        // The first child draws where nothing is, and needs no image of its own.
        const bool needsOwn = !std::exchange(isFirst, false);
        if (stroke->type() != Type::Compound)
            continue;
        const QRect touched = grownByRim(mappedBounds(own, stroke->boundingRect()), renderScale) & rect;
        if (touched.isEmpty())
            continue;
        Scratch needed = static_cast<const CompoundStroke &>(*stroke).scratchNeeded(touched, own, renderScale);
        if (needsOwn)
            needed.add(touched);
        most.bytes = std::max(most.bytes, needed.bytes);
        most.bytesPerRow = std::max(most.bytesPerRow, needed.bytesPerRow);
    }
    return most;
}

void CompoundStroke::Scratch::add(QRect rect)
{
    const int width = rect.width() + 1; // with the column that a CoveragePart may have more
    bytes += coverageBytes({width, rect.height() + 1});
    bytesPerRow += coverageBytes({width, 1});
}

int CompoundStroke::rowsAtOnce(QRect rect, const QTransform &transform, double renderScale) const
{
    constexpr qint64 scratchBytes = qint64(256) << 20;
    constexpr int alwaysNeeded = 3; // one for the group itself, one for a line or bitmap, one for a mask
    Scratch scratch = scratchNeeded(rect, transform, renderScale);
    for (int i = 0; i < alwaysNeeded; ++i)
        scratch.add(rect);
    if (rect.isEmpty() || scratch.bytes <= scratchBytes)
        return rect.height();
    // An even number of rows keeps the blocks of CoveragePart whole.
    return int(std::clamp<qint64>((scratchBytes / scratch.bytesPerRow) & ~1, 2, rect.height() + 1));
}

} // namespace Model
