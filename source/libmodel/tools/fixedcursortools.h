#pragma once

#include "libmodel/tools/fixedcursortool.h"

namespace Model {

/// Moves the view of the paper.
class HandTool : public FixedCursorTool
{
    Q_OBJECT

public:
    explicit HandTool(QObject *parent = nullptr) : FixedCursorTool(Type::Hand, parent) {}
    [[nodiscard]] std::unique_ptr<Tool> clone() const override { return cloneAs<HandTool>(); }
};

/// Enlarges and shrinks the view of the paper.
class ZoomTool : public FixedCursorTool
{
    Q_OBJECT

public:
    explicit ZoomTool(QObject *parent = nullptr) : FixedCursorTool(Type::Zoom, parent) {}
    [[nodiscard]] std::unique_ptr<Tool> clone() const override { return cloneAs<ZoomTool>(); }
};

/// Turns the view of the paper.
class RotateTool : public FixedCursorTool
{
    Q_OBJECT

public:
    explicit RotateTool(QObject *parent = nullptr) : FixedCursorTool(Type::Rotate, parent) {}
    [[nodiscard]] std::unique_ptr<Tool> clone() const override { return cloneAs<RotateTool>(); }
};

/// Picks up a copy of what a freehand line encircles.
class LassoTool : public FixedCursorTool
{
    Q_OBJECT

public:
    explicit LassoTool(QObject *parent = nullptr) : FixedCursorTool(Type::Lasso, parent) {}
    [[nodiscard]] std::unique_ptr<Tool> clone() const override { return cloneAs<LassoTool>(); }
};

/// Picks up what a freehand line encircles and takes it out of the drawing.
class CutterTool : public FixedCursorTool
{
    Q_OBJECT

public:
    explicit CutterTool(QObject *parent = nullptr) : FixedCursorTool(Type::Cutter, parent) {}
    [[nodiscard]] std::unique_ptr<Tool> clone() const override { return cloneAs<CutterTool>(); }
};

/// Runs through the frames by dragging.
class ScrubbingTool : public FixedCursorTool
{
    Q_OBJECT

public:
    explicit ScrubbingTool(QObject *parent = nullptr) : FixedCursorTool(Type::Scrubbing, parent) {}

    [[nodiscard]] std::unique_ptr<Tool> clone() const override
    {
        auto copy = cloneAs<ScrubbingTool>();
        copy->setDragging(m_isDragging);
        return copy;
    }

    /// Whether a drag is in progress.
    [[nodiscard]] bool isDragging() const { return m_isDragging; }
    void setDragging(bool dragging) { m_isDragging = dragging; }

private:
    bool m_isDragging = false;
};

} // namespace Model
