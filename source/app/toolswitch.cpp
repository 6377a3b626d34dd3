#include "app/toolswitch.h"

#include "app/catalogueaction.h"
#include "libmodel/tools/pentool.h"
#include "libmodel/tools/toolmanager.h"

#include <QScopedValueRollback>

#include <algorithm>

using Model::Tool;
using Model::ToolManager;

namespace {

struct ToolAction
{
    MR::Action action;
    Tool::Type tool;
};

struct PenAction
{
    MR::Action action;
    Tool::PenType pen;
};

struct EraserAction
{
    MR::Action action;
    Tool::EraserType eraser;
};

struct PresetAction
{
    MR::Action action;
    Tool::PenType pen;
    MR::ToolPreset preset;
};

/// Checked while the tool is current, and turned on and off by being triggered.
constexpr ToolAction toolActions[] = {
    {MR::Action::Pan, Tool::Type::Hand},      {MR::Action::Zoom, Tool::Type::Zoom},
    {MR::Action::Rotate, Tool::Type::Rotate}, {MR::Action::OffPegs, Tool::Type::OffPegs},
    {MR::Action::Lasso, Tool::Type::Lasso},   {MR::Action::Cutter, Tool::Type::Cutter},
};

constexpr PenAction penActions[] = {
    {MR::Action::Pencil, Tool::PenType::Pencil},
    {MR::Action::Marker, Tool::PenType::Marker},
    {MR::Action::Brush, Tool::PenType::Brush},
};

constexpr EraserAction eraserActions[] = {
    {MR::Action::KneadedEraser, Tool::EraserType::KneadedEraser},
    {MR::Action::RubberEraser, Tool::EraserType::RubberEraser},
    {MR::Action::VinylEraser, Tool::EraserType::VinylEraser},
};

constexpr PresetAction presetActions[] = {
    {MR::Action::PencilPreset1, Tool::PenType::Pencil, MR::ToolPreset::Preset1},
    {MR::Action::PencilPreset2, Tool::PenType::Pencil, MR::ToolPreset::Preset2},
    {MR::Action::PencilPreset3, Tool::PenType::Pencil, MR::ToolPreset::Preset3},
    {MR::Action::MarkerPreset1, Tool::PenType::Marker, MR::ToolPreset::Preset1},
    {MR::Action::MarkerPreset2, Tool::PenType::Marker, MR::ToolPreset::Preset2},
    {MR::Action::MarkerPreset3, Tool::PenType::Marker, MR::ToolPreset::Preset3},
    {MR::Action::BrushPreset1, Tool::PenType::Brush, MR::ToolPreset::Preset1},
    {MR::Action::BrushPreset2, Tool::PenType::Brush, MR::ToolPreset::Preset2},
    {MR::Action::BrushPreset3, Tool::PenType::Brush, MR::ToolPreset::Preset3},
};

bool isBorrowed(Tool::Type type)
{
    switch (type) {
    case Tool::Type::Hand:
    case Tool::Type::Zoom:
    case Tool::Type::Rotate:
    case Tool::Type::ZPR:
    case Tool::Type::OffPegs:
    case Tool::Type::Scrubbing:
        return true;
    default:
        return false;
    }
}

void setChecked(MR::Action which, bool checked)
{
    if (QAction *action = catalogueAction(which))
        action->setChecked(checked);
}

} // namespace

ToolSwitch::ToolSwitch(QObject *parent) : QObject(parent)
{
    connectActions();
    connectPresets();
    ToolManager *tools = ToolManager::instance();
    connect(tools, &ToolManager::currentToolTypeChanged, this, &ToolSwitch::onCurrentToolChanged);
    connect(tools, &ToolManager::currentPenToolTypeChanged, this, &ToolSwitch::updateChecks);
    updateChecks();
}

void ToolSwitch::connectActions()
{
    const auto onTrigger = [this](MR::Action which, auto work) {
        if (const QAction *action = catalogueAction(which))
            connect(action, &QAction::triggered, this, work);
    };
    onTrigger(MR::Action::Draw, [this] { setTool(Tool::Type::Pen, true); });
    onTrigger(MR::Action::Erase, [this] { setTool(Tool::Type::Eraser, true); });
    onTrigger(MR::Action::DrawEraseToggle, [this] { toggleDrawErase(); });
    onTrigger(MR::Action::Pan, [this](bool on) { pan(on); });
    for (const ToolAction &entry : toolActions) {
        if (entry.action != MR::Action::Pan)
            onTrigger(entry.action, [this, tool = entry.tool](bool on) { setTool(tool, on); });
    }
    // It has no check to tell whether it is on.
    onTrigger(MR::Action::ZPR,
              [this] { setTool(Tool::Type::ZPR, ToolManager::instance()->currentToolType() != Tool::Type::ZPR); });
    for (const PenAction &entry : penActions)
        onTrigger(entry.action, [this, pen = entry.pen] { setPen(pen); });
    for (const EraserAction &entry : eraserActions)
        onTrigger(entry.action, [this, eraser = entry.eraser] { setEraser(eraser); });
    ToolManager *tools = ToolManager::instance();
    onTrigger(MR::Action::ResetDrawingUserSettings, [tools] { tools->resetDrawingToolSettings(); });
    onTrigger(MR::Action::ResetErasingUserSettings, [tools] { tools->resetErasingToolSettings(); });
    onTrigger(MR::Action::DecreasePenSize, [tools] { tools->decreaseDrawingToolSizeRange(); });
    onTrigger(MR::Action::IncreasePenSize, [tools] { tools->increaseDrawingToolSizeRange(); });
}

