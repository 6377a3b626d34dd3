#pragma once

#include "libmodel/tools/drawingtool.h"

#include <QPointer>

namespace Model {

/// Adjusts the ranges of a drawing tool by dragging: sideways the sizes, up and down the opacities.
///
///     mode 0  nothing chosen yet; shows the drawing tool's cursor
///     mode 1  adjusting opacity; the cursor shows the range of opacities
///     mode 2  adjusting size; the cursor shows the range of sizes
///
/// Factors act on the ranges as they were when the drawing tool was given, so a drag and the way back cancel out.
class PenAdjustmentTool : public Tool
{
    Q_OBJECT

public:
    static constexpr int opacityMode = 1;
    static constexpr int sizeMode = 2;

    explicit PenAdjustmentTool(QObject *parent = nullptr);

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QCursor cursor() const override;

    /// The tool being adjusted; not owned, may be null.
    [[nodiscard]] DrawingTool *drawingTool() const { return m_drawingTool; }

public slots:
    /// Begins adjusting \a drawingTool (not owned) from the ranges it has now. Null ends adjusting.
    void setDrawingTool(Model::DrawingTool *drawingTool);
    /// Multiplies the stored range of sizes by \a factor (held within 0.001 and 1000), counted from -4 percent. The
    /// opacities go back to what they were if they were being adjusted. Without a drawing tool nothing happens.
    void adjustSizeRange(double factor);
    /// The same for opacities, the sizes going back.
    void adjustOpacityRange(double factor);
    /// Makes the cursor anew.
    void updateCursor() override;

private:
    QPointer<DrawingTool> m_drawingTool;
    DrawingTool::Range m_storedSize;
    DrawingTool::Range m_storedOpacity;
};

} // namespace Model
