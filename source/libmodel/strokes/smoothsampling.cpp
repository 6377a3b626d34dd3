#include "libmodel/strokes/smoothsampling.h"

#include "libmodel/strokes/coverage.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace Model {

namespace {

constexpr int weights = 256;
constexpr double middle = 0.5;

/// A coordinate of a picture as the two pixels that it lies between.
struct Between
{
    int first;
    int second;
    int weightOfSecond; ///< Of 256.

    /// \a at is within a picture of \a count pixels; beyond the last one's middle there is only that one.
    Between(double at, int count)
    {
        const double fromMiddle = at - middle;
        const double below = std::floor(fromMiddle);
        first = std::max(int(below), 0);
        second = std::min(int(below) + 1, count - 1);
        weightOfSecond = int((fromMiddle - below) * weights);
    }
};

/// True if \a at falls on one of \a count pixels. What lies on an edge but for a rounding lies on it.
bool isWithin(double at, int count)
{
    constexpr double tolerance = 1.0 / 1024.0;
    return at >= -tolerance && at < count - tolerance;
}

int mix(int first, int second, int weightOfSecond)
{
    return first * (weights - weightOfSecond) + second * weightOfSecond;
}

} // namespace

QImage sampledSmoothly(const QImage &source, const QTransform &toSource, QRect pixels)
{
    constexpr int half = weights * weights / 2;
    QImage result = blankCoverage(pixels.size());
    if (source.depth() != 8)
        return result;
    for (int row = 0; row < result.height(); ++row) {
        uchar *out = result.scanLine(row);
        const double y = pixels.top() + row + middle;
        for (int column = 0; column < result.width(); ++column) {
            const double x = pixels.left() + column + middle;
            const double sourceX = toSource.m11() * x + toSource.m21() * y + toSource.dx();
            const double sourceY = toSource.m12() * x + toSource.m22() * y + toSource.dy();
            if (!isWithin(sourceX, source.width()) || !isWithin(sourceY, source.height()))
                continue;
            const Between across(sourceX, source.width());
            const Between down(sourceY, source.height());
            const uchar *upper = source.constScanLine(down.first);
            const uchar *lower = source.constScanLine(down.second);
            const int above = mix(upper[across.first], upper[across.second], across.weightOfSecond);
            const int below = mix(lower[across.first], lower[across.second], across.weightOfSecond);
            out[column] = uchar((mix(above, below, down.weightOfSecond) + half) / (weights * weights));
        }
    }
    return result;
}

} // namespace Model
