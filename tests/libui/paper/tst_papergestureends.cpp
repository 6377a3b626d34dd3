#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/tools/fixedcursortools.h"
#include "libmodel/tools/floatingselectiontool.h"
#include "libmodel/tools/penadjustmenttool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/viewzones.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QDialog>
#include <QFocusEvent>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

/// A gesture under way, and how it is lost.
struct Gesture
{
    const char *name;
    Tool::Type tool;
    QPointF press;
    Qt::KeyboardModifiers modifiers;
};

const Gesture gestures[] = {
    {"stroke", Tool::Type::Pen, {240, 210}, {}},
    {"erasing", Tool::Type::Eraser, {240, 210}, {}},
    {"adjusting the pen", Tool::Type::Pen, {240, 210}, Qt::ControlModifier},
    {"pan", Tool::Type::Hand, {240, 210}, {}},
    {"zoom", Tool::Type::Zoom, {240, 210}, {}},
    {"rotation", Tool::Type::Rotate, {240, 250}, {}},
    {"zpr", Tool::Type::ZPR, {240, 210}, {}},
    {"off pegs", Tool::Type::OffPegs, {240, 210}, {}},
    {"turning off pegs", Tool::Type::OffPegs, {20, 210}, {}},
    {"button", Tool::Type::OffPegs, {250, 360}, {}},
    {"lasso", Tool::Type::Lasso, {240, 210}, {}},
    {"cutter", Tool::Type::Cutter, {240, 210}, {}},
    {"floating selection", Tool::Type::FloatingSelection, {250, 200}, {}},
    {"scrub", Tool::Type::Scrubbing, {240, 210}, {}},
};

struct Loss
{
    const char *name;
    std::function<void(PaperStage &)> strike;
};

const std::vector<Loss> &losses()
{
    static const std::vector<Loss> all = {
        {"focus",
         [](PaperStage &stage) {
             QFocusEvent out(QEvent::FocusOut);
             QCoreApplication::sendEvent(stage.paper.get(), &out);
         }},
        {"hidden", [](PaperStage &stage) { stage.paper->hide(); }},
        {"window",
         [](PaperStage &stage) {
             QEvent deactivate(QEvent::WindowDeactivate);
             QCoreApplication::sendEvent(stage.paper.get(), &deactivate);
         }},
        {"dialog",
         [](PaperStage &) {
             QDialog dialog;
             dialog.setModal(true);
             dialog.show();
             QCoreApplication::processEvents();
         }},
        {"release",
         [](PaperStage &stage) {
             stage.hover({260, 230});
         }},
        {"scene", [](PaperStage &stage) { stage.paper->setCurrentScene(nullptr); }},
        {"tool", [](PaperStage &stage) { stage.useTool(Tool::Type::Zoom, 7); }},
    };
    return all;
}

void loseFocus(PaperStage &stage)
{
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(stage.paper.get(), &out);
}

std::unique_ptr<Model::Stroke> block(const QRect &rect)
{
    QImage image(rect.size(), QImage::Format_Alpha8);
    image.fill(255);
    return std::make_unique<Model::BitmapStroke>(image, rect);
}

} // namespace

/// However a gesture ends, nothing of it is left.
class tst_PaperGestureEnds : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void lostGestureLeavesNothingBehind_data();
    void lostGestureLeavesNothingBehind();
    void lostDragOfTheFrameIsTold();
    void lostLassoIsDropped();
    void lassoIsFinishedByAPenThatLeavesTheRange();
    void lostPushOfTheButtonPutsNothingBack();
    void settledDragIsToldOnce();
    void settlingLeavesOtherGesturesAlone();
    void gesturesOfASceneThatGoesAreNotTold_data();
    void gesturesOfASceneThatGoesAreNotTold();
    void nothingIsLeftOfASceneThatWasDeleted_data();
    void nothingIsLeftOfASceneThatWasDeleted();
    void otherToolTakenUpWhileAdjustingStays();
    void toolChangeInTheMiddleLeavesTheContactWithoutWork();
};

void tst_PaperGestureEnds::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperGestureEnds::cleanup()
{
    Model::ToolManager::instance()->resetDrawingToolSettings();
}

void tst_PaperGestureEnds::lostGestureLeavesNothingBehind_data()
{
    QTest::addColumn<int>("gesture");
    QTest::addColumn<int>("loss");
    for (int gesture = 0; gesture < int(std::size(gestures)); ++gesture) {
        for (int loss = 0; loss < int(losses().size()); ++loss)
            QTest::addRow("%s, %s", gestures[gesture].name, losses()[size_t(loss)].name) << gesture << loss;
    }
}

