#pragma once

#include <QImage>
#include <QRect>
#include <QTransform>

#include <memory>

namespace Model {

class CompoundStroke;
class FloatingContent;
class Progress;

/// What a floating selection leaves when it is stamped at one place: made once, and as far as anybody has time before
/// it is needed.
class FloatingStamp
{
public:
    /// A stamp of \a content as \a contentToPaper places it, as one bitmap if \a collapses.
    FloatingStamp(std::shared_ptr<FloatingContent> content, const QTransform &contentToPaper, bool collapses);
    ~FloatingStamp();

    /// A copy of the stamp. A bitmap has \a collapseScale pixels per paper pixel, each way; it is made with steps of \a
    /// progress (may be null) and kept. Where no bitmap can be made (see CompoundStroke::collapse()), or only a
    /// huge one because some of it lies far out of the frame, the strokes have to do. \return null if it was cancelled.
    [[nodiscard]] std::unique_ptr<CompoundStroke> stroke(int collapseScale, Progress *progress);

    /// Draws a part of the stamp's picture, for about \a milliseconds. \return true when no more can be done ahead.
    bool prepare(int milliseconds);

private:
    [[nodiscard]] std::unique_ptr<CompoundStroke> placedContent() const;
    [[nodiscard]] bool canCollapse(const CompoundStroke &stroke, int collapseScale) const;
    void makeStroke();
    bool canDrawAhead();
    void drawNextRows();

    std::shared_ptr<FloatingContent> m_content;
    QTransform m_contentToPaper;
    bool m_collapses;
    std::unique_ptr<CompoundStroke> m_stroke;
    int m_collapsedScale = 0; ///< of m_stroke, if it is a bitmap or cannot be one
    QImage m_picture;         ///< what has been drawn ahead, from the top row on
    QRect m_pictureRect;
    int m_drawnRows = 0;
    int m_rowsAtOnce = 64;
    bool m_isHopeless = false; ///< the picture cannot be drawn ahead
};

} // namespace Model
