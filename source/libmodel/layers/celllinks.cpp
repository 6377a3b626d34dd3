#include "libmodel/layers/celllinks.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>

namespace Model {

void promoteFirstClone(const LayerItem &original, const CellFinder &find)
{
    QList<std::shared_ptr<LayerItem>> cells;
    QList<CellRef> refs;
    for (const CellRef &ref : original.clones) {
        auto cell = find(ref);
        if (!cell || !cell->isDistantClone())
            continue;
        cells.append(std::move(cell));
        refs.append(ref);
    }
    if (cells.isEmpty())
        return;
    LayerItem &promoted = *cells.first();
    promoted.type = LayerItem::Type::Original;
    promoted.origin = {};
    promoted.clones = refs.mid(1);
    for (qsizetype i = 1; i < cells.size(); ++i)
        cells.at(i)->origin = refs.first();
}

void unlinkDistantClone(LayerItem &cell, const CellRef &ref, const CellFinder &find)
{
    const auto original = find(cell.origin);
    const qsizetype entry = original ? original->clones.indexOf(ref) : -1;
    if (entry < 0)
        return;
    cell.formerLink = entry;
    original->clones.removeAll(ref);
}

bool canRelink(const LayerItem &cell, const LayerItem &original)
{
    return &original != &cell && original.isOriginal() && original.drawing->type() == cell.drawing->type();
}

bool relinkDistantClone(LayerItem &cell, const CellRef &ref, const CellFinder &find)
{
    const auto original = find(cell.origin);
    if (!original || !canRelink(cell, *original))
        return false;
    if (!original->clones.contains(ref)) {
        const qsizetype end = original->clones.size();
        original->clones.insert(cell.formerLink < 0 ? end : std::min(cell.formerLink, end), ref);
    }
    cell.formerLink = -1;
    cell.drawing = original->drawing;
    return true;
}

void demoteClones(const LayerItem &original, const CellRef &ref, const CellFinder &find)
{
    for (const CellRef &clone : original.clones) {
        const auto cell = find(clone);
        if (!cell || cell.get() == &original)
            continue;
        cell->type = LayerItem::Type::DistantClone;
        cell->clones.clear();
        cell->origin = ref;
        cell->drawing = original.drawing;
    }
}

} // namespace Model
