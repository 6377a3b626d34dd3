#include "libmodel/layers/referencelayer.h"
#include "libmodel/tools/drawingtool.h"
#include "libmodel/tools/fixedcursortools.h"
#include "libmodel/tools/penadjustmenttool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "paperhand.h"
#include "support/glfixture.h"

#include <QApplication>
#include <QPainterPath>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <numbers>

using Model::Tool;
using TestSupport::Hand;
using TestSupport::PaperStage;

namespace {

void addDevices()
{
    QTest::addColumn<bool>("pen");
    QTest::addRow("pen") << true;
    QTest::addRow("mouse") << false;
}

template<typename ToolClass>
ToolClass *toolOf(Tool::Type type)
{
    return qobject_cast<ToolClass *>(Model::ToolManager::instance()->tool(type));
}

} // namespace

/// Lasso, scrub and the adjusting of pens.
class tst_PaperDrags : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void lassoGivesTheEncircledArea_data();
    void lassoGivesTheEncircledArea();
    void lassoOnATurnedViewIsInPaperCoordinates();
    void tapWithTheLassoIsToldToo();
    void lassoNeedsASceneAndInput();
    void lassoBeginsOnlyOnStrokesThatAreShown_data();
    void lassoBeginsOnlyOnStrokesThatAreShown();
    void scrubGoesAFrameForSixteenPixels_data() { addDevices(); }
    void scrubGoesAFrameForSixteenPixels();
    void scrubPastTheLimitsIsShownAndHeldAtTheRelease();
    void scrubsGoOnFromEachOtherAndBeginAnewWithTheTool();
    void scrubBeginsAnewWithTheScene();
    void scrubShowsItsCursorAtThePress();
    void ctrlPressAdjustsThePen_data() { addDevices(); }
    void ctrlPressAdjustsThePen();
    void adjustingUpwardsChangesTheOpacity();
    void tremorAdjustsNothing();
    void heldPenIsNotAdjusted();
    void eraserIsAdjustedAndComesBack();
};

void tst_PaperDrags::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperDrags::cleanup()
{
    auto *tools = Model::ToolManager::instance();
    tools->resetDrawingToolSettings();
    tools->resetErasingToolSettings();
    tools->setCurrentTool(Tool::Type::Pen, 0);
}

void tst_PaperDrags::lassoGivesTheEncircledArea_data()
{
    QTest::addColumn<bool>("pen");
    QTest::addColumn<bool>("cuts");
    QTest::addRow("lasso, pen") << true << false;
    QTest::addRow("lasso, mouse") << false << false;
    QTest::addRow("cutter, pen") << true << true;
    QTest::addRow("cutter, mouse") << false << true;
}

void tst_PaperDrags::lassoGivesTheEncircledArea()
{
    QFETCH(bool, pen);
    QFETCH(bool, cuts);
    PaperStage stage;
    stage.useTool(cuts ? Tool::Type::Cutter : Tool::Type::Lasso);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    Hand hand(stage, pen);
    const auto place = [](int i) {
        const double angle = 2.0 * std::numbers::pi * i / 48;
        return QPointF(250 + 60 * std::cos(angle), 200 + 60 * std::sin(angle));
    };
    hand.press(place(0));
    for (int i = 1; i <= 48; ++i)
        hand.move(place(i));
    QCOMPARE(completed.count(), 0);
    hand.release(place(48));
    QCOMPARE(completed.count(), 1);
    QCOMPARE(completed.first().at(1).toBool(), cuts);
    const auto path = completed.first().at(0).value<QPainterPath>();
    // The sheet's top left is at (50, 50): the circle is about (200, 150) on the paper.
    QVERIFY(path.contains(QPointF(200, 150)));
    QVERIFY(path.contains(QPointF(200, 100)));
    QVERIFY(path.contains(QPointF(250, 150)));
    QVERIFY(!path.contains(QPointF(200, 80)));
    QVERIFY(!path.contains(QPointF(270, 150)));
    QVERIFY(stage.strokes.empty());
}

