#pragma once

#include "libcommands/recordedcommand.h"

#include <QCoreApplication>
#include <QModelIndex>
#include <QPointer>
#include <QWidget>

namespace Commands {

/// Makes the drawing of a cell a bitmap, so that what was drawn no longer costs anything.
///
/// A copy is collapsed, as far as a floating selection of it would reach, and takes the drawing's place. So undo brings
/// back the very drawing that was there, and redo the same bitmap.
class CollapseVectorData : public RecordedCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::CollapseVectorData)

public:
    /// For \a cell, an index of the scene's Model::SceneModel: the original of the drawing that it shows. Obsolete
    /// where canCollapse() says no. The first redo shows its progress in a dialog over \a widget (may be null: none is
    /// shown); if that is cancelled the command becomes obsolete, and so it does if earlier parts of \a parent have
    /// left nothing in the drawing.
    CollapseVectorData(Model::MRScene *scene, const QModelIndex &cell, QWidget *widget, QUndoCommand *parent = nullptr);

    /// Is \a cell one of a stroke drawing, not an empty one, that is shown nowhere else but for its own holds?
    [[nodiscard]] static bool canCollapse(const Model::MRScene &scene, const QModelIndex &cell);

protected:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

private:
    QModelIndex m_cell;
    QPointer<QWidget> m_widget;
};

} // namespace Commands
