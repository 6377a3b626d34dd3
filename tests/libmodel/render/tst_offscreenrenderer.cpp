#include "libmodel/render/offscreenrenderer.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QTest>
#include <QTransform>

#include <algorithm>
#include <vector>

using Model::OffscreenRenderer;
using Model::Tool;
using Model::VertexStreams;
using TestSupport::StrokeEnd;

namespace {

constexpr QSize frame(320, 200);

QImage blank(QSize size = frame, int value = 0)
{
    QImage image(size, QImage::Format_Alpha8);
    image.fill(value);
    return image;
}

QImage renderMarker(const VertexStreams &vertices, QSize size = frame, const QTransform &transform = {})
{
    QImage image = blank(size);
    OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Marker, {}, 1.0F, image.rect(), transform, vertices);
    return image;
}

VertexStreams line(QPointF from, QPointF to, double radius, double opacity = 1.0)
{
    VertexStreams vertices;
    TestSupport::appendLine(vertices, {from, opacity, radius}, {to, opacity, radius});
    return vertices;
}

bool isBlank(const QImage &image)
{
    return image == blank(image.size());
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

class tst_OffscreenRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(TestSupport::startRenderer(frame)); }

    void renderingBeforeInitializationDoesNothing();
    void secondInitializationOnlyResizes();
    void initializationWithoutASizeMakesNoFramebuffers();
    void resizeToAnInvalidSizeIsIgnored();
    void framebuffersTakeTheRequestedSize();
    void nothingIsRenderedWithoutFramebuffers();
    void contextStaysCurrent();
    void anotherCurrentContextDoesNotDisturb();

    void onlyTheRectangleIsReplaced();
    void formerContentOfTheRectangleIsReplacedNotBlended();
    void rectangleOutsideTheImageIsIgnored();
    void rectangleIsClippedToTheImage();
    void partsRenderedByRectanglesMatchTheWhole();
    void emptyStreamsClearTheRectangle();
    void paddedRowsKeepTheirPixelsInPlace();
    void imagesOfAnotherDepthAreLeftAlone();

    void imageLargerThanTheFramebuffersIsTiled();
    void framebuffersLargerThanTheImageReadTheRightRows();
    void overlapsDoNotDarken();
    void orderOfTrianglesDoesNotMatter();
    void fourthVertexOfALineMayHaveAnyRightEdgeType();
    void capOfRadiusZeroDrawsNothing();
    void penIndexBeyondTheListTakesTheLastCurve();
    void renderingTwiceGivesTheSamePixels();
    void warmingUpChangesNoPixels();
    void texturesOfTwoDimensionsGiveTheSamePixels_data();
    void texturesOfTwoDimensionsGiveTheSamePixels();
    void everyPenButThePencilHasItsOwnSoftness();

    void windowsAreTakenInTheirOrder();
    void partOfAWindowIsTheBytesOfTheWhole();
    void windowShowsWhatAnImageDoes_data();
    void windowShowsWhatAnImageDoes();
    void drawingsInOneWindowKeepTheHighestCoverage();
    void onlySoManyWindowsWaitAtATime();
    void windowsNeedFramebuffers();
    void resizingForgetsWaitingWindows();
};

void tst_OffscreenRenderer::renderingBeforeInitializationDoesNothing()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    renderer->shutDown();
    QVERIFY(!renderer->isInitialized());
    QCOMPARE(renderer->size(), QSize(0, 0));
    QImage image = blank(frame, 77);
    const VertexStreams vertices = line({10, 10}, {300, 150}, 10);
    renderer->renderPen(image, Tool::PenType::Brush, {}, 1.0F, image.rect(), {}, vertices);
    renderer->renderEraser(image, Tool::EraserType::VinylEraser, {}, 1.0F, image.rect(), {}, vertices);
    renderer->resize(QSize(50, 50));
    QCOMPARE(image, blank(frame, 77));
    QCOMPARE(renderer->size(), QSize(0, 0));
}

