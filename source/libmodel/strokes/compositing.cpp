#include "libmodel/strokes/compositing.h"

#include <QImage>

#include <algorithm>
#include <cstring>

namespace Model {

namespace {

constexpr int opaque = 255;
constexpr int blockSize = 16;
using Block = std::array<uchar, blockSize>;

CompositingTable makePenTable()
{
    CompositingTable table;
    for (int d = 0; d <= opaque; ++d) {
        for (int s = 0; s <= opaque; ++s)
            table[static_cast<size_t>(d)][static_cast<size_t>(s)] = static_cast<uchar>(d + (opaque - d) * s / opaque);
    }
    return table;
}

CompositingTable makeEraserTable()
{
    CompositingTable table;
    for (int d = 0; d <= opaque; ++d) {
        for (int s = 0; s <= opaque; ++s)
            table[static_cast<size_t>(d)][static_cast<size_t>(s)] = static_cast<uchar>((opaque - s) * d / opaque);
    }
    return table;
}

/// a * b / 255, cut to an integer, without a division: exact for all products of two bytes, and within 16 bits, so
/// that a block is worked in vector registers.
uchar scaled(quint16 a, quint16 b)
{
    const auto product = static_cast<quint16>(a * b);
    return static_cast<uchar>(static_cast<quint16>(product + 1U + (product >> 8U)) >> 8U);
}

// The three rules. Each leaves the destination as it is where the source is 0, which is why empty blocks are skipped.

struct PenRule
{
    const CompositingTable &table = penTable();

    uchar single(uchar d, uchar s) const { return table[d][s]; }

    static void block(Block &d, const Block &s)
    {
        for (size_t i = 0; i < blockSize; ++i)
            d[i] = static_cast<uchar>(d[i] + scaled(static_cast<uchar>(~d[i]), s[i]));
    }
};

struct EraserRule
{
    const CompositingTable &table = eraserTable();

    uchar single(uchar d, uchar s) const { return table[d][s]; }

    static void block(Block &d, const Block &s)
    {
        for (size_t i = 0; i < blockSize; ++i)
            d[i] = scaled(static_cast<uchar>(~s[i]), d[i]);
    }
};

struct MaximumRule
{
    static uchar single(uchar d, uchar s) { return std::max(d, s); }

    static void block(Block &d, const Block &s)
    {
        for (size_t i = 0; i < blockSize; ++i)
            d[i] = std::max(d[i], s[i]);
    }
};

bool isEmptyBlock(const uchar *bytes)
{
    quint64 first;
    quint64 second;
    std::memcpy(&first, bytes, sizeof first);
    std::memcpy(&second, bytes + sizeof first, sizeof second);
    return (first | second) == 0;
}

template<typename Rule>
void combineRow(uchar *destination, const uchar *source, qsizetype length, const Rule &rule)
{
    qsizetype x = 0;
    for (; x + blockSize <= length; x += blockSize) {
        if (isEmptyBlock(source + x))
            continue;
        Block d;
        Block s;
        std::memcpy(d.data(), destination + x, blockSize);
        std::memcpy(s.data(), source + x, blockSize);
        Rule::block(d, s);
        std::memcpy(destination + x, d.data(), blockSize);
    }
    for (; x < length; ++x)
        destination[x] = rule.single(destination[x], source[x]);
}

template<typename Rule>
void combine(QImage &destination, const QImage &source, QRect rect, QPoint offset, const Rule &rule)
{
    if (destination.depth() != 8 || source.depth() != 8)
        return;
    const QRect from = rect & source.rect() & destination.rect().translated(-offset);
    if (from.isEmpty())
        return;
    const QRect to = from.translated(offset);
    const qsizetype stride = destination.bytesPerLine();
    uchar *row = destination.bits() + to.top() * stride + to.left();
    for (int y = from.top(); y <= from.bottom(); ++y, row += stride)
        combineRow(row, source.constScanLine(y) + from.left(), from.width(), rule);
}

} // namespace

const CompositingTable &penTable()
{
    static const CompositingTable table = makePenTable();
    return table;
}

const CompositingTable &eraserTable()
{
    static const CompositingTable table = makeEraserTable();
    return table;
}

void initializeCompositingTables()
{
    penTable();
    eraserTable();
}

void composite(QImage &destination, const QImage &source, QRect rect, bool isPen, QPoint offset)
{
    if (isPen)
        combine(destination, source, rect, offset, PenRule());
    else
        combine(destination, source, rect, offset, EraserRule());
}

void compositeMax(QImage &destination, const QImage &source, QRect rect, QPoint offset)
{
    combine(destination, source, rect, offset, MaximumRule());
}

} // namespace Model
