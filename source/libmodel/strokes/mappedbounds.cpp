#include "libmodel/strokes/mappedbounds.h"

#include <QPolygonF>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace Model {

QRect mappedBounds(const QTransform &transform, QRect rect)
{
    if (rect.isEmpty())
        return {};
    const QRectF mapped = transform.mapRect(QRectF(rect));
    if (!std::isfinite(mapped.left()) || !std::isfinite(mapped.top()) || !std::isfinite(mapped.right())
        || !std::isfinite(mapped.bottom()))
        return {};
    const auto clipped = [](double edge) {
        return int(std::clamp(edge, -double(coordinateLimit), double(coordinateLimit)));
    };
    const QPoint topLeft(clipped(std::floor(mapped.left())), clipped(std::floor(mapped.top())));
    const QPoint bottomRight(clipped(std::ceil(mapped.right())), clipped(std::ceil(mapped.bottom())));
    const QRect result(topLeft, QSize(bottomRight.x() - topLeft.x(), bottomRight.y() - topLeft.y()));
    return result.isEmpty() ? QRect() : result;
}

bool mappedRectMeets(const QTransform &transform, QRect rect, QRect dirtyRect)
{
    if (!mappedBounds(transform, rect).intersects(dirtyRect))
        return false;
    if (transform.type() <= QTransform::TxScale)
        return true;
    return transform.map(QPolygonF(QRectF(rect))).intersects(QPolygonF(QRectF(dirtyRect)));
}

} // namespace Model
