#pragma once

#include "libmodel/strokes/stroke.h"

#include <QImage>
#include <QRect>
#include <QSize>

#include <memory>

namespace Model {

class CompoundStroke;

/// The strokes of a floating selection and their picture, which all copies of it share.
class FloatingContent
{
public:
    /// \a content, which it owns, is not null; \a frameSize in pixels.
    FloatingContent(std::unique_ptr<Stroke> content, QSize frameSize);

    [[nodiscard]] const Stroke &stroke() const { return *m_stroke; }
    /// The frame and as much again on each side of it: no more is drawn.
    [[nodiscard]] QRect reach() const;
    [[nodiscard]] QRect frame() const { return {QPoint(0, 0), m_frameSize}; }
    /// Where image() lies, in paper pixels.
    [[nodiscard]] QRect imageRect() const { return m_imageRect; }

    /// The coverage in imageRect(), drawn when first asked for: only what reaches out of the picture that the strokes
    /// may know. Null if imageRect() is empty, blank without a renderer.
    [[nodiscard]] const QImage &image();
    /// Does image() show all of the strokes?
    [[nodiscard]] bool isImageWhole();

private:
    void render(QRect rect);
    void useKnownPicture(const CompoundStroke &compound);

    const std::unique_ptr<const Stroke> m_stroke;
    QSize m_frameSize;
    QRect m_imageRect;
    QImage m_image;
    bool m_isImageWhole = true;
};

} // namespace Model
