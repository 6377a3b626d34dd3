#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Deletes the frames of the cells, in linked layers too. A frame selected in several linked layers is deleted once.
///
/// Goes to the frame that the first one had, or to the last of the active layer where that is gone.
class DiscardDrawing : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::DiscardDrawing)

public:
    /// For the cells of visual layers in \a selection; positions behind the end of a layer are none.
    DiscardDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);
    /// For \a cell alone.
    DiscardDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
