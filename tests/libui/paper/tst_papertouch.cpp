#include "libmodel/tools/toolmanager.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QFocusEvent>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

bool isNear(QPointF a, QPointF b, double within = 1e-6)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= within;
}

} // namespace

/// Touchpad and touch screen move the sheet.
class tst_PaperTouch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void nativeZoomHoldsThePosition();
    void nativeSmartZoomGoesInAndOut_data();
    void nativeSmartZoomGoesInAndOut();
    void nativeRotationTurnsAboutThePosition_data();
    void nativeRotationTurnsAboutThePosition();
    void nativePanCarriesTheSheet();
    void nativeGestureCountsAsPressed();
    void nativeGestureUnderAPenIsIgnored();
    void penEndsANativeGesture();
    void nativeZoomStopsAtTheLimits();

    void twoFingersCarryTurnAndZoom_data();
    void twoFingersCarryTurnAndZoom();
    void pinchCannotPassTheLimitsEvenByRepetition();
    void oneFingerDoesNothing();
    void touchCountsAsPressed();
    void touchUnderAPenIsIgnored();
    void penTakesTheSheetFromTheFingers();
    void rightButtonDuringAGestureIsIgnored();
    void lostFocusEndsTheTouch();
    void viewChangedUnderTheFingersIsKept();
};

void tst_PaperTouch::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperTouch::nativeZoomHoldsThePosition()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({120, 90});
    stage.nativeGesture(Qt::BeginNativeGesture, 0.0, {120, 90});
    stage.nativeGesture(Qt::ZoomNativeGesture, 0.2, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 1.25) < 1e-9);
    stage.nativeGesture(Qt::ZoomNativeGesture, -0.6, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 1.25 / 1.6) < 1e-9);
    QVERIFY(isNear(stage.toWidget(held), {120, 90}));
    stage.nativeGesture(Qt::EndNativeGesture, 0.0, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 1.25 / 1.6) < 1e-9);
}

void tst_PaperTouch::nativeSmartZoomGoesInAndOut_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("level");
    QTest::addRow("in") << 1.0 << 3.0;
    QTest::addRow("out") << 0.0 << 1.0 / 3.0;
    QTest::addRow("half is out") << 0.5 << 1.0 / 3.0;
}

void tst_PaperTouch::nativeSmartZoomGoesInAndOut()
{
    QFETCH(double, value);
    QFETCH(double, level);
    PaperStage stage;
    const QPointF held = stage.toPaper({120, 90});
    stage.nativeGesture(Qt::SmartZoomNativeGesture, value, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - level) < 1e-9);
    QVERIFY(isNear(stage.toWidget(held), {120, 90}));
}

void tst_PaperTouch::nativeRotationTurnsAboutThePosition_data()
{
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<double>("rotation");
    QTest::addRow("plain") << false << -30.0;
    QTest::addRow("mirrored") << true << 30.0;
}

void tst_PaperTouch::nativeRotationTurnsAboutThePosition()
{
    QFETCH(bool, mirrored);
    QFETCH(double, rotation);
    PaperStage stage;
    stage.paper->setMirrorView(mirrored);
    const QPointF held = stage.toPaper({120, 90});
    const QPointF right = stage.toPaper({160, 90});
    stage.nativeGesture(Qt::RotateNativeGesture, 30.0, {120, 90});
    QVERIFY(std::abs(stage.paper->view().rotation() - rotation) < 1e-6);
    QVERIFY(isNear(stage.toWidget(held), {120, 90}));
    // On screen the sheet turns the same way, mirrored or not: clockwise, what was to the right is lower now.
    QVERIFY(isNear(stage.toWidget(right), {120 + 40 * std::cos(M_PI / 6), 90 + 40 * std::sin(M_PI / 6)}));
}

void tst_PaperTouch::nativePanCarriesTheSheet()
{
    PaperStage stage;
    const QPointF held = stage.toPaper({120, 90});
    stage.nativeGesture(Qt::PanNativeGesture, 0.0, {120, 90}, {13, -7});
    QVERIFY(isNear(stage.toWidget(held), {133, 83}));
}

void tst_PaperTouch::nativeGestureCountsAsPressed()
{
    PaperStage stage;
    const QSignalSpy pressed(stage.paper.get(), &UI::Paper::devicePressedChanged);
    stage.nativeGesture(Qt::BeginNativeGesture, 0.0, {120, 90});
    QVERIFY(stage.paper->isDevicePressed());
    stage.nativeGesture(Qt::EndNativeGesture, 0.0, {120, 90});
    QVERIFY(!stage.paper->isDevicePressed());
    QCOMPARE(pressed.count(), 2);
}

