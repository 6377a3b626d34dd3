#include "libmodel/strokes/blending.h"

#include "libmodel/strokes/inktiles.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Model {

namespace {

constexpr int opaque = 255;
constexpr int blockSize = 8;
constexpr size_t blockBytes = blockSize * sizeof(QRgb);
using Bytes = std::array<uchar, blockBytes>;
using Pixels = std::array<quint32, blockSize>;

/// a * b / 255, rounded, for two bytes; within 16 bits, so that a block is worked in vector registers.
uchar scaled(quint16 a, quint16 b)
{
    const auto product = static_cast<quint16>(a * b);
    return static_cast<uchar>(static_cast<quint16>(product + (product >> 8U) + 0x80U) >> 8U);
}

/// \a value in all four bytes.
quint32 spread(int value)
{
    return static_cast<quint32>(value) * 0x01010101U;
}

/// All channels of \a color times \a factor / 255.
QRgb scaledColor(QRgb color, quint16 factor)
{
    const auto channel = [factor](int value) { return int(scaled(static_cast<quint16>(value), factor)); };
    return qRgba(channel(qRed(color)), channel(qGreen(color)), channel(qBlue(color)), channel(qAlpha(color)));
}

QRgb over(QRgb above, quint32 passing, QRgb below)
{
    return above + scaledColor(below, static_cast<quint16>(passing & 0xffU));
}

/// over() for a block of pixels.
void blendBlock(QRgb *target, const QRgb *below, const Pixels &above, const Pixels &passing)
{
    Bytes a;
    Bytes b;
    Bytes p;
    std::memcpy(a.data(), above.data(), blockBytes);
    std::memcpy(b.data(), below, blockBytes);
    std::memcpy(p.data(), passing.data(), blockBytes);
    for (size_t i = 0; i < blockBytes; ++i)
        b[i] = static_cast<uchar>(a[i] + scaled(b[i], p[i]));
    std::memcpy(target, b.data(), blockBytes);
}

/// Which of the \a count blocks (at most 64) from \a coverage on hold anything: one bit for each.
quint64 inkedBlocks(const uchar *coverage, int count)
{
    quint64 inked = 0;
    for (int i = 0; i < count; ++i) {
        quint64 together;
        static_assert(sizeof together == blockSize);
        std::memcpy(&together, coverage + i * blockSize, sizeof together);
        inked |= quint64(together != 0) << i;
    }
    return inked;
}

void blendCoverageBlock(QRgb *target, const uchar *coverage, const BlendColors &colors)
{
    Pixels above;
    Pixels passing;
    quint64 together;
    std::memcpy(&together, coverage, sizeof together);
    // The inside of a line: one value throughout.
    if (together == coverage[0] * 0x0101010101010101U) {
        above.fill(colors.color(coverage[0]));
        if (colors.passing(coverage[0]) == 0) {
            std::memcpy(target, above.data(), blockBytes);
            return;
        }
        passing.fill(colors.passing(coverage[0]));
    } else {
        for (size_t i = 0; i < blockSize; ++i) {
            above[i] = colors.color(coverage[i]);
            passing[i] = colors.passing(coverage[i]);
        }
    }
    blendBlock(target, target, above, passing);
}

void blendCoverageRow(QRgb *target, const uchar *coverage, int length, const BlendColors &colors)
{
    constexpr int blocksAtOnce = 8;
    int x = 0;
    while (x + blockSize <= length) {
        const int blocks = std::min(blocksAtOnce, (length - x) / blockSize);
        // Line art changes from block to block; asked one by one, the processor would guess wrong about each.
        quint64 inked =
            blocks == blocksAtOnce ? inkedBlocks(coverage + x, blocksAtOnce) : inkedBlocks(coverage + x, blocks);
        for (; inked != 0; inked &= inked - 1) {
            const int at = x + std::countr_zero(inked) * blockSize;
            blendCoverageBlock(target + at, coverage + at, colors);
        }
        x += blocks * blockSize;
    }
    for (; x < length; ++x)
        target[x] = over(colors.color(coverage[x]), colors.passing(coverage[x]), target[x]);
}

/// Has the bytes of \a rect, which lie far apart in memory, fetched while there is other work.
void fetchAhead(const QImage &coverage, QRect rect)
{
#if defined(__GNUC__)
    constexpr int cacheLine = 64;
    const uchar *row = coverage.constScanLine(rect.top()) + rect.left();
    for (int y = rect.top(); y <= rect.bottom(); ++y, row += coverage.bytesPerLine()) {
        for (int x = 0; x < rect.width(); x += cacheLine)
            __builtin_prefetch(row + x);
    }
#else
    Q_UNUSED(coverage)
    Q_UNUSED(rect)
#endif
}

void blendPictureRow(QRgb *target, const QRgb *below, const QRgb *above, int length)
{
    int x = 0;
    for (; x + blockSize <= length; x += blockSize) {
        Pixels upper;
        Pixels passing;
        std::memcpy(upper.data(), above + x, blockBytes);
        quint32 together = 0;
        for (const quint32 pixel : upper)
            together |= pixel;
        if (together == 0) {
            std::memcpy(target + x, below + x, blockBytes);
            continue;
        }
        for (size_t i = 0; i < blockSize; ++i)
            passing[i] = spread(opaque - qAlpha(upper[i]));
        blendBlock(target + x, below + x, upper, passing);
    }
    for (; x < length; ++x)
        target[x] = over(above[x], spread(opaque - qAlpha(above[x])), below[x]);
}

bool isPicture(const QImage &image)
{
    return image.format() == QImage::Format_ARGB32_Premultiplied;
}

QRgb *pixelsAt(uchar *bits, qsizetype stride, int x, int y)
{
    return reinterpret_cast<QRgb *>(bits + y * stride) + x;
}

const QRgb *pixelsAt(const QImage &image, int x, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y)) + x;
}

} // namespace

