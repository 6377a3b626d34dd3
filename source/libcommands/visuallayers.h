#pragma once

namespace Model {
class Scene;
} // namespace Model

namespace Commands {

/// The number of visual layers.
[[nodiscard]] int visualLayerCount(const Model::Scene &scene);

/// The visual layer next to that at \a layerIdx in the display order: the one above, at the top the one below; -1 when
/// there is no other.
[[nodiscard]] int neighbourLayer(const Model::Scene &scene, int layerIdx);

} // namespace Commands
