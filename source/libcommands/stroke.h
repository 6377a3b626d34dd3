#pragma once

#include <QCoreApplication>
#include <QModelIndex>
#include <QUndoCommand>

#include <memory>

namespace Model {
class MRScene;
class Stroke;
} // namespace Model

namespace Commands {

/// Adds one stroke to the drawing of a cell, or to those of several cells.
///
/// The command owns the stroke and gives every drawing a copy. Undo takes the last stroke of each drawing off again,
/// which renders the area anew from the strokes that stay, and gives the drawing the copy identifier back that it had
/// in that state, so that what was copied from it is still known as a copy.
///
/// A null scene or stroke, or no usable cell, makes the command obsolete at once, and so does a stroke that no drawing
/// would take (an eraser on an empty drawing), so that no undo step appears and what could be redone stays. As a part
/// of another command, whose earlier parts may make the drawing, it turns obsolete at the first redo instead.
class Stroke : public QUndoCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::Stroke)

public:
    /// The stroke that the user has just drawn, for \a cell, an index of the scene's Model::SceneModel. The text says
    /// whether it draws or erases.
    Stroke(Model::MRScene *scene, const QModelIndex &cell, std::unique_ptr<Model::Stroke> stroke);

    /// A stroke made by another operation, for one \a cell, as a part of \a parent (may be null).
    Stroke(Model::MRScene *scene, const QModelIndex &cell, std::unique_ptr<Model::Stroke> stroke, QUndoCommand *parent);

    /// A stroke for each drawing that \a cells show, as a part of \a parent (may be null).
    ///
    /// Cells that hold one drawing between them take the stroke once, in the original. Holds are left out while
    /// the setting "clones locked for drawing" is on, and so are cells behind the end of their layer. A group of
    /// strokes, as a stamp is one, is drawn once for all of them.
    Stroke(Model::MRScene *scene, const QModelIndexList &cells, std::unique_ptr<Model::Stroke> stroke,
           QUndoCommand *parent);

    ~Stroke() override;

    /// Adds the stroke to every cell that holds a drawing.
    void redo() override;
    /// Takes the stroke off every drawing that took it.
    void undo() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Commands
