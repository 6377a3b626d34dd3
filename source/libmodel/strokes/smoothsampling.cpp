#include "libmodel/strokes/smoothsampling.h"

#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/inktiles.h"
#include "libmodel/strokes/mappedbounds.h"

#include <QImage>

#include <algorithm>
#include <functional>
#include <vector>

namespace Model {

namespace {

constexpr int weights = 256;
constexpr int evenly = weights / 2;
constexpr double middle = 0.5;

/// A coordinate of a picture as the two pixels that it lies between.
struct Between
{
    int first = 0;
    int second = 0;
    int weightOfSecond = -1; ///< Of 256; less than 0 outside of the picture.

    Between() = default;

    /// \a at is within a picture of \a count pixels; beyond the last one's middle there is only that one.
    Between(double at, int count)
    {
        const double fromMiddle = at - middle;
        int below = int(fromMiddle); // towards 0, and std::floor() takes longer than all the rest
        if (fromMiddle < below)
            --below;
        first = std::max(below, 0);
        second = std::min(below + 1, count - 1);
        weightOfSecond = int((fromMiddle - below) * weights);
    }

    [[nodiscard]] bool isInside() const { return weightOfSecond >= 0; }
};

/// True if \a at falls on one of \a count pixels. What lies on an edge but for a rounding lies on it.
bool isWithin(double at, int count)
{
    constexpr double tolerance = 1.0 / 1024.0;
    return at >= -tolerance && at < count - tolerance;
}

int mix(int first, int second, int weightOfSecond)
{
    return first * (weights - weightOfSecond) + second * weightOfSecond;
}

/// Pixels that are the result of sampling, worked off in blocks, for a picture is mostly blank.
class Sampler
{
public:
    Sampler(const QImage &source, const QTransform &toSource, QRect pixels)
        : m_bits(source.constBits()),
          m_stride(source.bytesPerLine()),
          m_size(source.size()),
          m_toSource(toSource.m11(), toSource.m12(), toSource.m21(), toSource.m22(), toSource.dx(), toSource.dy()),
          m_pixels(pixels),
          m_ink(source.size())
    {
        const QRect used = sourceOf(pixels) & source.rect();
        if (isWorthScanning(used))
            m_ink.scan(source, used);
        else
            m_ink.add(used);
        if (isUpright())
            lookUpColumns();
    }

    void sampleInto(QImage &result) const
    {
        constexpr int blockWidth = 64;
        constexpr int blockHeight = 8;
        uchar *bits = result.bits();
        const qsizetype stride = result.bytesPerLine();
        for (int top = 0; top < m_pixels.height(); top += blockHeight) {
            for (int left = 0; left < m_pixels.width(); left += blockWidth) {
                const QRect block = QRect(left, top, blockWidth, blockHeight) & QRect(QPoint(0, 0), m_pixels.size());
                if (!m_ink.meets(sourceOf(block.translated(m_pixels.topLeft()))))
                    continue;
                for (int row = block.top(); row <= block.bottom(); ++row) {
                    uchar *out = bits + row * stride;
                    if (isUpright())
                        sampleUpright(out, row, block.left(), block.right());
                    else
                        sampleTurned(out, row, block.left(), block.right());
                }
            }
        }
    }

private:
    /// Rows stay rows and columns stay columns.
    [[nodiscard]] bool isUpright() const { return m_toSource.m12() == 0.0 && m_toSource.m21() == 0.0; }

    /// All pixels of the source that \a pixels can be made of.
    [[nodiscard]] QRect sourceOf(QRect pixels) const
    {
        constexpr double neighbours = 1.0;
        const QRectF mapped = m_toSource.mapRect(QRectF(pixels));
        return alignedBounds(mapped.adjusted(-neighbours, -neighbours, neighbours, neighbours));
    }

    /// Where most pixels of the source are stepped over, to look at all of them would take longer than to sample.
    [[nodiscard]] bool isWorthScanning(QRect used) const
    {
        constexpr qint64 mostPerPixel = 16;
        return qint64(used.width()) * used.height() <= mostPerPixel * m_pixels.width() * m_pixels.height();
    }

