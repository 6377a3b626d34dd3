#include "libmodel/render/offscreenrenderer.h"
#include "support/coveragemodel.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QImage>
#include <QTest>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <vector>

using Model::OffscreenRenderer;
using Model::Tool;
using Model::VertexStreams;
using TestSupport::CoverageModel;

namespace {

constexpr QSize frame(600, 500);
constexpr int grainSide = 2048;

QImage render(const VertexStreams &vertices, QSize size = frame, const QTransform &transform = {}, QPoint offset = {},
              float scale = 1.0F)
{
    QImage image(size, QImage::Format_Alpha8);
    image.fill(0);
    OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Pencil, offset, scale, image.rect(), transform,
                                             vertices);
    return image;
}

VertexStreams line(QPointF from, QPointF to, double radius)
{
    VertexStreams vertices;
    TestSupport::appendLine(vertices, {from, 1.0, radius}, {to, 1.0, radius});
    return vertices;
}

/// A stroke so wide that the frame lies in its even core: no softness and no grain, but the paper's tooth.
VertexStreams core()
{
    return line({-2000, 250}, {2600, 250}, 1500);
}

int largestDifference(const QImage &first, const QImage &second)
{
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x)
            largest = std::max(largest, std::abs(first.constScanLine(y)[x] - second.constScanLine(y)[x]));
    }
    return largest;
}

} // namespace

/// The paper as a pencil shows it. The built-in grain is the reference, looked up by this test on its own.
class tst_PencilGrain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { OffscreenRenderer::instance()->resize(frame); }

    void coreShowsTheToothTexelByTexel_data();
    void coreShowsTheToothTexelByTexel();
    void coreHasTheStatisticsOfThePaper();
    void thinLineShowsToothAndGrain();
    void grainIsFixedToThePaper_data();
    void grainIsFixedToThePaper();
    void grainRepeatsWithThePeriodOfThePaper();
    void renderScaleStretchesTheGrain();
    void everyTileStartsAtTheSameTextureOffset();
    void smallRectanglesShowTheSameGrainAsTheWhole();
    void otherPensShowNoGrain();

private:
    enum Channel { Red, Green };

    /// A channel of the grain, 0 to 1, linear between the centres of texels, repeating.
    double grainAt(Channel channel, double x, double y) const;
    /// The same at the centre of an image pixel. The renderer counts rows from the framebuffer's lower edge.
    double grainAtPixel(Channel channel, int x, int y, QPoint offset, double scale) const;

    QImage m_grain;
};

void tst_PencilGrain::initTestCase()
{
    QVERIFY(TestSupport::startRenderer(frame));
    m_grain = QImage(QStringLiteral(":/shaders/MRtexture.png")).convertToFormat(QImage::Format_RGB32);
    QCOMPARE(m_grain.size(), QSize(grainSide, grainSide));
}

double tst_PencilGrain::grainAt(Channel channel, double x, double y) const
{
    const auto texel = [&](double column, double row) {
        const auto wrapped = [](double value) {
            const int rest = static_cast<int>(value) % grainSide;
            return rest < 0 ? rest + grainSide : rest;
        };
        const QRgb pixel = m_grain.pixel(wrapped(column), wrapped(row));
        return (channel == Red ? qRed(pixel) : qGreen(pixel)) / 255.0;
    };
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const double right = x - 0.5 - left;
    const double down = y - 0.5 - top;
    return (texel(left, top) * (1 - right) + texel(left + 1, top) * right) * (1 - down) +
           (texel(left, top + 1) * (1 - right) + texel(left + 1, top + 1) * right) * down;
}

double tst_PencilGrain::grainAtPixel(Channel channel, int x, int y, QPoint offset, double scale) const
{
    const double fromBelow = OffscreenRenderer::instance()->size().height() - y - 0.5;
    return grainAt(channel, (offset.x() + x + 0.5) / scale, (offset.y() - fromBelow) / scale);
}

