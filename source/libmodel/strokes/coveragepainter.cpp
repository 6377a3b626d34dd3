#include "libmodel/strokes/coveragepainter.h"

#include "libmodel/strokes/blending.h"
#include "libmodel/strokes/coverage.h"

#include <QPainter>

#include <cmath>

namespace Model {

namespace {

/// The image that \a painter paints into, if writing into its pixels does what painting would do; otherwise null.
QImage *plainImage(const QPainter *painter)
{
    QPaintDevice *device = painter->device();
    if (!device || device->devType() != QInternal::Image || painter->hasClipping() ||
        painter->compositionMode() != QPainter::CompositionMode_SourceOver)
        return nullptr;
    auto *image = static_cast<QImage *>(device);
    return image->format() == QImage::Format_ARGB32_Premultiplied ? image : nullptr;
}

} // namespace

bool isPixelOnPixel(const QPainter *painter, QPoint *offset)
{
    const QTransform &transform = painter->deviceTransform();
    if (transform.type() > QTransform::TxTranslate)
        return false;
    *offset = {qRound(transform.dx()), qRound(transform.dy())};
    return transform.dx() == offset->x() && transform.dy() == offset->y();
}

void paintCoverage(QPainter *painter, QPoint at, const QImage &coverage, QRect part, const QList<QRgb> &colorTable,
                   const InkTiles *ink)
{
    if (coverage.isNull() || colorTable.isEmpty() || part.isEmpty())
        return;
    QPoint offset;
    QImage *image = plainImage(painter);
    if (image && qAlpha(colorTable.first()) == 0 && isPixelOnPixel(painter, &offset)) {
        blendCoverage(*image, at + offset, coverage, part, BlendColors(colorTable, painter->opacity()), ink);
        return;
    }
    painter->drawImage(QRect(at, part.size()), indexedView(coverage, colorTable), part);
}

} // namespace Model
