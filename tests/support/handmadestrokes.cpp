#include "support/handmadestrokes.h"

#include <QLineF>

#include <cmath>
#include <numbers>

namespace TestSupport {

namespace {

constexpr float leftEdge = 1.0F;
constexpr float rightEdge = -1.0F;
constexpr float hub = 0.0F;
constexpr float rim = 0.6F;

void append(Model::VertexStreams &vertices, const StrokeEnd &at, QPointF tangent, float type, QPointF smoothing = {})
{
    const auto push = [](std::vector<float> &stream, double value) { stream.push_back(static_cast<float>(value)); };
    push(vertices.positions, at.point.x());
    push(vertices.positions, at.point.y());
    push(vertices.positions, tangent.x());
    push(vertices.positions, tangent.y());
    push(vertices.attributes, at.opacity);
    push(vertices.attributes, at.radius);
    vertices.types.push_back(type);
    push(vertices.types, smoothing.x());
    push(vertices.types, smoothing.y());
}

QPointF direction(double degrees, double length)
{
    const double radians = degrees * std::numbers::pi / 180.0;
    return {length * std::cos(radians), -length * std::sin(radians)};
}

} // namespace

QPointF ArcShape::pointAt(double degrees) const
{
    return center + direction(degrees, arcRadius);
}

QPointF ArcShape::tangentAt(double degrees) const
{
    return direction(degrees + (sweepDegrees < 0 ? -90.0 : 90.0), arcRadius);
}

void appendCap(Model::VertexStreams &vertices, const StrokeEnd &end, QPointF tangent)
{
    constexpr int triangles = 100;
    const QLineF first(QPointF(0, 0), tangent);
    QPointF previous = tangent;
    for (int i = 0; i < triangles; ++i) {
        const QPointF current = direction(first.angle() - i * 360.0 / (triangles - 1), first.length());
        const QPointF mean = (previous + current) / 2;
        append(vertices, end, QPointF(), hub);
        append(vertices, end, previous, rim, mean);
        append(vertices, end, current, rim, mean);
        previous = current;
    }
}

void appendDot(Model::VertexStreams &vertices, const StrokeEnd &end)
{
    appendCap(vertices, end, QPointF(end.radius, 0));
}

void appendLineBody(Model::VertexStreams &vertices, const StrokeEnd &start, const StrokeEnd &end, float fourthType)
{
    const QPointF tangent = end.point - start.point;
    append(vertices, start, tangent, leftEdge);
    append(vertices, start, tangent, rightEdge);
    append(vertices, end, tangent, leftEdge);
    append(vertices, start, tangent, fourthType);
    append(vertices, end, tangent, leftEdge);
    append(vertices, end, tangent, rightEdge);
}

void appendLine(Model::VertexStreams &vertices, const StrokeEnd &start, const StrokeEnd &end)
{
    appendCap(vertices, start, end.point - start.point);
    appendLineBody(vertices, start, end);
    appendCap(vertices, end, end.point - start.point);
}

void appendArc(Model::VertexStreams &vertices, const ArcShape &arc)
{
    constexpr int steps = 10;
    const auto endAt = [&arc](double degrees) { return StrokeEnd{arc.pointAt(degrees), arc.opacity, arc.radius}; };
    const double last = arc.startDegrees + arc.sweepDegrees;
    appendCap(vertices, endAt(arc.startDegrees), arc.tangentAt(arc.startDegrees));
    double previous = arc.startDegrees;
    for (int i = 0; i <= steps; ++i) {
        const double current = arc.startDegrees + arc.sweepDegrees * i / steps;
        const StrokeEnd from = endAt(previous);
        const StrokeEnd to = endAt(current);
        append(vertices, from, arc.tangentAt(previous), leftEdge);
        append(vertices, from, arc.tangentAt(previous), rightEdge);
        append(vertices, to, arc.tangentAt(current), leftEdge);
        append(vertices, from, arc.tangentAt(previous), rightEdge);
        append(vertices, to, arc.tangentAt(current), leftEdge);
        append(vertices, to, arc.tangentAt(current), rightEdge);
        previous = current;
    }
    appendCap(vertices, endAt(last), arc.tangentAt(last));
}

} // namespace TestSupport