void tst_PaperDrags::lassoOnATurnedViewIsInPaperCoordinates()
{
    PaperStage stage;
    stage.paper->setZoomLevel(2.0);
    stage.paper->rotatePaperTo(50.0);
    stage.paper->setMirrorView(true);
    stage.useTool(Tool::Type::Lasso);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    std::vector<QPointF> way;
    for (const QPointF corner : {QPointF(160, 120), QPointF(240, 120), QPointF(240, 180), QPointF(160, 180)})
        way.push_back(stage.toWidget(corner));
    stage.penPress(way[0]);
    for (std::size_t i = 1; i < way.size(); ++i) {
        for (int step = 1; step <= 10; ++step)
            stage.penMove(way[i - 1] + 0.1 * step * (way[i] - way[i - 1]));
    }
    stage.penRelease(way.back());
    const QRectF bounds = completed.first().at(0).value<QPainterPath>().boundingRect();
    QVERIFY(QRectF(145, 105, 110, 90).contains(bounds));
    QVERIFY(bounds.contains(QRectF(165, 125, 70, 50)));
}

void tst_PaperDrags::tapWithTheLassoIsToldToo()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Lasso);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    stage.penPress({250, 200});
    stage.penRelease({250, 200});
    QCOMPARE(completed.count(), 1);
    const QRectF bounds = completed.first().at(0).value<QPainterPath>().boundingRect();
    QVERIFY(bounds.width() * bounds.height() < 1.0);
}

void tst_PaperDrags::lassoNeedsASceneAndInput()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Lasso);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    Hand hand(stage, true);
    {
        const UI::InputSuspension suspension;
        hand.drag({200, 200}, {260, 240});
    }
    stage.paper->setCurrentScene(nullptr);
    hand.drag({200, 200}, {260, 240});
    QCOMPARE(completed.count(), 0);
    stage.paper->setCurrentScene(stage.mrScene.get());
    hand.drag({200, 200}, {260, 240});
    QCOMPARE(completed.count(), 1);
}

void tst_PaperDrags::lassoBeginsOnlyOnStrokesThatAreShown_data()
{
    QTest::addColumn<bool>("isReference");
    QTest::addColumn<Tool::Type>("tool");
    QTest::newRow("lasso, hidden") << false << Tool::Type::Lasso;
    QTest::newRow("lasso, pictures") << true << Tool::Type::Lasso;
    QTest::newRow("cutter, hidden") << false << Tool::Type::Cutter;
    QTest::newRow("cutter, pictures") << true << Tool::Type::Cutter;
}

void tst_PaperDrags::lassoBeginsOnlyOnStrokesThatAreShown()
{
    QFETCH(bool, isReference);
    QFETCH(Tool::Type, tool);
    PaperStage stage;
    stage.useTool(tool);
    if (isReference) {
        const int layerIdx = stage.scene()->insertLayer(
            std::make_shared<Model::ReferenceLayer>(stage.scene()->frameSize()), stage.scene()->layerCount());
        stage.scene()->setActiveFrameAndLayer(1, layerIdx, Model::Scene::KeepFrameOnDrawing);
    } else {
        stage.scene()->setLayerVisible(0, false);
    }
    const QSignalSpy edits(stage.paper.get(), &UI::Paper::aboutToBeginEdit);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    Hand hand(stage, true);
    hand.press({200, 200});
    QVERIFY(!stage.paper->isPickingUp());
    QCOMPARE(stage.paper->cursor().shape(), Qt::ForbiddenCursor);
    hand.move({240, 220});
    hand.release({240, 240});
    QCOMPARE(edits.count(), 0);
    QCOMPARE(completed.count(), 0);
    // Another tool is not in the way of anything.
    stage.useTool(Tool::Type::Pen);
    QVERIFY(stage.paper->cursor().shape() != Qt::ForbiddenCursor);
    stage.useTool(tool);
    stage.scene()->setLayerVisible(0, true);
    stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    hand.drag({200, 200}, {260, 240});
    QCOMPARE(completed.count(), 1);
    QVERIFY(stage.paper->cursor().shape() != Qt::ForbiddenCursor);
}

