#pragma once

#include <QFrame>

namespace UI {

class Paper;

/// The frame that holds the paper. It sends its moves and resizes on, for what floats over the paper and follows it.
class DrawingArea : public QFrame
{
    Q_OBJECT

public:
    explicit DrawingArea(QWidget *parent = nullptr);

    /// The paper that fills the area; owned by it.
    Paper *paper() const { return m_paper; }

signals:
    /// The area has a new position within its parent.
    void moved(QPoint position);
    /// The area has a new size.
    void resized(QSize size);

protected:
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    Paper *m_paper;
};

} // namespace UI
