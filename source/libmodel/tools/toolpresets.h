#pragma once

#include "libmodel/base/mr.h"
#include "libmodel/base/settings.h"

namespace Model {

class DrawingTool;

/// The ranges that the program gives \a preset of \a tool. An eraser's are the same for all presets.
ToolRanges presetRanges(const DrawingTool &tool, MR::ToolPreset preset);

/// Gives \a tool the limits of its kind and the ranges that the program gives \a preset.
void applyPreset(DrawingTool &tool, MR::ToolPreset preset);

} // namespace Model
