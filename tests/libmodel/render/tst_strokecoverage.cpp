#include "libmodel/render/offscreenrenderer.h"
#include "support/coveragemodel.h"
#include "support/deviation.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QImage>
#include <QTest>
#include <QTransform>
#include <QtMath>

#include <algorithm>
#include <cmath>

using Model::OffscreenRenderer;
using Model::Tool;
using Model::VertexStreams;
using TestSupport::ArcShape;
using TestSupport::CoverageModel;
using TestSupport::Deviation;
using TestSupport::StrokeEnd;

namespace {

constexpr int firstPencilFree = 1; // the pencil shows the grain, which the model leaves out: see tst_pencilgrain
constexpr int penCount = 6;
constexpr QSize frame(301, 220);

// Allowed deviations in levels of 255: rounding to bytes in the curve's levels of detail and in the framebuffer.
constexpr double worstLevels = 4.0;
constexpr double meanLevels = 1.0;

/// Levels by which the middle of a chord is too light at the soft edge: the chord of \a degrees of a circle of \a
/// radius lies that far within it, and the edge falls from full to nothing over 1.3 pixels.
double levelsOfChord(double radius, double degrees)
{
    return radius * (1 - std::cos(qDegreesToRadians(degrees / 2))) * 255 / 1.3;
}

/// The same for a dot or cap, a polygon of 99 corners.
double levelsOfCap(double radius)
{
    return levelsOfChord(radius, 360.0 / 99);
}

QImage render(int penIndex, const VertexStreams &vertices, double scale = 1.0, const QTransform &transform = {})
{
    QImage image(frame, QImage::Format_Alpha8);
    image.fill(0);
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    const auto renderScale = static_cast<float>(scale);
    if (penIndex < 3) {
        renderer->renderPen(image, static_cast<Tool::PenType>(penIndex), {}, renderScale, image.rect(), transform,
                            vertices);
    } else {
        const auto eraser = static_cast<Tool::EraserType>(penIndex - 3);
        renderer->renderEraser(image, eraser, {}, renderScale, image.rect(), transform, vertices);
    }
    return image;
}

} // namespace

/// Every pixel of dots, lines and arcs against a model that knows distances and tables, but no triangles.
class tst_StrokeCoverage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }

    void dotMatchesModel_data();
    void dotMatchesModel();
    void lineMatchesModel_data();
    void lineMatchesModel();
    void arcMatchesModel_data();
    void arcMatchesModel();
    void thinLineTakesFullCurveValueAndIsThinnedByAntiAliasing_data();
    void thinLineTakesFullCurveValueAndIsThinnedByAntiAliasing();
    void opacityRunsLinearlyAlongALine();
    void widthRunsLinearlyAlongATaperedLine();
    void renderScaleDoublesTheFeather();
    void scaledTransformKeepsTheFeather();
    void anisotropicScaleStretchesTheLineAcross();
    void mirroredStrokeStaysSolid_data();
    void mirroredStrokeStaysSolid();
};

void tst_StrokeCoverage::dotMatchesModel_data()
{
    QTest::addColumn<int>("pen");
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("opacity");
    for (int pen = firstPencilFree; pen < penCount; ++pen) {
        for (const double radius : {0.4, 0.9, 1.3, 2.5, 6.0, 20.0, 90.0})
            QTest::addRow("pen %d, radius %.1f", pen, radius) << pen << radius << (pen == 2 ? 0.6 : 1.0);
    }
}

void tst_StrokeCoverage::dotMatchesModel()
{
    QFETCH(int, pen);
    QFETCH(double, radius);
    QFETCH(double, opacity);
    const StrokeEnd end{{150.3, 110.8}, opacity, radius};
    VertexStreams vertices;
    TestSupport::appendDot(vertices, end);
    const CoverageModel model(pen, 1.0);
    const Deviation deviation =
        TestSupport::compare(render(pen, vertices), [&](QPointF p) { return model.dot(end, p); });
    VERIFY_WITHIN(deviation, worstLevels + levelsOfCap(radius), meanLevels);
}

void tst_StrokeCoverage::lineMatchesModel_data()
{
    QTest::addColumn<int>("pen");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<double>("radius");
    for (int pen = firstPencilFree; pen < penCount; ++pen) {
        for (const double radius : {0.5, 1.5, 4.0, 20.0}) {
            QTest::addRow("pen %d, radius %.1f, level", pen, radius) << pen << QPointF(250, 110.25) << radius;
            QTest::addRow("pen %d, radius %.1f, upright", pen, radius) << pen << QPointF(60.5, 30) << radius;
            QTest::addRow("pen %d, radius %.1f, oblique", pen, radius) << pen << QPointF(211.7, 60.1) << radius;
            QTest::addRow("pen %d, radius %.1f, backwards", pen, radius) << pen << QPointF(30.5, 190.2) << radius;
        }
    }
}

