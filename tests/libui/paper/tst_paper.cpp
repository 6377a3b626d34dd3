#include "libmodel/strokes/controlpoint.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QFocusEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

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

/// What pen and mouse do on the paper: strokes, echoes, lost contacts, buttons.
class tst_Paper : public QObject
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

    void positionWithoutDrawingTakesNoStroke();
    void drawingMadeOnRequestTakesTheStroke();

    void mouseRightAfterTabletIsSwallowed();
    void mouseWhileTheTabletIsDownIsSwallowed();
    void quickSecondPressDrawsASecondStroke_data();
    void quickSecondPressDrawsASecondStroke();

    void hoverGivesTheFirstDirection();
    void hoverIsForgottenWhenThePointerLeaves();
    void hoverAtThePressPointGivesWayToTheOneBefore();
    void hoverServesOneStrokeOnly();
    void pressAfterAPanHasNoPreviousPoint();

    void lostStrokesAreEnded_data();
    void lostStrokesAreEnded();
    void sceneChangeEndsTheStrokeOnTheOldScene();
    void strokeGoesOnOutsideTheWidget();
    void penLeavingTheRangeEndsItsStroke();
    void penLeavingTheRangeForgetsTheHover();
    void penLeavingTheRangeLeavesTheMouse();
    void mouseThatWasReleasedElsewhereLetsThePenDraw();

    void rightButtonIsReported();
    void rightButtonDuringAStrokeIsIgnored();
    void barrelButtonIsReported();
    void devicePressedFollowsTheContact();
};

void tst_Paper::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_Paper::penDrawsAStrokeInPaperCoordinates()
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

void tst_Paper::mouseDrawsWithHalfPressure()
{
    PaperStage stage;
    stage.mouseLine(arc());
    QCOMPARE(stage.strokes.size(), size_t(1));
    QCOMPARE(stage.strokes[0]->samples().size(), arc().size());
    for (const Model::Sample &sample : stage.strokes[0]->samples())
        QCOMPARE(sample.pressure, 0.5);
}

