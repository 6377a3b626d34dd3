#include "libmodel/render/wedgeculling.h"

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/render/vertexstreams.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QImage>
#include <QTest>
#include <QTransform>

#include <cmath>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

using Model::leaveOutEmptyWedges;
using Model::OffscreenRenderer;
using Model::PixelWindow;
using Model::Tool;
using Model::VertexStreams;
using TestSupport::StrokeEnd;

namespace {

constexpr QSize frame(301, 220);
constexpr float feather = 0.65F;
constexpr qsizetype wholeCap = 300;
constexpr int penCount = 6;

const PixelWindow wholeFrame{{0, 0}, feather, QRect(QPoint(0, 0), frame)};

VertexStreams dot(QPointF center, double radius)
{
    VertexStreams vertices;
    TestSupport::appendDot(vertices, {center, 1.0, radius});
    return vertices;
}

/// Number of vertices that are left of \a vertices.
qsizetype remaining(const VertexStreams &vertices, const PixelWindow &window = wholeFrame)
{
    VertexStreams kept;
    if (!leaveOutEmptyWedges(vertices, window, kept))
        return vertices.vertexCount();
    return kept.vertexCount();
}

/// Dots, lines and arcs everywhere in the frame and across its borders, at no particular place within a pixel.
std::vector<VertexStreams> someStrokes(double radius)
{
    constexpr int count = 4;
    std::mt19937 random(static_cast<unsigned>(radius * 100));
    std::uniform_real_distribution<double> x(-5.0, frame.width() + 5.0);
    std::uniform_real_distribution<double> y(-5.0, frame.height() + 5.0);
    std::uniform_real_distribution<double> angle(0.0, 360.0);
    std::vector<VertexStreams> strokes(count);
    for (VertexStreams &vertices : strokes) {
        for (int i = 0; i < 3; ++i) {
            const QPointF start(x(random), y(random));
            TestSupport::appendDot(vertices, {{x(random), y(random)}, 0.9, radius});
            TestSupport::appendLine(vertices, {start, 0.8, radius}, {start + QPointF(7.3, -2.1), 1.0, radius * 1.1});
            TestSupport::appendArc(vertices,
                                   {{x(random), y(random)}, 20.0, angle(random), 12.0 * (i - 1.5), 0.7, radius});
        }
        TestSupport::appendDot(vertices, {QPointF(40, 50), 1.0, radius});
        TestSupport::appendDot(vertices, {QPointF(80.5, 50.5), 1.0, radius});
    }
    return strokes;
}

/// All of \a strokes with all pens and erasers, in the whole frame and in a part of it.
std::vector<QImage> renderAll(const std::vector<VertexStreams> &strokes, const QTransform &transform)
{
    std::vector<QImage> images;
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (const VertexStreams &vertices : strokes) {
        for (int pen = 0; pen < penCount; ++pen) {
            for (const QRect rect : {QRect(QPoint(0, 0), frame), QRect(33, 41, 97, 62)}) {
                QImage image(frame, QImage::Format_Alpha8);
                image.fill(0);
                if (pen < 3)
                    renderer->renderPen(image, static_cast<Tool::PenType>(pen), {3, 4}, 1.0F, rect, transform,
                                        vertices);
                else
                    renderer->renderEraser(image, static_cast<Tool::EraserType>(pen - 3), {3, 4}, 1.0F, rect, transform,
                                           vertices);
                images.push_back(image);
            }
        }
    }
    return images;
}

bool startRendererThat(bool leavesOut)
{
    TestSupport::registerModelResources();
    OffscreenRenderer::instance()->shutDown();
    OffscreenRenderer::Options options;
    options.leaveOutEmptyTriangles = leavesOut;
    return OffscreenRenderer::instance()->initialize(frame, options);
}

} // namespace

class tst_WedgeCulling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thinCapKeepsOnlyWedgesThatReachAPixelCentre();
    void pixelCentreOnTheHubKeepsEveryWedge();
    void capBetweenPixelCentresLeavesNothing();
    void capOutsideTheWindowLeavesNothing();
    void shiftMovesTheCapIntoTheWindow();
    void everyWedgeAPixelCentreLiesInIsKept_data();
    void everyWedgeAPixelCentreLiesInIsKept();
    void largeCapStaysWhole();
    void capFarAwayStaysWhole();
    void capWithoutATangentStaysWhole();
    void fanOfUnequalStepsStaysWhole();
    void incompleteFanStaysWhole();
    void bodiesBetweenCapsAreKeptInOrder();
    void scratchMemoryIsOverwritten();
    void pixelsAreTheSameWithAllTriangles_data();
    void pixelsAreTheSameWithAllTriangles();
};

