#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QRgb>

class QPainter;

namespace Model {

class InkTiles;

/// Paints the part \a part (pixels of \a coverage, an image of one byte per pixel) of a drawing in the colours of
/// \a colorTable (256 entries, not premultiplied), its top left pixel coming to \a at of the painter's coordinates.
///
/// Painter and picture allowing (an image of Format_ARGB32_Premultiplied, pixel on pixel, no clipping), the ink is
/// blended straight into the image, which for line art is many times as fast as the painter. \a ink, if given, is the
/// map of \a coverage.
void paintCoverage(QPainter *painter, QPoint at, const QImage &coverage, QRect part, const QList<QRgb> &colorTable,
                   const InkTiles *ink = nullptr);

/// Where \a painter puts pixels exactly on pixels, the way from its coordinates to those of its device in \a offset.
/// \return false when it scales, turns or shifts by parts of a pixel.
[[nodiscard]] bool isPixelOnPixel(const QPainter *painter, QPoint *offset);

} // namespace Model
