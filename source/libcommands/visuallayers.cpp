#include "libcommands/visuallayers.h"

#include "libmodel/scene/scene.h"

namespace Commands {

int visualLayerCount(const Model::Scene &scene)
{
    int count = 0;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx)
        count += scene.visualLayer(layerIdx) ? 1 : 0;
    return count;
}

int neighbourLayer(const Model::Scene &scene, int layerIdx)
{
    for (int index = scene.visualIndex(layerIdx) - 1; index >= 0; --index) {
        const int above = scene.layerAtVisualIndex(index);
        if (scene.visualLayer(above))
            return above;
    }
    return scene.nextVisualLayer(layerIdx);
}

} // namespace Commands