    void lookUpColumns()
    {
        m_columns.resize(size_t(m_pixels.width()));
        for (int column = 0; column < m_pixels.width(); ++column) {
            const double x = m_toSource.m11() * (m_pixels.left() + column + middle) + m_toSource.dx();
            if (isWithin(x, m_size.width()))
                m_columns[size_t(column)] = Between(x, m_size.width());
        }
        findHalvedColumns();
    }

    /// Where two pixels become one, and the next two the next one, as where a bitmap of the double size is drawn.
    void findHalvedColumns()
    {
        const auto inside = std::find_if(m_columns.begin(), m_columns.end(), std::mem_fn(&Between::isInside));
        if (inside == m_columns.end())
            return;
        int next = inside->first;
        const auto end = std::find_if_not(inside, m_columns.end(), [&next](const Between &across) {
            const bool isNext = across.weightOfSecond == evenly && across.first == next && across.second == next + 1;
            next += 2;
            return isNext;
        });
        m_firstHalved = int(inside - m_columns.begin());
        m_endOfHalved = int(end - m_columns.begin());
    }

    /// The same as mixed() for \a count pixels of a row, each the mean of four.
    static void halve(uchar *out, const uchar *upper, const uchar *lower, int count)
    {
        constexpr int rounding = 2;
        for (int i = 0; i < count; ++i, upper += 2, lower += 2)
            out[i] = uchar((upper[0] + upper[1] + lower[0] + lower[1] + rounding) >> 2);
    }

    [[nodiscard]] const uchar *rowAt(int y) const { return m_bits + y * m_stride; }

    [[nodiscard]] static uchar mixed(const uchar *upper, const uchar *lower, const Between &across, int weightOfLower)
    {
        constexpr int half = weights * weights / 2;
        const int above = mix(upper[across.first], upper[across.second], across.weightOfSecond);
        const int below = mix(lower[across.first], lower[across.second], across.weightOfSecond);
        return uchar((mix(above, below, weightOfLower) + half) / (weights * weights));
    }

    void sampleUpright(uchar *out, int row, int left, int right) const
    {
        const double y = m_toSource.m22() * (m_pixels.top() + row + middle) + m_toSource.dy();
        if (!isWithin(y, m_size.height()))
            return;
        const Between down(y, m_size.height());
        const uchar *upper = rowAt(down.first);
        const uchar *lower = rowAt(down.second);
        if (down.weightOfSecond == evenly && left >= m_firstHalved && right < m_endOfHalved) {
            const int from = m_columns[size_t(left)].first;
            halve(out + left, upper + from, lower + from, right - left + 1);
            return;
        }
        for (int column = left; column <= right; ++column) {
            const Between &across = m_columns[size_t(column)];
            if (across.isInside())
                out[column] = mixed(upper, lower, across, down.weightOfSecond);
        }
    }

    void sampleTurned(uchar *out, int row, int left, int right) const
    {
        const double y = m_pixels.top() + row + middle;
        for (int column = left; column <= right; ++column) {
            const double x = m_pixels.left() + column + middle;
            const double sourceX = m_toSource.m11() * x + m_toSource.m21() * y + m_toSource.dx();
            const double sourceY = m_toSource.m12() * x + m_toSource.m22() * y + m_toSource.dy();
            if (!isWithin(sourceX, m_size.width()) || !isWithin(sourceY, m_size.height()))
                continue;
            const Between down(sourceY, m_size.height());
            out[column] =
                mixed(rowAt(down.first), rowAt(down.second), Between(sourceX, m_size.width()), down.weightOfSecond);
        }
    }

    const uchar *m_bits;
    qsizetype m_stride;
    QSize m_size;
    QTransform m_toSource;
    QRect m_pixels;
    InkTiles m_ink;
    std::vector<Between> m_columns; ///< Where the pixels of each row lie; none for what is turned.
    int m_firstHalved = 0;
    int m_endOfHalved = 0;
};

} // namespace

QImage sampledSmoothly(const QImage &source, const QTransform &toSource, QRect pixels)
{
    QImage result = blankCoverage(pixels.size());
    if (source.depth() == 8 && !result.isNull())
        Sampler(source, toSource, pixels).sampleInto(result);
    return result;
}

} // namespace Model
