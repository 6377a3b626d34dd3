#include "system/screenlines.h"

namespace ScreenLines {

namespace {

QRect partOf(const QRect &area, const QRectF &part)
{
    return QRect(pointIn(area, part.left(), part.top()), pointIn(area, part.right(), part.bottom()));
}

} // namespace

QRect sheetArea(const QRect &window)
{
    return window.adjusted(window.width() / 8, window.height() / 8, -window.width() / 8, -window.height() / 8);
}

QPoint pointIn(const QRect &area, double x, double y)
{
    return area.topLeft() + QPoint(int(area.width() * x), int(area.height() * y));
}

QList<QPoint> levelLine(const QRect &area, double height)
{
    QList<QPoint> points;
    for (int step = 0; step <= 20; ++step)
        points << area.topLeft() + QPoint(area.width() * (20 + 3 * step) / 100, int(area.height() * height));
    return points;
}

QList<QPoint> ring(const QRect &area, const QRectF &part)
{
    const QRect rect = partOf(area, part);
    const QList<QPoint> corners{rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft(), rect.topLeft()};
    constexpr int steps = 12;
    QList<QPoint> points{corners.constFirst()};
    for (qsizetype side = 1; side < corners.size(); ++side) {
        const QPoint way = corners[side] - corners[side - 1];
        for (int step = 1; step <= steps; ++step)
            points << corners[side - 1] + way * step / steps;
    }
    return points;
}

int inkIn(const QImage &picture, const QRectF &part, int contrast)
{
    const QRect rect = partOf(picture.rect(), part) & picture.rect();
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            count += qBlue(pixel) - qRed(pixel) > contrast ? 1 : 0;
        }
    }
    return count;
}

int ink(const QImage &picture, double height, int contrast)
{
    constexpr double reach = 12.0; // pixels to both sides
    const double half = reach / picture.height();
    return inkIn(picture, QRectF(0.0, height - half, 1.0, 2.0 * half), contrast);
}

} // namespace ScreenLines
