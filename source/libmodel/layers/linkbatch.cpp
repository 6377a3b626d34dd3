#include "libmodel/layers/linkbatch.h"

#include "libmodel/layers/identifierhash.h"
#include "libmodel/layers/layeritem.h"

#include <algorithm>
#include <utility>

namespace Model {

namespace {

/// Numbered places, some of which are taken: a binary indexed tree over the free ones.
class Slots
{
public:
    explicit Slots(size_t count) : m_tree(count + 1), m_isTaken(count, false)
    {
        for (size_t node = 1; node <= count; ++node)
            m_tree[node] = lowestBit(node); // all free
    }

    /// How many places in front of \a slot are free.
    [[nodiscard]] size_t freeBefore(size_t slot) const
    {
        size_t count = 0;
        for (size_t node = slot; node > 0; node -= lowestBit(node))
            count += m_tree[node];
        return count;
    }
    /// The free slot with \a number free ones in front of it; there must be one.
    [[nodiscard]] size_t freeSlot(size_t number) const
    {
        size_t step = 1;
        while (step * 2 < m_tree.size())
            step *= 2;
        size_t node = 0;
        for (; step > 0; step /= 2) {
            if (node + step < m_tree.size() && m_tree[node + step] <= number) {
                node += step;
                number -= m_tree[node];
            }
        }
        return node;
    }
    void take(size_t slot)
    {
        m_isTaken[slot] = true;
        for (size_t node = slot + 1; node < m_tree.size(); node += lowestBit(node))
            --m_tree[node];
    }
    [[nodiscard]] bool isTaken(size_t slot) const { return m_isTaken[slot]; }

private:
    static size_t lowestBit(size_t node) { return node & (~node + 1); }

    std::vector<size_t> m_tree; ///< node n counts the free places from n - lowestBit(n) to n - 1
    std::vector<bool> m_isTaken;
};

} // namespace

LinkBatch::LinkBatch(CellFinder find) : m_find(std::move(find))
{
}

void LinkBatch::unlink(LayerItem &cell, const CellRef &ref)
{
    if (auto original = m_find(cell.origin))
        m_entries[std::move(original)].push_back({&cell, ref, -1});
}

void LinkBatch::finishUnlinking()
{
    for (const auto &[original, entries] : std::exchange(m_entries, {}))
        takeOut(*original, entries);
}

void LinkBatch::takeOut(LayerItem &original, const std::vector<Entry> &entries)
{
    CellRefMap<std::vector<size_t>> places;
    for (qsizetype i = 0; i < original.clones.size(); ++i)
        places[original.clones.at(i)].push_back(static_cast<size_t>(i));
    Slots room(static_cast<size_t>(original.clones.size()));
    for (const Entry &entry : entries) {
        const auto found = places.find(entry.ref);
        if (found == places.end())
            continue;
        entry.cell->formerLink = static_cast<qsizetype>(room.freeBefore(found->second.front()));
        for (const size_t place : found->second)
            room.take(place);
        places.erase(found);
    }
    QList<CellRef> kept;
    for (qsizetype i = 0; i < original.clones.size(); ++i) {
        if (!room.isTaken(static_cast<size_t>(i)))
            kept.append(original.clones.at(i));
    }
    original.clones = kept;
}

bool LinkBatch::relink(LayerItem &cell, const CellRef &ref)
{
    auto original = m_find(cell.origin);
    if (!original || !canRelink(cell, *original))
        return false;
    cell.drawing = original->drawing;
    m_entries[std::move(original)].push_back({&cell, ref, std::exchange(cell.formerLink, -1)});
    return true;
}

void LinkBatch::finishRelinking()
{
    for (const auto &[original, entries] : std::exchange(m_entries, {}))
        putBack(*original, entries);
}

// Seen from the end each entry still stands where it was put: among the places that those behind it have left free.
void LinkBatch::putBack(LayerItem &original, const std::vector<Entry> &entries)
{
    CellRefSet listed(original.clones.begin(), original.clones.end());
    const auto before = static_cast<size_t>(original.clones.size());
    std::vector<std::pair<size_t, CellRef>> coming; ///< the place at the time, and what goes there
    for (const Entry &entry : entries) {
        if (!listed.insert(entry.ref).second)
            continue;
        const size_t end = before + coming.size();
        coming.emplace_back(entry.place < 0 ? end : std::min(static_cast<size_t>(entry.place), end), entry.ref);
    }
    Slots room(before + coming.size());
    QList<CellRef> all(static_cast<qsizetype>(before + coming.size()));
    for (auto last = coming.crbegin(); last != coming.crend(); ++last) {
        const size_t slot = room.freeSlot(last->first);
        room.take(slot);
        all[static_cast<qsizetype>(slot)] = last->second;
    }
    auto next = original.clones.cbegin();
    for (qsizetype i = 0; i < all.size(); ++i) {
        if (!room.isTaken(static_cast<size_t>(i)))
            all[i] = *next++;
    }
    original.clones = all;
}

} // namespace Model
