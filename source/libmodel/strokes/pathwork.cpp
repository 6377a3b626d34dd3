#include "libmodel/strokes/pathwork.h"

#include <QPainterPath>
#include <QPolygonF>
#include <QRectF>

#include <algorithm>
#include <vector>

namespace Model {

namespace {

/// The rectangle around each line and curve of \a path.
std::vector<QRectF> edgeBounds(const QPainterPath &path)
{
    std::vector<QRectF> bounds;
    QPointF from;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        QPolygonF points{from, element};
        if (element.isCurveTo()) {
            points << path.elementAt(i + 1) << path.elementAt(i + 2);
            i += 2;
        }
        if (!element.isMoveTo())
            bounds.push_back(points.boundingRect());
        from = points.constLast();
    }
    return bounds;
}

} // namespace

bool canTestContainment(const QPainterPath &path)
{
    constexpr int fewElements = 256;
    return path.fillRule() == Qt::OddEvenFill || path.elementCount() <= fewElements;
}

bool isUnitedQuickly(const QPainterPath &one, const QPainterPath &other)
{
    constexpr int mostElements = 1 << 13;
    constexpr int mostMeetings = 1 << 15;
    if (one.elementCount() > mostElements || other.elementCount() > mostElements - one.elementCount())
        return false;
    std::vector<QRectF> bounds = edgeBounds(one);
    const std::vector<QRectF> more = edgeBounds(other);
    bounds.insert(bounds.end(), more.begin(), more.end());
    const auto meet = [](const QRectF &a, const QRectF &b) {
        return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom() && b.top() <= a.bottom();
    };
    int meetings = 0;
    for (size_t i = 0; i < bounds.size() && meetings <= mostMeetings; ++i)
        meetings += int(std::count_if(bounds.begin() + qsizetype(i) + 1, bounds.end(),
                                      [&](const QRectF &edge) { return meet(bounds[i], edge); }));
    return meetings <= mostMeetings;
}

} // namespace Model
