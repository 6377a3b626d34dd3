#include "libui/paper/viewzones.h"

#include <algorithm>

namespace UI {

namespace {

// Radii as parts of the view's smaller side, and the largest at an interface scale of 1.
constexpr double innerPart = 0.2;
constexpr double outerPart = 0.4;
constexpr double largestInner = 180.0;
constexpr double largestOuter = 360.0;

/// Half-axes of the ellipse as parts of the view's sides.
constexpr double ellipsePart = 0.3;

constexpr QSizeF buttonSize(96.0, 32.0);
/// The most that the button takes of the view's sides.
constexpr double buttonWidthPart = 0.5;
constexpr double buttonHeightPart = 0.1;

QPainterPath ellipse(QPointF center, double horizontal, double vertical)
{
    QPainterPath path;
    path.addEllipse(center, horizontal, vertical);
    return path;
}

/// Midway between the ellipse and the lower edge.
QRectF buttonIn(const QRectF &usable, double scale)
{
    const double largest = std::min(buttonWidthPart * usable.width() / buttonSize.width(),
                                    buttonHeightPart * usable.height() / buttonSize.height());
    QRectF button({}, buttonSize * std::min(scale, largest));
    const double below = 0.5 * (0.5 + ellipsePart + 1.0);
    button.moveCenter({usable.center().x(), usable.top() + below * usable.height()});
    return button;
}

bool isWithin(const QRectF &pill, QPointF position)
{
    QPainterPath path;
    path.addRoundedRect(pill, 0.5 * pill.height(), 0.5 * pill.height());
    return path.contains(position);
}

} // namespace

ViewZones::ViewZones(const QRect &usable, double scale) : m_center(QRectF(usable).center())
{
    if (!usable.isValid() || !(scale > 0.0))
        return;
    const double side = std::min(usable.width(), usable.height());
    const double inner = std::min(innerPart * side, largestInner * scale);
    const double outer = std::min(outerPart * side, largestOuter * scale);
    m_inner = ellipse(m_center, inner, inner);
    m_outer = ellipse(m_center, outer, outer);
    m_ellipse = ellipse(m_center, ellipsePart * usable.width(), ellipsePart * usable.height());
    m_button = buttonIn(usable, scale);
}

ViewZones::Zpr ViewZones::zprZoneAt(QPointF position) const
{
    if (m_inner.contains(position))
        return Zpr::Pan;
    return m_outer.contains(position) ? Zpr::Rotate : Zpr::Zoom;
}

ViewZones::OffPegs ViewZones::offPegsZoneAt(QPointF position, bool isOffPegs) const
{
    if (m_ellipse.contains(position))
        return OffPegs::Pan;
    return isOffPegs && isWithin(m_button, position) ? OffPegs::Button : OffPegs::Rotate;
}

} // namespace UI
