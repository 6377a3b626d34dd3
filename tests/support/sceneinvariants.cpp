#include "support/sceneinvariants.h"

#include "libmodel/layers/identifierhash.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QHash>

#include <algorithm>
#include <unordered_map>
#include <vector>

using namespace Model;

namespace TestSupport {

namespace {

/// A cell with where it stands. Sorted by layer and identifier, these are the index by which links are followed.
struct PlacedCell
{
    int layerIdx;
    int frameId;
    const LayerItem *cell;

    bool operator<(const PlacedCell &other) const
    {
        return layerIdx != other.layerIdx ? layerIdx < other.layerIdx : cell->identifier < other.cell->identifier;
    }
};

QString at(int layerIdx, int frameId)
{
    return QStringLiteral(" (layer %1, frame %2)").arg(layerIdx).arg(frameId);
}

class Checker
{
public:
    Checker(const Scene &scene, DanglingLinks dangling)
        : m_scene(scene), m_mayDangle(dangling == DanglingLinks::Allowed)
    {
    }

    QString orders() const;
    QString cells();
    QString links() const;
    QString positions() const;

private:
    QString cellsOf(const VisualLayer &layer, int layerIdx);
    QString cell(const VisualLayer &layer, int layerIdx, int frameId) const;
    QString linksOf(const PlacedCell &placed) const;
    const PlacedCell *find(const CellRef &ref) const;
    bool lists(const LayerItem &original, const CellRef &ref) const;
    CellRef refOf(const PlacedCell &placed) const
    {
        return {m_scene.layer(placed.layerIdx)->identifier(), placed.cell->identifier};
    }

