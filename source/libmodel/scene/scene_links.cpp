// The links between cells of different layers, as layers come and go.

#include "libmodel/layers/celllinks.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>
#include <utility>

namespace Model {

namespace {

/// How many of the clones that \a original lists are nowhere.
qsizetype danglingClones(const LayerItem &original, const CellFinder &find)
{
    return std::count_if(original.clones.begin(), original.clones.end(),
                         [&find](const CellRef &ref) { return find(ref) == nullptr; });
}

} // namespace

std::shared_ptr<LayerItem> Scene::Private::findCell(const CellRef &ref, int *layerIdx, int *frameId) const
{
    if (ref.isNull())
        return {};
    const auto isNamed = [&ref](const auto &layer) { return layer->identifier() == ref.layer; };
    const auto layer = std::find_if(layers.begin(), layers.end(), isNamed);
    const auto *visual = layer == layers.end() ? nullptr : qobject_cast<const VisualLayer *>(layer->get());
    if (!visual)
        return {};
    const auto &frames = visual->frames();
    const auto cell =
        std::find_if(frames.begin(), frames.end(), [&ref](const auto &other) { return other->identifier == ref.cell; });
    if (cell == frames.end())
        return {};
    if (layerIdx)
        *layerIdx = static_cast<int>(layer - layers.begin());
    if (frameId)
        *frameId = static_cast<int>(cell - frames.begin()) + 1;
    return *cell;
}

CellFinder Scene::Private::finder() const
{
    return [this](const CellRef &ref) { return findCell(ref); };
}

void Scene::Private::spread(const QList<CellRef> &refs) const
{
    for (const CellRef &ref : refs) {
        int layerIdx = -1;
        int frameId = -1;
        if (findCell(ref, &layerIdx, &frameId))
            qobject_cast<VisualLayer *>(layers.at(layerIdx).get())->spreadDrawing(frameId);
    }
}

// The layer is out of the list already: only cells of other layers are found.
void Scene::Private::detachLinks(VisualLayer &layer)
{
    layer.setCellFinder({});
    const CellFinder find = finder();
    const CellFinder findHereToo = [&layer, &find](const CellRef &ref) -> std::shared_ptr<LayerItem> {
        if (ref.layer != layer.identifier())
            return find(ref);
        const auto isNamed = [&ref](const auto &cell) { return cell->identifier == ref.cell; };
        const auto found = std::find_if(layer.frames().begin(), layer.frames().end(), isNamed);
        return found == layer.frames().end() ? nullptr : *found;
    };
    for (const auto &cell : layer.frames()) {
        const auto isElsewhere = [&find](const CellRef &ref) { return find(ref) != nullptr; };
        if (!cell->isOriginal() || std::none_of(cell->clones.begin(), cell->clones.end(), isElsewhere))
            continue;
        // An original that has handed its distant clones over says so in formerLink.
        cell->formerLink = danglingClones(*cell, findHereToo);
        promoteFirstClone(*cell, find);
    }
    for (int frameId = 1; frameId <= layer.numFrames(); ++frameId) {
        const auto cell = layer.item(frameId);
        if (cell->isDistantClone())
            unlinkDistantClone(*cell, layer.cellRef(frameId), find);
    }
}

// In the reverse order of detachLinks(), so that every list is what it was. The layer stands in the list already.
void Scene::Private::attachLinks(VisualLayer &layer)
{
    const CellFinder find = finder();
    layer.setCellFinder(find);
    for (int frameId = layer.numFrames(); frameId >= 1; --frameId) {
        const auto cell = layer.item(frameId);
        if (!cell->isDistantClone())
            continue;
        const bool wasLinked = cell->formerLink >= 0;
        if (!relinkDistantClone(*cell, layer.cellRef(frameId), find)) {
            // Of a layer that is being read the original may be yet to come.
            if (!wasLinked)
                continue;
            cell->type = LayerItem::Type::Original;
            cell->origin = {};
            cell->formerLink = -1;
            cell->drawing = cell->drawing->clone();
        }
        layer.spreadDrawing(frameId);
    }
    for (int frameId = layer.numFrames(); frameId >= 1; --frameId) {
        const auto cell = layer.item(frameId);
        if (!cell->isOriginal() || cell->formerLink < 0)
            continue;
        // What is gone since then leaves the list; what a file named that never was stays.
        if (std::exchange(cell->formerLink, -1) != danglingClones(*cell, find))
            cell->clones.removeIf([&find](const CellRef &ref) { return !find(ref); });
        demoteClones(*cell, layer.cellRef(frameId), find);
        spread(cell->clones);
    }
}

} // namespace Model
