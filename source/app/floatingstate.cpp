#include "app/floatingstate.h"

#include "app/behindlast.h"
#include "app/layerorder.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"

#include <utility>

using CellSelection::Span;
using Model::MRScene;
using Model::Scene;
using Model::Tool;
using Model::ToolManager;

namespace FloatingState {

namespace {

bool isOfStrokes(const Scene &scene, int layerIdx)
{
    const Model::Layer *layer = scene.layer(layerIdx);
    return layer && layer->layerType() == Model::Layer::Stroke;
}

bool isShownAndOfStrokes(const Scene &scene, int layerIdx)
{
    return isOfStrokes(scene, layerIdx) && scene.isLayerShown(layerIdx);
}

/// Is any cell of \a span one that a stamp goes to when several are selected?
bool takesStamp(const Scene &scene, const Span &span)
{
    if (!isShownAndOfStrokes(scene, span.layerIdx))
        return false;
    if (!Model::Settings::instance()->clonesLockedForDrawing())
        return true;
    for (int frameId = span.firstFrame; frameId <= span.lastFrame; ++frameId) {
        if (const auto cell = scene.item(span.layerIdx, frameId); cell && !cell->isClone())
            return true;
    }
    return false;
}

/// The active position, if there is a cell or can be one.
std::optional<Target> activePosition(const MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    const bool isBehindLast = BehindLast::isActive(mrScene);
    const bool isFull = scene.lastFrame(scene.activeLayerIdx()) >= Model::Layer::maximumFrames;
    if (isBehindLast ? isFull : !scene.activeCellHasDrawing())
        return {};
    const Span span{scene.activeLayerIdx(), scene.activeFrame(), scene.activeFrame()};
    return Target{{span}, false, isBehindLast};
}

} // namespace

bool floats(const MRScene &scene)
{
    return ToolManager::instance()->latestPaperToolType() == Tool::Type::FloatingSelection &&
           !scene.floatingSelection().isNull();
}

bool isBlocked()
{
    const ToolManager *tools = ToolManager::instance();
    return tools->currentToolType() == Tool::Type::FloatingSelection && tools->currentToolMode() != 0;
}

bool canPickUp(const MRScene &scene)
{
    return isShownAndOfStrokes(*scene.scene(), scene.scene()->activeLayerIdx());
}

bool hasStrokes(const MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    if (scene.hasActiveStroke())
        return true;
    const auto cell = scene.item(scene.activeLayerIdx(), scene.activeFrame());
    const auto *drawing = cell ? dynamic_cast<const Model::StrokeDrawing *>(cell->drawing.get()) : nullptr;
    return drawing && !drawing->isEmpty();
}

std::optional<Target> target(const MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    QList<Span> spans = CellSelection::selected(mrScene);
    if (CellSelection::count(spans) > 1) {
        spans.removeIf([&scene](const Span &span) { return !takesStamp(scene, span); });
        return spans.isEmpty() ? std::nullopt : std::optional(Target{spans, true, false});
    }
    return canPickUp(mrScene) ? activePosition(mrScene) : std::nullopt;
}

std::optional<Target> refuge(const MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    if (isOfStrokes(scene, scene.activeLayerIdx())) {
        if (const auto position = activePosition(mrScene))
            return position;
    }
    const int frameId = scene.activeFrame();
    QList<int> layers = visualLayerOrder(scene);
    layers.removeIf([&scene](int layerIdx) { return !isOfStrokes(scene, layerIdx) || scene.lastFrame(layerIdx) < 1; });
    for (const int layerIdx : std::as_const(layers)) {
        if (scene.item(layerIdx, frameId))
            return Target{{{layerIdx, frameId, frameId}}, false, false};
    }
    if (layers.isEmpty())
        return {};
    const int last = scene.lastFrame(layers.constFirst());
    return Target{{{layers.constFirst(), last, last}}, false, false};
}

} // namespace FloatingState
