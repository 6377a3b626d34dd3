#include "libmodel/scene/firstlayers.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"

namespace Model {

namespace {

constexpr QColor firstLayerColor(40, 97, 184);

bool hasVisualLayer(const Scene &scene)
{
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (scene.visualLayer(layerIdx))
            return true;
    }
    return false;
}

} // namespace

void addMissingLayers(Scene &scene)
{
    if (!hasVisualLayer(scene)) {
        const auto layer = std::make_shared<StrokeLayer>(firstLayerColor, scene.frameSize());
        layer->setName(scene.nextLayerName());
        scene.moveLayer(scene.insertLayer(layer, 0), 0);
    }
    if (scene.audioLayerIdx() < 0)
        scene.insertLayer(std::make_shared<AudioLayer>(), scene.layerCount());
    if (scene.annotationLayerIdx() < 0)
        scene.insertLayer(std::make_shared<AnnotationLayer>(), scene.layerCount());
}

} // namespace Model