void tst_WedgeCulling::thinCapKeepsOnlyWedgesThatReachAPixelCentre()
{
    // The only centre within 0.3 + 0.65 pixels of (50.1, 50.5) is that of pixel (50, 50), and (49, 50) at 0.6: they lie
    // right and left of the hub, in one wedge each or on the border of two.
    const qsizetype left = remaining(dot({50.1, 50.5}, 0.3));
    QVERIFY2(left >= 2 * 3 && left <= 6 * 3, qPrintable(QString::number(left)));
}

void tst_WedgeCulling::pixelCentreOnTheHubKeepsEveryWedge()
{
    // The degenerate one may go.
    QVERIFY(remaining(dot({50.5, 50.5}, 1.0)) >= wholeCap - 3);
}

void tst_WedgeCulling::capBetweenPixelCentresLeavesNothing()
{
    // From a corner of pixels the nearest centres are 0.707 away, the rim 0.66.
    const qsizetype left = remaining(dot({50.0, 50.0}, 0.01));
    QVERIFY2(left <= 3, qPrintable(QString::number(left))); // the first wedge, if it is not exactly degenerate
}

void tst_WedgeCulling::capOutsideTheWindowLeavesNothing()
{
    for (const QPointF outside : {QPointF(-10, 50), QPointF(50, -10), QPointF(320, 50), QPointF(50, 240)})
        QVERIFY(remaining(dot(outside, 2.0)) <= 3);
}

void tst_WedgeCulling::shiftMovesTheCapIntoTheWindow()
{
    const PixelWindow moved{{1000, -2000}, feather, QRect(QPoint(0, 0), frame)};
    QCOMPARE(remaining(dot({-900, 2100}, 2.0), moved), remaining(dot({100, 100}, 2.0)));
    QVERIFY(remaining(dot({100, 100}, 2.0), moved) <= 3);
}

void tst_WedgeCulling::everyWedgeAPixelCentreLiesInIsKept_data()
{
    QTest::addColumn<double>("radius");
    for (const double radius : {0.1, 0.25, 0.7, 1.0, 1.9, 3.0, 5.3})
        QTest::addRow("%.2f", radius) << radius;
}

void tst_WedgeCulling::everyWedgeAPixelCentreLiesInIsKept()
{
    QFETCH(double, radius);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(40.0, 60.0);
    int whole = 0;
    for (int round = 0; round < 200; ++round) {
        const QPointF center(place(random), place(random));
        const VertexStreams vertices = dot(center, radius);
        VertexStreams kept;
        if (!leaveOutEmptyWedges(vertices, wholeFrame, kept)) {
            ++whole; // a pixel centre on the hub
            continue;
        }
        // Each centre within the polygon lies in the wedge of its angle, which begins at the first tangent's left.
        for (int y = 30; y < 70; ++y) {
            for (int x = 30; x < 70; ++x) {
                const QPointF way = QPointF(x + 0.5, y + 0.5) - center;
                if (std::hypot(way.x(), way.y()) > (radius + feather) * std::cos(std::numbers::pi / 99))
                    continue;
                const double turn = (std::atan2(way.y(), way.x()) + std::numbers::pi / 2) / (2 * std::numbers::pi);
                const auto wedge = static_cast<qsizetype>(std::floor((turn - std::floor(turn)) * 99)) + 1;
                const float *tangent = vertices.positions.data() + (3 * wedge + 1) * 4 + 2;
                bool found = false;
                for (qsizetype i = 1; i < kept.vertexCount(); i += 3) {
                    const float *other = kept.positions.data() + i * 4 + 2;
                    found = found || (other[0] == tangent[0] && other[1] == tangent[1]);
                }
                QVERIFY(found);
            }
        }
    }
    QVERIFY2(whole < 20, qPrintable(QString::number(whole)));
}

void tst_WedgeCulling::largeCapStaysWhole()
{
    for (const double radius : {20.0, 90.0})
        QCOMPARE(remaining(dot({100, 100}, radius)), wholeCap);
}

void tst_WedgeCulling::capFarAwayStaysWhole()
{
    QCOMPARE(remaining(dot({1.0e6, 50}, 2.0)), wholeCap);
    QCOMPARE(remaining(dot({std::nan(""), 50}, 2.0)), wholeCap);
}

void tst_WedgeCulling::capWithoutATangentStaysWhole()
{
    QCOMPARE(remaining(dot({50.2, 50.2}, 0.0)), wholeCap);
}

