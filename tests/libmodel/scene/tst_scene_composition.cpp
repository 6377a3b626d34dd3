#include "scenebuilder.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

#include <array>
#include <cmath>

using namespace Model;
using namespace TestSupport;

namespace {

/// Red, green, blue and alpha from 0 to 1, premultiplied, so that "over" is one line.
using Pixel = std::array<double, 4>;

/// What a layer shows at a pixel, from its colour, its opacity and the coverage there: the picture's definition.
Pixel layerPixel(const StrokeLayer &layer, int frameId, int x, int y)
{
    const auto cell = layer.item(frameId);
    if (!cell || !layer.isVisible())
        return {};
    const QImage &coverage = dynamic_cast<StrokeDrawing &>(*cell->drawing).image();
    if (coverage.isNull())
        return {};
    const double alpha = coverage.constScanLine(y)[x] / 255.0 * layer.opacity();
    const QColor color = layer.color();
    return {color.redF() * alpha, color.greenF() * alpha, color.blueF() * alpha, alpha};
}

Pixel over(const Pixel &above, const Pixel &below)
{
    Pixel result;
    for (int i = 0; i < 4; ++i)
        result[i] = above[i] + below[i] * (1 - above[3]);
    return result;
}

/// The frame's picture at a pixel: bottom up, the active layer last.
Pixel expectedPixel(const Scene &scene, int frameId, int x, int y)
{
    Pixel result{};
    const QList<int> order = scene.layerOrder();
    for (qsizetype i = order.size() - 1; i >= 0; --i) {
        const auto *layer = qobject_cast<StrokeLayer *>(scene.layer(order.at(i)));
        if (layer && order.at(i) != scene.activeLayerIdx())
            result = over(layerPixel(*layer, frameId, x, y), result);
    }
    if (const auto *active = qobject_cast<StrokeLayer *>(scene.layer(scene.activeLayerIdx())))
        result = over(layerPixel(*active, frameId, x, y), result);
    return result;
}

/// The largest difference between the picture and its definition, in levels of 255.
double worstError(const QImage &picture, const Scene &scene, int frameId)
{
    double worst = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb found = reinterpret_cast<const QRgb *>(picture.constScanLine(y))[x];
            const Pixel wanted = expectedPixel(scene, frameId, x, y);
            const std::array<int, 4> channels{qRed(found), qGreen(found), qBlue(found), qAlpha(found)};
            for (int i = 0; i < 4; ++i)
                worst = std::max(worst, std::abs(channels[i] - wanted[i] * 255));
        }
    }
    return worst;
}

QImage imageOf(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage painted(const Scene &scene, QRect rect)
{
    QImage image(scene.frameSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.paintFrame(&painter, rect);
    return image;
}

QImage painted(const Scene &scene)
{
    return painted(scene, QRect(QPoint(0, 0), scene.frameSize()));
}

/// The same picture painted layer by layer over the whole frame, on an empty canvas.
QImage fromScratch(const Scene &scene, int frameId)
{
    QImage image(scene.frameSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QList<int> order = scene.layerOrder();
    for (qsizetype i = order.size() - 1; i >= 0; --i) {
        if (scene.isLayerShown(order.at(i)) && order.at(i) != scene.activeLayerIdx())
            scene.visualLayer(order.at(i))->drawPlain(frameId, &painter, image.rect());
    }
    if (scene.isLayerShown(scene.activeLayerIdx()))
        scene.visualLayer(scene.activeLayerIdx())->drawPlain(frameId, &painter, image.rect());
    return image;
}

/// The largest difference between two pictures in any channel.
int largestDifference(const QImage &one, const QImage &other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        const uchar *left = one.constScanLine(y);
        const uchar *right = other.constScanLine(y);
        for (int i = 0; i < 4 * one.width(); ++i)
            largest = std::max(largest, std::abs(left[i] - right[i]));
    }
    return largest;
}

/// Roundings of premultiplied bytes over three layers.
constexpr double rounding = 2.5;

/// Three layers of three frames, red over green over blue, all of them covering (10, 10) to (19, 19) at frame 1.
void addThreeColours(Scene &scene)
{
    makeSmall(scene);
    for (const QColor &color : {QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue)}) {
        const int idx = addStrokeLayer(scene, 3, color);
        scene.addStroke(idx, 1, block(QRect(10, 10, 10, 10)));
    }
    scene.setFrameRange(1, 3, 1, 0);
}

QRgb at(const QImage &image, int x, int y)
{
    return image.pixel(x, y);
}

} // namespace