void tst_PencilGrain::coreShowsTheToothTexelByTexel_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::newRow("no offset") << QPoint(0, 0);
    QTest::newRow("offset") << QPoint(133, 71);
    QTest::newRow("across the seam") << QPoint(1900, 2000);
    QTest::newRow("negative") << QPoint(-37, -419);
}

void tst_PencilGrain::coreShowsTheToothTexelByTexel()
{
    QFETCH(QPoint, offset);
    const QImage image = render(core(), frame, {}, offset);
    double worst = 0;
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const double expected = 255 * grainAtPixel(Red, x, y, offset, 1.0);
            worst = std::max(worst, std::abs(image.constScanLine(y)[x] - expected));
        }
    }
    // The softness table is 254 at the very centre, and the texture unit's coordinates have few bits.
    QVERIFY2(worst <= 3, qPrintable(QString::number(worst)));
}

void tst_PencilGrain::coreHasTheStatisticsOfThePaper()
{
    const QImage image = render(core());
    std::vector<int> values;
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            values.push_back(image.constScanLine(y)[x]);
    }
    std::sort(values.begin(), values.end());
    const int median = values[values.size() / 2];
    const int tenth = values[values.size() / 10];
    // A part of the paper is near, not at, the statistics of the whole: median 231, tenth percentile 204, lowest 78.
    QVERIFY2(std::abs(median - 231) <= 3, qPrintable(QString::number(median)));
    QVERIFY2(std::abs(tenth - 204) <= 4, qPrintable(QString::number(tenth)));
    QVERIFY2(values.front() >= 76, qPrintable(QString::number(values.front())));
}

void tst_PencilGrain::thinLineShowsToothAndGrain()
{
    constexpr double radius = 0.8;
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{10, 250.5}, 1.0, radius}, {{590, 250.5}, 1.0, radius});
    const QImage image = render(vertices);
    // A thin line: softness at half way, grain at 1.5 - radius^(1/4), both the same at every pixel.
    const double softness = (CoverageModel::softnessTexel(0, 127) + CoverageModel::softnessTexel(0, 128)) / 2;
    const double texel = (1.5 - std::pow(radius, 0.25)) * 256 - 0.5;
    const int left = static_cast<int>(texel);
    const double share = texel - left;
    const double grain =
        (CoverageModel::grainTexel(left) * (1 - share) + CoverageModel::grainTexel(left + 1) * share) / 255;
    int different = 0;
    for (int x = 20; x < 580; ++x) {
        const double eaten = 1 - grain * grainAtPixel(Green, x, 250, {}, 1.0);
        const double expected = softness * eaten * grainAtPixel(Red, x, 250, {}, 1.0);
        const double value = image.constScanLine(250)[x];
        different += std::abs(value - 255) > 20 ? 1 : 0;
        QVERIFY2(std::abs(value - expected) <= 3,
                 qPrintable(QStringLiteral("column %1: %2, not %3").arg(x).arg(value).arg(expected)));
    }
    QVERIFY(different > 100);
}

void tst_PencilGrain::grainIsFixedToThePaper_data()
{
    QTest::addColumn<QRect>("part");
    QTest::addColumn<double>("radius");
    // Moved by even numbers: by odd ones a driver pairs other pixels when it chooses a level of detail.
    QTest::newRow("small part, thin") << QRect(100, 82, 90, 57) << 1.5;
    QTest::newRow("small part") << QRect(90, 60, 150, 140) << 12.0;
    QTest::newRow("large part") << QRect(20, 34, 501, 399) << 60.0;
}

