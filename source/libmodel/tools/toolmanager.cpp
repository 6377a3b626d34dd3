#include "libmodel/tools/toolmanager.h"

#include "libmodel/base/settings.h"
#include "libmodel/base/settingsbatch.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/fixedcursortools.h"
#include "libmodel/tools/floatingselectiontool.h"
#include "libmodel/tools/offpegstool.h"
#include "libmodel/tools/penadjustmenttool.h"
#include "libmodel/tools/pentool.h"
#include "libmodel/tools/toolpresets.h"
#include "libmodel/tools/zprtool.h"

#include <QCoreApplication>

namespace Model {

namespace {

// Places in the list of drawing tools.
constexpr std::size_t firstEraser = 3;
constexpr std::size_t scribblePen = 6;
constexpr std::size_t scribbleEraser = 7;

ToolManager *manager = nullptr;

void dropManager()
{
    delete manager;
    manager = nullptr;
}

void storeSizeRange(const QString &toolName, double lowerPercent, double upperPercent)
{
    Settings::instance()->setToolSizeRange(toolName, MR::ToolPreset::Default, lowerPercent, upperPercent);
}

void storeOpacityRange(const QString &toolName, double lowerPercent, double upperPercent)
{
    Settings::instance()->setToolOpacityRange(toolName, MR::ToolPreset::Default, lowerPercent, upperPercent);
}

/// Gives \a preset the values the program comes with, in the store only.
void storeDefaults(const DrawingTool &tool, MR::ToolPreset preset)
{
    Settings::instance()->setToolRanges(tool.settingsName(), preset, presetRanges(tool, preset));
}

} // namespace

ToolManager *ToolManager::instance()
{
    if (!manager) {
        manager = new ToolManager;
        // The cursors must not outlive the application.
        qAddPostRoutine(dropManager);
    }
    return manager;
}

ToolManager::ToolManager()
{
    using Pen = Tool::PenType;
    using Eraser = Tool::EraserType;
    std::size_t place = 0;
    for (const Pen penType : {Pen::Pencil, Pen::Marker, Pen::Brush})
        m_drawingTools[place++] = std::make_unique<PenTool>(penType);
    for (const Eraser eraserType : {Eraser::KneadedEraser, Eraser::RubberEraser, Eraser::VinylEraser})
        m_drawingTools[place++] = std::make_unique<EraserTool>(eraserType);
    for (std::size_t i = 0; i < place; ++i)
        loadPreset(m_drawingTools[i].get(), MR::ToolPreset::Default);
    m_currentPen = pen(Pen::Pencil);
    m_currentEraser = eraser(Eraser::RubberEraser);
    makeScribbleTools();
    makeOtherTools();

    const Settings *settings = Settings::instance();
    connect(settings, &Settings::drawCursorTypeChanged, this, &ToolManager::updateCursor);
    connect(settings, &Settings::drawCursorOpacityChanged, this, &ToolManager::updateCursor);
}

ToolManager::~ToolManager() = default;

void ToolManager::makeScribbleTools()
{
    auto pen = std::make_unique<PenTool>(Tool::PenType::Marker);
    pen->setSizeRangeLimits(3.0, 6.0);
    pen->setOpacityRangeLimits(0.1, 1.0);
    auto eraser = std::make_unique<EraserTool>(Tool::EraserType::RubberEraser);
    eraser->setSizeRangeLimits(10.0, 30.0);
    eraser->setOpacityRangeLimits(1.0, 1.0);
    m_drawingTools[scribblePen] = std::move(pen);
    m_drawingTools[scribbleEraser] = std::move(eraser);
    for (const std::size_t place : {scribblePen, scribbleEraser}) {
        m_drawingTools[place]->setSizeRangePercent(0.0, 100.0);
        m_drawingTools[place]->setOpacityRangePercent(0.0, 100.0);
    }
}

void ToolManager::makeOtherTools()
{
    m_otherTools.push_back(std::make_unique<HandTool>());
    m_otherTools.push_back(std::make_unique<ZoomTool>());
    m_otherTools.push_back(std::make_unique<RotateTool>());
    m_otherTools.push_back(std::make_unique<ZPRTool>());
    m_otherTools.push_back(std::make_unique<OffPegsTool>());
    m_otherTools.push_back(std::make_unique<LassoTool>());
    m_otherTools.push_back(std::make_unique<CutterTool>());
    m_otherTools.push_back(std::make_unique<FloatingSelectionTool>());
    m_otherTools.push_back(std::make_unique<ScrubbingTool>());
    m_otherTools.push_back(std::make_unique<PenAdjustmentTool>());
}

PenTool *ToolManager::pen(Tool::PenType penType) const
{
    return static_cast<PenTool *>(m_drawingTools.at(static_cast<std::size_t>(penType)).get());
}

EraserTool *ToolManager::eraser(Tool::EraserType eraserType) const
{
    return static_cast<EraserTool *>(m_drawingTools.at(firstEraser + static_cast<std::size_t>(eraserType)).get());
}

Tool *ToolManager::tool(Tool::Type type) const
{
    switch (type) {
    case Tool::Type::Pen:
        return m_currentPen;
    case Tool::Type::Eraser:
        return m_currentEraser;
    case Tool::Type::None:
        return nullptr;
    default:
        break;
    }
    for (const std::unique_ptr<Tool> &candidate : m_otherTools) {
        if (candidate->type() == type)
            return candidate.get();
    }
    qWarning("It seems a new tool added but not listed here");
    return nullptr;
}

DrawingTool *ToolManager::scribbleTool(Tool::Type type) const
{
    if (type == Tool::Type::Pen)
        return m_drawingTools[scribblePen].get();
    if (type == Tool::Type::Eraser)
        return m_drawingTools[scribbleEraser].get();
    qWarning("scribbleTool() should always be a DrawingTool");
    return nullptr;
}

Tool::Type ToolManager::currentToolType() const
{
    return m_currentTool ? m_currentTool->type() : Tool::Type::None;
}

int ToolManager::currentToolMode() const
{
    return m_currentTool ? m_currentTool->mode() : 0;
}

Tool::PenType ToolManager::currentPenType() const
{
    return m_currentPen->penType();
}

Tool::EraserType ToolManager::currentEraserType() const
{
    return m_currentEraser->eraserType();
}

bool ToolManager::isDrawingOrErasing() const
{
    return currentToolType() == Tool::Type::Pen || currentToolType() == Tool::Type::Eraser;
}

bool ToolManager::isLassoOrCutter() const
{
    return isLassoOrCutterType(currentToolType());
}

bool ToolManager::isLassoOrCutterType(Tool::Type type)
{
    return type == Tool::Type::Lasso || type == Tool::Type::Cutter;
}

QCursor ToolManager::cursor() const
{
    return m_currentTool ? m_currentTool->cursor() : QCursor(Qt::ArrowCursor);
}

void ToolManager::setCurrentTool(Tool::Type type, int mode)
{
    const Tool::Type old = currentToolType();
    if (type == old && mode == currentToolMode())
        return;
    disconnectCurrentTool();
    storeAdjustedRanges();
    m_currentTool = tool(type);
    if (!m_currentTool) {
        emit currentToolTypeChanged(type, old);
        return;
    }
    m_currentTool->setMode(mode);
    if (isDrawingOrErasing())
        m_latestDrawingToolType = type;
    const bool isEditing = isDrawingOrErasing() || type == Tool::Type::FloatingSelection;
    if (isEditing || isLassoOrCutter())
        m_latestPaperToolType = type;
    if (isEditing)
        m_latestEditToolType = type;
    connectCurrentTool();
    // Scrubbing leaves the cursor as the tool before it had it.
    if (type != Tool::Type::Scrubbing)
        emit cursorChanged(m_currentTool->cursor());
    emit currentToolTypeChanged(type, old);
}

/// While a tool is being adjusted it is not the current one, whose ranges are stored as they change: its own are stored
/// when the adjusting ends, whatever tool comes next.
void ToolManager::storeAdjustedRanges()
{
    const auto *adjusting = qobject_cast<const PenAdjustmentTool *>(m_currentTool);
    if (adjusting && adjusting->drawingTool())
        savePreset(adjusting->drawingTool(), MR::ToolPreset::Default);
}

void ToolManager::setCurrentPenType(Tool::PenType penType)
{
    const Tool::PenType old = currentPenType();
    m_currentPen = pen(penType);
    if (currentToolType() == Tool::Type::Pen)
        replaceCurrentDrawingTool(m_currentPen);
    emit currentPenToolTypeChanged(penType, old);
}

void ToolManager::setCurrentEraserType(Tool::EraserType eraserType)
{
    m_currentEraser = eraser(eraserType);
    if (currentToolType() == Tool::Type::Eraser)
        replaceCurrentDrawingTool(m_currentEraser);
}

/// \a tool is of the current tool's type.
void ToolManager::replaceCurrentDrawingTool(DrawingTool *tool)
{
    if (m_currentTool == tool)
        return;
    disconnectCurrentTool();
    // Held or not is a matter of the hand, not of the pen in it.
    tool->setMode(m_currentTool->mode());
    m_currentTool = tool;
    connectCurrentTool();
    emit cursorChanged(tool->cursor());
    emit currentToolTypeChanged(tool->type(), tool->type());
}

void ToolManager::connectCurrentTool()
{
    if (auto *drawingTool = qobject_cast<DrawingTool *>(m_currentTool)) {
        m_connections[0] = connect(drawingTool, &DrawingTool::sizeRangeChanged, this, storeSizeRange);
        m_connections[1] = connect(drawingTool, &DrawingTool::opacityRangeChanged, this, storeOpacityRange);
        drawingTool->updateCursor();
    }
    m_connections[2] = connect(m_currentTool, &Tool::cursorChanged, this, &ToolManager::cursorChanged);
}

void ToolManager::disconnectCurrentTool()
{
    for (QMetaObject::Connection &connection : m_connections) {
        disconnect(connection);
        connection = {};
    }
}

void ToolManager::loadPreset(DrawingTool *tool, MR::ToolPreset preset)
{
    applyPreset(*tool, preset);
    const ToolRanges ranges =
        Settings::instance()->toolRanges(tool->settingsName(), preset, presetRanges(*tool, preset));
    tool->setSizeRangePercent(ranges.sizeLower, ranges.sizeUpper);
    tool->setOpacityRangePercent(ranges.opacityLower, ranges.opacityUpper);
}

void ToolManager::savePreset(const DrawingTool *tool, MR::ToolPreset preset)
{
    Settings::instance()->setToolRanges(tool->settingsName(), preset,
                                        {.opacityLower = tool->opacityMinPercent(),
                                         .opacityUpper = tool->opacityMaxPercent(),
                                         .sizeLower = tool->sizeMinPercent(),
                                         .sizeUpper = tool->sizeMaxPercent()});
}

void ToolManager::decreaseDrawingToolSizeRange()
{
    if (auto *drawingTool = qobject_cast<DrawingTool *>(m_currentTool))
        drawingTool->decreaseSizeRange();
}

void ToolManager::increaseDrawingToolSizeRange()
{
    if (auto *drawingTool = qobject_cast<DrawingTool *>(m_currentTool))
        drawingTool->increaseSizeRange();
}

void ToolManager::resetDrawingToolSettings()
{
    const SettingsBatch batch;
    for (std::size_t place = 0; place < firstEraser; ++place) {
        DrawingTool &tool = *m_drawingTools[place];
        for (const auto preset : {MR::ToolPreset::Preset1, MR::ToolPreset::Preset2, MR::ToolPreset::Preset3})
            storeDefaults(tool, preset);
        applyPreset(tool, MR::ToolPreset::Default);
        storeDefaults(tool, MR::ToolPreset::Default);
    }
}

void ToolManager::resetErasingToolSettings()
{
    const SettingsBatch batch;
    for (std::size_t place = firstEraser; place < scribblePen; ++place) {
        applyPreset(*m_drawingTools[place], MR::ToolPreset::Default);
        storeDefaults(*m_drawingTools[place], MR::ToolPreset::Default);
    }
}

void ToolManager::updateCursor()
{
    if (m_currentTool)
        m_currentTool->updateCursor();
}

void ToolManager::setViewScale(double viewScale)
{
    for (std::size_t place = 0; place < scribblePen; ++place)
        m_drawingTools[place]->setViewScale(viewScale);
}

} // namespace Model
