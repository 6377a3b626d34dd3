#include "libmodel/tools/penadjustmenttool.h"

#include "libmodel/tools/tipcursors.h"

#include <algorithm>

namespace Model {

namespace {

using Range = DrawingTool::Range;

double heldFactor(double factor)
{
    return std::clamp(factor, 0.001, 1000.0);
}

Range multiplied(const Range &range, double factor)
{
    constexpr double offset = 4.0;
    return {(range.lower + offset) * factor - offset, (range.upper + offset) * factor - offset};
}

/// Whether going to \a next changes anything that can be seen: growing stops once the lower bound is at 100, shrinking
/// once the upper one is at 0.
bool hasEffect(double factor, const Range &next, const Range &present)
{
    return (factor > 1.0 && (next.lower < 100.0 || present.lower < 100.0)) ||
           (factor < 1.0 && (next.upper > 0.0 || present.upper > 0.0));
}

} // namespace

PenAdjustmentTool::PenAdjustmentTool(QObject *parent) : Tool(Type::PenAdjustment, parent)
{
}

std::unique_ptr<Tool> PenAdjustmentTool::clone() const
{
    auto copy = cloneAs<PenAdjustmentTool>();
    copy->m_drawingTool = m_drawingTool;
    copy->m_storedSize = m_storedSize;
    copy->m_storedOpacity = m_storedOpacity;
    return copy;
}

QCursor PenAdjustmentTool::cursor() const
{
    if (!m_drawingTool)
        return QCursor(Qt::ArrowCursor);
    const DrawingTool &tool = *m_drawingTool;
    if (mode() == opacityMode)
        return opacityRangeCursor(tool.opacityBase(), tool.opacityBase() + tool.opacityRange(),
                                  tool.type() == Type::Eraser);
    // With twice the radii the ring has its true size among the pixels of a cursor.
    const double inner = cursorPixelRatio * tool.radiusBase();
    const double outer = cursorPixelRatio * (tool.radiusBase() + tool.radiusRange());
    if (mode() == sizeMode && !isTipTooLarge(outer, tool.viewScale()))
        return sizeRangeCursor(inner, outer, tool.viewScale());
    return tool.cursor();
}

void PenAdjustmentTool::setDrawingTool(DrawingTool *drawingTool)
{
    m_drawingTool = drawingTool;
    if (!drawingTool)
        return;
    m_storedSize = {drawingTool->sizeMinPercent(), drawingTool->sizeMaxPercent()};
    m_storedOpacity = {drawingTool->opacityMinPercent(), drawingTool->opacityMaxPercent()};
    updateCursor();
}

void PenAdjustmentTool::adjustSizeRange(double factor)
{
    if (!m_drawingTool)
        return;
    const double held = heldFactor(factor);
    const Range next = multiplied(m_storedSize, held);
    const Range present{m_drawingTool->incDecSizeMinPercent(), m_drawingTool->incDecSizeMaxPercent()};
    if (hasEffect(held, next, present))
        m_drawingTool->setIncDecSizeRangePercent(next.lower, next.upper);
    if (mode() != sizeMode) {
        m_drawingTool->setIncDecOpacityRangePercent(m_storedOpacity.lower, m_storedOpacity.upper);
        setMode(sizeMode);
    }
    updateCursor();
}

void PenAdjustmentTool::adjustOpacityRange(double factor)
{
    if (!m_drawingTool)
        return;
    const double held = heldFactor(factor);
    const Range next = multiplied(m_storedOpacity, held);
    const Range present{m_drawingTool->incDecOpacityMinPercent(), m_drawingTool->incDecOpacityMaxPercent()};
    if (hasEffect(held, next, present))
        m_drawingTool->setIncDecOpacityRangePercent(next.lower, next.upper);
    if (mode() != opacityMode) {
        m_drawingTool->setIncDecSizeRangePercent(m_storedSize.lower, m_storedSize.upper);
        setMode(opacityMode);
    }
    updateCursor();
}

void PenAdjustmentTool::updateCursor()
{
    emit cursorChanged(cursor());
}

} // namespace Model
