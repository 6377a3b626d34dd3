#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Adds a blank drawing behind each cell, and goes to the one behind the active cell. In linked layers the others get
/// holds.
class AddBlankDrawing : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::AddBlankDrawing)

public:
    /// For the cells of visual layers in \a selection.
    AddBlankDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    AddBlankDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
