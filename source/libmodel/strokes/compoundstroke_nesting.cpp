#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/mappedbounds.h"

#include <algorithm>

namespace Model {

namespace {

/// What \a stroke looks like, for where it is too deep down to be kept as it is; null if it has no ink.
std::unique_ptr<Stroke> pixelsOf(const Stroke &stroke)
{
    // Around a frame of any size; ink further out has never been seen.
    constexpr QRect reach(-4096, -4096, 16384, 16384);
    constexpr double paperScale = 1.0;
    const QRect bounds = grownByRim(stroke.boundingRect(), paperScale) & reach;
    if (bounds.isEmpty())
        return nullptr;
    QImage image = blankCoverage(bounds.size());
    stroke.render(image, image.rect(), QTransform::fromTranslate(-bounds.x(), -bounds.y()), bounds.topLeft(),
                  paperScale);
    return std::make_unique<BitmapStroke>(image, bounds);
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
void CompoundStroke::limitNesting()
{
    if (nesting() > maximumDepth && OffscreenRenderer::instance()->isInitialized())
        flattenBelow(maximumDepth / 2);
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

int CompoundStroke::scratchDepth() const
{
    int deepest = 0;
    bool isFirst = true;
    for (const auto &stroke : d->strokes) {
        // The first child draws where nothing is, and needs no image of its own.
        int needed = isFirst ? 0 : 1;
        if (stroke->type() == Type::Compound)
            needed += static_cast<const CompoundStroke &>(*stroke).scratchDepth();
        deepest = std::max(deepest, needed);
        isFirst = false;
    }
    return deepest;
}

} // namespace Model
