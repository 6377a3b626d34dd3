#include "libmodel/tools/toolpresets.h"

#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"

#include <array>

namespace Model {

namespace {

constexpr int presetCount = 4;

struct ToolData
{
    double sizeLowerLimit, sizeUpperLimit;
    double opacityLowerLimit, opacityUpperLimit;
    /// By preset, in percent of the limits.
    std::array<ToolRanges, presetCount> ranges;
};

constexpr std::array<ToolRanges, presetCount> alike(const ToolRanges &ranges)
{
    return {ranges, ranges, ranges, ranges};
}

// Ranges are opacity from, to, size from, to. Sizes below the smallest are raised to it.

constexpr std::array<ToolData, 3> pens{{
    // Pencil.
    {0, 45, 0, 0.75, {{{2, 56, 5, 12.31}, {2, 56, 5, 12.31}, {2, 40, 8.72, 32.82}, {3, 100, 1.17, 8.21}}}},
    // Marker.
    {0, 90, 0.1, 1, {{{5, 80, 2.33, 4.33}, {5, 80, 2.33, 4.33}, {67, 100, 2.83, 10.75}, {0, 44.5, 1.67, 22}}}},
    // Brush.
    {0, 180, 0.5, 1, {{{100, 100, 0, 6.67}, {100, 100, 0, 6.67}, {0, 100, 0.27, 16.5}, {80, 100, 3.07, 38.97}}}},
}};

constexpr std::array<ToolData, 3> erasers{{
    // Kneaded eraser.
    {10, 135, 0, 0.75, alike({10, 100, 0, 24.1})},
    // Rubber eraser.
    {0, 90, 0.25, 1, alike({100, 100, 1.67, 22.05})},
    // Vinyl eraser.
    {30, 180, 0.5, 1, alike({100, 100, 5, 47.18})},
}};

const ToolData &dataOf(const DrawingTool &tool)
{
    if (const auto *eraser = qobject_cast<const EraserTool *>(&tool))
        return erasers.at(static_cast<std::size_t>(eraser->eraserType()));
    const auto *pen = qobject_cast<const PenTool *>(&tool);
    Q_ASSERT(pen);
    return pens.at(static_cast<std::size_t>(pen->penType()));
}

} // namespace

ToolRanges presetRanges(const DrawingTool &tool, MR::ToolPreset preset)
{
    return dataOf(tool).ranges.at(static_cast<std::size_t>(preset));
}

void applyPreset(DrawingTool &tool, MR::ToolPreset preset)
{
    const ToolData &data = dataOf(tool);
    const ToolRanges ranges = presetRanges(tool, preset);
    tool.setSizeRangeLimits(data.sizeLowerLimit, data.sizeUpperLimit);
    tool.setOpacityRangeLimits(data.opacityLowerLimit, data.opacityUpperLimit);
    tool.setSizeRangePercent(ranges.sizeLower, ranges.sizeUpper);
    tool.setOpacityRangePercent(ranges.opacityLower, ranges.opacityUpper);
}

} // namespace Model
