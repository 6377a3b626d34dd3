#include "libui/paper/paper.h"

#include "libui/paper/paper_p.h"

#include <QGestureEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>

namespace UI {

namespace {

/// Wheels count in eighths of a degree.
constexpr double wheelDegrees = 0.125;

/// A mouse event that the toolkit made out of a tablet's or a finger's.
bool isSynthesized(const QMouseEvent &event)
{
    return event.source() == Qt::MouseEventSynthesizedByQt || event.source() == Qt::MouseEventSynthesizedByApplication;
}

} // namespace

void Paper::tabletEvent(QTabletEvent *event)
{
    // Accepted always: an ignored one comes back as a mouse event.
    event->accept();
    const PointerEvent pointer = PointerEvent::from(*event);
    switch (event->type()) {
    case QEvent::TabletPress:
        setFocus(Qt::MouseFocusReason);
        buttonPressed(event->button(), pointer);
        break;
    case QEvent::TabletMove:
        pointerMoved(pointer, event->buttons());
        break;
    case QEvent::TabletRelease:
        buttonReleased(event->button(), pointer);
        break;
    default:
        break;
    }
}

void Paper::mousePressEvent(QMouseEvent *event)
{
    if (!isSynthesized(*event))
        buttonPressed(event->button(), PointerEvent::from(*event));
}

void Paper::mouseDoubleClickEvent(QMouseEvent *event)
{
    mousePressEvent(event);
}

void Paper::mouseMoveEvent(QMouseEvent *event)
{
    if (!isSynthesized(*event))
        pointerMoved(PointerEvent::from(*event), event->buttons());
}

void Paper::mouseReleaseEvent(QMouseEvent *event)
{
    if (!isSynthesized(*event))
        buttonReleased(event->button(), PointerEvent::from(*event));
}

/// The zoom factors of Ctrl and a notch of 120 units are 0.9375 away from the user's hand and 1.0625 towards it.
void Paper::wheelEvent(QWheelEvent *event)
{
    // Under a line being drawn the sheet stays where it is.
    if (d->filter.isAnyDown() || d->touch != Private::Touch::None)
        return;
    ViewTransform view = settledView();
    if (event->modifiers() == Qt::NoModifier) {
        QPointF offset = event->pixelDelta();
        if (offset.isNull())
            offset = (QPointF(event->angleDelta()) * wheelDegrees).toPoint();
        view.panTo(event->position(), event->position() + offset);
    } else if (event->modifiers() == Qt::ControlModifier) {
        const double turn = std::clamp(event->angleDelta().y() * wheelDegrees, -360.0, 360.0) * 3.0;
        view.zoomAt(event->position(), (360.0 - turn) / 720.0 + 0.5);
    } else {
        event->ignore();
        return;
    }
    setView(view);
}

void Paper::leaveEvent(QEvent *)
{
    d->clearHover();
    if (!d->filter.isAnyDown()) {
        d->lastPosition.reset();
        setOverButton(false);
    }
}

void Paper::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    endContact(Ending::Lost);
}

void Paper::hideEvent(QHideEvent *)
{
    endContact(Ending::Lost);
}

void Paper::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == d->edgeTimer.timerId())
        scrollAtEdge();
    else
        QWidget::timerEvent(event);
}

bool Paper::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::TabletLeaveProximity:
        // A pen that is lifted high has been lifted, whether or not its release comes.
        d->clearHover();
        if (d->filter.isDown(PointerDevice::Tablet))
            endContact(Ending::Released);
        break;
    case QEvent::WindowBlocked:
        // A dialog has opened: what is under the pen gets no release.
        if (watched == window())
            endContact(Ending::Lost);
        break;
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
        if (watched == window()->windowHandle())
            measureFingers(*static_cast<QTouchEvent *>(event));
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Shift)
            shiftChanged(event->type() == QEvent::KeyPress);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

bool Paper::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::WindowDeactivate:
        endContact(Ending::Lost);
        break;
    case QEvent::NativeGesture:
        nativeGesture(static_cast<QNativeGestureEvent *>(event));
        return true;
    case QEvent::Gesture:
        touchGesture(static_cast<QGestureEvent *>(event));
        return true;
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        // Accepted, or the fingers would come back as a mouse; the gestures are made of them all the same.
        event->accept();
        return true;
    case QEvent::ToolTip: {
        const auto *help = static_cast<QHelpEvent *>(event);
        if (showToolTip(help->pos(), help->globalPos()))
            return true;
        break;
    }
    default:
        break;
    }
    return QWidget::event(event);
}

} // namespace UI
