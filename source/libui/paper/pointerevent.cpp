#include "libui/paper/pointerevent.h"

#include <QMouseEvent>
#include <QTabletEvent>

namespace UI {

namespace {

constexpr double mousePressure = 0.5;

} // namespace

PointerEvent PointerEvent::from(const QTabletEvent &event)
{
    return {PointerDevice::Tablet, event.position(), event.pressure(), event.timestamp(), event.modifiers(), false};
}

PointerEvent PointerEvent::from(const QMouseEvent &event)
{
    const bool isDoubleClick = event.type() == QEvent::MouseButtonDblClick && event.button() == Qt::LeftButton;
    return {PointerDevice::Mouse, event.position(), mousePressure, event.timestamp(), event.modifiers(), isDoubleClick};
}

} // namespace UI