class tst_SceneComposition : public QObject
{
    Q_OBJECT

private slots:
    void withoutLayersNothingIsComposed();
    void emptyFrameIsTransparent();
    void activeLayerLiesOnTopWhateverItsPlace();
    void otherLayersFollowTheDisplayOrder();
    void hiddenAndTransparentLayersAreNotDrawn();
    void opacityOfEachLayerCounts();
    void changingTheActiveFrameShowsThatFrame();
    void activeFrameBehindTheRangeShowsNothing();
    void frozenLastDrawingIsComposedBeyondTheEnd();
    void strokeShowsAtOnceAndGoesWithItsRemoval();
    void strokeOnAHeldDrawingShowsOnTheHold();
    void removedLayerLeavesThePicture();
    void changedColourIsComposed();
    void newFrameSizeGivesANewPixmap();
    void pixmapsShareTheirPixels();
    void paintFrameIsThePixmap();
    void paintFrameStaysInsideTheRect();
    void paintFrameOutsideTheFrameDoesNothing();
    void scrubFrameIsPaintedInDisplayOrder();
    void unsettingTheScrubFrameShowsTheActiveFrameAgain();
    void partialCompositionEqualsCompositionFromScratch_data();
    void partialCompositionEqualsCompositionFromScratch();
};

void tst_SceneComposition::withoutLayersNothingIsComposed()
{
    Scene scene;
    makeSmall(scene);
    scene.updateCachedFramePixmap(true);
    QVERIFY(scene.framePixmap().isNull());
    QCOMPARE(qAlpha(at(painted(scene), 5, 5)), 0);
}

void tst_SceneComposition::emptyFrameIsTransparent()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    QCOMPARE(scene.framePixmap().size(), sceneFrame);
    QCOMPARE(worstError(imageOf(scene.framePixmap()), scene, 1), 0.0);
}

void tst_SceneComposition::activeLayerLiesOnTopWhateverItsPlace()
{
    Scene scene;
    addThreeColours(scene);
    for (const auto &[layerIdx, color] : {std::pair(0, qRgb(255, 0, 0)), {1, qRgb(0, 255, 0)}, {2, qRgb(0, 0, 255)}}) {
        scene.setActiveFrameAndLayer(1, layerIdx, Scene::KeepFrameOnDrawing);
        QCOMPARE(at(imageOf(scene.framePixmap()), 12, 12), color);
        QCOMPARE(at(imageOf(scene.currentFramePixmap()), 12, 12), color);
    }
}

void tst_SceneComposition::otherLayersFollowTheDisplayOrder()
{
    Scene scene;
    addThreeColours(scene);
    const int fourth = addStrokeLayer(scene, 3, Qt::white);
    scene.setActiveFrameAndLayer(1, fourth, Scene::KeepFrameOnDrawing);
    QCOMPARE(at(imageOf(scene.framePixmap()), 12, 12), qRgb(255, 0, 0));
    scene.moveLayer(2, 0);
    QCOMPARE(at(imageOf(scene.framePixmap()), 12, 12), qRgb(0, 0, 255));
}

void tst_SceneComposition::hiddenAndTransparentLayersAreNotDrawn()
{
    Scene scene;
    addThreeColours(scene);
    scene.setLayerVisible(0, false);
    QCOMPARE(at(imageOf(scene.framePixmap()), 12, 12), qRgb(0, 255, 0));
    scene.setLayerOpacity(1, 0);
    QCOMPARE(at(imageOf(scene.framePixmap()), 12, 12), qRgb(0, 0, 255));
    QCOMPARE(at(painted(scene), 12, 12), qRgb(0, 0, 255));
    scene.setScrubFrame(1);
    QCOMPARE(at(painted(scene), 12, 12), qRgb(0, 0, 255));
}

void tst_SceneComposition::opacityOfEachLayerCounts()
{
    Scene scene;
    addThreeColours(scene);
    scene.setLayerOpacity(0, 0.5);
    scene.setLayerOpacity(1, 0.25);
    scene.setLayerOpacity(2, 0.75);
    QVERIFY(worstError(imageOf(scene.framePixmap()), scene, 1) < rounding);
}

