#pragma once

#include "libcommands/scenecommand.h"
#include "libcommands/sceneposition.h"
#include "libmodel/scene/scenechange.h"

#include <QList>

namespace Model {
class SceneModel;
} // namespace Model

namespace Commands {

/// An edit whose steps are recorded as it is done, and which goes back and forth by these records.
///
///     first redo   run(), then wantedFrame() of the active layer          -> changes
///     undo         undoChanges(changes), position of construction         -> changes of the way forth
///     later redo   undoChanges(changes), position after the first redo    -> changes of the way back
///
/// So cells and drawings that come back are the very ones that went, identifiers and all. A first redo that finds
/// nothing to do makes the command obsolete.
class RecordedCommand : public SceneCommand
{
public:
    void redo() override;
    void undo() override;

protected:
    RecordedCommand(Model::MRScene *scene, QUndoCommand *parent);

    /// Does the edit for the first time. \return what was done, the last step first.
    virtual QList<Model::SceneChange> run(Model::SceneModel &model) = 0;
    /// Sets the active position after run(), whose range is legal already.
    virtual void moveOn(Model::Scene &scene) = 0;
    /// Where the scene stood when the command was made.
    [[nodiscard]] const ScenePosition &before() const { return m_before; }
    /// The active frame then, counted from 0.
    [[nodiscard]] int activeRow() const { return m_before.activeFrame - 1; }

private:
    bool m_ran = false;
    ScenePosition m_before;
    ScenePosition m_after;
    QList<Model::SceneChange> m_changes;
};

} // namespace Commands
