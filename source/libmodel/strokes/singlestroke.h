#pragma once

#include "libmodel/strokes/sample.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/tools/tool.h"

#include <QColor>
#include <QImage>
#include <QSize>

#include <memory>
#include <vector>

class QPainter;

namespace Model {

class DrawingTool;
class Segment;
struct ControlPoint;
struct Line;
struct VertexStreams;

/// A freehand line as a chain of segments, with the kind of pen or eraser that made it.
///
/// Three stages: active (it has a tool and an image), handed to a command, stored in a drawing (no image; the tool
/// counts no more). A stroke read from a file starts in the last one and can't be continued.
///
/// The line pursues the pen: every new segment leaves the last control point along its tangent, aims at the newest
/// sample and covers 0.6 of the way, all of it when the stroke is finished. The samples themselves are never on the
/// line.
///
///     o==========o=======o- - - - +      o control points, == segments, + newest sample
class SingleStroke : public Stroke
{
public:
    /// A stroke that draws into an image of its own of \a size (pixels), styled by \a tool (not owned; null for a
    /// stroke that will be read).
    SingleStroke(QSize size, const Tool *tool);

    /// A stroke without an image. \a tool as above.
    explicit SingleStroke(const Tool *tool);

    ~SingleStroke() override;

    /// Appends \a sample and fits a segment towards it; there may be none, for lack of length.
    void addSample(const Sample &sample);

    /// Like addSample() for the first one, with the pen's position just before: hovering sets the first tangent, if it
    /// was more than 5 pixels away.
    void addFirstSample(const Sample &sample, QPointF previousPoint);

    /// Fits one more segment towards the last sample.
    void processPending();

    /// Closes the rest of the way to the last sample. Drawing may go on, with a line from there.
    void finish();

    /// The centre line; empty without segments. For lasso and hit tests.
    [[nodiscard]] QPainterPath toPath() const;

    /// Draws the newest segment into image(); nothing if it is there already.
    ///
    /// \return the pixels to repaint: those of the segment, of the last sample and of the tail, clipped to the image;
    /// null without image or segments.
    QRect renderLatestSegment();

    /// Draws the dotted line from the last sample to the end of the last segment, for an active pen stroke.
    ///
    /// \a color is given the opacity of the last sample, \a radius is half the line's width in \a painter's pixels.
    /// \return the part of \a rect that the tail may have touched; empty if there is no tail.
    QRect drawTail(QPainter *painter, QColor color, QRect rect, double radius);

    [[nodiscard]] bool isEraser() const;
    [[nodiscard]] bool isPen() const;
    [[nodiscard]] Tool::PenType penType() const;       ///< Counts for a pen only.
    [[nodiscard]] Tool::EraserType eraserType() const; ///< Counts for an eraser only.

    /// Coverage of the active stroke; null in the other stages.
    [[nodiscard]] const QImage &image() const;

    /// Gives image() away and leaves none; lets go of the tool, so that the stroke can't be continued.
    QImage takeImage();

    /// Gives the stroke its coverage back, as takeImage() gave it away: all segments are drawn in \a image.
    void setImage(const QImage &image);

    /// The newest sample; a default one if there is none.
    [[nodiscard]] Sample lastSample() const;

    /// True if \a sample is less than 1 pixel away from the last one.
    [[nodiscard]] bool isNearLastSample(const Sample &sample) const;

    [[nodiscard]] const std::vector<Sample> &samples() const;
    [[nodiscard]] const std::vector<ControlPoint> &controlPoints() const;
    [[nodiscard]] const std::vector<std::shared_ptr<const Segment>> &segments() const;

    /// All segments as a line to draw; valid as long as this stroke is not changed.
    [[nodiscard]] Line line() const;

    /// True if the next segment will continue the last control point's tangent.
    [[nodiscard]] bool hasTangent() const;

    [[nodiscard]] Type type() const override { return Type::Single; }
    [[nodiscard]] std::unique_ptr<Stroke> clone() const override;
    /// Replaces what \a target holds in \a dirtyRect, and returns \a dirtyRect if the stroke reaches into it.
    QRect render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                 double renderScale) const override;
    /// The union of all segments there have ever been, grown by a pixel for the anti-aliased rim.
    [[nodiscard]] QRect boundingRect() const override;
    [[nodiscard]] bool isEmpty() const override;
    bool cutInside(const QPainterPath &path) override;
    bool cutOutside(const QPainterPath &path) override;
    void write(QDataStream &stream) const override;

    /// Reads what write() has written into a new stroke.
    ///
    /// \return false, with the stream's status set, if the stream ends early, a count is larger than what the stream
    /// still holds, or a number is no usable coordinate. Segments of unknown kinds are left out.
    bool read(QDataStream &stream);

private:
    SingleStroke(const SingleStroke &other);

    struct Private;

    [[nodiscard]] const DrawingTool *drawingTool() const;
    void process(double fraction);
    bool addLine(double fraction);
    bool addArc(double fraction, double angle);
    void addCornerLeg();
    void append(std::shared_ptr<const Segment> segment, const ControlPoint &end);
    void mergeSegment(const Segment &segment, QRect rect);
    void coverSegments();
    bool readSamples(QDataStream &stream);
    bool readSegments(QDataStream &stream);

    std::unique_ptr<Private> d;
};

} // namespace Model
