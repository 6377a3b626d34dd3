#include "app/toolswitch.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/tools/toolmanager.h"

#include <QAction>

using Model::Tool;
using Model::ToolManager;

namespace {

QAction *catalogueAction(MR::Action action)
{
    return Model::ActionManager::instance()->action(action);
}

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

} // namespace

ToolSwitch::ToolSwitch(QObject *parent) : QObject(parent)
{
    connectActions();
    ToolManager *tools = ToolManager::instance();
    connect(tools, &ToolManager::currentToolTypeChanged, this, &ToolSwitch::onCurrentToolChanged);
    connect(tools, &ToolManager::currentPenToolTypeChanged, this, &ToolSwitch::updateChecks);
    updateChecks();
}

void ToolSwitch::connectActions()
{
    connect(catalogueAction(MR::Action::Draw), &QAction::triggered, this, [this] { setTool(Tool::Type::Pen, true); });
    connect(catalogueAction(MR::Action::Erase), &QAction::triggered, this,
            [this] { setTool(Tool::Type::Eraser, true); });
    connect(catalogueAction(MR::Action::DrawEraseToggle), &QAction::triggered, this, &ToolSwitch::toggleDrawErase);
    connect(catalogueAction(MR::Action::Pan), &QAction::triggered, this,
            [this](bool on) { setTool(Tool::Type::Hand, on); });
    for (const PenAction &entry : penActions)
        connect(catalogueAction(entry.action), &QAction::triggered, this, [this, pen = entry.pen] { setPen(pen); });
    for (const EraserAction &entry : eraserActions) {
        connect(catalogueAction(entry.action), &QAction::triggered, this,
                [this, eraser = entry.eraser] { setEraser(eraser); });
    }
    ToolManager *tools = ToolManager::instance();
    connect(catalogueAction(MR::Action::ResetDrawingUserSettings), &QAction::triggered, tools,
            &ToolManager::resetDrawingToolSettings);
    connect(catalogueAction(MR::Action::ResetErasingUserSettings), &QAction::triggered, tools,
            &ToolManager::resetErasingToolSettings);
    connect(catalogueAction(MR::Action::DecreasePenSize), &QAction::triggered, tools,
            &ToolManager::decreaseDrawingToolSizeRange);
    connect(catalogueAction(MR::Action::IncreasePenSize), &QAction::triggered, tools,
            &ToolManager::increaseDrawingToolSizeRange);
}

void ToolSwitch::setTool(Tool::Type type, bool on)
{
    emit aboutToChangeTool();
    ToolManager *tools = ToolManager::instance();
    // Who picks up lasso or cutter has left the end that the stylus showed before behind.
    if (on && ToolManager::isLassoOrCutterType(type))
        m_comeBackTo = Tool::Type::None;
    tools->setCurrentTool(on ? type : toolToComeBackTo(type), 0);
}

// The tool that the paper had before the temporary one; where that drew or erased, the stylus's end has the last word.
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

void ToolSwitch::setTabletPointerType(QPointingDevice::PointerType pointerType)
{
    const StylusEnd::Answer answer = m_stylusEnd.turnedTo(pointerType, ToolManager::instance()->currentToolType());
    if (answer.switchTo != Tool::Type::None)
        setTool(answer.switchTo, true);
    if (answer.comeBackTo != Tool::Type::None)
        m_comeBackTo = answer.comeBackTo;
}

void ToolSwitch::setPen(Tool::PenType penType)
{
    emit aboutToChangeTool();
    ToolManager::instance()->setCurrentPenType(penType);
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
    updateChecks();
}

void ToolSwitch::setEraser(Tool::EraserType eraserType)
{
    emit aboutToChangeTool();
    ToolManager::instance()->setCurrentEraserType(eraserType);
    ToolManager::instance()->setCurrentTool(Tool::Type::Eraser, 0);
    updateChecks();
}

void ToolSwitch::toggleDrawErase()
{
    const bool drawing = ToolManager::instance()->currentToolType() == Tool::Type::Pen;
    setTool(drawing ? Tool::Type::Eraser : Tool::Type::Pen, true);
}

void ToolSwitch::onCurrentToolChanged(Tool::Type current, Tool::Type)
{
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
    catalogueAction(MR::Action::Draw)->setChecked(draws);
    catalogueAction(MR::Action::Erase)->setChecked(erases);
    // The hidden third member of the group takes the check when neither drawing nor erasing is on.
    catalogueAction(MR::Action::NonDrawingAction)->setChecked(!draws && !erases);
    catalogueAction(MR::Action::Pan)->setChecked(type == Tool::Type::Hand);
    for (const PenAction &entry : penActions)
        catalogueAction(entry.action)->setChecked(tools->currentPenType() == entry.pen);
    for (const EraserAction &entry : eraserActions)
        catalogueAction(entry.action)->setChecked(tools->currentEraserType() == entry.eraser);
}
