#include "app/editorstate.h"

#include "app/cellselection.h"
#include "app/layerorder.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <QUndoStack>

#include <algorithm>

using Model::Layer;
using Model::LayerItem;
using Model::Scene;

namespace {

void readSpan(EditorState &state, const Scene &scene, const CellSelection::Span &span)
{
    const auto isComplete = [&state] { return state.hasHold && state.hasClone && state.hasDrawing; };
    for (int frameId = span.firstFrame; frameId <= span.lastFrame && !isComplete(); ++frameId) {
        const std::shared_ptr<LayerItem> cell = scene.item(span.layerIdx, frameId);
        if (!cell)
            continue;
        state.hasCell = true;
        state.hasHold |= cell->isClone();
        state.hasClone |= !cell->isOriginal();
        // The first cell of a layer has nothing before it that it could hold.
        state.hasDrawing |= !cell->isClone() && frameId > 1;
    }
}

void readCells(EditorState &state, const Model::MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    state.hasSelection = !CellSelection::selected(mrScene).isEmpty();
    const QList<CellSelection::Span> spans = CellSelection::toEdit(mrScene);
    state.hasPosition = !spans.isEmpty();
    for (const CellSelection::Span &span : spans)
        readSpan(state, scene, span);
}

bool hasKeyDrawing(const Model::VisualLayer &layer)
{
    return std::ranges::any_of(layer.frames(), [](const auto &cell) { return cell->keyDrawing; });
}

bool canMerge(const Scene &scene, int upperIdx)
{
    const Layer *upper = scene.layer(upperIdx);
    const Layer *lower = scene.layer(scene.nextVisualLayer(upperIdx));
    return upper && lower && Layer::isDrawType(upper->layerType()) && upper->layerType() == lower->layerType();
}

void readLayers(EditorState &state, const Scene &scene)
{
    const QList<int> order = visualLayerOrder(scene);
    const int active = scene.activeLayerIdx();
    state.hasLayer = order.contains(active);
    state.hasLayerAbove = state.hasLayer && order.constFirst() != active;
    state.hasLayerBelow = state.hasLayer && order.constLast() != active;
    state.canMergeDown = canMerge(scene, active);
    state.canAddLayer = order.size() < Scene::maximumVisualLayers;
    for (const int layerIdx : order) {
        const Model::VisualLayer &layer = *scene.visualLayer(layerIdx);
        state.hasLinkedLayer |= layer.isLinked();
        state.hasUnlinkedLayer |= !layer.isLinked();
        state.hasKeyDrawing = state.hasKeyDrawing || hasKeyDrawing(layer);
    }
    const auto *audio = dynamic_cast<const Model::AudioLayer *>(scene.layer(scene.audioLayerIdx()));
    state.hasSound = audio && audio->hasAudio();
}

void readRange(EditorState &state, const Scene &scene)
{
    state.canPlay = scene.rangeFirst() < scene.rangeLast();
    state.startsBehindFirst = scene.rangeFirst() > scene.minimumFrameNumber();
    state.endsBeforeLast = scene.rangeLast() < scene.maximumFrameNumber();
    // A range has two frames at least, where the scene has as many.
    state.canBeShorter = scene.rangeLast() - scene.rangeFirst() > 1;
}

} // namespace

EditorState EditorState::of(const Model::MRScene *scene)
{
    EditorState state;
    if (!scene)
        return state;
    const Scene &sheet = *scene->scene();
    state.hasScene = true;
    state.canUndo = sheet.undoStack()->canUndo() || sheet.hasActiveStroke();
    state.canRedo = sheet.undoStack()->canRedo();
    state.hasActiveCell = sheet.activeCellHasDrawing();
    readCells(state, *scene);
    readLayers(state, sheet);
    readRange(state, sheet);
    return state;
}
