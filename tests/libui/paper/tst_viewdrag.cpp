#include "libui/paper/viewdrag.h"
#include "libui/paper/viewtransform.h"

#include <QTest>

#include <cmath>
#include <numbers>

using UI::ViewDrag;
using UI::ViewTransform;

namespace {

constexpr double tolerance = 1e-6;

bool isNear(QPointF a, QPointF b, double within = tolerance)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) < within;
}

/// A view of 800 x 600 onto a sheet of 1920 x 1080.
ViewTransform ordinaryView()
{
    ViewTransform view;
    view.setUsableRect({0, 0, 800, 600});
    view.setPaperRect({0, 0, 1920, 1080});
    return view;
}

ViewTransform turnedView(bool mirrored)
{
    ViewTransform view = ordinaryView();
    view.setMirrored(mirrored);
    view.rotatePaperTo(33.0);
    view.zoomAt({120, 90}, 0.7);
    view.panTo({100, 100}, {160, 70});
    return view;
}

/// \a point turned about \a pivot, counter-clockwise on the screen.
QPointF turned(QPointF point, QPointF pivot, double degrees)
{
    const double angle = degrees * std::numbers::pi / 180.0;
    const QPointF way = point - pivot;
    return pivot + QPointF(way.x() * std::cos(angle) + way.y() * std::sin(angle),
                           -way.x() * std::sin(angle) + way.y() * std::cos(angle));
}

void addMirrored()
{
    QTest::addColumn<bool>("mirrored");
    QTest::addRow("plain") << false;
    QTest::addRow("mirrored") << true;
}

} // namespace

/// Drags of the view and of a frame off its pegs.
class tst_ViewDrag : public QObject
{
    Q_OBJECT

private slots:
    void panCarriesWhatIsHeld_data() { addMirrored(); }
    void panCarriesWhatIsHeld();
    void zoomDragGoesByTheDiagonal_data();
    void zoomDragGoesByTheDiagonal();
    void dragAlongTheOtherDiagonalZoomsNothing();
    void zoomDragHoldsThePressPoint_data() { addMirrored(); }
    void zoomDragHoldsThePressPoint();
    void zoomDragBeyondTheLimitsHoldsAtTheLimit_data();
    void zoomDragBeyondTheLimitsHoldsAtTheLimit();
    void zoomDragInAnEmptyViewDoesNothing();
    void rotationTakesWhatIsHeldAlong_data() { addMirrored(); }
    void rotationTakesWhatIsHeldAlong();
    void rotationPastAFullTurnGoesOnUntilTheRelease();
    void rotationFromTheCentreItselfDoesNothing();
    void runningDragLeavesTheSettledView();
    void restartedDragCountsFromThePointer();
    void fingersKeepWhatIsBetweenThem_data() { addMirrored(); }
    void fingersKeepWhatIsBetweenThem();
    void fingersCannotPassTheLimits_data();
    void fingersCannotPassTheLimits();
    void fingersWithoutDistanceDoNothing();
    void frameOffItsPegsIsCarried_data() { addMirrored(); }
    void frameOffItsPegsIsCarried();
    void frameOffItsPegsIsTurnedAboutTheViewCentre_data() { addMirrored(); }
    void frameOffItsPegsIsTurnedAboutTheViewCentre();
    void dragsOfTheFrameLeaveTheSheet();
    void dragsOfTheFrameAddUp();
};

void tst_ViewDrag::panCarriesWhatIsHeld()
{
    QFETCH(bool, mirrored);
    ViewTransform view = turnedView(mirrored);
    const QPointF held = view.widgetToPaper().map(QPointF(200, 150));
    ViewDrag drag(ViewDrag::Kind::Pan, {200, 150});
    for (const QPointF to : {QPointF(300, 10), QPointF(-40, 700), QPointF(410, 377)}) {
        drag.moveTo(to, view);
        QVERIFY(isNear(view.paperToWidget().map(held), to));
    }
    drag.commit(view);
    QVERIFY(isNear(view.paperToWidget().map(held), {410, 377}));
}