void tst_PaperTouch::nativeGestureUnderAPenIsIgnored()
{
    PaperStage stage;
    stage.penPress({200, 200});
    const QTransform view = stage.paper->view().widgetToPaper();
    stage.nativeGesture(Qt::BeginNativeGesture, 0.0, {120, 90});
    stage.nativeGesture(Qt::ZoomNativeGesture, 0.2, {120, 90});
    stage.nativeGesture(Qt::RotateNativeGesture, 10.0, {120, 90});
    stage.nativeGesture(Qt::EndNativeGesture, 0.0, {120, 90});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    QVERIFY(stage.scene()->hasActiveStroke());
    stage.penRelease({200, 200});
    QVERIFY(!stage.paper->isDevicePressed());
}

void tst_PaperTouch::penEndsANativeGesture()
{
    PaperStage stage;
    stage.nativeGesture(Qt::BeginNativeGesture, 0.0, {120, 90});
    stage.nativeGesture(Qt::ZoomNativeGesture, 0.2, {120, 90});
    // Its end got lost: the pen draws all the same.
    stage.penLine({{200, 200}, {230, 200}});
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(!stage.paper->isDevicePressed());
}

void tst_PaperTouch::nativeZoomStopsAtTheLimits()
{
    PaperStage stage;
    for (int i = 0; i < 60; ++i)
        stage.nativeGesture(Qt::ZoomNativeGesture, 0.3, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 16.0) < 1e-6);
    // More than the whole at once is no way through the limit.
    stage.nativeGesture(Qt::ZoomNativeGesture, 5.0, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 16.0) < 1e-6);
    for (int i = 0; i < 60; ++i)
        stage.nativeGesture(Qt::ZoomNativeGesture, -0.5, {120, 90});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 1.0 / 16.0) < 1e-6);
}

void tst_PaperTouch::twoFingersCarryTurnAndZoom_data()
{
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<QPoint>("first");
    QTest::addColumn<QPoint>("second");
    for (const bool mirrored : {false, true}) {
        const char *view = mirrored ? "mirrored" : "plain";
        QTest::addRow("%s, carried", view) << mirrored << QPoint(230, 190) << QPoint(330, 190);
        QTest::addRow("%s, apart", view) << mirrored << QPoint(150, 150) << QPoint(350, 150);
        QTest::addRow("%s, turned", view) << mirrored << QPoint(250, 100) << QPoint(250, 200);
        QTest::addRow("%s, all of it", view) << mirrored << QPoint(190, 120) << QPoint(300, 250);
    }
}

void tst_PaperTouch::twoFingersCarryTurnAndZoom()
{
    QFETCH(bool, mirrored);
    QFETCH(QPoint, first);
    QFETCH(QPoint, second);
    PaperStage stage;
    stage.paper->setMirrorView(mirrored);
    const QPoint from[] = {{200, 150}, {300, 150}};
    // The toolkit counts from where two fingers have first moved.
    stage.touch({from[0] - QPoint(1, 1), from[1] - QPoint(1, 1)});
    const QPointF before = stage.toPaper(from[0]);
    stage.touch({from[0], from[1]});
    QVERIFY(isNear(stage.toPaper(from[0]), before, 2.0));
    const QPointF held[] = {stage.toPaper(from[0]), stage.toPaper(from[1])};
    for (int i = 1; i <= 10; ++i)
        stage.touch({from[0] + (first - from[0]) * i / 10, from[1] + (second - from[1]) * i / 10});
    // What was under a finger is there still, to the pixel that fingers count in.
    QVERIFY(isNear(stage.toWidget(held[0]), first, 1.0));
    QVERIFY(isNear(stage.toWidget(held[1]), second, 1.0));
    stage.touch({});
    QVERIFY(isNear(stage.toWidget(held[0]), first, 1.0));
    QVERIFY(isNear(stage.toWidget(held[1]), second, 1.0));
    QVERIFY(!stage.paper->isDevicePressed());
    QVERIFY(stage.strokes.empty());
}

