// The kept pictures' pixels: that they are what they would be if made anew.

#include "picturefixture.h"

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/tools/toolmanager.h"
#include "support/randomnumbers.h"

#include <QPainter>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// The place of the picture's alpha that is not \a coverage; (-1, -1) if there is none. A null coverage is blank.
QPoint firstDifference(const QImage &picture, const QImage &coverage)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int expected = coverage.isNull() ? 0 : coverage.constScanLine(y)[x];
            if (qAlpha(reinterpret_cast<const QRgb *>(picture.constScanLine(y))[x]) != expected)
                return {x, y};
        }
    }
    return {-1, -1};
}

} // namespace

class tst_ScenePicturesPixels : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void rimOfAScaledStrokeIsInThePicture();
    void whatIsMadeAnewAroundARemovedStrokeIsInThePicture();
    void undoThroughAResizeIsInThePicture();
    void smoothPaintOfNothingTouchesNothing();
    void pixmapIsSharedUntilInkShines();
    void manyEditsBetweenLooksGiveThePictureFromScratch();
};

void tst_ScenePicturesPixels::cleanup()
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

void tst_ScenePicturesPixels::rimOfAScaledStrokeIsInThePicture()
{
    // Scaled smoothly, a stroke spreads over the edge of its bounds by a part of a pixel.
    for (const double scale : {0.37, 0.73, 1.5, 2.3, 3.7}) {
        Scene scene;
        makeSmall(scene);
        scene.setFrameSize(wideFrame, MR::FitMode::FitModeIgnore);
        addStrokeLayer(scene, 1);
        scene.setFrameRange(1, 1, 1, 0);
        scene.addStroke(0, 1, block(QRect(100, 30, 2, 2)));
        QVERIFY(!scene.framePixmap().isNull());
        auto compound = std::make_unique<CompoundStroke>();
        compound->append(block(QRect(10, 6, 16, 5)));
        compound->setTransform(QTransform::fromScale(scale, scale) * QTransform::fromTranslate(3.4, 2.6));
        QSignalSpy rects(&scene, &Scene::rectChanged);
        const QImage before = drawingAt(scene, 0, 1).image().copy();
        QVERIFY(scene.addStroke(0, 1, std::move(compound)));
        const QImage coverage = drawingAt(scene, 0, 1).image().copy();
        QCOMPARE(firstDifference(imageOf(scene.framePixmap()), coverage), QPoint(-1, -1));
        // What changed lies in what the views were told of.
        const QRect told = rects.last().first().toRect();
        for (int y = 0; y < wideFrame.height(); ++y) {
            for (int x = 0; x < wideFrame.width(); ++x)
                QVERIFY(told.contains(x, y) || before.constScanLine(y)[x] == coverage.constScanLine(y)[x]);
        }
        scene.removeLastStroke(0, 1);
        QCOMPARE(firstDifference(imageOf(scene.framePixmap()), drawingAt(scene, 0, 1).image()), QPoint(-1, -1));
    }
}

void tst_ScenePicturesPixels::whatIsMadeAnewAroundARemovedStrokeIsInThePicture()
{
    // A part of a smoothly scaled stroke does not always come out as in the whole, so that the pixels around what is
    // taken away may change too.
    RandomNumbers random(7);
    Scene scene;
    makeSmall(scene);
    scene.setFrameSize(wideFrame, MR::FitMode::FitModeIgnore);
    addStrokeLayer(scene, 1);
    scene.setFrameRange(1, 1, 1, 0);
    QImage noise(90, 30, QImage::Format_Alpha8);
    for (int y = 0; y < noise.height(); ++y) {
        for (int x = 0; x < noise.width(); ++x)
            noise.scanLine(y)[x] = static_cast<uchar>(random.between(0, 255));
    }
    auto compound = std::make_unique<CompoundStroke>();
    compound->append(std::make_unique<BitmapStroke>(noise, noise.rect()));
    compound->setTransform(QTransform().rotate(7).scale(1.71, 1.37));
    scene.addStroke(0, 1, std::move(compound));
    for (int step = 0; step < 60; ++step) {
        QVERIFY(!scene.framePixmap().isNull());
        scene.addStroke(0, 1, block(QRect(random.between(5, 120), random.between(5, 35), 9, 6)));
        QVERIFY(!scene.framePixmap().isNull());
        QVERIFY(scene.removeLastStroke(0, 1));
        QCOMPARE(firstDifference(imageOf(scene.framePixmap()), drawingAt(scene, 0, 1).image()), QPoint(-1, -1));
    }
}

void tst_ScenePicturesPixels::undoThroughAResizeIsInThePicture()
{
    Scene scene;
    makeSmall(scene);
    scene.setFrameSize({100, 25}, MR::FitMode::FitModeIgnore);
    addStrokeLayer(scene, 1);
    scene.setFrameRange(1, 1, 1, 0);
    scene.addStroke(0, 1, block(QRect(5, 5, 4, 4)));
    scene.addStroke(0, 1, block(QRect(60, 12, 21, 7)));
    scene.setFrameSize(wideFrame, MR::FitMode::FitModeStretch);
    scene.addStroke(0, 1, block(QRect(80, 3, 30, 10)));
    for (int left = 2; left >= 0; --left) {
        QVERIFY(!scene.framePixmap().isNull());
        QVERIFY(scene.removeLastStroke(0, 1));
        QCOMPARE(firstDifference(imageOf(scene.framePixmap()), drawingAt(scene, 0, 1).image()), QPoint(-1, -1));
    }
}

