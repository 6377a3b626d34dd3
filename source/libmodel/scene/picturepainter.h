#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

class QPainter;

namespace Model {

class InkTiles;

// Pictures (Format_ARGB32_Premultiplied) that are shown small. A painter takes four pixels of a picture for one of its
// own; below half the size it would step over the others, and lines would fall to pieces. So the picture is averaged
// down first, by a power of two, until what is left for the painter is at least half the size.

/// The most that reductionFor() returns, and a multiple of all that it returns.
inline constexpr int largestReduction = 16;

/// By how much a picture is to be averaged down for \a painter: 1 (not at all), 2, 4, 8 or 16. 1 too for a painter that
/// does not smooth.
[[nodiscard]] int reductionFor(const QPainter *painter);

/// The smallest rectangle around \a rect whose sides are multiples of \a step, which is above 0.
[[nodiscard]] QRect alignedTo(QRect rect, int step);

/// \a part of \a picture, its sides multiples of \a factor, averaged down: one pixel for each square of \a factor. What
/// of \a part lies outside of the picture repeats its edge. With \a ink, the map of the picture, what holds no ink is
/// not looked at.
[[nodiscard]] QImage reducedPicture(const QImage &picture, QRect part, int factor, const InkTiles *ink = nullptr);

/// Paints what \a picture holds of \a rect; its top left pixel belongs at \a origin, a multiple of
/// reductionFor(\a painter) in both directions. All are in the painter's coordinates. \a ink, if given, is the map of
/// the picture.
void paintPicture(QPainter *painter, const QImage &picture, QPoint origin, QRect rect, const InkTiles *ink = nullptr);

} // namespace Model
