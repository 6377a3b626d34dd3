#include "app/zoomlevels.h"

#include <algorithm>
#include <array>

namespace ZoomLevels {

namespace {

/// How near a level must be to count as the present one.
constexpr double tolerance = 0.005;

constexpr std::array levels = {0.0625, 0.09375, 0.125, 0.1875, 0.25, 0.375, 0.5,  0.75, 1.0,
                               1.5,    2.0,     3.0,   4.0,    6.0,  8.0,   12.0, 16.0, 24.0};

} // namespace

double next(double zoomLevel)
{
    const auto level =
        std::find_if(levels.begin(), levels.end(), [zoomLevel](double l) { return l - tolerance > zoomLevel; });
    return level == levels.end() ? smallest : *level;
}

double previous(double zoomLevel)
{
    const auto level =
        std::find_if(levels.rbegin(), levels.rend(), [zoomLevel](double l) { return l + tolerance <= zoomLevel; });
    return level == levels.rend() ? smallest : *level;
}

} // namespace ZoomLevels
