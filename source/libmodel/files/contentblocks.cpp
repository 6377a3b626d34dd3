#include "libmodel/files/contentblocks.h"

#include "libmodel/files/memorybudget.h"
#include "libmodel/files/pictureblock.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/rleimage.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QDataStream>
#include <QIODevice>

namespace Model {

namespace {

constexpr qsizetype sizeHeaderBytes = 2 * sizeof(qint32);

/// Puts \a size where a strokes block has the drawing's, so that reading cannot make an image of any other size.
void overwriteSize(QByteArray &block, QSize size)
{
    QDataStream header(&block, QIODevice::ReadWrite);
    header << size;
}

} // namespace

QByteArray encodeStrokes(const StrokeDrawing &drawing)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    drawing.write(stream);
    return block.toBase64();
}

DecodedStrokes decodeStrokes(const QByteArray &base64, QSize frameSize, MemoryBudget &memory)
{
    DecodedStrokes result{std::make_shared<StrokeDrawing>(frameSize)};
    QByteArray block = QByteArray::fromBase64(base64);
    if (block.size() < sizeHeaderBytes) {
        result.isDamaged = true;
        return result;
    }
    overwriteSize(block, frameSize);
    QDataStream stream(block);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    StreamBudget budget;
    budget.imageBytes = memory.bytesLeft();
    result.isDamaged = !result.drawing->read(stream, budget);
    const bool taken = memory.take(memory.bytesLeft() - budget.imageBytes);
    Q_ASSERT(taken);
    result.isDamaged = result.isDamaged || budget.lostPixels;
    result.isUnrendered = budget.isUnrendered;
    result.exceedsMemory = !taken || budget.exceedsMemory;
    return result;
}

QByteArray encodeAnnotation(const QImage &image)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    RleImage(image).write(stream);
    return block.toBase64();
}

DecodedImage decodeAnnotation(const QByteArray &base64, MemoryBudget &memory)
{
    // A strip beside a frame is some hundred pixels wide; far larger ones are nobody's handwriting.
    constexpr int maximumSide = 4096;
    const QByteArray block = QByteArray::fromBase64(base64);
    QDataStream stream(block);
    RleImage packed;
    packed.read(stream);
    const bool isWhole = stream.status() == QDataStream::Ok;
    if (isWhole && packed.width() == 0 && packed.height() == 0)
        return {};
    DecodedImage result;
    const auto isUsable = [](int side) { return side > 0 && side <= maximumSide; };
    if (!isWhole || !isUsable(packed.width()) || !isUsable(packed.height())) {
        result.isDamaged = true;
    } else if (!memory.take(qint64(packed.width()) * packed.height())) {
        result.exceedsMemory = true;
    } else {
        result.image = packed.toImage();
        result.isDamaged = result.image.isNull() || !result.image.reinterpretAsFormat(QImage::Format_Indexed8);
        if (result.isDamaged)
            result.image = QImage();
    }
    return result;
}

QByteArray encodeImage(const QImage &image)
{
    return encodePicture(image).toBase64();
}

DecodedImage decodeImage(const QByteArray &base64, MemoryBudget &memory)
{
    return decodePicture(QByteArray::fromBase64(base64), memory);
}

} // namespace Model
