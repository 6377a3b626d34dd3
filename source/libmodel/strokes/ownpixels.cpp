#include "libmodel/strokes/ownpixels.h"

#include "libmodel/strokes/mappedbounds.h"

#include <cmath>

namespace Model {

namespace {

/// Rounded to a fraction of a power of two: sums and differences with whole pixels leave traces in the last bits.
double withoutTraces(double value, double parts)
{
    return std::round(value * parts) / parts;
}

QRectF withoutTraces(const QRectF &rect)
{
    constexpr double parts = 1 << 10;
    const QPointF topLeft(withoutTraces(rect.left(), parts), withoutTraces(rect.top(), parts));
    const QPointF bottomRight(withoutTraces(rect.right(), parts), withoutTraces(rect.bottom(), parts));
    return {topLeft, bottomRight};
}

bool isOdd(double value)
{
    return std::fmod(std::floor(value), 2.0) != 0.0;
}

/// \a first, or one less so that it is even, counted from the pixel that \a shift leads to. In double precision, for
/// any shift.
int pairedWith(int first, double shift, bool oddPairs)
{
    return isOdd(first - std::floor(shift)) != oddPairs ? first - 1 : first;
}

} // namespace

OwnPixels::OwnPixels(QRect paperBounds, const QTransform &transform, double renderScale, bool oddRowPairs)
{
    constexpr double parts = 1 << 20;
    if (paperBounds.isEmpty())
        return;
    const QRect pixels = grownByRim(alignedBounds(withoutTraces(transform.mapRect(QRectF(paperBounds)))), renderScale);
    if (pixels.isEmpty())
        return;
    const double dx = withoutTraces(transform.dx(), parts);
    const double dy = withoutTraces(transform.dy(), parts);
    origin = {pairedWith(pixels.left(), dx, false), pairedWith(pixels.top(), dy, oddRowPairs)};
    bounds = pixels.translated(-origin);
    toOwn = QTransform(transform.m11(), transform.m12(), transform.m21(), transform.m22(),
                       withoutTraces(transform.dx() - origin.x(), parts),
                       withoutTraces(transform.dy() - origin.y(), parts));
}

} // namespace Model
