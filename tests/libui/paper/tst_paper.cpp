#include "libmodel/actions/actionmanager.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/controlpoint.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/viewtransform.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QAction>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

#include <cmath>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

bool isNear(QPointF a, QPointF b, double within)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= within;
}

/// Points along a slow arc, 4 px apart, in widget coordinates of an ordinary stage.
std::vector<QPointF> arc()
{
    std::vector<QPointF> points;
    for (int i = 0; i <= 30; ++i) {
        const double angle = 0.08 * i;
        points.emplace_back(250.0 - 60.0 * std::cos(angle), 220.0 - 60.0 * std::sin(angle));
    }
    return points;
}

} // namespace

class TestPaper : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void penDrawsAStrokeInPaperCoordinates();
    void mouseDrawsWithHalfPressure();
    void tapLeavesADot();
    void sameLineLandsTheSameOnAnyView_data();
    void sameLineLandsTheSameOnAnyView();
    void strokeOnMirroredViewLandsMirroredOnThePaper();
    void toolInAnotherModeStartsNoStroke();
    void suspendedInputStartsNoStroke();
    void ctrlPressStartsNoStroke();
    void otherToolsStartNoStroke();
    void paperWithoutSceneTakesPresses();
    void drawingIsAskedForBeforeTheStrokeBegins();

    void mouseRightAfterTabletIsSwallowed();
    void mouseWhileTheTabletIsDownIsSwallowed();
    void quickSecondPressDrawsASecondStroke_data();
    void quickSecondPressDrawsASecondStroke();

    void hoverGivesTheFirstDirection();
    void hoverIsForgottenWhenThePointerLeaves();
    void hoverServesOneStrokeOnly();

    void lostStrokesAreEnded_data();
    void lostStrokesAreEnded();
    void sceneChangeEndsTheStrokeOnTheOldScene();
    void strokeGoesOnOutsideTheWidget();

    void rightButtonIsReported();
    void rightButtonDuringAStrokeIsIgnored();
    void barrelButtonIsReported();
    void devicePressedFollowsTheContact();

    void handToolPans();
    void handToolPanSettlesOnRelease();
    void doubleTapWithTheHandToolCentres();
    void doubleClickWithTheHandToolCentres();
    void slowSecondTapPans();
    void middleButtonBorrowsTheHandTool();

    void wheelPansByPixels();
    void wheelPansByDegrees();
    void wheelNotchWithCtrlZooms_data();
    void wheelNotchWithCtrlZooms();
    void wheelDuringAStrokeIsIgnored();

    void zoomSignalsCarryTheLevels();
    void unchangedViewSignalsNothing();
    void rotationIsAnnouncedAsAChangeOfView();
    void mirrorIsSignalledOnce();
    void resizeKeepsTheCentreAndAnnouncesTheFit();
    void topBarMovesTheCentre();
    void frameSizeIsFollowed();
    void zoomReachesTheToolsCursor();
};

void TestPaper::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void TestPaper::penDrawsAStrokeInPaperCoordinates()
{
    PaperStage stage;
    const std::vector<QPointF> points = arc();
    stage.penLine(points, 0.625);
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(stage.strokes[0]);
    const auto &samples = stage.strokes[0]->samples();
    QCOMPARE(samples.size(), points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        // A sheet of 400 x 300 in a view of 500 x 400 leaves 50 all round.
        QVERIFY(isNear(samples[i].point, points[i] - QPointF(50, 50), 1e-6));
        QVERIFY(std::abs(samples[i].pressure - 0.625) < 1e-6);
    }
    QCOMPARE(samples[1].timestamp - samples[0].timestamp, quint32(5));
}

void TestPaper::mouseDrawsWithHalfPressure()
{
    PaperStage stage;
    stage.mouseLine(arc());
    QCOMPARE(stage.strokes.size(), size_t(1));
    QCOMPARE(stage.strokes[0]->samples().size(), arc().size());
    for (const Model::Sample &sample : stage.strokes[0]->samples())
        QCOMPARE(sample.pressure, 0.5);
}

