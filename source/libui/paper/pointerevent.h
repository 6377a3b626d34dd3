#pragma once

#include <QPointF>
#include <Qt>

class QMouseEvent;
class QTabletEvent;

namespace UI {

enum class PointerDevice { Tablet, Mouse };

/// What pen and mouse have in common: one event of a pointing device on the paper.
struct PointerEvent
{
    PointerDevice device;
    /// Widget coordinates.
    QPointF position;
    /// 0 to 1; a mouse always presses with 0.5.
    double pressure;
    /// Milliseconds of the device's clock.
    quint64 timestamp;
    Qt::KeyboardModifiers modifiers;
    /// The system took the press for the second of a double click with the left button.
    bool isDoubleClick;

    static PointerEvent from(const QTabletEvent &event);
    static PointerEvent from(const QMouseEvent &event);
};

} // namespace UI
