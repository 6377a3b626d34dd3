// The kept pictures: that they are what they would be if made anew, whoever looks and whenever.

#include "scenebuilder.h"

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/tools/toolmanager.h"
#include "support/randomnumbers.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace Model;
using namespace TestSupport;

namespace {

/// Several tiles of the map of ink beside and below each other.
constexpr QSize wideFrame(200, 50);

QImage imageOf(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage painted(const Scene &scene)
{
    QImage image(scene.frameSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.paintFrame(&painter, image.rect());
    return image;
}

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

BacklightSettings shining()
{
    BacklightSettings settings;
    settings.settingA.opacityLevelsBefore = {0.5, 0.4};
    settings.settingA.opacityLevelsAfter = {0.6, 0.3};
    return settings;
}

/// Two layers of five drawings each, red over blue, each drawing with a block of its own; on frame 3 of the first.
void addTwoLayers(Scene &scene)
{
    makeSmall(scene);
    scene.setFrameSize(wideFrame, MR::FitMode::FitModeIgnore);
    for (const QColor &color : {QColor(Qt::red), QColor(Qt::blue)}) {
        const int idx = addStrokeLayer(scene, 5, color);
        for (int frameId = 1; frameId <= 5; ++frameId)
            scene.addStroke(idx, frameId, block(QRect(30 * frameId, 5 + 20 * idx, 60, 18)));
    }
    scene.setFrameRange(1, 5, 3, 0);
}

void putOffPegs(Scene &scene, int layerIdx, int frameId, int dx)
{
    scene.item(layerIdx, frameId)->offPegsTransform = QTransform::fromTranslate(dx, 0);
}

QList<int> shiningFrames(const Scene &scene)
{
    QList<int> frames;
    for (const BacklightFrame &frame : scene.backlightFrames())
        frames.append(frame.frameId);
    std::sort(frames.begin(), frames.end());
    return frames;
}

using Operation = std::function<void(Scene &)>;

} // namespace

Q_DECLARE_METATYPE(Operation)

class TestScenePictures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void rimOfAScaledStrokeIsInThePicture();
    void whatIsMadeAnewAroundARemovedStrokeIsInThePicture();
    void undoThroughAResizeIsInThePicture();
    void lookingWhileTheActiveLayerGoesIsSafe();
    void framesThatShineAnewAreToldWithTheWholeFrame();
    void changeBehindBlockedSignalsIsToldAtTheNextUpdate();
    void takenBackChangeBehindBlockedSignalsIsNotTold();
    void offPegsOfTheActiveFrameIsToldWithTheWholeFrame();
    void transformChangedByStructureIsToldOnce_data();
    void transformChangedByStructureIsToldOnce();
    void transformThatStaysIsNotTold();
    void newFrameSizeRefreshesEveryCell();
    void whoLooksOnTheSignalSeesTheNewPicture_data();
    void whoLooksOnTheSignalSeesTheNewPicture();
    void withoutAVisualLayerNothingIsLeft();
    void smoothPaintOfNothingTouchesNothing();
    void wrappingFollowsTheSheet();
    void framesOutsideTheRangeFollowTheSheet();
    void pixmapIsSharedUntilInkShines();
    void manyEditsBetweenLooksGiveThePictureFromScratch();
};

void TestScenePictures::initTestCase()
{
    qRegisterMetaType<QList<std::pair<int, int>>>();
}

void TestScenePictures::cleanup()
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

void TestScenePictures::rimOfAScaledStrokeIsInThePicture()
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

void TestScenePictures::whatIsMadeAnewAroundARemovedStrokeIsInThePicture()
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

void TestScenePictures::undoThroughAResizeIsInThePicture()
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

void TestScenePictures::lookingWhileTheActiveLayerGoesIsSafe()
{
    for (const bool swaps : {false, true}) {
        Scene scene;
        addTwoLayers(scene);
        BacklightSettings settings = shining();
        settings.settingA.layers = BacklightSetting::Layers::BacklightActiveLayerOnly;
        scene.setBacklightSettings(settings);
        scene.setScrubFrame(2);
        int looks = 0;
        const auto look = [&] {
            QCOMPARE(scene.framePixmap().size(), wideFrame);
            painted(scene);
            ++looks;
        };
        connect(&scene, &Scene::layerRemoved, this, look);
        connect(&scene, &Scene::endRemoveLayer, this, look);
        connect(&scene, &Scene::maximumFrameNumberChanged, this, look);
        connect(&scene, &Scene::frameRangeChanged, this, look);
        connect(&scene, &Scene::scrubFrameChanged, this, look);
        connect(&scene, &Scene::backlightFramesChanged, this, look);
        if (swaps)
            QVERIFY(scene.swapLayer(0, std::make_shared<StrokeLayer>(Qt::green, wideFrame)));
        else
            QVERIFY(scene.removeLayer(0));
        QVERIFY(looks > 0);
    }
}

void TestScenePictures::framesThatShineAnewAreToldWithTheWholeFrame()
{
    Scene scene;
    addTwoLayers(scene);
    scene.setBacklightSettings(shining());
    QCOMPARE(shiningFrames(scene), QList<int>({1, 2, 4, 5}));
    // The holds come in unheard, so that the stroke finds other neighbours.
    scene.addCloneDrawing(0, 3, true);
    scene.addCloneDrawing(1, 3, true);
    QSignalSpy frames(&scene, &Scene::backlightFramesChanged);
    QSignalSpy rects(&scene, &Scene::rectChanged);
    scene.addStroke(0, 3, block(QRect(50, 20, 4, 4)));
    QCOMPARE(shiningFrames(scene), QList<int>({1, 2, 5, 6}));
    QCOMPARE(frames.size(), 1);
    QCOMPARE(rects.size(), 1);
    QCOMPARE(rects.first().first().toRect(), QRect(QPoint(0, 0), wideFrame));
}

void TestScenePictures::changeBehindBlockedSignalsIsToldAtTheNextUpdate()
{
    Scene scene;
    addTwoLayers(scene);
    scene.setBacklightSettings(shining());
    QSignalSpy frames(&scene, &Scene::backlightFramesChanged);
    QSignalSpy rects(&scene, &Scene::rectChanged);
    {
        const QSignalBlocker blocker(&scene);
        scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    }
    QCOMPARE(shiningFrames(scene), QList<int>({2, 3, 5}));
    QCOMPARE(frames.size(), 0);
    scene.updateCachedFramePixmap(true);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(rects.size(), 1);
    QCOMPARE(rects.first().first().toRect(), QRect(QPoint(0, 0), wideFrame));
    scene.updateCachedFramePixmap(true);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(rects.size(), 1);
}

void TestScenePictures::takenBackChangeBehindBlockedSignalsIsNotTold()
{
    Scene scene;
    addTwoLayers(scene);
    scene.setBacklightSettings(shining());
    QSignalSpy frames(&scene, &Scene::backlightFramesChanged);
    {
        const QSignalBlocker blocker(&scene);
        scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
        scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    }
    scene.updateCachedFramePixmap(true);
    QCOMPARE(frames.size(), 0);
}

void TestScenePictures::offPegsOfTheActiveFrameIsToldWithTheWholeFrame()
{
    Scene scene;
    addTwoLayers(scene);
    QSignalSpy rects(&scene, &Scene::rectChanged);
    QSignalSpy transforms(&scene, &Scene::offPegsTransformChanged);
    scene.setOffPegsTransform(3, 0, QTransform::fromTranslate(3, 2));
    QCOMPARE(rects.size(), 1);
    QCOMPARE(rects.first().first().toRect(), QRect(QPoint(0, 0), wideFrame));
    QCOMPARE(transforms.size(), 1);
}

void TestScenePictures::transformChangedByStructureIsToldOnce_data()
{
    QTest::addColumn<Operation>("prepare");
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QTransform>("expected");
    const auto moved = [](int dx) { return QTransform::fromTranslate(dx, 0); };
    const Operation both = [](Scene &scene) {
        putOffPegs(scene, 0, 3, 10);
        putOffPegs(scene, 1, 3, 20);
    };
    const Operation nothing = [](Scene &) {};
    const auto row = [](const char *name, const Operation &prepare, const Operation &operation, const QTransform &to) {
        QTest::newRow(name) << prepare << operation << to;
    };
    row(
        "moveLayer", both, [](Scene &scene) { scene.moveLayer(1, 0); }, moved(20));
    row(
        "insertLayer", nothing,
        [](Scene &scene) {
            const auto layer = std::make_shared<StrokeLayer>(Qt::green, wideFrame);
            layer->insertBlankAfter(1);
            layer->insertBlankAfter(2);
            layer->item(3)->offPegsTransform = QTransform::fromTranslate(30, 0);
            scene.insertLayer(layer, 0);
        },
        moved(30));
    row(
        "removeLayer", both, [](Scene &scene) { scene.removeLayer(0); }, moved(20));
    row(
        "swapLayer", both,
        [](Scene &scene) { scene.swapLayer(0, std::make_shared<StrokeLayer>(Qt::green, wideFrame)); }, QTransform());
    row(
        "mergeLayers", both, [](Scene &scene) { scene.mergeLayers(1, 0); }, moved(20));
    row(
        "slideOriginalDrawing",
        [](Scene &scene) {
            scene.loseDrawing(0, 2);
            putOffPegs(scene, 0, 3, 10);
        },
        [](Scene &scene) { scene.slideOriginalDrawing(0, 3, -1, -1, 0); }, QTransform());
    row(
        "deleteFrame in front", [](Scene &scene) { putOffPegs(scene, 0, 4, 10); },
        [](Scene &scene) { scene.deleteFrame(0, 2); }, moved(10));
    row(
        "deleteFrame of the active frame", [](Scene &scene) { putOffPegs(scene, 0, 4, 10); },
        [](Scene &scene) { scene.deleteFrame(0, 3); }, moved(10));
    row(
        "insertion beside", [](Scene &scene) { putOffPegs(scene, 1, 3, 20); },
        [](Scene &scene) { scene.addBlankDrawing(0, 1); }, QTransform());
    row(
        "undo", [](Scene &scene) { putOffPegs(scene, 0, 3, 10); },
        [](Scene &scene) { scene.undoChanges({SceneChange(LayerChange::TransformChanged, 3, 0)}); }, QTransform());
}

void TestScenePictures::transformChangedByStructureIsToldOnce()
{
    QFETCH(Operation, prepare);
    QFETCH(Operation, operation);
    QFETCH(QTransform, expected);
    Scene scene;
    addTwoLayers(scene);
    prepare(scene);
    const QTransform before = scene.offPegsTransformOfFrame(scene.activeFrame());
    QSignalSpy transforms(&scene, &Scene::offPegsTransformChanged);
    operation(scene);
    const QTransform after = scene.offPegsTransformOfFrame(scene.activeFrame());
    QCOMPARE(after, expected);
    QVERIFY(after != before);
    QCOMPARE(transforms.size(), 1);
    QCOMPARE(transforms.first().first().value<QTransform>(), after);
}

void TestScenePictures::transformThatStaysIsNotTold()
{
    Scene scene;
    addTwoLayers(scene);
    putOffPegs(scene, 0, 3, 10);
    QSignalSpy transforms(&scene, &Scene::offPegsTransformChanged);
    scene.moveLayer(1, 0);
    addStrokeLayer(scene, 5);
    scene.removeLayer(2);
    scene.mergeLayers(1, 0);
    scene.deleteFrame(1, 4);
    QCOMPARE(transforms.size(), 0);
}

void TestScenePictures::newFrameSizeRefreshesEveryCell()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    addStrokeLayer(scene, 3);
    QStringList order;
    connect(&scene, &Scene::frameSizeChanged, this, [&] { order += "size"; });
    connect(&scene, &Scene::drawingsChanged, this, [&] { order += "drawings"; });
    connect(&scene, &Scene::rectChanged, this, [&] { order += "rect"; });
    QSignalSpy cells(&scene, &Scene::drawingsChanged);
    scene.setFrameSize(wideFrame, MR::FitMode::FitModeStretch);
    QCOMPARE(order, QStringList({"size", "drawings", "rect"}));
    const QList<std::pair<int, int>> expected{{1, 0}, {2, 0}, {1, 3}, {2, 3}, {3, 3}};
    QCOMPARE((cells.first().first().value<QList<std::pair<int, int>>>()), expected);
}

