#include "libui/paper/pointerfilter.h"

namespace UI {

namespace {

constexpr quint64 echoMilliseconds = 10;
constexpr double echoDistance = 2.0;

} // namespace

bool PointerFilter::press(const PointerEvent &pointer)
{
    if (isAnyDown() || isEchoOfTablet(pointer))
        return false;
    m_down = pointer.device;
    return true;
}

bool PointerFilter::release(const PointerEvent &pointer)
{
    if (pointer.device == PointerDevice::Tablet)
        m_tabletRelease = pointer;
    if (!isDown(pointer.device))
        return false;
    m_down.reset();
    return true;
}

bool PointerFilter::isEchoOfTablet(const PointerEvent &pointer) const
{
    if (pointer.device != PointerDevice::Mouse || !m_tabletRelease)
        return false;
    const quint64 before = m_tabletRelease->timestamp;
    const quint64 elapsed = pointer.timestamp > before ? pointer.timestamp - before : before - pointer.timestamp;
    return elapsed <= echoMilliseconds &&
           (pointer.position - m_tabletRelease->position).manhattanLength() <= echoDistance;
}

} // namespace UI
