// Merging the pictures of one layer into another.

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>

namespace Model {

// Makes what stands at frameId an original whose drawing is shown by it and the holds behind it alone.
void Scene::makeMergeable(VisualLayer &layer, int frameId)
{
    const int layerIdx = indexOfLayer(layer.identifier());
    const auto cell = layer.item(frameId);
    if (cell->isOriginal() && cell->clones.isEmpty())
        return;
    releaseCell(layerIdx, frameId);
    cell->type = LayerItem::Type::Original;
    cell->drawing = cell->drawing->clone();
    layer.spreadDrawing(frameId);
}

bool Scene::mergeLayers(int upper, int lower)
{
    const VisualLayer *source = visualLayer(upper);
    VisualLayer *target = visualLayer(lower);
    if (!source || !target || source == target || source->layerType() != target->layerType() ||
        !Layer::isDrawType(target->layerType()))
        return false;

    const Private::OffPegsWatch watch(*d);
    // Linked layers have no part in this: both become one.
    if (target->numFrames() < source->numFrames())
        target->insertBlankAfter(target->numFrames());
    while (target->numFrames() < source->numFrames())
        target->insertCloneAfter(target->numFrames());
    // All cells first: a hold must not be split off a drawing that has been merged into already.
    for (int frameId = 1; frameId <= source->numFrames(); ++frameId) {
        if (!source->item(frameId)->isClone())
            makeMergeable(*target, frameId);
    }
    for (int frameId = 1; frameId <= source->numFrames(); ++frameId) {
        const auto from = source->item(frameId);
        const auto to = target->item(frameId);
        to->keyDrawing = to->keyDrawing || from->keyDrawing;
        if (!from->offPegsTransform.isIdentity())
            to->offPegsTransform = from->offPegsTransform;
        if (!from->isClone())
            to->drawing->merge(*from->drawing);
    }
    d->markBeforeTelling();
    updateMaxFrameNumber();
    keepRangeInside();
    d->markBeforeTelling();
    emit layersChanged(lower, lower);
    recompose();
    return true;
}

} // namespace Model
