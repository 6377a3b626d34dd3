#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Deletes the frames of holds, in linked layers too. A frame selected in several linked layers is deleted once.
class DeleteCloneDrawing : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::DeleteCloneDrawing)

public:
    /// For the holds in \a selection.
    DeleteCloneDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    DeleteCloneDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    int m_deletedBeforeLast = 0; ///< in the layer of the last index, that one included
};

} // namespace Commands
