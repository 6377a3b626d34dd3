#include "libmodel/actions/actionmanager.h"
#include "libmodel/tools/toolmanager.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QAction>
#include <QGuiApplication>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

bool isNear(QPointF a, QPointF b, double within)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= within;
}

/// A paper on a screen of any density.
class DensePaper : public UI::Paper
{
public:
    int ratio = 1;

protected:
    int metric(PaintDeviceMetric which) const override
    {
        if (which == PdmDevicePixelRatio)
            return ratio;
        return which == PdmDevicePixelRatioScaled ? int(ratio * devicePixelRatioFScale()) : UI::Paper::metric(which);
    }
};

} // namespace

/// The paper's view: hand tool, wheel, and the slots and signals of zoom, rotation and size.
class tst_PaperView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void handToolPans();
    void handToolPanSettlesOnRelease();
    void doubleTapWithTheHandToolCentres();
    void doubleClickWithTheHandToolCentres();
    void releaseElsewhereCounts();
    void slowSecondTapPans();
    void quickTapFartherOffPans();
    void middleButtonBorrowsTheHandTool();
    void middleButtonLeavesAHandToolThatIsOn();
    void middleButtonPansWithoutTheHandTool();
    void middleButtonIsToldOfAroundItsAction();
    void middleButtonIsToldOfWhereItsActionIsDisabledMeanwhile();
    void viewChangedDuringAPanKeepsWhatIsHeld_data();
    void viewChangedDuringAPanKeepsWhatIsHeld();

    void wheelPansByPixels();
    void wheelPansByDegrees();
    void wheelNotchWithCtrlZooms_data();
    void wheelNotchWithCtrlZooms();
    void wheelWithOtherModifiersIsNotTaken_data();
    void wheelWithOtherModifiersIsNotTaken();
    void wheelDuringAStrokeIsIgnored();

    void zoomSignalsCarryTheLevels();
    void unchangedViewSignalsNothing();
    void rotationIsAnnouncedAsAChangeOfView();
    void mirrorIsSignalledOnce();
    void resizeKeepsTheCentreAndAnnouncesTheFit();
    void topBarMovesTheCentre();
    void frameSizeIsFollowed();
    void zoomReachesTheToolsCursor();
    void cursorFollowsTheDevicePixelRatio();

    void paperTurnsToTheNextStep_data();
    void paperTurnsToTheNextStep();
    void zoomCentringOnTheSheetHoldsItsMiddle();
    void resetBringsAChangedViewBack();
    void flipMenuGivesTheFocusBack();
};

void tst_PaperView::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
    Model::ActionManager::instance()->createActions();
}

void tst_PaperView::handToolPans()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.paper->rotatePaperTo(20.0);
    const QPointF held = stage.toPaper({100, 100});
    stage.penPress({100, 100});
    stage.penMove({180, 130});
    QVERIFY(isNear(stage.toWidget(held), {180, 130}, 1e-6));
    stage.penMove({90, 250});
    QVERIFY(isNear(stage.toWidget(held), {90, 250}, 1e-6));
    stage.penRelease({90, 250});
}

void tst_PaperView::handToolPanSettlesOnRelease()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    const QPointF held = stage.toPaper({100, 100});
    stage.mouseLine({{100, 100}, {180, 130}});
    QVERIFY(isNear(stage.toWidget(held), {180, 130}, 1e-6));
    stage.pause(2000);
    stage.mouseLine({{180, 130}, {200, 160}});
    QVERIFY(isNear(stage.toWidget(held), {200, 160}, 1e-6));
}

void tst_PaperView::doubleTapWithTheHandToolCentres()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.penLine({{100, 100}, {180, 130}});
    QVERIFY(!isNear(stage.toWidget({200, 150}), {250, 200}, 1.0));
    stage.pause(2000);
    stage.penPress({300, 300});
    stage.penRelease({300, 300});
    stage.penPress({301, 300});
    stage.penRelease({301, 300});
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}, 1e-6));
}

void tst_PaperView::doubleClickWithTheHandToolCentres()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.mouseLine({{100, 100}, {180, 130}});
    stage.pause(2000);
    stage.mouseLine(std::vector{QPointF(300, 300)});
    stage.mouseLine(std::vector{QPointF(300, 300)});
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}, 1e-6));
}

