#include "libmodel/files/contentblocks.h"

#include "libmodel/files/base64.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/files/pictureblock.h"
#include "libmodel/files/workbudget.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/rleimage.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QDataStream>
#include <QIODevice>

#include <utility>

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
    WorkBudget work;
    return decodeStrokes(base64, frameSize, memory, work);
}

DecodedStrokes decodeStrokes(const QByteArray &base64, QSize frameSize, MemoryBudget &memory, WorkBudget &work)
{
    auto [block, isCut] = decodeBase64(base64);
    work.earn(base64.size());
    DecodedStrokes result = decodeStrokeBlock(std::move(block), frameSize, memory, work);
    result.isDamaged = result.isDamaged || isCut;
    return result;
}

DecodedStrokes decodeStrokeBlock(QByteArray block, QSize frameSize, MemoryBudget &memory, WorkBudget &work)
{
    DecodedStrokes result{std::make_shared<StrokeDrawing>(frameSize)};
    if (block.size() < sizeHeaderBytes) {
        result.isDamaged = true;
        return result;
    }
    overwriteSize(block, frameSize);
    QDataStream stream(block);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    StreamBudget budget;
    budget.imageBytes = memory.bytesLeft();
    budget.drawingEffort = work.left();
    result.isDamaged = !result.drawing->read(stream, budget);
    const bool taken = memory.take(memory.bytesLeft() - budget.imageBytes);
    Q_ASSERT(taken);
    work.take(work.left() - budget.drawingEffort);
    result.isDamaged = result.isDamaged || budget.lostPixels;
    result.isUnrendered = budget.isUnrendered;
    result.isShownInPart = result.drawing->isShownInPart() && !result.isUnrendered;
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
    const auto [block, isCut] = decodeBase64(base64);
    QDataStream stream(block);
    RleImage packed;
    packed.read(stream);
    const bool isWhole = stream.status() == QDataStream::Ok;
    DecodedImage result;
    result.isDamaged = isCut;
    if (isWhole && packed.width() == 0 && packed.height() == 0)
        return result;
    const auto isUsable = [](int side) { return side > 0 && side <= AnnotationLayer::maximumSide; };
    if (!isWhole || !isUsable(packed.width()) || !isUsable(packed.height())) {
        result.isDamaged = true;
    } else if (!memory.take(coverageBytes({packed.width(), packed.height()}))) {
        result.exceedsMemory = true;
    } else {
        result.image = packed.toImage();
        if (result.image.isNull() || !result.image.reinterpretAsFormat(QImage::Format_Indexed8)) {
            result.isDamaged = true;
            result.image = QImage();
        }
    }
    return result;
}

QByteArray encodeImage(const QImage &image)
{
    return encodePicture(image).toBase64();
}

DecodedImage decodeImage(const QByteArray &base64, MemoryBudget &memory)
{
    const auto [block, isCut] = decodeBase64(base64);
    DecodedImage result = decodePicture(block, memory);
    result.isDamaged = result.isDamaged || isCut;
    return result;
}

} // namespace Model
