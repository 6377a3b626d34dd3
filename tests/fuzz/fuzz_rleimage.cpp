// A run-length image as it stands in a file: width, height, the length of the data, the data.

#include "fuzzharness.h"

#include "libmodel/strokes/rleimage.h"

#include <QByteArray>
#include <QDataStream>
#include <QImage>

using namespace Model;
using TestSupport::require;

namespace {

/// Larger images are as good as these, and cost time that is better spent on other inputs.
constexpr qint64 mostPixels = 1 << 22;

QByteArray written(const RleImage &packed)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    packed.write(stream);
    return block;
}

/// Must an image of these sides be refused, or is it small enough to be tried?
bool isWorthDecoding(const RleImage &packed)
{
    const qint64 pixels = qint64(packed.width()) * packed.height();
    return pixels <= mostPixels || pixels > RleImage::maximumPixels;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray block = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    QDataStream stream(block);
    RleImage packed;
    packed.read(stream);
    if (stream.status() != QDataStream::Ok) {
        require(packed.width() == 0 && packed.height() == 0 && packed.data().isEmpty(), "what cannot be read is empty");
        return 0;
    }
    const QByteArray again = written(packed);
    const bool hasNullArray = packed.data().isNull(); // for which there are two ways to write
    require(hasNullArray || block.startsWith(again), "what was read is written as it stood");

    if (!isWorthDecoding(packed))
        return 0;
    const QImage image = packed.toImage();
    if (image.isNull())
        return 0;
    require(image.format() == QImage::Format_Alpha8, "an image has one byte per pixel");
    require(image.size() == QSize(packed.width(), packed.height()), "an image has the size that it states");

    const RleImage repacked(image);
    require(repacked.toImage() == image, "encoding and decoding gives the same pixels");
    require(RleImage(repacked.toImage()).data() == repacked.data(), "the same pixels are encoded the same way");
    return 0;
}
