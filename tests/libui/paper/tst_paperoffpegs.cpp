#include "libmodel/base/settings.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/tools/offpegstool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/viewzones.h"
#include "paperhand.h"
#include "support/glfixture.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLineF>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <algorithm>
#include <cmath>

using Model::Tool;
using TestSupport::addDevices;
using TestSupport::answerOffPegs;
using TestSupport::Hand;
using TestSupport::isNear;
using TestSupport::PaperStage;
using TestSupport::toolOf;

namespace {

UI::ViewZones zonesOf(const PaperStage &stage)
{
    return {stage.paper->view().usableRect(), 1.0};
}

} // namespace

/// Frames off their pegs, under pen and mouse.
class tst_PaperOffPegs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void offPegsDragMovesTheFrame_data() { addDevices(); }
    void offPegsDragMovesTheFrame();
    void offPegsDragOutsideTheEllipseTurnsTheFrame();
    void offPegsDragOnAMirroredViewTurnsAlong();
    void offPegsButtonPutsTheFrameBack_data() { addDevices(); }
    void offPegsButtonPutsTheFrameBack();
    void releaseOutsideOfTheButtonDoesNothing();
    void buttonIsNoneOnThePegs();
    void offPegsCursorFollowsTheZones();
    void buttonHasAToolTip();
    void toolTipLeavesTheButtonInSight_data();
    void toolTipLeavesTheButtonInSight();
    void buttonFollowsTheInterfaceScale();
    void nothingIsTakenOffBehindTheLastCell();
    void suspendedInputLeavesTheFrame();
    void sceneHasTheLastWordOnThePegs();
    void frameThatAnotherLayerTookOffIsPutBack();
    void frameMovedDuringADragGoesOnFromThere();
    void viewChangedDuringADragKeepsWhatIsHeld_data();
    void viewChangedDuringADragKeepsWhatIsHeld();
    void frameStepShowsThatFramesPegs();
};

void tst_PaperOffPegs::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperOffPegs::offPegsDragMovesTheFrame()
{
    QFETCH(bool, pen);
    PaperStage stage;
    answerOffPegs(stage);
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QPointF held = stage.toPaper({250, 210});
    Hand hand(stage, pen);
    hand.press({250, 210});
    hand.move({270, 230});
    QCOMPARE(told.count(), 0);
    QVERIFY(isNear(stage.toWidget(held), {270, 230}));
    hand.release({270, 230});
    QCOMPARE(told.count(), 1);
    QVERIFY(isNear(stage.toWidget(held), {270, 230}));
    // At 100 percent: the frame went 20 right and down, so paper coordinates are the desk's less that.
    QVERIFY(isNear(stage.scene()->offPegsTransformOfFrame(1).map(QPointF(100, 100)), {80, 80}));
    // A stroke lands where it is seen.
    stage.useTool(Tool::Type::Pen);
    stage.penLine({{200, 200}, {230, 200}});
    QVERIFY(isNear(stage.strokes.back()->samples().front().point, {130, 130}));
}

void tst_PaperOffPegs::offPegsDragOutsideTheEllipseTurnsTheFrame()
{
    PaperStage stage;
    answerOffPegs(stage);
    stage.useTool(Tool::Type::OffPegs);
    const QPointF held = stage.toPaper({450, 200});
    const QPointF middle = stage.toPaper({250, 200});
    Hand(stage, true).drag({450, 200}, {250, 20});
    // A quarter counter-clockwise: what was 200 right of the centre is 200 above it.
    QVERIFY(isNear(stage.toWidget(held), {250, 0}));
    QVERIFY(isNear(stage.toWidget(middle), {250, 200}));
    QVERIFY(std::abs(stage.paper->view().rotation()) < 1e-9);
}

void tst_PaperOffPegs::offPegsDragOnAMirroredViewTurnsAlong()
{
    PaperStage stage;
    answerOffPegs(stage);
    stage.paper->setMirrorView(true);
    stage.useTool(Tool::Type::OffPegs);
    const QPointF held = stage.toPaper({450, 200});
    Hand(stage, true).drag({450, 200}, {250, 20});
    QVERIFY(isNear(stage.toWidget(held), {250, 0}));
}

