#pragma once

#include <QLineF>
#include <QPointF>

namespace Model {

/// A circle in paper coordinates; centre (0, 0) with radius 0 stands for "there is no circle".
struct Circle
{
    QPointF center;
    double radius = 0.0;

    [[nodiscard]] bool isNull() const { return radius == 0.0 && center == QPointF(0.0, 0.0); }
};

/// The circle through \a first and \a second whose tangent at \a first is \a tangentAtFirst, which starts at \a first.
///
/// Its centre is where the perpendicular bisector of the chord meets the normal of the tangent. \return the null circle
/// where these two are parallel, or where they meet within a millionth of a pixel of \a first.
[[nodiscard]] Circle circleThrough(QPointF first, QPointF second, const QLineF &tangentAtFirst);

} // namespace Model
