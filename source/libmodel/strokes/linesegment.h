#pragma once

#include "libmodel/strokes/segment.h"

#include <QPointF>

namespace Model {

/// A straight piece whose opacity and radius change evenly from one end to the other.
class LineSegment : public Segment
{
public:
    LineSegment() = default;

    /// A line from \a start to \a end (paper coordinates).
    LineSegment(QPointF start, QPointF end, double opacityStart, double opacityEnd, double radiusStart,
                double radiusEnd);

    [[nodiscard]] QPointF start() const { return m_start; }          ///< Paper coordinates.
    [[nodiscard]] QPointF end() const { return m_end; }              ///< Paper coordinates.
    [[nodiscard]] const SegmentEnds &ends() const { return m_ends; } ///< Opacity and radius at start() and end().

    [[nodiscard]] Type type() const override { return Type::Line; }
    [[nodiscard]] QRect boundingRect() const override;
    void moveToStart(QPainterPath &path) const override;
    void extendPath(QPainterPath &path) const override;
    void addStartCap(VertexStreams &vertices) const override;
    void addBody(VertexStreams &vertices) const override;
    void addEndCap(VertexStreams &vertices) const override;
    [[nodiscard]] std::optional<RoundCap> startCap() const override;
    [[nodiscard]] std::optional<RoundCap> endCap() const override;
    void write(QDataStream &stream) const override;
    bool read(QDataStream &stream) override;

private:
    QPointF m_start;
    QPointF m_end;
    SegmentEnds m_ends;
};

} // namespace Model
