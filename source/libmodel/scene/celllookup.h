#pragma once

#include "libmodel/layers/identifierhash.h"

#include <QList>

#include <memory>

namespace Model {

class Layer;
struct LayerItem;

/// Finds cells by their references during one operation.
///
/// The first few are searched for; then it is worth knowing where all stand. So an operation takes a time that grows
/// with the number of cells plus that of the references, however long the lists of clones are that a file brought.
/// Only good for as long as no cell is moved, added or removed; the layers must outlive it.
class CellLookup
{
public:
    /// Where a cell was found.
    struct Found
    {
        std::shared_ptr<LayerItem> cell; ///< null when there is none of that name
        int layerIdx = -1;
        int frameId = -1;
    };

    explicit CellLookup(const QList<std::shared_ptr<Layer>> &layers);

    /// The cell that \a ref names.
    [[nodiscard]] Found find(const CellRef &ref);

private:
    [[nodiscard]] Found search(const CellRef &ref) const;
    [[nodiscard]] Found at(int layerIdx, qsizetype frame) const;
    void lookAtAll();

    const QList<std::shared_ptr<Layer>> &m_layers;
    int m_searches = 0;
    CellRefMap<std::pair<int, qsizetype>> m_places; ///< layer and cell, as indexes; filled when searches get many
};

} // namespace Model
