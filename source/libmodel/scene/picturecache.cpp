#include "libmodel/scene/picturecache.h"

#include "libmodel/scene/picturepainter.h"
#include "libmodel/strokes/coveragepainter.h"

#include <QPainter>

#include <cstring>
#include <utility>

namespace Model {

namespace {

/// Pixels around the ink that go along when it is painted scaled: a smooth edge needs its transparent neighbours.
constexpr int smoothEdge = 2;

} // namespace

void PictureCache::markStale()
{
    m_isAllStale = true;
}

void PictureCache::markStale(QRect rect)
{
    m_stale |= rect;
}

void PictureCache::release()
{
    m_image = {};
    m_ink = {};
    m_isAllStale = true;
}

QRect PictureCache::begin(QSize size)
{
    // Somebody who still holds the pixels keeps them; to copy what is going to be overwritten would be in vain.
    if (m_image.size() != size || (m_isAllStale && !m_image.isDetached())) {
        m_image = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_image.fill(Qt::transparent);
        m_ink = InkTiles(size);
        m_isAllStale = true;
    }
    const QRect stale = m_isAllStale ? m_image.rect() : m_stale & m_image.rect();
    if (!stale.isEmpty()) {
        m_ink.forEachRun(stale, [this](QRect run) {
            for (int y = run.top(); y <= run.bottom(); ++y)
                std::memset(reinterpret_cast<QRgb *>(m_image.scanLine(y)) + run.left(), 0,
                            static_cast<size_t>(run.width()) * sizeof(QRgb));
        });
    }
    if (m_isAllStale)
        m_ink.clear();
    m_isAllStale = false;
    m_stale = {};
    return stale;
}

void PictureCache::paint(QPainter *painter, QRect rect) const
{
    QPoint offset;
    if (isPixelOnPixel(painter, &offset)) {
        m_ink.forEachRun(rect, [&](QRect run) { painter->drawImage(run, m_image, run); });
        return;
    }
    // In one piece, since pieces that are scaled smoothly would show their seams.
    QRect inked;
    m_ink.forEachRun(rect, [&inked](QRect run) { inked |= run; });
    if (inked.isEmpty())
        return;
    const int edge = smoothEdge * reductionFor(painter);
    paintPicture(painter, m_image, {0, 0}, inked.adjusted(-edge, -edge, edge, edge) & rect, &m_ink);
}

QPixmap PictureCache::pixmap() const
{
    return QPixmap::fromImage(m_image, Qt::NoOpaqueDetection);
}

} // namespace Model
