// What one cell shows: its kind, its drawing, the strokes committed to it. Linked layers have no part in this.

#include "libmodel/layers/celllinks.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/celllookup.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QSignalBlocker>

#include <algorithm>

namespace Model {

namespace {

StrokeDrawing *strokeDrawingOf(const std::shared_ptr<LayerItem> &cell)
{
    return cell ? dynamic_cast<StrokeDrawing *>(cell->drawing.get()) : nullptr;
}

/// Pictures go to reference layers, strokes to those that are drawn on.
bool takes(const Layer &layer, const Drawing &drawing)
{
    return (drawing.type() == Drawing::Type::Image) == (layer.layerType() == Layer::Reference);
}

} // namespace

// Takes the cell out of its links and returns what it was: its distant clones go to the first of them, its entry in the
// list of its original is removed.
SceneChange Scene::releaseCell(int layerIdx, int frameId)
{
    SceneChange change(LayerChange::ItemReplaced, frameId, layerIdx);
    const auto cell = item(layerIdx, frameId);
    change.item = std::make_shared<LayerItem>(*cell);
    if (cell->isOriginal())
        promoteFirstClone(*cell, d->finder());
    else if (cell->isDistantClone())
        unlinkDistantClone(*change.item, visualLayer(layerIdx)->cellRef(frameId), d->finder());
    cell->clones.clear();
    cell->origin = {};
    return change;
}

// Tells of a cell that shows something else now, and of others that are touched by it.
void Scene::announceContent(int layerIdx, int frameId, CellList others)
{
    visualLayer(layerIdx)->spreadDrawing(frameId);
    addWithHolds(others, layerIdx, frameId);
    recompose();
    emit drawingsChanged(sorted(std::move(others)));
    emit currentDrawingTypeUpdated();
}

// Where the first distant clone of an original stands, which becomes an original when that lets go of it.
Scene::CellList Scene::firstCloneOf(const LayerItem &cell) const
{
    CellLookup lookup(d->layers);
    for (const CellRef &ref : cell.clones) {
        if (const CellLookup::Found clone = lookup.find(ref); clone.cell)
            return {{clone.frameId, clone.layerIdx}};
    }
    return {};
}

QList<SceneChange> Scene::loseDrawing(int layerIdx, int frameId, bool blockSignals)
{
    const auto cell = item(layerIdx, frameId);
    if (!cell || frameId < 2 || cell->isClone())
        return {};
    const QSignalBlocker blocker(blockSignals ? this : nullptr);
    CellList others = firstCloneOf(*cell);
    const SceneChange change = releaseCell(layerIdx, frameId);
    cell->type = LayerItem::Type::Clone;
    cell->drawing = item(layerIdx, frameId - 1)->drawing;
    others.append({frameId - 1, layerIdx});
    announceContent(layerIdx, frameId, std::move(others));
    return {change};
}

QList<SceneChange> Scene::turnCloneIntoOriginal(int layerIdx, int frameId, const QUuid &copyId)
{
    const auto cell = item(layerIdx, frameId);
    if (!cell || cell->isOriginal())
        return {};
    CellList others;
    // The hold that ends here now is shorter.
    if (cell->isClone())
        others.append({frameId - 1, layerIdx});
    const SceneChange change = releaseCell(layerIdx, frameId);
    cell->type = LayerItem::Type::Original;
    cell->drawing = cell->drawing->clone();
    if (!copyId.isNull())
        cell->drawing->setCopyId(copyId);
    announceContent(layerIdx, frameId, std::move(others));
    return {change};
}

QList<SceneChange> Scene::makeDistantClone(int layerIdx, int frameId, const CellRef &origin, bool blockSignals)
{
    int originLayer = -1;
    const auto original = findItem(origin, &originLayer);
    const auto cell = item(layerIdx, frameId);
    if (!cell || !original || original == cell || !original->isOriginal() ||
        layer(originLayer)->layerType() != layer(layerIdx)->layerType() ||
        original->drawing->type() != cell->drawing->type() || (cell->isDistantClone() && cell->origin == origin))
        return {};
    const QSignalBlocker blocker(blockSignals ? this : nullptr);
    CellList others = firstCloneOf(*cell);
    const SceneChange change = releaseCell(layerIdx, frameId);
    cell->type = LayerItem::Type::DistantClone;
    cell->origin = origin;
    relinkDistantClone(*cell, visualLayer(layerIdx)->cellRef(frameId), d->finder());
    announceContent(layerIdx, frameId, std::move(others));
    return {change};
}

QList<SceneChange> Scene::replaceDrawing(int layerIdx, int frameId, std::shared_ptr<Drawing> drawing,
                                         bool updateDistantClones, bool blockSignals)
{
    const auto cell = item(layerIdx, frameId);
    // What nobody else holds is shown nowhere.
    if (!cell || !drawing || !takes(*layer(layerIdx), *drawing) ||
        (drawing.use_count() > 1 && isShownSomewhere(*drawing)))
        return {};
    const QSignalBlocker blocker(blockSignals ? this : nullptr);
    SceneChange change(LayerChange::ItemReplaced, frameId, layerIdx);
    CellList others;
    if (updateDistantClones && cell->isOriginal()) {
        change.item = std::make_shared<LayerItem>(*cell);
        others = cellsShowing(layerIdx, frameId);
    } else {
        others = firstCloneOf(*cell);
        change = releaseCell(layerIdx, frameId);
    }
    cell->type = LayerItem::Type::Original;
    cell->drawing = std::move(drawing);
    demoteClones(*cell, visualLayer(layerIdx)->cellRef(frameId), d->finder());
    d->spread(cell->clones);
    announceContent(layerIdx, frameId, std::move(others));
    return {change};
}

bool Scene::isShownSomewhere(const Drawing &drawing) const
{
    const auto shows = [&drawing](const auto &cell) { return cell->drawing.get() == &drawing; };
    for (int idx = 0; idx < layerCount(); ++idx) {
        const VisualLayer *visual = visualLayer(idx);
        if (visual && std::any_of(visual->frames().begin(), visual->frames().end(), shows))
            return true;
    }
    return false;
}

bool Scene::addStroke(int layerIdx, int frameId, std::unique_ptr<Model::Stroke> stroke)
{
    StrokeDrawing *drawing = strokeDrawingOf(item(layerIdx, frameId));
    if (!drawing || !stroke)
        return false;
    if (!drawing->addStroke(std::move(stroke)))
        return false;
    recompose(drawing->touchedRect());
    emit drawingsChanged(cellsShowing(layerIdx, frameId));
    return true;
}

std::unique_ptr<Model::Stroke> Scene::removeLastStroke(int layerIdx, int frameId)
{
    StrokeDrawing *drawing = strokeDrawingOf(item(layerIdx, frameId));
    std::unique_ptr<Model::Stroke> stroke = drawing ? drawing->removeLastStroke() : nullptr;
    if (!stroke)
        return {};
    recompose(drawing->touchedRect());
    emit drawingsChanged(cellsShowing(layerIdx, frameId));
    return stroke;
}

} // namespace Model
