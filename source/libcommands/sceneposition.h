#pragma once

namespace Model {
class Scene;
} // namespace Model

namespace Commands {

/// Where one stands in a scene: the playback range and the active frame and layer. A value.
struct ScenePosition
{
    int rangeFirst = 1;
    int rangeLast = 1;
    int activeFrame = -1;
    int activeLayerIdx = -1;

    /// The position of \a scene now.
    [[nodiscard]] static ScenePosition of(const Model::Scene &scene);
    /// Puts \a scene back to this position, which must be possible with the cells that it has.
    void restore(Model::Scene &scene) const;

    bool operator==(const ScenePosition &) const = default;
};

} // namespace Commands