void tst_PaperGestureEnds::lostGestureLeavesNothingBehind()
{
    QFETCH(int, gesture);
    QFETCH(int, loss);
    const Gesture &what = gestures[gesture];
    const Loss &how = losses()[size_t(loss)];
    const bool changesTool = QLatin1String(how.name) == QLatin1String("tool");
    PaperStage stage;
    connect(stage.paper.get(), &UI::Paper::offPegsTransformChanged, stage.paper.get(),
            [&](const QTransform &transform) { stage.scene()->setCurrentDrawingOffPegsTransform(transform); });
    if (QLatin1String(what.name) == QLatin1String("button"))
        stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.mrScene->setFloatingSelection(Model::FloatingSelection(block({120, 80, 160, 140}), {400, 300}));
    stage.useTool(what.tool);
    stage.mousePress(what.press, Qt::LeftButton, what.modifiers);
    stage.mouseMove(what.press + QPointF(9, 11));
    stage.mouseMove(what.press + QPointF(18, 25));
    QVERIFY(stage.paper->isDevicePressed());
    how.strike(stage);

    // A contact whose tool was changed is still down, without work.
    QCOMPARE(stage.paper->isDevicePressed(), changesTool);
    QVERIFY(!stage.scene()->hasActiveStroke());
    auto *tools = Model::ToolManager::instance();
    QVERIFY(tools->currentToolType() != Tool::Type::PenAdjustment);
    QCOMPARE(tools->currentToolType(), changesTool ? Tool::Type::Zoom : what.tool);
    const auto *scrubbing = qobject_cast<Model::ScrubbingTool *>(tools->tool(Tool::Type::Scrubbing));
    QVERIFY(!scrubbing->isDragging());
    // No move and no release goes on with it.
    const QTransform view = stage.paper->view().widgetToPaper();
    const size_t strokes = stage.strokes.size();
    const QSignalSpy lassos(stage.paper.get(), &UI::Paper::lassoingCompleted);
    const QSignalSpy scrubs(stage.paper.get(), &UI::Paper::scrubOffsetChanged);
    const QSignalSpy frames(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QSignalSpy selections(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    stage.mouseMove({310, 130});
    stage.mouseRelease({310, 130});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    QCOMPARE(stage.strokes.size(), strokes);
    QCOMPARE(lassos.count() + scrubs.count() + frames.count() + selections.count(), 0);
    QVERIFY(!stage.paper->isDevicePressed());

    // And what comes next works.
    stage.paper->show();
    stage.paper->setCurrentScene(stage.mrScene.get());
    stage.useTool(Tool::Type::Pen, 0);
    stage.pause(2000);
    stage.penLine({{200, 200}, {240, 210}});
    QCOMPARE(stage.strokes.size(), strokes + 1);
    QVERIFY(stage.strokes.back());
}

void tst_PaperGestureEnds::lostDragOfTheFrameIsTold()
{
    PaperStage stage;
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    stage.penPress({250, 210});
    stage.penMove({270, 230});
    loseFocus(stage);
    QCOMPARE(told.count(), 1);
    QCOMPARE(told.first().first().value<QTransform>(), QTransform::fromTranslate(-20, -20));
}

void tst_PaperGestureEnds::lostLassoIsDropped()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Lasso);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    stage.penPress({250, 210});
    stage.penMove({270, 230});
    const QImage before = stage.repainted();
    loseFocus(stage);
    QCOMPARE(completed.count(), 0);
    QVERIFY(stage.repainted() != before);
    stage.penRelease({270, 230});
    QCOMPARE(completed.count(), 0);
}

void tst_PaperGestureEnds::lassoIsFinishedByAPenThatLeavesTheRange()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Lasso);
    const QSignalSpy completed(stage.paper.get(), &UI::Paper::lassoingCompleted);
    stage.penPress({250, 210});
    stage.penMove({270, 230});
    stage.penLeavesRange();
    QCOMPARE(completed.count(), 1);
    stage.penRelease({270, 230});
    QCOMPARE(completed.count(), 1);
}

void tst_PaperGestureEnds::lostPushOfTheButtonPutsNothingBack()
{
    PaperStage stage;
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    stage.penPress(UI::ViewZones(stage.paper->view().usableRect(), 1.0).button().center());
    loseFocus(stage);
    QCOMPARE(told.count(), 0);
    QVERIFY(stage.paper->view().isOffPegs());
}