void tst_ViewDrag::zoomDragGoesByTheDiagonal_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<double>("level");
    // The way splits into one part along the diagonal that falls to the right, and one across it, which doesn't count.
    // The former, measured by the view's 800 x 600, times 5, plus 1, is the factor.
    const double down = std::hypot(80.0 / 800.0, 80.0 / 600.0) * 5.0 + 1.0;
    const double half = std::hypot(40.0 / 800.0, 40.0 / 600.0) * 5.0 + 1.0;
    QTest::addRow("down the diagonal") << QPointF(80, 80) << down;
    QTest::addRow("up the diagonal") << QPointF(-80, -80) << 1.0 / down;
    QTest::addRow("right") << QPointF(80, 0) << half;
    QTest::addRow("down") << QPointF(0, 80) << half;
    QTest::addRow("left") << QPointF(-80, 0) << 1.0 / half;
    QTest::addRow("up") << QPointF(0, -80) << 1.0 / half;
    QTest::addRow("nowhere") << QPointF(0, 0) << 1.0;
}

void tst_ViewDrag::zoomDragGoesByTheDiagonal()
{
    QFETCH(QPointF, way);
    QFETCH(double, level);
    ViewTransform view = ordinaryView();
    ViewDrag drag(ViewDrag::Kind::Zoom, {300, 200});
    drag.moveTo(QPointF(300, 200) + way, view);
    QVERIFY2(std::abs(view.shownZoomLevel() - level) < tolerance, qPrintable(QString::number(view.shownZoomLevel())));
    QCOMPARE(view.zoomLevel(), 1.0);
    drag.commit(view);
    QVERIFY(std::abs(view.zoomLevel() - level) < tolerance);
}

void tst_ViewDrag::dragAlongTheOtherDiagonalZoomsNothing()
{
    ViewTransform view = ordinaryView();
    ViewDrag drag(ViewDrag::Kind::Zoom, {300, 200});
    for (const double way : {-190.0, -3.0, 5.0, 150.0}) {
        drag.moveTo({300 + way, 200 - way}, view);
        QVERIFY(std::abs(view.shownZoomLevel() - 1.0) < tolerance);
    }
}

void tst_ViewDrag::zoomDragHoldsThePressPoint()
{
    QFETCH(bool, mirrored);
    ViewTransform view = turnedView(mirrored);
    const QPointF held = view.widgetToPaper().map(QPointF(200, 150));
    const double rotation = view.rotation();
    ViewDrag drag(ViewDrag::Kind::Zoom, {200, 150});
    for (const QPointF to : {QPointF(300, 10), QPointF(-40, 700), QPointF(410, 377)}) {
        drag.moveTo(to, view);
        QVERIFY(isNear(view.paperToWidget().map(held), {200, 150}));
        QVERIFY(std::abs(view.shownRotation() - rotation) < tolerance);
    }
}

void tst_ViewDrag::zoomDragBeyondTheLimitsHoldsAtTheLimit_data()
{
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<double>("level");
    QTest::addRow("in") << QPointF(790, 590) << 16.0;
    QTest::addRow("out") << QPointF(10, 10) << 1.0 / 16.0;
}

void tst_ViewDrag::zoomDragBeyondTheLimitsHoldsAtTheLimit()
{
    QFETCH(QPointF, to);
    QFETCH(double, level);
    ViewTransform view = ordinaryView();
    // Each drag alone stays within: a few of them reach the limit.
    for (int i = 0; i < 8; ++i) {
        ViewDrag drag(ViewDrag::Kind::Zoom, {400, 300});
        drag.moveTo(to, view);
        QVERIFY(view.shownZoomLevel() < 16.0 + tolerance && view.shownZoomLevel() > 1.0 / 16.0 - tolerance);
        drag.commit(view);
    }
    QVERIFY(std::abs(view.zoomLevel() - level) < tolerance);
}

void tst_ViewDrag::zoomDragInAnEmptyViewDoesNothing()
{
    ViewTransform view;
    ViewDrag drag(ViewDrag::Kind::Zoom, {0, 0});
    drag.moveTo({50, 50}, view);
    QVERIFY(std::abs(view.shownZoomLevel() - 1.0) < tolerance);
}

