#pragma once

#include "libmodel/layers/cellref.h"

#include <functional>
#include <memory>

namespace Model {

struct LayerItem;

/// The cell that a reference names, wherever it stands; null when it is gone.
using CellFinder = std::function<std::shared_ptr<LayerItem>(const CellRef &)>;

/// The links between an original and its distant clones, as they are taken apart and put together again.
///
///     original { clones: d1, d2, d3 }        d1 { origin }   d2 { origin }   d3 { origin }
///     promoteFirstClone(original)     ->     d1 { original, clones: d2, d3 }   d2 { origin: d1 }   d3 { origin: d1 }
///     demoteClones(original)          ->     as at first
///
/// What is taken apart and put together in reverse order is what it was, the order of the lists included.

/// Makes the first distant clone of \a original that can be found an original itself, which the others then show.
/// The list of \a original stays as it is: it is what demoteClones() goes by. It keeps its drawing too.
void promoteFirstClone(const LayerItem &original, const CellFinder &find);

/// Takes the entry \a ref of the distant clone \a cell out of its original's list, all entries if there are several.
/// The cell keeps its origin, and in formerLink where the entry stood.
void unlinkDistantClone(LayerItem &cell, const CellRef &ref, const CellFinder &find);

/// Can the distant clone \a cell be one of \a original, which its origin names?
[[nodiscard]] bool canRelink(const LayerItem &cell, const LayerItem &original);

/// Puts the entry \a ref of the distant clone \a cell back where unlinkDistantClone() took it, at the end if it never
/// stood anywhere, and lets the cell show its original's drawing.
/// \return false, with nothing done, when there is no such original.
bool relinkDistantClone(LayerItem &cell, const CellRef &ref, const CellFinder &find);

/// Undoes promoteFirstClone() for \a original, which is named by \a ref: all cells of its list that can be found are
/// distant clones of it again and show its drawing.
void demoteClones(const LayerItem &original, const CellRef &ref, const CellFinder &find);

} // namespace Model
