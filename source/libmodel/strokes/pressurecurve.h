#pragma once

namespace Model {

class DrawingTool;

/// Radius in paper pixels that \a tool gives at \a pressure (0 to 1): exponential, so that most of the range comes near
/// full pressure.
[[nodiscard]] double radiusAt(const DrawingTool &tool, double pressure);

/// Opacity (0 to 1) that \a tool gives at \a pressure (0 to 1): linear.
[[nodiscard]] double opacityAt(const DrawingTool &tool, double pressure);

} // namespace Model