void tst_PaperView::releaseElsewhereCounts()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    const QPointF held = stage.toPaper({100, 100});
    stage.penPress({100, 100});
    stage.penMove({180, 130});
    stage.penRelease({190, 150});
    QVERIFY(isNear(stage.toWidget(held), {190, 150}, 1e-6));
}

void tst_PaperView::slowSecondTapPans()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.penLine({{100, 100}, {180, 130}});
    const QPointF middle = stage.toWidget({200, 150});
    stage.pause(2000);
    stage.penLine({{300, 300}, {300, 300}});
    stage.pause(static_cast<unsigned long>(QGuiApplication::styleHints()->mouseDoubleClickInterval()) + 1);
    stage.penLine({{300, 300}, {300, 310}});
    QVERIFY(isNear(stage.toWidget({200, 150}), middle + QPointF(0, 10), 1e-6));
}

void tst_PaperView::quickTapFartherOffPans()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.penLine({{100, 100}, {180, 130}});
    const QPointF middle = stage.toWidget({200, 150});
    stage.pause(2000);
    stage.penLine({{300, 300}, {300, 300}});
    const double tooFar = QGuiApplication::styleHints()->touchDoubleTapDistance();
    stage.penLine({{300, 300 - tooFar}, {300, 310 - tooFar}});
    QVERIFY(isNear(stage.toWidget({200, 150}), middle + QPointF(0, 10), 1e-6));
}

void tst_PaperView::middleButtonBorrowsTheHandTool()
{
    PaperStage stage;
    QAction *pan = Model::ActionManager::instance()->action(MR::Action::Pan);
    connect(pan, &QAction::toggled, stage.paper.get(),
            [&](bool on) { stage.useTool(on ? Tool::Type::Hand : Tool::Type::Pen); });
    const QPointF held = stage.toPaper({100, 100});
    stage.mousePress({100, 100}, Qt::MiddleButton);
    QVERIFY(pan->isChecked());
    stage.mouseMove({140, 150}, Qt::MiddleButton);
    QVERIFY(isNear(stage.toWidget(held), {140, 150}, 1e-6));
    stage.mouseRelease({140, 150}, Qt::MiddleButton);
    QVERIFY(!pan->isChecked());
    QCOMPARE(Model::ToolManager::instance()->currentToolType(), Tool::Type::Pen);
    QVERIFY(stage.strokes.empty());
    stage.hover({150, 150});
    QVERIFY(isNear(stage.toWidget(held), {140, 150}, 1e-6));
}

void tst_PaperView::middleButtonLeavesAHandToolThatIsOn()
{
    PaperStage stage;
    QAction *pan = Model::ActionManager::instance()->action(MR::Action::Pan);
    pan->setChecked(true);
    stage.mousePress({100, 100}, Qt::MiddleButton);
    const bool wasOn = pan->isChecked();
    stage.mouseRelease({100, 100}, Qt::MiddleButton);
    const bool isOn = pan->isChecked();
    pan->setChecked(false);
    QVERIFY(wasOn && isOn);
}

void tst_PaperView::middleButtonPansWithoutTheHandTool()
{
    PaperStage stage;
    QAction *pan = Model::ActionManager::instance()->action(MR::Action::Pan);
    pan->setEnabled(false);
    const QPointF held = stage.toPaper({100, 100});
    stage.mousePress({100, 100}, Qt::MiddleButton);
    const bool drew = stage.scene()->hasActiveStroke();
    stage.mouseMove({140, 150}, Qt::MiddleButton);
    stage.mouseRelease({140, 150}, Qt::MiddleButton);
    pan->setEnabled(true);
    QVERIFY(!drew);
    QVERIFY(stage.strokes.empty());
    QVERIFY(!stage.paper->isDevicePressed());
    QVERIFY(isNear(stage.toWidget(held), {140, 150}, 1e-6));
}

