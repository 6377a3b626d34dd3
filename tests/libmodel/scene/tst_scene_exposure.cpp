#include "scenebuilder.h"

#include <QRandomGenerator>
#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

class tst_SceneExposure : public QObject
{
    Q_OBJECT

private slots:
    void blankIsAddedBehindAFrame();
    void blankInsertedIntoAHoldIsShownByTheRestOfIt();
    void blankInFrontOfFrameOne();
    void additionIsRecorded();
    void additionIsTold();
    void additionRaisesTheMaximumAndTheRange();
    void additionBehindTheRangeLeavesItAlone();
    void insertionRightBehindTheRangeWidensIt();
    void additionWellBeforeTheRangeMovesIt();
    void additionOnAShortLayerLeavesTheRangeAlone();
    void additionBeforeTheActiveFrameMovesIt();
    void additionAtTheActiveFrameLeavesIt();
    void additionOnAnotherLayerNeverMovesTheActiveFrameOffItsLayer();
    void additionBeforeTheScrubFrameMovesIt();
    void blankOnALinkedLayerGivesTheOthersHolds();
    void cloneOnALinkedLayerGivesAllHolds();
    void linkedLayersThatEndEarlierStayAsTheyAre();
    void linkedAnnotationsFollow();
    void linkedAnnotationsFollowAnAdditionInFrontOfFrameOne();
    void unlinkedLayerIsAlone();
    void cloneWithBlockedSignalsIsSilentAndRestoresThem();
    void severalClonesAreToldOnce();
    void severalClonesOnAnotherLayerTellTheActivePosition();
    void severalClonesAreListedNewestFirst();
    void clonesOfLinkedLayersAreListedStepByStep();
    void noClonesOfNoCount_data();
    void noClonesOfNoCount();
    void appendedClonesMakeAHold();
    void appendedClonesWidenTheRange();
    void positionsOutsideDoNothing_data();
    void positionsOutsideDoNothing();
    void layersThatAreNotVisualTakeNoCells();
    void invariantsHoldUnderRandomAdditions();
};

void tst_SceneExposure::blankIsAddedBehindAFrame()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const auto second = scene.item(0, 2);
    scene.addBlankDrawing(0, 1);
    QCOMPARE(kinds(scene, 0), "ooo");
    QCOMPARE(scene.item(0, 3), second);
}

void tst_SceneExposure::blankInsertedIntoAHoldIsShownByTheRestOfIt()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addCloneDrawings(0, 1, 3);
    scene.addStroke(0, 1, block(QRect(2, 2, 5, 5)));
    scene.insertBlankDrawing(0, 3);
    QCOMPARE(kinds(scene, 0), "ococc");
    QVERIFY(!drawingAt(scene, 0, 2).isEmpty());
    for (int frameId = 3; frameId <= 5; ++frameId)
        QVERIFY(drawingAt(scene, 0, frameId).isEmpty());
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneExposure::blankInFrontOfFrameOne()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const auto first = scene.item(0, 1);
    QCOMPARE(scene.insertBlankDrawing(0, 1).size(), 1);
    QCOMPARE(scene.item(0, 2), first);
    QCOMPARE(scene.addBlankDrawing(0, 0).size(), 1);
    QCOMPARE(scene.item(0, 3), first);
}

void tst_SceneExposure::additionIsRecorded()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const QList<SceneChange> changes = scene.addBlankDrawing(0, 1);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemInserted);
    QCOMPARE(changes.first().frameId, 2);
    QCOMPARE(changes.first().layerIndex, 0);
    QCOMPARE(scene.insertBlankDrawing(0, 2).first().frameId, 2);
    QCOMPARE(scene.addCloneDrawing(0, 4).first().frameId, 5);
}

void tst_SceneExposure::additionIsTold()
{
    Scene scene;
    addUsualLayers(scene, 2);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    QSignalSpy rect(&scene, &Scene::rectChanged);
    scene.addBlankDrawing(0, 2);
    QCOMPARE(layers.size(), 1);
    QCOMPARE(layers.first(), QVariantList({0, 0}));
    QCOMPARE(rect.size(), 1);
}

void tst_SceneExposure::additionRaisesTheMaximumAndTheRange()
{
    Scene scene;
    addUsualLayers(scene, 4);
    QSignalSpy maximum(&scene, &Scene::maximumFrameNumberChanged);
    QSignalSpy range(&scene, &Scene::frameRangeChanged);
    scene.addBlankDrawing(0, 4);
    QCOMPARE(maximum.size(), 1);
    QCOMPARE(maximum.first().first().toInt(), 5);
    QCOMPARE(range.size(), 1);
    QCOMPARE(range.first(), QVariantList({1, 5}));
}

