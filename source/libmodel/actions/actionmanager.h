#pragma once

#include "libmodel/actions/actionrecord.h"
#include "libmodel/base/mr.h"

#include <QList>
#include <QObject>

#include <map>

class QAction;

namespace Model {

struct ActionRow;

/// The catalogue of all a user can ask for: each action once, shared by menus, bars and dials.
///
/// What the actions are stands in one table (actiontable.h). Each carries the key of its MR::Action in the property
/// "MRActionName". Actions that stand for a setting follow it and write it back, and some step a setting on; all others
/// only tell that they were triggered. One per process, GUI thread only; destroyed together with the application
/// object.
class ActionManager : public QObject
{
    Q_OBJECT

public:
    /// The catalogue of this process, empty until createActions().
    static ActionManager *instance();

    ~ActionManager() override;

    /// Makes the actions of the table, their exclusive groups and their ties to the settings. Called once.
    void createActions();

    /// Enters the undo and redo actions, which the undo stack makes, with the icons and keys of the table, as
    /// insertAction() does.
    void insertUndoActions(QAction *undo, QAction *redo);

    /// Enters an action made elsewhere, which becomes a child of the catalogue. One that stands under \a id already is
    /// replaced, which is reported, and lives on. An \a id without a name is reported and \a action left alone.
    void insertAction(MR::Action id, QAction *action);

    /// The action of that name; null if there is none, which is reported unless \a action is MR::Action::NoAction.
    [[nodiscard]] const ActionRecord *mrAction(MR::Action action) const;

    /// The action itself of mrAction(); null likewise.
    [[nodiscard]] QAction *action(MR::Action action) const;

    /// All actions there are, in the order of their names' values.
    [[nodiscard]] QList<QAction *> actions() const;

    /// Shows face 0 or 1 of an action, see ActionRecord::showFace().
    void setActionFace(MR::Action action, int face, int n);

    /// Enables or disables an action for whoever knows its precondition; one that is not there is reported, as by
    /// mrAction(). While it is disabled for a \a reason, its tool tip tells that in a line of its own. Between
    /// disableAllActions() and restoreAllActions() it is enabled at the latter.
    void setAvailable(MR::Action action, bool available, const QString &reason = {});

    /// Disables every action that is visible and remembers which were enabled. Must be followed by restoreAllActions()
    /// before it is called again.
    void disableAllActions();
    /// Puts back what disableAllActions() has disabled. Actions entered since, and all of them if nothing was disabled,
    /// stay as they are.
    void restoreAllActions();

signals:
    /// An action that stands for a setting, or the one that shows the grid, was toggled, and nothing has come of it
    /// yet: for whoever has something to finish under the old one. QAction::triggered comes too late for that.
    void aboutToChangeSetting();

private:
    ActionManager();

    QAction *createAction(const ActionRow &row);

    std::map<MR::Action, ActionRecord> m_records;
};

} // namespace Model
