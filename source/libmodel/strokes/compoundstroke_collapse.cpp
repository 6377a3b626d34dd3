#include "libmodel/base/progress.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/rendereffort.h"

#include <utility>

namespace Model {

namespace {

/// An empty image for \a size at \a scale; null where that is larger than a file could bring back, and without memory.
QImage bitmapFor(QSize size, int scale)
{
    constexpr qint64 mostBytes = qint64(1) << 30;
    constexpr qint64 longestSide = 1 << 20;
    const qint64 width = qint64(size.width()) * scale;
    const qint64 height = qint64(size.height()) * scale;
    if (width > longestSide || height > longestSide || width * height > mostBytes)
        return {};
    return blankCoverage({int(width), int(height)});
}

} // namespace

bool CompoundStroke::collapse(int scale, QRect rect, Progress *progress)
{
    if (scale < 1 || (needsRenderer(*this) && !OffscreenRenderer::instance()->isInitialized()))
        return false;
    QRect bounds = boundingRect();
    if (rect.isValid())
        bounds &= rect;
    // Without ink there is no place either.
    if (bounds.isEmpty())
        bounds = QRect();
    QImage image = bitmapFor(bounds.size(), scale);
    if (image.isNull() && !bounds.isNull())
        return false;
    if (progress)
        progress->setSteps(recursiveCount(), 0);
    const QTransform toImage =
        QTransform::fromTranslate(-bounds.x(), -bounds.y()) * QTransform::fromScale(scale, scale);
    if (!image.isNull())
        render(image, image.rect(), toImage, QPoint(0, 0), scale, progress);
    if (progress && progress->wasCancelled())
        return false;

    CompoundStroke collapsed;
    collapsed.append(std::make_unique<BitmapStroke>(image, bounds));
    collapsed.d->isWrapper = d->isWrapper;
    std::swap(d, collapsed.d);
    recompute();
    return true;
}

const QImage &CompoundStroke::picture() const
{
    return d->picture;
}

QRect CompoundStroke::pictureRect() const
{
    return d->pictureRect;
}

void CompoundStroke::setPicture(const QImage &picture, QRect rect)
{
    d->picture = picture;
    d->pictureRect = rect;
}

} // namespace Model
