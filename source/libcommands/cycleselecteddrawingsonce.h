#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Repeats the cells of each layer behind the last of them: drawings as distant clones, holds as holds.
///
/// A frame of several linked layers is added once, for all of them.
class CycleSelectedDrawingsOnce : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::CycleSelectedDrawingsOnce)

public:
    /// For the cells of visual layers in \a selection.
    CycleSelectedDrawingsOnce(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;
};

} // namespace Commands
