#include "libmodel/tools/drawingtool.h"

#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"

#include <QSignalSpy>
#include <QTest>

using namespace Model;

namespace {

bool isNear(double a, double b)
{
    return std::abs(a - b) < 1e-9;
}

/// One step of a range: its bounds, counted from -4 percent, times 0.8 or 1.25.
double smaller(double percent)
{
    return (percent + 4) * 0.8 - 4;
}

double larger(double percent)
{
    return (percent + 4) * 1.25 - 4;
}

} // namespace

class tst_DrawingTool : public QObject
{
    Q_OBJECT

private slots:
    void kindsHaveTheirNames();
    void newToolGoesFromHalfAPixelToFive();
    void percentagesMoveWithinTheLimits();
    void minimumFollowsTheMaximum();
    void percentagesAreHeldWithinBounds_data();
    void percentagesAreHeldWithinBounds();
    void sizeLimitsAreHeldWithinBounds_data();
    void sizeLimitsAreHeldWithinBounds();
    void opacityLimitsAreHeldWithinBounds_data();
    void opacityLimitsAreHeldWithinBounds();
    void newLimitsKeepThePercentages();
    void changesAreToldWithTheToolsName();

    void decreasingMultipliesFromMinusFour();
    void increasingMultipliesFromMinusFour();
    void rangeDrivenAgainstZeroSpringsBack();
    void rangeDrivenAgainstAHundredSpringsBack();
    void decreasingStopsWhenTheUpperBoundIsZero();
    void increasingStopsWhenTheLowerBoundIsAHundred();
    void settingARangeEndsTheStepping();
    void opacityStepsLikeSize();
    void sizeAndOpacityStepApart();

    void cloneIsAlikeButApart();
    void needsNoGuiWithoutACursor();
};

void tst_DrawingTool::kindsHaveTheirNames()
{
    const QList<std::pair<QString, QString>> expected = {
        {"Pencil", "Pencil"},
        {"Marker", "Marker"},
        {"Brush", "Brush"},
        {"Kneaded Eraser", "KneadedEraser"},
        {"Rubber Eraser", "RubberEraser"},
        {"Vinyl Eraser", "VinylEraser"},
    };
    QList<std::pair<QString, QString>> names;
    for (int kind = 0; kind < 3; ++kind) {
        const PenTool tool{static_cast<Tool::PenType>(kind)};
        QCOMPARE(tool.type(), Tool::Type::Pen);
        names.append({tool.displayName(), tool.settingsName()});
    }
    for (int kind = 0; kind < 3; ++kind) {
        const EraserTool tool{static_cast<Tool::EraserType>(kind)};
        QCOMPARE(tool.type(), Tool::Type::Eraser);
        names.append({tool.displayName(), tool.settingsName()});
    }
    QCOMPARE(names, expected);
}

void tst_DrawingTool::newToolGoesFromHalfAPixelToFive()
{
    const PenTool tool(Tool::PenType::Pencil);
    QCOMPARE(tool.radiusBase(), 0.5);
    QCOMPARE(tool.radiusRange(), 4.5);
    QCOMPARE(tool.opacityBase(), 0.0);
    QCOMPARE(tool.opacityRange(), 1.0);
    QCOMPARE(tool.mode(), 0);
    QCOMPARE(tool.incDecSizeMaxPercent(), 100.0);
    QCOMPARE(tool.incDecOpacityMaxPercent(), 100.0);
}

void tst_DrawingTool::percentagesMoveWithinTheLimits()
{
    PenTool tool(Tool::PenType::Brush);
    tool.setSizeRangeLimits(20, 120);
    tool.setSizeRangePercent(10, 60);
    // Diameters from 20 + 10 to 20 + 60.
    QCOMPARE(tool.radiusBase(), 15.0);
    QCOMPARE(tool.radiusRange(), 25.0);

    tool.setOpacityRangeLimits(0.5, 0.9);
    tool.setOpacityRangePercent(25, 75);
    QVERIFY(isNear(tool.opacityBase(), 0.6));
    QVERIFY(isNear(tool.opacityRange(), 0.2));
}

void tst_DrawingTool::minimumFollowsTheMaximum()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(50, 10);
    QCOMPARE(tool.sizeMinPercent(), 10.0);
    QCOMPARE(tool.sizeMaxPercent(), 10.0);
    QCOMPARE(tool.radiusRange(), 0.0);
    tool.setOpacityRangePercent(50, 10);
    QCOMPARE(tool.opacityMinPercent(), 10.0);
    QCOMPARE(tool.opacityMaxPercent(), 10.0);
}

void tst_DrawingTool::percentagesAreHeldWithinBounds_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<double>("heldLower");
    QTest::addColumn<double>("heldUpper");
    QTest::newRow("inside") << 20.0 << 30.0 << 20.0 << 30.0;
    QTest::newRow("both below") << -20.0 << -10.0 << 0.0 << 0.0;
    QTest::newRow("both above") << 120.0 << 130.0 << 100.0 << 100.0;
    QTest::newRow("around") << -1.0 << 101.0 << 0.0 << 100.0;
}