void tst_PaperOffPegs::offPegsButtonPutsTheFrameBack()
{
    QFETCH(bool, pen);
    PaperStage stage;
    answerOffPegs(stage);
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    QVERIFY(stage.paper->view().isOffPegs());
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QPointF button = zonesOf(stage).button().center();
    Hand hand(stage, pen);
    hand.press(button);
    QVERIFY(stage.paper->view().isOffPegs());
    hand.release(button + QPointF(2, 1));
    QCOMPARE(told.count(), 1);
    QVERIFY(told.first().first().value<QTransform>().isIdentity());
    QVERIFY(!stage.paper->view().isOffPegs());
    QVERIFY(stage.scene()->offPegsTransformOfFrame(1).isIdentity());
}

void tst_PaperOffPegs::releaseOutsideOfTheButtonDoesNothing()
{
    PaperStage stage;
    answerOffPegs(stage);
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QPointF button = zonesOf(stage).button().center();
    const QTransform before = stage.paper->view().widgetToPaper();
    Hand hand(stage, false);
    hand.press(button);
    hand.move({250, 150});
    hand.release({250, 150});
    QCOMPARE(told.count(), 0);
    QVERIFY(stage.paper->view().widgetToPaper() == before);
    QCOMPARE(toolOf<Model::OffPegsTool>(Tool::Type::OffPegs)->cursorType(), Model::OffPegsTool::OPCursorType::Pan);
    // Back on it before the release, it counts.
    hand.press(button);
    hand.move({250, 150});
    hand.release(button);
    QCOMPARE(told.count(), 1);
}

void tst_PaperOffPegs::buttonIsNoneOnThePegs()
{
    PaperStage stage;
    answerOffPegs(stage);
    stage.useTool(Tool::Type::OffPegs);
    const QPointF button = zonesOf(stage).button().center();
    const QPointF held = stage.toPaper(button);
    // It turns, as everywhere outside of the ellipse.
    Hand(stage, false).drag(button, {450, 200});
    QVERIFY(stage.paper->view().isOffPegs());
    const double arm = QLineF({250, 200}, button).length();
    QVERIFY(isNear(stage.toWidget(held), {250 + arm, 200}));
}

void tst_PaperOffPegs::offPegsCursorFollowsTheZones()
{
    using Cursor = Model::OffPegsTool::OPCursorType;
    PaperStage stage;
    stage.useTool(Tool::Type::OffPegs);
    const auto *tool = toolOf<Model::OffPegsTool>(Tool::Type::OffPegs);
    const QPointF button = zonesOf(stage).button().center();
    stage.hover({250, 200});
    QCOMPARE(tool->cursorType(), Cursor::Pan);
    stage.hover({20, 20});
    QCOMPARE(tool->cursorType(), Cursor::Rotate);
    stage.hover(button);
    QCOMPARE(tool->cursorType(), Cursor::Rotate);
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.hover(button + QPointF(1, 0));
    QCOMPARE(tool->cursorType(), Cursor::PutBack);
}

void tst_PaperOffPegs::buttonHasAToolTip()
{
    PaperStage stage;
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    const QPoint button = zonesOf(stage).button().center().toPoint();
    const auto ask = [&](QPoint position) {
        QToolTip::hideText();
        QHelpEvent help(QEvent::ToolTip, position, stage.paper->mapToGlobal(position));
        QCoreApplication::sendEvent(stage.paper.get(), &help);
        return QToolTip::text();
    };
    QCOMPARE(ask(button), QString());
    stage.useTool(Tool::Type::OffPegs);
    QCOMPARE(ask(button), QStringLiteral("Put Frame On the Pegs"));
    stage.scene()->setCurrentDrawingOffPegsTransform({});
    QHelpEvent help(QEvent::ToolTip, button, stage.paper->mapToGlobal(button));
    QCoreApplication::sendEvent(stage.paper.get(), &help);
    QVERIFY(!help.isAccepted());
    QToolTip::hideText();
}

