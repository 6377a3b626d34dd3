#pragma once

#include <QPointF>

namespace UI {

class ViewTransform;

/// A drag that moves the sheet in the view, or the frame off its pegs: from a press to where the pointer is.
class ViewDrag
{
public:
    enum class Kind { Pan, Zoom, Rotate, OffPegsPan, OffPegsRotate };

    ViewDrag() = default;
    /// A drag from \a press (widget coordinates). \a pivot is what Kind::Rotate turns about.
    ViewDrag(Kind kind, QPointF press, QPointF pivot = {});

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// Where the pointer went down, widget coordinates.
    [[nodiscard]] QPointF press() const { return m_press; }
    /// It moves the frame and leaves the view.
    [[nodiscard]] bool movesFrame() const { return m_kind == Kind::OffPegsPan || m_kind == Kind::OffPegsRotate; }

    /// Gives \a view the running delta for a pointer at \a position.
    void moveTo(QPointF position, ViewTransform &view);
    /// What was dragged so far has been settled: the way on counts from where the pointer is.
    void restart() { m_from = m_to; }
    /// Settles the delta in \a view.
    void commit(ViewTransform &view) const;

private:
    Kind m_kind = Kind::Pan;
    QPointF m_press;
    QPointF m_from;
    QPointF m_to;
    QPointF m_pivot;
};

} // namespace UI
