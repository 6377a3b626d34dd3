#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QRgb>
#include <QSize>

namespace Model {

/// An empty coverage image (QImage::Format_Alpha8, all 0) of \a size; null if \a size is empty.
[[nodiscard]] QImage blankCoverage(QSize size);

/// The bytes that a coverage image of \a size takes: its rows are filled up to whole multiples of 4 bytes. 0 for an
/// empty size.
[[nodiscard]] qint64 coverageBytes(QSize size);

/// A blank coverage image for a part of a larger one.
struct CoveragePart
{
    /// The part holds \a rect of the larger image, which is not empty, and up to a pixel more to the left and the top.
    ///
    /// It begins at even coordinates: the renderer takes derivatives over blocks of 2 x 2 pixels, and only with the
    /// same blocks does a part look exactly like the whole.
    explicit CoveragePart(QRect rect);

    QPoint origin; ///< The larger image's pixel that is the first of the part.
    QImage image;
};

/// \a coverage as a picture in the colours of \a colorTable. The bytes are shared, not copied: the result is only to be
/// read, and only as long as \a coverage lives unchanged.
[[nodiscard]] QImage indexedView(const QImage &coverage, const QList<QRgb> &colorTable);

} // namespace Model
