#pragma once

namespace Model {
class Scene;
} // namespace Model

namespace Commands {

/// Layers whose timing is edited together have one number: all linked layers -1, any other its own index.
[[nodiscard]] int timingGroup(const Model::Scene &scene, int layerIdx);

} // namespace Commands
