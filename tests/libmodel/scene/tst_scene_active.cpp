#include "scenebuilder.h"

#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

class tst_SceneActive : public QObject
{
    Q_OBJECT

private slots:
    void frameRangeIsLimitedAndWidened_data();
    void frameRangeIsLimitedAndWidened();
    void crossedRangeChangesNothing();
    void equalRangeAndPositionIsSilent();
    void rangeChangeIsTold();
    void rangePullsTheWantedFrameInside();
    void rangeKeepsThePositionBehindTheLastCell();
    void rangeLeavesATooShortLayerForOneAbove();
    void rangeAcceptsStandingBehindTheLastCellOnTheWayUp();
    void rangeWantsACellOfALayerThatWasNotAskedFor();
    void activePositionIsSet_data();
    void activePositionIsSet();
    void activationIsTold();
    void otherOffPegsTransformIsToldWithTheFrame();
    void sameActivePositionIsSilent();
    void keepingPullsOffThePositionBehindTheLastCell();
    void audioAndAnnotationLayersCannotBeActive();
    void aLayerThatEndsBeforeTheRangeCannotBeActive();
    void aLayerThatEndsJustBeforeTheRangeIsActivatedBehindItsEnd();
    void unknownPositionsAreRefused_data();
    void unknownPositionsAreRefused();
    void scrubFrameIsSetWithinTheScene_data();
    void scrubFrameIsSetWithinTheScene();
    void unsettingTheScrubFrameTellsTheActivePosition();
    void activatingClearsTheScrubFrame();
    void lastFrameOfAnyLayer();
    void afterLastIsTheOnePositionBehindTheEnd();
    void cellBehindTheEndHasNoDrawing();
};

void tst_SceneActive::frameRangeIsLimitedAndWidened_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("one frame inside goes down") << 10 << 3 << 3 << 2 << 3;
    QTest::newRow("one frame at the start goes up") << 10 << 1 << 1 << 1 << 2;
    QTest::newRow("one frame at the end goes down") << 10 << 10 << 10 << 9 << 10;
    QTest::newRow("scene of one frame") << 1 << 1 << 1 << 1 << 1;
    QTest::newRow("both bounds outside") << 10 << -5 << 99 << 1 << 10;
    QTest::newRow("extremes") << 10 << INT_MIN << INT_MAX << 1 << 10;
    QTest::newRow("both beyond the end") << 10 << 50 << 60 << 9 << 10;
    QTest::newRow("inside") << 10 << 4 << 7 << 4 << 7;
}

