#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <memory>

namespace Model {

class MemoryBudget;
class StrokeDrawing;
class WorkBudget;

/// The binary payloads of a scene file: big-endian data streams as base64 text.

/// What came out of a block of strokes.
struct DecodedStrokes
{
    std::shared_ptr<StrokeDrawing> drawing; ///< Never null.
    bool isDamaged = false;                 ///< The block cannot be right; the drawing has what stands before that.
    bool isUnrendered = false;  ///< There are strokes, but neither a stored image nor a renderer to make it.
    bool isShownInPart = false; ///< Drawing all of the strokes takes too long, so the newest do not show.
    bool exceedsMemory = false; ///< Images were left out because the budget does not allow for them.
};

/// What came out of a block with a picture or a note.
struct DecodedImage
{
    QImage image;               ///< Null where there is none, and where it could not be decoded.
    bool isDamaged = false;     ///< The block cannot be right.
    bool exceedsMemory = false; ///< The image was left out because the budget does not allow for it.
};

/// The strokes of \a drawing and its coverage image.
[[nodiscard]] QByteArray encodeStrokes(const StrokeDrawing &drawing);

/// A drawing from the block \a base64 in a scene with frames of \a frameSize.
///
/// A drawing of another size is brought to the frame's, its strokes staying where they are. A damaged block gives
/// the strokes in front of the damage, as far as they could be saved. The bytes of all images are taken from
/// \a memory before they are made.
/// What drawing them takes, where they have no image, is taken from \a work, which the block has added its share to.
[[nodiscard]] DecodedStrokes decodeStrokes(const QByteArray &base64, QSize frameSize, MemoryBudget &memory,
                                           WorkBudget &work);
/// The same for a block that stands alone.
[[nodiscard]] DecodedStrokes decodeStrokes(const QByteArray &base64, QSize frameSize, MemoryBudget &memory);
/// The same for the bytes behind the base64. What they add to \a work is up to the caller.
[[nodiscard]] DecodedStrokes decodeStrokeBlock(QByteArray block, QSize frameSize, MemoryBudget &memory,
                                               WorkBudget &work);

/// The annotation \a image (one byte per pixel, or null) as a run-length block.
[[nodiscard]] QByteArray encodeAnnotation(const QImage &image);

/// The annotation of the block \a base64: coverage values in QImage::Format_Indexed8. Takes its bytes from \a memory.
[[nodiscard]] DecodedImage decodeAnnotation(const QByteArray &base64, MemoryBudget &memory);

/// A picture (QImage's own stream form).
[[nodiscard]] QByteArray encodeImage(const QImage &image);

/// The picture of the block \a base64. Takes its bytes from \a memory.
[[nodiscard]] DecodedImage decodeImage(const QByteArray &base64, MemoryBudget &memory);

} // namespace Model
