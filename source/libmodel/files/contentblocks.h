#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <memory>

namespace Model {

class StrokeDrawing;

/// The binary payloads of a scene file: big-endian data streams as base64 text.

/// The strokes of \a drawing and its coverage image.
[[nodiscard]] QByteArray encodeStrokes(const StrokeDrawing &drawing);

/// A drawing from the block \a base64 in a scene with frames of \a frameSize.
///
/// A drawing of another size is brought to the frame's, its strokes staying where they are. A damaged block gives
/// the strokes in front of the damage, as far as they could be saved, and sets \a isDamaged. Never null.
[[nodiscard]] std::shared_ptr<StrokeDrawing> decodeStrokes(const QByteArray &base64, QSize frameSize, bool *isDamaged);

/// The annotation \a image (one byte per pixel, or null) as a run-length block.
[[nodiscard]] QByteArray encodeAnnotation(const QImage &image);

/// The annotation of the block \a base64: coverage values in QImage::Format_Indexed8, or a null image where nothing
/// was written or the block is damaged (which also sets \a isDamaged).
[[nodiscard]] QImage decodeAnnotation(const QByteArray &base64, bool *isDamaged);

/// A picture (QImage's own stream form).
[[nodiscard]] QByteArray encodeImage(const QImage &image);

/// The picture of the block \a base64; a null image where there is none or the block is damaged (which also sets
/// \a isDamaged).
[[nodiscard]] QImage decodeImage(const QByteArray &base64, bool *isDamaged);

} // namespace Model
