#include "libmodel/strokes/imagedrawing.h"

#include <QPainter>

namespace Model {

namespace {

/// Where a picture of \a size lies when it is fitted into \a frame and centred; at least a pixel each way.
QRect fittedRect(QSize size, QSize frame)
{
    const QSize fitted = size.scaled(frame, Qt::KeepAspectRatio).expandedTo({1, 1});
    return {QPoint((frame.width() - fitted.width()) / 2, (frame.height() - fitted.height()) / 2), fitted};
}

} // namespace

ImageDrawing::ImageDrawing(const QImage &image) : m_image(image)
{
}

std::shared_ptr<Drawing> ImageDrawing::clone() const
{
    return std::make_shared<ImageDrawing>(*this);
}

QRect ImageDrawing::paintedRect(QSize frameSize) const
{
    if (m_image.isNull() || frameSize.isEmpty())
        return {};
    return m_image.size() == frameSize ? QRect({0, 0}, frameSize) : fittedRect(m_image.size(), frameSize);
}

void ImageDrawing::paint(QPainter *painter, QSize frameSize, QRect rect) const
{
    const QRect picture = paintedRect(frameSize);
    const QRect shown = rect & picture;
    if (shown.isEmpty())
        return;
    const double scaleX = double(m_image.width()) / picture.width();
    const double scaleY = double(m_image.height()) / picture.height();
    const QPoint inPicture = shown.topLeft() - picture.topLeft();
    const QRectF source(inPicture.x() * scaleX, inPicture.y() * scaleY, shown.width() * scaleX,
                        shown.height() * scaleY);
    const bool wasSmooth = painter->testRenderHint(QPainter::SmoothPixmapTransform);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(QRectF(shown), m_image, source);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, wasSmooth);
}

QImage ImageDrawing::thumbnail(QSize size, const QList<QRgb> &)
{
    if (size.isEmpty() || m_image.isNull())
        return {};
    if (size == m_thumbnailSize && !m_thumbnail.isNull())
        return m_thumbnail;
    m_thumbnailSize = size;
    m_thumbnail = QImage(size, QImage::Format_ARGB32_Premultiplied);
    m_thumbnail.fill(Qt::transparent);
    const QRect place = fittedRect(m_image.size(), size);
    QPainter painter(&m_thumbnail);
    painter.drawImage(place.topLeft(), m_image.scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.end();
    return m_thumbnail;
}

void ImageDrawing::clearThumbnails()
{
    m_thumbnail = QImage();
}

void ImageDrawing::resize(QSize, MR::FitMode)
{
}

void ImageDrawing::merge(const Drawing &)
{
}

} // namespace Model
