#pragma once

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/inktiles.h"
#include "libmodel/strokes/rendereffort.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QHash>
#include <QImage>

#include <algorithm>

namespace Model {

struct StrokeDrawing::Private
{
    QSize size;
    QImage image;
    QHash<QRgb, QImage> thumbnails;
    QSize thumbnailSize;
    std::unique_ptr<CompoundStroke> strokes = std::make_unique<CompoundStroke>();
    /// The map of image, right but for what lies in unscanned.
    InkTiles ink;
    QRect unscanned;
    QRect touched;
    bool isShownInPart = false; ///< image lacks some of the strokes
    bool isRationed = false;    ///< drawing what the file told turned out to be beyond all bounds

    /// The most work that is tried for drawing all of the strokes.
    [[nodiscard]] qint64 effortForAll() const
    {
        // What a hand has made is always drawn whole: 20,000 segments of the widest pen in the largest frame, which
        // takes a software driver some minutes and a graphics card seconds.
        constexpr qint64 handMade = qint64(1) << 38;
        return isRationed ? effortForPart() : handMade;
    }
    /// The most work for drawing some of the strokes, where there are more than that.
    [[nodiscard]] qint64 effortForPart() const
    {
        // Some seconds' work for a software driver: 100,000 short segments, or the whole frame 60 times over with the
        // widest pen. A hand can do more in a day, but this program stores the image, and what comes without one is
        // not that rich.
        constexpr qint64 leastLimit = qint64(1) << 32;
        constexpr qint64 perPixel = 512;
        return std::max(leastLimit, perPixel * size.width() * size.height());
    }
    /// How many children of \a compound, from the oldest on, are drawn in \a rect with an effort of \a limit at most,
    /// which \a effort tells.
    int drawableIn(const CompoundStroke &compound, QRect rect, qint64 limit, qint64 *effort) const
    {
        const int drawable = drawableChildren(compound, rect, std::min(limit, effortForAll()), effort);
        if (drawable == compound.count() || isRationed)
            return drawable;
        return drawableChildren(compound, rect, std::min(limit, effortForPart()), effort);
    }
    [[nodiscard]] QRect frame() const { return {QPoint(0, 0), size}; }
    /// The frame and as much again on each side: what lies further out is of no interest.
    [[nodiscard]] QRect reach() const
    {
        return frame().adjusted(-size.width(), -size.height(), size.width(), size.height());
    }
    /// Is image the picture of all strokes?
    [[nodiscard]] bool isImageWhole() const { return !isShownInPart && !image.isNull() && image.size() == size; }
};

} // namespace Model
