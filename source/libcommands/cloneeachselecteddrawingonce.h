#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Adds one hold behind each cell, in linked layers too, where a frame selected in several of them counts once.
class CloneEachSelectedDrawingOnce : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::CloneEachSelectedDrawingOnce)

public:
    /// For the cells of visual layers in \a selection.
    CloneEachSelectedDrawingOnce(Model::MRScene *scene, const QModelIndexList &selection,
                                 QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
