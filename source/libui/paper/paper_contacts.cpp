#include "libui/paper/paper.h"

#include "libmodel/actions/actionmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/paper_p.h"

#include <QAction>
#include <QGuiApplication>
#include <QStyleHints>

#include <utility>

namespace UI {

namespace {

using Type = Model::Tool::Type;

bool isDoubleTap(const PointerEvent &press, const std::optional<PointerEvent> &last)
{
    if (press.device == PointerDevice::Mouse)
        return press.isDoubleClick;
    const QStyleHints *hints = QGuiApplication::styleHints();
    return last && press.timestamp - last->timestamp < quint64(hints->mouseDoubleClickInterval()) &&
           (press.position - last->position).manhattanLength() < hints->touchDoubleTapDistance();
}

} // namespace

void Paper::buttonPressed(Qt::MouseButton button, const PointerEvent &pointer)
{
    dropStaleContact(pointer);
    if (d->filter.isAnyDown())
        return;
    d->lastPosition = pointer.position;
    updateZone();
    // A pen mostly reports its last hover where it then presses; the direction comes from the place before.
    const QPointF hover = d->hover == pointer.position ? d->previousHover : d->hover;
    d->clearHover();
    if (button == Qt::RightButton) {
        if (!isDevicePressed())
            emit rightButtonPressed(pointer.modifiers);
    } else if (button == Qt::LeftButton || button == Qt::MiddleButton) {
        if (!d->filter.press(pointer))
            return;
        endTouch();
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
        endContact(Ending::Lost);
}

void Paper::buttonReleased(Qt::MouseButton button, const PointerEvent &pointer)
{
    const bool endsPan = button == Qt::MiddleButton;
    if (endsPan != d->middleDown || (button != Qt::LeftButton && !endsPan))
        return;
    if (!d->filter.release(pointer))
        return;
    d->lastPosition = pointer.position;
    // Strokes end at their last sample: a pen that is lifted has no pressure to draw with.
    if (d->gesture != Private::Gesture::Stroke)
        moveGesture(pointer);
    endContact(Ending::Released);
    updateZone();
}

void Paper::pointerPressed(Qt::MouseButton button, const PointerEvent &pointer, QPointF hover)
{
    const auto last = std::exchange(d->lastPress, pointer);
    if (button == Qt::MiddleButton) {
        // It pans and nothing else, whether or not the hand tool could be taken up.
        if (d->filter.isAnyDown())
            beginPan(pointer.position);
        return;
    }
    if (isDoubleTap(pointer, last) && takeDoubleTap(pointer.position))
        return;
    switch (d->toolType) {
    case Type::Pen:
    case Type::Eraser:
        if (pointer.modifiers.testFlag(Qt::ControlModifier))
            beginPenAdjustment(pointer.position);
        else
            beginStroke(pointer, hover);
        break;
    case Type::Hand:
    case Type::Zoom:
    case Type::Rotate:
    case Type::ZPR:
        beginViewDrag(pointer.position);
        break;
    case Type::OffPegs:
        beginOffPegs(pointer.position);
        break;
    case Type::Lasso:
    case Type::Cutter:
        beginLasso(pointer);
        break;
    case Type::FloatingSelection:
        beginFloating(pointer);
        break;
    case Type::Scrubbing:
        beginScrub(pointer.position);
        break;
    case Type::PenAdjustment:
        beginPenAdjustment(pointer.position);
        break;
    case Type::None:
        break;
    }
}

void Paper::pointerMoved(const PointerEvent &pointer, Qt::MouseButtons buttons)
{
    if (!d->filter.isAnyDown()) {
        pointerHovered(pointer);
        return;
    }
    if (!d->filter.isDown(pointer.device))
        return;
    d->lastPosition = pointer.position;
    if (buttons == Qt::NoButton) {
        // The release got lost on its way.
        endContact(Ending::Lost);
        return;
    }
    moveGesture(pointer);
}

void Paper::pointerHovered(const PointerEvent &pointer)
{
    if (pointer.position != d->hover)
        d->previousHover = std::exchange(d->hover, pointer.position);
    d->lastPosition = pointer.position;
    updateZone();
}

/// Ends what the contact did, and the contact. Without one it does nothing.
void Paper::endContact(Ending ending)
{
    d->filter.cancel();
    d->clearHover();
    endTouch();
    endGesture(ending);
    if (d->middleDown)
        setPanToolOn(false);
    announcePressed();
}

/// Takes the hand tool up for the middle button, and lays it down again if it was taken up here.
void Paper::setPanToolOn(bool on)
{
    d->middleDown = on;
    if (on)
        emit panHeldChanged(true);
    if (const auto *record = Model::ActionManager::instance()->mrAction(MR::Action::Pan)) {
        const bool toggles = on ? !record->action->isChecked() : d->panTriggered && record->action->isChecked();
        d->panTriggered = on && toggles;
        if (toggles)
            record->action->trigger();
    }
    if (!on)
        emit panHeldChanged(false);
}

void Paper::announcePressed()
{
    const bool pressed = isDevicePressed();
    if (std::exchange(d->announcedPressed, pressed) != pressed)
        emit devicePressedChanged(pressed);
}

bool Paper::mayEdit() const
{
    return d->mrScene && !InputSuspension::isActive();
}

/// Tells of the edit that the press is about to begin. \return true if it still may: whoever was told may have taken
/// the scene, the contact or the tool away.
bool Paper::announce(void (Paper::*signal)())
{
    const Type tool = d->toolType;
    emit(this->*signal)();
    return mayEdit() && d->filter.isAnyDown() && d->toolType == tool && d->showsActiveFrame();
}

} // namespace UI