void TestScenePictures::whoLooksOnTheSignalSeesTheNewPicture_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<Operation>("operation");
    const auto row = [](const char *name, const char *signal, const Operation &operation) {
        QTest::newRow(name) << QByteArray(signal) << operation;
    };
    row("setActiveFrameAndLayer", "activeFrameAndLayerChanged",
        [](Scene &scene) { scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing); });
    row("setActiveFrameAndLayer while scrubbing", "scrubFrameChanged", [](Scene &scene) {
        scene.setScrubFrame(2);
        painted(scene);
        scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    });
    row("setFrameRange", "activeFrameAndLayerChanged", [](Scene &scene) { scene.setFrameRange(2, 4, 4, 1); });
    row("addBlankDrawing", "layersChanged", [](Scene &scene) { scene.addBlankDrawing(1, 2); });
    row("addBlankDrawing, position", "activeFrameAndLayerChanged", [](Scene &scene) { scene.addBlankDrawing(1, 2); });
    row("deleteFrame", "layersChanged", [](Scene &scene) { scene.deleteFrame(0, 3); });
    row("undoChanges", "layersChanged", [](Scene &scene) {
        const QList<SceneChange> changes = scene.deleteFrame(1, 3);
        scene.setLayerOpacity(0, 0.5);
        painted(scene);
        scene.undoChanges(changes);
    });
    row("mergeLayers", "layersChanged", [](Scene &scene) {
        scene.setLayerVisible(1, false);
        painted(scene);
        scene.mergeLayers(1, 0);
    });
    row("setLayerVisible", "layersChanged", [](Scene &scene) { scene.setLayerVisible(0, false); });
    row("moveLayer", "layerMoved", [](Scene &scene) {
        const int third = addStrokeLayer(scene, 5, Qt::green);
        scene.addStroke(third, 3, block(QRect(100, 20, 60, 18)));
        painted(scene);
        scene.moveLayer(third, 0);
    });
    row("insertLayer", "layerInserted", [](Scene &scene) { scene.insertLayer(scene.layer(0)->clone(), 2); });
    row("removeLayer", "activeFrameAndLayerChanged", [](Scene &scene) { scene.removeLayer(0); });
    row("swapLayer", "layersChanged",
        [](Scene &scene) { scene.swapLayer(0, std::make_shared<StrokeLayer>(Qt::green, wideFrame)); });
    row("slideOriginalDrawing", "drawingsChanged", [](Scene &scene) {
        scene.loseDrawing(0, 4);
        painted(scene);
        scene.slideOriginalDrawing(0, 3, 1, 0, 1);
    });
    row("setFrameSize", "frameSizeChanged", [](Scene &scene) {
        scene.setFrameSize({150, 60}, MR::FitMode::FitModeIgnore);
    });
}

