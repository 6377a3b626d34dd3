#pragma once

#include "libmodel/tools/tool.h"

#include <QString>

#include <optional>

namespace Model {

/// A tool whose cursor is always the same, by its type. Types without such a cursor are reported and get the arrow.
class FixedCursorTool : public Tool
{
    Q_OBJECT

public:
    explicit FixedCursorTool(Type type, QObject *parent = nullptr);

    [[nodiscard]] std::unique_ptr<Tool> clone() const override;
    [[nodiscard]] QCursor cursor() const override;

private:
    QString m_cursorName;
    std::optional<QPoint> m_hotSpot;
    mutable std::optional<QCursor> m_cursor;
};

/// The cursor that tools of \a type show, for tools that borrow each other's; the arrow if the type has none.
QCursor fixedCursorOf(Tool::Type type);

} // namespace Model