void tst_PaperDrags::scrubGoesAFrameForSixteenPixels()
{
    QFETCH(bool, pen);
    PaperStage stage;
    stage.paper->setMinMaxScrubOffset(-20, 20);
    stage.useTool(Tool::Type::Scrubbing);
    const QSignalSpy offsets(stage.paper.get(), &UI::Paper::scrubOffsetChanged);
    Hand hand(stage, pen);
    hand.press({200, 200});
    QCOMPARE(offsets.count(), 0);
    hand.move({215, 200});
    QCOMPARE(offsets.count(), 0);
    hand.move({216, 200});
    QCOMPARE(offsets.count(), 1);
    QCOMPARE(offsets.last().first().toInt(), 1);
    hand.move({216, 232});
    QCOMPARE(offsets.last().first().toInt(), 3);
    hand.move({199, 200});
    QCOMPARE(offsets.last().first().toInt(), -1);
    hand.release({199, 200});
    QCOMPARE(offsets.count(), 3);
}

void tst_PaperDrags::scrubPastTheLimitsIsShownAndHeldAtTheRelease()
{
    PaperStage stage;
    stage.paper->setMinMaxScrubOffset(-2, 4);
    stage.useTool(Tool::Type::Scrubbing);
    const QSignalSpy offsets(stage.paper.get(), &UI::Paper::scrubOffsetChanged);
    Hand hand(stage, true);
    hand.press({100, 200});
    hand.move({100 + 160, 200});
    QCOMPARE(offsets.last().first().toInt(), 10);
    hand.release({100 + 160, 200});
    QCOMPARE(offsets.last().first().toInt(), 4);
    hand.drag({100, 200}, {100, 200 - 160});
    QCOMPARE(offsets.at(offsets.count() - 2).first().toInt(), -6);
    QCOMPARE(offsets.last().first().toInt(), -2);
}

void tst_PaperDrags::scrubsGoOnFromEachOtherAndBeginAnewWithTheTool()
{
    PaperStage stage;
    stage.paper->setMinMaxScrubOffset(-50, 50);
    stage.useTool(Tool::Type::Scrubbing);
    const QSignalSpy offsets(stage.paper.get(), &UI::Paper::scrubOffsetChanged);
    Hand hand(stage, true);
    hand.drag({100, 200}, {148, 200});
    hand.drag({100, 200}, {132, 200});
    QCOMPARE(offsets.last().first().toInt(), 5);
    stage.useTool(Tool::Type::Pen);
    stage.useTool(Tool::Type::Scrubbing);
    hand.drag({100, 200}, {116, 200});
    QCOMPARE(offsets.last().first().toInt(), 1);
}

void tst_PaperDrags::scrubBeginsAnewWithTheScene()
{
    PaperStage stage;
    stage.paper->setMinMaxScrubOffset(-50, 50);
    stage.useTool(Tool::Type::Scrubbing);
    const QSignalSpy offsets(stage.paper.get(), &UI::Paper::scrubOffsetChanged);
    Hand hand(stage, true);
    hand.drag({100, 200}, {180, 200});
    QCOMPARE(offsets.last().first().toInt(), 5);
    Model::MRScene other;
    stage.paper->setCurrentScene(&other);
    hand.drag({100, 200}, {116, 200});
    QCOMPARE(offsets.last().first().toInt(), 1);
    stage.paper->setCurrentScene(stage.mrScene.get());
}

void tst_PaperDrags::scrubShowsItsCursorAtThePress()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Scrubbing);
    auto *tool = toolOf<Model::ScrubbingTool>(Tool::Type::Scrubbing);
    const QImage own = tool->cursor().pixmap().toImage();
    QVERIFY(stage.paper->cursor().pixmap().toImage() != own);
    Hand hand(stage, true);
    hand.press({200, 200});
    QCOMPARE(stage.paper->cursor().pixmap().toImage(), own);
    QVERIFY(tool->isDragging());
    hand.release({200, 200});
    QVERIFY(!tool->isDragging());
}