void ToolSwitch::connectPresets()
{
    for (const PresetAction &entry : presetActions) {
        const QAction *action = catalogueAction(entry.action);
        if (!action)
            continue;
        connect(action, &QAction::triggered, this, [this, entry] {
            if (!setPen(entry.pen))
                return;
            Model::PenTool *pen = ToolManager::instance()->pen(entry.pen);
            ToolManager::loadPreset(pen, entry.preset);
            ToolManager::savePreset(pen, MR::ToolPreset::Default);
        });
    }
}

void ToolSwitch::setTool(Tool::Type type, bool on)
{
    if (isBorrowed(type)) {
        if (on)
            borrow({type, By::Action});
        else
            giveBack(type, {By::Action, By::Key, By::Button});
        return;
    }
    if (on)
        choose(type);
    else if (ToolManager::instance()->currentToolType() == type)
        changeTo(toolToComeBackTo(type));
    updateChecks();
}

void ToolSwitch::choose(Tool::Type type)
{
    if (!changeTo(type))
        return;
    m_borrowed.clear();
    // Who picks up lasso or cutter has left the end that the stylus showed before behind.
    if (ToolManager::isLassoOrCutterType(type))
        m_comeBackTo = Tool::Type::None;
}

void ToolSwitch::holdTool(Tool::Type type)
{
    Q_ASSERT(isBorrowed(type));
    borrow({type, By::Key});
}

void ToolSwitch::releaseTool(Tool::Type type)
{
    giveBack(type, {By::Key});
}

void ToolSwitch::setPanHeld(bool held)
{
    m_isPanHeld = held;
    if (!held)
        giveBack(Tool::Type::Hand, {By::Button});
}

/// Under the middle button the tools that are borrowed stay so, to be uncovered again.
void ToolSwitch::pan(bool on)
{
    const bool isButtons = !m_borrowed.empty() && m_borrowed.back().by == By::Button;
    if (m_isPanHeld && on)
        borrow({Tool::Type::Hand, By::Button});
    else if (isButtons)
        giveBack(Tool::Type::Hand, {By::Button});
    else
        setTool(Tool::Type::Hand, on);
}

void ToolSwitch::borrow(Borrowed tool)
{
    std::erase_if(m_borrowed, [&](const Borrowed &other) {
        return other.by == tool.by && (other.type == tool.type || tool.by == By::Action);
    });
    m_borrowed.push_back(tool);
    changeTo(tool.type);
    updateChecks();
}

void ToolSwitch::giveBack(Tool::Type type, std::initializer_list<By> by)
{
    const auto removed = std::erase_if(m_borrowed, [&](const Borrowed &other) {
        return other.type == type && std::ranges::find(by, other.by) != by.end();
    });
    if (removed > 0)
        changeTo(toolUnderneath());
    updateChecks();
}

/// Every change of the tool goes through here. \return false if the floating selection's would not be left.
bool ToolSwitch::changeTo(Tool::Type type)
{
    ToolManager *tools = ToolManager::instance();
    if (tools->currentToolType() == type && tools->currentToolMode() == 0)
        return true;
    emit aboutToChangeTool();
    if (!leaveFloatingSelection(type))
        return false;
    const QScopedValueRollback changing(m_isChanging, true);
    tools->setCurrentTool(type, 0);
    return true;
}

/// \return false if it must not be left for \a type; true as well where nothing has to be left. Whoever says so changes
/// the tool, if at all, as anybody else would: what is borrowed is given back then, and only then.
bool ToolSwitch::leaveFloatingSelection(Tool::Type type)
{
    const bool leaves = ToolManager::instance()->latestPaperToolType() == Tool::Type::FloatingSelection &&
                        type != Tool::Type::FloatingSelection && !isBorrowed(type);
    return !leaves || !m_leave || m_leave(type);
}

