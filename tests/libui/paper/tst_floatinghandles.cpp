#include "libui/paper/floatinghandles.h"

#include <QImage>
#include <QPainter>
#include <QTest>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace UI;

namespace {

/// Handles of \a rect seen through \a place, with the pivot in its middle.
FloatingHandles handlesOf(const QRectF &rect, double scale = 1.0, const QTransform &place = QTransform())
{
    const FloatingHandles::Corners corners{place.map(rect.topLeft()), place.map(rect.topRight()),
                                           place.map(rect.bottomRight()), place.map(rect.bottomLeft())};
    return {corners, place.map(rect.center()), scale};
}

const QRectF large(100, 100, 300, 200);

/// The darkest and the lightest grey in an image.
std::pair<int, int> greys(const QImage &image)
{
    int darkest = 255;
    int lightest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            darkest = std::min(darkest, qGray(image.pixel(x, y)));
            lightest = std::max(lightest, qGray(image.pixel(x, y)));
        }
    }
    return {darkest, lightest};
}

} // namespace

Q_DECLARE_METATYPE(FloatingZone)

class tst_FloatingHandles : public QObject
{
    Q_OBJECT

private slots:
    void withoutHandlesAllIsOutside();
    void zonesFollowTheirTable_data();
    void zonesFollowTheirTable();
    void zonesTurnAndMirrorWithTheRectangle_data();
    void zonesTurnAndMirrorWithTheRectangle();
    void pivotIsAnywhereAndOnTopOfAll();
    void littleRoomHidesPivotAndMarks_data();
    void littleRoomHidesPivotAndMarks();
    void tinyRectangleHasItsHandlesAroundALargerOne();
    void handlesKeepTheirSizeAndScaleWithTheInterface();
    void handlesKeepTheirShapeAroundAParallelogram_data();
    void handlesKeepTheirShapeAroundAParallelogram();
    void handlePointsOutwards_data();
    void handlePointsOutwards();
    void rectangleWithoutExtentHasHandles();
    void paintingStaysWithinTheBounds_data();
    void paintingStaysWithinTheBounds();
    void everyHandleIsSeenOnAnyGround_data();
    void everyHandleIsSeenOnAnyGround();
};

void tst_FloatingHandles::withoutHandlesAllIsOutside()
{
    const FloatingHandles handles;
    QVERIFY(handles.isEmpty());
    QVERIFY(handles.bounds().isEmpty());
    QCOMPARE(handles.zoneAt({0, 0}), FloatingZone::Outside);
}

void tst_FloatingHandles::zonesFollowTheirTable_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<FloatingZone>("zone");
    const auto row = [](const char *name, QPointF position, FloatingZone zone) {
        QTest::newRow(name) << position << zone;
    };
    // The rectangle reaches from 100, 100 to 400, 300; its middle is 250, 200.
    row("pivot", {250, 200}, FloatingZone::Pivot);
    row("rim of the pivot", {250, 204.4}, FloatingZone::Pivot);
    row("beside the pivot", {250, 204.6}, FloatingZone::Move);
    row("top left", {100, 100}, FloatingZone::Scale);
    row("top right", {400, 100}, FloatingZone::Scale);
    row("bottom right", {400, 300}, FloatingZone::Scale);
    row("bottom left", {100, 300}, FloatingZone::Scale);
    row("circle at the top left", {88, 88}, FloatingZone::Rotate);
    row("circle at the top right", {412, 88}, FloatingZone::Rotate);
    row("circle at the bottom right", {412, 312}, FloatingZone::Rotate);
    row("circle at the bottom left", {88, 312}, FloatingZone::Rotate);
    row("rim of the circle", {412 + 6.9, 312}, FloatingZone::Rotate);
    row("rounded square right of the corner", {414, 297}, FloatingZone::ScaleRotate);
    row("rounded square below the corner", {397, 314}, FloatingZone::ScaleRotate);
    row("rounded square inside the corner", {394.5, 294.5}, FloatingZone::Move); // its corners are round
    row("rounded square beside the scale square", {394.5, 303}, FloatingZone::ScaleRotate);
    row("outside of the rounded square", {420, 297}, FloatingZone::Outside);
    row("top side", {250, 100}, FloatingZone::HorizontalEdge);
    row("bottom side", {250, 302}, FloatingZone::HorizontalEdge);
    row("left side", {98, 200}, FloatingZone::VerticalEdge);
    row("right side", {400, 205}, FloatingZone::VerticalEdge);
    row("side without a mark", {200, 103}, FloatingZone::Move);
    row("inside", {150, 150}, FloatingZone::Move);
    row("left of it", {90, 200}, FloatingZone::Outside);
    row("far away", {1000, 1000}, FloatingZone::Outside);
    row("nowhere", {qQNaN(), 0}, FloatingZone::Outside);
}

