#pragma once

#include "libmodel/strokes/pixelspans.h"

#include <QRect>

#include <optional>

class QPainterPath;
class QTransform;

namespace Model {

/// Which pixels an outline encloses, without looking at any.
struct PathPixels
{
    PixelSpans inside; ///< Those with their middle in the path.
    PixelSpans rim;    ///< Those that its line may pass through, and some around: all that a soft mask covers in part.

    /// All that the path may cover, be it by a trace.
    [[nodiscard]] PixelSpans touched() const { return inside.unitedWith(rim); }
    /// Those that it certainly covers in whole.
    [[nodiscard]] PixelSpans full() const { return inside.without(rim); }

    /// The pixels in \a area of \a path as \a transform maps it. Takes the steps of work from \a workLeft; nothing
    /// where there are not as many left, and for a path that leads nowhere.
    [[nodiscard]] static std::optional<PathPixels> of(const QPainterPath &path, const QTransform &transform, QRect area,
                                                      qint64 &workLeft);
};

} // namespace Model
