#include "libmodel/scene/picturepainter.h"

#include "libmodel/strokes/inktiles.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <bit>
#include <cmath>

namespace Model {

namespace {

static_assert(largestReduction * largestReduction <= 256, "sums of as many pixels fit into 16 bits a channel");
/// A scale is taken for a power of two when it is this near.
constexpr double nearlyOne = 1.0 + 1e-9;

/// The pixels of the picture that are looked at together, or left alone when they hold no ink: as the map's tiles.
constexpr int blockWidth = InkTiles::tileWidth;
constexpr int blockHeight = largestReduction;

/// The four channels of a pixel, 16 bits each.
quint64 spread(QRgb pixel)
{
    const quint64 value = pixel;
    return (value | value << 24) & 0x00ff00ff00ff00ffULL;
}

QRgb packed(quint64 channels)
{
    channels &= 0x00ff00ff00ff00ffULL;
    return static_cast<QRgb>(channels | channels >> 24);
}

const QRgb *rowOf(const QImage &picture, int y)
{
    return reinterpret_cast<const QRgb *>(picture.constScanLine(std::clamp(y, 0, picture.height() - 1)));
}

/// Averages squares of \a factor pixels, a power of two.
class Averager
{
public:
    explicit Averager(int factor)
        : m_factor(factor),
          m_shift(2 * std::countr_zero(static_cast<unsigned>(factor))),
          m_rounding(0x0001000100010001ULL << m_shift >> 1)
    {
    }

    /// The average of the square whose top left pixel is \a x, \a y; outside of the picture its edge repeats.
    [[nodiscard]] QRgb at(const QImage &picture, int x, int y) const
    {
        const bool isInside = x >= 0 && x + m_factor <= picture.width();
        quint64 sum = m_rounding;
        for (int dy = 0; dy < m_factor; ++dy) {
            const QRgb *row = rowOf(picture, y + dy);
            for (int dx = 0; dx < m_factor; ++dx)
                sum += spread(row[isInside ? x + dx : std::clamp(x + dx, 0, picture.width() - 1)]);
        }
        return packed(sum >> m_shift);
    }

private:
    int m_factor;
    int m_shift;
    quint64 m_rounding;
};

} // namespace

int reductionFor(const QPainter *painter)
{
    if (!painter->testRenderHint(QPainter::SmoothPixmapTransform))
        return 1;
    const QTransform &transform = painter->deviceTransform();
    const double scale =
        std::max(std::hypot(transform.m11(), transform.m12()), std::hypot(transform.m21(), transform.m22()));
    int factor = 1;
    while (factor < largestReduction && scale * factor * 2.0 <= nearlyOne)
        factor *= 2;
    return factor;
}

QRect alignedTo(QRect rect, int step)
{
    const auto down = [step](int value) { return value - ((value % step) + step) % step; };
    return {QPoint(down(rect.left()), down(rect.top())),
            QPoint(down(rect.right()) + step - 1, down(rect.bottom()) + step - 1)};
}

QImage reducedPicture(const QImage &picture, QRect part, int factor, const InkTiles *ink)
{
    QImage reduced(part.width() / factor, part.height() / factor, QImage::Format_ARGB32_Premultiplied);
    if (reduced.isNull() || picture.isNull())
        return {};
    if (ink)
        reduced.fill(Qt::transparent);
    const Averager averager(factor);
    const QRect blocks = alignedTo(part, std::max(blockWidth, blockHeight));
    for (int top = blocks.top(); top <= blocks.bottom(); top += blockHeight) {
        for (int left = blocks.left(); left <= blocks.right(); left += blockWidth) {
            const QRect block = QRect(left, top, blockWidth, blockHeight) & part;
            if (block.isEmpty() || (ink && !ink->meets(block)))
                continue;
            for (int y = block.top(); y <= block.bottom(); y += factor) {
                QRgb *row = reinterpret_cast<QRgb *>(reduced.scanLine((y - part.top()) / factor));
                for (int x = block.left(); x <= block.right(); x += factor)
                    row[(x - part.left()) / factor] = averager.at(picture, x, y);
            }
        }
    }
    return reduced;
}

void paintPicture(QPainter *painter, const QImage &picture, QPoint origin, QRect rect, const InkTiles *ink)
{
    const QRect held = rect & QRect(origin, picture.size());
    if (held.isEmpty())
        return;
    const int factor = reductionFor(painter);
    if (factor == 1) {
        painter->drawImage(held.topLeft(), picture, held.translated(-origin));
        return;
    }
    const QRect part = alignedTo(held.translated(-origin), factor);
    const QRectF source = QRectF(held).translated(-QPointF(part.topLeft() + origin));
    painter->drawImage(QRectF(held), reducedPicture(picture, part, factor, ink),
                       QRectF(source.topLeft() / factor, source.size() / factor));
}

} // namespace Model
