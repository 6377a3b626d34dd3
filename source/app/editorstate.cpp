#include "app/editorstate.h"

#include "app/cellselection.h"
#include "app/drawingclipboard.h"
#include "app/floatingstate.h"
#include "app/framesteps.h"
#include "app/layerorder.h"
#include "libcommands/collapsevectordata.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QUndoStack>

#include <algorithm>

using Model::Layer;
using Model::LayerItem;
using Model::Scene;

namespace {

/// Pictures that were not drawn here are taken for drawn on.
bool isBlank(const LayerItem &cell)
{
    const auto *drawing = dynamic_cast<const Model::StrokeDrawing *>(cell.drawing.get());
    return drawing && drawing->isEmpty();
}

void readSpan(EditorState &state, const Scene &scene, const CellSelection::Span &span)
{
    const auto isComplete = [&state] {
        return state.hasHold && state.hasClone && state.canLoseDrawing && state.hasInk;
    };
    for (int frameId = span.firstFrame; frameId <= span.lastFrame && !isComplete(); ++frameId) {
        const std::shared_ptr<LayerItem> cell = scene.item(span.layerIdx, frameId);
        if (!cell)
            continue;
        state.hasCell = true;
        state.hasHold |= cell->isClone();
        state.hasClone |= !cell->isOriginal();
        state.hasInk = state.hasInk || !isBlank(*cell);
        // The first cell of a layer has nothing before it that it could hold.
        state.canLoseDrawing |= !cell->isClone() && frameId > 1;
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

void readPickUp(EditorState &state, const Model::MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    const bool hasStrokes = FloatingState::hasStrokes(mrScene);
    state.canPickUp = FloatingState::canPickUp(mrScene);
    state.canPickUpAll = state.canPickUp && hasStrokes;
    const QModelIndex cell = mrScene.sceneModel()->index(scene.activeFrame() - 1, scene.activeLayerIdx());
    state.canCollapse = hasStrokes && Commands::CollapseVectorData::canCollapse(mrScene, cell);
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

void readSteps(EditorState &state, const Scene &scene)
{
    const auto leadsAway = [&scene](int frameId) { return frameId != scene.activeFrame(); };
    state.canStepBack = leadsAway(FrameSteps::back(scene));
    state.canStepForward = leadsAway(FrameSteps::forward(scene));
    state.canStepToDrawingBefore = leadsAway(FrameSteps::drawing(scene, -1));
    state.canStepToDrawingBehind = leadsAway(FrameSteps::drawing(scene, 1));
    state.canSkipToKeyDrawingBefore = state.hasKeyDrawing && leadsAway(FrameSteps::keyDrawing(scene, -1));
    state.canSkipToKeyDrawingBehind = state.hasKeyDrawing && leadsAway(FrameSteps::keyDrawing(scene, 1));
    state.canJumpToStart = leadsAway(FrameSteps::start(scene));
    state.canJumpToEnd = leadsAway(FrameSteps::end(scene));
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
    // A stroke that is committed ends what could be done again.
    state.canRedo = sheet.undoStack()->canRedo() && !sheet.hasActiveStroke();
    state.hasActiveCell = sheet.activeCellHasDrawing();
    readCells(state, *scene);
    state.hasInk |= sheet.hasActiveStroke();
    state.canCopy = DrawingClipboard::toCopy(*scene).has_value();
    readPickUp(state, *scene);
    state.readFloating(*scene);
    readLayers(state, sheet);
    readRange(state, sheet);
    if (state.hasLayer)
        readSteps(state, sheet);
    return state;
}

void EditorState::readFloating(const Model::MRScene &scene)
{
    hasFloatingSelection = !scene.floatingSelection().isNull();
    floats = FloatingState::floats(scene);
    canStamp = floats && !FloatingState::isBlocked() && FloatingState::target(scene).has_value();
    canGetSelectionBack = hasFloatingSelection && !floats;
}

void EditorState::allowGettingBack()
{
    canGetSelectionBack = !floats;
}

void EditorState::allowPlaybackToEnd()
{
    for (bool EditorState::*ends : {&EditorState::canPlay, &EditorState::canStepBack, &EditorState::canStepForward,
                                    &EditorState::canStepToDrawingBefore, &EditorState::canStepToDrawingBehind,
                                    &EditorState::canSkipToKeyDrawingBefore, &EditorState::canSkipToKeyDrawingBehind,
                                    &EditorState::canJumpToStart, &EditorState::canJumpToEnd})
        this->*ends = true;
}
