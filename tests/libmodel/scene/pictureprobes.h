#pragma once

#include "libmodel/scene/scene.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>

namespace TestSupport {

/// A function of the scene that paints all of the frame or a part of it.
using PaintFunction = void (Model::Scene::*)(QPainter *, QRect) const;

inline QImage imageOf(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// A transparent picture.
inline QImage blankFrame(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// What \a paint of \a scene leaves on a transparent picture of the size of the frame.
inline QImage painted(const Model::Scene &scene, PaintFunction paint = &Model::Scene::paintFrame)
{
    QImage image = blankFrame(scene.frameSize());
    QPainter painter(&image);
    (scene.*paint)(&painter, image.rect());
    return image;
}

} // namespace TestSupport
