#include "libmodel/files/pictureblock.h"

#include "libmodel/files/memorybudget.h"

#include <QBuffer>
#include <QDataStream>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <optional>

namespace Model {

namespace {

constexpr qint32 noPicture = 0;
constexpr qint32 pngFollows = 1;

/// The parts of a PNG file (ISO/IEC 15948): a signature, then chunks of length, name, content and checksum.
namespace Png {
constexpr QByteArrayView signature("\x89PNG\r\n\x1a\n", 8);
constexpr qsizetype chunkHead = 8;
constexpr qsizetype chunkFrame = 12; // head and checksum
constexpr qsizetype headerSize = 13;
} // namespace Png

struct Header
{
    qint64 width = 0;
    qint64 height = 0;
    int bitDepth = 0;

    /// The most memory that the picture may take decoded.
    [[nodiscard]] qint64 bytes() const
    {
        constexpr int deepest = 8;
        return width * height * (bitDepth > deepest ? 8 : 4);
    }
};

/// The first chunk, which tells the size.
std::optional<Header> headerOf(QByteArrayView png)
{
    constexpr qint64 longestSide = 1'000'000; // the PNG library's own limit
    const qsizetype start = Png::signature.size();
    if (!png.startsWith(Png::signature) || png.size() < start + Png::chunkFrame + Png::headerSize ||
        png.sliced(start + 4, 4) != "IHDR")
        return std::nullopt;
    const QByteArrayView content = png.sliced(start + Png::chunkHead, Png::headerSize);
    const Header header{qFromBigEndian<quint32>(content.data()), qFromBigEndian<quint32>(content.data() + 4),
                        quint8(content[8])};
    const auto isUsable = [](qint64 side) { return side > 0 && side <= longestSide; };
    if (!isUsable(header.width) || !isUsable(header.height))
        return std::nullopt;
    return header;
}

/// Lets through the chunks of a picture, but for what nobody needs and somebody could do harm with.
///
/// A few bytes of compressed text unpack to megabytes, chunk after chunk. Notes and profiles as programs write them are
/// small and few.
class ChunkFilter
{
public:
    [[nodiscard]] bool isWanted(QByteArrayView name, qsizetype length)
    {
        constexpr qsizetype longestText = 1024;
        constexpr qsizetype longestProfile = 1 << 20;
        if (name == "iCCP")
            return length <= longestProfile && m_profilesLeft-- > 0;
        if (name == "zTXt" || name == "iTXt" || name == "tEXt")
            return length <= longestText && m_textsLeft-- > 0;
        return name == "IHDR" || name == "PLTE" || name == "IDAT" || name == "IEND" || name == "tRNS" ||
               name == "gAMA" || name == "cHRM" || name == "sRGB" || name == "pHYs" || name == "oFFs" ||
               name == "bKGD" || name == "sBIT";
    }

private:
    int m_textsLeft = 32;
    int m_profilesLeft = 1;
};

/// \a png with only the chunks that ChunkFilter lets through; as far as it goes, if it breaks off.
QByteArray filtered(QByteArrayView png)
{
    QByteArray result = Png::signature.toByteArray();
    result.reserve(png.size());
    ChunkFilter filter;
    qsizetype position = Png::signature.size();
    while (png.size() - position >= Png::chunkFrame) {
        const auto length = qsizetype(qFromBigEndian<quint32>(png.data() + position));
        const QByteArrayView name = png.sliced(position + 4, 4);
        if (length > png.size() - position - Png::chunkFrame)
            break;
        if (filter.isWanted(name, length))
            result += png.sliced(position, length + Png::chunkFrame);
        position += length + Png::chunkFrame;
        if (name == "IEND")
            break;
    }
    return result;
}

/// Lifts Qt's limit on the memory of one picture, as long as it lives: MemoryBudget does that work, and honest pictures
/// may be large.
class UnlimitedAllocation
{
public:
    UnlimitedAllocation() { QImageReader::setAllocationLimit(0); }
    ~UnlimitedAllocation() { QImageReader::setAllocationLimit(m_before); }
    UnlimitedAllocation(const UnlimitedAllocation &) = delete;
    UnlimitedAllocation &operator=(const UnlimitedAllocation &) = delete;

private:
    int m_before = QImageReader::allocationLimit();
};

QImage readPng(QByteArray png)
{
    const UnlimitedAllocation unlimited;
    QBuffer buffer(&png);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "png");
    reader.setAutoDetectImageFormat(false);
    return reader.read();
}

} // namespace

QByteArray encodePicture(const QImage &image)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream << image;
    return block;
}

DecodedImage decodePicture(const QByteArray &block, MemoryBudget &memory)
{
    QDataStream stream(block);
    qint32 marker = noPicture;
    stream >> marker;
    if (stream.status() == QDataStream::Ok && marker == noPicture)
        return {};
    return decodePng(marker == pngFollows ? QByteArrayView(block).sliced(sizeof marker) : QByteArrayView(), memory);
}

DecodedImage decodePng(QByteArrayView png, MemoryBudget &memory)
{
    DecodedImage result;
    const std::optional<Header> header = headerOf(png);
    if (!header) {
        result.isDamaged = true;
        return result;
    }
    if (header->bytes() > memory.bytesLeft()) {
        result.exceedsMemory = true;
        return result;
    }
    result.image = readPng(filtered(png));
    result.isDamaged = result.image.isNull();
    result.exceedsMemory = !memory.take(result.image.sizeInBytes());
    return result;
}

} // namespace Model