void TestPaper::tapLeavesADot()
{
    PaperStage stage;
    stage.penPress({250, 200});
    stage.penRelease({250, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
    QCOMPARE(stage.strokes[0]->segments().size(), size_t(1));
    QVERIFY(stage.strokes[0]->boundingRect().contains(200, 150));
}

void TestPaper::sameLineLandsTheSameOnAnyView_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("mirrored");
    QTest::addRow("zoomed in") << 3.0 << 0.0 << false;
    QTest::addRow("zoomed out") << 0.4 << 0.0 << false;
    QTest::addRow("rotated") << 1.0 << 37.0 << false;
    QTest::addRow("mirrored") << 1.0 << 0.0 << true;
    QTest::addRow("all of it") << 1.7 << -112.0 << true;
}

void TestPaper::sameLineLandsTheSameOnAnyView()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    PaperStage plain;
    plain.penLine(arc());
    const auto &wanted = plain.strokes[0]->samples();

    PaperStage stage;
    stage.paper->setMirrorView(mirrored);
    stage.paper->rotatePaperTo(degrees);
    stage.paper->setZoomLevel(level);
    std::vector<QPointF> points;
    for (const Model::Sample &sample : wanted)
        points.push_back(stage.toWidget(sample.point));
    stage.penLine(points);
    const auto &samples = stage.strokes[0]->samples();
    QCOMPARE(samples.size(), wanted.size());
    for (size_t i = 0; i < samples.size(); ++i)
        QVERIFY(isNear(samples[i].point, wanted[i].point, 1e-6));
    QVERIFY(isNear(stage.strokes[0]->boundingRect().center(), plain.strokes[0]->boundingRect().center(), 1.5));
}

void TestPaper::strokeOnMirroredViewLandsMirroredOnThePaper()
{
    PaperStage stage;
    stage.paper->setMirrorView(true);
    // 100 right of the view's centre is 100 left of the sheet's.
    stage.penLine({{350, 200}, {350, 230}});
    QVERIFY(isNear(stage.strokes[0]->samples().front().point, {100, 150}, 1e-6));
    QVERIFY(isNear(stage.strokes[0]->samples().back().point, {100, 180}, 1e-6));
}

void TestPaper::toolInAnotherModeStartsNoStroke()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Pen, 1);
    stage.penLine(arc());
    stage.pause(100);
    stage.mouseLine(arc());
    QVERIFY(stage.strokes.empty());
    QVERIFY(!stage.scene()->hasActiveStroke());
    stage.useTool(Tool::Type::Pen, 0);
    stage.penLine(arc());
    QCOMPARE(stage.strokes.size(), size_t(1));
}

void TestPaper::suspendedInputStartsNoStroke()
{
    PaperStage stage;
    {
        const UI::InputSuspension suspension;
        stage.penLine(arc());
        QVERIFY(stage.strokes.empty());
    }
    stage.penLine(arc());
    QCOMPARE(stage.strokes.size(), size_t(1));
}

void TestPaper::ctrlPressStartsNoStroke()
{
    PaperStage stage;
    stage.penPress({250, 200}, 0.5, Qt::ControlModifier);
    QVERIFY(!stage.scene()->hasActiveStroke());
    stage.penMove({300, 200});
    stage.penRelease({300, 200});
    QVERIFY(stage.strokes.empty());
}

void TestPaper::otherToolsStartNoStroke()
{
    PaperStage stage;
    for (const auto type : {Tool::Type::Hand, Tool::Type::Zoom, Tool::Type::Rotate, Tool::Type::Scrubbing}) {
        stage.useTool(type);
        stage.pause(1000);
        stage.penLine({{100, 100}, {130, 100}});
    }
    QVERIFY(stage.strokes.empty());
    QVERIFY(!stage.scene()->hasActiveStroke());
}

void TestPaper::paperWithoutSceneTakesPresses()
{
    PaperStage stage;
    stage.paper->setCurrentScene(nullptr);
    stage.penLine(arc());
    stage.wheel({100, 100}, {}, {0, 120}, Qt::ControlModifier);
    QVERIFY(stage.strokes.empty());
    QVERIFY(!stage.paper->isDevicePressed());
}