void tst_OffscreenRenderer::secondInitializationOnlyResizes()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    const QOpenGLContext *context = QOpenGLContext::currentContext();
    QVERIFY(context);
    QVERIFY(renderer->initialize(QSize(111, 99)));
    QCOMPARE(renderer->size(), QSize(111, 99));
    QCOMPARE(QOpenGLContext::currentContext(), context);
}

void tst_OffscreenRenderer::initializationWithoutASizeMakesNoFramebuffers()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    renderer->shutDown();
    QVERIFY(renderer->initialize(QSize()));
    QVERIFY(renderer->isInitialized());
    QCOMPARE(renderer->size(), QSize(0, 0));
    QVERIFY(renderer->errorString().isEmpty());
}

void tst_OffscreenRenderer::resizeToAnInvalidSizeIsIgnored()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (const QSize size : {QSize(), QSize(-1, 20), QSize(0, 20), QSize(0, 0)}) {
        renderer->resize(size);
        QCOMPARE(renderer->size(), frame);
    }
}

void tst_OffscreenRenderer::framebuffersTakeTheRequestedSize()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (const QSize size : {QSize(1, 1), QSize(1921, 1079), QSize(64, 64)}) {
        renderer->resize(size);
        QCOMPARE(renderer->size(), size);
        QVERIFY(renderer->errorString().isEmpty());
    }
}

void tst_OffscreenRenderer::nothingIsRenderedWithoutFramebuffers()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    renderer->shutDown();
    QVERIFY(renderer->initialize(QSize()));
    QVERIFY(isBlank(renderMarker(line({10, 10}, {300, 150}, 10))));
    renderer->resize(frame);
    QVERIFY(!isBlank(renderMarker(line({10, 10}, {300, 150}, 10))));
}

void tst_OffscreenRenderer::contextStaysCurrent()
{
    const QOpenGLContext *context = QOpenGLContext::currentContext();
    QVERIFY(context);
    renderMarker(line({10, 10}, {300, 150}, 10));
    QCOMPARE(QOpenGLContext::currentContext(), context);
}

void tst_OffscreenRenderer::anotherCurrentContextDoesNotDisturb()
{
    const VertexStreams vertices = line({10, 10}, {300, 150}, 10);
    const QImage before = renderMarker(vertices);
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext other;
    QVERIFY(other.create());
    QVERIFY(other.makeCurrent(&surface));
    QOpenGLFunctions *functions = other.functions();
    functions->glViewport(3, 5, 7, 11);
    functions->glDisable(GL_BLEND);
    functions->glEnable(GL_SCISSOR_TEST);
    functions->glScissor(1, 1, 2, 2);
    QCOMPARE(renderMarker(vertices), before);
    QVERIFY(QOpenGLContext::currentContext() != &other);
}

void tst_OffscreenRenderer::onlyTheRectangleIsReplaced()
{
    const VertexStreams vertices = line({10, 10}, {300, 150}, 30);
    const QImage whole = renderMarker(vertices);
    const QRect rect(100, 50, 37, 21);
    QImage part = blank(frame, 99);
    OffscreenRenderer::instance()->renderPen(part, Tool::PenType::Marker, {}, 1.0F, rect, {}, vertices);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const int expected = rect.contains(x, y) ? whole.constScanLine(y)[x] : 99;
            QCOMPARE(int(part.constScanLine(y)[x]), expected);
        }
    }
}

void tst_OffscreenRenderer::formerContentOfTheRectangleIsReplacedNotBlended()
{
    QImage image = blank(frame, 255);
    const VertexStreams vertices = line({50, 100}, {250, 100}, 5, 0.5);
    OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Marker, {}, 1.0F, image.rect(), {}, vertices);
    QCOMPARE(image, renderMarker(vertices));
    QCOMPARE(int(image.constScanLine(0)[0]), 0);
}

void tst_OffscreenRenderer::rectangleOutsideTheImageIsIgnored()
{
    const VertexStreams vertices = line({10, 10}, {300, 150}, 30);
    QImage image = blank(frame, 7);
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (const QRect rect : {QRect(320, 0, 10, 10), QRect(-10, -10, 10, 10), QRect(), QRect(0, 200, 320, 5)})
        renderer->renderPen(image, Tool::PenType::Marker, {}, 1.0F, rect, {}, vertices);
    QCOMPARE(image, blank(frame, 7));
}

