#include "libmodel/strokes/arcsegment.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/singlestroke.h"
#include "strokemaking.h"
#include "support/coveragemodel.h"
#include "support/glfixture.h"

#include <QTransform>
#include <QtTest>

#include <cmath>
#include <functional>

using namespace Model;
using TestSupport::CoverageModel;
using Bounds = CoverageModel::Bounds;

/// The whole way from samples to pixels, for every tool, against a model that knows distances only.
class tst_SegmentPixels : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer({320, 240})); }
    void dot_data() { addTools(); }
    void dot();
    void line_data() { addTools(); }
    void line();
    void arc_data() { addTools(); }
    void arc();

private:
    static void addTools();
};

namespace {

constexpr double radius = 7.5;
constexpr double opacity = 0.8;
const QSize frame(320, 240);

std::unique_ptr<DrawingTool> makeTool(int index)
{
    const Tip tip{radius, radius, opacity, opacity};
    if (index < 3)
        return std::make_unique<TestPen>(tip, Tool::PenType(index));
    return std::make_unique<TestEraser>(tip, Tool::EraserType(index - 3));
}

/// Every pixel within the model's bounds. A pencil shows the tooth of the paper everywhere, which never goes below 78
/// of 255, and grain near its edge, which may eat it all.
void verifyPixels(const QImage &image, int tool, double tolerance, const std::function<Bounds(QPointF)> &model)
{
    constexpr double deepestTooth = 78.0 / 255.0;
    double inked = 0;
    double outside = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            Bounds bounds = model({x + 0.5, y + 0.5});
            const double value = image.constScanLine(y)[x];
            if (tool == 0) {
                const Bounds inner = model({x + 0.5, y + 0.5});
                const bool isCore = inner.lower > 0.99 * 254 * opacity;
                bounds.lower = isCore ? inner.lower * deepestTooth * (1 - 160.0 / 255) : 0.0;
            }
            inked += bounds.upper > 0;
            const double miss = std::max({0.0, bounds.lower - value, value - bounds.upper});
            outside += miss;
            QVERIFY2(miss <= tolerance, qPrintable(QStringLiteral("%1, %2: %3 not in %4 to %5")
                                                       .arg(x)
                                                       .arg(y)
                                                       .arg(value)
                                                       .arg(bounds.lower)
                                                       .arg(bounds.upper)));
        }
    }
    QVERIFY(inked > 0);
    QVERIFY2(outside / inked < 1.0, qPrintable(QString::number(outside / inked)));
}

QImage rendered(const SingleStroke &stroke)
{
    QImage image = blankCoverage(frame);
    stroke.render(image, image.rect(), QTransform(), QPoint(), 1.0);
    return image;
}

} // namespace

void tst_SegmentPixels::addTools()
{
    QTest::addColumn<int>("tool");
    const char *names[] = {"pencil", "marker", "brush", "kneaded eraser", "rubber eraser", "vinyl eraser"};
    for (int i = 0; i < 6; ++i)
        QTest::newRow(names[i]) << i;
}

void tst_SegmentPixels::dot()
{
    QFETCH(int, tool);
    const auto drawingTool = makeTool(tool);
    SingleStroke stroke(drawingTool.get());
    stroke.addSample(sampleAt(150.3, 110.8));
    const CoverageModel model(tool, 1.0);
    verifyPixels(rendered(stroke), tool, 4.0, [&](QPointF pixel) {
        return model.dot({{150.3, 110.8}, opacity, radius}, pixel);
    });
}

void tst_SegmentPixels::line()
{
    QFETCH(int, tool);
    const auto drawingTool = makeTool(tool);
    const auto stroke = straightStroke(*drawingTool, {60.5, 110.25}, {211.7, 60.1});
    const CoverageModel model(tool, 1.0);
    verifyPixels(rendered(*stroke), tool, 4.0, [&](QPointF pixel) {
        return model.line({{60.5, 110.25}, opacity, radius}, {{211.7, 60.1}, opacity, radius}, pixel);
    });
}

void tst_SegmentPixels::arc()
{
    QFETCH(int, tool);
    const auto drawingTool = makeTool(tool);
    SingleStroke stroke(drawingTool.get());
    // Coming from the left and finished at once: from the top of a circle of radius 100 around (120, 190), 40 degrees
    // on.
    const double radians = std::acos(-1.0) * 40 / 180;
    stroke.addFirstSample(sampleAt(120, 90), {100, 90});
    const QPointF end(120 + 100 * std::sin(radians), 190 - 100 * std::cos(radians));
    stroke.addSample(sampleAt(end.x(), end.y()));
    // 0.6 of it: 24 degrees.
    QCOMPARE(stroke.segments().size(), size_t(2));
    QCOMPARE(stroke.segments().back()->type(), Segment::Type::Arc);
    const TestSupport::ArcShape shape{{120, 190}, 100, 90, -24, opacity, radius};
    const CoverageModel model(tool, 1.0);
    // Ten straight steps stay a little within the circle, which shows at the soft edge.
    verifyPixels(rendered(stroke), tool, 20.0, [&](QPointF pixel) { return model.arc(shape, pixel); });
}

QTEST_MAIN(tst_SegmentPixels)
#include "tst_segmentpixels.moc"