void tst_SceneExposure::additionBehindTheRangeLeavesItAlone()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(2, 5, 3, 0);
    scene.addBlankDrawing(0, 6);
    QCOMPARE(scene.rangeFirst(), 2);
    QCOMPARE(scene.rangeLast(), 5);
    // Frame 5 is still in the range: what is added behind it is in it too.
    scene.addBlankDrawing(0, 5);
    QCOMPARE(scene.rangeLast(), 6);
}

void tst_SceneExposure::additionWellBeforeTheRangeMovesIt()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(4, 6, 4, 0);
    scene.addBlankDrawing(0, 3);
    QCOMPARE(scene.rangeFirst(), 4);
    QCOMPARE(scene.rangeLast(), 7);
    scene.addBlankDrawing(0, 2);
    QCOMPARE(scene.rangeFirst(), 5);
    QCOMPARE(scene.rangeLast(), 8);
}

void tst_SceneExposure::additionOnAShortLayerLeavesTheRangeAlone()
{
    Scene scene;
    addUsualLayers(scene, 9);
    const int shortLayer = addStrokeLayer(scene, 2);
    scene.setFrameRange(1, 9, 1, 0);
    scene.addBlankDrawing(shortLayer, 1);
    QCOMPARE(scene.rangeLast(), 9);
    QCOMPARE(scene.maximumFrameNumber(), 9);
}

void tst_SceneExposure::additionBeforeTheActiveFrameMovesIt()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    const auto active = scene.item(0, 3);
    QSignalSpy changed(&scene, &Scene::activeFrameAndLayerChanged);
    scene.addBlankDrawing(0, 2);
    QCOMPARE(scene.item(0, scene.activeFrame()), active);
    scene.insertBlankDrawing(0, 4);
    QCOMPARE(scene.item(0, scene.activeFrame()), active);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.first(), QVariantList({4, 0}));
    QCOMPARE(changed.last(), QVariantList({5, 0}));
}

void tst_SceneExposure::additionAtTheActiveFrameLeavesIt()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    QSignalSpy changed(&scene, &Scene::activeFrameAndLayerChanged);
    scene.addBlankDrawing(0, 3);
    QCOMPARE(scene.activeFrame(), 3);
    QCOMPARE(changed.size(), 0);
}

void tst_SceneExposure::additionOnAnotherLayerNeverMovesTheActiveFrameOffItsLayer()
{
    Scene scene;
    addUsualLayers(scene, 3);
    const int other = addStrokeLayer(scene, 3);
    scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    for (int i = 0; i < 4; ++i) {
        scene.addBlankDrawing(other, 1);
        QCOMPARE(brokenInvariant(scene), QString());
    }
    QCOMPARE(scene.activeFrame(), 4);
}

void tst_SceneExposure::additionBeforeTheScrubFrameMovesIt()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setScrubFrame(3);
    QSignalSpy scrubbed(&scene, &Scene::scrubFrameChanged);
    scene.addBlankDrawing(0, 3);
    QCOMPARE(scene.scrubFrame(), 3);
    QCOMPARE(scrubbed.size(), 0);
    scene.addBlankDrawing(0, 2);
    QCOMPARE(scene.scrubFrame(), 4);
    QCOMPARE(scrubbed.size(), 1);
    QCOMPARE(scrubbed.first(), QVariantList({4, 3}));

    // Of several holds on a shorter layer only the first moves it, up to the end of the scene.
    const int shorter = addStrokeLayer(scene, 2);
    scene.setScrubFrame(6);
    scrubbed.clear();
    scene.addCloneDrawings(shorter, 2, 2);
    QCOMPARE(scene.scrubFrame(), 7);
    QCOMPARE(scrubbed.size(), 1);
    QCOMPARE(scrubbed.first(), QVariantList({7, 6}));
}

void tst_SceneExposure::blankOnALinkedLayerGivesTheOthersHolds()
{
    Scene scene;
    for (int i = 0; i < 4; ++i)
        addStrokeLayer(scene, 2);
    for (const int layerIdx : {0, 1, 3})
        scene.setLayerLinked(layerIdx, true);
    const QList<SceneChange> changes = scene.addBlankDrawing(1, 1);
    QCOMPARE(kinds(scene, 0), "oco");
    QCOMPARE(kinds(scene, 1), "ooo");
    QCOMPARE(kinds(scene, 2), "oo");
    QCOMPARE(kinds(scene, 3), "oco");
    QCOMPARE(changes.size(), 3);
    QList<int> layers;
    for (const SceneChange &change : changes) {
        QCOMPARE(change.frameId, 2);
        layers.append(change.layerIndex);
    }
    // What was done last stands first.
    QCOMPARE(layers, QList<int>({3, 1, 0}));
}

