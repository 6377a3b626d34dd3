#include "libmodel/tools/floatingselectiontool.h"

#include "libmodel/tools/cursors.h"

#include <cmath>

namespace Model {

FloatingSelectionTool::FloatingSelectionTool(QObject *parent) : Tool(Type::FloatingSelection, parent)
{
}

std::unique_ptr<Tool> FloatingSelectionTool::clone() const
{
    auto copy = cloneAs<FloatingSelectionTool>();
    copy->m_cursorType = m_cursorType;
    copy->m_handleAngle = m_handleAngle;
    return copy;
}

bool FloatingSelectionTool::isRotatedType() const
{
    return m_cursorType == FSCursorType::Rotate || m_cursorType == FSCursorType::Scale ||
           m_cursorType == FSCursorType::ScaleRotate;
}

QCursor FloatingSelectionTool::cursor() const
{
    if (!isRotatedType())
        return makeCursor();
    if (!m_rotated)
        m_rotated = makeCursor();
    return *m_rotated;
}

QCursor FloatingSelectionTool::makeCursor() const
{
    switch (m_cursorType) {
    case FSCursorType::Move:
        return namedCursor(QStringLiteral("pointer-move"));
    case FSCursorType::Rotate:
        return rotatedCursor(QStringLiteral("pointer-rotate"), m_handleAngle + 90.0);
    case FSCursorType::Scale:
        return rotatedCursor(QStringLiteral("pointer-scale"), m_handleAngle);
    case FSCursorType::ScaleRotate:
        return rotatedCursor(QStringLiteral("pointer-scaleRotate"), m_handleAngle);
    case FSCursorType::HorizontalEdge:
    case FSCursorType::VerticalEdge:
    case FSCursorType::Pivot:
        return QCursor(Qt::ArrowCursor);
    case FSCursorType::SkewHorizontal:
        return namedCursor(QStringLiteral("pointer-skewHorizontal"));
    case FSCursorType::SkewVertical:
        return namedCursor(QStringLiteral("pointer-skewVertical"));
    case FSCursorType::SquashStretch:
        return namedCursor(QStringLiteral("pointer-squashStretch"));
    case FSCursorType::Stamp:
        break;
    }
    const bool isBlocked = mode() >= 1 && mode() <= 3;
    return isBlocked ? QCursor(Qt::ForbiddenCursor) : namedCursor(QStringLiteral("pointer-stamp"));
}

void FloatingSelectionTool::setCursorType(FSCursorType cursorType)
{
    if (m_cursorType == cursorType)
        return;
    m_cursorType = cursorType;
    m_rotated.reset();
    emit cursorChanged(cursor());
}

void FloatingSelectionTool::setHandleAngle(double angleDegrees)
{
    if (std::abs(angleDegrees - m_handleAngle) < 1.0)
        return;
    m_handleAngle = angleDegrees;
    m_rotated.reset();
    if (isRotatedType())
        emit cursorChanged(cursor());
}

} // namespace Model
