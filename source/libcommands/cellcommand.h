#pragma once

#include "libcommands/recordedcommand.h"

#include <QModelIndex>

#include <functional>

namespace Model {
class VisualLayer;
} // namespace Model

namespace Commands {

/// An edit of selected cells of the exposure sheet.
class CellCommand : public RecordedCommand
{
protected:
    /// Does a command take the position \a frameId of \a layer? There need not be a cell.
    using Filter = std::function<bool(const Model::VisualLayer &layer, int frameId)>;

    /// For those of \a cells, indexes of the scene's Model::SceneModel or Model::FrameRangeModel, that stand in visual
    /// layers and that \a accepts. Without any the command is obsolete.
    CellCommand(Model::MRScene *scene, const QModelIndexList &cells, const Filter &accepts, QUndoCommand *parent);

    /// The cells, as indexes of the scene's Model::SceneModel, sorted by row, then by column, each once.
    [[nodiscard]] const QModelIndexList &indexes() const { return m_indexes; }
    [[nodiscard]] int count() const { return int(m_indexes.size()); }
    /// Rows of the first and the last index.
    [[nodiscard]] int firstRow() const { return m_indexes.constFirst().row(); }
    [[nodiscard]] int lastRow() const { return m_indexes.constLast().row(); }
    /// Moves to \a frameId of the layer that was active when the command was made, onto a cell.
    void moveTo(Model::Scene &scene, int frameId) const;

    /// The layer has a cell there.
    static bool hasCell(const Model::VisualLayer &layer, int frameId);
    /// The layer has a cell there, or ends just before.
    static bool hasCellOrEndsBefore(const Model::VisualLayer &layer, int frameId);
    /// The cell there is a hold.
    static bool isLocalClone(const Model::VisualLayer &layer, int frameId);
    /// The cell there shows the drawing of another cell.
    static bool isAnyClone(const Model::VisualLayer &layer, int frameId);
    /// The cell there is no hold, and one stands before it.
    static bool canBecomeHold(const Model::VisualLayer &layer, int frameId);

private:
    QModelIndexList m_indexes;
};

} // namespace Commands
