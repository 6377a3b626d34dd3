#include "libmodel/strokes/bitmapstroke.h"

#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/imagemarker.h"
#include "libmodel/strokes/mappedbounds.h"

#include <QDataStream>
#include <QPainter>
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

// Pixels that are moved only, not scaled, go to whole pixels. The painter would see to that too, but half ones go up or
// down with it depending on where the drawn part begins, and drawing a part anew must not change the picture.
QTransform BitmapStroke::placed(const QTransform &transform) const
{
    if (transform.type() != QTransform::TxTranslate || m_image.size() != m_rect.size())
        return transform;
    return QTransform::fromTranslate(std::floor(transform.dx() + 0.5), std::floor(transform.dy() + 0.5));
}

QRect BitmapStroke::render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint, double) const
{
    const QRect touched = mappedBounds(transform, m_rect) & dirtyRect & target.rect();
    if (touched.isEmpty())
        return {};
    QImage scratch = blankCoverage(touched.size());
    QPainter painter(&scratch);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setTransform(placed(transform) * QTransform::fromTranslate(-touched.x(), -touched.y()));
    painter.drawImage(m_rect, m_image);
    painter.end();
    composite(target, scratch, scratch.rect(), true, touched.topLeft());
    return touched;
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
