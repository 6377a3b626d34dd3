#include "libmodel/strokes/roundcap.h"
#include "vertexchecks.h"

#include <QLineF>
#include <QtTest>

using Model::addRoundCap;
using Model::VertexStreams;

class tst_RoundCap : public QObject
{
    Q_OBJECT

private slots:
    void fanHasAHundredTriangles();
    void firstTriangleIsDegenerate();
    void fanTurnsClockwiseInNinetyNineSteps();
    void lastTriangleClosesTheCircleExactly();
    void bothRimVerticesShareTheMeanTangent();
    void hubIsNotDisplaced();
    void nullTangentCollapsesTheFan();
    void streamsAreAppendedTo();
    void capsOfTheSameDiscAndDirectionCoverTheSame();
};

namespace {

const QPointF center(40.5, -3.25);
const QPointF tangent(3.0, 4.0);

VertexStreams cap()
{
    VertexStreams streams;
    addRoundCap(center, 0.75, 6.5, tangent, streams);
    return streams;
}

} // namespace

void tst_RoundCap::fanHasAHundredTriangles()
{
    QVERIFY(isConsistent(cap(), 300));
}

void tst_RoundCap::firstTriangleIsDegenerate()
{
    const VertexStreams streams = cap();
    QVERIFY(isNear(vertexAt(streams, 1).tangent, tangent));
    QVERIFY(isNear(vertexAt(streams, 2).tangent, tangent));
}

void tst_RoundCap::fanTurnsClockwiseInNinetyNineSteps()
{
    const VertexStreams streams = cap();
    for (int i = 0; i < 100; ++i) {
        // A line of length 5 set to an angle: counter-clockwise angles on a screen whose y points down.
        QLineF expected({0, 0}, tangent);
        expected.setAngle(QLineF({0, 0}, tangent).angle() - i * 360.0 / 99.0);
        QVERIFY2(isNear(vertexAt(streams, 3 * i + 2).tangent, expected.p2(), 1e-5), qPrintable(QString::number(i)));
        if (i > 0)
            QCOMPARE(vertexAt(streams, 3 * i + 1).tangent, vertexAt(streams, 3 * i - 1).tangent);
    }
}

void tst_RoundCap::lastTriangleClosesTheCircleExactly()
{
    const VertexStreams streams = cap();
    QCOMPARE(vertexAt(streams, 299).tangent, vertexAt(streams, 1).tangent);
}

void tst_RoundCap::bothRimVerticesShareTheMeanTangent()
{
    const VertexStreams streams = cap();
    for (int i = 0; i < 100; ++i) {
        const Vertex before = vertexAt(streams, 3 * i + 1);
        const Vertex after = vertexAt(streams, 3 * i + 2);
        QVERIFY(isNear(before.type, 0.6));
        QVERIFY(isNear(after.type, 0.6));
        QCOMPARE(before.mean, after.mean);
        QVERIFY(isNear(before.mean, (before.tangent + after.tangent) / 2, 1e-5));
    }
}

void tst_RoundCap::hubIsNotDisplaced()
{
    const VertexStreams streams = cap();
    for (int i = 0; i < 300; ++i) {
        const Vertex vertex = vertexAt(streams, i);
        QVERIFY(isNear(vertex.point, center));
        QVERIFY(isNear(vertex.opacity, 0.75));
        QVERIFY(isNear(vertex.radius, 6.5));
        if (i % 3 == 0) {
            QCOMPARE(vertex.tangent, QPointF(0, 0));
            QCOMPARE(vertex.type, 0.0);
            QCOMPARE(vertex.mean, QPointF(0, 0));
        }
    }
}

void tst_RoundCap::nullTangentCollapsesTheFan()
{
    VertexStreams streams;
    addRoundCap(center, 1.0, 0.0, {0, 0}, streams);
    QVERIFY(isConsistent(streams, 300));
    for (int i = 0; i < 300; ++i) {
        QCOMPARE(vertexAt(streams, i).tangent, QPointF(0, 0));
        QCOMPARE(vertexAt(streams, i).mean, QPointF(0, 0));
    }
}

void tst_RoundCap::streamsAreAppendedTo()
{
    VertexStreams streams = cap();
    addRoundCap({1, 2}, 0.5, 1.0, {1, 0}, streams);
    QVERIFY(isConsistent(streams, 600));
    QVERIFY(isNear(vertexAt(streams, 299).point, center));
    QVERIFY(isNear(vertexAt(streams, 300).point, QPointF(1, 2)));
}

void tst_RoundCap::capsOfTheSameDiscAndDirectionCoverTheSame()
{
    const Model::RoundCap cap{{1, 2}, 0.5, 4, {3, 0}};
    QVERIFY(cap.coversTheSameAs({{1, 2}, 0.5, 4, {50, 0.01}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2}, 0.5, 4, {50, 0.1}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2.5}, 0.5, 4, {3, 0}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2}, 0.6, 4, {3, 0}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2}, 0.5, 5, {3, 0}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2}, 0.5, 4, {3, 0.1}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2}, 0.5, 4, {-3, 0}}));
    QVERIFY(!cap.coversTheSameAs({{1, 2}, 0.5, 4, {0, 0}}));
}

QTEST_APPLESS_MAIN(tst_RoundCap)
#include "tst_roundcap.moc"
