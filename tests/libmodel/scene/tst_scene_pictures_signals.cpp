// What is told when the kept pictures change, and what is seen by those who look the moment they are told.

#include "picturefixture.h"

#include <QTest>

#include <functional>

using namespace Model;
using namespace TestSupport;

namespace {

void putOffPegs(Scene &scene, int layerIdx, int frameId, int dx)
{
    scene.item(layerIdx, frameId)->offPegsTransform = QTransform::fromTranslate(dx, 0);
}

using Operation = std::function<void(Scene &)>;

} // namespace

Q_DECLARE_METATYPE(Operation)

class tst_ScenePicturesSignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
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
    void wrappingFollowsTheSheet();
    void framesOutsideTheRangeFollowTheSheet();
};

void tst_ScenePicturesSignals::initTestCase()
{
    qRegisterMetaType<QList<std::pair<int, int>>>();
}

void tst_ScenePicturesSignals::lookingWhileTheActiveLayerGoesIsSafe()
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

void tst_ScenePicturesSignals::framesThatShineAnewAreToldWithTheWholeFrame()
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

void tst_ScenePicturesSignals::changeBehindBlockedSignalsIsToldAtTheNextUpdate()
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

void tst_ScenePicturesSignals::takenBackChangeBehindBlockedSignalsIsNotTold()
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

void tst_ScenePicturesSignals::offPegsOfTheActiveFrameIsToldWithTheWholeFrame()
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

void tst_ScenePicturesSignals::transformChangedByStructureIsToldOnce_data()
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
    // Twice as wide and as high, the frame is moved by twice as many pixels.
    row(
        "setFrameSize", [](Scene &scene) { putOffPegs(scene, 0, 3, 10); },
        [](Scene &scene) { scene.setFrameSize(wideFrame * 2, MR::FitMode::FitModeStretch); }, moved(20));
    row(
        "undo", [](Scene &scene) { putOffPegs(scene, 0, 3, 10); },
        [](Scene &scene) { scene.undoChanges({SceneChange(LayerChange::TransformChanged, 3, 0)}); }, QTransform());
}

void tst_ScenePicturesSignals::transformChangedByStructureIsToldOnce()
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

void tst_ScenePicturesSignals::transformThatStaysIsNotTold()
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

void tst_ScenePicturesSignals::newFrameSizeRefreshesEveryCell()
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

void tst_ScenePicturesSignals::whoLooksOnTheSignalSeesTheNewPicture_data()
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

void tst_ScenePicturesSignals::whoLooksOnTheSignalSeesTheNewPicture()
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

void tst_ScenePicturesSignals::withoutAVisualLayerNothingIsLeft()
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

void tst_ScenePicturesSignals::wrappingFollowsTheSheet()
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

void tst_ScenePicturesSignals::framesOutsideTheRangeFollowTheSheet()
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

QTEST_MAIN(tst_ScenePicturesSignals)
#include "tst_scene_pictures_signals.moc"
