#include "libmodel/strokes/linesegment.h"
#include "vertexchecks.h"

#include <QPainterPath>
#include <QtTest>

using Model::LineSegment;
using Model::VertexStreams;

class tst_LineSegment : public QObject
{
    Q_OBJECT

private slots:
    void typeIsOne();
    void boundsEncloseBothEnds();
    void bodyIsTwoTriangles();
    void fourthVertexKeepsItsOwnCode();
    void capsUseTheLineAsTangent();
    void pathRunsFromStartToEnd();
};

namespace {

const QPointF start(10, 20);
const QPointF end(40, 60);

LineSegment line()
{
    return {start, end, 0.2, 0.8, 2.0, 5.0};
}

} // namespace

void tst_LineSegment::typeIsOne()
{
    QCOMPARE(int(line().type()), 1);
}

void tst_LineSegment::boundsEncloseBothEnds()
{
    // Circles: 8 to 12 and 18 to 22 around the start, 35 to 45 and 55 to 65 around the end; right and bottom exclusive.
    QCOMPARE(line().boundingRect(), QRect(QPoint(8, 18), QPoint(44, 64)));
}

void tst_LineSegment::bodyIsTwoTriangles()
{
    VertexStreams streams;
    line().addBody(streams);
    QVERIFY(isConsistent(streams, 6));
    const bool atStart[] = {true, true, false, true, false, false};
    for (int i = 0; i < 6; ++i) {
        const Vertex vertex = vertexAt(streams, i);
        QVERIFY(isNear(vertex.point, atStart[i] ? start : end));
        QVERIFY(isNear(vertex.tangent, QPointF(30, 40)));
        QVERIFY(isNear(vertex.opacity, atStart[i] ? 0.2 : 0.8));
        QVERIFY(isNear(vertex.radius, atStart[i] ? 2.0 : 5.0));
        QCOMPARE(vertex.mean, QPointF(0, 0));
    }
}

void tst_LineSegment::fourthVertexKeepsItsOwnCode()
{
    VertexStreams streams;
    line().addBody(streams);
    const double codes[] = {1, -1, 1, -11, 1, -1};
    for (int i = 0; i < 6; ++i)
        QCOMPARE(vertexAt(streams, i).type, codes[i]);
}

void tst_LineSegment::capsUseTheLineAsTangent()
{
    VertexStreams streams;
    line().addStartCap(streams);
    line().addEndCap(streams);
    QVERIFY(isConsistent(streams, 600));
    QVERIFY(isNear(vertexAt(streams, 0).point, start));
    QVERIFY(isNear(vertexAt(streams, 1).tangent, QPointF(30, 40)));
    QVERIFY(isNear(vertexAt(streams, 0).radius, 2.0));
    QVERIFY(isNear(vertexAt(streams, 300).point, end));
    QVERIFY(isNear(vertexAt(streams, 301).tangent, QPointF(30, 40)));
    QVERIFY(isNear(vertexAt(streams, 300).opacity, 0.8));
}

void tst_LineSegment::pathRunsFromStartToEnd()
{
    QPainterPath path;
    line().moveToStart(path);
    line().extendPath(path);
    QCOMPARE(path.elementCount(), 2);
    QCOMPARE(QPointF(path.elementAt(0)), start);
    QCOMPARE(QPointF(path.elementAt(1)), end);
}

QTEST_APPLESS_MAIN(tst_LineSegment)
#include "tst_linesegment.moc"