void tst_PaperOffPegs::toolTipLeavesTheButtonInSight_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {75, 100, 150})
        QTest::addRow("%d %%", percent) << percent;
}

void tst_PaperOffPegs::toolTipLeavesTheButtonInSight()
{
    QFETCH(int, percent);
    auto *settings = Model::Settings::instance();
    const auto scaleBack = qScopeGuard([settings, before = settings->uiScalePercent()] {
        QToolTip::hideText();
        settings->setUiScalePercent(before);
    });
    settings->setUiScalePercent(percent);
    PaperStage stage({400, 300}, {800, 600});
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.useTool(Tool::Type::OffPegs);
    const QRect button = UI::ViewZones(stage.paper->view().usableRect(), percent / 100.0).button().toAlignedRect();
    const QPoint position(button.center().x(), button.top() + 2);
    QHelpEvent help(QEvent::ToolTip, position, stage.paper->mapToGlobal(position));
    QCoreApplication::sendEvent(stage.paper.get(), &help);
    QVERIFY(QToolTip::isVisible());
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto tip = std::ranges::find_if(
        windows, [](QWidget *window) { return window->isVisible() && window->windowType() == Qt::ToolTip; });
    QVERIFY(tip != windows.end());
    const QRect onScreen(stage.paper->mapToGlobal(button.topLeft()), button.size());
    QVERIFY(!(*tip)->geometry().intersects(onScreen));
}

void tst_PaperOffPegs::buttonFollowsTheInterfaceScale()
{
    using Cursor = Model::OffPegsTool::OPCursorType;
    PaperStage stage({400, 300}, {1000, 800});
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(30, 20));
    stage.useTool(Tool::Type::OffPegs);
    const auto *tool = toolOf<Model::OffPegsTool>(Tool::Type::OffPegs);
    // Beside the button of 100 percent, but on that of 150.
    const QRectF button = zonesOf(stage).button();
    const QPointF beside(button.right() + 10.0, button.center().y());
    auto *settings = Model::Settings::instance();
    const int scale = settings->uiScalePercent();
    settings->setUiScalePercent(100);
    stage.hover(beside);
    QCOMPARE(tool->cursorType(), Cursor::Rotate);
    settings->setUiScalePercent(150);
    QCOMPARE(tool->cursorType(), Cursor::PutBack);
    settings->setUiScalePercent(scale);
    QCOMPARE(tool->cursorType(), Cursor::Rotate);
}

void tst_PaperOffPegs::nothingIsTakenOffBehindTheLastCell()
{
    PaperStage stage;
    answerOffPegs(stage);
    stage.scene()->setActiveFrameAndLayer(2, 0, Model::Scene::AllowFrameAfterLast);
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    Hand(stage, true).drag({250, 210}, {280, 240});
    QCOMPARE(told.count(), 0);
    QVERIFY(!stage.paper->view().isOffPegs());
}

void tst_PaperOffPegs::suspendedInputLeavesTheFrame()
{
    PaperStage stage;
    answerOffPegs(stage);
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const UI::InputSuspension suspension;
    Hand(stage, true).drag({250, 210}, {280, 240});
    QCOMPARE(told.count(), 0);
    QVERIFY(!stage.paper->view().isOffPegs());
}

void tst_PaperOffPegs::sceneHasTheLastWordOnThePegs()
{
    PaperStage stage;
    stage.useTool(Tool::Type::OffPegs);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    // Nobody takes the frame off its pegs.
    Hand(stage, true).drag({250, 210}, {280, 240});
    QCOMPARE(told.count(), 1);
    QVERIFY(!stage.paper->view().isOffPegs());
}

