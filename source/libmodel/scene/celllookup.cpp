#include "libmodel/scene/celllookup.h"

#include "libmodel/layers/visuallayer.h"

#include <algorithm>

namespace Model {

CellLookup::CellLookup(const QList<std::shared_ptr<Layer>> &layers) : m_layers(layers)
{
}

CellLookup::Found CellLookup::find(const CellRef &ref)
{
    constexpr int mostSearches = 8;
    if (ref.isNull())
        return {};
    if (m_searches < mostSearches) {
        ++m_searches;
        return search(ref);
    }
    if (m_places.empty())
        lookAtAll();
    const auto place = m_places.find(ref);
    return place == m_places.end() ? Found() : at(place->second.first, place->second.second);
}

CellLookup::Found CellLookup::search(const CellRef &ref) const
{
    const auto isNamed = [&ref](const auto &layer) { return layer->identifier() == ref.layer; };
    const auto layer = std::find_if(m_layers.begin(), m_layers.end(), isNamed);
    const auto *visual = layer == m_layers.end() ? nullptr : qobject_cast<const VisualLayer *>(layer->get());
    if (!visual)
        return {};
    const auto &frames = visual->frames();
    const auto cell =
        std::find_if(frames.begin(), frames.end(), [&ref](const auto &other) { return other->identifier == ref.cell; });
    return cell == frames.end() ? Found() : at(static_cast<int>(layer - m_layers.begin()), cell - frames.begin());
}

CellLookup::Found CellLookup::at(int layerIdx, qsizetype frame) const
{
    const auto &frames = static_cast<const VisualLayer *>(m_layers.at(layerIdx).get())->frames();
    return {frames.at(frame), layerIdx, static_cast<int>(frame) + 1};
}

// Of several with the same name the first counts, as in search().
void CellLookup::lookAtAll()
{
    IdentifierSet seen;
    for (int layerIdx = 0; layerIdx < m_layers.size(); ++layerIdx) {
        const Layer &layer = *m_layers.at(layerIdx);
        const auto *visual = qobject_cast<const VisualLayer *>(&layer);
        if (!seen.insert(layer.identifier()).second || !visual)
            continue;
        for (qsizetype frame = 0; frame < visual->frames().size(); ++frame)
            m_places.emplace(CellRef{layer.identifier(), visual->frames().at(frame)->identifier},
                             std::pair(layerIdx, frame));
    }
}

} // namespace Model
