#pragma once

#include <QPoint>
#include <QRect>

#include <array>

class QImage;

namespace Model {

/// Results of compositing one byte of coverage on another: `table[destination][source]`.
using CompositingTable = std::array<std::array<uchar, 256>, 256>;

/// Computes both compositing tables. May be called more than once; the tables compute themselves at first use, too.
void initializeCompositingTables();

/// A pen adds coverage: d + (255 - d) * s / 255, cut to an integer.
const CompositingTable &penTable();

/// An eraser takes coverage away: (255 - s) * d / 255, cut to an integer.
const CompositingTable &eraserTable();

/// Composites \a source on \a destination, both of one byte per pixel, by the pen's or the eraser's table.
///
/// \a rect is in pixels of \a source; the pixel at p lands on p + \a offset. What lies outside of either image is left
/// out. Does nothing for null images or images of another depth.
void composite(QImage &destination, const QImage &source, QRect rect, bool isPen, QPoint offset = {});

/// Like composite(), but each pixel of \a destination becomes the larger of the two.
void compositeMax(QImage &destination, const QImage &source, QRect rect, QPoint offset);

} // namespace Model
