#include "libmodel/tools/fixedcursortool.h"

#include "libmodel/tools/cursors.h"

#include <algorithm>
#include <iterator>

namespace Model {

namespace {

struct FixedCursor
{
    Tool::Type type;
    const char *name;
    /// None: the middle.
    std::optional<QPoint> hotSpot;
};

const FixedCursor fixedCursors[] = {
    {Tool::Type::Hand, "pointer-hand", {}},
    {Tool::Type::Zoom, "pointer-zoom", QPoint(9, 9)},
    {Tool::Type::Rotate, "pointer-rotate", {}},
    {Tool::Type::Lasso, "pointer-lasso", QPoint(13, 8)},
    {Tool::Type::Cutter, "pointer-cutter", QPoint(2, 24)},
    {Tool::Type::Scrubbing, "pointer-scrub", {}},
};

QCursor made(const QString &name, const std::optional<QPoint> &hotSpot)
{
    const QPixmap pixmap = cursorPixmap(name);
    return namedCursor(name, hotSpot.value_or(QPoint(pixmap.width() / 2, pixmap.height() / 2)));
}

const FixedCursor *fixedCursorEntry(Tool::Type type)
{
    const auto *entry = std::find_if(std::begin(fixedCursors), std::end(fixedCursors),
                                     [type](const FixedCursor &candidate) { return candidate.type == type; });
    return entry == std::end(fixedCursors) ? nullptr : entry;
}

} // namespace

FixedCursorTool::FixedCursorTool(Type type, QObject *parent) : Tool(type, parent)
{
    if (const FixedCursor *entry = fixedCursorEntry(type)) {
        m_cursorName = QString::fromLatin1(entry->name);
        m_hotSpot = entry->hotSpot;
    } else {
        qWarning("Unsupported tool type!");
    }
}

std::unique_ptr<Tool> FixedCursorTool::clone() const
{
    return cloneAs<FixedCursorTool>(type());
}

QCursor FixedCursorTool::cursor() const
{
    if (!m_cursor)
        m_cursor = made(m_cursorName, m_hotSpot);
    return *m_cursor;
}

QCursor fixedCursorOf(Tool::Type type)
{
    const FixedCursor *entry = fixedCursorEntry(type);
    return entry ? made(QString::fromLatin1(entry->name), entry->hotSpot) : QCursor(Qt::ArrowCursor);
}

} // namespace Model
