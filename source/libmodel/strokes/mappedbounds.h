#pragma once

#include <QRect>
#include <QRectF>
#include <QTransform>

namespace Model {

/// No pixel or paper coordinate lies further out than this; sums and products of a few of them still fit an int.
inline constexpr int coordinateLimit = 1 << 26;

/// The pixels that enclose \a rect, clipped to coordinateLimit; null if it is empty, infinite or undefined.
[[nodiscard]] QRect alignedBounds(const QRectF &rect);

/// The pixels that enclose \a rect mapped by \a transform, clipped to coordinateLimit; null for an empty \a rect.
///
/// Safe for any transform: where one maps to nowhere (infinite or undefined numbers), the result is null.
[[nodiscard]] QRect mappedBounds(const QTransform &transform, QRect rect);

/// \a rect (image pixels) with room for the anti-aliased rim of strokes drawn at \a renderScale; null stays null.
[[nodiscard]] QRect grownByRim(QRect rect, double renderScale);

/// True if \a rect, turned as \a transform turns it, meets \a dirtyRect.
[[nodiscard]] bool mappedRectMeets(const QTransform &transform, QRect rect, QRect dirtyRect);

} // namespace Model
