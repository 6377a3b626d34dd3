#include "app/framesteps.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/scene.h"

#include <algorithm>

namespace FrameSteps {

namespace {

template<typename Predicate>
int nearest(const Model::Scene &scene, int direction, Predicate isWanted)
{
    const int last = end(scene);
    // From the empty position behind the last cell, which may lie far behind the range, back into it.
    const int next = direction < 0 ? std::min(scene.activeFrame() - 1, last) : scene.activeFrame() + 1;
    for (int frameId = next; frameId >= scene.rangeFirst() && frameId <= last; frameId += direction) {
        const auto cell = scene.item(scene.activeLayerIdx(), frameId);
        if (cell && isWanted(*cell))
            return frameId;
    }
    return scene.activeFrame();
}

} // namespace

int back(const Model::Scene &scene)
{
    return std::max(scene.rangeFirst(), scene.activeFrame() - 1);
}

int forward(const Model::Scene &scene)
{
    const int lastCell = scene.lastFrame(scene.activeLayerIdx());
    const int furthest = scene.rangeLast() < lastCell ? scene.rangeLast() : lastCell + 1;
    return std::max(scene.activeFrame(), std::min(furthest, scene.activeFrame() + 1));
}

int drawing(const Model::Scene &scene, int direction)
{
    return nearest(scene, direction, [](const Model::LayerItem &cell) { return !cell.isClone(); });
}

int keyDrawing(const Model::Scene &scene, int direction)
{
    return nearest(scene, direction, [](const Model::LayerItem &cell) { return cell.keyDrawing; });
}

int start(const Model::Scene &scene)
{
    return scene.rangeFirst();
}

int end(const Model::Scene &scene)
{
    // A layer may end right before the range, which leaves its empty position.
    return std::max(scene.rangeFirst(), std::min(scene.rangeLast(), scene.lastFrame(scene.activeLayerIdx())));
}

} // namespace FrameSteps
