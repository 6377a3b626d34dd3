#pragma once

#include <QPointF>

namespace UI {

/// Frames from the way of a pointer: one for every 16 pixels to the right or down. Drags of one scrub go on from each
/// other; limits hold what one ends at, not what it passes through.
class ScrubDrag
{
public:
    /// Frames between which a drag ends; crossed limits hold to the lower one.
    void setLimits(int least, int most);
    /// A new scrub: at no offset.
    void reset();

    /// Where the scrub stands, in frames from where it began.
    [[nodiscard]] int offset() const { return m_offset; }
    /// The pointer goes down at \a position (logical pixels).
    void press(QPointF position) { m_press = position; }
    /// Takes the offset for a pointer at \a position. \return true if it has changed.
    bool moveTo(QPointF position);
    /// Holds the offset to the limits, from where the next drag goes on. \return true if it has changed.
    bool release();

private:
    int m_least = 0;
    int m_most = 0;
    int m_base = 0;
    int m_offset = 0;
    QPointF m_press;
};

} // namespace UI
