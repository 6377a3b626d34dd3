#pragma once

#include "libcommands/recordedcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Deletes frames from the active one downwards, in linked layers too, as a drag in the exposure sheet that shortens
/// a hold.
class DiscardCloneDrawings : public RecordedCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::DiscardCloneDrawings)

public:
    /// \a count (at least 1) frames. Obsolete behind the last cell.
    DiscardCloneDrawings(Model::MRScene *scene, int count, QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    int m_count;
};

} // namespace Commands
