#include "libui/paper/scrubdrag.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace UI {

namespace {

constexpr double framesPerPixel = 0.0625;

} // namespace

void ScrubDrag::setLimits(int least, int most)
{
    m_least = least;
    m_most = std::max(least, most);
}

void ScrubDrag::reset()
{
    m_base = m_offset = 0;
}

bool ScrubDrag::moveTo(QPointF position)
{
    const QPointF way = position - m_press;
    const int offset = m_base + static_cast<int>(std::floor((way.y() + way.x()) * framesPerPixel));
    return std::exchange(m_offset, offset) != offset;
}

bool ScrubDrag::release()
{
    m_base = std::clamp(m_offset, m_least, m_most);
    return std::exchange(m_offset, m_base) != m_base;
}

} // namespace UI