void TestScenePictures::whoLooksOnTheSignalSeesTheNewPicture()
{
    QFETCH(QByteArray, signal);
    QFETCH(Operation, operation);
    Scene scene;
    addTwoLayers(scene);
    scene.setBacklightSettings(shining());
    QImage seen;
    const auto look = [&] { seen = imageOf(scene.framePixmap()).copy(); };
    const QList<std::pair<QByteArray, QMetaObject::Connection>> connections{
        {"activeFrameAndLayerChanged", connect(&scene, &Scene::activeFrameAndLayerChanged, this, look)},
        {"scrubFrameChanged", connect(&scene, &Scene::scrubFrameChanged, this, look)},
        {"layersChanged", connect(&scene, &Scene::layersChanged, this, look)},
        {"layerMoved", connect(&scene, &Scene::layerMoved, this, look)},
        {"layerInserted", connect(&scene, &Scene::layerInserted, this, look)},
        {"drawingsChanged", connect(&scene, &Scene::drawingsChanged, this, look)},
        {"frameSizeChanged", connect(&scene, &Scene::frameSizeChanged, this, look)},
    };
    for (const auto &[name, connection] : connections) {
        if (name != signal)
            disconnect(connection);
    }
    const QImage before = imageOf(scene.framePixmap()).copy();
    operation(scene);
    const QImage after = imageOf(scene.framePixmap());
    QVERIFY(!seen.isNull());
    QVERIFY(before != after);
    QVERIFY(seen == after);
}

