#include "libui/paper/paper.h"

#include "libui/paper/paper_p.h"

#include <QGestureEvent>
#include <QLineF>
#include <QNativeGestureEvent>
#include <QPanGesture>
#include <QPinchGesture>
#include <QTouchEvent>

#include <algorithm>

namespace UI {

namespace {

/// Factors of a double tap with two fingers on a touchpad.
constexpr double smartZoomIn = 1.0 / 3.0;
constexpr double smartZoomOut = 3.0;

/// Two fingers in one place are this far apart, logical pixels.
constexpr double leastSpan = 1.0;

bool isRunning(const QGesture *gesture)
{
    return gesture && (gesture->state() == Qt::GestureStarted || gesture->state() == Qt::GestureUpdated);
}

} // namespace

void Paper::nativeGesture(QNativeGestureEvent *event)
{
    event->accept();
    if (event->gestureType() == Qt::EndNativeGesture) {
        setView(settledView());
        d->nativeGesturing = false;
        announcePressed();
        return;
    }
    if (d->filter.isAnyDown() || d->touch != Private::Touch::None)
        return;
    const QPointF position = event->position();
    const double value = event->value();
    ViewTransform view = settledView();
    switch (event->gestureType()) {
    case Qt::BeginNativeGesture:
        d->nativeGesturing = true;
        announcePressed();
        return;
    case Qt::ZoomNativeGesture:
        view.zoomAt(position, 1.0 - value);
        break;
    case Qt::SmartZoomNativeGesture:
        view.zoomAt(position, value > 0.5 ? smartZoomIn : smartZoomOut);
        break;
    case Qt::RotateNativeGesture:
        view.rotateAt(position, -value);
        break;
    case Qt::PanNativeGesture:
        view.panTo(position, position + event->delta());
        break;
    default:
        return;
    }
    setView(view);
}

/// Two fingers give a pinch and mostly a pan, too, both with the whole way: the pinch leads while there is one.
void Paper::touchGesture(QGestureEvent *event)
{
    const auto *pinch = static_cast<QPinchGesture *>(event->gesture(Qt::PinchGesture));
    const auto *pan = static_cast<QPanGesture *>(event->gesture(Qt::PanGesture));
    event->accept();
    for (const QGesture *gesture : event->gestures()) {
        if (gesture->state() == Qt::GestureStarted)
            d->touchIgnored = false;
    }
    if (d->filter.isAnyDown())
        d->touchIgnored = true;
    const bool pinchEnds = d->touch == Private::Touch::Pinch && pinch && !isRunning(pinch);
    const bool panEnds = d->touch == Private::Touch::Pan && pan && !isRunning(pan);
    if (pinchEnds || panEnds)
        endTouch();
    if (d->touchIgnored)
        return;

    Private::Touch lead = Private::Touch::None;
    ViewTransform::Fingers fingers;
    if (isRunning(pinch)) {
        lead = Private::Touch::Pinch;
        const double scale = d->fingerSpan > 0.0 ? d->fingerSpan : pinch->totalScaleFactor();
        fingers = {mapFromGlobal(pinch->centerPoint()), pinch->totalRotationAngle(), scale};
    } else if (isRunning(pan) && d->touch != Private::Touch::Pinch) {
        lead = Private::Touch::Pan;
        fingers.center = pan->offset();
    } else {
        return;
    }
    ViewTransform view = d->view;
    if (lead != d->touch) {
        view = settledView();
        d->touch = lead;
        d->fingersFrom = fingers;
    }
    d->fingersTo = fingers;
    view.setFingersDelta(d->fingersFrom, d->fingersTo);
    setView(view);
    announcePressed();
}

/// Measures how far the fingers are apart, ahead of the gesture that is made of the event: the toolkit can look at one
/// event twice and then multiplies each change of the scale with itself.
void Paper::measureFingers(const QTouchEvent &event)
{
    const QList<QEventPoint> &fingers = event.points();
    d->fingerSpan = 0.0;
    if (fingers.size() == 2)
        d->fingerSpan = std::max(leastSpan, QLineF(fingers[0].position(), fingers[1].position()).length());
}

/// Settles what fingers have done, and goes on without them.
void Paper::endTouch()
{
    if (d->touch == Private::Touch::None && !d->nativeGesturing)
        return;
    d->touchIgnored = d->touch != Private::Touch::None;
    d->touch = Private::Touch::None;
    d->nativeGesturing = false;
    setView(settledView());
    updateZone();
    announcePressed();
}

} // namespace UI