void tst_SceneComposition::changingTheActiveFrameShowsThatFrame()
{
    Scene scene;
    addThreeColours(scene);
    scene.addStroke(0, 2, block(QRect(30, 20, 5, 5)));
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    const QImage picture = imageOf(scene.framePixmap());
    QCOMPARE(at(picture, 32, 22), qRgb(255, 0, 0));
    QCOMPARE(qAlpha(at(picture, 12, 12)), 0);
}

void tst_SceneComposition::activeFrameBehindTheRangeShowsNothing()
{
    Scene scene;
    addThreeColours(scene);
    scene.setLayerBeyondLast(0, Layer::FreezeLast);
    scene.addStroke(0, 3, block(QRect(30, 20, 5, 5)));
    scene.setActiveFrameAndLayer(4, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.activeFrame(), 4);
    const QImage picture = imageOf(scene.framePixmap());
    QCOMPARE(qAlpha(at(picture, 32, 22)), 0);
}

void tst_SceneComposition::frozenLastDrawingIsComposedBeyondTheEnd()
{
    Scene scene;
    addThreeColours(scene);
    const int shortLayer = addStrokeLayer(scene, 1, Qt::white);
    scene.addStroke(shortLayer, 1, block(QRect(40, 30, 5, 5)));
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    QCOMPARE(qAlpha(at(imageOf(scene.framePixmap()), 42, 32)), 0);
    scene.setLayerBeyondLast(shortLayer, Layer::FreezeLast);
    QCOMPARE(at(imageOf(scene.framePixmap()), 42, 32), qRgb(255, 255, 255));
}

void tst_SceneComposition::strokeShowsAtOnceAndGoesWithItsRemoval()
{
    Scene scene;
    addThreeColours(scene);
    const QImage before = imageOf(scene.framePixmap());
    scene.addStroke(1, 1, block(QRect(5, 5, 30, 9), 100));
    QVERIFY(imageOf(scene.framePixmap()) != before);
    QVERIFY(worstError(imageOf(scene.framePixmap()), scene, 1) < rounding);
    scene.removeLastStroke(1, 1);
    QCOMPARE(imageOf(scene.framePixmap()), before);
}

void tst_SceneComposition::strokeOnAHeldDrawingShowsOnTheHold()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.setLayerColor(0, Qt::red);
    scene.addCloneDrawing(0, 1);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    scene.addStroke(0, 1, block(QRect(5, 5, 9, 9)));
    QCOMPARE(at(imageOf(scene.framePixmap()), 8, 8), qRgb(255, 0, 0));
}

void tst_SceneComposition::removedLayerLeavesThePicture()
{
    Scene scene;
    addThreeColours(scene);
    scene.removeLayer(0);
    QVERIFY(qRed(at(imageOf(scene.framePixmap()), 12, 12)) == 0);
    scene.removeLayer(0);
    scene.removeLayer(0);
    QCOMPARE(qAlpha(at(painted(scene), 12, 12)), 0);
}

void tst_SceneComposition::changedColourIsComposed()
{
    Scene scene;
    addThreeColours(scene);
    scene.setLayerColor(0, QColor(10, 20, 30));
    QCOMPARE(at(imageOf(scene.framePixmap()), 12, 12), qRgb(10, 20, 30));
}

void tst_SceneComposition::newFrameSizeGivesANewPixmap()
{
    Scene scene;
    addThreeColours(scene);
    scene.setFrameSize(sceneFrame * 2, MR::FitMode::FitModeStretch);
    QCOMPARE(scene.framePixmap().size(), sceneFrame * 2);
    QCOMPARE(at(imageOf(scene.framePixmap()), 30, 30), qRgb(255, 0, 0));
    QCOMPARE(qAlpha(at(imageOf(scene.framePixmap()), 12, 12)), 0);
}

void tst_SceneComposition::pixmapsShareTheirPixels()
{
    // Nothing shines through from other frames, so there is one picture and no copy of it.
    Scene scene;
    addThreeColours(scene);
    QCOMPARE(scene.framePixmap().cacheKey(), scene.currentFramePixmap().cacheKey());
}

void tst_SceneComposition::paintFrameIsThePixmap()
{
    Scene scene;
    addThreeColours(scene);
    QCOMPARE(painted(scene), imageOf(scene.framePixmap()));
}

