#pragma once

#include "libmodel/layers/celllinks.h"

#include <unordered_map>
#include <vector>

namespace Model {

/// unlinkDistantClone() and relinkDistantClone() for many cells one after the other.
///
/// What comes out is the same, but a list of clones is changed once, when all entries that go or come are known: the
/// time grows with the number of entries, not with its square. One batch does one of the two.
class LinkBatch
{
public:
    /// Originals are found by \a find, which is called while the batch lives.
    explicit LinkBatch(CellFinder find);

    /// Notes that the entry \a ref of \a cell is to be taken out of its original's list.
    void unlink(LayerItem &cell, const CellRef &ref);
    /// Takes all noted entries out, in the order in which they were noted.
    void finishUnlinking();

    /// Lets \a cell show its original's drawing, and notes that its entry \a ref is to be put back.
    /// \return false, with nothing done or noted, when there is no such original.
    bool relink(LayerItem &cell, const CellRef &ref);
    /// Puts all noted entries back, in the order in which they were noted.
    void finishRelinking();

private:
    struct Entry
    {
        LayerItem *cell;
        CellRef ref;
        qsizetype place; ///< where it goes; -1 for the end
    };

    static void takeOut(LayerItem &original, const std::vector<Entry> &entries);
    static void putBack(LayerItem &original, const std::vector<Entry> &entries);

    CellFinder m_find;
    std::unordered_map<std::shared_ptr<LayerItem>, std::vector<Entry>> m_entries; ///< by original
};

} // namespace Model
