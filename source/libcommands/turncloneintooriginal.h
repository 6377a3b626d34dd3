#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Gives each clone and distant clone a drawing of its own, a copy of what it shows. Done again it brings the same
/// drawings back.
class TurnCloneIntoOriginal : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::TurnCloneIntoOriginal)

public:
    /// For the holds and distant clones of visual layers in \a selection.
    TurnCloneIntoOriginal(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    TurnCloneIntoOriginal(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
