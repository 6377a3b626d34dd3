#include "app/stylusend.h"

using Model::Tool;

StylusEnd::Answer StylusEnd::turnedTo(QPointingDevice::PointerType end, Tool::Type currentTool)
{
    const QPointingDevice::PointerType last = m_last;
    m_last = end;
    Tool::Type wanted = Tool::Type::None;
    if (end == QPointingDevice::PointerType::Eraser)
        wanted = Tool::Type::Eraser;
    else if (end == QPointingDevice::PointerType::Pen && last == QPointingDevice::PointerType::Eraser)
        wanted = Tool::Type::Pen;

    Answer answer;
    if (currentTool == Tool::Type::Pen || currentTool == Tool::Type::Eraser)
        answer.switchTo = wanted;
    else
        answer.comeBackTo = wanted;
    return answer;
}
