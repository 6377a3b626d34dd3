#pragma once

#include <QList>
#include <QRgb>

class QColor;

namespace Model {

/// The 256 colours in which coverage 0 to 255 is painted.
///
/// \a color gives saturation and value, and its hue plus \a hueShift (degrees, any number of turns); the alpha of entry
/// i is i * \a factor (0 to 1), rounded. Entries are not premultiplied.
[[nodiscard]] QList<QRgb> colorTable(const QColor &color, double factor = 1.0, int hueShift = 0);

} // namespace Model
