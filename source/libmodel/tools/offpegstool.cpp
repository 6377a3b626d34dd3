#include "libmodel/tools/offpegstool.h"

#include "libmodel/tools/fixedcursortool.h"

namespace Model {

OffPegsTool::OffPegsTool(QObject *parent) : Tool(Type::OffPegs, parent)
{
}

std::unique_ptr<Tool> OffPegsTool::clone() const
{
    auto copy = cloneAs<OffPegsTool>();
    copy->m_cursorType = m_cursorType;
    return copy;
}

QCursor OffPegsTool::cursor() const
{
    switch (m_cursorType) {
    case OPCursorType::Rotate:
        return fixedCursorOf(Type::Rotate);
    case OPCursorType::Pan:
        return fixedCursorOf(Type::Hand);
    case OPCursorType::PutBack:
        break;
    }
    return QCursor(Qt::ArrowCursor);
}

void OffPegsTool::setCursorType(OPCursorType cursorType)
{
    if (m_cursorType == cursorType)
        return;
    m_cursorType = cursorType;
    emit cursorChanged(cursor());
}

} // namespace Model
