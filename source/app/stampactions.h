#pragma once

#include "app/floatingstate.h"
#include "app/scenefollower.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/tools/tool.h"

#include <functional>
#include <memory>
#include <optional>

class QUndoCommand;
class QWidget;
class ToolSwitch;

/// What becomes of a floating selection: it is moved, stamped, dropped and got back, each as one undo step.
///
///     picked up  ->  floats  ->  stamped, dropped, or another tool is chosen  ->  out of sight
///                      ^                                                             |
///                      +------------ got back, or its tool chosen again -------------+
///
/// The scene keeps a selection that is out of sight, but for one that was dropped: that is kept here, as long as the
/// scene is open. One that was cut out and not stamped since has its strokes nowhere else: it is stamped where it lies
/// when another tool is chosen over it, and before the scene is saved or exported. Where that cannot be, neither can
/// those.
class StampActions : public SceneFollower
{
    Q_OBJECT

public:
    /// \a toolSwitch is not owned; it and \a busy, the window's mark (see BusyScope), must outlive this. \a window is
    /// the parent of dialogs.
    StampActions(ToolSwitch *toolSwitch, bool &busy, QWidget *window);

    /// How long a stamp is collapsed before that is worth a dialog, milliseconds.
    static constexpr int collapsingMs = 2000;

    /// Stamps it where it lies, on the selected cells if they are several. Then the drawing tool comes back, unless
    /// \a keepsFloating. Nothing where FloatingState::target() finds no place, and if the user cancels it.
    void stamp(bool keepsFloating);
    /// Takes it away without a stamp.
    void drop();
    /// Lets the one float that did so last.
    void getLatestBack();
    /// Puts it elsewhere.
    void moveTo(const Model::FloatingSelection::Transform &transform);

    /// The tool \a type is chosen over it. \return false if the user would not have it, and nothing was done. True with
    /// nothing done as well, where nothing floats: the tool is the caller's to change.
    bool leaveFor(Model::Tool::Type type);
    /// Stamps it where it would get lost otherwise, whether it floats or is out of sight. \return false if the user
    /// would not have that, and if there is no drawing to stamp it on, after a message.
    bool bringHome();
    /// The same, but it floats on, and \a edit is done behind it, with both one undo step by the name of \a text. With
    /// nothing to get lost it is \a edit alone. \return false, with nothing done, as above.
    bool bringHomeAhead(const QString &text, const std::function<void()> &edit);
    /// The scene is about to be left: in another one nothing floats.
    void leaveScene();

    /// Has the dialog of a stamp that is collapsed come after \a milliseconds, collapsingMs at first.
    void setProgressDelay(int milliseconds) { m_progressDelayMs = milliseconds; }

    /// Can getLatestBack() do anything but for what the scene itself keeps?
    [[nodiscard]] bool hasDropped() const { return !m_dropped->isNull(); }

signals:
    /// A step is about to change cells that may not be those on show.
    void aboutToEdit();
    void hasDroppedChanged(bool hasDropped);

protected:
    void actualize() override;

private:
    /// The tool to change to behind a stamp, none for the same as before.
    using NextTool = std::optional<Model::Tool::Type>;

    void choose(bool on);
    std::unique_ptr<Model::Stroke> makeStamp();
    bool stampOn(const FloatingState::Target &target, NextTool nextTool);
    bool isTakenOrMessage(const FloatingState::Target &target, const Model::Stroke &stamp);
    bool putDown(const FloatingState::Target &target, std::unique_ptr<Model::Stroke> stamp, NextTool nextTool);
    std::unique_ptr<QUndoCommand> stampStep(const FloatingState::Target &target, std::unique_ptr<Model::Stroke> stamp,
                                            NextTool nextTool);
    std::optional<FloatingState::Target> refugeOrMessage();
    [[nodiscard]] bool isAtRisk() const;
    [[nodiscard]] bool isFloating() const;
    void giveBackBorrowedTool();

    ToolSwitch *m_toolSwitch;
    bool &m_busy;
    QWidget *m_window;
    int m_progressDelayMs = collapsingMs;
    /// The one that was dropped last, which the steps of drops change.
    std::shared_ptr<Model::FloatingSelection> m_dropped = std::make_shared<Model::FloatingSelection>();
};
