#include "libmodel/strokes/pointsegment.h"
#include "vertexchecks.h"

#include <QPainterPath>
#include <QtTest>

using Model::PointSegment;
using Model::VertexStreams;

class TestPointSegment : public QObject
{
    Q_OBJECT

private slots:
    void typeIsZero();
    void boundsEncloseTheDisc();
    void hasNoCaps();
    void bodyIsARoundCapWithTheRadiusAsTangent();
    void radiusZeroHasANullTangent();
    void pathOnlyMoves();
};

void TestPointSegment::typeIsZero()
{
    QCOMPARE(int(PointSegment({1, 2}, 1, 3).type()), 0);
}

void TestPointSegment::boundsEncloseTheDisc()
{
    // From 10.25 - 2.5 = 7.75 to 12.75, and from -5.5 to -0.5.
    QCOMPARE(PointSegment({10.25, -3}, 1, 2.5).boundingRect(), QRect(QPoint(7, -6), QPoint(12, -1)));
}

void TestPointSegment::hasNoCaps()
{
    VertexStreams streams;
    PointSegment({1, 2}, 1, 3).addStartCap(streams);
    PointSegment({1, 2}, 1, 3).addEndCap(streams);
    QVERIFY(streams.isEmpty());
}

void TestPointSegment::bodyIsARoundCapWithTheRadiusAsTangent()
{
    VertexStreams streams;
    PointSegment({1, 2}, 0.25, 3).addBody(streams);
    QVERIFY(isConsistent(streams, 300));
    QVERIFY(isNear(vertexAt(streams, 1).tangent, QPointF(3, 0)));
    QVERIFY(isNear(vertexAt(streams, 0).point, QPointF(1, 2)));
    QVERIFY(isNear(vertexAt(streams, 0).opacity, 0.25));
    QVERIFY(isNear(vertexAt(streams, 0).radius, 3));
}

void TestPointSegment::radiusZeroHasANullTangent()
{
    VertexStreams streams;
    PointSegment({1, 2}, 1, 0).addBody(streams);
    QVERIFY(isConsistent(streams, 300));
    for (int i = 0; i < 300; ++i)
        QCOMPARE(vertexAt(streams, i).tangent, QPointF(0, 0));
}

void TestPointSegment::pathOnlyMoves()
{
    QPainterPath path;
    const PointSegment segment({1, 2}, 1, 3);
    segment.moveToStart(path);
    QCOMPARE(path.currentPosition(), QPointF(1, 2));
    const int elements = path.elementCount();
    segment.extendPath(path);
    QCOMPARE(path.elementCount(), elements);
}

QTEST_APPLESS_MAIN(TestPointSegment)
#include "tst_pointsegment.moc"
