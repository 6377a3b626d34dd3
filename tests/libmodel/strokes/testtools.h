#pragma once

#include "libmodel/strokes/sample.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"

/// What a drawing tool gives without pressure and with full pressure. Radii in paper pixels.
struct Tip
{
    double leastRadius = 2.0;
    double largestRadius = 2.0;
    double leastOpacity = 1.0;
    double largestOpacity = 1.0;
};

inline void setTip(Model::DrawingTool &tool, const Tip &tip)
{
    tool.setSizeRangeLimits(2 * tip.leastRadius, 2 * tip.largestRadius);
    tool.setSizeRangePercent(0, 100);
    tool.setOpacityRangeLimits(tip.leastOpacity, tip.largestOpacity);
    tool.setOpacityRangePercent(0, 100);
}

/// A marker (or another pen) with a tip that tests can reckon with.
class TestPen : public Model::PenTool
{
public:
    explicit TestPen(const Tip &tip = {}, PenType type = PenType::Marker) : PenTool(type) { setTip(*this, tip); }
};

/// A rubber (or another eraser) with a tip that tests can reckon with.
class TestEraser : public Model::EraserTool
{
public:
    explicit TestEraser(const Tip &tip = {}, EraserType type = EraserType::RubberEraser) : EraserTool(type)
    {
        setTip(*this, tip);
    }
};

inline Model::Sample sampleAt(double x, double y, double pressure = 0.5)
{
    return {QPointF(x, y), pressure, 0};
}
