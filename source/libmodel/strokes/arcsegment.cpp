#include "libmodel/strokes/arcsegment.h"

#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/roundcap.h"
#include "libmodel/strokes/vertexwriter.h"

#include <QDataStream>
#include <QLineF>
#include <QPainterPath>

#include <algorithm>

namespace Model {

namespace {

constexpr int bodySteps = 10;
constexpr double fullTurn = 360.0;

} // namespace

ArcSegment::ArcSegment(const Circle &circle, QPointF start, QPointF end, bool clockwise, double opacityStart,
                       double opacityEnd, double radiusStart, double radiusEnd)
    : m_circle(circle),
      m_start(start),
      m_end(end),
      m_clockwise(clockwise),
      m_ends{opacityStart, opacityEnd, radiusStart, radiusEnd}
{
}

double ArcSegment::startAngle() const
{
    return QLineF(m_circle.center, m_start).angle();
}

double ArcSegment::endAngle() const
{
    return QLineF(m_circle.center, m_end).angle();
}

double ArcSegment::sweep() const
{
    const double first = startAngle();
    const double last = endAngle();
    if (m_clockwise)
        return first < last ? last - first - fullTurn : last - first;
    return last < first ? last + fullTurn - first : last - first;
}

bool ArcSegment::sweepsOver(double angle) const
{
    const double from = m_clockwise ? endAngle() : startAngle();
    const double to = m_clockwise ? startAngle() : endAngle();
    const double unwrappedTo = to < from ? to + fullTurn : to;
    return (from <= angle && angle <= unwrappedTo) || angle + fullTurn <= unwrappedTo;
}

QRect ArcSegment::boundingRect() const
{
    QRectF bounds = circleBounds(m_start, m_ends.radiusStart) | circleBounds(m_end, m_ends.radiusEnd);
    const double reach = m_circle.radius + std::max(m_ends.radiusStart, m_ends.radiusEnd);
    if (sweepsOver(0.0))
        bounds.setRight(m_circle.center.x() + reach);
    if (sweepsOver(90.0))
        bounds.setTop(m_circle.center.y() - reach);
    if (sweepsOver(180.0))
        bounds.setLeft(m_circle.center.x() - reach);
    if (sweepsOver(270.0))
        bounds.setBottom(m_circle.center.y() + reach);
    return bounds.toAlignedRect();
}

void ArcSegment::moveToStart(QPainterPath &path) const
{
    path.moveTo(m_start);
}

void ArcSegment::extendPath(QPainterPath &path) const
{
    path.arcTo(circleBounds(m_circle.center, m_circle.radius), startAngle(), sweep());
}

QPointF ArcSegment::tangentAt(QPointF point) const
{
    const QPointF spoke = m_clockwise ? point - m_circle.center : m_circle.center - point;
    return {-spoke.y(), spoke.x()};
}

void ArcSegment::addStartCap(VertexStreams &vertices) const
{
    addRoundCap(*startCap(), vertices);
}

void ArcSegment::addBody(VertexStreams &vertices) const
{
    VertexWriter writer(vertices, 6 * (bodySteps + 1));
    const double firstAngle = startAngle();
    const double wholeSweep = sweep();
    QLineF spoke(m_circle.center, m_start);
    EdgePoint previous{m_start, tangentAt(m_start), m_ends.opacityStart, m_ends.radiusStart};
    for (int i = 0; i <= bodySteps; ++i) {
        spoke.setAngle(firstAngle + i * wholeSweep / bodySteps);
        const double opacity = ((bodySteps - i) * m_ends.opacityStart + i * m_ends.opacityEnd) / bodySteps;
        const double radius = ((bodySteps - i) * m_ends.radiusStart + i * m_ends.radiusEnd) / bodySteps;
        const EdgePoint current{spoke.p2(), tangentAt(spoke.p2()), opacity, radius};
        writer.addEdge(previous, leftEdge);
        writer.addEdge(previous, rightEdge);
        writer.addEdge(current, leftEdge);
        writer.addEdge(previous, rightEdge);
        writer.addEdge(current, leftEdge);
        writer.addEdge(current, rightEdge);
        previous = current;
    }
}

void ArcSegment::addEndCap(VertexStreams &vertices) const
{
    addRoundCap(*endCap(), vertices);
}

std::optional<RoundCap> ArcSegment::startCap() const
{
    return RoundCap{m_start, m_ends.opacityStart, m_ends.radiusStart, tangentAt(m_start)};
}

std::optional<RoundCap> ArcSegment::endCap() const
{
    return RoundCap{m_end, m_ends.opacityEnd, m_ends.radiusEnd, tangentAt(m_end)};
}

void ArcSegment::write(QDataStream &stream) const
{
    stream << m_circle.center << m_circle.radius << m_start << m_end << m_clockwise;
    stream << m_ends.opacityStart << m_ends.opacityEnd << m_ends.radiusStart << m_ends.radiusEnd;
}

bool ArcSegment::read(QDataStream &stream)
{
    if (!readPoint(stream, m_circle.center) || !readRadius(stream, m_circle.radius) || !readPoint(stream, m_start) ||
        !readPoint(stream, m_end))
        return false;
    stream >> m_clockwise;
    return readEnds(stream, m_ends);
}

} // namespace Model
