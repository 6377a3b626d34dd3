#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Adds holds behind each cell, in linked layers too, and goes to the last one behind the active cell.
class AddCloneDrawings : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::AddCloneDrawings)

public:
    /// \a count (at least 1) holds for each of the cells of visual layers in \a selection.
    AddCloneDrawings(Model::MRScene *scene, const QModelIndexList &selection, int count,
                     QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    AddCloneDrawings(Model::MRScene *scene, const QModelIndex &cell, int count, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    int m_count;
};

} // namespace Commands
