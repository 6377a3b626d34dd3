#pragma once

#include "app/scenefollower.h"
#include "app/webpages.h"

#include <QPainterPath>

class QWidget;
class StampActions;
class ToolSwitch;

namespace Model {
class FloatingSelection;
}

/// Picks up what a lasso encircles, or all of a drawing, into a floating selection: one undo step each, with the tool
/// for it. A copy goes to the system's clipboard as a picture. What was cut out before and not stamped since is stamped
/// in the same step.
///
/// A drawing that takes long to pick up from has grown heavy, and is made a bitmap in the same step if the user wants
/// that, or has said once and for all that he does. So it can be by hand.
class PickUp : public SceneFollower
{
    Q_OBJECT

public:
    /// How long picking up may take before the drawing counts as heavy, milliseconds.
    static constexpr int heavyMs = 500;

    /// \a toolSwitch and \a stamps are not owned; they and \a busy, the window's mark (see BusyScope), must outlive
    /// this. \a window is the parent of dialogs.
    PickUp(ToolSwitch *toolSwitch, StampActions *stamps, bool &busy, QWidget *window);

    /// A line was drawn around something: \a path is closed, in paper coordinates. With \a cut what lies inside leaves
    /// the drawing. Nothing for one that encloses nothing, and where nothing is drawn inside.
    void onLassoingCompleted(const QPainterPath &path, bool cut);
    /// Picks up all of the active cell's drawing, which is blank then.
    void pickUpAll();
    /// Makes the active cell's drawing a bitmap.
    void collapse();

    /// Has drawings count as heavy beyond \a milliseconds, heavyMs at first; below 0 all of them do.
    void setHeavyLimit(int milliseconds) { m_heavyLimitMs = milliseconds; }

signals:
    /// A step is about to change a cell that may not be the one on show.
    void aboutToEdit();

private:
    void pickUp(const QPainterPath &path, bool cut);
    void takeUp(const QPainterPath &path, bool cut);
    bool decideToCollapse();
    void push(const Model::FloatingSelection &selection, const QPainterPath &path, bool cut);
    [[nodiscard]] QModelIndex activeCell() const;

    ToolSwitch *m_toolSwitch;
    StampActions *m_stamps;
    bool &m_busy;
    QWidget *m_window;
    WebPages m_pages;
    int m_heavyLimitMs = heavyMs;
};