void tst_OffscreenRenderer::rectangleIsClippedToTheImage()
{
    const VertexStreams vertices = line({10, 10}, {300, 150}, 30);
    QImage image = blank();
    const QRect rect(-50, -50, 1000, 1000);
    OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Marker, {}, 1.0F, rect, {}, vertices);
    QCOMPARE(image, renderMarker(vertices));
}

void tst_OffscreenRenderer::partsRenderedByRectanglesMatchTheWhole()
{
    const VertexStreams vertices = line({10.3, 10.7}, {300.2, 150.1}, 23);
    QImage mosaic = blank();
    for (int y = 0; y < frame.height(); y += 31) {
        for (int x = 0; x < frame.width(); x += 47) {
            OffscreenRenderer::instance()->renderPen(mosaic, Tool::PenType::Pencil, {}, 1.0F, QRect(x, y, 47, 31), {},
                                                     vertices);
        }
    }
    QImage whole = blank();
    OffscreenRenderer::instance()->renderPen(whole, Tool::PenType::Pencil, {}, 1.0F, whole.rect(), {}, vertices);
    // Small rectangles are drawn through a window; that moves the last bit of a vertex's place.
    QVERIFY(largestDifference(mosaic, whole) <= 1);
}

void tst_OffscreenRenderer::emptyStreamsClearTheRectangle()
{
    QImage image = blank(frame, 200);
    const QRect rect(10, 20, 30, 40);
    OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Marker, {}, 1.0F, rect, {}, VertexStreams());
    QCOMPARE(image.copy(rect), blank(rect.size()));
    QCOMPARE(int(image.constScanLine(20)[9]), 200);
    QCOMPARE(int(image.constScanLine(19)[10]), 200);
}

void tst_OffscreenRenderer::paddedRowsKeepTheirPixelsInPlace()
{
    const VertexStreams vertices = line({3, 5}, {40, 61}, 6);
    const QImage wide = renderMarker(vertices, QSize(64, 71));
    for (const int width : {61, 62, 63}) {
        const QImage narrow = renderMarker(vertices, QSize(width, 71));
        QCOMPARE(narrow, wide.copy(0, 0, width, 71));
    }
}

void tst_OffscreenRenderer::imagesOfAnotherDepthAreLeftAlone()
{
    QImage image(frame, QImage::Format_ARGB32);
    image.fill(Qt::red);
    const QImage before = image.copy();
    OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Marker, {}, 1.0F, image.rect(), {},
                                             line({10, 10}, {300, 150}, 30));
    QCOMPARE(image, before);
    QImage none;
    OffscreenRenderer::instance()->renderPen(none, Tool::PenType::Marker, {}, 1.0F, QRect(0, 0, 10, 10), {},
                                             line({1, 1}, {9, 9}, 3));
    QVERIFY(none.isNull());
}

void tst_OffscreenRenderer::imageLargerThanTheFramebuffersIsTiled()
{
    const VertexStreams vertices = line({12, 14}, {390, 290}, 9);
    const QSize large(401, 303);
    OffscreenRenderer::instance()->resize(large);
    const QImage whole = renderMarker(vertices, large);
    for (const QSize tile : {QSize(100, 100), QSize(64, 301), QSize(400, 302), QSize(7, 50)}) {
        OffscreenRenderer::instance()->resize(tile);
        // The pixels' centres are the same; only the last bit of the projection's floats is not.
        QVERIFY(largestDifference(renderMarker(vertices, large), whole) <= 2);
    }
}

void tst_OffscreenRenderer::framebuffersLargerThanTheImageReadTheRightRows()
{
    const VertexStreams vertices = line({12, 14}, {300, 190}, 9);
    const QImage exact = renderMarker(vertices);
    OffscreenRenderer::instance()->resize(QSize(512, 256));
    QVERIFY(largestDifference(renderMarker(vertices), exact) <= 2);
}

