#pragma once

#include "libmodel/layers/visuallayer.h"

namespace Model {

/// A layer that can be drawn on. Adds nothing: it exists to be asked for.
class DrawLayer : public VisualLayer
{
    Q_OBJECT

public:
    ~DrawLayer() override;

protected:
    using VisualLayer::VisualLayer;
};

} // namespace Model
