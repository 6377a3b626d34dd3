#pragma once

#include <QPointF>

namespace UI {

/// Which range of a pen a drag adjusts, and by how much: sideways the sizes, up and down the opacities. The direction
/// is chosen once the pointer has gone far enough to tell, and kept.
class PenAdjustmentDrag
{
public:
    enum class Direction { None, Size, Opacity };

    PenAdjustmentDrag() = default;
    /// A drag from \a press. \a startDistance (logical pixels, both axes added) tells a drag from a tremor.
    PenAdjustmentDrag(QPointF press, int startDistance) : m_press(press), m_startDistance(startDistance) {}

    /// Takes the factor for a pointer at \a position, choosing a direction if there is none and it is far enough.
    void moveTo(QPointF position);
    [[nodiscard]] Direction direction() const { return m_direction; }
    /// What the range is multiplied with: to the right, or up, above 1. 1 without a direction.
    [[nodiscard]] double factor() const { return m_factor; }

private:
    QPointF m_press;
    int m_startDistance = 0;
    Direction m_direction = Direction::None;
    double m_factor = 1.0;
};

} // namespace UI
