#include "libmodel/strokes/arcgeometry.h"

#include <QtTest>

#include <cmath>

using Model::Circle;
using Model::circleThrough;

class tst_ArcGeometry : public QObject
{
    Q_OBJECT

private slots:
    void circlePassesBothPointsWithTheTangent_data();
    void circlePassesBothPointsWithTheTangent();
    void tangentAlongTheChordGivesNoCircle();
    void centreAtTheFirstPointGivesNoCircle();
    void onlyCentreAndRadiusZeroIsNull();
};

void tst_ArcGeometry::circlePassesBothPointsWithTheTangent_data()
{
    QTest::addColumn<QPointF>("first");
    QTest::addColumn<QPointF>("second");
    QTest::addColumn<QPointF>("direction");
    QTest::newRow("quarter, turning down") << QPointF(0, 0) << QPointF(10, 10) << QPointF(1, 0);
    QTest::newRow("quarter, turning up") << QPointF(0, 0) << QPointF(10, -10) << QPointF(7, 0);
    QTest::newRow("half") << QPointF(5, 5) << QPointF(5, 25) << QPointF(3, 0);
    QTest::newRow("nearly straight") << QPointF(100, 200) << QPointF(180, 202) << QPointF(1, 0);
    QTest::newRow("oblique") << QPointF(-3.5, 8.25) << QPointF(17, 2.5) << QPointF(1, 2);
}

void tst_ArcGeometry::circlePassesBothPointsWithTheTangent()
{
    QFETCH(QPointF, first);
    QFETCH(QPointF, second);
    QFETCH(QPointF, direction);
    const Circle circle = circleThrough(first, second, QLineF(first, first + direction));
    QVERIFY(!circle.isNull());
    const QPointF toFirst = first - circle.center;
    const QPointF toSecond = second - circle.center;
    QVERIFY(std::abs(std::hypot(toFirst.x(), toFirst.y()) - circle.radius) < 1e-9);
    QVERIFY(std::abs(std::hypot(toSecond.x(), toSecond.y()) - circle.radius) < 1e-9);
    // A tangent stands at right angles on the radius.
    QVERIFY(std::abs(QPointF::dotProduct(toFirst, direction)) < 1e-9 * circle.radius);
}

void tst_ArcGeometry::tangentAlongTheChordGivesNoCircle()
{
    // The bisector of a level chord is upright, and so is the normal of a level tangent: they never meet.
    const Circle circle = circleThrough({2, 3}, {12, 3}, QLineF(2, 3, 7, 3));
    QVERIFY(circle.isNull());
    QCOMPARE(circle.center, QPointF(0, 0));
    QCOMPARE(circle.radius, 0.0);
}

void tst_ArcGeometry::centreAtTheFirstPointGivesNoCircle()
{
    // A chord of 2e-7 has its midpoint 1e-7 from the first point; with an upright tangent the centre is that midpoint.
    const Circle circle = circleThrough({4, 4}, {4 + 2e-7, 4}, QLineF(4, 4, 4, 9));
    QVERIFY(circle.isNull());
    // Ten times the limit and more is a circle again.
    QVERIFY(!circleThrough({4, 4}, {4 + 1e-4, 4}, QLineF(4, 4, 4, 9)).isNull());
}

void tst_ArcGeometry::onlyCentreAndRadiusZeroIsNull()
{
    QVERIFY(Circle().isNull());
    QVERIFY(!(Circle{{0, 0}, 1.0}).isNull());
    QVERIFY(!(Circle{{1, 0}, 0.0}).isNull());
}

QTEST_APPLESS_MAIN(tst_ArcGeometry)
#include "tst_arcgeometry.moc"
