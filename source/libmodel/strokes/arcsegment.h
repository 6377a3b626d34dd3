#pragma once

#include "libmodel/strokes/arcgeometry.h"
#include "libmodel/strokes/segment.h"

#include <QPointF>

namespace Model {

/// A piece of a circle whose opacity and radius change evenly along it.
///
/// Held as the circle, the two end points as they were computed, and the direction; angles are derived when needed.
class ArcSegment : public Segment
{
public:
    ArcSegment() = default;

    /// An arc on \a circle from \a start to \a end (paper coordinates, on the circle). \a clockwise: as seen on the
    /// screen, that is with falling angles.
    ArcSegment(const Circle &circle, QPointF start, QPointF end, bool clockwise, double opacityStart, double opacityEnd,
               double radiusStart, double radiusEnd);

    [[nodiscard]] const Circle &circle() const { return m_circle; } ///< Paper coordinates.
    [[nodiscard]] QPointF start() const { return m_start; }         ///< Paper coordinates.
    [[nodiscard]] QPointF end() const { return m_end; }             ///< Paper coordinates.
    [[nodiscard]] bool isClockwise() const { return m_clockwise; }
    [[nodiscard]] const SegmentEnds &ends() const { return m_ends; } ///< Opacity and radius at start() and end().

    /// Angle of start() seen from the centre: degrees from 0 to below 360, counter-clockwise, 0 to the right.
    [[nodiscard]] double startAngle() const;

    /// Degrees from start() to end() along the arc: negative or 0 if clockwise, positive or 0 if not.
    [[nodiscard]] double sweep() const;

    [[nodiscard]] Type type() const override { return Type::Arc; }
    [[nodiscard]] QRect boundingRect() const override;
    void moveToStart(QPainterPath &path) const override;
    void extendPath(QPainterPath &path) const override;
    void addStartCap(VertexStreams &vertices) const override;
    /// The body is a chain of straight pieces, as many for a short arc as for a long one.
    void addBody(VertexStreams &vertices) const override;
    void addEndCap(VertexStreams &vertices) const override;
    [[nodiscard]] std::optional<RoundCap> startCap() const override;
    [[nodiscard]] std::optional<RoundCap> endCap() const override;
    void write(QDataStream &stream) const override;
    bool read(QDataStream &stream) override;

private:
    [[nodiscard]] double endAngle() const;
    [[nodiscard]] bool sweepsOver(double angle) const;
    [[nodiscard]] QPointF tangentAt(QPointF point) const;

    Circle m_circle;
    QPointF m_start;
    QPointF m_end;
    bool m_clockwise = false;
    SegmentEnds m_ends;
};

} // namespace Model
