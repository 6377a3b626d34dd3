#include "libmodel/strokes/pointsegment.h"
#include "vertexchecks.h"

#include <QPainterPath>
#include <QtTest>

using Model::PointSegment;
using Model::VertexStreams;

class tst_PointSegment : public QObject
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

void tst_PointSegment::typeIsZero()
{
    QCOMPARE(int(PointSegment({1, 2}, 1, 3).type()), 0);
}

void tst_PointSegment::boundsEncloseTheDisc()
{
    // From 10.25 - 2.5 = 7.75 to 12.75, and from -5.5 to -0.5.
    QCOMPARE(PointSegment({10.25, -3}, 1, 2.5).boundingRect(), QRect(QPoint(7, -6), QPoint(12, -1)));
}

void tst_PointSegment::hasNoCaps()
{
    VertexStreams streams;
    PointSegment({1, 2}, 1, 3).addStartCap(streams);
    PointSegment({1, 2}, 1, 3).addEndCap(streams);
    QVERIFY(streams.isEmpty());
}

void tst_PointSegment::bodyIsARoundCapWithTheRadiusAsTangent()
{
    VertexStreams streams;
    PointSegment({1, 2}, 0.25, 3).addBody(streams);
    QVERIFY(isConsistent(streams, 300));
    QVERIFY(isNear(vertexAt(streams, 1).tangent, QPointF(3, 0)));
    QVERIFY(isNear(vertexAt(streams, 0).point, QPointF(1, 2)));
    QVERIFY(isNear(vertexAt(streams, 0).opacity, 0.25));
    QVERIFY(isNear(vertexAt(streams, 0).radius, 3));
}

void tst_PointSegment::radiusZeroHasANullTangent()
{
    VertexStreams streams;
    PointSegment({1, 2}, 1, 0).addBody(streams);
    QVERIFY(isConsistent(streams, 300));
    for (int i = 0; i < 300; ++i)
        QCOMPARE(vertexAt(streams, i).tangent, QPointF(0, 0));
}

void tst_PointSegment::pathOnlyMoves()
{
    QPainterPath path;
    const PointSegment segment({1, 2}, 1, 3);
    segment.moveToStart(path);
    QCOMPARE(path.currentPosition(), QPointF(1, 2));
    const int elements = path.elementCount();
    segment.extendPath(path);
    QCOMPARE(path.elementCount(), elements);
}

QTEST_APPLESS_MAIN(tst_PointSegment)
#include "tst_pointsegment.moc"
