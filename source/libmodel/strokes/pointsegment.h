#pragma once

#include "libmodel/strokes/segment.h"

#include <QPointF>

namespace Model {

/// A dot: where a stroke begins, and all there is of a tap of the pen.
class PointSegment : public Segment
{
public:
    PointSegment() = default;

    /// A dot at \a position (paper coordinates) with \a opacity (0 to 1) and \a radius (paper pixels).
    PointSegment(QPointF position, double opacity, double radius);

    [[nodiscard]] QPointF position() const { return m_position; } ///< Paper coordinates.
    [[nodiscard]] double opacity() const { return m_opacity; }    ///< 0 to 1.
    [[nodiscard]] double radius() const { return m_radius; }      ///< Paper pixels.

    [[nodiscard]] Type type() const override { return Type::Point; }
    [[nodiscard]] QRect boundingRect() const override;
    void moveToStart(QPainterPath &path) const override;
    void extendPath(QPainterPath &path) const override;
    /// A dot is one round cap, and that is its body.
    void addStartCap(VertexStreams &vertices) const override;
    void addBody(VertexStreams &vertices) const override;
    void addEndCap(VertexStreams &vertices) const override;
    [[nodiscard]] std::optional<RoundCap> startCap() const override;
    [[nodiscard]] std::optional<RoundCap> endCap() const override;
    void write(QDataStream &stream) const override;
    bool read(QDataStream &stream) override;

private:
    QPointF m_position;
    double m_opacity = 0.0;
    double m_radius = 0.0;
};

} // namespace Model
