#include "libmodel/tools/zprtool.h"

#include "libmodel/tools/fixedcursortool.h"

namespace Model {

ZPRTool::ZPRTool(QObject *parent) : Tool(Type::ZPR, parent)
{
}

std::unique_ptr<Tool> ZPRTool::clone() const
{
    auto copy = cloneAs<ZPRTool>();
    copy->m_cursorType = m_cursorType;
    copy->m_pressPosGlobal = m_pressPosGlobal;
    return copy;
}

QCursor ZPRTool::cursor() const
{
    switch (m_cursorType) {
    case ZPRCursorType::Rotate:
        return fixedCursorOf(Type::Rotate);
    case ZPRCursorType::Pan:
        return fixedCursorOf(Type::Hand);
    case ZPRCursorType::Zoom:
        return fixedCursorOf(Type::Zoom);
    }
    return QCursor(Qt::ArrowCursor);
}

void ZPRTool::setCursorType(ZPRCursorType cursorType)
{
    if (m_cursorType == cursorType)
        return;
    m_cursorType = cursorType;
    emit cursorChanged(cursor());
}

} // namespace Model
