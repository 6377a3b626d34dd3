#pragma once

#include "libcommands/recordedcommand.h"

#include <QModelIndex>

#include <functional>

namespace Commands {

/// An edit of selected cells of the exposure sheet.
class CellCommand : public RecordedCommand
{
protected:
    /// Does a command take the cell? \a index is one of the scene's Model::SceneModel, in a visual layer.
    using Filter = std::function<bool(const QModelIndex &index)>;

    /// For those of \a cells, indexes of the scene's Model::SceneModel or Model::FrameRangeModel, that stand in visual
    /// layers and that \a accepts (empty: all). Without any the command is obsolete.
    CellCommand(Model::MRScene *scene, const QModelIndexList &cells, const Filter &accepts, QUndoCommand *parent);

    /// The cells, as indexes of the scene's Model::SceneModel, sorted by row, then by column, each once.
    [[nodiscard]] const QModelIndexList &indexes() const { return m_indexes; }
    [[nodiscard]] int count() const { return int(m_indexes.size()); }
    /// Rows of the first and the last index.
    [[nodiscard]] int firstRow() const { return m_indexes.constFirst().row(); }
    [[nodiscard]] int lastRow() const { return m_indexes.constLast().row(); }
    /// Moves to \a frameId of the layer that was active when the command was made, onto a cell.
    void moveTo(Model::Scene &scene, int frameId) const;

    /// The filters of commands that need more than a visual layer.
    static bool hasCell(const QModelIndex &index);
    static bool isBehindFirst(const QModelIndex &index);
    static bool isLocalClone(const QModelIndex &index);

private:
    QModelIndexList m_indexes;
};

} // namespace Commands
