#include "libui/paper/penadjustmentdrag.h"

#include <cmath>

namespace UI {

namespace {

/// A step of this factor for every so many pixels.
constexpr double stepFactor = 1.25;
constexpr double stepLength = 10.0;

} // namespace

void PenAdjustmentDrag::moveTo(QPointF position)
{
    const QPointF way = position - m_press;
    if (m_direction == Direction::None) {
        if (way.manhattanLength() < m_startDistance)
            return;
        m_direction = std::abs(way.x()) > std::abs(way.y()) ? Direction::Size : Direction::Opacity;
    }
    const double length = m_direction == Direction::Size ? way.x() : -way.y();
    m_factor = std::pow(stepFactor, length / stepLength);
}

} // namespace UI
