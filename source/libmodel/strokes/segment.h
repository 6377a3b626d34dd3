#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>

#include <memory>
#include <optional>

class QDataStream;
class QPainterPath;

namespace Model {

struct RoundCap;
struct VertexStreams;

/// One piece of a stroke: a dot, a straight line or an arc, with opacity and radius at both ends.
///
/// Coordinates are paper pixels, y down; the radius is half the width of the stroke there, in paper pixels; opacity
/// runs from 0 to 1. Segments never change once they are part of a stroke, so strokes and their copies share them.
///
/// A segment makes its own triangles. They are drawn with the maximum of their coverage, which is why every segment
/// brings both of its round caps, and why their overlap costs nothing:
///
///     start cap   body   end cap
///        (   ==============  )
class Segment
{
public:
    /// The code that stands before a segment in a stream.
    enum class Type : int { Point = 0, Line = 1, Arc = 2 };

    virtual ~Segment();

    [[nodiscard]] virtual Type type() const = 0;

    /// The pixels that enclose the segment with its radius; the anti-aliased rim lies up to a pixel further out.
    [[nodiscard]] virtual QRect boundingRect() const = 0;

    /// Moves \a path to the first point.
    virtual void moveToStart(QPainterPath &path) const = 0;

    /// Appends the centre line to \a path, which stands at the first point. A dot has none.
    virtual void extendPath(QPainterPath &path) const = 0;

    /// Appends the triangles of the cap at the first point.
    virtual void addStartCap(VertexStreams &vertices) const = 0;

    /// Appends the triangles of the body.
    virtual void addBody(VertexStreams &vertices) const = 0;

    /// Appends the triangles of the cap at the last point.
    virtual void addEndCap(VertexStreams &vertices) const = 0;

    /// The caps that addStartCap() and addEndCap() append; none for a dot, whose body is its cap.
    [[nodiscard]] virtual std::optional<RoundCap> startCap() const = 0;
    [[nodiscard]] virtual std::optional<RoundCap> endCap() const = 0;

    /// Writes the fields, without the type.
    virtual void write(QDataStream &stream) const = 0;

    /// Reads what write() has written; only for a segment that is not shared yet.
    ///
    /// \return false, with the stream's status telling why, if the stream ends or a number is no usable coordinate.
    virtual bool read(QDataStream &stream) = 0;

    /// Reads a segment whose code was \a type. \return null with the stream in order for an unknown code, of which
    /// nothing is read; null with the stream's status set for broken data.
    static std::shared_ptr<const Segment> readNew(int type, QDataStream &stream);
};

/// Opacity and radius at the two ends of a segment.
struct SegmentEnds
{
    double opacityStart = 0.0; ///< 0 to 1.
    double opacityEnd = 0.0;   ///< 0 to 1.
    double radiusStart = 0.0;  ///< Paper pixels.
    double radiusEnd = 0.0;    ///< Paper pixels.
};

/// Reads the four numbers in the order of their declaration; false, with the stream's status set, for broken data.
bool readEnds(QDataStream &stream, SegmentEnds &ends);

/// The square around a circle, in paper coordinates.
[[nodiscard]] QRectF circleBounds(QPointF center, double radius);

} // namespace Model