void TestPaper::drawingIsAskedForBeforeTheStrokeBegins()
{
    PaperStage stage;
    int asked = 0;
    connect(stage.paper.get(), &UI::Paper::aboutToBeginStroke, this, [&] {
        ++asked;
        QVERIFY(!stage.scene()->hasActiveStroke());
    });
    stage.penPress({250, 200});
    QCOMPARE(asked, 1);
    QVERIFY(stage.scene()->hasActiveStroke());
    stage.penRelease({250, 200});
    QCOMPARE(asked, 1);
}

void TestPaper::mouseRightAfterTabletIsSwallowed()
{
    PaperStage stage;
    stage.penLine({{200, 200}, {240, 200}});
    stage.mouseLine({{241, 200}, {241, 200}});
    QCOMPARE(stage.strokes.size(), size_t(1));
    stage.pause(20);
    stage.mouseLine({{241, 200}, {260, 200}});
    QCOMPARE(stage.strokes.size(), size_t(2));
}

void TestPaper::mouseWhileTheTabletIsDownIsSwallowed()
{
    PaperStage stage;
    stage.penPress({200, 200});
    stage.mousePress({200, 200});
    stage.penMove({220, 200});
    stage.mouseMove({220, 200});
    stage.penMove({240, 200});
    stage.mouseRelease({240, 200});
    QVERIFY(stage.scene()->hasActiveStroke());
    stage.penRelease({240, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
    QCOMPARE(stage.strokes[0]->samples().size(), size_t(3));
    for (const Model::Sample &sample : stage.strokes[0]->samples())
        QVERIFY(std::abs(sample.pressure - 0.7) < 1e-6);
}

void TestPaper::quickSecondPressDrawsASecondStroke_data()
{
    QTest::addColumn<bool>("pen");
    QTest::addRow("pen") << true;
    QTest::addRow("mouse") << false;
}

void TestPaper::quickSecondPressDrawsASecondStroke()
{
    QFETCH(bool, pen);
    PaperStage stage;
    for (int i = 0; i < 3; ++i) {
        if (pen)
            stage.penLine({{200, 200}, {201, 203}});
        else
            stage.mouseLine({{200, 200}, {201, 203}});
    }
    QCOMPARE(stage.strokes.size(), size_t(3));
}

void TestPaper::hoverGivesTheFirstDirection()
{
    PaperStage stage;
    stage.hover({180, 200});
    stage.penPress({200, 200});
    const Model::SingleStroke *stroke = stage.scene()->activeStroke();
    QVERIFY(stroke);
    QVERIFY(stroke->hasTangent());
    // The tangent goes on from where the pen came: to the right.
    const QLineF tangent = stroke->controlPoints().front().tangent;
    QVERIFY(tangent.dx() > 0.0);
    QVERIFY(std::abs(tangent.dy()) < 1e-6);
    stage.penRelease({200, 200});
}

void TestPaper::hoverIsForgottenWhenThePointerLeaves()
{
    PaperStage stage;
    stage.hover({180, 200});
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(stage.paper.get(), &leave);
    stage.penPress({200, 200});
    QVERIFY(!stage.scene()->activeStroke()->hasTangent());
    stage.penRelease({200, 200});
}

void TestPaper::hoverServesOneStrokeOnly()
{
    PaperStage stage;
    stage.hover({180, 200});
    stage.penLine({{200, 200}, {200, 200}});
    stage.penPress({300, 250});
    QVERIFY(!stage.scene()->activeStroke()->hasTangent());
    stage.penRelease({300, 250});
}

void TestPaper::lostStrokesAreEnded_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"focus", "hide", "window", "button", "leave is not a loss"})
        QTest::addRow("%s", how) << QString::fromLatin1(how);
}