void tst_OffscreenRenderer::overlapsDoNotDarken()
{
    VertexStreams once = line({50, 100}, {250, 100}, 12, 0.5);
    VertexStreams thrice = once;
    for (int i = 0; i < 2; ++i)
        TestSupport::appendLine(thrice, {{50, 100}, 0.5, 12}, {{250, 100}, 0.5, 12});
    QCOMPARE(renderMarker(thrice), renderMarker(once));
}

void tst_OffscreenRenderer::orderOfTrianglesDoesNotMatter()
{
    const StrokeEnd corner{{150, 60}, 0.9, 14};
    const StrokeEnd first{{40, 150}, 0.4, 14};
    const StrokeEnd second{{280, 170}, 0.7, 14};
    VertexStreams forwards;
    TestSupport::appendLine(forwards, first, corner);
    TestSupport::appendLine(forwards, corner, second);
    VertexStreams backwards;
    TestSupport::appendLine(backwards, corner, second);
    TestSupport::appendLine(backwards, first, corner);
    QCOMPARE(renderMarker(backwards), renderMarker(forwards));
}

void tst_OffscreenRenderer::fourthVertexOfALineMayHaveAnyRightEdgeType()
{
    VertexStreams usual;
    TestSupport::appendLineBody(usual, {{50, 100}, 0.8, 9}, {{250, 60}, 0.3, 14}, -11.0F);
    VertexStreams plain;
    TestSupport::appendLineBody(plain, {{50, 100}, 0.8, 9}, {{250, 60}, 0.3, 14}, -1.0F);
    const QImage image = renderMarker(usual);
    QVERIFY(!isBlank(image));
    QCOMPARE(renderMarker(plain), image);
}

void tst_OffscreenRenderer::capOfRadiusZeroDrawsNothing()
{
    VertexStreams vertices;
    TestSupport::appendDot(vertices, {{100.5, 100.5}, 1.0, 0.0});
    QVERIFY(isBlank(renderMarker(vertices)));
}

void tst_OffscreenRenderer::penIndexBeyondTheListTakesTheLastCurve()
{
    const VertexStreams vertices = line({50, 100}, {250, 100}, 20);
    QImage vinyl = blank();
    QImage beyond = blank();
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    renderer->renderEraser(vinyl, Tool::EraserType::VinylEraser, {}, 1.0F, vinyl.rect(), {}, vertices);
    renderer->renderEraser(beyond, static_cast<Tool::EraserType>(90), {}, 1.0F, beyond.rect(), {}, vertices);
    QVERIFY(!isBlank(vinyl));
    QCOMPARE(beyond, vinyl);
}

void tst_OffscreenRenderer::renderingTwiceGivesTheSamePixels()
{
    const VertexStreams vertices = line({50.2, 100.9}, {250.4, 33.3}, 20);
    const QImage first = renderMarker(vertices);
    renderMarker(line({0, 0}, {320, 200}, 60));
    QCOMPARE(renderMarker(vertices), first);
}

void tst_OffscreenRenderer::warmingUpChangesNoPixels()
{
    const VertexStreams vertices = line({50.2, 100.9}, {250.4, 33.3}, 20);
    const QImage before = renderMarker(vertices);
    OffscreenRenderer::instance()->warmUp();
    QCOMPARE(renderMarker(vertices), before);
    OffscreenRenderer::instance()->shutDown();
    OffscreenRenderer::instance()->warmUp();
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
}

void tst_OffscreenRenderer::texturesOfTwoDimensionsGiveTheSamePixels_data()
{
    QTest::addColumn<int>("pen");
    for (int pen = 0; pen < 6; ++pen)
        QTest::addRow("pen %d", pen) << pen;
}