void tst_PaperTouch::pinchCannotPassTheLimitsEvenByRepetition()
{
    PaperStage stage;
    for (int i = 0; i < 4; ++i) {
        stage.touch({{240, 200}, {260, 200}});
        for (int spread = 20; spread <= 200; spread += 20) {
            stage.touch({{240 - spread, 200}, {260 + spread, 200}});
            QVERIFY(stage.paper->view().shownZoomLevel() < 16.0 + 1e-6);
        }
        stage.touch({});
    }
    QVERIFY(std::abs(stage.paper->zoomLevel() - 16.0) < 1e-6);
    for (int i = 0; i < 6; ++i) {
        stage.touch({{20, 200}, {480, 200}});
        for (int spread = 20; spread <= 220; spread += 20)
            stage.touch({{20 + spread, 200}, {480 - spread, 200}});
        stage.touch({});
    }
    QVERIFY(std::abs(stage.paper->zoomLevel() - 1.0 / 16.0) < 1e-6);
}

void tst_PaperTouch::oneFingerDoesNothing()
{
    PaperStage stage;
    const QTransform view = stage.paper->view().widgetToPaper();
    stage.touch({{200, 200}});
    stage.touch({{260, 230}});
    stage.touch({{300, 260}});
    stage.touch({});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    QVERIFY(stage.strokes.empty());
    QVERIFY(!stage.paper->isDevicePressed());
}

void tst_PaperTouch::touchCountsAsPressed()
{
    PaperStage stage;
    const QSignalSpy pressed(stage.paper.get(), &UI::Paper::devicePressedChanged);
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{210, 150}, {310, 150}});
    QVERIFY(stage.paper->isDevicePressed());
    stage.touch({});
    QVERIFY(!stage.paper->isDevicePressed());
    QCOMPARE(pressed.count(), 2);
}

void tst_PaperTouch::touchUnderAPenIsIgnored()
{
    PaperStage stage;
    stage.penPress({200, 200});
    const QTransform view = stage.paper->view().widgetToPaper();
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{150, 150}, {350, 150}});
    stage.penRelease({200, 200});
    // The hand rests on the screen still.
    stage.touch({{100, 150}, {400, 150}});
    stage.touch({});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    QCOMPARE(stage.strokes.size(), size_t(1));
    // The next touch counts again.
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{150, 150}, {350, 150}});
    stage.touch({});
    QVERIFY(std::abs(stage.paper->zoomLevel() - 2.0) < 0.1);
}

void tst_PaperTouch::penTakesTheSheetFromTheFingers()
{
    PaperStage stage;
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{190, 150}, {310, 150}});
    const QTransform view = stage.paper->view().widgetToPaper();
    stage.penPress({200, 200});
    stage.touch({{100, 150}, {400, 150}});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    stage.penRelease({200, 200});
    stage.touch({});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    QCOMPARE(stage.strokes.size(), size_t(1));
    QVERIFY(!stage.paper->isDevicePressed());
}

void tst_PaperTouch::rightButtonDuringAGestureIsIgnored()
{
    PaperStage stage;
    const QSignalSpy right(stage.paper.get(), &UI::Paper::rightButtonPressed);
    const auto press = [&] {
        stage.mousePress({200, 200}, Qt::RightButton);
        stage.mouseRelease({200, 200}, Qt::RightButton);
        return right.count();
    };
    stage.nativeGesture(Qt::BeginNativeGesture, 0.0, {120, 90});
    QCOMPARE(press(), 0);
    stage.nativeGesture(Qt::EndNativeGesture, 0.0, {120, 90});
    QCOMPARE(press(), 1);
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{190, 150}, {310, 150}});
    QCOMPARE(press(), 1);
    stage.touch({});
    QCOMPARE(press(), 2);
}

void tst_PaperTouch::lostFocusEndsTheTouch()
{
    PaperStage stage;
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{190, 150}, {310, 150}});
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(stage.paper.get(), &out);
    QVERIFY(!stage.paper->isDevicePressed());
    const QTransform view = stage.paper->view().widgetToPaper();
    stage.touch({{100, 150}, {400, 150}});
    stage.touch({{80, 150}, {420, 150}});
    QVERIFY(stage.paper->view().widgetToPaper() == view);
    stage.touch({});
}

void tst_PaperTouch::viewChangedUnderTheFingersIsKept()
{
    PaperStage stage;
    stage.touch({{200, 150}, {300, 150}});
    stage.touch({{190, 150}, {310, 150}});
    stage.paper->setMirrorView(true);
    const QPointF held = stage.toPaper({190, 150});
    stage.touch({{200, 170}, {320, 170}});
    QVERIFY(isNear(stage.toWidget(held), {200, 170}, 1.0));
    stage.touch({});
    QVERIFY(isNear(stage.toWidget(held), {200, 170}, 1.0));
}

QTEST_MAIN(tst_PaperTouch)
#include "tst_papertouch.moc"
