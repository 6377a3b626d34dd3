#pragma once

#include "libmodel/layers/layerchange.h"

namespace Model {

/// A step on one layer of the scene.
struct SceneChange : LayerChange
{
    SceneChange() = default;
    /// A step of kind \a changeType at \a frame (1-based) of the layer at \a layer.
    SceneChange(Type changeType, int frame, int layer) : LayerChange(changeType, frame), layerIndex(layer) {}
    /// \a change, taken on the layer at \a layer.
    SceneChange(const LayerChange &change, int layer) : LayerChange(change), layerIndex(layer) {}

    int layerIndex = -1; ///< position in the scene's storage order
};

} // namespace Model
