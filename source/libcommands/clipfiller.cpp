#include "libcommands/clipfiller.h"

#include "libcommands/changesteps.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/drawing.h"

#include <algorithm>
#include <utility>

namespace Commands {

using Model::DrawingClip::Frame;

namespace {

/// Calls \a visit with layer, layer index and row of each cell in layers of the type \a layerType.
template<typename Visitor>
void visitCells(const Model::Scene &scene, int layerType, const Visitor &visit)
{
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const Model::VisualLayer *layer = scene.visualLayer(layerIdx);
        for (int row = 0; layer && layer->layerType() == layerType && row < layer->numFrames(); ++row)
            visit(*layer, layerIdx, row);
    }
}

/// Does the cell in front of \a target show the drawing with \a copyId, perhaps by holds?
bool showsBefore(const Model::SceneModel &model, const QModelIndex &target, const QUuid &copyId)
{
    const auto before = model.item(model.index(target.row() - 1, target.column()));
    return before && before->drawing->copyId() == copyId;
}

} // namespace

KnownDrawings knownDrawings(const Model::Scene &scene, int layerType)
{
    KnownDrawings known;
    visitCells(scene, layerType, [&known](const Model::VisualLayer &layer, int, int row) {
        const Model::LayerItem &cell = *layer.frames().at(row);
        if (cell.isOriginal() && !cell.drawing->copyId().isNull())
            known.emplace(cell.drawing->copyId(), cell.drawing);
    });
    return known;
}

bool isFilledAlready(const Model::SceneModel &model, const QModelIndex &target, const Frame &frame)
{
    const auto cell = model.item(target);
    Model::CellRef original;
    if (!cell || cell->drawing->copyId() != frame.copyId ||
        !model.scene()->findOriginalByCopyId(frame.copyId, &original))
        return false;
    const bool isHold = frame.kind == Model::LayerItem::Type::Clone;
    if (cell->isClone())
        return isHold;
    if (isHold && showsBefore(model, target, frame.copyId))
        return false;
    return cell->isDistantClone() ? cell->origin == original : model.originOfCell(target) == original;
}

ClipFiller::ClipFiller(Model::SceneModel &model, int column, KnownDrawings known)
    : m_model(model), m_column(column), m_known(std::move(known))
{
}

QList<Model::SceneChange> ClipFiller::fill(int startRow, QList<Frame> frames)
{
    lookAround();
    const auto target = [&](qsizetype position) { return m_model.index(startRow + int(position), m_column); };
    const bool isOne = frames.size() == 1;
    ChangeSteps steps;
    // Holds that become originals of new drawings, which nothing in front of them refers to, from the last to the
    // first: so each has only the few holds behind it to take along that stay such.
    for (qsizetype i = frames.size() - 1; i >= 0; --i) {
        const auto cell = m_model.item(target(i));
        if (frames[i].drawing && cell && cell->isClone()) {
            steps.add(replace(target(i), frames[i], !isOne));
            noteFilled(target(i), {});
        }
    }
    for (qsizetype i = 0; i < frames.size(); ++i) {
        if (m_filled.contains(refOf(target(i))))
            continue;
        const auto cell = m_model.item(target(i));
        const QList<Model::CellRef> clones = cell ? cell->clones : QList<Model::CellRef>();
        steps.add(fillCell(target(i), frames[i], i == 0, i < frames.size() - 1));
        noteFilled(target(i), clones);
    }
    // Nobody has heard of any but the last.
    if (!isOne)
        m_model.scene()->refreshDrawings();
    return steps.lastFirst();
}

QList<Model::SceneChange> ClipFiller::fillCell(const QModelIndex &target, Frame &frame, bool isFirst, bool blockSignals)
{
    const bool isHold = frame.kind == Model::LayerItem::Type::Clone;
    if (isHold && !isFirst)
        return m_model.loseDrawing(target, blockSignals);
    const Model::CellRef original = originalWith(frame.copyId);
    if (original.isNull())
        return replace(target, frame, blockSignals);
    if (isHold && showsBefore(m_model, target, frame.copyId))
        return m_model.loseDrawing(target, blockSignals);
    return m_model.makeDistantClone(target, original, blockSignals);
}

QList<Model::SceneChange> ClipFiller::replace(const QModelIndex &target, Frame &frame, bool blockSignals)
{
    std::shared_ptr<Model::Drawing> drawing = std::move(frame.drawing);
    const auto known = m_known.find(frame.copyId);
    if (known != m_known.end() && known->second->copyId() == frame.copyId) {
        drawing = std::move(known->second);
        m_known.erase(known);
    }
    return m_model.replaceDrawing(target, std::move(drawing), !hasFilledClone(target), blockSignals);
}

// The cell has been filled, which had distant clones.
void ClipFiller::noteFilled(const QModelIndex &target, const QList<Model::CellRef> &clones)
{
    note({target.column(), target.row()});
    // Where an original went, the first of its distant clones has become one.
    const auto promoted = std::find_if(clones.begin(), clones.end(),
                                       [this](const auto &clone) { return m_distantClones.contains(clone); });
    if (promoted != clones.end())
        note(m_distantClones.at(*promoted));
    m_filled.insert(refOf(target));
}

Model::CellRef ClipFiller::refOf(const QModelIndex &target) const
{
    return m_model.scene()->visualLayer(m_column)->cellRef(target.row() + 1);
}

void ClipFiller::lookAround()
{
    const Model::Scene &scene = *m_model.scene();
    visitCells(scene, scene.layer(m_column)->layerType(), [this](const Model::VisualLayer &, int layerIdx, int row) {
        note({layerIdx, row});
    });
}

// Remembers what has come to stand at a place, as far as somebody may look for it.
void ClipFiller::note(const Place &place)
{
    const Model::VisualLayer &layer = *m_model.scene()->visualLayer(place.first);
    if (place.second >= layer.numFrames())
        return;
    const Model::LayerItem &cell = *layer.frames().at(place.second);
    if (cell.isDistantClone())
        m_distantClones[{layer.identifier(), cell.identifier}] = place;
    else if (cell.isOriginal() && !cell.drawing->copyId().isNull())
        m_originals[cell.drawing->copyId()].insert(place);
}

// What names the first original that shows the drawing; null if none does.
Model::CellRef ClipFiller::originalWith(const QUuid &copyId)
{
    const auto places = m_originals.find(copyId);
    if (places == m_originals.end())
        return {};
    while (!places->second.empty()) {
        const auto [layerIdx, row] = *places->second.begin();
        const QModelIndex index = m_model.index(row, layerIdx);
        const auto cell = m_model.item(index);
        if (cell && cell->isOriginal() && cell->drawing->copyId() == copyId)
            return m_model.originOfCell(index);
        places->second.erase(places->second.begin());
    }
    return {};
}

// Has the target a distant clone that was filled in this paste? That one must not change any more.
bool ClipFiller::hasFilledClone(const QModelIndex &target) const
{
    const auto cell = m_model.item(target);
    return cell && std::any_of(cell->clones.begin(), cell->clones.end(),
                               [this](const Model::CellRef &clone) { return m_filled.contains(clone); });
}

} // namespace Commands
