#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRect>
#include <QTransform>

#include <limits>

class QDataStream;

namespace Model {

/// What reading one drawing may still use up, whatever its stream claims, and what it ran short of.
struct StreamBudget
{
    int depth = 0;                       ///< Compounds around the one being read.
    qint64 imageBytes = qint64(1) << 30; ///< Bytes that images, one per pixel, may still take.
    /// Work that making the coverage may still take, in the units of drawableChildren().
    qint64 drawingEffort = std::numeric_limits<qint64>::max();
    bool exceedsMemory = false; ///< An image was left out because imageBytes does not allow for it.
    bool lostPixels = false;    ///< An image that nothing can replace was damaged.
    bool isUnrendered = false;  ///< There are lines without pixels, for want of a renderer.

    /// Takes \a bytes off imageBytes. \return false, with exceedsMemory set, if there are not as many.
    bool takeImage(qint64 bytes);
};

/// Readers for data from outside. Each sets the stream's status to QDataStream::ReadCorruptData and returns false if
/// what it reads can't be right, and returns false for a stream that is not in order.

/// A coordinate or length: finite and within coordinateLimit.
bool readNumber(QDataStream &stream, double &value);
/// A number as readNumber(), not below 0.
bool readRadius(QDataStream &stream, double &value);
/// Both coordinates as readNumber().
bool readPoint(QDataStream &stream, QPointF &value);
/// All four edges within coordinateLimit.
bool readRect(QDataStream &stream, QRect &value);
/// A transform that isReadable().
bool readTransform(QDataStream &stream, QTransform &value);
/// A well-formed path with coordinates as readNumber() and no more elements than the stream can hold.
bool readPath(QDataStream &stream, QPainterPath &value);
/// A count of things that take at least \a bytesEach: not negative, and not more than the stream still holds.
bool readCount(QDataStream &stream, qint32 &count, int bytesEach);
/// The same for a wide count.
bool readCount(QDataStream &stream, qint64 &count, int bytesEach);

/// True if readTransform() would accept \a transform: all numbers usable coordinates, and no perspective.
[[nodiscard]] bool isReadable(const QTransform &transform);

/// Bytes of a double in \a stream, by its floating point precision.
[[nodiscard]] int bytesPerDouble(const QDataStream &stream);

/// Marks \a stream as broken unless it is already. \return false.
bool refuse(QDataStream &stream);

} // namespace Model