void tst_FloatingHandles::zonesFollowTheirTable()
{
    QFETCH(const QPointF, position);
    QTEST(handlesOf(large).zoneAt(position), "zone");
}

void tst_FloatingHandles::zonesTurnAndMirrorWithTheRectangle_data()
{
    QTest::addColumn<QTransform>("place");
    QTest::newRow("turned") << QTransform().rotate(30);
    QTest::newRow("turned by more") << QTransform().rotate(200);
    QTest::newRow("mirrored") << QTransform::fromScale(-1, 1);
    QTest::newRow("turned and mirrored") << QTransform().rotate(-70).scale(1, -1);
}

void tst_FloatingHandles::zonesTurnAndMirrorWithTheRectangle()
{
    QFETCH(const QTransform, place);
    const FloatingHandles upright = handlesOf(large);
    const FloatingHandles turned = handlesOf(large, 1.0, place);
    // Off the grid of pixels, so that no point lies on a border.
    for (double y = 70.13; y < 330; y += 1.7) {
        for (double x = 70.29; x < 430; x += 1.7)
            QCOMPARE(turned.zoneAt(place.map(QPointF(x, y))), upright.zoneAt({x, y}));
    }
}

void tst_FloatingHandles::pivotIsAnywhereAndOnTopOfAll()
{
    const FloatingHandles::Corners corners{large.topLeft(), large.topRight(), large.bottomRight(), large.bottomLeft()};
    for (const QPointF pivot : {QPointF(400, 300), QPointF(412, 312), QPointF(250, 100), QPointF(-50, 700)}) {
        const FloatingHandles handles(corners, pivot, 1.0);
        QCOMPARE(handles.zoneAt(pivot), FloatingZone::Pivot);
        QVERIFY(handles.bounds().contains(pivot));
    }
}

void tst_FloatingHandles::littleRoomHidesPivotAndMarks_data()
{
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("isPivotShown");
    // 1.75 x 70 = 122.5
    QTest::newRow("enough") << QSizeF(122.5, 122.5) << 1.0 << true;
    QTest::newRow("too narrow") << QSizeF(122.4, 500) << 1.0 << false;
    QTest::newRow("too low") << QSizeF(500, 122.4) << 1.0 << false;
    QTest::newRow("large interface, enough") << QSizeF(183.75, 183.75) << 1.5 << true;
    QTest::newRow("large interface, too narrow") << QSizeF(183.7, 500) << 1.5 << false;
    QTest::newRow("small interface") << QSizeF(92, 92) << 0.75 << true;
}

void tst_FloatingHandles::littleRoomHidesPivotAndMarks()
{
    QFETCH(const QSizeF, size);
    QFETCH(const double, scale);
    QFETCH(const bool, isPivotShown);
    const QRectF rect({0, 0}, size);
    const FloatingHandles handles = handlesOf(rect, scale);
    QCOMPARE(handles.isPivotShown(), isPivotShown);
    QCOMPARE(handles.zoneAt(rect.center()), isPivotShown ? FloatingZone::Pivot : FloatingZone::Move);
    QCOMPARE(handles.zoneAt({rect.center().x(), 1}), isPivotShown ? FloatingZone::HorizontalEdge : FloatingZone::Move);
    QCOMPARE(handles.zoneAt({1, rect.center().y()}), isPivotShown ? FloatingZone::VerticalEdge : FloatingZone::Move);
    QCOMPARE(handles.zoneAt(rect.topLeft()), FloatingZone::Scale);
}

