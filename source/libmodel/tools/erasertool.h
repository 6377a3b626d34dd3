#pragma once

#include "libmodel/tools/drawingtool.h"

namespace Model {

/// An eraser of one of three kinds. Made without a preset, it has the ranges every drawing tool starts with.
class EraserTool : public DrawingTool
{
    Q_OBJECT

public:
    explicit EraserTool(EraserType eraserType, QObject *parent = nullptr);

    [[nodiscard]] EraserType eraserType() const { return m_kind; }

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QString displayName() const override;
    [[nodiscard]] QString settingsName() const override;

    /// A circle of the outer radius; the inner one is not shown.
    [[nodiscard]] QCursor makeCursor(double inner, double outer, double scale, bool faint) const override;

protected:
    [[nodiscard]] QCursor fixedCursor(bool faint) const override;

private:
    EraserType m_kind;
};

} // namespace Model