void tst_ViewDrag::rotationTakesWhatIsHeldAlong()
{
    QFETCH(bool, mirrored);
    ViewTransform view = turnedView(mirrored);
    const QPointF center(400, 300);
    const QPointF press(600, 220);
    const QPointF held = view.widgetToPaper().map(press);
    const QPointF middle = view.widgetToPaper().map(center);
    ViewDrag drag(ViewDrag::Kind::Rotate, press, center);
    for (const double degrees : {15.0, 100.0, -77.0, 179.0}) {
        drag.moveTo(turned(press, center, degrees), view);
        QVERIFY(isNear(view.paperToWidget().map(held), turned(press, center, degrees)));
        QVERIFY(isNear(view.paperToWidget().map(middle), center));
    }
}

void tst_ViewDrag::rotationPastAFullTurnGoesOnUntilTheRelease()
{
    ViewTransform view = ordinaryView();
    const QPointF center(400, 300);
    const QPointF press(600, 300);
    ViewDrag drag(ViewDrag::Kind::Rotate, press, center);
    for (int degrees = 0; degrees <= 370; degrees += 10) {
        drag.moveTo(turned(press, center, degrees), view);
        const double shown = std::remainder(view.shownRotation() - degrees, 360.0);
        QVERIFY2(std::abs(shown) < tolerance, qPrintable(QString::number(degrees)));
    }
    drag.commit(view);
    QVERIFY(std::abs(view.rotation() - 10.0) < tolerance);
    // The next drag begins from there, at nothing.
    ViewDrag next(ViewDrag::Kind::Rotate, press, center);
    next.moveTo(press, view);
    QVERIFY(std::abs(view.shownRotation() - 10.0) < tolerance);
}

void tst_ViewDrag::rotationFromTheCentreItselfDoesNothing()
{
    ViewTransform view = ordinaryView();
    ViewDrag drag(ViewDrag::Kind::Rotate, {400, 300}, {400, 300});
    drag.moveTo({500, 320}, view);
    QVERIFY(std::abs(view.shownRotation()) < tolerance);
}

void tst_ViewDrag::runningDragLeavesTheSettledView()
{
    ViewTransform view = ordinaryView();
    ViewDrag drag(ViewDrag::Kind::Zoom, {300, 200});
    drag.moveTo({380, 280}, view);
    drag.moveTo({300, 200}, view);
    QVERIFY(view.widgetToPaper() == ordinaryView().widgetToPaper());
}

void tst_ViewDrag::restartedDragCountsFromThePointer()
{
    ViewTransform view = ordinaryView();
    ViewDrag drag(ViewDrag::Kind::Pan, {300, 200});
    drag.moveTo({380, 280}, view);
    drag.commit(view);
    drag.restart();
    view.zoomAt({10, 10}, 0.5);
    const QPointF held = view.widgetToPaper().map(QPointF(380, 280));
    drag.moveTo({400, 290}, view);
    QVERIFY(isNear(view.paperToWidget().map(held), {400, 290}));
    QCOMPARE(drag.press(), QPointF(300, 200));
}

void tst_ViewDrag::fingersKeepWhatIsBetweenThem()
{
    QFETCH(bool, mirrored);
    ViewTransform view = turnedView(mirrored);
    const QLineF before(250, 210, 410, 260);
    // Carried by (70, -35), turned by 40 degrees clockwise, and half as far apart again.
    const QPointF center = before.center() + QPointF(70, -35);
    const auto finger = [&](QPointF was) { return turned(center + 1.5 * (was - before.center()), center, -40.0); };
    const QPointF first = view.widgetToPaper().map(before.p1());
    const QPointF second = view.widgetToPaper().map(before.p2());
    view.setFingersDelta({before.center(), 12.0, 2.0}, {center, 52.0, 3.0});
    QVERIFY(isNear(view.paperToWidget().map(first), finger(before.p1())));
    QVERIFY(isNear(view.paperToWidget().map(second), finger(before.p2())));
}