void tst_PencilGrain::grainIsFixedToThePaper()
{
    QFETCH(QRect, part);
    QFETCH(double, radius);
    const VertexStreams vertices = line({60, 70}, {540, 400}, radius);
    const QImage whole = render(vertices);
    const QTransform moved = QTransform::fromTranslate(-part.left(), -part.top());
    const QImage alone = render(vertices, part.size(), moved, part.topLeft());
    QVERIFY(largestDifference(alone, whole.copy(part)) <= 2);
    QVERIFY(largestDifference(render(vertices, part.size(), moved), whole.copy(part)) > 20);
}

void tst_PencilGrain::grainRepeatsWithThePeriodOfThePaper()
{
    const VertexStreams vertices = line({60, 70}, {540, 400}, 30);
    const QImage image = render(vertices);
    QVERIFY(largestDifference(render(vertices, frame, {}, QPoint(grainSide, -grainSide)), image) <= 1);
    QVERIFY(largestDifference(render(vertices, frame, {}, QPoint(grainSide / 2, 0)), image) > 20);
}

void tst_PencilGrain::renderScaleStretchesTheGrain()
{
    constexpr double scale = 2.0;
    const QPoint offset(17, 5);
    const QImage image = render(core(), frame, {}, offset, float(scale));
    double worst = 0;
    for (int y = 0; y < frame.height(); y += 3) {
        for (int x = 0; x < frame.width(); ++x) {
            const double expected = 255 * grainAtPixel(Red, x, y, offset, scale);
            worst = std::max(worst, std::abs(image.constScanLine(y)[x] - expected));
        }
    }
    QVERIFY2(worst <= 4, qPrintable(QString::number(worst)));
}

void tst_PencilGrain::everyTileStartsAtTheSameTextureOffset()
{
    const QSize tile(150, 125);
    OffscreenRenderer::instance()->resize(tile);
    VertexStreams vertices;
    for (const QPointF corner : {QPointF(0, 0), QPointF(150, 0), QPointF(300, 250)})
        TestSupport::appendDot(vertices, {corner + QPointF(70, 60), 1.0, 40});
    const QImage image = render(vertices, frame, {}, QPoint(5, 9));
    const QImage first = image.copy(QRect(QPoint(0, 0), tile));
    // The pencil shows the grain here at all: at another offset the tile looks different.
    const QImage elsewhere = render(vertices, frame, {}, QPoint(405, 309)).copy(QRect(QPoint(0, 0), tile));
    QVERIFY(largestDifference(first, elsewhere) > 20);
    QVERIFY(largestDifference(image.copy(QRect(QPoint(150, 0), tile)), first) <= 2);
    QVERIFY(largestDifference(image.copy(QRect(QPoint(300, 250), tile)), first) <= 2);
}

void tst_PencilGrain::smallRectanglesShowTheSameGrainAsTheWhole()
{
    const VertexStreams vertices = line({60.3, 70.8}, {540.1, 400.6}, 25);
    const QImage whole = render(vertices);
    QImage mosaic(frame, QImage::Format_Alpha8);
    mosaic.fill(0);
    for (int y = 0; y < frame.height(); y += 83) {
        for (int x = 0; x < frame.width(); x += 101) {
            OffscreenRenderer::instance()->renderPen(mosaic, Tool::PenType::Pencil, {}, 1.0F, QRect(x, y, 101, 83), {},
                                                     vertices);
        }
    }
    QVERIFY(largestDifference(mosaic, whole) <= 1);
}

void tst_PencilGrain::otherPensShowNoGrain()
{
    for (const auto pen : {Tool::PenType::Marker, Tool::PenType::Brush}) {
        QImage image(frame, QImage::Format_Alpha8);
        image.fill(0);
        OffscreenRenderer::instance()->renderPen(image, pen, {}, 1.0F, image.rect(), {}, core());
        for (int y = 0; y < frame.height(); ++y) {
            const uchar *row = image.constScanLine(y);
            QVERIFY(std::all_of(row, row + frame.width(), [](uchar value) { return value >= 254; }));
        }
    }
}

QTEST_MAIN(tst_PencilGrain)
#include "tst_pencilgrain.moc"
