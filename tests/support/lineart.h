#pragma once

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QSize>

namespace TestSupport {

/// Coverage, QImage::Format_Alpha8 of \a size, like a cleaned-up drawing of a figure: smooth closed lines about 5
/// pixels wide that reach over most of the frame and ink 2 to 5 percent of 1920 x 1080. Another \a variant is another
/// drawing.
inline QImage lineArt(QSize size, int variant = 0)
{
    constexpr int lines = 7;
    QImage art(size, QImage::Format_ARGB32_Premultiplied);
    art.fill(Qt::transparent);
    QPainter painter(&art);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 5.0, Qt::SolidLine, Qt::RoundCap));
    const double w = size.width();
    const double h = size.height();
    const double sway = 0.02 * (variant % 10);
    for (int i = 0; i < lines; ++i) {
        const double t = i / double(lines);
        QPainterPath path(QPointF(w * (0.06 + 0.1 * t + sway), h * (0.1 + 0.7 * t)));
        path.cubicTo(w * (0.3 + sway), h * (0.9 - t), w * 0.5, h * (t + sway), w * (0.93 - 0.1 * t),
                     h * (0.9 - 0.6 * t));
        path.cubicTo(w * 0.7, h * (0.2 + sway), w * (0.4 - 0.3 * t), h * 0.95, w * (0.06 + 0.1 * t + sway),
                     h * (0.1 + 0.7 * t));
        painter.drawPath(path);
    }
    painter.end();
    return art.convertToFormat(QImage::Format_Alpha8);
}

} // namespace TestSupport