/// What lies in the hand when nothing else was done since: the tool borrowed last, or else the chosen one.
Tool::Type ToolSwitch::toolUnderneath() const
{
    return m_borrowed.empty() ? toolToComeBackTo(Tool::Type::None) : m_borrowed.back().type;
}

/// The tool that the paper had before \a left; where that drew or erased, the stylus's end has the last word.
Tool::Type ToolSwitch::toolToComeBackTo(Tool::Type left) const
{
    const ToolManager *tools = ToolManager::instance();
    Tool::Type back = tools->latestPaperToolType();
    if (back == left)
        back = tools->latestDrawingToolType();
    const bool draws = back == Tool::Type::None || back == Tool::Type::Pen || back == Tool::Type::Eraser;
    if (draws && m_comeBackTo != Tool::Type::None)
        return m_comeBackTo;
    return back == Tool::Type::None ? Tool::Type::Pen : back;
}

void ToolSwitch::giveBackAll()
{
    // What adjusts the pen is as little a choice as what is borrowed.
    if (m_borrowed.empty() && ToolManager::instance()->currentToolType() != Tool::Type::PenAdjustment)
        return;
    m_borrowed.clear();
    changeTo(toolUnderneath());
    updateChecks();
}

Tool::Type ToolSwitch::toolToDrawWith() const
{
    if (m_comeBackTo != Tool::Type::None)
        return m_comeBackTo;
    const Tool::Type latest = ToolManager::instance()->latestDrawingToolType();
    return latest == Tool::Type::None ? Tool::Type::Pen : latest;
}

void ToolSwitch::setTabletPointerType(QPointingDevice::PointerType pointerType)
{
    const StylusEnd::Answer answer = m_stylusEnd.turnedTo(pointerType, ToolManager::instance()->currentToolType());
    if (answer.switchTo != Tool::Type::None)
        setTool(answer.switchTo, true);
    if (answer.comeBackTo != Tool::Type::None)
        m_comeBackTo = answer.comeBackTo;
}

/// \return false if the pen could not be taken up, and nothing was changed.
bool ToolSwitch::setPen(Tool::PenType penType)
{
    if (!leaveFloatingSelection(Tool::Type::Pen)) {
        updateChecks();
        return false;
    }
    if (ToolManager::instance()->currentToolType() == Tool::Type::Pen)
        emit aboutToChangeTool();
    ToolManager::instance()->setCurrentPenType(penType);
    setTool(Tool::Type::Pen, true);
    return true;
}

void ToolSwitch::setEraser(Tool::EraserType eraserType)
{
    if (!leaveFloatingSelection(Tool::Type::Eraser)) {
        updateChecks();
        return;
    }
    if (ToolManager::instance()->currentToolType() == Tool::Type::Eraser)
        emit aboutToChangeTool();
    ToolManager::instance()->setCurrentEraserType(eraserType);
    setTool(Tool::Type::Eraser, true);
}

void ToolSwitch::toggleDrawErase()
{
    const Tool::Type type = ToolManager::instance()->currentToolType();
    const bool drawing = (isBorrowed(type) ? toolToComeBackTo(Tool::Type::None) : type) == Tool::Type::Pen;
    setTool(drawing ? Tool::Type::Eraser : Tool::Type::Pen, true);
}

void ToolSwitch::onCurrentToolChanged(Tool::Type current, Tool::Type)
{
    // Somebody else has put another tool into the hand. What adjusts the pen puts the pen back by itself.
    if (!m_isChanging && current != Tool::Type::PenAdjustment) {
        m_borrowed.clear();
        if (isBorrowed(current))
            m_borrowed.push_back({current, By::Action});
    }
    // Having arrived there, there is nothing left to come back to.
    if (current == Tool::Type::Pen || current == Tool::Type::Eraser)
        m_comeBackTo = Tool::Type::None;
    updateChecks();
}

void ToolSwitch::updateChecks()
{
    const ToolManager *tools = ToolManager::instance();
    const Tool::Type type = tools->currentToolType();
    const bool draws = type == Tool::Type::Pen;
    const bool erases = type == Tool::Type::Eraser;
    setChecked(MR::Action::Draw, draws);
    setChecked(MR::Action::Erase, erases);
    // The hidden third member of the group takes the check when neither drawing nor erasing is on.
    setChecked(MR::Action::NonDrawingAction, !draws && !erases);
    for (const ToolAction &entry : toolActions)
        setChecked(entry.action, type == entry.tool);
    setChecked(MR::Action::FloatingSelection, type == Tool::Type::FloatingSelection);
    for (const PenAction &entry : penActions)
        setChecked(entry.action, tools->currentPenType() == entry.pen);
    for (const EraserAction &entry : eraserActions)
        setChecked(entry.action, tools->currentEraserType() == entry.eraser);
}
