#pragma once

/// The zoom levels that "Zoom In" and "Zoom Out" step through: the powers of two from 1/16 to 16, each followed by one
/// and a half times itself. A zoom level is the size of a paper pixel on screen in device pixels; 1.0 is 100 percent.
namespace ZoomLevels {

/// The smallest level.
constexpr double smallest = 0.0625;

/// The first level above \a zoomLevel, one within 0.005 of it counting as reached; past the largest level it comes
/// round to the smallest.
double next(double zoomLevel);

/// The largest level that lies at least 0.005 below \a zoomLevel, or the smallest level if there is none.
double previous(double zoomLevel);

} // namespace ZoomLevels
