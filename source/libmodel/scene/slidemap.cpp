#include "libmodel/scene/slidemap.h"

namespace Model {

SlideMap::SlideMap(const std::function<bool(int)> &isHold, int length, int dragged, int offset, int lowest, int highest)
{
    if (dragged < 1 || dragged >= length || lowest > offset || offset > highest || lowest > 0 || highest < 0 ||
        isHold(dragged))
        return;

    // The window reaches from the farthest hold taken out before the cell to the farthest behind it.
    QList<int> keptBefore;
    int first = dragged;
    for (int taken = 0; taken < -lowest;) {
        if (--first < 1)
            return;
        if (isHold(first))
            ++taken;
        else
            keptBefore.prepend(first);
    }
    QList<int> keptBehind;
    int last = dragged;
    for (int taken = 0; taken < highest;) {
        if (++last >= length)
            return;
        if (isHold(last))
            ++taken;
        else
            keptBehind.append(last);
    }
    if (first == last)
        return;

    m_first = first;
    for (const int source : keptBefore)
        m_window.append({source, false});
    const int previous = keptBefore.isEmpty() ? first - 1 : keptBefore.last();
    m_window.insert(m_window.size(), offset - lowest, {previous, true});
    m_window.append({dragged, false});
    m_window.insert(m_window.size(), highest - offset, {dragged, true});
    for (const int source : keptBehind)
        m_window.append({source, false});
}

ShownCell SlideMap::at(int position) const
{
    const qsizetype inWindow = qsizetype(position) - m_first;
    return inWindow >= 0 && inWindow < m_window.size() ? m_window.at(inWindow) : ShownCell{position, false};
}

int SlideMap::positionOf(int source) const
{
    if (source < m_first || source >= m_first + m_window.size())
        return source;
    const qsizetype inWindow = m_window.indexOf(ShownCell{source, false});
    return inWindow < 0 ? -1 : m_first + static_cast<int>(inWindow);
}

} // namespace Model