void tst_WedgeCulling::fanOfUnequalStepsStaysWhole()
{
    VertexStreams vertices = dot({50.2, 50.2}, 2.0);
    // A rim vertex in the midst of the fan, turned by a right angle.
    float *tangent = vertices.positions.data() + 151 * 4 + 2;
    tangent[0] = std::exchange(tangent[1], -tangent[0]);
    QCOMPARE(remaining(vertices), wholeCap);

    VertexStreams wider = dot({50.2, 50.2}, 2.0);
    wider.attributes[151 * 2 + 1] = 3.0F;
    QCOMPARE(remaining(wider), wholeCap);
}

void tst_WedgeCulling::incompleteFanStaysWhole()
{
    VertexStreams vertices = dot({50.2, 50.2}, 2.0);
    vertices.positions.resize(297 * 4);
    vertices.attributes.resize(297 * 2);
    vertices.types.resize(297 * 3);
    QCOMPARE(remaining(vertices), qsizetype(297));
}

void tst_WedgeCulling::bodiesBetweenCapsAreKeptInOrder()
{
    VertexStreams vertices;
    const StrokeEnd start{{50.0, 50.0}, 0.5, 0.01};
    const StrokeEnd end{{57.0, 50.0}, 0.5, 0.01};
    TestSupport::appendLine(vertices, start, end);
    TestSupport::appendLineBody(vertices, start, end);
    VertexStreams bodies;
    TestSupport::appendLineBody(bodies, start, end);
    VertexStreams kept;
    QVERIFY(leaveOutEmptyWedges(vertices, wholeFrame, kept));

    // All the streams, without the vertices of hubs and rims.
    VertexStreams keptBodies;
    for (size_t i = 0; i < static_cast<size_t>(kept.vertexCount()); ++i) {
        if (std::abs(kept.types[3 * i]) < 0.75F)
            continue;
        const auto copy = [i](const std::vector<float> &from, std::ptrdiff_t floats, std::vector<float> &to) {
            const auto at = from.begin() + static_cast<std::ptrdiff_t>(i) * floats;
            to.insert(to.end(), at, at + floats);
        };
        copy(kept.positions, 4, keptBodies.positions);
        copy(kept.attributes, 2, keptBodies.attributes);
        copy(kept.types, 3, keptBodies.types);
    }
    bodies.positions.insert(bodies.positions.end(), bodies.positions.begin(), bodies.positions.begin() + 24);
    QCOMPARE(keptBodies.vertexCount(), qsizetype(12));
    QVERIFY(keptBodies.positions == bodies.positions);
}

void tst_WedgeCulling::scratchMemoryIsOverwritten()
{
    VertexStreams kept = dot({10, 10}, 30);
    QVERIFY(leaveOutEmptyWedges(dot({50.2, 50.2}, 1.0), wholeFrame, kept));
    QVERIFY(kept.vertexCount() < wholeCap);
    QVERIFY(!leaveOutEmptyWedges(dot({50.2, 50.2}, 90.0), wholeFrame, kept));
    QVERIFY(kept.isEmpty());
    QVERIFY(!leaveOutEmptyWedges({}, wholeFrame, kept));
}

void tst_WedgeCulling::pixelsAreTheSameWithAllTriangles_data()
{
    QTest::addColumn<double>("radius");
    QTest::addColumn<QTransform>("transform");
    for (const double radius : {0.25, 0.5, 0.9, 1.0, 1.7, 2.5, 3.0, 4.4, 5.3, 5.4, 8.0, 20.0, 90.0}) {
        QTest::addRow("radius %.2f", radius) << radius << QTransform();
        QTest::addRow("radius %.2f, moved", radius) << radius << QTransform::fromTranslate(-12.37, 8.81);
    }
    QTest::newRow("turned") << 2.0 << QTransform().rotate(20);
    QTest::newRow("stretched") << 2.0 << QTransform::fromScale(0.9, 1.4);
    QTest::newRow("mirrored") << 2.0 << QTransform(-1, 0, 0, 1, frame.width(), 0);
}

void tst_WedgeCulling::pixelsAreTheSameWithAllTriangles()
{
    QFETCH(double, radius);
    QFETCH(QTransform, transform);
    const std::vector<VertexStreams> strokes = someStrokes(radius);
    QVERIFY(startRendererThat(false));
    const std::vector<QImage> all = renderAll(strokes, transform);
    QVERIFY(startRendererThat(true));
    const std::vector<QImage> fewer = renderAll(strokes, transform);
    for (size_t i = 0; i < all.size(); ++i)
        QVERIFY2(all[i] == fewer[i], qPrintable(QStringLiteral("image %1").arg(i)));
    QImage blank(frame, QImage::Format_Alpha8);
    blank.fill(0);
    QVERIFY(all.front() != blank);
}

QTEST_MAIN(tst_WedgeCulling)
#include "tst_wedgeculling.moc"
