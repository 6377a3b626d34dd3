#include "app/floatingstate.h"

#include "app/behindlast.h"
#include "app/layerorder.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"

using CellSelection::Span;
using Model::MRScene;
using Model::Scene;

namespace FloatingState {

namespace {

bool isOfStrokes(const Scene &scene, int layerIdx)
{
    const Model::Layer *layer = scene.layer(layerIdx);
    return layer && layer->layerType() == Model::Layer::Stroke;
}

bool isShownAndOfStrokes(const Scene &scene, int layerIdx)
{
    return isOfStrokes(scene, layerIdx) && scene.visualLayer(layerIdx)->isVisible();
}

/// The active position, if there is a cell or can be one.
std::optional<Target> activePosition(const MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    const bool isBehindLast = BehindLast::isActive(mrScene);
    if (!isBehindLast && !scene.activeCellHasDrawing())
        return {};
    const Span span{scene.activeLayerIdx(), scene.activeFrame(), scene.activeFrame()};
    return Target{{span}, false, isBehindLast};
}

} // namespace

bool floats(const MRScene &scene)
{
    return Model::ToolManager::instance()->latestPaperToolType() == Model::Tool::Type::FloatingSelection &&
           !scene.floatingSelection().isNull();
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
        spans.removeIf([&scene](const Span &span) { return !isShownAndOfStrokes(scene, span.layerIdx); });
        return spans.isEmpty() ? std::nullopt : std::optional(Target{spans, true, false});
    }
    return canPickUp(mrScene) ? activePosition(mrScene) : std::nullopt;
}

std::optional<Target> refuge(const MRScene &mrScene)
{
    const Scene &scene = *mrScene.scene();
    if (isOfStrokes(scene, scene.activeLayerIdx()))
        return activePosition(mrScene);
    const int frameId = scene.activeFrame();
    const QList<int> layers = visualLayerOrder(scene);
    for (const int layerIdx : layers) {
        if (isOfStrokes(scene, layerIdx) && scene.item(layerIdx, frameId))
            return Target{{{layerIdx, frameId, frameId}}, false, false};
    }
    return {};
}

} // namespace FloatingState