void tst_PaperView::middleButtonIsToldOfAroundItsAction()
{
    PaperStage stage;
    const QAction *pan = Model::ActionManager::instance()->action(MR::Action::Pan);
    QStringList told;
    connect(stage.paper.get(), &UI::Paper::panHeldChanged, stage.paper.get(),
            [&](bool held) { told << (held ? QStringLiteral("held") : QStringLiteral("let go")); });
    connect(pan, &QAction::triggered, stage.paper.get(),
            [&](bool on) { told << (on ? QStringLiteral("on") : QStringLiteral("off")); });
    stage.mousePress({100, 100}, Qt::MiddleButton);
    QCOMPARE(told, QStringList({"held", "on"}));
    stage.mouseRelease({140, 150}, Qt::MiddleButton);
    QCOMPARE(told, QStringList({"held", "on", "off", "let go"}));
}

void tst_PaperView::middleButtonIsToldOfWhereItsActionIsDisabledMeanwhile()
{
    PaperStage stage;
    QAction *pan = Model::ActionManager::instance()->action(MR::Action::Pan);
    stage.mousePress({100, 100}, Qt::MiddleButton);
    QSignalSpy held(stage.paper.get(), &UI::Paper::panHeldChanged);
    pan->setEnabled(false);
    stage.mouseRelease({100, 100}, Qt::MiddleButton);
    pan->setEnabled(true);
    pan->setChecked(false);
    QCOMPARE(held.count(), 1);
    QCOMPARE(held.first().first().toBool(), false);
}

void tst_PaperView::viewChangedDuringAPanKeepsWhatIsHeld_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"zoom", "turn", "mirror", "resize"})
        QTest::addRow("%s", change) << QString::fromLatin1(change);
}

void tst_PaperView::viewChangedDuringAPanKeepsWhatIsHeld()
{
    QFETCH(QString, change);
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.penPress({100, 100});
    stage.penMove({180, 130});
    const QPointF middle = stage.toPaper({250, 200});
    QPointF center(250, 200);
    if (change == QLatin1String("zoom")) {
        stage.paper->setZoomLevel(2.0);
    } else if (change == QLatin1String("turn")) {
        stage.paper->rotatePaperTo(50.0);
    } else if (change == QLatin1String("mirror")) {
        stage.paper->setMirrorView(true);
    } else {
        stage.paper->setTopBarHeight(60);
        center = {250, 230};
    }
    // The change is made about the view's centre as it shows.
    QVERIFY(isNear(stage.toWidget(middle), center, 1e-6));
    const QPointF held = stage.toPaper({180, 130});
    stage.penMove({210, 170});
    QVERIFY(isNear(stage.toWidget(held), {210, 170}, 1e-6));
    stage.penRelease({210, 170});
    QVERIFY(isNear(stage.toWidget(held), {210, 170}, 1e-6));
}

void tst_PaperView::wheelPansByPixels()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({100, 100});
    stage.wheel({60, 60}, {7, -11}, {0, 120});
    QVERIFY(isNear(stage.toWidget(held), {107, 89}, 1e-6));
}

void tst_PaperView::wheelPansByDegrees()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({100, 100});
    stage.wheel({60, 60}, {}, {0, 120}); // 120 eighths of a degree are 15
    QVERIFY(isNear(stage.toWidget(held), {100, 115}, 1e-6));
    // By whole pixels: 1.5 are 2.
    stage.wheel({60, 60}, {}, {0, 12});
    QVERIFY(isNear(stage.toWidget(held), {100, 117}, 1e-6));
}

void tst_PaperView::wheelNotchWithCtrlZooms_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<double>("level");
    QTest::addRow("one notch in") << 120 << 1.0 / 0.9375;
    QTest::addRow("one notch out") << -120 << 1.0 / 1.0625;
    QTest::addRow("beyond all measure") << 120000 << 16.0;
    // No more than 360 degrees count at once: (360 + 3 * 360) / 720 + 0.5 is 2.5.
    QTest::addRow("far out") << -12000 << 0.4;
}

void tst_PaperView::wheelNotchWithCtrlZooms()
{
    QFETCH(int, delta);
    QFETCH(double, level);
    PaperStage stage;
    const QPointF cursor(333, 111);
    const QPointF held = stage.toPaper(cursor);
    stage.wheel(cursor, {}, {0, delta}, Qt::ControlModifier);
    QVERIFY(std::abs(stage.paper->zoomLevel() - level) < 1e-9);
    QVERIFY(isNear(stage.toWidget(held), cursor, 1e-6));
}

