#pragma once

#include <QPoint>
#include <QRect>

#include <memory>

class QDataStream;
class QImage;
class QPainterPath;
class QTransform;

namespace Model {

/// What a drawing consists of: a freehand line, a group of strokes, or pixels.
///
/// Strokes have no colour; they make coverage, one byte per pixel. Coordinates are paper pixels, y down.
class Stroke
{
public:
    /// The code that stands before a stroke in a stream.
    enum class Type : int { Single = 0, Compound = 1, Bitmap = 2 };

    virtual ~Stroke() = default;

    [[nodiscard]] virtual Type type() const = 0;

    /// A deep copy, but for segments, which never change and are shared.
    [[nodiscard]] virtual std::unique_ptr<Stroke> clone() const = 0;

    /// Draws the stroke into \a target (one byte per pixel).
    ///
    /// \a dirtyRect: the pixels of \a target to draw, clipped to it. \a transform: from paper coordinates to pixels of
    /// \a target. \a textureOffset: position of \a target's top left in the paper grain. \a renderScale: pixels of
    /// \a target per paper pixel, for feather and grain. \return the pixels touched, null if none.
    virtual QRect render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                         double renderScale) const = 0;

    /// The pixels that the stroke can have ink in; null if it has none.
    [[nodiscard]] virtual QRect boundingRect() const = 0;

    /// True if there is nothing to draw.
    [[nodiscard]] virtual bool isEmpty() const = 0;

    /// Drops all that lies wholly inside \a path. What lies there in part stays as it is. \return success.
    virtual bool cutInside(const QPainterPath &path) = 0;

    /// Drops all that lies wholly outside \a path. What lies there in part stays as it is. \return success.
    virtual bool cutOutside(const QPainterPath &path) = 0;

    /// Writes the stroke without its type; number widths follow the stream's floating point precision.
    virtual void write(QDataStream &stream) const = 0;

protected:
    Stroke() = default;
    Stroke(const Stroke &) = default;
    Stroke &operator=(const Stroke &) = default;
};

} // namespace Model
