#include "libmodel/strokes/pointsegment.h"

#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/roundcap.h"

#include <QDataStream>
#include <QPainterPath>

namespace Model {

PointSegment::PointSegment(QPointF position, double opacity, double radius)
    : m_position(position), m_opacity(opacity), m_radius(radius)
{
}

QRect PointSegment::boundingRect() const
{
    return circleBounds(m_position, m_radius).toAlignedRect();
}

void PointSegment::moveToStart(QPainterPath &path) const
{
    path.moveTo(m_position);
}

void PointSegment::extendPath(QPainterPath &) const
{
}

void PointSegment::addStartCap(VertexStreams &) const
{
}

void PointSegment::addBody(VertexStreams &vertices) const
{
    addRoundCap(m_position, m_opacity, m_radius, {m_radius, 0.0}, vertices);
}

void PointSegment::addEndCap(VertexStreams &) const
{
}

std::optional<RoundCap> PointSegment::startCap() const
{
    return std::nullopt;
}

std::optional<RoundCap> PointSegment::endCap() const
{
    return std::nullopt;
}

void PointSegment::write(QDataStream &stream) const
{
    stream << m_position << m_opacity << m_radius;
}

bool PointSegment::read(QDataStream &stream)
{
    return readPoint(stream, m_position) && readNumber(stream, m_opacity) && readRadius(stream, m_radius);
}

} // namespace Model