void tst_PaperOffPegs::frameThatAnotherLayerTookOffIsPutBack()
{
    PaperStage stage;
    Model::Scene *scene = stage.scene();
    scene->addBlankDrawing(0, 1);
    scene->insertLayer(std::make_shared<Model::StrokeLayer>(QColor(Qt::black), QSize(400, 300)), 1);
    scene->setOffPegsTransform(2, 0, QTransform::fromTranslate(-50, 0));
    // Behind the one cell of a layer that has nothing to do with it.
    scene->setActiveFrameAndLayer(2, 1, Model::Scene::AllowFrameAfterLast);
    QVERIFY(!scene->activeCellHasDrawing());
    QVERIFY(stage.paper->view().isOffPegs());
    connect(stage.paper.get(), &UI::Paper::offPegsTransformChanged, stage.paper.get(),
            [&](const QTransform &transform) { scene->setOffPegsTransform(2, 0, transform); });
    stage.useTool(Tool::Type::OffPegs);
    Hand hand(stage, false);
    hand.drag({250, 210}, {260, 210});
    QCOMPARE(scene->offPegsTransformOfFrame(2), QTransform::fromTranslate(-60, 0));
    const QPointF button = zonesOf(stage).button().center();
    hand.drag(button, button);
    QVERIFY(scene->offPegsTransformOfFrame(2).isIdentity());
    QVERIFY(!stage.paper->view().isOffPegs());
}

void tst_PaperOffPegs::frameMovedDuringADragGoesOnFromThere()
{
    PaperStage stage;
    stage.useTool(Tool::Type::OffPegs);
    stage.penPress({250, 210});
    stage.penMove({270, 230});
    stage.scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(-5, 0));
    QVERIFY(isNear(stage.toWidget({0, 0}), {55, 50}));
    stage.penMove({280, 240});
    QVERIFY(isNear(stage.toWidget({0, 0}), {65, 60}));
    stage.penRelease({280, 240});
}

void tst_PaperOffPegs::viewChangedDuringADragKeepsWhatIsHeld_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"zoom", "turn", "mirror", "resize"})
        QTest::addRow("%s", change) << QString::fromLatin1(change);
}

void tst_PaperOffPegs::viewChangedDuringADragKeepsWhatIsHeld()
{
    QFETCH(QString, change);
    PaperStage stage;
    answerOffPegs(stage);
    stage.useTool(Tool::Type::OffPegs);
    stage.penPress({250, 210});
    stage.penMove({270, 230});
    if (change == QLatin1String("zoom"))
        stage.paper->setZoomLevel(2.0);
    else if (change == QLatin1String("turn"))
        stage.paper->rotatePaperTo(50.0);
    else if (change == QLatin1String("mirror"))
        stage.paper->setMirrorView(true);
    else
        stage.paper->setTopBarHeight(60);
    const QPointF held = stage.toPaper({270, 230});
    stage.penMove({300, 240});
    QVERIFY(isNear(stage.toWidget(held), {300, 240}));
    stage.penRelease({300, 240});
    QVERIFY(isNear(stage.toWidget(held), {300, 240}));
}

void tst_PaperOffPegs::frameStepShowsThatFramesPegs()
{
    PaperStage stage;
    stage.scene()->addBlankDrawing(0, 1);
    stage.scene()->setFrameRange(1, 2, 2, 0);
    stage.scene()->setOffPegsTransform(2, QTransform::fromTranslate(-50, 0));
    QVERIFY(isNear(stage.toWidget({0, 0}), {100, 50}));
    stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    QVERIFY(isNear(stage.toWidget({0, 0}), {50, 50}));
    stage.scene()->setScrubFrame(2);
    QVERIFY(isNear(stage.toWidget({0, 0}), {100, 50}));
    stage.scene()->unsetScrubFrame();
    QVERIFY(isNear(stage.toWidget({0, 0}), {50, 50}));
    stage.paper->setCurrentScene(nullptr);
    QVERIFY(!stage.paper->view().isOffPegs());
}

QTEST_MAIN(tst_PaperOffPegs)
#include "tst_paperoffpegs.moc"
