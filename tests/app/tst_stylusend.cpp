#include "app/stylusend.h"

#include <QTest>

using Model::Tool;
using End = QPointingDevice::PointerType;

class tst_StylusEnd : public QObject
{
    Q_OBJECT

private slots:
    void firstPenChangesNothing();
    void eraserEndSwitchesADrawingToolToTheEraser();
    void turningBackToThePenSwitchesToThePen();
    void penAfterPenChangesNothing();
    void otherToolsAreKeptAndTheEndIsRemembered();
};

void tst_StylusEnd::firstPenChangesNothing()
{
    StylusEnd end;
    const auto answer = end.turnedTo(End::Pen, Tool::Type::Eraser);
    QCOMPARE(answer.switchTo, Tool::Type::None);
    QCOMPARE(answer.comeBackTo, Tool::Type::None);
}

void tst_StylusEnd::eraserEndSwitchesADrawingToolToTheEraser()
{
    StylusEnd end;
    QCOMPARE(end.turnedTo(End::Eraser, Tool::Type::Pen).switchTo, Tool::Type::Eraser);
}

void tst_StylusEnd::turningBackToThePenSwitchesToThePen()
{
    StylusEnd end;
    end.turnedTo(End::Eraser, Tool::Type::Pen);
    QCOMPARE(end.turnedTo(End::Pen, Tool::Type::Eraser).switchTo, Tool::Type::Pen);
}

void tst_StylusEnd::penAfterPenChangesNothing()
{
    StylusEnd end;
    end.turnedTo(End::Pen, Tool::Type::Eraser);
    // The user chose the eraser by key; the pen coming near again must not take it away.
    QCOMPARE(end.turnedTo(End::Pen, Tool::Type::Eraser).switchTo, Tool::Type::None);
}

void tst_StylusEnd::otherToolsAreKeptAndTheEndIsRemembered()
{
    StylusEnd end;
    const auto erasing = end.turnedTo(End::Eraser, Tool::Type::Lasso);
    QCOMPARE(erasing.switchTo, Tool::Type::None);
    QCOMPARE(erasing.comeBackTo, Tool::Type::Eraser);
    const auto drawing = end.turnedTo(End::Pen, Tool::Type::Lasso);
    QCOMPARE(drawing.switchTo, Tool::Type::None);
    QCOMPARE(drawing.comeBackTo, Tool::Type::Pen);
}

QTEST_APPLESS_MAIN(tst_StylusEnd)
#include "tst_stylusend.moc"
