#include "libui/paper/clipping.h"

#include <algorithm>

namespace UI {

namespace {

/// The half plane in which (x, y) * normal is at most limit.
struct HalfPlane
{
    QPointF normal;
    double limit;

    double distance(QPointF point) const { return QPointF::dotProduct(point, normal) - limit; }
};

QPolygonF clippedTo(const QPolygonF &polygon, const HalfPlane &side)
{
    QPolygonF result;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF from = polygon[i];
        const QPointF to = polygon[(i + 1) % polygon.size()];
        const double before = side.distance(from);
        const double after = side.distance(to);
        if (before <= 0.0)
            result << from;
        if ((before < 0.0 && after > 0.0) || (before > 0.0 && after < 0.0))
            result << from + (to - from) * (before / (before - after));
    }
    return result;
}

} // namespace

std::optional<QLineF> clippedLine(const QLineF &line, const QRectF &rect)
{
    double first = 0.0;
    double last = 1.0;
    // Moving along the line by `delta`, `room` is left until the side is crossed.
    const auto cut = [&](double delta, double room) {
        if (delta > 0.0)
            last = std::min(last, room / delta);
        else if (delta < 0.0)
            first = std::max(first, room / delta);
        else if (room < 0.0)
            last = -1.0;
    };
    cut(-line.dx(), line.x1() - rect.left());
    cut(line.dx(), rect.right() - line.x1());
    cut(-line.dy(), line.y1() - rect.top());
    cut(line.dy(), rect.bottom() - line.y1());
    if (first > last)
        return std::nullopt;
    return QLineF(line.pointAt(first), line.pointAt(last));
}

QPolygonF clippedPolygon(const QPolygonF &convex, const QRectF &rect)
{
    QPolygonF result = convex;
    for (const HalfPlane &side : {HalfPlane{{-1.0, 0.0}, -rect.left()}, HalfPlane{{1.0, 0.0}, rect.right()},
                                  HalfPlane{{0.0, -1.0}, -rect.top()}, HalfPlane{{0.0, 1.0}, rect.bottom()}})
        result = clippedTo(result, side);
    return result;
}

} // namespace UI
