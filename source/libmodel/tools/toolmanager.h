#pragma once

#include "libmodel/base/mr.h"
#include "libmodel/tools/tool.h"

#include <QCursor>
#include <QMetaObject>
#include <QObject>

#include <array>
#include <memory>
#include <vector>

namespace Model {

class DrawingTool;
class EraserTool;
class PenTool;

/// Owns all tools, knows the current one and the latest of each family, and tells of changes.
///
/// It never changes the tool by itself: who borrows a tool for a while gives it back by the latest types or by the
/// previous type of currentToolTypeChanged(). The ranges of the current drawing tool are written to the settings as
/// they change. One per process, GUI thread only; destroyed together with the application object.
class ToolManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QCursor cursor READ cursor NOTIFY cursorChanged)
    Q_PROPERTY(Model::Tool::Type currentToolType READ currentToolType NOTIFY currentToolTypeChanged)

public:
    /// The manager of this process, made at first use with the ranges that the settings hold then.
    static ToolManager *instance();

    ~ToolManager() override;

    /// The tool a type means now; null for Tool::Type::None.
    [[nodiscard]] Tool *tool(Tool::Type type) const;
    /// The pen (Tool::Type::Pen) or eraser that annotations and the exposure sheet scribble with; null for other types.
    [[nodiscard]] DrawingTool *scribbleTool(Tool::Type type) const;
    [[nodiscard]] PenTool *pen(Tool::PenType penType) const;
    [[nodiscard]] EraserTool *eraser(Tool::EraserType eraserType) const;

    /// Null until a tool is set.
    [[nodiscard]] Tool *currentTool() const { return m_currentTool; }
    /// Tool::Type::None without a current tool.
    [[nodiscard]] Tool::Type currentToolType() const;
    /// 0 without a current tool. Only in mode 0 does the paper take strokes.
    [[nodiscard]] int currentToolMode() const;
    /// The pen and the eraser that the types Pen and Eraser mean now.
    [[nodiscard]] Tool::PenType currentPenType() const;
    [[nodiscard]] Tool::EraserType currentEraserType() const;

    /// The tool set last out of pen and eraser; of these, lasso, cutter and floating selection; of these without lasso
    /// and cutter. Tool::Type::None until one was set.
    [[nodiscard]] Tool::Type latestDrawingToolType() const { return m_latestDrawingToolType; }
    [[nodiscard]] Tool::Type latestPaperToolType() const { return m_latestPaperToolType; }
    [[nodiscard]] Tool::Type latestEditToolType() const { return m_latestEditToolType; }

    [[nodiscard]] bool isDrawingOrErasing() const;
    [[nodiscard]] bool isLassoOrCutter() const;
    [[nodiscard]] static bool isLassoOrCutterType(Tool::Type type);

    /// The current tool's cursor, the arrow without one.
    [[nodiscard]] QCursor cursor() const;

    /// Makes the tool of \a type current, held in \a mode. Does nothing if it is, in that mode.
    void setCurrentTool(Tool::Type type, int mode);
    /// Chooses what Tool::Type::Pen means; the current tool changes with it if it is a pen, and keeps its mode.
    void setCurrentPenType(Tool::PenType penType);
    /// Chooses what Tool::Type::Eraser means; the current tool changes with it if it is an eraser, and keeps its mode.
    void setCurrentEraserType(Tool::EraserType eraserType);

    /// Gives \a tool (a pen or an eraser of this manager) the limits of its kind and the stored ranges of \a preset.
    static void loadPreset(DrawingTool *tool, MR::ToolPreset preset);
    /// Stores the ranges of \a tool as its \a preset.
    static void savePreset(const DrawingTool *tool, MR::ToolPreset preset);

public slots:
    /// Steps the current tool's range of sizes, if it is a drawing tool.
    void decreaseDrawingToolSizeRange();
    void increaseDrawingToolSizeRange();
    /// Puts all presets of the pens back to what the program comes with; the pens get their default ranges.
    void resetDrawingToolSettings();
    /// The same for the erasers.
    void resetErasingToolSettings();
    void updateCursor();
    /// Tells all drawing tools how large the paper is seen, in logical pixels of the view per paper pixel.
    void setViewScale(double viewScale);

signals:
    void currentToolTypeChanged(Model::Tool::Type currentToolType, Model::Tool::Type previousToolType);
    void currentPenToolTypeChanged(Model::Tool::PenType currentPenToolType, Model::Tool::PenType previousPenToolType);
    void cursorChanged(const QCursor &cursor);

private:
    ToolManager();

    void makeScribbleTools();
    void makeOtherTools();
    void replaceCurrentDrawingTool(DrawingTool *tool);
    void storeAdjustedRanges();
    void connectCurrentTool();
    void disconnectCurrentTool();

    std::array<std::unique_ptr<DrawingTool>, 8> m_drawingTools;
    std::vector<std::unique_ptr<Tool>> m_otherTools;
    Tool *m_currentTool = nullptr;
    PenTool *m_currentPen = nullptr;
    EraserTool *m_currentEraser = nullptr;
    Tool::Type m_latestDrawingToolType = Tool::Type::None;
    Tool::Type m_latestPaperToolType = Tool::Type::None;
    Tool::Type m_latestEditToolType = Tool::Type::None;
    std::array<QMetaObject::Connection, 3> m_connections;
};

} // namespace Model
