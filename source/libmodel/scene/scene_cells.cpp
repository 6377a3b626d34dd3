// What stands where.

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/celllookup.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>

namespace Model {

std::shared_ptr<LayerItem> Scene::item(int layerIdx, int frameId) const
{
    const VisualLayer *visual = visualLayer(layerIdx);
    return visual ? visual->item(frameId) : nullptr;
}

std::shared_ptr<LayerItem> Scene::findItem(const CellRef &ref, int *layerIdx, int *frameId) const
{
    return d->findCell(ref, layerIdx, frameId);
}

CellRef Scene::originOfFrame(int layerIdx, int frameId) const
{
    auto cell = item(layerIdx, frameId);
    while (cell && cell->isClone())
        cell = item(layerIdx, --frameId);
    if (!cell)
        return {};
    return cell->isDistantClone() ? cell->origin : CellRef{layer(layerIdx)->identifier(), cell->identifier};
}

std::shared_ptr<LayerItem> Scene::findOriginalByCopyId(const QUuid &copyId, CellRef *ref, int *layerIdx,
                                                       int *frameId) const
{
    if (copyId.isNull())
        return {};
    for (int idx = 0; idx < layerCount(); ++idx) {
        const VisualLayer *visual = visualLayer(idx);
        for (int frame = 1; visual && frame <= visual->numFrames(); ++frame) {
            const auto &cell = visual->frames().at(frame - 1);
            if (!cell->isOriginal() || cell->drawing->copyId() != copyId)
                continue;
            if (ref)
                *ref = visual->cellRef(frame);
            if (layerIdx)
                *layerIdx = idx;
            if (frameId)
                *frameId = frame;
            return cell;
        }
    }
    return {};
}

// The cells, as (frame, layer), of a cell that is no hold and of the holds behind it.
void Scene::addWithHolds(CellList &cells, int layerIdx, int frameId) const
{
    const auto &frames = visualLayer(layerIdx)->frames();
    do
        cells.append({frameId, layerIdx});
    while (++frameId <= frames.size() && frames.at(frameId - 1)->isClone());
}

// All cells that show the drawing of a cell, sorted: its original, the original's distant clones, and the holds behind
// each of these. The cell acted on is always among them, whatever the links say.
Scene::CellList Scene::cellsShowing(int layerIdx, int frameId) const
{
    CellList cells;
    while (frameId > 1 && item(layerIdx, frameId)->isClone())
        --frameId;
    addWithHolds(cells, layerIdx, frameId);
    auto original = item(layerIdx, frameId);
    if (original->isDistantClone()) {
        // A link to nowhere leaves the cell to itself.
        if (const auto origin = findItem(original->origin, &layerIdx, &frameId)) {
            original = origin;
            addWithHolds(cells, layerIdx, frameId);
        }
    }
    CellLookup lookup(d->layers);
    for (const CellRef &ref : std::as_const(original->clones)) {
        if (const CellLookup::Found clone = lookup.find(ref); clone.cell)
            addWithHolds(cells, clone.layerIdx, clone.frameId);
    }
    return sorted(std::move(cells));
}

Scene::CellList Scene::sorted(CellList cells)
{
    std::sort(cells.begin(), cells.end());
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    return cells;
}

} // namespace Model