void TestPaper::lostStrokesAreEnded()
{
    QFETCH(QString, how);
    PaperStage stage;
    stage.mousePress({200, 200});
    stage.mouseMove({230, 200});
    QVERIFY(stage.scene()->hasActiveStroke());
    if (how == QLatin1String("focus")) {
        QFocusEvent out(QEvent::FocusOut);
        QCoreApplication::sendEvent(stage.paper.get(), &out);
    } else if (how == QLatin1String("hide")) {
        stage.paper->hide();
    } else if (how == QLatin1String("window")) {
        QEvent deactivate(QEvent::WindowDeactivate);
        QCoreApplication::sendEvent(stage.paper.get(), &deactivate);
    } else if (how == QLatin1String("button")) {
        stage.hover({240, 200});
    } else {
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(stage.paper.get(), &leave);
        QVERIFY(stage.scene()->hasActiveStroke());
        stage.mouseRelease({240, 200});
    }
    QVERIFY(!stage.scene()->hasActiveStroke());
    QVERIFY(!stage.paper->isDevicePressed());
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(stage.strokes[0]);
    // The release that comes after all ends nothing more.
    stage.mouseRelease({240, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
}

void TestPaper::sceneChangeEndsTheStrokeOnTheOldScene()
{
    PaperStage stage;
    stage.penPress({200, 200});
    stage.penMove({230, 200});
    Model::MRScene other;
    stage.paper->setCurrentScene(&other);
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(stage.strokes[0]);
    QVERIFY(!other.scene()->hasActiveStroke());
    stage.penRelease({230, 200});
    stage.paper->setCurrentScene(stage.mrScene.get());
}

void TestPaper::strokeGoesOnOutsideTheWidget()
{
    PaperStage stage;
    stage.mousePress({20, 200});
    stage.mouseMove({-30, 200});
    stage.mouseRelease({-30, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(isNear(stage.strokes[0]->samples().back().point, {-80, 150}, 1e-6));
}

void TestPaper::rightButtonIsReported()
{
    PaperStage stage;
    const QSignalSpy right(stage.paper.get(), &UI::Paper::rightButtonPressed);
    stage.mousePress({200, 200}, Qt::RightButton, Qt::ShiftModifier);
    stage.mouseRelease({200, 200}, Qt::RightButton);
    QCOMPARE(right.count(), 1);
    QCOMPARE(right.first().first().value<Qt::KeyboardModifiers>(), Qt::ShiftModifier);
    QVERIFY(stage.strokes.empty());
}

void TestPaper::rightButtonDuringAStrokeIsIgnored()
{
    PaperStage stage;
    const QSignalSpy right(stage.paper.get(), &UI::Paper::rightButtonPressed);
    stage.mousePress({200, 200});
    stage.mouse({200, 200}, QEvent::MouseButtonPress, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    stage.mouse({200, 200}, QEvent::MouseButtonRelease, Qt::RightButton, Qt::LeftButton);
    QCOMPARE(right.count(), 0);
    QVERIFY(stage.scene()->hasActiveStroke());
    stage.mouseRelease({200, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
}

void TestPaper::barrelButtonIsReported()
{
    PaperStage stage;
    const QSignalSpy right(stage.paper.get(), &UI::Paper::rightButtonPressed);
    stage.pen({200, 200}, 0.0, Qt::RightButton);
    stage.pen({200, 200}, 0.0, Qt::NoButton);
    QCOMPARE(right.count(), 1);
    QVERIFY(stage.strokes.empty());
}

void TestPaper::devicePressedFollowsTheContact()
{
    PaperStage stage;
    const QSignalSpy pressed(stage.paper.get(), &UI::Paper::devicePressedChanged);
    stage.hover({200, 200});
    QCOMPARE(pressed.count(), 0);
    stage.penPress({200, 200});
    QVERIFY(stage.paper->property("devicePressed").toBool());
    stage.penMove({210, 200});
    stage.penRelease({210, 200});
    QVERIFY(!stage.paper->isDevicePressed());
    QCOMPARE(pressed.count(), 2);
    QCOMPARE(pressed[0].first().toBool(), true);
    QCOMPARE(pressed[1].first().toBool(), false);
}

void TestPaper::handToolPans()
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

void TestPaper::handToolPanSettlesOnRelease()
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

void TestPaper::doubleTapWithTheHandToolCentres()
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

void TestPaper::doubleClickWithTheHandToolCentres()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.mouseLine({{100, 100}, {180, 130}});
    stage.pause(2000);
    stage.mouseLine(std::vector{QPointF(300, 300)});
    stage.mouseLine(std::vector{QPointF(300, 300)});
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}, 1e-6));
}

void TestPaper::slowSecondTapPans()
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

void TestPaper::middleButtonBorrowsTheHandTool()
{
    PaperStage stage;
    auto *actions = Model::ActionManager::instance();
    actions->createActions();
    QAction *pan = actions->mrAction(MR::Action::Pan)->action;
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

void TestPaper::wheelPansByPixels()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({100, 100});
    stage.wheel({60, 60}, {7, -11}, {0, 120});
    QVERIFY(isNear(stage.toWidget(held), {107, 89}, 1e-6));
}

void TestPaper::wheelPansByDegrees()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({100, 100});
    stage.wheel({60, 60}, {}, {0, 120}); // 120 eighths of a degree are 15
    QVERIFY(isNear(stage.toWidget(held), {100, 115}, 1e-6));
}

void TestPaper::wheelNotchWithCtrlZooms_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<double>("level");
    QTest::addRow("one notch in") << 120 << 1.0 / 0.9375;
    QTest::addRow("one notch out") << -120 << 1.0 / 1.0625;
    QTest::addRow("beyond all measure") << 120000 << 16.0;
}

void TestPaper::wheelNotchWithCtrlZooms()
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

void TestPaper::wheelDuringAStrokeIsIgnored()
{
    PaperStage stage;
    stage.penPress({200, 200});
    const QPointF before = stage.toPaper({0, 0});
    stage.wheel({200, 200}, {}, {0, 120});
    stage.wheel({200, 200}, {}, {0, 120}, Qt::ControlModifier);
    QVERIFY(isNear(stage.toPaper({0, 0}), before, 1e-9));
    stage.penRelease({200, 200});
}

void TestPaper::zoomSignalsCarryTheLevels()
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

void TestPaper::unchangedViewSignalsNothing()
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

void TestPaper::rotationIsAnnouncedAsAChangeOfView()
{
    PaperStage stage;
    const QSignalSpy level(stage.paper.get(), &UI::Paper::zoomLevelChanged);
    const QSignalSpy toFit(stage.paper.get(), &UI::Paper::zoomLevelToFitChanged);
    stage.paper->rotatePaperTo(90.0);
    QCOMPARE(level.count(), 1);
    QCOMPARE(toFit.count(), 1);
    QVERIFY(std::abs(toFit.first().first().toDouble() - 392.0 / 400.0) < 1e-9);
}

void TestPaper::mirrorIsSignalledOnce()
{
    PaperStage stage;
    const QSignalSpy mirrored(stage.paper.get(), &UI::Paper::mirrorViewChanged);
    stage.paper->setMirrorView(true);
    stage.paper->setMirrorView(true);
    QCOMPARE(mirrored.count(), 1);
    QVERIFY(stage.paper->mirrorView());
}

void TestPaper::resizeKeepsTheCentreAndAnnouncesTheFit()
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

void TestPaper::topBarMovesTheCentre()
{
    PaperStage stage;
    stage.paper->setTopBarHeight(60);
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 230}, 1e-6));
    stage.paper->fitToView();
    QVERIFY(QRectF(3.999, 63.999, 492.002, 332.002).contains(stage.paper->view().bounds()));
}

void TestPaper::frameSizeIsFollowed()
{
    PaperStage stage;
    stage.scene()->setFrameSize({600, 200}, MR::FitMode::FitModeIgnore);
    QCOMPARE(stage.paper->view().paperRect(), QRectF(0, 0, 600, 200));
    QVERIFY(isNear(stage.toWidget({300, 100}), {250, 200}, 1e-6));
}

void TestPaper::zoomReachesTheToolsCursor()
{
    PaperStage stage;
    const QCursor before = stage.paper->cursor();
    stage.paper->setZoomLevel(8.0);
    // The ring shows the tool's size on screen, so it has grown with the zoom.
    QVERIFY(stage.paper->cursor().pixmap().width() > before.pixmap().width());
}

QTEST_MAIN(TestPaper)
#include "tst_paper.moc"
