#pragma once

namespace Model {
class Scene;
}

/// Where a step from the active position of a scene leads, in frames of the active layer counted from 1. All of them
/// stay within the playback range, but for the empty position behind the layer's last cell, which forward() also goes
/// to from the end of the range. They answer the active frame where there is nothing to go to.
namespace FrameSteps {

/// One frame back, or one on: up to the empty position behind the layer's last cell, if the range goes to that cell.
[[nodiscard]] int back(const Model::Scene &scene);
[[nodiscard]] int forward(const Model::Scene &scene);

/// The nearest cell before (\a direction -1) or behind (1) that is no hold.
[[nodiscard]] int drawing(const Model::Scene &scene, int direction);

/// The nearest cell before (\a direction -1) or behind (1) that is marked as a key drawing.
[[nodiscard]] int keyDrawing(const Model::Scene &scene, int direction);

/// The first frame of the range, and the last that the layer has in it; the first one where it has none.
[[nodiscard]] int start(const Model::Scene &scene);
[[nodiscard]] int end(const Model::Scene &scene);

} // namespace FrameSteps
