#include "libmodel/strokes/pathmask.h"

#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/mappedbounds.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QTransform>

namespace Model {

namespace {

/// Takes away from \a image what \a mask covers, whose top left lies at \a topLeft of \a image.
void eraseByMask(QImage &image, const QImage &mask, QPoint topLeft)
{
    composite(image, mask, mask.rect(), false, topLeft);
}

/// \a path with its curves as lines, to a thirtieth of a pixel. The painter makes lines of curves as well, but other
/// ones depending on how much of them lies in the mask, and drawing a part anew must not change the picture.
QPainterPath straightened(const QPainterPath &path)
{
    constexpr double finer = 16.0; // Qt's lines are off by half a pixel
    QPainterPath lines;
    lines.setFillRule(path.fillRule());
    const QTransform shrink = QTransform::fromScale(1 / finer, 1 / finer);
    const QList<QPolygonF> polygons = path.toSubpathPolygons(QTransform::fromScale(finer, finer));
    for (const QPolygonF &polygon : polygons) {
        lines.addPolygon(shrink.map(polygon));
        lines.closeSubpath();
    }
    return lines;
}

void fill(QImage &mask, const QPainterPath &path, QPoint origin, const QColor &color)
{
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.translate(-origin);
    painter.fillPath(straightened(path), color);
}

} // namespace

void clearInside(QImage &image, QPoint origin, const QPainterPath &path, QRect rect)
{
    const QRect cut = rect & alignedBounds(path.boundingRect());
    if (cut.isEmpty())
        return;
    QImage mask = blankCoverage(cut.size());
    fill(mask, path, cut.topLeft(), Qt::black);
    eraseByMask(image, mask, cut.topLeft() - origin);
}

void clearOutside(QImage &image, QPoint origin, const QPainterPath &path, QRect rect)
{
    QImage mask = blankCoverage(rect.size());
    if (mask.isNull())
        return;
    mask.fill(255);
    fill(mask, path, rect.topLeft(), Qt::transparent);
    eraseByMask(image, mask, rect.topLeft() - origin);
}

} // namespace Model
