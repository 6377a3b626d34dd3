#include "libmodel/strokes/arcsegment.h"
#include "vertexchecks.h"

#include <QPainterPath>
#include <QtMath>
#include <QtTest>

using Model::ArcSegment;
using Model::Circle;
using Model::VertexStreams;

class tst_ArcSegment : public QObject
{
    Q_OBJECT

private slots:
    void typeIsTwo();
    void sweepFollowsTheDirection_data();
    void sweepFollowsTheDirection();
    void zeroLengthArcHasNoSweepAndAllItsVertices_data();
    void zeroLengthArcHasNoSweepAndAllItsVertices();
    void boundsReachOutAtSweptQuarters_data();
    void boundsReachOutAtSweptQuarters();
    void boundsReachOutWhereTheArcEndsAtAQuarter_data();
    void boundsReachOutWhereTheArcEndsAtAQuarter();
    void sweepAcrossAngleZeroExtendsTheBoundsToTheRight();
    void boundsEncloseEveryPointOfTheStroke();
    void bodyIsElevenQuadsTheFirstDegenerate();
    void opacityAndRadiusChangeEvenly();
    void tangentsPointAlongTheWay_data();
    void tangentsPointAlongTheWay();
    void capsUseTheArcsTangents();
    void pathFollowsTheArc();
};

namespace {

const Circle circle{{100, 200}, 50};

/// A point at \a degrees on the circle, counter-clockwise on a screen whose y points down.
QPointF at(double degrees, double radius = circle.radius)
{
    const double radians = qDegreesToRadians(degrees);
    return circle.center + QPointF(radius * std::cos(radians), -radius * std::sin(radians));
}

ArcSegment arc(double from, double to, bool clockwise)
{
    return {circle, at(from), at(to), clockwise, 0.2, 0.7, 2.0, 4.0};
}

} // namespace

void tst_ArcSegment::typeIsTwo()
{
    QCOMPARE(int(arc(10, 50, false).type()), 2);
}

void tst_ArcSegment::sweepFollowsTheDirection_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<bool>("clockwise");
    QTest::addColumn<double>("sweep");
    QTest::newRow("counter-clockwise") << 20.0 << 75.0 << false << 55.0;
    QTest::newRow("counter-clockwise through 360") << 350.0 << 15.0 << false << 25.0;
    QTest::newRow("counter-clockwise, nearly a turn") << 30.0 << 10.0 << false << 340.0;
    QTest::newRow("clockwise") << 75.0 << 20.0 << true << -55.0;
    QTest::newRow("clockwise through 0") << 15.0 << 350.0 << true << -25.0;
    QTest::newRow("clockwise, nearly a turn") << 10.0 << 30.0 << true << -340.0;
}

void tst_ArcSegment::sweepFollowsTheDirection()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(bool, clockwise);
    QFETCH(double, sweep);
    QVERIFY(isNear(arc(from, to, clockwise).sweep(), sweep, 1e-9));
    QVERIFY(isNear(arc(from, to, clockwise).startAngle(), from, 1e-9));
}

void tst_ArcSegment::zeroLengthArcHasNoSweepAndAllItsVertices_data()
{
    QTest::addColumn<bool>("clockwise");
    QTest::newRow("clockwise") << true;
    QTest::newRow("counter-clockwise") << false;
}

void tst_ArcSegment::zeroLengthArcHasNoSweepAndAllItsVertices()
{
    QFETCH(bool, clockwise);
    const ArcSegment segment = arc(33, 33, clockwise);
    QCOMPARE(segment.sweep(), 0.0);
    VertexStreams streams;
    segment.addBody(streams);
    QVERIFY(isConsistent(streams, 66));
}