void tst_SceneExposure::cloneOnALinkedLayerGivesAllHolds()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 1);
    for (int i = 0; i < 3; ++i)
        scene.setLayerLinked(i, true);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    QCOMPARE(scene.addCloneDrawing(2, 1).size(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(kinds(scene, i), "oc");
    QCOMPARE(layers.size(), 1);
    QCOMPARE(layers.first(), QVariantList({0, 2}));
}

void tst_SceneExposure::linkedLayersThatEndEarlierStayAsTheyAre()
{
    Scene scene;
    addStrokeLayer(scene, 5);
    addStrokeLayer(scene, 2);
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(1, true);
    const QList<SceneChange> changes = scene.addBlankDrawing(0, 4);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(scene.lastFrame(1), 2);
}

void tst_SceneExposure::linkedAnnotationsFollow()
{
    Scene scene;
    addUsualLayers(scene, 3);
    QImage note(1, 1, QImage::Format_Indexed8);
    note.fill(9);
    scene.setAnnotation(2, note);
    const auto *annotation = qobject_cast<AnnotationLayer *>(scene.layer(2));
    scene.addBlankDrawing(0, 1);
    QVERIFY(!annotation->image(2).isNull());
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(2, true);
    const QList<SceneChange> changes = scene.addBlankDrawing(0, 1);
    QCOMPARE(changes.size(), 2);
    // Of its own kind: the way back removes a note, not a cell.
    QCOMPARE(changes.at(0).type, LayerChange::AnnotationInserted);
    QCOMPARE(changes.at(0).layerIndex, 2);
    QCOMPARE(changes.at(0).frameId, 2);
    QCOMPARE(changes.at(1).type, LayerChange::ItemInserted);
    QVERIFY(annotation->image(2).isNull());
    QVERIFY(!annotation->image(3).isNull());
}

void tst_SceneExposure::linkedAnnotationsFollowAnAdditionInFrontOfFrameOne()
{
    Scene scene;
    addUsualLayers(scene, 3);
    QImage note(1, 1, QImage::Format_Indexed8);
    note.fill(9);
    scene.setAnnotation(1, note);
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(2, true);
    QCOMPARE(scene.addBlankDrawing(0, 0).size(), 2);
    const auto *annotation = qobject_cast<AnnotationLayer *>(scene.layer(2));
    QVERIFY(annotation->image(1).isNull());
    QVERIFY(!annotation->image(2).isNull());
}

void tst_SceneExposure::unlinkedLayerIsAlone()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 2);
    scene.setLayerLinked(1, true);
    scene.setLayerLinked(2, true);
    scene.addBlankDrawing(0, 1);
    QCOMPARE(scene.lastFrame(0), 3);
    QCOMPARE(scene.lastFrame(1), 2);
    QCOMPARE(scene.lastFrame(2), 2);
}

void tst_SceneExposure::cloneWithBlockedSignalsIsSilentAndRestoresThem()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    QCOMPARE(scene.addCloneDrawing(0, 1, true).size(), 1);
    QCOMPARE(signalCount.heard(), QString());
    QVERIFY(!scene.signalsBlocked());
    scene.blockSignals(true);
    scene.addCloneDrawing(0, 1, true);
    QVERIFY(scene.signalsBlocked());
}

void tst_SceneExposure::severalClonesAreToldOnce()
{
    Scene scene;
    addUsualLayers(scene, 2);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    QSignalSpy range(&scene, &Scene::frameRangeChanged);
    scene.addCloneDrawings(0, 1, 3);
    QCOMPARE(kinds(scene, 0), "occco");
    QCOMPARE(layers.size(), 1);
    QCOMPARE(range.size(), 1);
    QCOMPARE(range.first(), QVariantList({1, 5}));
    QCOMPARE(brokenInvariant(scene), QString());
}

// The first of the two moves the active frame behind the last cell of its layer, the second can't move it on.
void tst_SceneExposure::severalClonesOnAnotherLayerTellTheActivePosition()
{
    Scene scene;
    addStrokeLayer(scene, 5);
    addStrokeLayer(scene, 5);
    scene.setFrameRange(1, 5, 5, 0);
    QSignalSpy position(&scene, &Scene::activeFrameAndLayerChanged);
    scene.addCloneDrawings(1, 1, 2);
    QCOMPARE(scene.activeFrame(), 6);
    QCOMPARE(position.size(), 1);
    QCOMPARE(position.first(), QVariantList({6, 0}));
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneExposure::severalClonesAreListedNewestFirst()
{
    Scene scene;
    addStrokeLayer(scene, 2);
    const QList<SceneChange> changes = scene.addCloneDrawings(0, 2, 3);
    QCOMPARE(changes.size(), 3);
    for (const SceneChange &change : changes) {
        QCOMPARE(change.type, LayerChange::ItemInserted);
        QCOMPARE(change.frameId, 3);
    }
}

void tst_SceneExposure::noClonesOfNoCount_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {INT_MIN, -1, 0, Layer::maximumFrames, INT_MAX})
        QTest::addRow("%d", count) << count;
}