void tst_PaperView::wheelWithOtherModifiersIsNotTaken_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::addRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier);
    QTest::addRow("Ctrl and Shift") << (Qt::ControlModifier | Qt::ShiftModifier);
}

void tst_PaperView::wheelWithOtherModifiersIsNotTaken()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    PaperStage stage;
    const QTransform view = stage.paper->view().widgetToPaper();
    QWheelEvent wheel({60, 60}, stage.paper->mapToGlobal(QPointF(60, 60)), {}, {0, 120}, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(stage.paper.get(), &wheel);
    QVERIFY(!wheel.isAccepted());
    QVERIFY(stage.paper->view().widgetToPaper() == view);
}

void tst_PaperView::wheelDuringAStrokeIsIgnored()
{
    PaperStage stage;
    stage.penPress({200, 200});
    const QPointF before = stage.toPaper({0, 0});
    stage.wheel({200, 200}, {}, {0, 120});
    stage.wheel({200, 200}, {}, {0, 120}, Qt::ControlModifier);
    QVERIFY(isNear(stage.toPaper({0, 0}), before, 1e-9));
    stage.penRelease({200, 200});
}

void tst_PaperView::zoomSignalsCarryTheLevels()
{
    PaperStage stage;
    const QSignalSpy level(stage.paper.get(), &UI::Paper::zoomLevelChanged);
    const QSignalSpy toFit(stage.paper.get(), &UI::Paper::zoomLevelToFitChanged);
    stage.paper->setZoomLevel(2.0);
    QCOMPARE(level.count(), 1);
    QVERIFY(std::abs(level.first().first().toDouble() - 2.0) < 1e-9);
    QCOMPARE(toFit.count(), 1);
    // 500 x 400 less 4 on every side around 400 x 300: the width decides.
    QVERIFY(std::abs(toFit.first().first().toDouble() - 492.0 / 400.0) < 1e-9);
}

void tst_PaperView::unchangedViewSignalsNothing()
{
    PaperStage stage;
    const QSignalSpy level(stage.paper.get(), &UI::Paper::zoomLevelChanged);
    const QSignalSpy toFit(stage.paper.get(), &UI::Paper::zoomLevelToFitChanged);
    stage.paper->setZoomLevel(1.0);
    stage.paper->rotatePaperTo(0.0);
    stage.paper->resetView();
    stage.wheel({60, 60}, {7, -11}, {});
    QCOMPARE(level.count(), 0);
    QCOMPARE(toFit.count(), 0);
}

void tst_PaperView::rotationIsAnnouncedAsAChangeOfView()
{
    PaperStage stage;
    const QSignalSpy level(stage.paper.get(), &UI::Paper::zoomLevelChanged);
    const QSignalSpy toFit(stage.paper.get(), &UI::Paper::zoomLevelToFitChanged);
    stage.paper->rotatePaperTo(90.0);
    QCOMPARE(level.count(), 1);
    QCOMPARE(toFit.count(), 1);
    QVERIFY(std::abs(toFit.first().first().toDouble() - 392.0 / 400.0) < 1e-9);
}

void tst_PaperView::mirrorIsSignalledOnce()
{
    PaperStage stage;
    const QSignalSpy mirrored(stage.paper.get(), &UI::Paper::mirrorViewChanged);
    stage.paper->setMirrorView(true);
    stage.paper->setMirrorView(true);
    QCOMPARE(mirrored.count(), 1);
    QVERIFY(stage.paper->mirrorView());
}

void tst_PaperView::resizeKeepsTheCentreAndAnnouncesTheFit()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({250, 200});
    const QSignalSpy level(stage.paper.get(), &UI::Paper::zoomLevelChanged);
    const QSignalSpy toFit(stage.paper.get(), &UI::Paper::zoomLevelToFitChanged);
    stage.paper->resize(700, 500);
    QTRY_COMPARE(stage.paper->size(), QSize(700, 500));
    QVERIFY(isNear(stage.toPaper({350, 250}), held, 1e-6));
    QCOMPARE(level.count(), 0);
    QCOMPARE(toFit.count(), 1);
}