void TestScenePictures::withoutAVisualLayerNothingIsLeft()
{
    Scene scene;
    addTwoLayers(scene);
    scene.setBacklightSettings(shining());
    QVERIFY(!scene.backlightPixmap().isNull());
    scene.removeLayer(1);
    QSignalSpy frames(&scene, &Scene::backlightFramesChanged);
    scene.removeLayer(0);
    QCOMPARE(frames.size(), 1);
    QVERIFY(scene.backlightFrames().isEmpty());
    QVERIFY(scene.framePixmap().isNull());
    QVERIFY(scene.backlightPixmap().isNull());
    const SignalCount signalCount(&scene);
    scene.updateCachedFramePixmap(true);
    scene.updateCachedFramePixmap();
    QCOMPARE(signalCount.heard(), QString());
}

void TestScenePictures::smoothPaintOfNothingTouchesNothing()
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

void TestScenePictures::wrappingFollowsTheSheet()
{
    Scene scene;
    addTwoLayers(scene);
    scene.removeLayer(1);
    BacklightSettings settings = shining();
    settings.settingA.opacityLevelsBefore = {};
    settings.settingA.opacityLevelsAfter = {0.5};
    settings.settingA.showOption = BacklightSetting::ShowOption::WrapAtEnds;
    scene.setBacklightSettings(settings);
    scene.setActiveFrameAndLayer(5, 0, Scene::KeepFrameOnDrawing);
    QCOMPARE(shiningFrames(scene), QList<int>({1}));
    const QList<SceneChange> added = scene.addBlankDrawing(0, 5);
    QCOMPARE(shiningFrames(scene), QList<int>({6}));
    const QList<SceneChange> undone = scene.undoChanges(added);
    QCOMPARE(scene.activeFrame(), 5);
    QCOMPARE(shiningFrames(scene), QList<int>({1}));
    // Taken back once more, the frame stands behind the range, which its taker has to restore.
    scene.undoChanges(undone);
    QCOMPARE(scene.rangeLast(), 5);
    QCOMPARE(shiningFrames(scene), QList<int>({1}));
    scene.loseDrawing(0, 2);
    scene.deleteFrame(0, 1);
    QCOMPARE(scene.rangeLast(), 4);
    QCOMPARE(scene.activeFrame(), 4);
    QCOMPARE(shiningFrames(scene), QList<int>({1}));
}

void TestScenePictures::framesOutsideTheRangeFollowTheSheet()
{
    Scene scene;
    addTwoLayers(scene);
    scene.removeLayer(1);
    BacklightSettings settings = shining();
    settings.settingA.opacityLevelsBefore = {};
    settings.settingA.opacityLevelsAfter = {0.5};
    settings.settingA.showOption = BacklightSetting::ShowOption::ShowOutsideRange;
    scene.setBacklightSettings(settings);
    scene.setFrameRange(2, 4, 4, 0);
    QCOMPARE(shiningFrames(scene), QList<int>({5}));
    QSignalSpy frames(&scene, &Scene::backlightFramesChanged);
    scene.loseDrawing(0, 5);
    QCOMPARE(shiningFrames(scene), QList<int>());
    scene.addBlankDrawing(0, 5);
    QCOMPARE(shiningFrames(scene), QList<int>({6}));
    QCOMPARE(frames.size(), 2);
}

void TestScenePictures::pixmapIsSharedUntilInkShines()
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

void TestScenePictures::manyEditsBetweenLooksGiveThePictureFromScratch()
{
    const quint32 seed = QRandomGenerator::global()->generate();
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

QTEST_MAIN(TestScenePictures)
#include "tst_scene_pictures.moc"