void tst_OffscreenRenderer::texturesOfTwoDimensionsGiveTheSamePixels()
{
    QFETCH(int, pen);
    VertexStreams vertices = line({50.2, 100.9}, {250.4, 33.3}, 20);
    TestSupport::appendLine(vertices, {{20, 170}, 1.0, 0.6}, {{300, 180}, 1.0, 3.0});
    const auto draw = [&] {
        QImage image = blank();
        OffscreenRenderer *renderer = OffscreenRenderer::instance();
        if (pen < 3) {
            renderer->renderPen(image, static_cast<Tool::PenType>(pen), {}, 1.0F, image.rect(), {}, vertices);
        } else {
            const auto eraser = static_cast<Tool::EraserType>(pen - 3);
            renderer->renderEraser(image, eraser, {}, 1.0F, image.rect(), {}, vertices);
        }
        return image;
    };
    const QImage usual = draw();
    QVERIFY(!isBlank(usual));

    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    renderer->shutDown();
    OffscreenRenderer::Options options;
    options.allowTextures1D = false;
    QVERIFY2(renderer->initialize(frame, options), qPrintable(renderer->errorString()));
    const QImage fallback = draw();
    renderer->shutDown();
    QVERIFY(largestDifference(fallback, usual) <= 1);
}

void tst_OffscreenRenderer::everyPenButThePencilHasItsOwnSoftness()
{
    // Across a wide stroke, three quarters of the way out: the tables at texel 192. The pencil, the first, is left to
    // the tests with even paper, for its grain would show here.
    constexpr std::array expected = {255, 246, 253, 219, 246, 255};
    VertexStreams vertices;
    TestSupport::appendLineBody(vertices, {{10, 100.5}, 1.0, 80.65}, {{310, 100.5}, 1.0, 80.65});
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (int pen = 1; pen < 6; ++pen) {
        QImage image = blank();
        if (pen < 3) {
            renderer->renderPen(image, static_cast<Tool::PenType>(pen), {}, 1.0F, image.rect(), {}, vertices);
        } else {
            const auto eraser = static_cast<Tool::EraserType>(pen - 3);
            renderer->renderEraser(image, eraser, {}, 1.0F, image.rect(), {}, vertices);
        }
        // Radius less feather is 80, so the row 60 px from the centre line lies at 0.75.
        const int value = image.constScanLine(160)[160];
        QVERIFY2(std::abs(value - expected[static_cast<size_t>(pen)]) <= 2,
                 qPrintable(QStringLiteral("pen %1: %2").arg(pen).arg(value)));
    }
}

namespace {

OffscreenRenderer::WindowPass passOf(int style, QRect rect = QRect(QPoint(0, 0), OffscreenRenderer::windowSize()))
{
    return {style, {}, 1.0F, rect, {}};
}

QImage drawnInWindow(const OffscreenRenderer::WindowPass &pass, const VertexStreams &vertices)
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    if (!renderer->beginWindow(pass))
        return {};
    renderer->drawInWindow(vertices);
    return renderer->takeWindow();
}

const int markerStyle = OffscreenRenderer::styleOf(Tool::PenType::Marker);

} // namespace

void tst_OffscreenRenderer::windowsAreTakenInTheirOrder()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QCOMPARE(renderer->waitingWindows(), size_t(0));
    std::vector<QImage> expected;
    for (int i = 0; i < 20; ++i)
        expected.push_back(drawnInWindow(passOf(markerStyle), line({10, 10.0 + 7 * i}, {200, 90}, 3)));
    for (int i = 0; i < 20; ++i) {
        QVERIFY(renderer->beginWindow(passOf(markerStyle)));
        renderer->drawInWindow(line({10, 10.0 + 7 * i}, {200, 90}, 3));
    }
    QCOMPARE(renderer->waitingWindows(), size_t(20));
    for (const QImage &image : expected) {
        QVERIFY(!isBlank(image));
        QCOMPARE(renderer->takeWindow(), image);
    }
    QCOMPARE(renderer->waitingWindows(), size_t(0));
    QVERIFY(renderer->takeWindow().isNull());
}

void tst_OffscreenRenderer::partOfAWindowIsTheBytesOfTheWhole()
{
    VertexStreams vertices = line({10.3, 10.7}, {240.2, 150.1}, 23);
    TestSupport::appendArc(vertices, {{120, 130}, 60, 20, 200, 0.8, 2.3});
    for (int style = 0; style < 6; ++style) {
        const QImage whole = drawnInWindow(passOf(style), vertices);
        QVERIFY(!isBlank(whole));
        for (int y = 0; y < 256; y += 37) {
            for (int x = 0; x < 256; x += 53) {
                const QRect rect = QRect(x, y, 53, 37) & whole.rect();
                QCOMPARE(drawnInWindow(passOf(style, rect), vertices), whole.copy(rect));
            }
        }
    }
}