void tst_SceneExposure::noClonesOfNoCount()
{
    QFETCH(int, count);
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    QVERIFY(scene.addCloneDrawings(0, 1, count).isEmpty());
    scene.appendCloneDrawings(0, 1, count);
    QCOMPARE(scene.lastFrame(0), 2);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneExposure::appendedClonesMakeAHold()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    scene.appendCloneDrawings(0, 1, 23);
    QCOMPARE(scene.lastFrame(0), 24);
    for (int frameId = 2; frameId <= 24; ++frameId) {
        QVERIFY(scene.item(0, frameId)->isClone());
        QCOMPARE(scene.item(0, frameId)->drawing, scene.item(0, 1)->drawing);
    }
    QCOMPARE(layers.size(), 1);
}

void tst_SceneExposure::appendedClonesWidenTheRange()
{
    Scene scene;
    addUsualLayers(scene, 1);
    scene.appendCloneDrawings(0, 1, 23);
    QCOMPARE(scene.maximumFrameNumber(), 24);
    QCOMPARE(scene.rangeFirst(), 1);
    QCOMPARE(scene.rangeLast(), 24);
    QCOMPARE(scene.activeFrame(), 1);
}

void tst_SceneExposure::positionsOutsideDoNothing_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("frameId");
    for (const int layerIdx : {INT_MIN, -1, 3, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << layerIdx << 1;
    for (const int frameId : {INT_MIN, -1, 4, INT_MAX})
        QTest::addRow("frame %d", frameId) << 0 << frameId;
}

void tst_SceneExposure::positionsOutsideDoNothing()
{
    QFETCH(int, layerIdx);
    QFETCH(int, frameId);
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    QVERIFY(scene.addBlankDrawing(layerIdx, frameId).isEmpty());
    QVERIFY(scene.insertBlankDrawing(layerIdx, frameId).isEmpty());
    QVERIFY(scene.insertBlankDrawing(0, 0).isEmpty());
    QVERIFY(scene.addCloneDrawing(layerIdx, frameId).isEmpty());
    QVERIFY(scene.addCloneDrawings(layerIdx, frameId, 2).isEmpty());
    scene.appendCloneDrawings(layerIdx, frameId, 2);
    QCOMPARE(scene.lastFrame(0), 2);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneExposure::layersThatAreNotVisualTakeNoCells()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    for (const int layerIdx : {1, 2}) {
        QVERIFY(scene.addBlankDrawing(layerIdx, 1).isEmpty());
        QVERIFY(scene.addCloneDrawings(layerIdx, 1, 3).isEmpty());
        QVERIFY(!scene.addStroke(layerIdx, 1, block(QRect(0, 0, 4, 4))));
    }
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneExposure::invariantsHoldUnderRandomAdditions()
{
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    addStrokeLayer(scene, 1);
    addStrokeLayer(scene, 4);
    for (int step = 0; step < 300; ++step) {
        const int layerIdx = random.bounded(scene.layerCount());
        const int frameId = random.bounded(scene.lastFrame(layerIdx) + 2);
        switch (random.bounded(6)) {
        case 0:
            scene.addBlankDrawing(layerIdx, frameId);
            break;
        case 1:
            scene.insertBlankDrawing(layerIdx, frameId);
            break;
        case 2:
            scene.addCloneDrawings(layerIdx, frameId, random.bounded(3));
            break;
        case 3:
            scene.setLayerLinked(layerIdx, random.bounded(2) == 0);
            break;
        case 4:
            scene.setActiveFrameAndLayer(frameId, layerIdx, Scene::AllowFrameAfterLast);
            break;
        default:
            scene.setScrubFrame(frameId);
        }
        const QString broken = brokenInvariant(scene);
        QVERIFY2(broken.isEmpty(), qPrintable(QString("seed %1, step %2: %3").arg(seed).arg(step).arg(broken)));
    }
}

void tst_SceneExposure::insertionRightBehindTheRangeWidensIt()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(2, 5, 3, 0);
    scene.insertBlankDrawing(0, 7);
    QCOMPARE(scene.rangeLast(), 5);
    scene.insertBlankDrawing(0, 6);
    QCOMPARE(scene.rangeLast(), 6);
    QCOMPARE(scene.rangeFirst(), 2);
}

void tst_SceneExposure::clonesOfLinkedLayersAreListedStepByStep()
{
    Scene scene;
    addStrokeLayer(scene, 2);
    addStrokeLayer(scene, 2);
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(1, true);
    QList<int> layers;
    for (const SceneChange &change : scene.addCloneDrawings(1, 1, 3))
        layers.append(change.layerIndex);
    QCOMPARE(layers, QList<int>({1, 0, 1, 0, 1, 0}));
}

QTEST_MAIN(tst_SceneExposure)
#include "tst_scene_exposure.moc"
