#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Makes each cell a hold of what stands before it. The first of the distant clones of an original that goes keeps its
/// drawing, as the original.
class LoseDrawingMakingHold : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::LoseDrawingMakingHold)

public:
    /// For the originals and distant clones of visual layers in \a selection behind frame 1.
    LoseDrawingMakingHold(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    LoseDrawingMakingHold(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
