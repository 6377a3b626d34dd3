#pragma once

#include "libmodel/layers/layer.h"
#include "libmodel/strokes/mappedbounds.h"

/// What numbers in a scene file are limited to, where the scene itself sets no limit. The writer keeps within what the
/// reader takes.
namespace Model::Limits {

/// The highest number for naming layers.
constexpr int maximumLayerNumber = 1'000'000'000;

/// The farthest from frame 1 that a sound begins, in frames: the most that there can be, at a rate 600 times as high.
constexpr double maximumSoundOffset = 600.0 * Layer::maximumFrames;

/// The farthest that a cell is moved, in pixels, as it is read and as it is written: rounded to six digits it must
/// still be read.
constexpr double maximumCellOffset = coordinateLimit;
constexpr double maximumWrittenCellOffset = 6.7e7;
static_assert(maximumWrittenCellOffset < maximumCellOffset);

} // namespace Model::Limits