void tst_SceneActive::frameRangeIsLimitedAndWidened()
{
    QFETCH(int, frames);
    QFETCH(int, lower);
    QFETCH(int, upper);
    QFETCH(int, first);
    QFETCH(int, last);
    Scene scene;
    addUsualLayers(scene, frames);
    scene.setFrameRange(lower, upper, 1, 0);
    QCOMPARE(scene.rangeFirst(), first);
    QCOMPARE(scene.rangeLast(), last);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneActive::crossedRangeChangesNothing()
{
    Scene scene;
    addUsualLayers(scene, 10);
    const SignalCount signalCount(&scene);
    scene.setFrameRange(7, 4, 5, 0);
    QCOMPARE(scene.rangeFirst(), 1);
    QCOMPARE(scene.rangeLast(), 10);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneActive::equalRangeAndPositionIsSilent()
{
    Scene scene;
    addUsualLayers(scene, 10);
    scene.setFrameRange(3, 8, 5, 0);
    const SignalCount signalCount(&scene);
    scene.setFrameRange(3, 8, 5, 0);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneActive::rangeChangeIsTold()
{
    Scene scene;
    addUsualLayers(scene, 10);
    QSignalSpy range(&scene, &Scene::frameRangeChanged);
    QSignalSpy pegs(&scene, &Scene::offPegsTransformChanged);
    QSignalSpy active(&scene, &Scene::activeFrameAndLayerChanged);
    scene.setFrameRange(3, 8, 5, 0);
    QCOMPARE(range.size(), 1);
    QCOMPARE(range.first(), QVariantList({3, 8}));
    QCOMPARE(pegs.size(), 1);
    QCOMPARE(active.size(), 1);
    QCOMPARE(active.first(), QVariantList({5, 0}));
}

void tst_SceneActive::rangePullsTheWantedFrameInside()
{
    Scene scene;
    addUsualLayers(scene, 10);
    scene.setFrameRange(3, 8, 1, 0);
    QCOMPARE(scene.activeFrame(), 3);
    scene.setFrameRange(3, 7, 10, 0);
    QCOMPARE(scene.activeFrame(), 7);
}

void tst_SceneActive::rangeKeepsThePositionBehindTheLastCell()
{
    Scene scene;
    addUsualLayers(scene, 10);
    const int shortLayer = addStrokeLayer(scene, 4);
    scene.setFrameRange(2, 8, 5, shortLayer);
    QCOMPARE(scene.activeFrame(), 5);
    QCOMPARE(scene.activeLayerIdx(), shortLayer);
}

void tst_SceneActive::rangeLeavesATooShortLayerForOneAbove()
{
    Scene scene;
    addUsualLayers(scene, 10);
    const int shortLayer = addStrokeLayer(scene, 2);
    scene.setFrameRange(5, 8, 6, shortLayer);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(scene.activeFrame(), 6);
}

void tst_SceneActive::rangeAcceptsStandingBehindTheLastCellOnTheWayUp()
{
    // From the top: 4 frames, 2 frames. A range from 5 leaves frame 5 of the upper, just behind its end.
    Scene scene;
    addStrokeLayer(scene, 4);
    addStrokeLayer(scene, 2);
    addStrokeLayer(scene, 9);
    scene.setFrameRange(5, 9, 6, 1);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(scene.activeFrame(), 5);
}

void tst_SceneActive::rangeWantsACellOfALayerThatWasNotAskedFor()
{
    // Nothing at or above the wanted layer reaches frame 5; below, the one that ends at 4 is passed over.
    Scene scene;
    addStrokeLayer(scene, 2);
    addStrokeLayer(scene, 4);
    addStrokeLayer(scene, 9);
    scene.setFrameRange(5, 9, 6, 0);
    QCOMPARE(scene.activeLayerIdx(), 2);
    QCOMPARE(scene.activeFrame(), 6);
}

void tst_SceneActive::activePositionIsSet_data()
{
    // A layer of 6 frames in a scene of 10, range 2 to 8.
    QTest::addColumn<int>("frameId");
    QTest::addColumn<Scene::SetFrameBehaviour>("behaviour");
    QTest::addColumn<int>("result");
    QTest::newRow("inside, kept") << 4 << Scene::KeepFrameOnDrawing << 4;
    QTest::newRow("inside, allowed") << 4 << Scene::AllowFrameAfterLast << 4;
    QTest::newRow("before the range") << 1 << Scene::AllowFrameAfterLast << 2;
    QTest::newRow("behind the last cell, allowed") << 7 << Scene::AllowFrameAfterLast << 7;
    QTest::newRow("behind the last cell, kept") << 7 << Scene::KeepFrameOnDrawing << 6;
    QTest::newRow("two behind the last cell") << 8 << Scene::AllowFrameAfterLast << 6;
    QTest::newRow("far behind") << INT_MAX << Scene::AllowFrameAfterLast << 6;
}

void tst_SceneActive::activePositionIsSet()
{
    QFETCH(int, frameId);
    QFETCH(Scene::SetFrameBehaviour, behaviour);
    QFETCH(int, result);
    Scene scene;
    addUsualLayers(scene, 10);
    const int layer = addStrokeLayer(scene, 6);
    scene.setFrameRange(2, 8, 3, 0);
    scene.setActiveFrameAndLayer(frameId, layer, behaviour);
    QCOMPARE(scene.activeFrame(), result);
    QCOMPARE(scene.activeLayerIdx(), layer);
}

void tst_SceneActive::activationIsTold()
{
    Scene scene;
    addUsualLayers(scene, 5);
    QSignalSpy active(&scene, &Scene::activeFrameAndLayerChanged);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    QCOMPARE(active.size(), 1);
    QCOMPARE(active.first(), QVariantList({3, 0}));
}

void tst_SceneActive::otherOffPegsTransformIsToldWithTheFrame()
{
    Scene scene;
    addUsualLayers(scene, 4);
    addStrokeLayer(scene, 4);
    const QTransform moved = QTransform::fromTranslate(7, -3);
    scene.setOffPegsTransform(2, 0, moved);
    QSignalSpy told(&scene, &Scene::offPegsTransformChanged);
    // Who hears of the new frame is to find out about it before.
    QList<int> toldBefore;
    connect(&scene, &Scene::activeFrameAndLayerChanged, this, [&] { toldBefore.append(int(told.size())); });
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    scene.setActiveFrameAndLayer(2, 3, Scene::KeepFrameOnDrawing); // the frame is as far off as before
    scene.setActiveFrameAndLayer(3, 3, Scene::KeepFrameOnDrawing);
    scene.setActiveFrameAndLayer(4, 3, Scene::KeepFrameOnDrawing); // on its pegs like the one before
    QCOMPARE(toldBefore, QList<int>({1, 1, 2, 2}));
    QCOMPARE(told.at(0).first().value<QTransform>(), moved);
    QCOMPARE(told.at(1).first().value<QTransform>(), QTransform());
}

void tst_SceneActive::sameActivePositionIsSilent()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    const SignalCount signalCount(&scene);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    scene.setActiveFrameAndLayer(3, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneActive::keepingPullsOffThePositionBehindTheLastCell()
{
    Scene scene;
    addUsualLayers(scene, 10);
    const int layer = addStrokeLayer(scene, 6);
    scene.setActiveFrameAndLayer(7, layer, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.activeFrame(), 7);
    scene.setFrameRange(1, 5, 7, layer);
    QCOMPARE(scene.activeFrame(), 7);
    // The last cell is 6, but the range ends at 5.
    scene.setActiveFrameAndLayer(7, layer, Scene::KeepFrameOnDrawing);
    QCOMPARE(scene.activeFrame(), 5);
}

void tst_SceneActive::audioAndAnnotationLayersCannotBeActive()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    const SignalCount signalCount(&scene);
    scene.setActiveFrameAndLayer(2, 1, Scene::KeepFrameOnDrawing);
    scene.setActiveFrameAndLayer(2, 2, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.activeFrame(), 3);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneActive::aLayerThatEndsBeforeTheRangeCannotBeActive()
{
    Scene scene;
    addUsualLayers(scene, 10);
    const int layer = addStrokeLayer(scene, 2);
    scene.setFrameRange(4, 10, 5, 0);
    scene.setActiveFrameAndLayer(2, layer, Scene::KeepFrameOnDrawing);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(scene.activeFrame(), 5);
}

void tst_SceneActive::aLayerThatEndsJustBeforeTheRangeIsActivatedBehindItsEnd()
{
    Scene scene;
    addUsualLayers(scene, 10);
    const int layer = addStrokeLayer(scene, 3);
    scene.setFrameRange(4, 10, 5, 0);
    scene.setActiveFrameAndLayer(2, layer, Scene::KeepFrameOnDrawing);
    QCOMPARE(scene.activeLayerIdx(), layer);
    QCOMPARE(scene.activeFrame(), 4);
}

void tst_SceneActive::unknownPositionsAreRefused_data()
{
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("layerIdx");
    for (const int frameId : {INT_MIN, -1, 0})
        QTest::addRow("frame %d", frameId) << frameId << 0;
    for (const int layerIdx : {INT_MIN, -1, 3, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << 1 << layerIdx;
}

void tst_SceneActive::unknownPositionsAreRefused()
{
    QFETCH(int, frameId);
    QFETCH(int, layerIdx);
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    const SignalCount signalCount(&scene);
    scene.setActiveFrameAndLayer(frameId, layerIdx, Scene::AllowFrameAfterLast);
    scene.setActiveFrameAndLayer(frameId, layerIdx, Scene::KeepFrameOnDrawing);
    QCOMPARE(scene.activeFrame(), 3);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneActive::scrubFrameIsSetWithinTheScene_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("kept");
    QTest::addColumn<int>("signalCount");
    QTest::newRow("first") << 1 << 1 << 1;
    QTest::newRow("last") << 5 << 5 << 1;
    QTest::newRow("equal") << 2 << 2 << 0;
    QTest::newRow("behind the end") << 6 << 2 << 0;
    QTest::newRow("largest") << INT_MAX << 2 << 0;
    QTest::newRow("0 unsets") << 0 << -1 << 1;
    QTest::newRow("smallest unsets") << INT_MIN << -1 << 1;
}

void tst_SceneActive::scrubFrameIsSetWithinTheScene()
{
    QFETCH(int, given);
    QFETCH(int, kept);
    QFETCH(int, signalCount);
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setScrubFrame(2);
    QSignalSpy changed(&scene, &Scene::scrubFrameChanged);
    scene.setScrubFrame(given);
    QCOMPARE(scene.scrubFrame(), kept);
    QCOMPARE(changed.size(), signalCount);
    if (signalCount)
        QCOMPARE(changed.first(), QVariantList({kept, 2}));
}

void tst_SceneActive::unsettingTheScrubFrameTellsTheActivePosition()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setScrubFrame(4);
    QSignalSpy active(&scene, &Scene::activeFrameAndLayerChanged);
    scene.unsetScrubFrame();
    scene.unsetScrubFrame();
    QCOMPARE(scene.scrubFrame(), -1);
    QCOMPARE(active.size(), 1);
    QCOMPARE(active.first(), QVariantList({1, 0}));
}

void tst_SceneActive::activatingClearsTheScrubFrame()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setScrubFrame(4);
    QSignalSpy scrub(&scene, &Scene::scrubFrameChanged);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    QCOMPARE(scene.scrubFrame(), -1);
    QCOMPARE(scrub.size(), 1);
    QCOMPARE(scrub.first(), QVariantList({-1, 4}));
}

void tst_SceneActive::lastFrameOfAnyLayer()
{
    Scene scene;
    addUsualLayers(scene, 7);
    const int layer = addStrokeLayer(scene, 3);
    QCOMPARE(scene.lastFrame(0), 7);
    QCOMPARE(scene.lastFrame(layer), 3);
    QCOMPARE(scene.lastFrame(1), 7);
    QCOMPARE(scene.lastFrame(2), 7);
    QCOMPARE(scene.lastFrame(-1), 0);
}

void tst_SceneActive::afterLastIsTheOnePositionBehindTheEnd()
{
    Scene scene;
    addUsualLayers(scene, 7);
    QVERIFY(!scene.isAfterLast(0, 7));
    QVERIFY(scene.isAfterLast(0, 8));
    QVERIFY(!scene.isAfterLast(0, 9));
    QVERIFY(!scene.isAfterLast(-1, 1));
}

void tst_SceneActive::cellBehindTheEndHasNoDrawing()
{
    Scene scene;
    QVERIFY(!scene.activeCellHasDrawing());
    addUsualLayers(scene, 2);
    QVERIFY(scene.activeCellHasDrawing());
    scene.setActiveFrameAndLayer(3, 0, Scene::AllowFrameAfterLast);
    QVERIFY(!scene.activeCellHasDrawing());
}

QTEST_MAIN(tst_SceneActive)
#include "tst_scene_active.moc"