void tst_ArcSegment::boundsReachOutAtSweptQuarters_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<bool>("clockwise");
    QTest::addColumn<QString>("reached");
    QTest::newRow("none") << 20.0 << 70.0 << false << QString();
    QTest::newRow("top") << 60.0 << 120.0 << false << QStringLiteral("t");
    QTest::newRow("top, clockwise") << 120.0 << 60.0 << true << QStringLiteral("t");
    QTest::newRow("left") << 150.0 << 200.0 << false << QStringLiteral("l");
    QTest::newRow("bottom") << 250.0 << 290.0 << false << QStringLiteral("b");
    QTest::newRow("right, through 360") << 340.0 << 20.0 << false << QStringLiteral("r");
    QTest::newRow("right, clockwise through 0") << 20.0 << 340.0 << true << QStringLiteral("r");
    QTest::newRow("top and left") << 45.0 << 225.0 << false << QStringLiteral("tl");
    QTest::newRow("the other way round") << 45.0 << 225.0 << true << QStringLiteral("rb");
    QTest::newRow("from the right") << 0.0 << 20.0 << false << QStringLiteral("r");
    QTest::newRow("from the top") << 90.0 << 120.0 << false << QStringLiteral("t");
    QTest::newRow("from the left") << 180.0 << 200.0 << false << QStringLiteral("l");
    QTest::newRow("from the bottom") << 270.0 << 290.0 << false << QStringLiteral("b");
    QTest::newRow("from the top, clockwise") << 90.0 << 60.0 << true << QStringLiteral("t");
    QTest::newRow("all") << 45.0 << 40.0 << false << QStringLiteral("rtlb");
}

void tst_ArcSegment::boundsReachOutAtSweptQuarters()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(bool, clockwise);
    QFETCH(QString, reached);
    const QRect bounds = arc(from, to, clockwise).boundingRect();
    // Circle of 50 and the larger radius of 4: 54 from the centre (100, 200). No other point comes that far.
    QCOMPARE(bounds.right() == 153, reached.contains(QLatin1Char('r')));
    QCOMPARE(bounds.top() == 146, reached.contains(QLatin1Char('t')));
    QCOMPARE(bounds.left() == 46, reached.contains(QLatin1Char('l')));
    QCOMPARE(bounds.bottom() == 253, reached.contains(QLatin1Char('b')));
}

void tst_ArcSegment::boundsReachOutWhereTheArcEndsAtAQuarter_data()
{
    QTest::addColumn<double>("end");
    QTest::newRow("0") << 0.0;
    QTest::newRow("90") << 90.0;
    QTest::newRow("180") << 180.0;
    QTest::newRow("270") << 270.0;
}

void tst_ArcSegment::boundsReachOutWhereTheArcEndsAtAQuarter()
{
    QFETCH(double, end);
    // The larger radius of 4 is that of the start: 54 from the centre come from the quarter, the end itself reaches 52.
    for (const bool clockwise : {false, true}) {
        const double start = clockwise ? end + 30 : end - 30;
        const QRect bounds = ArcSegment(circle, at(start), at(end), clockwise, 0.2, 0.7, 4.0, 2.0).boundingRect();
        QCOMPARE(bounds.right() == 153, end == 0.0);
        QCOMPARE(bounds.top() == 146, end == 90.0);
        QCOMPARE(bounds.left() == 46, end == 180.0);
        QCOMPARE(bounds.bottom() == 253, end == 270.0);
    }
}

void tst_ArcSegment::sweepAcrossAngleZeroExtendsTheBoundsToTheRight()
{
    const ArcSegment segment = arc(300, 60, false);
    // The end points lie at x = 125, with radii of 2 and 4; only the sweep reaches 154.
    QCOMPARE(segment.boundingRect().right(), 153);
}

void tst_ArcSegment::boundsEncloseEveryPointOfTheStroke()
{
    for (int from = 0; from < 360; from += 17) {
        for (int sweep = 3; sweep < 360; sweep += 23) {
            const QRect bounds = arc(from, from + sweep, false).boundingRect();
            for (int i = 0; i <= 100; ++i) {
                const double share = i / 100.0;
                const QPointF point = at(from + sweep * share);
                const double radius = 2.0 + 2.0 * share;
                // A radius that grows along the arc may lead out by a fraction of a pixel just past a quarter that is
                // not swept; a stroke's bounds have a pixel more all around.
                QVERIFY(QRectF(bounds)
                            .adjusted(-1, -1, 1, 1)
                            .contains(QRectF(point.x() - radius, point.y() - radius, 2 * radius, 2 * radius)));
            }
        }
    }
}

