#pragma once

#include "app/stylusend.h"

#include <QObject>

/// Connects the catalogue's tool actions with the tool manager, both ways: an action that is triggered sets the tool,
/// and a tool that is set checks its action.
///
/// Emits aboutToChangeTool() ahead of every change it makes, so that a stroke in progress is committed under the tool
/// that drew it.
class ToolSwitch : public QObject
{
    Q_OBJECT

public:
    explicit ToolSwitch(QObject *parent);

    /// Makes the tool of \a type current, or with \a on false goes back to the tool used on the paper before it: to the
    /// pen or the eraser by the stylus's end, if it was turned round meanwhile.
    void setTool(Model::Tool::Type type, bool on);

    /// The end \a pointerType of the stylus came near the tablet: the pen draws, the eraser erases.
    void setTabletPointerType(QPointingDevice::PointerType pointerType);

signals:
    void aboutToChangeTool();

private:
    void connectActions();
    void setPen(Model::Tool::PenType penType);
    void setEraser(Model::Tool::EraserType eraserType);
    void toggleDrawErase();
    Model::Tool::Type toolToComeBackTo(Model::Tool::Type left) const;
    void onCurrentToolChanged(Model::Tool::Type current, Model::Tool::Type previous);
    void updateChecks();

    StylusEnd m_stylusEnd;
    Model::Tool::Type m_comeBackTo = Model::Tool::Type::None;
};