void tst_Paper::tapLeavesADot()
{
    PaperStage stage;
    stage.penPress({250, 200});
    stage.penRelease({250, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
    QCOMPARE(stage.strokes[0]->segments().size(), size_t(1));
    QVERIFY(stage.strokes[0]->boundingRect().contains(200, 150));
}

void tst_Paper::sameLineLandsTheSameOnAnyView_data()
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

void tst_Paper::sameLineLandsTheSameOnAnyView()
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

void tst_Paper::strokeOnMirroredViewLandsMirroredOnThePaper()
{
    PaperStage stage;
    stage.paper->setMirrorView(true);
    // 100 right of the view's centre is 100 left of the sheet's.
    stage.penLine({{350, 200}, {350, 230}});
    QVERIFY(isNear(stage.strokes[0]->samples().front().point, {100, 150}, 1e-6));
    QVERIFY(isNear(stage.strokes[0]->samples().back().point, {100, 180}, 1e-6));
}

void tst_Paper::toolInAnotherModeStartsNoStroke()
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

void tst_Paper::suspendedInputStartsNoStroke()
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

void tst_Paper::ctrlPressStartsNoStroke()
{
    PaperStage stage;
    stage.penPress({250, 200}, 0.5, Qt::ControlModifier);
    QVERIFY(!stage.scene()->hasActiveStroke());
    stage.penMove({300, 200});
    stage.penRelease({300, 200});
    QVERIFY(stage.strokes.empty());
}

void tst_Paper::otherToolsStartNoStroke()
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

void tst_Paper::paperWithoutSceneTakesPresses()
{
    PaperStage stage;
    stage.paper->setCurrentScene(nullptr);
    stage.penLine(arc());
    stage.wheel({100, 100}, {}, {0, 120}, Qt::ControlModifier);
    QVERIFY(stage.strokes.empty());
    QVERIFY(!stage.paper->isDevicePressed());
}

void tst_Paper::drawingIsAskedForBeforeTheStrokeBegins()
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

void tst_Paper::positionWithoutDrawingTakesNoStroke()
{
    PaperStage stage;
    stage.scene()->setActiveFrameAndLayer(2, 0, Model::Scene::AllowFrameAfterLast);
    QVERIFY(!stage.scene()->activeCellHasDrawing());
    stage.penPress({250, 200});
    QVERIFY(!stage.scene()->hasActiveStroke());
    stage.penMove({280, 200});
    stage.penRelease({280, 200});
    QVERIFY(stage.strokes.empty());
}

void tst_Paper::drawingMadeOnRequestTakesTheStroke()
{
    PaperStage stage;
    stage.scene()->setActiveFrameAndLayer(2, 0, Model::Scene::AllowFrameAfterLast);
    connect(stage.paper.get(), &UI::Paper::aboutToBeginStroke, this,
            [&] { stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing); });
    stage.penLine(arc());
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(stage.strokes[0]);
}

void tst_Paper::mouseRightAfterTabletIsSwallowed()
{
    PaperStage stage;
    stage.penLine({{200, 200}, {240, 200}});
    stage.mouseLine({{241, 200}, {241, 200}});
    QCOMPARE(stage.strokes.size(), size_t(1));
    stage.pause(20);
    stage.mouseLine({{241, 200}, {260, 200}});
    QCOMPARE(stage.strokes.size(), size_t(2));
}

void tst_Paper::mouseWhileTheTabletIsDownIsSwallowed()
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

void tst_Paper::quickSecondPressDrawsASecondStroke_data()
{
    QTest::addColumn<bool>("pen");
    QTest::addRow("pen") << true;
    QTest::addRow("mouse") << false;
}

void tst_Paper::quickSecondPressDrawsASecondStroke()
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

void tst_Paper::hoverGivesTheFirstDirection()
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

void tst_Paper::hoverIsForgottenWhenThePointerLeaves()
{
    PaperStage stage;
    stage.hover({180, 200});
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(stage.paper.get(), &leave);
    stage.penPress({200, 200});
    QVERIFY(!stage.scene()->activeStroke()->hasTangent());
    stage.penRelease({200, 200});
}

void tst_Paper::hoverAtThePressPointGivesWayToTheOneBefore()
{
    PaperStage stage;
    stage.hover({175, 200});
    stage.hover({200, 200});
    stage.hover({200, 200});
    stage.penPress({200, 200});
    const Model::SingleStroke *stroke = stage.scene()->activeStroke();
    QVERIFY(stroke);
    QVERIFY(stroke->hasTangent());
    const QLineF tangent = stroke->controlPoints().front().tangent;
    QVERIFY(tangent.dx() > 0.0);
    QVERIFY(std::abs(tangent.dy()) < 1e-6);
    stage.penRelease({200, 200});
}

void tst_Paper::pressAfterAPanHasNoPreviousPoint()
{
    PaperStage stage;
    stage.useTool(Tool::Type::Hand);
    stage.hover({170, 200});
    stage.penLine({{200, 200}, {230, 200}});
    stage.useTool(Tool::Type::Pen);
    stage.penPress({200, 200});
    QVERIFY(!stage.scene()->activeStroke()->hasTangent());
    stage.penRelease({200, 200});
}

void tst_Paper::hoverServesOneStrokeOnly()
{
    PaperStage stage;
    stage.hover({180, 200});
    stage.penLine({{200, 200}, {200, 200}});
    stage.penPress({300, 250});
    QVERIFY(!stage.scene()->activeStroke()->hasTangent());
    stage.penRelease({300, 250});
}

void tst_Paper::lostStrokesAreEnded_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"focus", "hide", "window", "button", "leave is not a loss"})
        QTest::addRow("%s", how) << QString::fromLatin1(how);
}

void tst_Paper::lostStrokesAreEnded()
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