BlendColors::BlendColors(const QList<QRgb> &colorTable, double opacity)
{
    Q_ASSERT(size_t(colorTable.size()) == m_colors.size());
    // The painter's own steps: opacities of 256 levels, brought to 255.
    constexpr int levels = 256;
    const auto factor = static_cast<quint16>(std::clamp(qRound(opacity * levels), 0, levels) * opaque >> 8);
    for (size_t i = 0; i < m_colors.size(); ++i) {
        m_colors[i] = scaledColor(qPremultiply(colorTable.at(static_cast<qsizetype>(i))), factor);
        m_passing[i] = spread(opaque - qAlpha(m_colors[i]));
    }
}

void blendCoverage(QImage &target, QPoint at, const QImage &coverage, QRect part, const BlendColors &colors,
                   const InkTiles *ink)
{
    if (!isPicture(target) || coverage.depth() != 8)
        return;
    const QPoint offset = at - part.topLeft();
    const QRect from = part & coverage.rect() & target.rect().translated(-offset);
    if (from.isEmpty())
        return;
    uchar *bits = target.bits();
    const qsizetype stride = target.bytesPerLine();
    const auto blend = [&](QRect run) {
        for (int y = run.top(); y <= run.bottom(); ++y)
            blendCoverageRow(pixelsAt(bits, stride, run.left() + offset.x(), y + offset.y()),
                             coverage.constScanLine(y) + run.left(), run.width(), colors);
    };
    if (!ink) {
        blend(from);
        return;
    }
    QRect fetched;
    ink->forEachRun(from, [&](QRect run) {
        fetchAhead(coverage, run);
        if (!fetched.isEmpty())
            blend(fetched);
        fetched = run;
    });
    if (!fetched.isEmpty())
        blend(fetched);
}

void blendPictures(QImage &target, const QImage &below, const QImage &above, QRect rect)
{
    const QRect part = rect & target.rect();
    if (!isPicture(target) || !isPicture(below) || !isPicture(above) || below.size() != target.size() ||
        above.size() != target.size() || part.isEmpty())
        return;
    uchar *bits = target.bits();
    const qsizetype stride = target.bytesPerLine();
    for (int y = part.top(); y <= part.bottom(); ++y)
        blendPictureRow(pixelsAt(bits, stride, part.left(), y), pixelsAt(below, part.left(), y),
                        pixelsAt(above, part.left(), y), part.width());
}

} // namespace Model