void tst_FloatingHandles::tinyRectangleHasItsHandlesAroundALargerOne()
{
    // 70 around the middle of a rectangle of 10 x 100: 35 to the left and the right of it, and as high as it is.
    const FloatingHandles handles = handlesOf(QRectF(195, 100, 10, 100));
    QCOMPARE(handles.corners()[FloatingHandles::TopLeft], QPointF(165, 100));
    QCOMPARE(handles.corners()[FloatingHandles::BottomRight], QPointF(235, 200));
    QCOMPARE(handles.zoneAt({165, 100}), FloatingZone::Scale);
    QCOMPARE(handles.zoneAt({180, 150}), FloatingZone::Move);
    QCOMPARE(handles.zoneAt({160, 150}), FloatingZone::Outside);
}

void tst_FloatingHandles::handlesKeepTheirSizeAndScaleWithTheInterface()
{
    for (const double scale : {0.75, 1.0, 1.25, 1.5}) {
        for (const double side : {200.0, 2000.0}) {
            const FloatingHandles handles = handlesOf(QRectF(0, 0, side, side), scale);
            int squares = 0;
            int circles = 0;
            int both = 0;
            // A tenth of a pixel is finer than any line of the handles.
            for (double at = -30 * scale; at < 30 * scale; at += 0.1) {
                const FloatingZone diagonal = handles.zoneAt({at, at});
                squares += diagonal == FloatingZone::Scale ? 1 : 0;
                circles += diagonal == FloatingZone::Rotate ? 1 : 0;
                both += handles.zoneAt({at, -10 * scale}) == FloatingZone::ScaleRotate ||
                                handles.zoneAt({at, -10 * scale}) == FloatingZone::Rotate
                            ? 1
                            : 0;
            }
            const auto isLength = [scale](int tenths, double expected) {
                return std::abs(tenths * 0.1 - expected * scale) < 0.35;
            };
            QVERIFY(isLength(squares, 10.0));
            QVERIFY(isLength(circles, 14.0 / std::sqrt(2.0))); // the diameter, seen along one axis of the diagonal
            QVERIFY(isLength(both, 25.0));
        }
    }
}

void tst_FloatingHandles::handlesKeepTheirShapeAroundAParallelogram_data()
{
    QTest::addColumn<double>("shear");
    QTest::addRow("none") << 0.0;
    QTest::addRow("slight") << 0.4;
    QTest::addRow("strong") << 3.0;
    QTest::addRow("strong to the other side") << -3.0;
}

// The same area of every zone can be pressed at each corner, however sharp that is.
void tst_FloatingHandles::handlesKeepTheirShapeAroundAParallelogram()
{
    QFETCH(double, shear);
    const FloatingHandles handles = handlesOf(large, 1.0, QTransform(1, 0, shear, 1, 0, 0));
    constexpr double step = 0.25;
    constexpr int reach = 120; // steps around the corner, beyond all of its handles
    for (const QPointF corner : handles.corners()) {
        int scale = 0;
        int rotate = 0;
        for (int y = -reach; y <= reach; ++y) {
            for (int x = -reach; x <= reach; ++x) {
                const FloatingZone zone = handles.zoneAt(corner + QPointF(x, y) * step);
                scale += zone == FloatingZone::Scale ? 1 : 0;
                rotate += zone == FloatingZone::Rotate ? 1 : 0;
            }
        }
        // A square of 10 units; a circle of 14, of which the square's corner takes at most a few hundredths.
        const double square = 100.0;
        const double circle = std::numbers::pi * 49.0;
        QVERIFY(std::abs(scale * step * step - square) < 0.06 * square);
        QVERIFY(std::abs(rotate * step * step - circle) < 0.06 * circle);
    }
}

