#include "libmodel/strokes/linesegment.h"

#include "libmodel/render/vertexstreams.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/roundcap.h"
#include "libmodel/strokes/vertexwriter.h"

#include <QDataStream>
#include <QPainterPath>

namespace Model {

namespace {

/// The shader takes anything below -0.75 for a right edge; the second right vertex at the start has always had a code
/// of its own in the streams, and keeps it.
constexpr float secondRightEdge = -11.0F;

} // namespace

LineSegment::LineSegment(QPointF start, QPointF end, double opacityStart, double opacityEnd, double radiusStart,
                         double radiusEnd)
    : m_start(start), m_end(end), m_ends{opacityStart, opacityEnd, radiusStart, radiusEnd}
{
}

QRect LineSegment::boundingRect() const
{
    return circleBounds(m_start, m_ends.radiusStart).toAlignedRect() |
           circleBounds(m_end, m_ends.radiusEnd).toAlignedRect();
}

void LineSegment::moveToStart(QPainterPath &path) const
{
    path.moveTo(m_start);
}

void LineSegment::extendPath(QPainterPath &path) const
{
    path.lineTo(m_end);
}

void LineSegment::addStartCap(VertexStreams &vertices) const
{
    addRoundCap(*startCap(), vertices);
}

void LineSegment::addBody(VertexStreams &vertices) const
{
    const QPointF tangent = m_end - m_start;
    const EdgePoint start{m_start, tangent, m_ends.opacityStart, m_ends.radiusStart};
    const EdgePoint end{m_end, tangent, m_ends.opacityEnd, m_ends.radiusEnd};
    VertexWriter writer(vertices, 6);
    writer.addEdge(start, leftEdge);
    writer.addEdge(start, rightEdge);
    writer.addEdge(end, leftEdge);
    writer.addEdge(start, secondRightEdge);
    writer.addEdge(end, leftEdge);
    writer.addEdge(end, rightEdge);
}

void LineSegment::addEndCap(VertexStreams &vertices) const
{
    addRoundCap(*endCap(), vertices);
}

std::optional<RoundCap> LineSegment::startCap() const
{
    return RoundCap{m_start, m_ends.opacityStart, m_ends.radiusStart, m_end - m_start};
}

std::optional<RoundCap> LineSegment::endCap() const
{
    return RoundCap{m_end, m_ends.opacityEnd, m_ends.radiusEnd, m_end - m_start};
}

void LineSegment::write(QDataStream &stream) const
{
    stream << m_start << m_end << m_ends.opacityStart << m_ends.opacityEnd << m_ends.radiusStart << m_ends.radiusEnd;
}

bool LineSegment::read(QDataStream &stream)
{
    return readPoint(stream, m_start) && readPoint(stream, m_end) && readEnds(stream, m_ends);
}

} // namespace Model
