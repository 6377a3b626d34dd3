#include "libmodel/strokes/colortable.h"

#include <QColor>

#include <algorithm>

namespace Model {

QList<QRgb> colorTable(const QColor &color, double factor, int hueShift)
{
    constexpr int entries = 256;
    constexpr int fullTurn = 360;

    const QColor hsv = color.toHsv();
    // Greys have no hue, which Qt tells by -1; any hue will do for them.
    const int hue = ((std::max(hsv.hsvHue(), 0) + hueShift % fullTurn) % fullTurn + fullTurn) % fullTurn;
    const QRgb rgb = QColor::fromHsv(hue, hsv.hsvSaturation(), hsv.value()).rgb();
    const QRgb shown = hueShift % fullTurn == 0 ? color.rgb() : rgb;

    QList<QRgb> table(entries);
    for (int i = 0; i < entries; ++i) {
        const int alpha = std::clamp(qRound(i * factor), 0, entries - 1);
        table[i] = qRgba(qRed(shown), qGreen(shown), qBlue(shown), alpha);
    }
    return table;
}

} // namespace Model