void tst_PaperView::topBarMovesTheCentre()
{
    PaperStage stage;
    stage.paper->setTopBarHeight(60);
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 230}, 1e-6));
    stage.paper->fitToView();
    QVERIFY(QRectF(3.999, 63.999, 492.002, 332.002).contains(stage.paper->view().bounds()));
}

void tst_PaperView::frameSizeIsFollowed()
{
    PaperStage stage;
    stage.scene()->setFrameSize({600, 200}, MR::FitMode::FitModeIgnore);
    QCOMPARE(stage.paper->view().paperRect(), QRectF(0, 0, 600, 200));
    // What was at the view's centre, the point (200, 150) of the old sheet, is there still.
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}, 1e-6));
}

void tst_PaperView::zoomReachesTheToolsCursor()
{
    PaperStage stage;
    const QCursor before = stage.paper->cursor();
    stage.paper->setZoomLevel(8.0);
    // The ring shows the tool's size on screen, so it has grown with the zoom.
    QVERIFY(stage.paper->cursor().pixmap().width() > before.pixmap().width());
}

void tst_PaperView::cursorFollowsTheDevicePixelRatio()
{
    const PaperStage stage;
    DensePaper paper;
    Model::ToolManager::instance()->setCurrentTool(Tool::Type::Hand, 0);
    const QSize plain = paper.cursor().pixmap().size();
    QVERIFY(!plain.isEmpty());
    paper.ratio = 2;
    paper.updateDevicePixelRatio();
    // Of one size to the eye: twice the pixels on a screen that is twice as dense.
    QCOMPARE(paper.cursor().pixmap().size(), 2 * plain);
    QCOMPARE(paper.zoomLevel(), 1.0);
}

void tst_PaperView::paperTurnsToTheNextStep_data()
{
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("rotation");
    // From 20 the nearest multiple of 15 is 15; a mirrored view is turned the other way.
    QTest::addRow("on") << false << 15.0 << 30.0;
    QTest::addRow("back") << false << -15.0 << 0.0;
    QTest::addRow("on, mirrored") << true << 15.0 << -30.0;
}

void tst_PaperView::paperTurnsToTheNextStep()
{
    QFETCH(bool, mirrored);
    QFETCH(double, step);
    QFETCH(double, rotation);
    PaperStage stage;
    stage.paper->setMirrorView(mirrored);
    stage.paper->rotatePaperTo(20.0);
    stage.paper->rotatePaperToNext(step);
    QVERIFY(std::abs(stage.paper->view().rotation() - rotation) < 1e-6);
}

void tst_PaperView::zoomCentringOnTheSheetHoldsItsMiddle()
{
    PaperStage stage;
    stage.wheel({60, 60}, {70, -30}, {});
    stage.paper->setZoomLevelCenteringOnOrigin(2.0);
    QVERIFY(std::abs(stage.paper->zoomLevel() - 2.0) < 1e-9);
    QVERIFY(isNear(stage.toWidget({200, 150}), {320, 170}, 1e-6));
}

void tst_PaperView::resetBringsAChangedViewBack()
{
    PaperStage stage;
    stage.paper->setMirrorView(true);
    stage.wheel({60, 60}, {70, -30}, {});
    stage.paper->rotatePaperTo(37.0);
    stage.paper->setZoomLevel(3.0);
    stage.paper->resetView();
    QVERIFY(std::abs(stage.paper->zoomLevel() - 1.0) < 1e-9);
    QVERIFY(std::abs(stage.paper->view().rotation()) < 1e-6);
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}, 1e-6));
    QVERIFY(stage.paper->mirrorView());
}

void tst_PaperView::flipMenuGivesTheFocusBack()
{
    QWidget window;
    auto *paper = new UI::Paper(&window);
    auto *button = new QPushButton(&window);
    button->setFocus();
    QCOMPARE(window.focusWidget(), button);
    paper->returnFlip_Menu();
    QCOMPARE(window.focusWidget(), paper);
}

QTEST_MAIN(tst_PaperView)
#include "tst_paperview.moc"
