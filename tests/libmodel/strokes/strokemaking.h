#pragma once

#include "libmodel/strokes/singlestroke.h"
#include "testtools.h"

#include <memory>

/// A finished straight stroke without an image.
inline std::unique_ptr<Model::SingleStroke> straightStroke(const Model::Tool &tool, QPointF from, QPointF to)
{
    auto stroke = std::make_unique<Model::SingleStroke>(&tool);
    stroke->addSample({from, 1.0, 0});
    stroke->addSample({to, 1.0, 10});
    stroke->finish();
    return stroke;
}

/// A stroke as a driver makes it: with an image of \a size that has been drawn into segment by segment.
inline std::unique_ptr<Model::SingleStroke> drawnStroke(const Model::Tool &tool, QSize size, QPointF from, QPointF to)
{
    auto stroke = std::make_unique<Model::SingleStroke>(size, &tool);
    stroke->addSample({from, 1.0, 0});
    stroke->renderLatestSegment();
    stroke->addSample({to, 1.0, 10});
    stroke->renderLatestSegment();
    stroke->finish();
    stroke->renderLatestSegment();
    return stroke;
}
