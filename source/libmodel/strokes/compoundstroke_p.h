#pragma once

#include "libmodel/strokes/compoundstroke.h"

namespace Model {

struct CompoundStroke::Private
{
    std::vector<std::unique_ptr<Stroke>> strokes;
    QRect boundingRect;
    QPainterPath cutPath;
    QPainterPath keepPath;
    QTransform transform;
};

} // namespace Model