void tst_SceneComposition::paintFrameStaysInsideTheRect()
{
    Scene scene;
    addThreeColours(scene);
    const QRect part(12, 8, 4, 9);
    for (const bool scrubbing : {false, true}) {
        scene.setScrubFrame(scrubbing ? 1 : -1);
        const QImage picture = painted(scene, part);
        for (int y = 0; y < sceneFrame.height(); ++y) {
            for (int x = 0; x < sceneFrame.width(); ++x) {
                const bool inked = part.contains(x, y) && QRect(10, 10, 10, 10).contains(x, y);
                QCOMPARE(qAlpha(at(picture, x, y)), inked ? 255 : 0);
            }
        }
    }
}

void tst_SceneComposition::paintFrameOutsideTheFrameDoesNothing()
{
    Scene scene;
    addThreeColours(scene);
    const QImage picture = painted(scene, QRect(100, 100, 50, 50));
    QCOMPARE(qAlpha(at(picture, 12, 12)), 0);
}

void tst_SceneComposition::scrubFrameIsPaintedInDisplayOrder()
{
    Scene scene;
    addThreeColours(scene);
    scene.setActiveFrameAndLayer(3, 2, Scene::KeepFrameOnDrawing);
    scene.setScrubFrame(1);
    // The active layer is the lowest here and stays so.
    QCOMPARE(at(painted(scene), 12, 12), qRgb(255, 0, 0));
}

void tst_SceneComposition::unsettingTheScrubFrameShowsTheActiveFrameAgain()
{
    Scene scene;
    addThreeColours(scene);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    const QImage before = painted(scene);
    scene.setScrubFrame(1);
    // Composed meanwhile, for the scrub frame.
    scene.setLayerOpacity(2, 0.5);
    QCOMPARE(at(imageOf(scene.currentFramePixmap()), 12, 12), qRgb(255, 0, 0));
    scene.unsetScrubFrame();
    QCOMPARE(painted(scene), before);
    QCOMPARE(imageOf(scene.framePixmap()), before);
}

void tst_SceneComposition::partialCompositionEqualsCompositionFromScratch_data()
{
    // With an opacity in play the rasteriser rounds the first and last pixels of a span by another rule than those
    // between, so where a span starts can make one level.
    QTest::addColumn<int>("activeLayer");
    QTest::addColumn<double>("opacity");
    QTest::addColumn<int>("tolerance");
    for (int layerIdx = 0; layerIdx < 3; ++layerIdx) {
        QTest::addRow("layer %d active, opaque", layerIdx) << layerIdx << 1.0 << 0;
        QTest::addRow("layer %d active, translucent", layerIdx) << layerIdx << 0.6 << 1;
    }
}

void tst_SceneComposition::partialCompositionEqualsCompositionFromScratch()
{
    QFETCH(int, activeLayer);
    QFETCH(double, opacity);
    QFETCH(int, tolerance);
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    Scene scene;
    addThreeColours(scene);
    // Several tiles of the map of ink beside and below each other.
    scene.setFrameSize({200, 50}, MR::FitMode::FitModeIgnore);
    scene.setLayerOpacity(0, opacity);
    scene.setLayerOpacity(1, opacity * opacity);
    scene.addCloneDrawing(1, 1);
    scene.setActiveFrameAndLayer(1, activeLayer, Scene::KeepFrameOnDrawing);
    for (int step = 0; step < 80; ++step) {
        const int layerIdx = random.bounded(3);
        const int frameId = random.bounded(1, 4);
        // Rectangles may hang over the frame's edges.
        const QRect rect(random.bounded(-10, 200), random.bounded(-10, 50), random.bounded(1, 90),
                         random.bounded(1, 30));
        if (random.bounded(3) == 0)
            scene.removeLastStroke(layerIdx, frameId);
        else
            scene.addStroke(layerIdx, frameId, block(rect, random.bounded(1, 256)));
        if (random.bounded(8) == 0)
            scene.setActiveFrameAndLayer(random.bounded(1, 4), activeLayer, Scene::KeepFrameOnDrawing);

        const QImage picture = imageOf(scene.framePixmap());
        const QString where = QString("seed %1, step %2").arg(seed).arg(step);
        const int difference = largestDifference(picture, fromScratch(scene, scene.activeFrame()));
        QVERIFY2(difference <= tolerance, qPrintable(where + QString(": differs by %1").arg(difference)));
        const double error = worstError(picture, scene, scene.activeFrame());
        QVERIFY2(error < rounding, qPrintable(where + QString(": off by %1").arg(error)));
        QVERIFY2(painted(scene) == picture, qPrintable(where + ": not painted so"));
    }
}

QTEST_MAIN(tst_SceneComposition)
#include "tst_scene_composition.moc"
