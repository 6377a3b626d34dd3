#include "libmodel/scene/backlightframes.h"

#include "libmodel/base/fuzzy.h"

#include <algorithm>

namespace Model {

namespace {

constexpr int noFrame = -1;
constexpr int degreesPerStep = 30;
/// A level that low ends the list.
constexpr double faintestLevel = 0.01;

/// Goes from one frame that qualifies to the next, in both directions.
class Walk
{
public:
    Walk(const BacklightSetting &setting, bool onlyKeyFrames, const BacklightSheet &sheet)
        : m_sheet(sheet),
          m_onlyKeyFrames(onlyKeyFrames),
          m_wraps(setting.showOption == BacklightSetting::ShowOption::WrapAtEnds),
          m_leavesRange(setting.showOption == BacklightSetting::ShowOption::ShowOutsideRange),
          m_first(m_leavesRange ? 1 : sheet.rangeFirst),
          m_last(m_leavesRange ? sheet.maximumFrame : sheet.rangeLast)
    {
    }

    /// The nearest frame before \a frameId that qualifies, -1 if there is none.
    [[nodiscard]] int previous(int frameId) const
    {
        const int end = std::min(m_sheet.lastFrame, m_last);
        const bool isBehind = m_sheet.isAfterLast(frameId);
        if (m_wraps && (frameId <= m_first || frameId > m_last))
            return downFrom(end);
        if (frameId < m_first || (frameId > m_last && !isBehind))
            return noFrame;
        return downFrom(isBehind ? end : frameId - 1);
    }

    /// The nearest frame behind \a frameId that qualifies, -1 if there is none.
    [[nodiscard]] int next(int frameId) const
    {
        if (m_wraps && (frameId < m_first || frameId >= m_last))
            return upFrom(m_first);
        if (frameId < m_first || frameId >= m_last)
            return noFrame;
        return upFrom(frameId + 1);
    }

private:
    [[nodiscard]] bool qualifies(int frameId) const
    {
        if (m_onlyKeyFrames)
            return m_sheet.isKeyDrawing(frameId);
        return (!m_leavesRange && frameId == m_sheet.rangeFirst) || m_sheet.hasNewDrawing(frameId);
    }

    [[nodiscard]] int downFrom(int frameId) const
    {
        while (frameId >= m_first && !qualifies(frameId))
            --frameId;
        return frameId >= m_first ? frameId : noFrame;
    }

    [[nodiscard]] int upFrom(int frameId) const
    {
        while (frameId <= m_last && !qualifies(frameId))
            ++frameId;
        return frameId <= m_last ? frameId : noFrame;
    }

    const BacklightSheet &m_sheet;
    bool m_onlyKeyFrames;
    bool m_wraps;
    bool m_leavesRange;
    int m_first;
    int m_last;
};

} // namespace

bool BacklightFrame::operator==(const BacklightFrame &other) const
{
    return frameId == other.frameId && hueShift == other.hueShift && fuzzyEqual(opacity, other.opacity);
}

QList<BacklightFrame> backlightFrames(const BacklightSetting &setting, bool onlyKeyFrames, const BacklightSheet &sheet)
{
    const Walk walk(setting, onlyKeyFrames, sheet);
    const int start = std::min(sheet.activeFrame, sheet.rangeLast + 1);
    int after = start;
    int before = start;
    if (!sheet.isAfterLast(start) && start != sheet.rangeFirst && !sheet.hasNewDrawing(start))
        before = walk.previous(start);

    QList<BacklightFrame> frames;
    qsizetype stepsAfter = setting.opacityLevelsAfter.size();
    qsizetype stepsBefore = setting.opacityLevelsBefore.size();
    // Adds the frame of one step; false when the walk ends before it.
    const auto add = [&](int frameId, double level, qsizetype step, int direction) {
        if (frameId == noFrame || level <= faintestLevel)
            return false;
        const bool isTinted = setting.hueShift == BacklightSetting::HueShift::UseHueShift;
        frames.append({frameId, level, isTinted ? direction * degreesPerStep * static_cast<int>(step + 1) : 0});
        return true;
    };
    for (qsizetype step = 0; step < std::max(stepsAfter, stepsBefore); ++step) {
        if (step < stepsAfter) {
            after = walk.next(after);
            if (!add(after, setting.opacityLevelsAfter.at(step), step, 1))
                stepsAfter = 0;
        }
        if (step < stepsBefore) {
            before = walk.previous(before);
            if (!add(before, setting.opacityLevelsBefore.at(step), step, -1))
                stepsBefore = 0;
        }
    }
    std::reverse(frames.begin(), frames.end());
    return frames;
}

} // namespace Model