void tst_ScenePicturesPixels::smoothPaintOfNothingTouchesNothing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    QImage image(sceneFrame * 2, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::red);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.scale(1.5, 1.5);
    scene.paintFrame(&painter, QRect(QPoint(0, 0), sceneFrame));
    painter.end();
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(image.pixelColor(2, 2), QColor(Qt::red));
}

void tst_ScenePicturesPixels::pixmapIsSharedUntilInkShines()
{
    Scene scene;
    makeSmall(scene);
    addStrokeLayer(scene, 2);
    scene.setFrameRange(1, 2, 1, 0);
    scene.setBacklightSettings(shining());
    QCOMPARE(shiningFrames(scene), QList<int>({2}));
    QCOMPARE(scene.framePixmap().cacheKey(), scene.currentFramePixmap().cacheKey());
    scene.addStroke(0, 2, block(QRect(3, 3, 9, 9)));
    QVERIFY(scene.framePixmap().cacheKey() != scene.currentFramePixmap().cacheKey());
    QVERIFY(qAlpha(imageOf(scene.framePixmap()).pixel(5, 5)) > 0);
    scene.removeLastStroke(0, 2);
    scene.updateCachedFramePixmap(true);
    QCOMPARE(scene.framePixmap().cacheKey(), scene.currentFramePixmap().cacheKey());
    QCOMPARE(qAlpha(imageOf(scene.framePixmap()).pixel(5, 5)), 0);
}

namespace {

/// One of the edits that go through the kept pictures.
void editSomething(Scene &scene, RandomNumbers &random)
{
    const int layerIdx = random.between(0, scene.layerCount() - 1);
    const int frameId = random.between(1, scene.lastFrame(layerIdx));
    switch (random.between(0, 17)) {
    case 0:
        scene.setScrubFrame(random.chance(50) ? -1 : frameId);
        break;
    case 1:
        ToolManager::instance()->setCurrentTool(random.chance(50) ? Tool::Type::Lasso : Tool::Type::Pen, 0);
        break;
    case 2: {
        BacklightSettings settings = shining();
        settings.on = random.chance(70);
        scene.setBacklightSettings(settings);
        break;
    }
    case 3:
        scene.setFrameSize(random.chance(50) ? QSize(200, 50) : QSize(150, 60), MR::FitMode::FitModeStretch);
        break;
    case 4:
        scene.moveLayer(layerIdx, random.between(0, scene.layerCount() - 1));
        break;
    case 5:
        scene.setLayerVisible(layerIdx, random.chance(70));
        break;
    case 6:
        scene.setLayerOpacity(layerIdx, random.between(0, 10) / 10.0);
        break;
    case 7:
        scene.setActiveFrameAndLayer(frameId, layerIdx, Scene::KeepFrameOnDrawing);
        break;
    case 8:
        scene.setOffPegsTransform(frameId, layerIdx, QTransform::fromTranslate(random.between(-9, 9), 2));
        break;
    case 9:
        if (scene.lastFrame(layerIdx) < 8)
            scene.addCloneDrawing(layerIdx, frameId, random.chance(30));
        else
            scene.deleteFrame(layerIdx, frameId);
        break;
    case 10:
    case 11:
    case 12:
        scene.removeLastStroke(layerIdx, frameId);
        break;
    default:
        scene.addStroke(layerIdx, frameId,
                        block(QRect(random.between(-10, 199), random.between(-10, 59), random.between(1, 90),
                                    random.between(1, 30)),
                              random.between(1, 255)));
    }
}

} // namespace

void tst_ScenePicturesPixels::manyEditsBetweenLooksGiveThePictureFromScratch()
{
    constexpr quint32 seed = 20111;
    RandomNumbers random(seed);
    Scene scene;
    addTwoLayers(scene);
    addStrokeLayer(scene, 3, QColor(40, 120, 200));
    scene.setBacklightSettings(shining());
    for (int step = 0; step < 1200; ++step) {
        editSomething(scene, random);
        if (!random.chance(25))
            continue;
        const QImage shown = painted(scene);
        const QImage frame = imageOf(scene.framePixmap()).copy();
        const QImage current = imageOf(scene.currentFramePixmap()).copy();
        const QImage backlight = imageOf(scene.backlightPixmap()).copy();
        scene.updateCachedFramePixmap(true);
        const QString where = QString("seed %1, step %2").arg(seed).arg(step);
        QVERIFY2(imageOf(scene.backlightPixmap()) == backlight, qPrintable(where + ": another backlight"));
        QVERIFY2(scene.scrubFrame() >= 1 || imageOf(scene.currentFramePixmap()) == current,
                 qPrintable(where + ": another frame"));
        QVERIFY2(scene.scrubFrame() >= 1 || imageOf(scene.framePixmap()) == frame,
                 qPrintable(where + ": another picture"));
        QVERIFY2(painted(scene) == shown, qPrintable(where + ": painted otherwise"));
    }
}

QTEST_MAIN(tst_ScenePicturesPixels)
#include "tst_scene_pictures_pixels.moc"
