#pragma once

#include "libcommands/recordedcommand.h"

#include <QCoreApplication>
#include <QModelIndex>
#include <QPainterPath>

namespace Commands {

/// Takes away what lies inside a path from the drawing of a cell, under the wait cursor.
///
/// The drawing is replaced by one with the cut and comes back as it was, each with the copy identifier that it was last
/// seen with, so that what was copied from either is still known as a copy.
class CutPath : public RecordedCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::CutPath)

public:
    /// \a path in paper coordinates, for \a cell, an index of the scene's Model::SceneModel. Obsolete for an invalid
    /// one, and from the first redo on if nothing lies inside.
    CutPath(Model::MRScene *scene, const QModelIndex &cell, const QPainterPath &path, QUndoCommand *parent = nullptr);

protected:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

private:
    QModelIndex m_cell;
    QPainterPath m_path;
};

} // namespace Commands