void tst_PaperDrags::ctrlPressAdjustsThePen()
{
    QFETCH(bool, pen);
    PaperStage stage;
    auto *tools = Model::ToolManager::instance();
    auto *drawing = toolOf<Model::DrawingTool>(Tool::Type::Pen);
    drawing->setSizeRangePercent(6.0, 16.0);
    const double opacity = drawing->opacityMaxPercent();
    Hand hand(stage, pen);
    hand.press({200, 200}, Qt::ControlModifier);
    QCOMPARE(tools->currentToolType(), Tool::Type::PenAdjustment);
    QVERIFY(!stage.scene()->hasActiveStroke());
    hand.move({220, 203});
    // 20 to the right are two steps of 1.25: (6 + 4) * 1.5625 - 4 and (16 + 4) * 1.5625 - 4.
    QVERIFY(std::abs(drawing->sizeMinPercent() - 11.625) < 1e-6);
    QVERIFY(std::abs(drawing->sizeMaxPercent() - 27.25) < 1e-6);
    QCOMPARE(drawing->opacityMaxPercent(), opacity);
    QCOMPARE(tools->currentToolMode(), Model::PenAdjustmentTool::sizeMode);
    hand.release({220, 203});
    QCOMPARE(tools->currentToolType(), Tool::Type::Pen);
    QCOMPARE(tools->currentToolMode(), 0);
    QVERIFY(std::abs(drawing->sizeMaxPercent() - 27.25) < 1e-6);
    QVERIFY(stage.strokes.empty());
    // And the pen draws again.
    hand.drag({200, 200}, {240, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
}

void tst_PaperDrags::adjustingUpwardsChangesTheOpacity()
{
    PaperStage stage;
    auto *drawing = toolOf<Model::DrawingTool>(Tool::Type::Pen);
    drawing->setSizeRangePercent(10.0, 20.0);
    drawing->setOpacityRangePercent(6.0, 46.0);
    Hand hand(stage, true);
    hand.press({200, 200}, Qt::ControlModifier);
    hand.move({203, 180});
    QVERIFY(std::abs(drawing->opacityMinPercent() - 11.625) < 1e-6);
    QVERIFY(std::abs(drawing->opacityMaxPercent() - 74.125) < 1e-6);
    QCOMPARE(drawing->sizeMaxPercent(), 20.0);
    hand.release({203, 180});
}

void tst_PaperDrags::tremorAdjustsNothing()
{
    PaperStage stage;
    auto *drawing = toolOf<Model::DrawingTool>(Tool::Type::Pen);
    const double before = drawing->sizeMaxPercent();
    Hand hand(stage, true);
    hand.press({200, 200}, Qt::ControlModifier);
    hand.move({200 + QApplication::startDragDistance() - 1.0, 200});
    QCOMPARE(drawing->sizeMaxPercent(), before);
    QCOMPARE(Model::ToolManager::instance()->currentToolMode(), 0);
    hand.release({200, 200});
    QCOMPARE(Model::ToolManager::instance()->currentToolType(), Tool::Type::Pen);
}

void tst_PaperDrags::heldPenIsNotAdjusted()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Pen, 1);
    Hand hand(stage, true);
    hand.press({200, 200}, Qt::ControlModifier);
    QCOMPARE(Model::ToolManager::instance()->currentToolType(), Tool::Type::Pen);
    hand.release({200, 200});
    stage.useTool(Tool::Type::Pen, 0);
    const UI::InputSuspension suspension;
    hand.press({200, 200}, Qt::ControlModifier);
    QCOMPARE(Model::ToolManager::instance()->currentToolType(), Tool::Type::Pen);
    hand.release({200, 200});
}

void tst_PaperDrags::eraserIsAdjustedAndComesBack()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Eraser);
    auto *eraser = toolOf<Model::DrawingTool>(Tool::Type::Eraser);
    eraser->setSizeRangePercent(16.0, 26.0);
    Hand hand(stage, false);
    hand.press({200, 200}, Qt::ControlModifier);
    hand.move({190, 200});
    QVERIFY(std::abs(eraser->sizeMinPercent() - 12.0) < 1e-6);
    QVERIFY(std::abs(eraser->sizeMaxPercent() - 20.0) < 1e-6);
    hand.release({190, 200});
    QCOMPARE(Model::ToolManager::instance()->currentToolType(), Tool::Type::Eraser);
}

QTEST_MAIN(tst_PaperDrags)
#include "tst_paperdrags.moc"