void tst_StrokeCoverage::lineMatchesModel()
{
    QFETCH(int, pen);
    QFETCH(QPointF, to);
    QFETCH(double, radius);
    const StrokeEnd start{{60.5, 110.25}, 1.0, radius};
    const StrokeEnd end{to, 1.0, radius};
    VertexStreams vertices;
    TestSupport::appendLine(vertices, start, end);
    const CoverageModel model(pen, 1.0);
    VERIFY_WITHIN(TestSupport::compare(render(pen, vertices), [&](QPointF p) { return model.line(start, end, p); }),
                  worstLevels, meanLevels);
}

void tst_StrokeCoverage::arcMatchesModel_data()
{
    QTest::addColumn<int>("pen");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("sweep");
    for (int pen = firstPencilFree; pen < penCount; ++pen) {
        QTest::addRow("pen %d, left turn", pen) << pen << 10.0 << 40.0;
        QTest::addRow("pen %d, right turn", pen) << pen << 200.0 << -40.0;
        QTest::addRow("pen %d, across 0", pen) << pen << 345.0 << 30.0;
    }
}

void tst_StrokeCoverage::arcMatchesModel()
{
    QFETCH(int, pen);
    QFETCH(double, start);
    QFETCH(double, sweep);
    const ArcShape shape{{150, 110}, 80.0, start, sweep, 0.9, 8.0};
    VertexStreams vertices;
    TestSupport::appendArc(vertices, shape);
    const CoverageModel model(pen, 1.0);
    // An arc is ten straight steps, whose outer edge lies within the circle and whose inner one lies beyond it.
    const double chord = levelsOfChord(shape.arcRadius + shape.radius, sweep / 10);
    const Deviation deviation =
        TestSupport::compare(render(pen, vertices), [&](QPointF p) { return model.arc(shape, p); });
    VERIFY_WITHIN(deviation, worstLevels + chord, 2 * meanLevels);
}

void tst_StrokeCoverage::thinLineTakesFullCurveValueAndIsThinnedByAntiAliasing_data()
{
    QTest::addColumn<double>("radius");
    QTest::newRow("a tenth of a pixel") << 0.1;
    QTest::newRow("half a pixel") << 0.5;
    QTest::newRow("at the bound") << 1.0;
}

void tst_StrokeCoverage::thinLineTakesFullCurveValueAndIsThinnedByAntiAliasing()
{
    QFETCH(double, radius);
    constexpr int kneaded = 3;
    constexpr double opacity = 0.8;
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{50, 100.5}, opacity, radius}, {{250, 100.5}, opacity, radius});
    const QImage image = render(kneaded, vertices);

    const double curve = (CoverageModel::softnessTexel(kneaded, 127) + CoverageModel::softnessTexel(kneaded, 128)) / 2;
    const auto expected = [&](double distance) {
        return opacity * curve * std::clamp((radius - distance + 0.65) / 1.3, 0.0, 1.0);
    };
    for (const int row : {98, 99, 100, 101, 102}) {
        const double want = expected(std::abs(row - 100));
        QVERIFY2(std::abs(image.constScanLine(row)[150] - want) <= 1.5,
                 qPrintable(
                     QStringLiteral("row %1: %2 instead of %3").arg(row).arg(image.constScanLine(row)[150]).arg(want)));
    }
}

void tst_StrokeCoverage::opacityRunsLinearlyAlongALine()
{
    constexpr int vinyl = 5;
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{50, 100.5}, 0.2, 10}, {{250, 100.5}, 1.0, 10});
    const QImage image = render(vinyl, vertices);
    for (int x = 52; x < 248; ++x) {
        const double opacity = 0.2 + 0.8 * (x + 0.5 - 50) / 200;
        const double value = image.constScanLine(98)[x];
        QVERIFY2(std::abs(value - 255 * opacity) <= 1.6, qPrintable(QStringLiteral("column %1: %2").arg(x).arg(value)));
    }
}

void tst_StrokeCoverage::widthRunsLinearlyAlongATaperedLine()
{
    constexpr int brush = 2;
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{50, 110}, 1.0, 40}, {{250, 110}, 1.0, 20});
    const QImage image = render(brush, vertices);
    for (const int x : {60, 100, 150, 200, 240}) {
        const double radius = 40 - 20 * (x + 0.5 - 50) / 200;
        int solid = 0;
        for (int y = 0; y < frame.height(); ++y)
            solid += image.constScanLine(y)[x] >= 128 ? 1 : 0;
        QVERIFY2(std::abs(solid - 2 * radius) <= 1.5,
                 qPrintable(QStringLiteral("column %1: %2 rows").arg(x).arg(solid)));
    }
}

