#include "pasterules.h"

#include <algorithm>
#include <set>

namespace TestSupport {

namespace {

constexpr int original = 0;
constexpr int hold = 1;
constexpr int distantClone = 2;

} // namespace

std::vector<CopiedFrame> copiedFrames(const SceneSnapshot &scene, int layerIdx, int firstFrame, int count)
{
    std::vector<CopiedFrame> frames;
    std::set<int> written;
    for (int row = firstFrame - 1; row < firstFrame - 1 + count; ++row) {
        const CellState &cell = scene.layers.at(size_t(layerIdx)).cells.at(size_t(row));
        DrawingState drawing = scene.drawings.at(size_t(cell.drawing));
        drawing.name.clear();
        frames.push_back({cell.type, drawing, written.insert(cell.drawing).second});
    }
    return frames;
}

PasteRules::PasteRules(const SceneSnapshot &scene, const std::vector<DrawingState> &discarded)
    : m_scene(scene), m_drawings(discarded)
{
}

PasteRules::Place PasteRules::find(const Model::CellRef &ref) const
{
    for (size_t layerIdx = 0; layerIdx < m_scene.layers.size(); ++layerIdx) {
        const LayerState &layer = m_scene.layers[layerIdx];
        for (size_t row = 0; layer.identifier == ref.layer && row < layer.cells.size(); ++row) {
            if (layer.cells[row].identifier == ref.cell)
                return {int(layerIdx), int(row)};
        }
    }
    return {};
}

PasteRules::Place PasteRules::originalOf(const QUuid &copyId, int layerType) const
{
    for (size_t layerIdx = 0; layerIdx < m_scene.layers.size(); ++layerIdx) {
        const LayerState &layer = m_scene.layers[layerIdx];
        for (size_t row = 0; layer.type == layerType && row < layer.cells.size(); ++row) {
            const CellState &cell = layer.cells[row];
            if (cell.type == original && m_scene.drawings[size_t(cell.drawing)].copyId == copyId)
                return {int(layerIdx), int(row)};
        }
    }
    return {};
}

QUuid PasteRules::copyIdAt(Place place)
{
    return m_scene.drawings[size_t(cell(place).drawing)].copyId;
}

Model::CellRef PasteRules::refOf(Place place)
{
    return {m_scene.layers[size_t(place.layerIdx)].identifier, cell(place).identifier};
}

// Holds show what the cell before them shows.
void PasteRules::follow(Place place)
{
    auto &cells = m_scene.layers[size_t(place.layerIdx)].cells;
    for (size_t row = size_t(place.row) + 1; row < cells.size() && cells[row].type == hold; ++row)
        cells[row].drawing = cells[row - 1].drawing;
}

// The cell leaves its links; the first distant clone of an original becomes one in its place.
void PasteRules::letGo(Place target)
{
    CellState &left = cell(target);
    const Model::CellRef ref = refOf(target);
    if (left.type == distantClone) {
        if (const Place origin = find(left.origin); origin.row >= 0)
            cell(origin).clones.removeAll(ref);
    } else if (left.type == original && !left.clones.isEmpty()) {
        const Model::CellRef heir = left.clones.first();
        CellState &promoted = cell(find(heir));
        promoted.type = original;
        promoted.origin = {};
        promoted.clones = left.clones.mid(1);
        for (const Model::CellRef &other : std::as_const(promoted.clones))
            cell(find(other)).origin = heir;
    }
    left.clones.clear();
    left.origin = {};
}

void PasteRules::lose(Place target)
{
    if (cell(target).type == hold || target.row == 0)
        return;
    letGo(target);
    cell(target).type = hold;
    cell(target).drawing = cell({target.layerIdx, target.row - 1}).drawing;
    follow(target);
}

void PasteRules::link(Place target, Place source)
{
    const Model::CellRef ref = refOf(target);
    const Model::CellRef origin = refOf(source);
    if (ref == origin || (cell(target).type == distantClone && cell(target).origin == origin))
        return;
    letGo(target);
    cell(target).type = distantClone;
    cell(target).origin = origin;
    cell(target).drawing = cell(source).drawing;
    cell(source).clones.append(ref);
    follow(target);
}

void PasteRules::replace(Place target, const DrawingState &drawing)
{
    const int number = int(m_scene.drawings.size());
    m_scene.drawings.push_back(drawing);
    const QList<Model::CellRef> clones = cell(target).clones;
    // What this paste has filled keeps what it got.
    const bool takesAlong = std::none_of(clones.begin(), clones.end(), [this](const Model::CellRef &clone) {
        return std::find(m_filled.begin(), m_filled.end(), clone) != m_filled.end();
    });
    if (cell(target).type != original || !takesAlong)
        letGo(target);
    cell(target).type = original;
    cell(target).drawing = number;
    follow(target);
    for (const Model::CellRef &ref : std::as_const(cell(target).clones)) {
        cell(find(ref)).drawing = number;
        follow(find(ref));
    }
}

// A drawing that is about to be filled over: a distant clone may go on showing it, and it is at hand otherwise.
void PasteRules::rememberBefore(Place target, const QUuid &pasted)
{
    const CellState &present = cell(target);
    const QUuid copyId = copyIdAt(target);
    if (present.type != original || copyId.isNull() || copyId == pasted)
        return;
    std::erase_if(m_originals, [&copyId](const auto &entry) { return entry.first == copyId; });
    if (!present.clones.isEmpty())
        m_originals.push_back({copyId, present.clones.first()});
    m_drawings.push_back(m_scene.drawings[size_t(present.drawing)]);
}

void PasteRules::fillCell(Place target, const CopiedFrame &frame, bool isFirst)
{
    const QUuid copyId = frame.drawing.copyId;
    const int layerType = m_scene.layers[size_t(target.layerIdx)].type;
    rememberBefore(target, copyId);
    const Place found = originalOf(copyId, layerType);
    if (!isFirst && frame.kind == hold) {
        lose(target);
        return;
    }
    if (found.row >= 0) {
        const Place before{target.layerIdx, target.row - 1};
        if (isFirst && frame.kind == hold && before.row >= 0 && copyIdAt(before) == copyId)
            lose(target);
        else
            link(target, found);
        return;
    }
    for (const auto &[identifier, ref] : m_originals) {
        const Place place = identifier == copyId ? find(ref) : Place();
        if (place.row >= 0 && cell(place).type == original && copyIdAt(place) == copyId) {
            link(target, place);
            return;
        }
    }
    const auto atHand = std::find_if(m_drawings.begin(), m_drawings.end(),
                                     [&copyId](const DrawingState &drawing) { return drawing.copyId == copyId; });
    if (atHand != m_drawings.end()) {
        const DrawingState drawing = *atHand;
        m_drawings.erase(atHand);
        replace(target, drawing);
    } else if (frame.hasDrawing) {
        replace(target, frame.drawing);
    }
    m_originals.push_back({copyId, refOf(target)});
}

void PasteRules::fill(int layerIdx, int firstRow, const std::vector<CopiedFrame> &frames)
{
    for (size_t i = 0; i < frames.size(); ++i) {
        const Place target{layerIdx, firstRow + int(i)};
        fillCell(target, frames[i], i == 0);
        m_filled.push_back(refOf(target));
    }
}

SceneSnapshot PasteRules::result() const
{
    SceneSnapshot scene = m_scene;
    scene.drawings.clear();
    std::vector<int> numbers(m_scene.drawings.size(), -1);
    for (LayerState &layer : scene.layers) {
        for (CellState &shown : layer.cells) {
            int &number = numbers[size_t(shown.drawing)];
            if (number < 0) {
                number = int(scene.drawings.size());
                scene.drawings.push_back(m_scene.drawings[size_t(shown.drawing)]);
            }
            shown.drawing = number;
        }
    }
    return scene;
}

} // namespace TestSupport