void tst_Paper::sceneChangeEndsTheStrokeOnTheOldScene()
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

void tst_Paper::strokeGoesOnOutsideTheWidget()
{
    PaperStage stage;
    stage.mousePress({20, 200});
    stage.mouseMove({-30, 200});
    stage.mouseRelease({-30, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(isNear(stage.strokes[0]->samples().back().point, {-80, 150}, 1e-6));
}

void tst_Paper::penLeavingTheRangeEndsItsStroke()
{
    PaperStage stage;
    stage.penPress({200, 200});
    stage.penMove({230, 200});
    stage.penLeavesRange();
    QVERIFY(!stage.paper->isDevicePressed());
    QVERIFY(!stage.scene()->hasActiveStroke());
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(stage.strokes[0]);
    stage.pause(100);
    stage.mouseLine({{100, 100}, {130, 100}});
    QCOMPARE(stage.strokes.size(), size_t(2));
    // A release that comes after all ends nothing more.
    stage.penRelease({230, 200});
    QCOMPARE(stage.strokes.size(), size_t(2));
}

void tst_Paper::penLeavingTheRangeForgetsTheHover()
{
    PaperStage stage;
    stage.hover({165, 200});
    stage.penLeavesRange();
    stage.penPress({200, 200});
    QVERIFY(!stage.scene()->activeStroke()->hasTangent());
    stage.penRelease({200, 200});
}

void tst_Paper::penLeavingTheRangeLeavesTheMouse()
{
    PaperStage stage;
    stage.mousePress({200, 200});
    stage.penLeavesRange();
    QVERIFY(stage.scene()->hasActiveStroke());
    stage.mouseRelease({200, 200});
    QCOMPARE(stage.strokes.size(), size_t(1));
}

void tst_Paper::mouseThatWasReleasedElsewhereLetsThePenDraw()
{
    PaperStage stage;
    QWindow other;
    other.setFlags(Qt::FramelessWindowHint);
    other.setGeometry(600, 30, 50, 50);
    other.create();
    stage.mousePress({200, 200});
    QWindowSystemInterface::handleMouseEvent(&other, 1900, {5, 5}, {605, 35}, Qt::NoButton, Qt::LeftButton,
                                             QEvent::MouseButtonRelease);
    QWindowSystemInterface::flushWindowSystemEvents();
    // The paper knows nothing of it.
    QVERIFY(stage.paper->isDevicePressed());
    stage.pause(1000);
    stage.penLine({{250, 200}, {280, 200}});
    QCOMPARE(stage.strokes.size(), size_t(2));
    QVERIFY(stage.strokes[1]);
    QVERIFY(isNear(stage.strokes[1]->samples().front().point, {200, 150}, 1e-6));
}

void tst_Paper::rightButtonIsReported()
{
    PaperStage stage;
    const QSignalSpy right(stage.paper.get(), &UI::Paper::rightButtonPressed);
    stage.mousePress({200, 200}, Qt::RightButton, Qt::ShiftModifier);
    stage.mouseRelease({200, 200}, Qt::RightButton);
    QCOMPARE(right.count(), 1);
    QCOMPARE(right.first().first().value<Qt::KeyboardModifiers>(), Qt::ShiftModifier);
    QVERIFY(stage.strokes.empty());
}

void tst_Paper::rightButtonDuringAStrokeIsIgnored()
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

void tst_Paper::barrelButtonIsReported()
{
    PaperStage stage;
    const QSignalSpy right(stage.paper.get(), &UI::Paper::rightButtonPressed);
    stage.pen({200, 200}, 0.0, Qt::RightButton);
    stage.pen({200, 200}, 0.0, Qt::NoButton);
    QCOMPARE(right.count(), 1);
    QVERIFY(stage.strokes.empty());
}

void tst_Paper::devicePressedFollowsTheContact()
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

QTEST_MAIN(tst_Paper)
#include "tst_paper.moc"
