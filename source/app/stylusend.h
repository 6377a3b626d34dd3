#pragma once

#include "libmodel/tools/tool.h"

#include <QPointingDevice>

/// Which end of the stylus is in use, and the tool that turning it round asks for.
///
/// | last end | new end | current tool      | answer                                        |
/// |----------|---------|-------------------|-----------------------------------------------|
/// | eraser   | pen     | pen or eraser     | switch to the pen                             |
/// | eraser   | pen     | any other         | remember the pen as the tool to come back to  |
/// | any      | eraser  | pen or eraser     | switch to the eraser                          |
/// | any      | eraser  | any other         | remember the eraser                           |
/// | not eraser | pen   | any               | nothing                                       |
class StylusEnd
{
public:
    /// What a turn of the stylus asks for: a tool now, or a tool to come back to later; None for nothing.
    struct Answer
    {
        Model::Tool::Type switchTo = Model::Tool::Type::None;
        Model::Tool::Type comeBackTo = Model::Tool::Type::None;
    };

    /// The end \a end came near while \a currentTool is in use.
    Answer turnedTo(QPointingDevice::PointerType end, Model::Tool::Type currentTool);

private:
    QPointingDevice::PointerType m_last = QPointingDevice::PointerType::Unknown;
};
