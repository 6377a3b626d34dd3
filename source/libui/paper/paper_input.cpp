#include "libui/paper/paper.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/sample.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/paper_p.h"

#include <QAction>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QTabletEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace UI {

namespace {

/// Wheels count in eighths of a degree.
constexpr double wheelDegrees = 0.125;

bool isDrawingTool(Model::Tool::Type type)
{
    return type == Model::Tool::Type::Pen || type == Model::Tool::Type::Eraser;
}

bool isDoubleTap(const PointerEvent &press, const std::optional<PointerEvent> &last)
{
    if (press.device == PointerDevice::Mouse)
        return press.isDoubleClick;
    const QStyleHints *hints = QGuiApplication::styleHints();
    return last && press.timestamp - last->timestamp < quint64(hints->mouseDoubleClickInterval()) &&
           (press.position - last->position).manhattanLength() < hints->touchDoubleTapDistance();
}

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

void Paper::buttonPressed(Qt::MouseButton button, const PointerEvent &pointer)
{
    dropStaleContact(pointer);
    if (d->filter.isAnyDown())
        return;
    // A pen mostly reports its last hover where it then presses; the direction comes from the place before.
    const QPointF hover = d->hover == pointer.position ? d->previousHover : d->hover;
    d->clearHover();
    if (button == Qt::RightButton) {
        emit rightButtonPressed(pointer.modifiers);
    } else if (button == Qt::LeftButton || button == Qt::MiddleButton) {
        if (!d->filter.press(pointer))
            return;
        if (button == Qt::MiddleButton)
            setPanToolOn(true);
        pointerPressed(button, pointer, hover);
        announcePressed();
    }
}

/// A mouse whose release went elsewhere must not keep the pen from drawing.
void Paper::dropStaleContact(const PointerEvent &pointer)
{
    if (pointer.device == PointerDevice::Tablet && d->filter.isDown(PointerDevice::Mouse) &&
        QGuiApplication::mouseButtons() == Qt::NoButton)
        endContact();
}

void Paper::buttonReleased(Qt::MouseButton button, const PointerEvent &pointer)
{
    const bool endsPan = button == Qt::MiddleButton;
    if (endsPan != d->middleDown || (button != Qt::LeftButton && !endsPan))
        return;
    if (d->filter.release(pointer))
        endContact();
}

void Paper::pointerPressed(Qt::MouseButton button, const PointerEvent &pointer, QPointF hover)
{
    const auto last = std::exchange(d->lastPress, pointer);
    const Model::Tool::Type tool = Model::ToolManager::instance()->currentToolType();
    if (button == Qt::MiddleButton) {
        // It pans and nothing else, whether or not the hand tool could be taken up.
        if (d->filter.isAnyDown())
            beginPan(pointer.position);
    } else if (isDrawingTool(tool)) {
        beginStroke(pointer, hover);
    } else if (tool == Model::Tool::Type::Hand) {
        if (isDoubleTap(pointer, last)) {
            ViewTransform view = settledView();
            view.recenter();
            setView(view);
        } else {
            beginPan(pointer.position);
        }
    }
}

void Paper::beginPan(QPointF position)
{
    d->gesture = Private::Gesture::Pan;
    d->panFrom = d->panTo = position;
}

void Paper::beginStroke(const PointerEvent &pointer, QPointF hover)
{
    if (!d->mrScene || pointer.modifiers.testFlag(Qt::ControlModifier) || InputSuspension::isActive() ||
        Model::ToolManager::instance()->currentToolMode() != 0)
        return;
    emit aboutToBeginStroke();
    // Whoever answered may have taken the contact or the scene away. And where nobody could make a drawing to draw on,
    // a line would be gone at its end.
    if (!d->mrScene || !d->filter.isAnyDown() || !d->scene()->activeCellHasDrawing())
        return;
    d->gesture = Private::Gesture::Stroke;
    const QTransform toPaper = d->view.widgetToPaper();
    const Model::Sample sample{toPaper.map(pointer.position), pointer.pressure, quint32(pointer.timestamp)};
    if (hover.isNull())
        d->scene()->beginStroke(sample);
    else
        d->scene()->beginStroke(sample, toPaper.map(hover));
}

void Paper::pointerMoved(const PointerEvent &pointer, Qt::MouseButtons buttons)
{
    if (!d->filter.isAnyDown()) {
        if (pointer.position != d->hover)
            d->previousHover = std::exchange(d->hover, pointer.position);
        return;
    }
    if (!d->filter.isDown(pointer.device))
        return;
    if (buttons == Qt::NoButton) {
        // The release got lost on its way.
        endContact();
        return;
    }
    switch (d->gesture) {
    case Private::Gesture::Stroke:
        if (d->mrScene)
            d->scene()->addSample(
                {d->view.widgetToPaper().map(pointer.position), pointer.pressure, quint32(pointer.timestamp)});
        break;
    case Private::Gesture::Pan: {
        ViewTransform view = d->view;
        d->panTo = pointer.position;
        view.setPanDelta(d->panFrom, d->panTo);
        setView(view);
        break;
    }
    case Private::Gesture::None:
        break;
    }
}

/// Ends what the contact did, whether it was lifted or is lost. Without one it does nothing.
void Paper::endContact()
{
    d->filter.cancel();
    d->clearHover();
    switch (std::exchange(d->gesture, Private::Gesture::None)) {
    case Private::Gesture::Stroke:
        emit strokeEnded();
        break;
    case Private::Gesture::Pan: {
        ViewTransform view = d->view;
        view.commitDelta();
        setView(view);
        break;
    }
    case Private::Gesture::None:
        break;
    }
    if (d->middleDown)
        setPanToolOn(false);
    announcePressed();
}

/// Takes the hand tool up for the middle button, and lays it down again if it was taken up here.
void Paper::setPanToolOn(bool on)
{
    d->middleDown = on;
    const auto *record = Model::ActionManager::instance()->mrAction(MR::Action::Pan);
    if (!record)
        return;
    const bool toggles = on ? !record->action->isChecked() : d->panTriggered && record->action->isChecked();
    d->panTriggered = on && toggles;
    if (toggles)
        record->action->trigger();
}

void Paper::announcePressed()
{
    const bool pressed = isDevicePressed();
    if (std::exchange(d->announcedPressed, pressed) != pressed)
        emit devicePressedChanged(pressed);
}

/// The zoom factors of Ctrl and a notch of 120 units are 0.9375 away from the user's hand and 1.0625 towards it.
void Paper::wheelEvent(QWheelEvent *event)
{
    // Under a line being drawn the sheet stays where it is.
    if (d->filter.isAnyDown())
        return;
    ViewTransform view = d->view;
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
}

void Paper::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    endContact();
}

void Paper::hideEvent(QHideEvent *)
{
    endContact();
}

bool Paper::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::TabletLeaveProximity) {
        d->clearHover();
        if (d->filter.isDown(PointerDevice::Tablet))
            endContact();
    }
    return QWidget::eventFilter(watched, event);
}

bool Paper::event(QEvent *event)
{
    if (event->type() == QEvent::WindowDeactivate)
        endContact();
    return QWidget::event(event);
}

} // namespace UI
