#pragma once

#include "libmodel/tools/tool.h"

namespace Model {

/// Moves a frame off its pegs, turns it, or puts it back, by the zone it is used in; the paper knows the zones.
class OffPegsTool : public Tool
{
    Q_OBJECT

public:
    /// What a drag or click would do where the pointer is.
    enum class OPCursorType {
        Rotate = 0,
        Pan = 1,
        PutBack = 2,
    };
    Q_ENUM(OPCursorType)

    explicit OffPegsTool(QObject *parent = nullptr);

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QCursor cursor() const override;

    [[nodiscard]] OPCursorType cursorType() const { return m_cursorType; }
    void setCursorType(OPCursorType cursorType);

private:
    OPCursorType m_cursorType = OPCursorType::Rotate;
};

} // namespace Model