    const Scene &m_scene;
    bool m_mayDangle;
    mutable std::unordered_map<const LayerItem *, CellRefSet> m_lists; ///< the long ones that were looked into
    std::vector<PlacedCell> m_cells;
};

QString Checker::orders() const
{
    int audioLayers = 0;
    int annotationLayers = 0;
    if (m_scene.layerOrder().size() != m_scene.layerCount())
        return QStringLiteral("the display order has not as many entries as there are layers");
    for (int layerIdx = 0; layerIdx < m_scene.layerCount(); ++layerIdx) {
        const Layer *layer = m_scene.layer(layerIdx);
        if (m_scene.layerAtVisualIndex(m_scene.visualIndex(layerIdx)) != layerIdx)
            return QStringLiteral("the orders are no inverses of each other at layer %1").arg(layerIdx);
        if (m_scene.indexOfLayer(layer->identifier()) != layerIdx)
            return QStringLiteral("layer %1 has the identifier of another").arg(layerIdx);
        audioLayers += layer->layerType() == Layer::Audio;
        annotationLayers += layer->layerType() == Layer::Annotation;
        if (layer->layerType() == Layer::Audio && m_scene.audioLayerIdx() != layerIdx)
            return QStringLiteral("the scene does not know its audio layer");
    }
    if (audioLayers > 1 || annotationLayers > 1)
        return QStringLiteral("a second audio or annotation layer");
    if (audioLayers == 0 && m_scene.audioLayerIdx() != -1)
        return QStringLiteral("the scene knows an audio layer that is none");
    return {};
}

QString Checker::cells()
{
    for (int layerIdx = 0; layerIdx < m_scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = m_scene.visualLayer(layerIdx);
        if (!layer)
            continue;
        if (const QString broken = cellsOf(*layer, layerIdx); !broken.isEmpty())
            return broken;
    }
    std::sort(m_cells.begin(), m_cells.end());
    for (size_t i = 1; i < m_cells.size(); ++i) {
        if (!(m_cells[i - 1] < m_cells[i]))
            return QStringLiteral("two cells of one identifier") + at(m_cells[i].layerIdx, m_cells[i].frameId);
    }
    return {};
}

QString Checker::cellsOf(const VisualLayer &layer, int layerIdx)
{
    const auto &frames = layer.frames();
    if (frames.isEmpty())
        return QStringLiteral("layer %1 has no cells").arg(layerIdx);
    if (layer.frameSize() != m_scene.frameSize())
        return QStringLiteral("layer %1 has another frame size than the scene").arg(layerIdx);
    for (int frameId = 1; frameId <= frames.size(); ++frameId) {
        const QString broken = cell(layer, layerIdx, frameId);
        if (!broken.isEmpty())
            return broken + at(layerIdx, frameId);
        m_cells.push_back({layerIdx, frameId, frames.at(frameId - 1).get()});
    }
    return {};
}

QString Checker::cell(const VisualLayer &layer, int layerIdx, int frameId) const
{
    const LayerItem *cell = layer.frames().at(frameId - 1).get();
    if (!cell || !cell->drawing || cell->identifier.isNull())
        return QStringLiteral("no cell, or one without drawing or identifier");
    if (cell->isClone() && frameId == 1)
        return QStringLiteral("the first cell is a clone");
    if (cell->isClone() && cell->drawing != layer.frames().at(frameId - 2)->drawing)
        return QStringLiteral("a clone does not show the drawing of the cell before it");
    if (!cell->isOriginal() && !cell->clones.isEmpty())
        return QStringLiteral("a cell that is no original has clones");
    if (!cell->isDistantClone() && !cell->origin.isNull())
        return QStringLiteral("a cell that is no distant clone has an origin");
    if (cell->isClone())
        return {};
    const bool showsStrokes = cell->drawing->type() == Drawing::Type::Stroke;
    if (showsStrokes != Layer::isDrawType(m_scene.layer(layerIdx)->layerType()))
        return QStringLiteral("a drawing of the wrong kind");
    if (showsStrokes && static_cast<const StrokeDrawing &>(*cell->drawing).size() != m_scene.frameSize())
        return QStringLiteral("a drawing of another size than the frame's");
    return {};
}

// A list may be long, and is looked into for each of its entries.
bool Checker::lists(const LayerItem &original, const CellRef &ref) const
{
    constexpr qsizetype longList = 32;
    if (original.clones.size() < longList)
        return original.clones.contains(ref);
    const auto [list, isNew] = m_lists.try_emplace(&original);
    if (isNew)
        list->second.insert(original.clones.begin(), original.clones.end());
    return list->second.contains(ref);
}

const PlacedCell *Checker::find(const CellRef &ref) const
{
    if (ref.isNull())
        return nullptr;
    const int layerIdx = m_scene.indexOfLayer(ref.layer);
    const auto found = std::lower_bound(m_cells.begin(), m_cells.end(), ref, [&](const PlacedCell &placed, auto &) {
        return placed.layerIdx != layerIdx ? placed.layerIdx < layerIdx : placed.cell->identifier < ref.cell;
    });
    const bool isIt = found != m_cells.end() && found->layerIdx == layerIdx && found->cell->identifier == ref.cell;
    return isIt ? &*found : nullptr;
}

QString Checker::links() const
{
    std::vector<const Drawing *> supplied;
    for (const PlacedCell &placed : m_cells) {
        if (placed.cell->isOriginal())
            supplied.push_back(placed.cell->drawing.get());
        if (const QString broken = linksOf(placed); !broken.isEmpty())
            return broken + at(placed.layerIdx, placed.frameId);
    }
    // Clones and distant clones show what their originals do, so cells of two groups share a drawing only if two
    // originals do.
    std::sort(supplied.begin(), supplied.end());
    if (std::adjacent_find(supplied.begin(), supplied.end()) != supplied.end())
        return QStringLiteral("two originals share a drawing");
    return {};
}

QString Checker::linksOf(const PlacedCell &placed) const
{
    const LayerItem &cell = *placed.cell;
    CellRefSet listed;
    for (const CellRef &ref : cell.clones) {
        const PlacedCell *clone = find(ref);
        const bool isNew = listed.insert(ref).second;
        if (!clone && m_mayDangle && !ref.isNull() && isNew)
            continue;
        if (!clone)
            return QStringLiteral("an original lists a distant clone that is nowhere");
        if (!clone->cell->isDistantClone() || clone->cell->origin != refOf(placed))
            return QStringLiteral("an original lists a cell that does not point back");
        if (!isNew)
            return QStringLiteral("an original lists a distant clone twice");
    }
    if (!cell.isDistantClone())
        return {};
    const PlacedCell *origin = find(cell.origin);
    if (!origin && m_mayDangle && !cell.origin.isNull())
        return {};
    if (!origin || !origin->cell->isOriginal())
        return QStringLiteral("the origin of a distant clone is no original");
    if (!lists(*origin->cell, refOf(placed)))
        return QStringLiteral("a distant clone is not listed by its original");
    if (origin->cell->drawing != cell.drawing)
        return QStringLiteral("a distant clone does not show its original's drawing");
    if (m_scene.layer(origin->layerIdx)->layerType() != m_scene.layer(placed.layerIdx)->layerType())
        return QStringLiteral("a distant clone of an original in another kind of layer");
    return {};
}

QString Checker::positions() const
{
    int longest = 1;
    for (int layerIdx = 0; layerIdx < m_scene.layerCount(); ++layerIdx)
        longest = std::max(longest, m_scene.layer(layerIdx)->numFrames());
    const int first = m_scene.rangeFirst();
    const int last = m_scene.rangeLast();
    if (m_scene.maximumFrameNumber() != longest)
        return QStringLiteral("the maximum is not that of the longest layer");
    if (first < 1 || last > longest || first > last)
        return QStringLiteral("the range %1 to %2 lies outside of 1 to %3").arg(first).arg(last).arg(longest);
    if (first == last && longest != 1)
        return QStringLiteral("the range is one frame in a scene of %1").arg(longest);
    if (m_scene.scrubFrame() != -1 && (m_scene.scrubFrame() < 1 || m_scene.scrubFrame() > longest))
        return QStringLiteral("the scrub frame lies outside");
    if (m_scene.activeLayerIdx() == -1)
        return {};
    if (!m_scene.visualLayer(m_scene.activeLayerIdx()))
        return QStringLiteral("the active layer is no visual one");
    const int frame = m_scene.activeFrame();
    const int length = m_scene.lastFrame(m_scene.activeLayerIdx());
    const bool onCell = frame >= first && frame <= std::min(length, last);
    const bool afterLast = frame == length + 1 && frame >= first;
    if (!onCell && !afterLast)
        return QStringLiteral("the active frame %1 has no place in a layer of %2 within the range %3 to %4")
            .arg(frame)
            .arg(length)
            .arg(first)
            .arg(last);
    return {};
}

} // namespace

QString brokenInvariant(const Scene &scene, DanglingLinks dangling)
{
    Checker checker(scene, dangling);
    QString broken = checker.orders();
    if (broken.isEmpty())
        broken = checker.cells();
    if (broken.isEmpty())
        broken = checker.links();
    if (broken.isEmpty())
        broken = checker.positions();
    return broken;
}

} // namespace TestSupport
