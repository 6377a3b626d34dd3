#pragma once

#include <QPoint>
#include <QRect>
#include <QTransform>

namespace Model {

/// The pixels of something drawn, counted from its own top left and not from that of an image or of a part of it.
///
/// Numbers are rounded, by the graphics driver for one, and what they are rounded to depends on how large they are. In
/// its own pixels a stroke has the same numbers always, wherever it lies, however much of it is asked for and whatever
/// it is drawn into: so it always makes the same bytes.
struct OwnPixels
{
    /// Of what lies in \a paperBounds (paper coordinates) and is drawn under \a transform, from paper coordinates to
    /// pixels of an image, at \a renderScale.
    ///
    /// The renderer works on blocks of 2 x 2 pixels, of which each pixel's look depends a little. They lie as they did
    /// on the paper while it was drawn: from even columns and rows on, or from odd rows on if \a oddRowPairs.
    OwnPixels(QRect paperBounds, const QTransform &transform, double renderScale, bool oddRowPairs = false);

    QRect bounds;     ///< The pixels it can have ink in, counted from \a origin; null if it has none.
    QPoint origin;    ///< The image's pixel that is the first one.
    QTransform toOwn; ///< From paper coordinates to own pixels.
};

} // namespace Model
