#pragma once

#include "libcommands/recordedcommand.h"

#include <QCoreApplication>
#include <QModelIndex>
#include <QPointer>
#include <QWidget>

namespace Commands {

/// Makes the drawing of a cell a bitmap, so that what was drawn no longer costs anything.
///
/// A copy is collapsed and takes the drawing's place. So undo brings back the very drawing that was there, and redo the
/// same bitmap. Ink outside of the frame comes along, unless it is so far away that the bitmap would take more than
/// mostPixels: then as much as a floating selection would reach.
class CollapseVectorData : public RecordedCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::CollapseVectorData)

public:
    static constexpr qint64 mostPixels = 64'000'000;

    /// For \a cell, an index of the scene's Model::SceneModel: the original of the drawing that it shows. Obsolete
    /// where canCollapse() says no; as a part of \a parent, whose earlier parts may change that, from the first redo
    /// on. The first redo shows its progress in a dialog over \a widget (may be null: none is shown); if that is
    /// cancelled the command becomes obsolete.
    CollapseVectorData(Model::MRScene *scene, const QModelIndex &cell, QWidget *widget, QUndoCommand *parent = nullptr);

    /// Is \a cell one of a stroke drawing, not an empty one nor one that was collapsed and not changed since, that is
    /// shown nowhere else but for its own holds?
    [[nodiscard]] static bool canCollapse(const Model::MRScene &scene, const QModelIndex &cell);

protected:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

private:
    QModelIndex m_cell;
    QPointer<QWidget> m_widget;
};

} // namespace Commands