void tst_ViewDrag::fingersCannotPassTheLimits_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("level");
    QTest::addRow("apart") << 3.0 << 16.0;
    QTest::addRow("together") << 0.3 << 1.0 / 16.0;
    QTest::addRow("all at once") << 1e9 << 16.0;
}

void tst_ViewDrag::fingersCannotPassTheLimits()
{
    QFETCH(double, scale);
    QFETCH(double, level);
    ViewTransform view = ordinaryView();
    for (int i = 0; i < 12; ++i) {
        view.setFingersDelta({{300, 200}, 0.0, 1.0}, {{300, 200}, 0.0, scale});
        QVERIFY(view.shownZoomLevel() < 16.0 + tolerance && view.shownZoomLevel() > 1.0 / 16.0 - tolerance);
        view.commitDelta();
    }
    QVERIFY(std::abs(view.zoomLevel() - level) < tolerance);
}

void tst_ViewDrag::fingersWithoutDistanceDoNothing()
{
    ViewTransform view = ordinaryView();
    view.setFingersDelta({{300, 200}, 0.0, 0.0}, {{350, 200}, 10.0, 1.0});
    view.setFingersDelta({{300, 200}, 0.0, 1.0}, {{350, 200}, 10.0, 0.0});
    QVERIFY(view.widgetToPaper() == ordinaryView().widgetToPaper());
}

void tst_ViewDrag::frameOffItsPegsIsCarried()
{
    QFETCH(bool, mirrored);
    ViewTransform view = turnedView(mirrored);
    view.setOffPegs(QTransform::fromTranslate(17, -4).rotate(11.0));
    const QPointF held = view.widgetToPaper().map(QPointF(200, 150));
    ViewDrag drag(ViewDrag::Kind::OffPegsPan, {200, 150});
    QVERIFY(drag.movesFrame());
    drag.moveTo({290, 240}, view);
    QVERIFY(isNear(view.paperToWidget().map(held), {290, 240}));
    drag.commit(view);
    QVERIFY(isNear(view.paperToWidget().map(held), {290, 240}));
    QVERIFY(view.offPegs() == view.shownOffPegs());
}

void tst_ViewDrag::frameOffItsPegsIsTurnedAboutTheViewCentre()
{
    QFETCH(bool, mirrored);
    ViewTransform view = turnedView(mirrored);
    view.setOffPegs(QTransform::fromTranslate(17, -4).rotate(11.0));
    const QPointF center(400, 300);
    const QPointF press(700, 330);
    const QPointF held = view.widgetToPaper().map(press);
    const QPointF middle = view.widgetToPaper().map(center);
    ViewDrag drag(ViewDrag::Kind::OffPegsRotate, press);
    for (const double degrees : {25.0, -110.0}) {
        drag.moveTo(turned(press, center, degrees), view);
        QVERIFY(isNear(view.paperToWidget().map(held), turned(press, center, degrees)));
        QVERIFY(isNear(view.paperToWidget().map(middle), center));
    }
}

void tst_ViewDrag::dragsOfTheFrameLeaveTheSheet()
{
    ViewTransform view = turnedView(false);
    const QTransform sheet = view.widgetToDesk();
    ViewDrag drag(ViewDrag::Kind::OffPegsPan, {200, 150});
    QVERIFY(!view.isOffPegs());
    drag.moveTo({290, 240}, view);
    QVERIFY(view.isOffPegs());
    QVERIFY(view.offPegs().isIdentity());
    drag.commit(view);
    QVERIFY(view.widgetToDesk() == sheet);
    view.setOffPegs({});
    QVERIFY(!view.isOffPegs());
}

void tst_ViewDrag::dragsOfTheFrameAddUp()
{
    ViewTransform view = ordinaryView();
    for (int i = 0; i < 3; ++i) {
        ViewDrag drag(ViewDrag::Kind::OffPegsPan, {100, 100});
        drag.moveTo({110, 95}, view);
        drag.commit(view);
    }
    // At 100 percent a pixel of the view is one of the paper; paper runs against the way of the frame.
    QVERIFY(isNear(view.offPegs().map(QPointF(0, 0)), {-30, 15}));
}

QTEST_APPLESS_MAIN(tst_ViewDrag)
#include "tst_viewdrag.moc"
