#include "app/layerorder.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

QList<int> visualLayerOrder(const Model::Scene &scene)
{
    QList<int> layers = scene.layerOrder();
    layers.removeIf([&scene](int layerIdx) { return !scene.visualLayer(layerIdx); });
    return layers;
}
