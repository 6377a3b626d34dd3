#pragma once

#include <QUuid>

namespace Model {

/// Names one cell of the scene, wherever timing edits may move it: by identifiers, never by frame or index.
struct CellRef
{
    QUuid layer; ///< identifier of the layer
    QUuid cell;  ///< identifier of the cell

    /// True when either half names nothing.
    [[nodiscard]] bool isNull() const { return layer.isNull() || cell.isNull(); }

    friend bool operator==(const CellRef &, const CellRef &) = default;
};

} // namespace Model