void tst_PaperGestureEnds::settledDragIsToldOnce()
{
    PaperStage stage;
    stage.mrScene->setFloatingSelection(Model::FloatingSelection(block({120, 80, 160, 140}), {400, 300}));
    const QSignalSpy frames(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QSignalSpy selections(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    for (const auto type : {Tool::Type::OffPegs, Tool::Type::FloatingSelection}) {
        stage.useTool(type);
        stage.pause(2000);
        stage.penPress({220, 240});
        stage.penMove({240, 250});
        stage.paper->settleEdits();
        QVERIFY(stage.paper->isDevicePressed());
        const int told = int(frames.count() + selections.count());
        stage.penMove({280, 290});
        stage.penRelease({280, 290});
        stage.paper->settleEdits();
        QCOMPARE(int(frames.count() + selections.count()), told);
    }
    QCOMPARE(frames.count(), 1);
    QCOMPARE(selections.count(), 1);
}

void tst_PaperGestureEnds::settlingLeavesOtherGesturesAlone()
{
    PaperStage stage;
    stage.penPress({200, 200});
    stage.paper->settleEdits();
    QVERIFY(stage.scene()->hasActiveStroke());
    stage.penRelease({200, 200});
    stage.useTool(Tool::Type::Hand);
    stage.pause(2000);
    const QPointF held = stage.toPaper({220, 240});
    stage.penPress({220, 240});
    stage.paper->settleEdits();
    stage.penMove({240, 250});
    QVERIFY(QLineF(stage.toWidget(held), {240, 250}).length() < 1e-6);
    stage.penRelease({240, 250});
}

void tst_PaperGestureEnds::gesturesOfASceneThatGoesAreNotTold_data()
{
    QTest::addColumn<int>("tool");
    QTest::addRow("off pegs") << int(Tool::Type::OffPegs);
    QTest::addRow("lasso") << int(Tool::Type::Lasso);
    QTest::addRow("floating selection") << int(Tool::Type::FloatingSelection);
}

void tst_PaperGestureEnds::gesturesOfASceneThatGoesAreNotTold()
{
    QFETCH(int, tool);
    PaperStage stage;
    stage.mrScene->setFloatingSelection(Model::FloatingSelection(block({120, 80, 160, 140}), {400, 300}));
    stage.useTool(static_cast<Tool::Type>(tool));
    const QSignalSpy frames(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QSignalSpy lassos(stage.paper.get(), &UI::Paper::lassoingCompleted);
    const QSignalSpy selections(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    stage.penPress({250, 200});
    stage.penMove({270, 230});
    Model::MRScene other;
    stage.paper->setCurrentScene(&other);
    QCOMPARE(frames.count() + lassos.count() + selections.count(), 0);
    QVERIFY(!stage.paper->view().isOffPegs());
    stage.paper->setCurrentScene(stage.mrScene.get());
}

void tst_PaperGestureEnds::nothingIsLeftOfASceneThatWasDeleted_data()
{
    QTest::addColumn<int>("gesture");
    for (int gesture = 0; gesture < int(std::size(gestures)); ++gesture)
        QTest::addRow("%s", gestures[gesture].name) << gesture;
}

void tst_PaperGestureEnds::nothingIsLeftOfASceneThatWasDeleted()
{
    QFETCH(int, gesture);
    const Gesture &what = gestures[gesture];
    PaperStage stage;
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.mrScene->setFloatingSelection(Model::FloatingSelection(block({120, 80, 160, 140}), {400, 300}));
    stage.useTool(what.tool);
    const QSignalSpy strokes(stage.paper.get(), &UI::Paper::strokeEnded);
    const QSignalSpy lassos(stage.paper.get(), &UI::Paper::lassoingCompleted);
    const QSignalSpy frames(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QSignalSpy selections(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    stage.mousePress(what.press, Qt::LeftButton, what.modifiers);
    stage.mouseMove(what.press + QPointF(9, 11));
    stage.mrScene.reset();

    QCOMPARE(strokes.count() + lassos.count() + frames.count() + selections.count(), 0);
    QVERIFY(!stage.paper->isDevicePressed());
    QVERIFY(!stage.paper->view().isOffPegs());
    stage.mouseRelease({310, 130});
    auto *tools = Model::ToolManager::instance();
    stage.useTool(Tool::Type::FloatingSelection);
    stage.hover({250, 230});
    const auto *selecting = qobject_cast<Model::FloatingSelectionTool *>(tools->tool(Tool::Type::FloatingSelection));
    QCOMPARE(selecting->cursorType(), Model::FloatingSelectionTool::FSCursorType::Stamp);
    QImage white = stage.repainted();
    white.fill(Qt::white);
    QCOMPARE(stage.repainted(), white);
}

void tst_PaperGestureEnds::otherToolTakenUpWhileAdjustingStays()
{
    PaperStage stage;
    auto *tools = Model::ToolManager::instance();
    stage.penPress({200, 200}, 0.7, Qt::ControlModifier);
    QCOMPARE(tools->currentToolType(), Tool::Type::PenAdjustment);
    stage.useTool(Tool::Type::Rotate);
    stage.penMove({260, 200});
    stage.penRelease({260, 200});
    QCOMPARE(tools->currentToolType(), Tool::Type::Rotate);
    const auto *adjusting = qobject_cast<Model::PenAdjustmentTool *>(tools->tool(Tool::Type::PenAdjustment));
    QVERIFY(!adjusting->drawingTool());
}

void tst_PaperGestureEnds::toolChangeInTheMiddleLeavesTheContactWithoutWork()
{
    PaperStage stage;
    stage.penPress({200, 200});
    stage.penMove({230, 200});
    stage.useTool(Tool::Type::Hand);
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(stage.strokes[0]);
    const QTransform view = stage.paper->view().widgetToPaper();
    stage.penMove({280, 240});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    stage.useTool(Tool::Type::Pen);
    stage.penMove({290, 240});
    QVERIFY(!stage.scene()->hasActiveStroke());
    stage.penRelease({290, 240});
    QCOMPARE(stage.strokes.size(), size_t(1));
}

QTEST_MAIN(tst_PaperGestureEnds)
#include "tst_papergestureends.moc"
