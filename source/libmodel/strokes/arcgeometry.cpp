#include "libmodel/strokes/arcgeometry.h"

#include <cmath>

namespace Model {

Circle circleThrough(QPointF first, QPointF second, const QLineF &tangentAtFirst)
{
    constexpr double leastSquaredRadius = 1e-12;

    const QLineF bisector = QLineF((first + second) / 2.0, second).normalVector();
    const QLineF normal = tangentAtFirst.normalVector();
    QPointF center;
    if (bisector.intersects(normal, &center) == QLineF::NoIntersection)
        return {};
    const QPointF spoke = center - first;
    const double squaredRadius = QPointF::dotProduct(spoke, spoke);
    if (std::abs(squaredRadius) <= leastSquaredRadius)
        return {};
    return {center, std::sqrt(squaredRadius)};
}

} // namespace Model
