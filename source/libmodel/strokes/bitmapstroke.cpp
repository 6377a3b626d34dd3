#include "libmodel/strokes/bitmapstroke.h"

#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/imagemarker.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/ownpixels.h"
#include "libmodel/strokes/smoothsampling.h"

#include <QDataStream>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Model {

BitmapStroke::BitmapStroke(const QImage &image, QRect rect) : m_image(image), m_rect(rect)
{
}

std::unique_ptr<Stroke> BitmapStroke::clone() const
{
    return std::make_unique<BitmapStroke>(*this);
}

QRect BitmapStroke::render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint, double) const
{
    const QRect touched = mappedBounds(transform, m_rect) & dirtyRect & target.rect();
    if (touched.isEmpty())
        return {};
    if (m_image.isNull())
        return touched;
    const bool isOfSize = m_image.size() == m_rect.size();
    if (isOfSize && transform.type() <= QTransform::TxTranslate)
        drawMoved(target, touched, {transform.dx(), transform.dy()});
    else
        drawTransformed(target, touched, transform);
    return touched;
}

// Pixels that are moved only go to whole pixels.
void BitmapStroke::drawMoved(QImage &target, QRect rect, QPointF shift) const
{
    // What a sum with whole pixels has left in the last bits must not decide.
    constexpr double traces = 1.0e-7;
    const QPoint to(int(std::floor(shift.x() + 0.5 + traces)), int(std::floor(shift.y() + 0.5 + traces)));
    const QPoint offset = m_rect.topLeft() + to;
    composite(target, m_image, rect.translated(-offset), true, offset);
}

void BitmapStroke::drawTransformed(QImage &target, QRect rect, const QTransform &transform) const
{
    const OwnPixels own(m_rect, transform, 1.0);
    const QTransform toRect =
        QTransform::fromScale(double(m_rect.width()) / m_image.width(), double(m_rect.height()) / m_image.height()) *
        QTransform::fromTranslate(m_rect.x(), m_rect.y());
    bool isInvertible = false;
    const QTransform toSource = (toRect * own.toOwn).inverted(&isInvertible);
    if (!isInvertible)
        return;
    const QImage drawn = sampledSmoothly(m_image, toSource, rect.translated(-own.origin));
    composite(target, drawn, drawn.rect(), true, rect.topLeft());
}

bool BitmapStroke::cutInside(const QPainterPath &)
{
    return true;
}

bool BitmapStroke::cutOutside(const QPainterPath &path)
{
    const QRectF bounds(m_rect);
    if (!path.contains(bounds) && !path.intersects(bounds)) {
        m_rect = QRect();
        m_image = QImage();
        return true;
    }
    const QRect kept = alignedBounds(path.boundingRect()) & m_rect;
    if (kept.isEmpty() || kept == m_rect)
        return true;
    if (!m_image.isNull()) {
        const double scale = double(m_image.width()) / m_rect.width();
        // In a file the pixels may have any other shape than the rectangle; there are never more of them than there
        // were, and a copy of none would be one of all of them.
        const auto scaled = [scale](int length, int most) {
            return int(std::lround(std::min(length * scale, double(most))));
        };
        const QSize size(std::max(scaled(kept.width(), m_image.width()), 1),
                         std::max(scaled(kept.height(), m_image.height()), 1));
        const QPoint topLeft(scaled(kept.left() - m_rect.left(), m_image.width() - 1),
                             scaled(kept.top() - m_rect.top(), m_image.height() - 1));
        m_image = m_image.copy(QRect(topLeft, size));
    }
    m_rect = kept;
    return true;
}

void BitmapStroke::write(QDataStream &stream) const
{
    stream << m_rect;
    writeMarkedImage(stream, m_image);
}

bool BitmapStroke::read(QDataStream &stream)
{
    StreamBudget budget;
    return read(stream, budget);
}

bool BitmapStroke::read(QDataStream &stream, StreamBudget &budget)
{
    m_image = QImage();
    return readRect(stream, m_rect) && readMarkedImage(stream, m_image, budget);
}

} // namespace Model
