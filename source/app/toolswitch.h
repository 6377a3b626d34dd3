#pragma once

#include "app/stylusend.h"

#include <QObject>

#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

/// Connects the catalogue's tool actions with the tool manager, both ways: an action that is triggered sets the tool,
/// and a tool that is set checks its action.
///
/// Tools that work on the paper (pen, eraser, lasso, cutter, floating selection) are chosen, and stay. Tools that only
/// move something (hand, zoom, rotate, all three in one, off pegs, scrubbing) are borrowed, and given back:
///
///     chosen tool  <-  borrowed by an action  <-  held by a key  <-  held by another key, which lies in the hand
///
/// The middle mouse button holds the hand tool as a key does, but through its action.
///
/// A tool that is given back uncovers what was borrowed before it and still is, or else the chosen tool. Those in the
/// middle can go first. Only one is borrowed by an action at a time; choosing a tool gives all of them back.
///
/// The floating selection's tool is not simply laid down for another chosen one: what becomes of the selection is
/// somebody else's to say, who may keep the tool from changing.
///
/// Emits aboutToChangeTool() ahead of every change it makes, so that a stroke in progress is committed under the tool
/// that drew it.
class ToolSwitch : public QObject
{
    Q_OBJECT

public:
    explicit ToolSwitch(QObject *parent);

    /// As by its action: chooses or borrows the tool of \a type, or with \a on false gives it back. What is not in the
    /// hand or under it can't be given back, which does nothing. Where the chosen tool is pen or eraser, the stylus's
    /// end has the last word on the way back, if it was turned round meanwhile.
    void setTool(Model::Tool::Type type, bool on);

    /// Borrows the tool of \a type for as long as a key is held. Only for tools that are borrowed.
    void holdTool(Model::Tool::Type type);
    /// The end of holdTool(); nothing if another choice has ended it already.
    void releaseTool(Model::Tool::Type type);

    /// The middle button pans from now on, or not any more. While it does, the action Pan holds the hand tool for it;
    /// the end releases that tool even if the action could not be triggered.
    void setPanHeld(bool held);

    /// The end \a pointerType of the stylus came near the tablet: the pen draws, the eraser erases.
    void setTabletPointerType(QPointingDevice::PointerType pointerType);

    /// Gives back whatever is borrowed, and ends the adjusting of a pen.
    void giveBackAll();

    /// The tool to go on drawing with: the one that the stylus's end asks for, if it was turned round meanwhile, or the
    /// latest one.
    [[nodiscard]] Model::Tool::Type toolToDrawWith() const;

    /// Has \a leave called ahead of another tool's being chosen over the floating selection's, with that tool. It may
    /// change the tool itself; if it returns false, the tool stays as it left it, borrowed ones included.
    void setLeavingFloatingSelection(std::function<bool(Model::Tool::Type)> leave) { m_leave = std::move(leave); }

signals:
    void aboutToChangeTool();

private:
    enum class By { Action, Key, Button };

    struct Borrowed
    {
        Model::Tool::Type type;
        By by;
    };

    void connectActions();
    void connectPresets();
    void choose(Model::Tool::Type type);
    bool setPen(Model::Tool::PenType penType);
    void setEraser(Model::Tool::EraserType eraserType);
    void toggleDrawErase();
    void pan(bool on);
    void borrow(Borrowed tool);
    void giveBack(Model::Tool::Type type, std::initializer_list<By> by);
    bool changeTo(Model::Tool::Type type);
    bool leaveFloatingSelection(Model::Tool::Type type);
    Model::Tool::Type toolUnderneath() const;
    Model::Tool::Type toolToComeBackTo(Model::Tool::Type left) const;
    void onCurrentToolChanged(Model::Tool::Type current, Model::Tool::Type previous);
    void updateChecks();

    std::function<bool(Model::Tool::Type)> m_leave;
    StylusEnd m_stylusEnd;
    Model::Tool::Type m_comeBackTo = Model::Tool::Type::None;
    /// Without the chosen tool; the last one lies in the hand.
    std::vector<Borrowed> m_borrowed;
    /// The tool is changed from here.
    bool m_isChanging = false;
    bool m_isPanHeld = false;
};
