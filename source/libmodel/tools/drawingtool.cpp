#include "libmodel/tools/drawingtool.h"

#include "libmodel/base/settings.h"
#include "libmodel/tools/tipcursors.h"

#include <QMetaMethod>

#include <algorithm>

namespace Model {

namespace {

using Range = DrawingTool::Range;

/// \a upper within the bounds and \a lower within them and not above it.
Range clamped(double lower, double upper, double least, double most)
{
    const double upperBound = std::max(std::min(upper, most), least);
    return {std::max(std::min(lower, upperBound), least), upperBound};
}

/// A range of percentages in which steps are proportional: each of size \a factor, counted from -4 percent, so that a
/// range can leave zero again.
Range stepped(const Range &range, double factor)
{
    constexpr double offset = 4.0;
    return {(range.lower + offset) * factor - offset, (range.upper + offset) * factor - offset};
}

constexpr double decreaseFactor = 0.8;
constexpr double increaseFactor = 1.25;

} // namespace

DrawingTool::DrawingTool(Type type, QObject *parent) : Tool(type, parent)
{
}

double DrawingTool::incDecSizeMinPercent() const
{
    return m_sizeSteps.value_or(m_sizePercent).lower;
}

double DrawingTool::incDecSizeMaxPercent() const
{
    return m_sizeSteps.value_or(m_sizePercent).upper;
}

double DrawingTool::incDecOpacityMinPercent() const
{
    return m_opacitySteps.value_or(m_opacityPercent).lower;
}

double DrawingTool::incDecOpacityMaxPercent() const
{
    return m_opacitySteps.value_or(m_opacityPercent).upper;
}

void DrawingTool::setSizeRangeLimits(double lowerLimit, double upperLimit)
{
    m_sizeLimits = clamped(lowerLimit, upperLimit, smallestSize, largestSize);
    setSizeRangePercent(m_sizePercent.lower, m_sizePercent.upper);
}

void DrawingTool::setOpacityRangeLimits(double lowerLimit, double upperLimit)
{
    m_opacityLimits = clamped(lowerLimit, upperLimit, 0.0, 1.0);
    setOpacityRangePercent(m_opacityPercent.lower, m_opacityPercent.upper);
}

void DrawingTool::setSizeRangePercent(double sizeMinPercent, double sizeMaxPercent)
{
    m_sizePercent = clamped(sizeMinPercent, sizeMaxPercent, 0.0, 100.0);
    const double span = m_sizeLimits.upper - m_sizeLimits.lower;
    m_radiusBase = (m_sizeLimits.lower + span * m_sizePercent.lower / 100.0) * 0.5;
    m_radiusRange = span * 0.5 / 100.0 * (m_sizePercent.upper - m_sizePercent.lower);
    updateCursor();
    emit sizeRangeChanged(settingsName(), m_sizePercent.lower, m_sizePercent.upper);
    m_sizeSteps.reset();
}

void DrawingTool::setOpacityRangePercent(double opacityMinPercent, double opacityMaxPercent)
{
    m_opacityPercent = clamped(opacityMinPercent, opacityMaxPercent, 0.0, 100.0);
    const double span = m_opacityLimits.upper - m_opacityLimits.lower;
    m_opacityBase = m_opacityLimits.lower + span / 100.0 * m_opacityPercent.lower;
    m_opacityRange = span / 100.0 * (m_opacityPercent.upper - m_opacityPercent.lower);
    emit opacityRangeChanged(settingsName(), m_opacityPercent.lower, m_opacityPercent.upper);
    m_opacitySteps.reset();
}

void DrawingTool::setIncDecSizeRangePercent(double sizeMinPercent, double sizeMaxPercent)
{
    setSizeRangePercent(sizeMinPercent, sizeMaxPercent);
    m_sizeSteps = Range{sizeMinPercent, sizeMaxPercent};
}

void DrawingTool::setIncDecOpacityRangePercent(double opacityMinPercent, double opacityMaxPercent)
{
    setOpacityRangePercent(opacityMinPercent, opacityMaxPercent);
    m_opacitySteps = Range{opacityMinPercent, opacityMaxPercent};
}

// The guards look at the bound that lags behind: a range shrinks until its upper bound, too, is at 0, and grows until
// its lower bound, too, is at 100.

void DrawingTool::decreaseSizeRange()
{
    const Range range = m_sizeSteps.value_or(m_sizePercent);
    if (range.upper <= 0.0)
        return;
    const Range next = stepped(range, decreaseFactor);
    setIncDecSizeRangePercent(next.lower, next.upper);
}

void DrawingTool::increaseSizeRange()
{
    const Range range = m_sizeSteps.value_or(m_sizePercent);
    if (range.lower >= 100.0)
        return;
    const Range next = stepped(range, increaseFactor);
    setIncDecSizeRangePercent(next.lower, next.upper);
}

void DrawingTool::decreaseOpacityRange()
{
    const Range range = m_opacitySteps.value_or(m_opacityPercent);
    if (range.upper <= 0.0)
        return;
    const Range next = stepped(range, decreaseFactor);
    setIncDecOpacityRangePercent(next.lower, next.upper);
}

void DrawingTool::increaseOpacityRange()
{
    const Range range = m_opacitySteps.value_or(m_opacityPercent);
    if (range.lower >= 100.0)
        return;
    const Range next = stepped(range, increaseFactor);
    setIncDecOpacityRangePercent(next.lower, next.upper);
}

void DrawingTool::setViewScale(double viewScale)
{
    if (viewScale <= 0.0 || viewScale == m_viewScale)
        return;
    m_viewScale = viewScale;
    updateCursor();
}

DrawingTool::CursorLook DrawingTool::cursorLook() const
{
    const Settings *settings = Settings::instance();
    CursorLook look;
    look.adapts = settings->drawCursorType() == MR::DrawCursorType::AdaptToSize;
    look.faint = settings->drawCursorOpacity() == MR::DrawCursorOpacity::Faint;
    const double outer = m_radiusBase + m_radiusRange;
    const double scale = m_viewScale * cursorPixelRatio;
    const auto isTooLarge = type() == Type::Eraser ? isEraserTipTooLarge : isTipTooLarge;
    look.adapts = look.adapts && !isTooLarge(outer, scale);
    if (look.adapts) {
        look.inner = m_radiusBase;
        look.outer = outer;
        look.scale = scale;
    }
    return look;
}

QCursor DrawingTool::cursor() const
{
    const CursorLook look = cursorLook();
    if (m_look != look) {
        m_cursor = look.adapts ? makeCursor(look.inner, look.outer, look.scale, look.faint) : fixedCursor(look.faint);
        m_look = look;
    }
    return m_cursor;
}

void DrawingTool::updateCursor()
{
    // A picture is made only for someone who looks at it.
    if (m_look != cursorLook() && isSignalConnected(QMetaMethod::fromSignal(&Tool::cursorChanged)))
        emit cursorChanged(cursor());
}

void DrawingTool::copyState(const DrawingTool &other)
{
    m_radiusBase = other.m_radiusBase;
    m_radiusRange = other.m_radiusRange;
    m_opacityBase = other.m_opacityBase;
    m_opacityRange = other.m_opacityRange;
    m_sizePercent = other.m_sizePercent;
    m_opacityPercent = other.m_opacityPercent;
    m_sizeLimits = other.m_sizeLimits;
    m_opacityLimits = other.m_opacityLimits;
    m_sizeSteps = other.m_sizeSteps;
    m_opacitySteps = other.m_opacitySteps;
    m_viewScale = other.m_viewScale;
}

} // namespace Model
