#pragma once

#include <QRect>
#include <QTransform>

class QImage;

namespace Model {

/// What \a source (one byte per pixel) looks like under a transform, interpolated between its four nearest pixels.
///
/// Makes \a pixels of the result; \a toSource maps from there to the pixels of \a source. Pixels whose centre falls
/// outside of \a source are 0. Each is reckoned by itself, so it is the same byte whatever \a pixels are asked for: a
/// painter, which goes through a row in steps, rounds them differently depending on where it begins.
/// \return a coverage image of the size of \a pixels, which are not empty.
[[nodiscard]] QImage sampledSmoothly(const QImage &source, const QTransform &toSource, QRect pixels);

} // namespace Model
