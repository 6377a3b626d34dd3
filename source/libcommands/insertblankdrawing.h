#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Inserts a blank drawing in front of each cell, and goes to the one in front of the active cell. In linked layers
/// the others get holds.
class InsertBlankDrawing : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::InsertBlankDrawing)

public:
    /// For the cells of visual layers in \a selection, and the positions just behind their ends.
    InsertBlankDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    InsertBlankDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
