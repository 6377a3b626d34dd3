#pragma once

#include "libmodel/tools/drawingtool.h"

namespace Model {

/// A pen of one of three kinds. Made without a preset, it has the ranges every drawing tool starts with.
class PenTool : public DrawingTool
{
    Q_OBJECT

public:
    explicit PenTool(PenType penType, QObject *parent = nullptr);

    [[nodiscard]] PenType penType() const { return m_kind; }

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QString displayName() const override;
    [[nodiscard]] QString settingsName() const override;

    /// A circle of the outer radius with a crosshair that reaches in to the inner one.
    [[nodiscard]] QCursor makeCursor(double inner, double outer, double scale, bool faint) const override;

protected:
    [[nodiscard]] QCursor fixedCursor(bool faint) const override;

private:
    PenType m_kind;
};

} // namespace Model
