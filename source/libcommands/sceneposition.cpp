#include "libcommands/sceneposition.h"

#include "libmodel/scene/scene.h"

namespace Commands {

ScenePosition ScenePosition::of(const Model::Scene &scene)
{
    return {scene.rangeFirst(), scene.rangeLast(), scene.activeFrame(), scene.activeLayerIdx()};
}

void ScenePosition::restore(Model::Scene &scene) const
{
    scene.setFrameRange(rangeFirst, rangeLast, activeFrame, activeLayerIdx);
}

} // namespace Commands
