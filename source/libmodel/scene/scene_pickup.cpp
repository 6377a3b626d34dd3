// Parts of drawings cut out and picked up.

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/rendereffort.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Model {

namespace {

const StrokeDrawing *strokesOf(const std::shared_ptr<LayerItem> &cell)
{
    return cell ? dynamic_cast<const StrokeDrawing *>(cell->drawing.get()) : nullptr;
}

/// Is there anything inside of \a path, and is it one that a drawing may keep and a file hold?
bool enclosesArea(const QPainterPath &path)
{
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        // No number fails both comparisons, which is why they are put this way.
        if (!(std::abs(element.x) <= coordinateLimit) || !(std::abs(element.y) <= coordinateLimit))
            return false;
    }
    return !path.boundingRect().isEmpty();
}

/// A path may run around nothing within the bounds of a line. Without a renderer nobody can tell, so then it may not.
bool hasInk(const FloatingSelection &selection)
{
    if (selection.isNull())
        return false;
    if (needsRenderer(*selection.content()) && !OffscreenRenderer::instance()->isInitialized())
        return true;
    const QImage image = selection.image();
    for (int y = 0; y < image.height(); ++y) {
        const uchar *line = image.constScanLine(y);
        if (std::any_of(line, line + image.width(), [](uchar coverage) { return coverage != 0; }))
            return true;
    }
    return false;
}

} // namespace

QList<SceneChange> Scene::cutPath(int layerIdx, int frameId, const QPainterPath &path)
{
    const StrokeDrawing *drawing = strokesOf(item(layerIdx, frameId));
    if (!drawing || drawing->isEmpty() || !enclosesArea(path))
        return {};
    std::shared_ptr<Drawing> copy = drawing->clone();
    if (!static_cast<StrokeDrawing &>(*copy).cutPath(path))
        return {};
    // A distant clone that leads nowhere keeps the drawing to itself and its holds.
    if (!findItem(originOfFrame(layerIdx, frameId), &layerIdx, &frameId)) {
        while (item(layerIdx, frameId)->isClone())
            --frameId;
    }
    return replaceDrawing(layerIdx, frameId, std::move(copy), true);
}

FloatingSelection Scene::floatingSelectionFrom(const QPainterPath &path) const
{
    const StrokeDrawing *drawing = strokesOf(item(d->activeLayerIdx, d->activeFrame));
    const bool isUsable = path.isEmpty() || enclosesArea(path);
    if (!drawing || drawing->isEmpty() || !isUsable || !isLayerShown(d->activeLayerIdx))
        return {};
    const FloatingSelection selection(drawing->extract(path), d->frameSize);
    return hasInk(selection) ? selection : FloatingSelection();
}

} // namespace Model
