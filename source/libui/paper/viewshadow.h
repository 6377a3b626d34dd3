#pragma once

class QPainter;
class QRect;

namespace UI {

/// Paints the shadow that the window's frame throws onto \a area from all four sides, as far as it meets \a rect, to
/// which the painter is clipped. Widget coordinates. The shadow has a fixed width, or half the area's shorter side
/// where that is less.
void paintViewShadow(QPainter *painter, const QRect &rect, const QRect &area);

} // namespace UI
