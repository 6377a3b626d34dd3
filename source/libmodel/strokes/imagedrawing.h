#pragma once

#include "libmodel/strokes/drawing.h"

#include <QRect>

class QPainter;

namespace Model {

/// An imported picture as it came, in any format and size. It can't be drawn on.
class ImageDrawing : public Drawing
{
public:
    explicit ImageDrawing(const QImage &image);

    [[nodiscard]] const QImage &image() const { return m_image; }

    /// Draws the part of the picture that lies in \a rect of a frame of \a frameSize (both in pixels). A picture of
    /// another size is scaled to fit the frame and centred on it.
    void paint(QPainter *painter, QSize frameSize, QRect rect) const;
    /// Where paint() puts the picture in a frame of \a frameSize; empty without a picture.
    [[nodiscard]] QRect paintedRect(QSize frameSize) const;

    [[nodiscard]] Type type() const override { return Type::Image; }
    [[nodiscard]] std::shared_ptr<Drawing> clone() const override;
    /// Always of \a size, the picture scaled into it and centred; \a colorTable has no say.
    [[nodiscard]] QImage thumbnail(QSize size, const QList<QRgb> &colorTable) override;
    void clearThumbnails() override;
    /// Does nothing: the picture is fitted when it is painted.
    void resize(QSize size, MR::FitMode fitMode) override;
    /// Does nothing.
    void merge(const Drawing &other) override;

private:
    QImage m_image;
    QImage m_thumbnail;
    QSize m_thumbnailSize;
};

} // namespace Model
