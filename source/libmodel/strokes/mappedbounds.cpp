#include "libmodel/strokes/mappedbounds.h"

#include <QPolygonF>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace Model {

QRect alignedBounds(const QRectF &rect)
{
    if (!std::isfinite(rect.left()) || !std::isfinite(rect.top()) || !std::isfinite(rect.right()) ||
        !std::isfinite(rect.bottom()))
        return {};
    const auto clipped = [](double edge) {
        return int(std::clamp(edge, -double(coordinateLimit), double(coordinateLimit)));
    };
    const QPoint topLeft(clipped(std::floor(rect.left())), clipped(std::floor(rect.top())));
    const QPoint bottomRight(clipped(std::ceil(rect.right())), clipped(std::ceil(rect.bottom())));
    const QRect result(topLeft, QSize(bottomRight.x() - topLeft.x(), bottomRight.y() - topLeft.y()));
    return result.isEmpty() ? QRect() : result;
}

QRect mappedBounds(const QTransform &transform, QRect rect)
{
    return rect.isEmpty() ? QRect() : alignedBounds(transform.mapRect(QRectF(rect)));
}

QRect grownByRim(QRect rect, double renderScale)
{
    // The feather is 0.65 paper pixels wide; a pixel of room is enough at any scale up to 1, and grows with it above.
    constexpr double largestScale = 1024.0;
    if (rect.isEmpty())
        return {};
    const int reach = std::max(1, int(std::ceil(std::min(renderScale, largestScale))));
    return rect.adjusted(-reach, -reach, reach, reach);
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
