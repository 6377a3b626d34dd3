#include "libmodel/tools/penadjustmenttool.h"

#include "libmodel/tools/pentool.h"
#include "libmodel/tools/tipcursors.h"

#include <QSignalSpy>
#include <QTest>

using namespace Model;

namespace {

bool isNear(double a, double b)
{
    return std::abs(a - b) < 1e-9;
}

} // namespace

class tst_PenAdjustmentTool : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Q_INIT_RESOURCE(model); }

    void factorActsOnTheStoredRange();
    void factorIsHeldWithinBounds();
    void growingStopsWhenTheLowerBoundIsAHundred();
    void shrinkingStopsWhenTheUpperBoundIsZero();
    void comingBackFromTheLimitIsAllowed();
    void changingDirectionPutsTheOtherRangeBack();
    void withoutADrawingToolNothingHappens();
    void deletedDrawingToolIsForgotten();
    void cursorShowsWhatIsAdjusted();
    void everyAdjustmentTellsTheCursor();
};

void tst_PenAdjustmentTool::factorActsOnTheStoredRange()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setSizeRangePercent(6, 16);
    pen.setOpacityRangePercent(16, 36);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    tool.adjustSizeRange(3.0);
    tool.adjustSizeRange(2.0);
    // (6 + 4) x 2 - 4 and (16 + 4) x 2 - 4, not on top of the factor before.
    QVERIFY(isNear(pen.sizeMinPercent(), 16));
    QVERIFY(isNear(pen.sizeMaxPercent(), 36));
    QCOMPARE(tool.mode(), 2);
    tool.adjustOpacityRange(0.5);
    QVERIFY(isNear(pen.opacityMinPercent(), 6));
    QVERIFY(isNear(pen.opacityMaxPercent(), 16));
    QCOMPARE(tool.mode(), 1);
}

void tst_PenAdjustmentTool::factorIsHeldWithinBounds()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setSizeRangePercent(0, 0);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    tool.adjustSizeRange(1e9);
    QVERIFY(isNear(pen.incDecSizeMaxPercent(), 4 * 1000 - 4));
    pen.setSizeRangePercent(0, 96);
    tool.setDrawingTool(&pen);
    tool.adjustSizeRange(0.0);
    QVERIFY(isNear(pen.incDecSizeMaxPercent(), 100 * 0.001 - 4));
}

void tst_PenAdjustmentTool::growingStopsWhenTheLowerBoundIsAHundred()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setSizeRangePercent(100, 100);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    tool.adjustSizeRange(1.5);
    QCOMPARE(pen.incDecSizeMinPercent(), 100.0);
}

void tst_PenAdjustmentTool::shrinkingStopsWhenTheUpperBoundIsZero()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setOpacityRangePercent(0, 0);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    tool.adjustOpacityRange(0.5);
    QCOMPARE(pen.incDecOpacityMaxPercent(), 0.0);
}

void tst_PenAdjustmentTool::comingBackFromTheLimitIsAllowed()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setSizeRangePercent(21, 46);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    tool.adjustSizeRange(5.0);
    QCOMPARE(pen.sizeMinPercent(), 100.0);
    // Both bounds are still beyond 100 at 4.8, and the present lower one, too: nothing to be seen, nothing done.
    tool.adjustSizeRange(4.8);
    QVERIFY(isNear(pen.incDecSizeMinPercent(), 121));
    tool.adjustSizeRange(2.0);
    QVERIFY(isNear(pen.sizeMinPercent(), 46));
    QVERIFY(isNear(pen.sizeMaxPercent(), 96));
}

void tst_PenAdjustmentTool::changingDirectionPutsTheOtherRangeBack()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setSizeRangePercent(6, 16);
    pen.setOpacityRangePercent(10, 20);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    tool.adjustSizeRange(2.0);
    tool.adjustOpacityRange(2.0);
    QVERIFY(isNear(pen.sizeMinPercent(), 6));
    QVERIFY(isNear(pen.sizeMaxPercent(), 16));
    QVERIFY(isNear(pen.opacityMinPercent(), 24));
    tool.adjustSizeRange(2.0);
    QVERIFY(isNear(pen.opacityMinPercent(), 10));
    QVERIFY(isNear(pen.opacityMaxPercent(), 20));
    QVERIFY(isNear(pen.sizeMinPercent(), 16));
}

void tst_PenAdjustmentTool::withoutADrawingToolNothingHappens()
{
    PenAdjustmentTool tool;
    tool.adjustSizeRange(2.0);
    tool.adjustOpacityRange(2.0);
    QCOMPARE(tool.mode(), 0);
    QCOMPARE(tool.cursor().shape(), Qt::ArrowCursor);
}

void tst_PenAdjustmentTool::deletedDrawingToolIsForgotten()
{
    PenAdjustmentTool tool;
    {
        PenTool pen(Tool::PenType::Pencil);
        tool.setDrawingTool(&pen);
        QCOMPARE(tool.drawingTool(), &pen);
    }
    QVERIFY(!tool.drawingTool());
    tool.adjustSizeRange(2.0);
}

void tst_PenAdjustmentTool::cursorShowsWhatIsAdjusted()
{
    PenTool pen(Tool::PenType::Pencil);
    pen.setSizeRangeLimits(20, 120);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    QCOMPARE(tool.cursor().pixmap().toImage(), pen.cursor().pixmap().toImage());
    tool.adjustOpacityRange(0.5);
    QCOMPARE(tool.cursor().pixmap().toImage(),
             opacityRangeCursor(pen.opacityBase(), pen.opacityBase() + pen.opacityRange(), false).pixmap().toImage());
    tool.adjustSizeRange(0.5);
    QCOMPARE(tool.cursor().pixmap().toImage(),
             sizeRangeCursor(2 * pen.radiusBase(), 2 * (pen.radiusBase() + pen.radiusRange()), pen.viewScale())
                 .pixmap()
                 .toImage());
}

void tst_PenAdjustmentTool::everyAdjustmentTellsTheCursor()
{
    PenTool pen(Tool::PenType::Pencil);
    PenAdjustmentTool tool;
    tool.setDrawingTool(&pen);
    QSignalSpy changes(&tool, &Tool::cursorChanged);
    tool.adjustSizeRange(0.5);
    tool.adjustSizeRange(0.4);
    QCOMPARE(changes.size(), 2);
}

QTEST_MAIN(tst_PenAdjustmentTool)
#include "tst_penadjustmenttool.moc"
