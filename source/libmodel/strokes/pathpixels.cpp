#include "libmodel/strokes/pathpixels.h"

#include "libmodel/strokes/mappedbounds.h"

#include <QPainterPath>
#include <QPolygonF>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace Model {

namespace {

/// What a painter that counts in fractions of a pixel, and flattens curves its own way, may be off by.
constexpr double rimReach = 0.5;

/// Where an outline passes the middle of a row.
struct Crossing
{
    int row;
    double x;
    int direction;
};

struct RowSpan
{
    int row;
    PixelSpans::Span span;
};

int rowOf(double y, QRect area)
{
    return int(std::floor(std::clamp(y, area.top() - 1.0, area.bottom() + 2.0)));
}

int columnOf(double x, QRect area)
{
    return int(std::clamp(x, double(area.left()), area.right() + 1.0));
}

class Scanner
{
public:
    explicit Scanner(QRect area) : m_area(area) {}

    void addEdge(QPointF from, QPointF to)
    {
        addRim(from, to);
        if (from.y() == to.y())
            return;
        const int direction = from.y() < to.y() ? 1 : -1;
        if (direction < 0)
            std::swap(from, to);
        const double slope = (to.x() - from.x()) / (to.y() - from.y());
        const int first = std::max(int(std::ceil(std::max(from.y() - 0.5, m_area.top() - 1.0))), m_area.top());
        for (int row = first; row <= m_area.bottom() && row + 0.5 < to.y(); ++row)
            m_crossings.push_back({row, from.x() + (row + 0.5 - from.y()) * slope, direction});
    }

    [[nodiscard]] PixelSpans inside(Qt::FillRule fillRule)
    {
        std::sort(m_crossings.begin(), m_crossings.end(),
                  [](const Crossing &a, const Crossing &b) { return a.row != b.row ? a.row < b.row : a.x < b.x; });
        PixelSpans result(m_area.top());
        std::vector<PixelSpans::Span> spans;
        size_t i = 0;
        for (int row = m_area.top(); row <= m_area.bottom(); ++row) {
            spans.clear();
            int winding = 0;
            for (; i < m_crossings.size() && m_crossings[i].row == row; ++i) {
                const bool wasIn = isIn(winding, fillRule);
                winding += m_crossings[i].direction;
                const int x = columnOf(std::ceil(m_crossings[i].x - 0.5), m_area);
                if (!wasIn && isIn(winding, fillRule))
                    spans.push_back({x, x});
                else if (wasIn && !isIn(winding, fillRule))
                    spans.back().end = x;
            }
            result.addRow(spans);
        }
        return result;
    }

    [[nodiscard]] PixelSpans rim()
    {
        std::sort(m_rim.begin(), m_rim.end(), [](const RowSpan &a, const RowSpan &b) {
            return a.row != b.row ? a.row < b.row : a.span.left < b.span.left;
        });
        PixelSpans result(m_area.top());
        std::vector<PixelSpans::Span> spans;
        size_t i = 0;
        for (int row = m_area.top(); row <= m_area.bottom(); ++row) {
            spans.clear();
            for (; i < m_rim.size() && m_rim[i].row == row; ++i)
                spans.push_back(m_rim[i].span);
            result.addRow(spans);
        }
        return result;
    }

private:
    static bool isIn(int winding, Qt::FillRule fillRule)
    {
        return fillRule == Qt::WindingFill ? winding != 0 : winding % 2 != 0;
    }

    void addRim(QPointF from, QPointF to)
    {
        if (from.y() > to.y())
            std::swap(from, to);
        const double height = to.y() - from.y();
        const auto xAt = [&](double y) {
            return from.x() + (to.x() - from.x()) * std::clamp((y - from.y()) / height, 0.0, 1.0);
        };
        const int last = std::min(rowOf(to.y() + rimReach, m_area), m_area.bottom());
        for (int row = std::max(rowOf(from.y() - rimReach, m_area), m_area.top()); row <= last; ++row) {
            const double one = height > 0 ? xAt(row - rimReach) : from.x();
            const double other = height > 0 ? xAt(row + 1 + rimReach) : to.x();
            const int left = columnOf(std::floor(std::min(one, other) - rimReach), m_area);
            const int end = columnOf(std::floor(std::max(one, other) + rimReach) + 1, m_area);
            if (left < end)
                m_rim.push_back({row, {left, end}});
        }
    }

    QRect m_area;
    std::vector<Crossing> m_crossings;
    std::vector<RowSpan> m_rim;
};

/// The steps that scanning \a polygons takes; negative where they lead nowhere.
qint64 scanWork(const QList<QPolygonF> &polygons, QRect area)
{
    constexpr int stepsPerEdge = 4;
    constexpr double world = 1e9;
    qint64 work = area.height();
    for (const QPolygonF &polygon : polygons) {
        QPointF last = polygon.isEmpty() ? QPointF() : polygon.constLast();
        for (const QPointF &point : polygon) {
            if (!(std::abs(point.x()) < world && std::abs(point.y()) < world))
                return -1;
            work += stepsPerEdge + std::abs(rowOf(point.y(), area) - rowOf(last.y(), area));
            last = point;
        }
    }
    return work;
}

/// The pixels around \a polygons, rim and all.
QRect reachOf(const QList<QPolygonF> &polygons)
{
    QRectF bounds;
    for (const QPolygonF &polygon : polygons)
        bounds |= polygon.boundingRect();
    constexpr int rim = 2;
    return alignedBounds(bounds).adjusted(-rim, -rim, rim, rim);
}

} // namespace

std::optional<PathPixels> PathPixels::of(const QPainterPath &path, const QTransform &transform, QRect area,
                                         qint64 &workLeft)
{
    constexpr int mostElements = 1 << 13; // each may become some hundred points
    if (path.elementCount() > mostElements)
        return std::nullopt;
    if (area.isEmpty())
        return PathPixels();
    const QList<QPolygonF> polygons = path.toSubpathPolygons(transform);
    const qint64 work = scanWork(polygons, area);
    area &= reachOf(polygons);
    constexpr qint64 longestScan = qint64(1) << 20; // a fifth of a second
    if (work < 0 || work > std::min(workLeft, longestScan))
        return std::nullopt;
    workLeft -= work;
    Scanner scanner(area);
    for (const QPolygonF &polygon : polygons) {
        if (polygon.isEmpty())
            continue;
        QPointF last = polygon.constLast();
        for (const QPointF &point : polygon)
            scanner.addEdge(std::exchange(last, point), point);
    }
    return PathPixels{scanner.inside(path.fillRule()), scanner.rim()};
}

} // namespace Model
