#pragma once

#include "libmodel/tools/tool.h"

#include <QPoint>

namespace Model {

/// Zooms, pans or rotates the view of the paper by the zone it is used in; the paper knows the zones.
class ZPRTool : public Tool
{
    Q_OBJECT

public:
    /// What a drag would do where the pointer is.
    enum class ZPRCursorType {
        Rotate = 0,
        Pan = 1,
        Zoom = 2,
    };
    Q_ENUM(ZPRCursorType)

    explicit ZPRTool(QObject *parent = nullptr);

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QCursor cursor() const override;

    [[nodiscard]] ZPRCursorType cursorType() const { return m_cursorType; }
    void setCursorType(ZPRCursorType cursorType);

    /// Where the running drag began, in screen coordinates.
    [[nodiscard]] QPoint pressPosGlobal() const { return m_pressPosGlobal; }

public slots:
    void setPressPosGlobal(QPoint position) { m_pressPosGlobal = position; }

private:
    ZPRCursorType m_cursorType = ZPRCursorType::Pan;
    QPoint m_pressPosGlobal;
};

} // namespace Model