void tst_ArcSegment::bodyIsElevenQuadsTheFirstDegenerate()
{
    VertexStreams streams;
    arc(30, 80, false).addBody(streams);
    QVERIFY(isConsistent(streams, 66));
    const double codes[] = {1, -1, 1, -1, 1, -1};
    const bool isCurrent[] = {false, false, true, false, true, true};
    for (int quad = 0; quad <= 10; ++quad) {
        for (int corner = 0; corner < 6; ++corner) {
            const Vertex vertex = vertexAt(streams, 6 * quad + corner);
            const int step = isCurrent[corner] ? quad : std::max(quad - 1, 0);
            QVERIFY(isNear(vertex.point, at(30 + 5.0 * step)));
            QCOMPARE(vertex.type, codes[corner]);
            QCOMPARE(vertex.mean, QPointF(0, 0));
        }
    }
}

void tst_ArcSegment::opacityAndRadiusChangeEvenly()
{
    VertexStreams streams;
    arc(80, 30, true).addBody(streams);
    for (int quad = 0; quad <= 10; ++quad) {
        const Vertex vertex = vertexAt(streams, 6 * quad + 2);
        QVERIFY(isNear(vertex.opacity, 0.2 + 0.05 * quad));
        QVERIFY(isNear(vertex.radius, 2.0 + 0.2 * quad));
    }
}

void tst_ArcSegment::tangentsPointAlongTheWay_data()
{
    QTest::addColumn<bool>("clockwise");
    QTest::newRow("clockwise") << true;
    QTest::newRow("counter-clockwise") << false;
}

void tst_ArcSegment::tangentsPointAlongTheWay()
{
    QFETCH(bool, clockwise);
    const double from = 30;
    const double to = clockwise ? -40 : 100;
    VertexStreams streams;
    arc(from, to, clockwise).addBody(streams);
    for (int quad = 1; quad <= 10; ++quad) {
        const double degrees = from + (to - from) * quad / 10;
        const QPointF ahead = at(degrees + (clockwise ? -0.01 : 0.01)) - at(degrees);
        const QPointF tangent = vertexAt(streams, 6 * quad + 2).tangent;
        QVERIFY(isNear(std::hypot(tangent.x(), tangent.y()), circle.radius, 1e-4));
        const double cosine = QPointF::dotProduct(tangent, ahead) / std::hypot(ahead.x(), ahead.y()) / circle.radius;
        QVERIFY(cosine > 0.9999);
    }
}

void tst_ArcSegment::capsUseTheArcsTangents()
{
    VertexStreams streams;
    // From the right end of the circle upwards to its top, where the way goes to the left.
    arc(0, 90, false).addStartCap(streams);
    arc(0, 90, false).addEndCap(streams);
    QVERIFY(isConsistent(streams, 600));
    QVERIFY(isNear(vertexAt(streams, 0).point, QPointF(150, 200)));
    QVERIFY(isNear(vertexAt(streams, 1).tangent, QPointF(0, -50)));
    QVERIFY(isNear(vertexAt(streams, 0).radius, 2.0));
    QVERIFY(isNear(vertexAt(streams, 300).point, QPointF(100, 150)));
    QVERIFY(isNear(vertexAt(streams, 301).tangent, QPointF(-50, 0)));
    QVERIFY(isNear(vertexAt(streams, 300).radius, 4.0));
}

void tst_ArcSegment::pathFollowsTheArc()
{
    const ArcSegment segment = arc(200, 100, true);
    QPainterPath path;
    segment.moveToStart(path);
    QVERIFY(isNear(path.currentPosition(), at(200), 1e-9));
    segment.extendPath(path);
    QVERIFY(isNear(path.currentPosition(), at(100), 0.05));
    for (int i = 0; i <= 20; ++i) {
        const QPointF spoke = path.pointAtPercent(i / 20.0) - circle.center;
        QVERIFY(isNear(std::hypot(spoke.x(), spoke.y()), 50, 0.05));
    }
    QVERIFY(isNear(path.length(), 50 * qDegreesToRadians(100.0), 0.1));
}

QTEST_APPLESS_MAIN(tst_ArcSegment)
#include "tst_arcsegment.moc"
