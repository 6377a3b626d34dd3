#pragma once

#include "libmodel/files/contentblocks.h"

#include <QByteArray>
#include <QByteArrayView>

class QImage;

namespace Model {

/// The block with a picture, before it becomes text: Qt's own stream form of an image, which is a marker and a PNG
/// file.
[[nodiscard]] QByteArray encodePicture(const QImage &image);

/// The picture of \a block, which may come from anyone.
///
/// Only the PNG reader ever sees the data, whatever it looks like, and only chunks that matter for a picture. The size
/// is looked at first: what the pixels take has to be in \a memory before they are made.
[[nodiscard]] DecodedImage decodePicture(const QByteArray &block, MemoryBudget &memory);

/// The same for a PNG file without a marker.
[[nodiscard]] DecodedImage decodePng(QByteArrayView png, MemoryBudget &memory);

} // namespace Model
