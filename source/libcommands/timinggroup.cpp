#include "libcommands/timinggroup.h"

#include "libmodel/scene/scene.h"

namespace Commands {

int timingGroup(const Model::Scene &scene, int layerIdx)
{
    const Model::Layer *layer = scene.layer(layerIdx);
    return layer && layer->isLinked() ? -1 : layerIdx;
}

} // namespace Commands
