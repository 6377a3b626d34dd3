#pragma once

#include "libmodel/tools/tool.h"

#include <optional>

namespace Model {

/// Moves, turns, scales and stamps a floating selection, by the handle it is used on; the paper knows the handles.
///
/// In the modes 1, 2 and 3 stamping is not possible, and the cursor outside of the selection says so.
class FloatingSelectionTool : public Tool
{
    Q_OBJECT

public:
    /// What a drag or click would do where the pointer is.
    enum class FSCursorType {
        Move = 0,
        Rotate = 1,
        Scale = 2,
        ScaleRotate = 3,
        HorizontalEdge = 4,
        VerticalEdge = 5,
        Pivot = 6,
        SkewHorizontal = 7,
        SkewVertical = 8,
        SquashStretch = 9,
        Stamp = 10,
    };
    Q_ENUM(FSCursorType)

    explicit FloatingSelectionTool(QObject *parent = nullptr);

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QCursor cursor() const override;

    [[nodiscard]] FSCursorType cursorType() const { return m_cursorType; }
    void setCursorType(FSCursorType cursorType);

    /// How the handle under the pointer is turned, in degrees clockwise on the screen. The cursors of turning and
    /// scaling follow in steps of at least one degree.
    [[nodiscard]] double handleAngle() const { return m_handleAngle; }
    void setHandleAngle(double angleDegrees);

private:
    [[nodiscard]] bool isRotatedType() const;
    [[nodiscard]] QCursor makeCursor() const;

    FSCursorType m_cursorType = FSCursorType::Stamp;
    double m_handleAngle = 0.0;
    /// The cursor of a turned handle, until type or angle change.
    mutable std::optional<QCursor> m_rotated;
};

} // namespace Model
