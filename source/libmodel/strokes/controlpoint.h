#pragma once

#include <QLineF>
#include <QPointF>

namespace Model {

/// A point where two segments of a stroke join, and from where the next one starts.
struct ControlPoint
{
    QPointF point;         ///< Paper coordinates.
    double pressure = 0.0; ///< 0 to 1.
    QLineF tangent;        ///< Direction in which the line arrives, starting at point; null where there is none.
};

} // namespace Model
