#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Gives each cell a blank drawing of its own. Distant clones of what it was keep the old drawing. A clear done again
/// brings the same blanks back, so that what was copied from one of them is still known as a copy.
class ClearDrawingMakingBlank : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::ClearDrawingMakingBlank)

public:
    /// For the cells of visual layers in \a selection.
    ClearDrawingMakingBlank(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    ClearDrawingMakingBlank(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
