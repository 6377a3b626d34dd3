#include "fuzz/seedblocks.h"

#include "libmodel/files/blockbuilder.h"

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/rleimage.h"

#include <QDataStream>
#include <QImage>
#include <QPainterPath>
#include <QTransform>

namespace TestSupport {

namespace {

constexpr int frameWidth = 64;
constexpr int frameHeight = 48;

BlockBuilder &point(BlockBuilder &block, float x, float y)
{
    return block.f32(x).f32(y);
}

BlockBuilder &ends(BlockBuilder &block)
{
    return block.f32(1).f32(0.5F).f32(2).f32(4);
}

/// A single stroke of \a tool with samples and one segment of each kind, its kind in front.
BlockBuilder &single(BlockBuilder &block, bool isPen, int tool)
{
    block.i32(0).u8(isPen ? 1 : 0).i32(tool).rect(1, 1, 40, 30);
    block.i32(2);
    point(block, 10, 10).f32(0.5F);
    point(block, 20, 12).f32(1);
    block.i32(3);
    point(block.i32(0), 10, 10).f32(1).f32(3);
    point(block.i32(1), 10, 10);
    ends(point(block, 20, 12));
    point(block.i32(2), 20, 20).f32(8);
    point(block, 20, 12);
    ends(point(block, 28, 20).u8(1));
    return block;
}

BlockBuilder &bitmap(BlockBuilder &block)
{
    return block.i32(2).rect(4, 4, 7, 5).i32(2).rle(4, 2, QByteArray::fromHex("0600010301320a"));
}

QByteArray path(const QPainterPath &path)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    stream << path;
    return bytes;
}

/// The end of a compound that is cut, limited, moved and turned.
BlockBuilder &maskedEnd(BlockBuilder &block)
{
    QPainterPath cut;
    cut.addRect(5, 5, 10, 10);
    cut.addEllipse(20, 20, 9, 5);
    QPainterPath keep;
    keep.moveTo(0, 0);
    keep.lineTo(60, 0);
    keep.cubicTo(70, 20, 60, 40, 0, 45);
    keep.setFillRule(Qt::WindingFill);
    QByteArray transform;
    QDataStream stream(&transform, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    stream << QTransform().translate(3, 4).rotate(30).scale(2, 0.5);
    return block.raw(path(cut)).raw(path(keep)).raw(transform);
}

BlockBuilder head()
{
    return BlockBuilder().size(frameWidth, frameHeight);
}

/// Compounds within compounds, \a depth of them, around one bitmap.
QByteArray nested(int depth)
{
    BlockBuilder block = head();
    block.i64(1);
    for (int i = 0; i < depth; ++i)
        block.i32(1).i64(1);
    bitmap(block);
    for (int i = 0; i <= depth; ++i)
        block.plainCompoundEnd();
    return block.i32(-1).bytes();
}

QByteArray runLength(const QImage &image)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    Model::RleImage(image).write(stream);
    return bytes;
}

QImage coverage(QSize size, QRect inked)
{
    QImage image(size, QImage::Format_Alpha8);
    image.fill(0);
    for (int y = inked.top(); y <= inked.bottom(); ++y) {
        for (int x = inked.left(); x <= inked.right(); ++x)
            image.scanLine(y)[x] = uchar(1 + (x * 7 + y) % 255);
    }
    return image;
}

} // namespace

std::vector<QByteArray> strokeBlocks()
{
    std::vector<QByteArray> blocks;
    blocks.push_back(head().i64(0).plainCompoundEnd().i32(-1).bytes());
    blocks.push_back(head().i64(0).plainCompoundEnd().bytes()); // no marker
    for (int tool = 0; tool <= 2; ++tool) {
        BlockBuilder block = head().i64(2);
        single(single(block, true, tool), false, tool);
        blocks.push_back(block.plainCompoundEnd().i32(-1).bytes());
    }
    BlockBuilder pixels = head().i64(1);
    bitmap(pixels).plainCompoundEnd().i32(2).raw(
        runLength(coverage(QSize(frameWidth, frameHeight), QRect(4, 4, 4, 2))));
    blocks.push_back(pixels.bytes());

    BlockBuilder mixed = head().i64(3);
    bitmap(mixed).i32(1).i64(2);
    maskedEnd(single(bitmap(mixed), false, 1));
    single(mixed, true, 2);
    blocks.push_back(maskedEnd(mixed).i32(-1).bytes());

    BlockBuilder unknown = head().i64(3).i32(9);
    bitmap(unknown).i32(0).u8(1).i32(0).rect(1, 1, 9, 9).i32(0).i32(2).i32(7);
    point(unknown.i32(0), 5, 5).f32(1).f32(2);
    blocks.push_back(unknown.plainCompoundEnd().i32(-1).bytes());

    blocks.push_back(nested(5));
    // So deep that any further wrapping goes beyond what can be read.
    blocks.push_back(nested(Model::CompoundStroke::maximumDepth - 2));
    blocks.push_back(nested(Model::CompoundStroke::maximumDepth + 10));
    return blocks;
}

std::vector<QByteArray> runLengthBlocks()
{
    std::vector<QByteArray> blocks;
    blocks.push_back(runLength(QImage()));
    blocks.push_back(runLength(coverage(QSize(1, 1), QRect(0, 0, 1, 1))));
    blocks.push_back(runLength(coverage(QSize(40, 30), QRect())));
    blocks.push_back(runLength(coverage(QSize(40, 30), QRect(0, 0, 40, 30))));
    blocks.push_back(runLength(coverage(QSize(40, 30), QRect(10, 10, 5, 1))));
    blocks.push_back(runLength(coverage(QSize(4, 700), QRect(1, 650, 2, 3))));
    blocks.push_back(runLength(coverage(QSize(700, 4), QRect(300, 1, 300, 2))));
    blocks.push_back(runLength(coverage(QSize(70000, 2), QRect(69990, 1, 10, 1))));
    blocks.push_back(BlockBuilder().rle(4, 2, QByteArray::fromHex("06000103013206ff0a")).bytes());
    blocks.push_back(BlockBuilder().rle(1 << 20, 1 << 20, QByteArray::fromHex("0a")).bytes());
    blocks.push_back(BlockBuilder().rle(-1, 5, QByteArray::fromHex("0a")).bytes());
    blocks.push_back(BlockBuilder().i32(4).i32(4).i32(-1).bytes()); // a null array
    return blocks;
}

} // namespace TestSupport