void tst_StrokeCoverage::renderScaleDoublesTheFeather()
{
    constexpr int marker = 1;
    const StrokeEnd paper{{70.2, 50.4}, 1.0, 12.0};
    const StrokeEnd pixels{paper.point * 2, 1.0, 24.0};
    VertexStreams vertices;
    TestSupport::appendDot(vertices, paper);
    const CoverageModel model(marker, 2.0);
    const QImage image = render(marker, vertices, 2.0, QTransform::fromScale(2, 2));
    VERIFY_WITHIN(TestSupport::compare(image, [&](QPointF p) { return model.dot(pixels, p); }), worstLevels,
                  meanLevels);
}

void tst_StrokeCoverage::scaledTransformKeepsTheFeather()
{
    constexpr int marker = 1;
    const StrokeEnd pixels{{140.4, 100.8}, 1.0, 24.0};
    VertexStreams vertices;
    TestSupport::appendDot(vertices, {pixels.point / 3, 1.0, 8.0});
    const CoverageModel model(marker, 1.0);
    const QImage image = render(marker, vertices, 1.0, QTransform::fromScale(3, 3));
    VERIFY_WITHIN(TestSupport::compare(image, [&](QPointF p) { return model.dot(pixels, p); }), worstLevels,
                  meanLevels);
}

void tst_StrokeCoverage::anisotropicScaleStretchesTheLineAcross()
{
    // A level line under a scale of 1 along and 3 across is a line of three times the radius, feather unchanged.
    constexpr int marker = 1;
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{50, 35}, 1.0, 6}, {{250, 35}, 1.0, 6});
    const QImage image = render(marker, vertices, 1.0, QTransform::fromScale(1, 3));
    const CoverageModel model(marker, 1.0);
    const StrokeEnd start{{-500, 105}, 1.0, 18};
    const StrokeEnd end{{800, 105}, 1.0, 18};
    for (int y = 0; y < frame.height(); ++y) {
        const CoverageModel::Bounds bounds = model.line(start, end, QPointF(150.5, y + 0.5));
        const double value = image.constScanLine(y)[150];
        QVERIFY2(value >= bounds.lower - 2 && value <= bounds.upper + 2,
                 qPrintable(
                     QStringLiteral("row %1: %2, not %3 to %4").arg(y).arg(value).arg(bounds.lower).arg(bounds.upper)));
    }
}

void tst_StrokeCoverage::mirroredStrokeStaysSolid_data()
{
    QTest::addColumn<QTransform>("transform");
    const QTransform back = QTransform::fromTranslate(-150, -110);
    const QTransform forth = QTransform::fromTranslate(150, 110);
    QTest::newRow("left to right") << back * QTransform::fromScale(-1, 1) * forth;
    QTest::newRow("top to bottom") << back * QTransform::fromScale(1, -1) * forth;
    QTest::newRow("half a turn") << back * QTransform::fromScale(-1, -1) * forth;
    QTest::newRow("quarter turn") << back * QTransform().rotate(90) * forth;
    QTest::newRow("mirrored quarter turn") << back * QTransform(0, 1, 1, 0, 0, 0) * forth;
    QTest::newRow("turned and mirrored") << back * QTransform().rotate(130).scale(-1, 1) * forth;
    QTest::newRow("turned and mirrored, slightly") << back * QTransform().rotate(20).scale(1, -1) * forth;
}

void tst_StrokeCoverage::mirroredStrokeStaysSolid()
{
    QFETCH(QTransform, transform);
    constexpr int marker = 1;
    const StrokeEnd start{{100, 90}, 1.0, 9.0};
    const StrokeEnd end{{190, 120}, 1.0, 9.0};
    VertexStreams vertices;
    TestSupport::appendLine(vertices, start, end);
    const StrokeEnd mappedStart{transform.map(start.point), 1.0, 9.0};
    const StrokeEnd mappedEnd{transform.map(end.point), 1.0, 9.0};
    const CoverageModel model(marker, 1.0);
    const QImage image = render(marker, vertices, 1.0, transform);
    VERIFY_WITHIN(TestSupport::compare(image, [&](QPointF p) { return model.line(mappedStart, mappedEnd, p); }),
                  worstLevels, meanLevels);
}

QTEST_MAIN(tst_StrokeCoverage)
#include "tst_strokecoverage.moc"
