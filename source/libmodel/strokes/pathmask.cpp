#include "libmodel/strokes/pathmask.h"

#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/mappedbounds.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace Model {

namespace {

/// Takes away from \a image what \a mask covers, whose top left lies at \a topLeft of \a image.
void eraseByMask(QImage &image, const QImage &mask, QPoint topLeft)
{
    composite(image, mask, mask.rect(), false, topLeft);
}

void fill(QImage &mask, const QPainterPath &path, QPoint origin, const QColor &color)
{
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.translate(-origin);
    painter.fillPath(path, color);
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
