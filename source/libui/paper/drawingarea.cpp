#include "libui/paper/drawingarea.h"

#include "libui/paper/paper.h"

#include <QMoveEvent>
#include <QResizeEvent>
#include <QVBoxLayout>

namespace UI {

DrawingArea::DrawingArea(QWidget *parent) : QFrame(parent), m_paper(new Paper(this))
{
    setFrameShape(QFrame::NoFrame);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_paper);
}

void DrawingArea::moveEvent(QMoveEvent *event)
{
    QFrame::moveEvent(event);
    emit moved(event->pos());
}

void DrawingArea::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    emit resized(event->size());
}

} // namespace UI
