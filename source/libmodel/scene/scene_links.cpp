// The links between cells of different layers, as layers come and go.

#include "libmodel/layers/celllinks.h"
#include "libmodel/layers/identifierhash.h"
#include "libmodel/layers/linkbatch.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/celllookup.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>
#include <utility>

namespace Model {

namespace {

/// How many of the clones that \a original lists are nowhere.
template<typename IsSomewhere>
qsizetype danglingClones(const LayerItem &original, const IsSomewhere &isSomewhere)
{
    return std::count_if(original.clones.begin(), original.clones.end(),
                         [&isSomewhere](const CellRef &ref) { return !isSomewhere(ref); });
}

} // namespace

std::shared_ptr<LayerItem> Scene::Private::findCell(const CellRef &ref, int *layerIdx, int *frameId) const
{
    const CellLookup::Found found = CellLookup(layers).find(ref);
    if (found.cell && layerIdx)
        *layerIdx = found.layerIdx;
    if (found.cell && frameId)
        *frameId = found.frameId;
    return found.cell;
}

CellFinder Scene::Private::finder() const
{
    return [lookup = std::make_shared<CellLookup>(layers)](const CellRef &ref) { return lookup->find(ref).cell; };
}

void Scene::Private::connectFinder(VisualLayer &layer) const
{
    layer.setCellFinderSource([this] { return finder(); });
}

void Scene::Private::spread(const QList<CellRef> &refs) const
{
    CellLookup lookup(layers);
    spread(refs, lookup);
}

void Scene::Private::spread(const QList<CellRef> &refs, CellLookup &lookup) const
{
    for (const CellRef &ref : refs) {
        if (const CellLookup::Found found = lookup.find(ref); found.cell)
            qobject_cast<VisualLayer *>(layers.at(found.layerIdx).get())->spreadDrawing(found.frameId);
    }
}

// The layer is out of the list already: only cells of other layers are found.
void Scene::Private::detachLinks(VisualLayer &layer)
{
    layer.setCellFinder({});
    const CellFinder find = finder();
    IdentifierSet here;
    for (const auto &cell : layer.frames())
        here.insert(cell->identifier);
    const auto isSomewhere = [&layer, &here, &find](const CellRef &ref) {
        return ref.layer == layer.identifier() ? here.contains(ref.cell) : find(ref) != nullptr;
    };
    for (const auto &cell : layer.frames()) {
        const auto isElsewhere = [&find](const CellRef &ref) { return find(ref) != nullptr; };
        if (!cell->isOriginal() || std::none_of(cell->clones.begin(), cell->clones.end(), isElsewhere))
            continue;
        // An original that has handed its distant clones over says so in formerLink.
        cell->formerLink = danglingClones(*cell, isSomewhere);
        promoteFirstClone(*cell, find);
    }
    LinkBatch batch(find);
    for (int frameId = 1; frameId <= layer.numFrames(); ++frameId) {
        const auto cell = layer.item(frameId);
        if (cell->isDistantClone())
            batch.unlink(*cell, layer.cellRef(frameId));
    }
    batch.finishUnlinking();
}

// In the reverse order of detachLinks(), so that every list is what it was. The layer stands in the list already.
void Scene::Private::attachLinks(VisualLayer &layer)
{
    connectFinder(layer);
    CellLookup lookup(layers);
    attachClones(layer, lookup);
    attachOriginals(layer, lookup);
}

void Scene::Private::attachClones(VisualLayer &layer, CellLookup &lookup)
{
    LinkBatch batch([&lookup](const CellRef &ref) { return lookup.find(ref).cell; });
    for (int frameId = layer.numFrames(); frameId >= 1; --frameId) {
        const auto cell = layer.item(frameId);
        if (!cell->isDistantClone())
            continue;
        const bool wasLinked = cell->formerLink >= 0;
        if (!batch.relink(*cell, layer.cellRef(frameId))) {
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
    batch.finishRelinking();
}

void Scene::Private::attachOriginals(VisualLayer &layer, CellLookup &lookup) const
{
    const CellFinder find = [&lookup](const CellRef &ref) { return lookup.find(ref).cell; };
    for (int frameId = layer.numFrames(); frameId >= 1; --frameId) {
        const auto cell = layer.item(frameId);
        if (!cell->isOriginal() || cell->formerLink < 0)
            continue;
        const auto isSomewhere = [&find](const CellRef &ref) { return find(ref) != nullptr; };
        // What is gone since then leaves the list; what a file named that never was stays.
        if (std::exchange(cell->formerLink, -1) != danglingClones(*cell, isSomewhere))
            cell->clones.removeIf([&isSomewhere](const CellRef &ref) { return !isSomewhere(ref); });
        demoteClones(*cell, layer.cellRef(frameId), find);
        spread(cell->clones, lookup);
    }
}

} // namespace Model