void tst_DrawingTool::percentagesAreHeldWithinBounds()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    EraserTool tool(Tool::EraserType::RubberEraser);
    tool.setSizeRangePercent(lower, upper);
    QTEST(tool.sizeMinPercent(), "heldLower");
    QTEST(tool.sizeMaxPercent(), "heldUpper");
    tool.setOpacityRangePercent(lower, upper);
    QTEST(tool.opacityMinPercent(), "heldLower");
    QTEST(tool.opacityMaxPercent(), "heldUpper");
}

void tst_DrawingTool::sizeLimitsAreHeldWithinBounds_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<double>("heldLower");
    QTest::addColumn<double>("heldUpper");
    QTest::newRow("inside") << 1.0 << 2.0 << 1.0 << 2.0;
    QTest::newRow("nothing is thinner than half a pixel") << 0.0 << 45.0 << 0.5 << 45.0;
    QTest::newRow("nothing is thicker than 180") << 10.0 << 200.0 << 10.0 << 180.0;
    QTest::newRow("both too small") << 0.1 << 0.2 << 0.5 << 0.5;
    QTest::newRow("crossed") << 50.0 << 20.0 << 20.0 << 20.0;
}

void tst_DrawingTool::sizeLimitsAreHeldWithinBounds()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangeLimits(lower, upper);
    QTEST(tool.sizeLowerLimit(), "heldLower");
    QTEST(tool.sizeUpperLimit(), "heldUpper");
}

void tst_DrawingTool::opacityLimitsAreHeldWithinBounds_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<double>("heldLower");
    QTest::addColumn<double>("heldUpper");
    QTest::newRow("inside") << 0.25 << 0.75 << 0.25 << 0.75;
    QTest::newRow("around") << -0.5 << 1.5 << 0.0 << 1.0;
    QTest::newRow("crossed") << 0.9 << 0.3 << 0.3 << 0.3;
}

void tst_DrawingTool::opacityLimitsAreHeldWithinBounds()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    PenTool tool(Tool::PenType::Pencil);
    tool.setOpacityRangeLimits(lower, upper);
    QTEST(tool.opacityLowerLimit(), "heldLower");
    QTEST(tool.opacityUpperLimit(), "heldUpper");
}

void tst_DrawingTool::newLimitsKeepThePercentages()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(50, 100);
    tool.setSizeRangeLimits(10, 30);
    QCOMPARE(tool.sizeMinPercent(), 50.0);
    QCOMPARE(tool.radiusBase(), 10.0);
    QCOMPARE(tool.radiusRange(), 5.0);
}

void tst_DrawingTool::changesAreToldWithTheToolsName()
{
    EraserTool tool(Tool::EraserType::VinylEraser);
    QSignalSpy sizes(&tool, &DrawingTool::sizeRangeChanged);
    QSignalSpy opacities(&tool, &DrawingTool::opacityRangeChanged);
    tool.setSizeRangePercent(-5, 60);
    QCOMPARE(sizes.size(), 1);
    QCOMPARE(sizes[0], (QVariantList{"VinylEraser", 0.0, 60.0}));
    QVERIFY(opacities.isEmpty());
    tool.setOpacityRangePercent(20, 30);
    QCOMPARE(opacities.size(), 1);
    QCOMPARE(opacities[0], (QVariantList{"VinylEraser", 20.0, 30.0}));
}

void tst_DrawingTool::decreasingMultipliesFromMinusFour()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(6, 46);
    tool.decreaseSizeRange();
    QVERIFY(isNear(tool.sizeMinPercent(), 4.0));
    QVERIFY(isNear(tool.sizeMaxPercent(), 36.0));
}

void tst_DrawingTool::increasingMultipliesFromMinusFour()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(4, 36);
    tool.increaseSizeRange();
    QVERIFY(isNear(tool.sizeMinPercent(), 6.0));
    QVERIFY(isNear(tool.sizeMaxPercent(), 46.0));
}

void tst_DrawingTool::rangeDrivenAgainstZeroSpringsBack()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(1, 20);
    for (int i = 0; i < 5; ++i)
        tool.decreaseSizeRange();
    QCOMPARE(tool.sizeMinPercent(), 0.0);
    QVERIFY(tool.incDecSizeMinPercent() < 0.0);
    for (int i = 0; i < 5; ++i)
        tool.increaseSizeRange();
    QVERIFY(isNear(tool.sizeMinPercent(), 1.0));
    QVERIFY(isNear(tool.sizeMaxPercent(), 20.0));
}

void tst_DrawingTool::rangeDrivenAgainstAHundredSpringsBack()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(30, 90);
    for (int i = 0; i < 4; ++i)
        tool.increaseSizeRange();
    QCOMPARE(tool.sizeMaxPercent(), 100.0);
    QVERIFY(isNear(tool.incDecSizeMaxPercent(), larger(larger(larger(larger(90))))));
    for (int i = 0; i < 4; ++i)
        tool.decreaseSizeRange();
    QVERIFY(isNear(tool.sizeMinPercent(), 30.0));
    QVERIFY(isNear(tool.sizeMaxPercent(), 90.0));
}

