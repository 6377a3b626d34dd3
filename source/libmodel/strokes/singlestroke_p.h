#pragma once

#include "libmodel/strokes/controlpoint.h"
#include "libmodel/strokes/segment.h"
#include "libmodel/strokes/singlestroke.h"

namespace Model {

struct SingleStroke::Private
{
    std::vector<Sample> samples;
    std::vector<ControlPoint> controlPoints;
    QRect tailRect;
    bool hasTangent = false;
    std::vector<std::shared_ptr<const Segment>> segments;
    QRect boundingRect;
    const Tool *tool = nullptr;
    Tool::Type toolType = Tool::Type::Pen;
    Tool::PenType penType = Tool::PenType::Marker;
    Tool::EraserType eraserType = Tool::EraserType::RubberEraser;
    QImage image;
    /// The segment that image shows last; ticks without a new one need not draw it again.
    std::shared_ptr<const Segment> latestRendered;
};

} // namespace Model
