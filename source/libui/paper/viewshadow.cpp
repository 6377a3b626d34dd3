#include "libui/paper/viewshadow.h"

#include <QGradientStops>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <QRectF>

#include <algorithm>

namespace UI {

namespace {

constexpr double shadowWidth = 32.0;

QGradientStops shadowStops(bool darkFirst)
{
    constexpr QColor dark(0, 0, 0, 56);
    constexpr QColor middle(0, 0, 0, 14);
    constexpr QColor clear(0, 0, 0, 0);
    return {{0.0, darkFirst ? dark : clear}, {0.5, middle}, {1.0, darkFirst ? clear : dark}};
}

} // namespace

void paintViewShadow(QPainter *painter, const QRect &rect, const QRect &viewArea)
{
    const QRectF area = viewArea;
    const double width = std::min(shadowWidth, 0.5 * std::min(area.width(), area.height()));
    const QRectF inner = area.adjusted(width, width, -width, -width);
    if (width <= 0.0 || inner.contains(rect))
        return;
    painter->setBrushOrigin(0, 0);
    const auto fade = [&](const QRectF &part, const QGradient &gradient) {
        if (part.intersects(rect))
            painter->fillRect(part, gradient);
    };
    const auto edge = [&](const QRectF &part, QPointF from, QPointF to) {
        QLinearGradient gradient(from, to);
        gradient.setStops(shadowStops(true));
        fade(part, gradient);
    };
    edge({inner.left(), area.top(), inner.width(), width}, area.topLeft(), {area.left(), inner.top()});
    edge({inner.left(), inner.bottom(), inner.width(), width}, area.bottomLeft(), {area.left(), inner.bottom()});
    edge({area.left(), inner.top(), width, inner.height()}, area.topLeft(), {inner.left(), area.top()});
    edge({inner.right(), inner.top(), width, inner.height()}, area.topRight(), {inner.right(), area.top()});
    const auto corner = [&](QPointF center, QPointF topLeft) {
        QRadialGradient gradient(center, width);
        gradient.setStops(shadowStops(false));
        fade({topLeft, QSizeF(width, width)}, gradient);
    };
    corner(inner.topLeft(), area.topLeft());
    corner(inner.topRight(), {inner.right(), area.top()});
    corner(inner.bottomLeft(), {area.left(), inner.bottom()});
    corner(inner.bottomRight(), inner.bottomRight());
}

} // namespace UI
