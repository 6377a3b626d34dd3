// The binary block of a drawing with strokes, as it stands in a scene file behind its base64.

#include "fuzzharness.h"
#include "pixelbytes.h"

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QByteArray>
#include <QDataStream>
#include <QPainterPath>
#include <QtEndian>

#include <memory>

using namespace Model;
using TestSupport::bytesHeld;
using TestSupport::require;

namespace {

/// Where the frame's size is not told by a scene, no larger one than this is tried: it would show nothing else.
constexpr int longestSide = 512;
constexpr QSize usualSize(64, 48);
constexpr std::size_t headerBytes = 2 * sizeof(qint32);

/// The input, of headerBytes at least, with a frame size at its head that costs little.
QByteArray withSmallFrame(const std::uint8_t *data, std::size_t size)
{
    QByteArray block(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto isSmall = [](qint32 side) { return side >= 1 && side <= longestSide; };
    if (isSmall(qFromBigEndian<qint32>(data)) && isSmall(qFromBigEndian<qint32>(data + sizeof(qint32))))
        return block;
    qToBigEndian<qint32>(usualSize.width(), block.data());
    qToBigEndian<qint32>(usualSize.height(), block.data() + sizeof(qint32));
    return block;
}

bool read(StrokeDrawing &drawing, const QByteArray &block)
{
    QDataStream stream(block);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    return drawing.read(stream);
}

QByteArray written(const StrokeDrawing &drawing)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    require(drawing.write(stream), "a drawing can be written");
    return block;
}

/// What the program can hold it can also keep: the drawing comes back from its own block, as it was.
void requireRoundTrip(const StrokeDrawing &drawing)
{
    const QByteArray block = written(drawing);
    StrokeDrawing again(usualSize);
    require(read(again, block), "a block that the program has written is no damaged one");
    require(again.size() == drawing.size(), "the frame's size comes back");
    require(again.strokes().recursiveCount() == drawing.strokes().recursiveCount(), "all strokes come back");
    // One that shows only some of the strokes is not kept.
    require(drawing.image().isNull() || drawing.isShownInPart() || again.image() == drawing.image(),
            "the coverage comes back");
    require(written(again) == block, "writing once more gives the same bytes");
}

void requireUsable(const StrokeDrawing &drawing)
{
    require(drawing.image().isNull() || drawing.image().size() == drawing.size(), "the image has the frame's size");
    require(!drawing.isEmpty() || drawing.image().isNull(), "an empty drawing has no image");
    require(QRect(QPoint(), drawing.size()).contains(drawing.inkedRect()) || drawing.inkedRect().isEmpty(),
            "ink lies on the frame");
}

/// Looks at every stroke as selecting and hitting do.
void visit(const CompoundStroke &compound)
{
    (void)compound.boundingRect();
    for (int i = 0; i < compound.count(); ++i) {
        const Stroke &child = compound.at(i);
        if (child.type() == Stroke::Type::Compound)
            visit(static_cast<const CompoundStroke &>(child));
        else if (child.type() == Stroke::Type::Single)
            (void)static_cast<const SingleStroke &>(child).toPath();
    }
}

/// What a user may do with a drawing that has come from a file.
void edit(StrokeDrawing &drawing)
{
    const QRect frame(QPoint(), drawing.size());
    const QRect half(frame.topLeft(), frame.center());
    QPainterPath rectangle;
    rectangle.addRect(half);
    QPainterPath ellipse;
    ellipse.addEllipse(frame);

    const std::shared_ptr<Drawing> copy = drawing.clone();
    QList<QRgb> colors;
    for (int i = 0; i <= 255; ++i)
        colors.append(qRgba(0, 0, 0, i));
    (void)drawing.thumbnail(QSize(20, 15), colors);

    std::unique_ptr<CompoundStroke> part = drawing.extract(ellipse);
    drawing.cutPath(rectangle);
    if (part)
        drawing.addStroke(std::move(part));
    drawing.merge(*copy);
    requireUsable(drawing);
    requireRoundTrip(drawing);

    (void)drawing.removeLastStroke();
    drawing.resize(frame.size() * 2, MR::FitMode::FitModeKeepAspect);
    (void)drawing.removeLastStroke();
    requireUsable(drawing);
    requireRoundTrip(drawing);
}

/// Reads \a block where there is little memory and little time: what is held must have been asked for, and what comes
/// of it must be as usable as any.
void readWithinLimits(const QByteArray &block)
{
    constexpr qint64 fewBytes = 1 << 18;
    constexpr qint64 fewUnits = 1 << 21;
    StreamBudget budget;
    budget.imageBytes = fewBytes;
    budget.drawingEffort = fewUnits;
    StrokeDrawing drawing(usualSize);
    QDataStream stream(block);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    (void)drawing.read(stream, budget);
    const qint64 taken = fewBytes - budget.imageBytes;
    require(taken >= 0 && taken <= fewBytes, "no more memory is taken than there is");
    require(budget.drawingEffort >= 0 && budget.drawingEffort <= fewUnits, "no more work is done than is allowed");
    require(bytesHeld(drawing.strokes()) + drawing.image().sizeInBytes() <= taken,
            "what is held has been taken from the budget");
    requireUsable(drawing);
    StrokeDrawing again(usualSize);
    require(read(again, written(drawing)), "a block that was cut short by a limit can be read again");
    require(again.strokes().recursiveCount() == drawing.strokes().recursiveCount(), "limits lose no strokes");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < headerBytes)
        return 0; // a drawing without a size, which is nowhere made use of
    StrokeDrawing drawing(usualSize);
    // Whether it is damaged or not: what came before the damage is to be as good as any drawing.
    const QByteArray block = withSmallFrame(data, size);
    (void)read(drawing, block);
    requireUsable(drawing);
    visit(drawing.strokes());
    requireRoundTrip(drawing);
    edit(drawing);
    readWithinLimits(block);
    return 0;
}