void tst_FloatingHandles::handlePointsOutwards_data()
{
    QTest::addColumn<QTransform>("place");
    QTest::addColumn<QPointF>("corner");
    QTest::addColumn<double>("degrees");
    const QTransform upright;
    QTest::newRow("bottom right") << upright << large.bottomRight() << 45.0;
    QTest::newRow("bottom left") << upright << large.bottomLeft() << 135.0;
    QTest::newRow("top left") << upright << large.topLeft() << 225.0;
    QTest::newRow("top right") << upright << large.topRight() << 315.0;
    QTest::newRow("turned clockwise") << QTransform().rotate(30) << large.bottomRight() << 75.0;
    QTest::newRow("mirrored") << QTransform::fromScale(-1, 1) << large.bottomRight() << 135.0;
}

void tst_FloatingHandles::handlePointsOutwards()
{
    QFETCH(const QTransform, place);
    QFETCH(const QPointF, corner);
    QFETCH(const double, degrees);
    const double angle = handlesOf(large, 1.0, place).angleAt(place.map(corner));
    const double difference = std::remainder(angle - degrees, 360.0);
    QVERIFY2(std::abs(difference) < 1e-6, qPrintable(QString::number(angle)));
}

void tst_FloatingHandles::rectangleWithoutExtentHasHandles()
{
    const FloatingHandles handles = handlesOf(QRectF(50, 50, 0, 0));
    QCOMPARE(handles.corners()[FloatingHandles::TopLeft], QPointF(15, 15));
    QCOMPARE(handles.corners()[FloatingHandles::BottomRight], QPointF(85, 85));
    QCOMPARE(handles.zoneAt({50, 50}), FloatingZone::Move);
}

void tst_FloatingHandles::paintingStaysWithinTheBounds_data()
{
    QTest::addColumn<QTransform>("place");
    QTest::addColumn<double>("scale");
    QTest::newRow("upright") << QTransform() << 1.0;
    QTest::newRow("turned") << QTransform::fromTranslate(250, 20).rotate(40) << 1.5;
    QTest::newRow("small") << QTransform::fromTranslate(100, 100).scale(0.1, 0.1) << 0.75;
}

void tst_FloatingHandles::paintingStaysWithinTheBounds()
{
    QFETCH(const QTransform, place);
    QFETCH(const double, scale);
    const FloatingHandles handles = handlesOf(large, scale, place);
    QImage image(600, 600, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    handles.paint(&painter);
    painter.end();
    const QRect bounds = handles.bounds().toAlignedRect();
    int painted = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) == 0)
                continue;
            ++painted;
            QVERIFY(bounds.contains(x, y));
        }
    }
    QVERIFY(painted > 100);
}

void tst_FloatingHandles::everyHandleIsSeenOnAnyGround_data()
{
    QTest::addColumn<int>("ground");
    QTest::addColumn<QRect>("part");
    for (const int ground : {0, 60, 128, 200, 255}) {
        QTest::addRow("scale square on %d", ground) << ground << QRect(93, 93, 14, 14);
        QTest::addRow("circle on %d", ground) << ground << QRect(80, 80, 16, 16);
        QTest::addRow("mark on %d", ground) << ground << QRect(240, 94, 20, 12);
        QTest::addRow("pivot on %d", ground) << ground << QRect(242, 192, 16, 16);
        QTest::addRow("side on %d", ground) << ground << QRect(150, 96, 20, 8);
    }
}

void tst_FloatingHandles::everyHandleIsSeenOnAnyGround()
{
    QFETCH(const int, ground);
    QFETCH(const QRect, part);
    QImage image(500, 400, QImage::Format_RGB32);
    image.fill(QColor(ground, ground, ground));
    QPainter painter(&image);
    handlesOf(large).paint(&painter);
    painter.end();
    const auto [darkest, lightest] = greys(image.copy(part));
    constexpr int clearlySeen = 70;
    QVERIFY2(std::max(ground - darkest, lightest - ground) >= clearlySeen,
             qPrintable(QStringLiteral("%1 to %2").arg(darkest).arg(lightest)));
}

QTEST_MAIN(tst_FloatingHandles)
#include "tst_floatinghandles.moc"