void tst_OffscreenRenderer::windowShowsWhatAnImageDoes_data()
{
    QTest::addColumn<int>("style");
    for (int style = 0; style < 6; ++style)
        QTest::addRow("style %d", style) << style;
}

// The grain included, wherever the window lies on the paper.
void tst_OffscreenRenderer::windowShowsWhatAnImageDoes()
{
    QFETCH(int, style);
    const QPoint paper(34, 18);
    VertexStreams vertices = line({10.3, 10.7}, {240.2, 150.1}, 23);
    QImage image = blank();
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    if (style < 3)
        renderer->renderPen(image, static_cast<Tool::PenType>(style), paper, 1.0F, image.rect(), {}, vertices);
    else
        renderer->renderEraser(image, static_cast<Tool::EraserType>(style - 3), paper, 1.0F, image.rect(), {},
                               vertices);
    const QPoint origin(24, 16);
    OffscreenRenderer::WindowPass pass = passOf(style, QRect(0, 0, 256, 180));
    pass.textureOffset = paper + origin;
    pass.transform = QTransform::fromTranslate(-origin.x(), -origin.y());
    const QImage window = drawnInWindow(pass, vertices);
    // A vertex lies elsewhere in the framebuffer, which moves the last bit of its place.
    QVERIFY(largestDifference(window, image.copy(QRect(origin, window.size()))) <= 1);
}

void tst_OffscreenRenderer::drawingsInOneWindowKeepTheHighestCoverage()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    const VertexStreams weak = line({10, 50}, {200, 50}, 9, 0.3);
    const VertexStreams strong = line({100, 10}, {100, 200}, 9, 0.9);
    QVERIFY(renderer->beginWindow(passOf(markerStyle)));
    renderer->drawInWindow(strong);
    renderer->drawInWindow(weak);
    const QImage both = renderer->takeWindow();
    const QImage first = drawnInWindow(passOf(markerStyle), weak);
    const QImage second = drawnInWindow(passOf(markerStyle), strong);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x)
            QCOMPARE(both.constScanLine(y)[x], std::max(first.constScanLine(y)[x], second.constScanLine(y)[x]));
    }
}

void tst_OffscreenRenderer::onlySoManyWindowsWaitAtATime()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    size_t begun = 0;
    while (begun < 1000 && renderer->beginWindow(passOf(markerStyle, QRect(0, 0, 4, 4))))
        ++begun;
    QVERIFY(begun >= 16 && begun < 1000);
    QCOMPARE(renderer->waitingWindows(), begun);
    for (size_t i = 0; i < begun; ++i)
        QCOMPARE(renderer->takeWindow().size(), QSize(4, 4));
    QVERIFY(renderer->beginWindow(passOf(markerStyle)));
    renderer->takeWindow();
}

void tst_OffscreenRenderer::windowsNeedFramebuffers()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    renderer->shutDown();
    QVERIFY(!renderer->beginWindow(passOf(markerStyle)));
    renderer->drawInWindow(line({10, 50}, {200, 50}, 9));
    QVERIFY(renderer->takeWindow().isNull());
    QVERIFY(renderer->initialize(QSize()));
    QVERIFY(!renderer->beginWindow(passOf(markerStyle)));
}

void tst_OffscreenRenderer::resizingForgetsWaitingWindows()
{
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    QVERIFY(renderer->beginWindow(passOf(markerStyle)));
    renderer->resize(QSize(100, 100));
    QCOMPARE(renderer->waitingWindows(), size_t(0));
    QVERIFY(renderer->takeWindow().isNull());
    QVERIFY(!isBlank(drawnInWindow(passOf(markerStyle), line({10, 50}, {200, 50}, 9))));
}

QTEST_MAIN(tst_OffscreenRenderer)
#include "tst_offscreenrenderer.moc"
