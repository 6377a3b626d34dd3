#pragma once

#include "libmodel/strokes/stroke.h"

#include <QImage>
#include <QRect>
#include <QTransform>

namespace Model {

struct StreamBudget;

/// Pixels that stand for strokes which are no longer there.
class BitmapStroke : public Stroke
{
public:
    BitmapStroke() = default;

    /// \a image (QImage::Format_Alpha8) over \a rect (paper coordinates); it may have more pixels than \a rect.
    BitmapStroke(const QImage &image, QRect rect);

    [[nodiscard]] const QImage &image() const { return m_image; }

    [[nodiscard]] Type type() const override { return Type::Bitmap; }
    [[nodiscard]] std::unique_ptr<Stroke> clone() const override;
    /// Composites the pixels on what \a target holds, interpolated where they are scaled or turned. Each is the same
    /// byte always, whatever part is drawn.
    QRect render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                 double renderScale) const override;
    [[nodiscard]] QRect boundingRect() const override { return m_rect; }
    /// True if the rectangle is empty.
    [[nodiscard]] bool isEmpty() const override { return m_rect.isEmpty(); }
    /// Does nothing: pixels go under the cut path of the compound that holds them. Always succeeds.
    bool cutInside(const QPainterPath &path) override;
    /// Crops the pixels to the bounds of \a path. Always succeeds.
    bool cutOutside(const QPainterPath &path) override;
    void write(QDataStream &stream) const override;

    /// Reads what write() has written. \return false, with the stream's status set, for broken data; pixels that can't
    /// be decoded leave the image null.
    bool read(QDataStream &stream);

    /// As above for one of many; the pixels are taken from \a budget.
    bool read(QDataStream &stream, StreamBudget &budget);

private:
    void drawMoved(QImage &target, QRect rect, QPointF shift) const;
    void drawTransformed(QImage &target, QRect rect, const QTransform &transform) const;

    QImage m_image;
    QRect m_rect;
};

} // namespace Model
