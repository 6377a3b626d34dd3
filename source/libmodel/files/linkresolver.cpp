#include "libmodel/files/linkresolver.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/drawing.h"

#include <QHash>

#include <utility>

namespace Model {

namespace {

/// All cells of the scene by layer and cell identifier. Where a file uses an identifier twice, the first cell has it.
using CellMap = QHash<std::pair<QUuid, QUuid>, const LayerItem *>;

CellMap mapCells(const Scene &scene)
{
    CellMap cells;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        if (!layer)
            continue;
        for (const auto &cell : layer->frames()) {
            const std::pair key(layer->identifier(), cell->identifier);
            if (!cells.contains(key))
                cells.insert(key, cell.get());
        }
    }
    return cells;
}

void resolveLayer(const VisualLayer &layer, const CellMap &cells)
{
    std::shared_ptr<Drawing> previous;
    for (const auto &cell : layer.frames()) {
        if (cell->type == LayerItem::Type::Clone && previous) {
            cell->drawing = previous;
        } else if (cell->type == LayerItem::Type::DistantClone) {
            const LayerItem *target = cells.value({cell->origin.layer, cell->origin.cell});
            if (target && target->drawing->type() == cell->drawing->type())
                cell->drawing = target->drawing;
        }
        previous = cell->drawing;
    }
}

} // namespace

void resolveLinks(Scene &scene)
{
    const CellMap cells = mapCells(scene);
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (const VisualLayer *layer = scene.visualLayer(layerIdx))
            resolveLayer(*layer, cells);
    }
}

} // namespace Model
