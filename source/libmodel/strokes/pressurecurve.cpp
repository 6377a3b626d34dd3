#include "libmodel/strokes/pressurecurve.h"

#include "libmodel/tools/drawingtool.h"

#include <cmath>

namespace Model {

double radiusAt(const DrawingTool &tool, double pressure)
{
    constexpr double base = 100.0;
    return tool.radiusBase() + tool.radiusRange() * (std::pow(base, pressure) - 1.0) / (base - 1.0);
}

double opacityAt(const DrawingTool &tool, double pressure)
{
    return tool.opacityBase() + tool.opacityRange() * pressure;
}

} // namespace Model
