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
    void visibleCapIsAPartOfTheWholeOne_data();
    void visibleCapIsAPartOfTheWholeOne();
    void capOutsideOfTheViewHasNoTriangles();
    void capUnderAStretchIsDrawnWhole();
    void largeCapIsDrawnWhole();
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

void tst_RoundCap::visibleCapIsAPartOfTheWholeOne_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::newRow("as it is") << QTransform::fromTranslate(0.0, 10.0);
    QTest::newRow("doubled") << QTransform::fromScale(2, 2) * QTransform::fromTranslate(0.3, 20.0);
    QTest::newRow("turned") << QTransform().translate(50, 30).rotate(77);
}

void tst_RoundCap::visibleCapIsAPartOfTheWholeOne()
{
    QFETCH(QTransform, transform);
    const Model::RoundCap thin{center, 0.75, 0.8, tangent};
    VertexStreams whole;
    addRoundCap(thin, whole);
    VertexStreams visible;
    addVisibleRoundCap(thin, {transform, 0.65F, QRect(0, 0, 256, 256)}, visible);
    QVERIFY(isConsistent(visible, int(visible.vertexCount())));
    QVERIFY(visible.vertexCount() > 0);
    QVERIFY(visible.vertexCount() < whole.vertexCount());
    // Each of its triangles is one of the whole cap's, in the same order and to the last bit.
    const auto triangle = [](const std::vector<float> &stream, qsizetype floats, qsizetype i) {
        return std::vector<float>(stream.begin() + 3 * floats * i, stream.begin() + 3 * floats * (i + 1));
    };
    qsizetype at = 0;
    for (qsizetype i = 0; i < visible.vertexCount() / 3; ++i, ++at) {
        while (at < 100 && triangle(visible.positions, 4, i) != triangle(whole.positions, 4, at))
            ++at;
        QVERIFY(at < 100);
        QCOMPARE(triangle(visible.attributes, 2, i), triangle(whole.attributes, 2, at));
        QCOMPARE(triangle(visible.types, 3, i), triangle(whole.types, 3, at));
    }
}

void tst_RoundCap::capOutsideOfTheViewHasNoTriangles()
{
    VertexStreams vertices;
    addVisibleRoundCap({{100, 100}, 1.0, 2.0, tangent}, {QTransform(), 0.65F, QRect(0, 0, 50, 50)}, vertices);
    QVERIFY(vertices.isEmpty());
}

void tst_RoundCap::capUnderAStretchIsDrawnWhole()
{
    for (const QTransform &transform :
         {QTransform::fromScale(1, 2), QTransform::fromScale(-1, 1), QTransform(1, 0.2, 0, 1, 0, 0)}) {
        VertexStreams vertices;
        addVisibleRoundCap({{20, 20}, 1.0, 0.8, tangent}, {transform, 0.65F, QRect(0, 0, 50, 50)}, vertices);
        QCOMPARE(vertices.vertexCount(), 300);
    }
}

void tst_RoundCap::largeCapIsDrawnWhole()
{
    VertexStreams vertices;
    addVisibleRoundCap({{20, 20}, 1.0, 3.0, tangent}, {QTransform::fromScale(4, 4), 2.6F, QRect(0, 0, 256, 256)},
                       vertices);
    QCOMPARE(vertices.vertexCount(), 300);
}

QTEST_APPLESS_MAIN(tst_RoundCap)
#include "tst_roundcap.moc"