void tst_DrawingTool::decreasingStopsWhenTheUpperBoundIsZero()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(0, 3);
    // 3 -> 1.6 -> 0.48 -> -0.416: the step from 0.48 is still done, the one from below zero is not.
    for (int i = 0; i < 20; ++i)
        tool.decreaseSizeRange();
    QCOMPARE(tool.sizeMaxPercent(), 0.0);
    QVERIFY(isNear(tool.incDecSizeMaxPercent(), smaller(smaller(smaller(3)))));
    QVERIFY(isNear(tool.incDecSizeMaxPercent(), -0.416));
}

void tst_DrawingTool::increasingStopsWhenTheLowerBoundIsAHundred()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(76, 99);
    for (int i = 0; i < 20; ++i)
        tool.increaseSizeRange();
    // 76 -> 96 -> 121: the upper bound, long past 100, does not stop it, the lower one does.
    QVERIFY(isNear(tool.incDecSizeMinPercent(), 121.0));
    QVERIFY(isNear(tool.incDecSizeMaxPercent(), larger(larger(99))));
    QCOMPARE(tool.sizeMinPercent(), 100.0);
}

void tst_DrawingTool::settingARangeEndsTheStepping()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setIncDecSizeRangePercent(-3, 120);
    QCOMPARE(tool.sizeMinPercent(), 0.0);
    QCOMPARE(tool.sizeMaxPercent(), 100.0);
    QCOMPARE(tool.incDecSizeMinPercent(), -3.0);
    QCOMPARE(tool.incDecSizeMaxPercent(), 120.0);
    tool.setSizeRangePercent(40, 50);
    QCOMPARE(tool.incDecSizeMinPercent(), 40.0);
    QCOMPARE(tool.incDecSizeMaxPercent(), 50.0);
}

void tst_DrawingTool::opacityStepsLikeSize()
{
    EraserTool tool(Tool::EraserType::KneadedEraser);
    tool.setOpacityRangePercent(6, 96);
    tool.increaseOpacityRange();
    QVERIFY(isNear(tool.opacityMinPercent(), 8.5));
    QCOMPARE(tool.opacityMaxPercent(), 100.0);
    QVERIFY(isNear(tool.incDecOpacityMaxPercent(), 121.0));
    tool.decreaseOpacityRange();
    QVERIFY(isNear(tool.opacityMinPercent(), 6.0));
    QVERIFY(isNear(tool.opacityMaxPercent(), 96.0));
    tool.setOpacityRangePercent(0, 0);
    tool.decreaseOpacityRange();
    QCOMPARE(tool.incDecOpacityMaxPercent(), 0.0);
    tool.setOpacityRangePercent(100, 100);
    tool.increaseOpacityRange();
    QCOMPARE(tool.incDecOpacityMinPercent(), 100.0);
}

void tst_DrawingTool::sizeAndOpacityStepApart()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangePercent(10, 20);
    tool.setOpacityRangePercent(0, 1);
    tool.decreaseOpacityRange();
    tool.setSizeRangePercent(30, 40);
    // A change of size leaves the working values of the opacity alone.
    QVERIFY(isNear(tool.incDecOpacityMinPercent(), smaller(0)));
    tool.decreaseSizeRange();
    tool.setOpacityRangePercent(5, 6);
    QVERIFY(isNear(tool.incDecSizeMinPercent(), smaller(30)));
}

void tst_DrawingTool::cloneIsAlikeButApart()
{
    EraserTool tool(Tool::EraserType::VinylEraser);
    tool.setSizeRangeLimits(30, 180);
    tool.setIncDecSizeRangePercent(-2, 47);
    tool.setOpacityRangeLimits(0.5, 1);
    tool.setOpacityRangePercent(60, 70);
    tool.setMode(2);

    const std::unique_ptr<Tool> clone = tool.clone();
    auto *copy = qobject_cast<EraserTool *>(clone.get());
    QVERIFY(copy);
    QCOMPARE(copy->eraserType(), Tool::EraserType::VinylEraser);
    QCOMPARE(copy->mode(), 2);
    QCOMPARE(copy->radiusBase(), tool.radiusBase());
    QCOMPARE(copy->radiusRange(), tool.radiusRange());
    QCOMPARE(copy->opacityBase(), tool.opacityBase());
    QCOMPARE(copy->opacityRange(), tool.opacityRange());
    QCOMPARE(copy->sizeUpperLimit(), 180.0);
    QCOMPARE(copy->incDecSizeMinPercent(), -2.0);

    copy->setSizeRangePercent(1, 2);
    QCOMPARE(tool.sizeMaxPercent(), 47.0);
}

void tst_DrawingTool::needsNoGuiWithoutACursor()
{
    QVERIFY(!qobject_cast<QGuiApplication *>(QCoreApplication::instance()));
    PenTool tool(Tool::PenType::Marker);
    tool.setSizeRangePercent(1, 2);
    tool.setViewScale(3.0);
    tool.updateCursor();
    QCOMPARE(tool.viewScale(), 3.0);
}

QTEST_GUILESS_MAIN(tst_DrawingTool)
#include "tst_drawingtool.moc"
