#include "libmodel/files/contentblocks.h"

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

std::shared_ptr<StrokeDrawing> decodeStrokes(const QByteArray &base64, QSize frameSize, bool *isDamaged)
{
    auto drawing = std::make_shared<StrokeDrawing>(frameSize);
    QByteArray block = QByteArray::fromBase64(base64);
    if (block.size() >= sizeHeaderBytes) {
        overwriteSize(block, frameSize);
        QDataStream stream(block);
        stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
        if (drawing->read(stream))
            return drawing;
    }
    *isDamaged = true;
    // What could be read stays; without a size nothing could.
    return drawing->size() == frameSize ? drawing : std::make_shared<StrokeDrawing>(frameSize);
}

QByteArray encodeAnnotation(const QImage &image)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    RleImage(image).write(stream);
    return block.toBase64();
}

QImage decodeAnnotation(const QByteArray &base64, bool *isDamaged)
{
    // A strip beside a frame is some hundred pixels wide; far larger ones are nobody's handwriting.
    constexpr int maximumSide = 4096;
    const QByteArray block = QByteArray::fromBase64(base64);
    QDataStream stream(block);
    RleImage packed;
    packed.read(stream);
    if (stream.status() == QDataStream::Ok && packed.width() == 0 && packed.height() == 0)
        return {};
    QImage image;
    if (stream.status() == QDataStream::Ok && packed.width() <= maximumSide && packed.height() <= maximumSide)
        image = packed.toImage();
    if (image.isNull() || !image.reinterpretAsFormat(QImage::Format_Indexed8)) {
        *isDamaged = true;
        return {};
    }
    return image;
}

QByteArray encodeImage(const QImage &image)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream << image;
    return block.toBase64();
}

QImage decodeImage(const QByteArray &base64, bool *isDamaged)
{
    const QByteArray block = QByteArray::fromBase64(base64);
    QDataStream stream(block);
    QImage image;
    stream >> image;
    if (stream.status() == QDataStream::Ok)
        return image;
    *isDamaged = true;
    return {};
}

} // namespace Model
