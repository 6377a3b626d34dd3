#include "scenebuilder.h"

#include "libmodel/layers/referencelayer.h"
#include "support/scenesnapshot.h"

#include <QTest>

#include <algorithm>
#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

/// Adds a stroke layer whose cells are \a text: o for an original, c for a hold of what stands before.
int addLayer(Scene &scene, const QString &text)
{
    const int layerIdx = addStrokeLayer(scene, 1);
    for (int frameId = 1; frameId < text.size(); ++frameId) {
        if (text.at(frameId) == 'c')
            scene.addCloneDrawing(layerIdx, frameId);
        else
            scene.addBlankDrawing(layerIdx, frameId);
    }
    return layerIdx;
}

bool isEmptyAt(const Scene &scene, int layerIdx, int frameId)
{
    return drawingAt(scene, layerIdx, frameId).isEmpty();
}

} // namespace

/// Taking frames away.
class tst_SceneDeletion : public QObject
{
    Q_OBJECT

private slots:
    void deletedFrameMovesTheOthersUp();
    void deletionIsRecorded();
    void deletionIsTold();
    void deletingFrameOneOfAHoldKeepsTheDrawingAndTakesTheSecondTransform();
    void deletingFrameOneOfAHoldIsRecordedNewestFirst();
    void deletingTheOnlyCellLeavesABlankAndUndoPutsTheOldOneBack();
    void deletingTheOnlyCellOfAReferenceLayerLeavesAnEmptyPicture();
    void deletingAnOriginalPromotesItsFirstCloneAndUndoDemotesIt();
    void deletingADistantCloneUnlinksItAndUndoLinksItAgain();
    void deletingAnOriginalLeavesItsHoldToTheDrawingBefore();
    void deletionShrinksTheRange();
    void deletionBeforeTheRangeMovesIt();
    void deletionBehindTheRangeShortensItToo();
    void rangeStaysWhileAnotherLayerReachesItsEnd();
    void rangeOfTwoFramesStaysOneOfTwo();
    void deletingTheLastFrameOfTheRangeLeavesTheEmptyPosition();
    void deletingBeforeTheActiveFrameKeepsItsNumber();
    void deletingUnderTheActiveFrameTellsTheTransform();
    void deletingUnderTheScrubFrameUnsetsIt();
    void linkedLayersLoseTheFrameTogether();
    void linkedLayersThatEndEarlierStayAsTheyAre();
    void linkedAnnotationsFollowAndUndoBringsThemBack();
    void unlinkedAnnotationsStay();
    void unlinkedLayerIsAlone();
    void severalFramesAreDeletedDownwards();
    void severalFramesAreListedNewestFirst();
    void noMoreFramesAreDeletedThanThereAre();
    void noFramesOfNoCount_data();
    void noFramesOfNoCount();
    void positionsOutsideDoNothing_data();
    void positionsOutsideDoNothing();
    void deletionIsUndoneExactly_data();
    void deletionIsUndoneExactly();
};

void tst_SceneDeletion::deletedFrameMovesTheOthersUp()
{
    Scene scene;
    addUsualLayers(scene, 4);
    const auto first = scene.item(0, 1);
    const auto third = scene.item(0, 3);
    QCOMPARE(scene.deleteFrame(0, 2).size(), 1);
    QCOMPARE(scene.lastFrame(0), 3);
    QCOMPARE(scene.item(0, 1), first);
    QCOMPARE(scene.item(0, 2), third);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneDeletion::deletionIsRecorded()
{
    Scene scene;
    addUsualLayers(scene, 3);
    const auto second = scene.item(0, 2);
    const SceneChange change = scene.deleteFrame(0, 2).first();
    QCOMPARE(change.type, LayerChange::ItemRemoved);
    QCOMPARE(change.frameId, 2);
    QCOMPARE(change.layerIndex, 0);
    // The cell itself, not a copy.
    QCOMPARE(change.item, second);
}

void tst_SceneDeletion::deletionIsTold()
{
    Scene scene;
    addUsualLayers(scene, 4);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    QSignalSpy maximum(&scene, &Scene::maximumFrameNumberChanged);
    QSignalSpy range(&scene, &Scene::frameRangeChanged);
    QSignalSpy rect(&scene, &Scene::rectChanged);
    scene.deleteFrame(0, 2);
    QCOMPARE(layers.size(), 1);
    QCOMPARE(layers.first(), QVariantList({0, 0}));
    QCOMPARE(maximum.size(), 1);
    QCOMPARE(maximum.first().first().toInt(), 3);
    QCOMPARE(range.size(), 1);
    QCOMPARE(range.first(), QVariantList({1, 3}));
    QVERIFY(!rect.isEmpty());
}

void tst_SceneDeletion::deletingFrameOneOfAHoldKeepsTheDrawingAndTakesTheSecondTransform()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addCloneDrawings(0, 1, 2);
    scene.addStroke(0, 1, block(QRect(3, 4, 5, 6)));
    const auto ofSecond = QTransform::fromTranslate(7, 8);
    scene.setOffPegsTransform(1, 0, QTransform::fromTranslate(1, 2));
    scene.setOffPegsTransform(2, 0, ofSecond);
    const auto first = scene.item(0, 1);
    const auto drawing = first->drawing;
    scene.deleteFrame(0, 1);
    QCOMPARE(kinds(scene, 0), "oc");
    QCOMPARE(scene.item(0, 1), first);
    QCOMPARE(scene.item(0, 1)->drawing, drawing);
    QCOMPARE(scene.item(0, 1)->offPegsTransform, ofSecond);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneDeletion::deletingFrameOneOfAHoldIsRecordedNewestFirst()
{
    Scene scene;
    addUsualLayers(scene, 1);
    scene.addCloneDrawing(0, 1);
    const QList<SceneChange> changes = scene.deleteFrame(0, 1);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(0).type, LayerChange::ItemRemoved);
    QCOMPARE(changes.at(0).frameId, 2);
    QCOMPARE(changes.at(1).type, LayerChange::TransformChanged);
    QCOMPARE(changes.at(1).frameId, 1);
}

void tst_SceneDeletion::deletingTheOnlyCellLeavesABlankAndUndoPutsTheOldOneBack()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addStroke(0, 1, block(QRect(3, 4, 5, 6)));
    const auto old = scene.item(0, 1);
    const QList<SceneChange> changes = scene.deleteFrame(0, 1);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemReplaced);
    QCOMPARE(kinds(scene, 0), "o");
    QVERIFY(scene.item(0, 1)->identifier != old->identifier);
    QVERIFY(isEmptyAt(scene, 0, 1));
    scene.undoChanges(changes);
    QCOMPARE(scene.item(0, 1)->identifier, old->identifier);
    QCOMPARE(scene.item(0, 1)->drawing, old->drawing);
    QVERIFY(!isEmptyAt(scene, 0, 1));
}

void tst_SceneDeletion::deletingTheOnlyCellOfAReferenceLayerLeavesAnEmptyPicture()
{
    Scene scene;
    makeSmall(scene);
    const int layerIdx = scene.insertLayer(std::make_shared<ReferenceLayer>(scene.frameSize()), 0);
    const auto old = scene.item(layerIdx, 1);
    scene.deleteFrame(layerIdx, 1);
    QCOMPARE(scene.lastFrame(layerIdx), 1);
    QVERIFY(scene.item(layerIdx, 1) != old);
    QCOMPARE(scene.item(layerIdx, 1)->drawing->type(), Drawing::Type::Image);
}

void tst_SceneDeletion::deletingAnOriginalPromotesItsFirstCloneAndUndoDemotesIt()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 4);
    const int other = addLayer(scene, "ooc");
    const CellRef original = scene.originOfFrame(0, 2);
    scene.makeDistantClone(other, 2, original);
    scene.makeDistantClone(0, 4, original);
    scene.addStroke(0, 2, block(QRect(3, 4, 5, 6)));
    const SceneSnapshot before(scene);
    const auto promoted = scene.item(other, 2);
    const QUuid identity = promoted->identifier;
    const QList<SceneChange> changes = scene.deleteFrame(0, 2);

    QCOMPARE(kinds(scene, other), "ooc");
    QCOMPARE(scene.item(other, 2), promoted);
    QVERIFY(promoted->origin.isNull());
    QCOMPARE(kinds(scene, 0), "ood");
    const CellRef promotedRef = scene.originOfFrame(other, 2);
    QCOMPARE(scene.item(0, 3)->origin, promotedRef);
    QVERIFY(!isEmptyAt(scene, 0, 3));
    QCOMPARE(brokenInvariant(scene), QString());

    scene.undoChanges(changes);
    QCOMPARE(kinds(scene, other), "odc");
    QCOMPARE(scene.item(other, 2)->identifier, identity);
    QCOMPARE(scene.item(other, 2)->origin, original);
    scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
    QCOMPARE(SceneSnapshot(scene).diff(before), QString());
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneDeletion::deletingADistantCloneUnlinksItAndUndoLinksItAgain()
{
    Scene scene;
    addUsualLayers(scene, 4);
    const CellRef original = scene.originOfFrame(0, 1);
    for (const int frameId : {2, 3, 4})
        scene.makeDistantClone(0, frameId, original);
    const QList<CellRef> listed = scene.item(0, 1)->clones;
    QCOMPARE(listed.size(), 3);
    const QList<SceneChange> changes = scene.deleteFrame(0, 3);
    QCOMPARE(scene.item(0, 1)->clones, QList<CellRef>({listed.at(0), listed.at(2)}));
    QCOMPARE(brokenInvariant(scene), QString());
    scene.undoChanges(changes);
    QCOMPARE(scene.item(0, 1)->clones, listed);
    QCOMPARE(kinds(scene, 0), "oddd");
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneDeletion::deletingAnOriginalLeavesItsHoldToTheDrawingBefore()
{
    Scene scene;
    addUsualLayers(scene, 2);
    scene.addCloneDrawings(0, 2, 2);
    const auto first = scene.item(0, 1)->drawing;
    scene.deleteFrame(0, 2);
    QCOMPARE(kinds(scene, 0), "occ");
    QCOMPARE(scene.item(0, 2)->drawing, first);
    QCOMPARE(scene.item(0, 3)->drawing, first);
}

void tst_SceneDeletion::deletionShrinksTheRange()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(3, 6, 4, 0);
    scene.deleteFrame(0, 5);
    QCOMPARE(scene.rangeFirst(), 3);
    QCOMPARE(scene.rangeLast(), 5);
    QCOMPARE(scene.activeFrame(), 4);
}

void tst_SceneDeletion::deletionBeforeTheRangeMovesIt()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(4, 6, 5, 0);
    scene.deleteFrame(0, 3);
    QCOMPARE(scene.rangeFirst(), 3);
    QCOMPARE(scene.rangeLast(), 5);
    scene.deleteFrame(0, 3); // the first of the range
    QCOMPARE(scene.rangeFirst(), 3);
    QCOMPARE(scene.rangeLast(), 4);
}

void tst_SceneDeletion::deletionBehindTheRangeShortensItToo()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(2, 5, 3, 0);
    scene.deleteFrame(0, 8);
    QCOMPARE(scene.rangeFirst(), 2);
    QCOMPARE(scene.rangeLast(), 4);
}

void tst_SceneDeletion::rangeStaysWhileAnotherLayerReachesItsEnd()
{
    Scene scene;
    addUsualLayers(scene, 6);
    const int other = addStrokeLayer(scene, 5);
    scene.setFrameRange(1, 5, 2, 0);
    scene.deleteFrame(0, 3);
    QCOMPARE(scene.rangeLast(), 5);
    // Now the other one ends with the range, too.
    scene.deleteFrame(other, 3);
    QCOMPARE(scene.rangeLast(), 5);
    scene.deleteFrame(0, 3);
    QCOMPARE(scene.rangeLast(), 4);
}

void tst_SceneDeletion::rangeOfTwoFramesStaysOneOfTwo()
{
    Scene scene;
    addUsualLayers(scene, 6);
    scene.setFrameRange(3, 4, 3, 0);
    scene.deleteFrame(0, 3);
    // 3 to 3 is widened downwards.
    QCOMPARE(scene.rangeFirst(), 2);
    QCOMPARE(scene.rangeLast(), 3);
    Scene two;
    addUsualLayers(two, 2);
    two.deleteFrame(0, 1);
    QCOMPARE(two.rangeFirst(), 1);
    QCOMPARE(two.rangeLast(), 1);
    QCOMPARE(brokenInvariant(two), QString());
}

void tst_SceneDeletion::deletingTheLastFrameOfTheRangeLeavesTheEmptyPosition()
{
    Scene scene;
    addUsualLayers(scene, 5);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    scene.deleteFrame(0, 5);
    QCOMPARE(scene.activeFrame(), 5);
    QVERIFY(scene.isAfterLast(0, 5));
    QCOMPARE(scene.rangeLast(), 4);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneDeletion::deletingBeforeTheActiveFrameKeepsItsNumber()
{
    Scene scene;
    addUsualLayers(scene, 6);
    scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    scene.deleteFrame(0, 2);
    QCOMPARE(scene.activeFrame(), 4);
}

void tst_SceneDeletion::deletingUnderTheActiveFrameTellsTheTransform()
{
    Scene scene;
    addUsualLayers(scene, 4);
    const auto moved = QTransform::fromTranslate(5, 6);
    scene.setOffPegsTransform(3, 0, moved);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    QSignalSpy transform(&scene, &Scene::offPegsTransformChanged);
    scene.deleteFrame(0, 2);
    QVERIFY(!transform.isEmpty());
    QCOMPARE(transform.last().first().value<QTransform>(), moved);
}

void tst_SceneDeletion::deletingUnderTheScrubFrameUnsetsIt()
{
    Scene scene;
    addUsualLayers(scene, 3);
    scene.setScrubFrame(3);
    QSignalSpy scrub(&scene, &Scene::scrubFrameChanged);
    scene.deleteFrame(0, 1);
    QCOMPARE(scene.scrubFrame(), -1);
    QCOMPARE(scrub.size(), 1);
    QCOMPARE(scrub.first(), QVariantList({-1, 3}));
}

void tst_SceneDeletion::linkedLayersLoseTheFrameTogether()
{
    Scene scene;
    addLayer(scene, "ooo");
    addLayer(scene, "ooc");
    addLayer(scene, "occo");
    for (int layerIdx = 0; layerIdx < 3; ++layerIdx)
        scene.setLayerLinked(layerIdx, true);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    const QList<SceneChange> changes = scene.deleteFrame(1, 2);
    QCOMPARE(kinds(scene, 0), "oo");
    QCOMPARE(kinds(scene, 1), "oc");
    QCOMPARE(kinds(scene, 2), "oco");
    QCOMPARE(layers.size(), 1);
    QCOMPARE(layers.first(), QVariantList({0, 2}));
    QList<int> acted;
    for (const SceneChange &change : changes) {
        QCOMPARE(change.type, LayerChange::ItemRemoved);
        QCOMPARE(change.frameId, 2);
        acted.append(change.layerIndex);
    }
    std::sort(acted.begin(), acted.end());
    QCOMPARE(acted, QList<int>({0, 1, 2}));
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneDeletion::linkedLayersThatEndEarlierStayAsTheyAre()
{
    Scene scene;
    addLayer(scene, "ooooo");
    addLayer(scene, "oo");
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(1, true);
    QCOMPARE(scene.deleteFrame(0, 4).size(), 1);
    QCOMPARE(scene.lastFrame(1), 2);
}

void tst_SceneDeletion::linkedAnnotationsFollowAndUndoBringsThemBack()
{
    Scene scene;
    addUsualLayers(scene, 3);
    QImage note(1, 1, QImage::Format_Indexed8);
    note.fill(9);
    scene.setAnnotation(2, note);
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(2, true);
    const auto *annotation = qobject_cast<AnnotationLayer *>(scene.layer(2));
    const SceneSnapshot before(scene);
    const QList<SceneChange> changes = scene.deleteFrame(0, 2);
    QVERIFY(annotation->image(2).isNull());
    QCOMPARE(changes.size(), 2);
    QVERIFY(changes.at(0).type == LayerChange::AnnotationRemoved ||
            changes.at(1).type == LayerChange::AnnotationRemoved);
    scene.undoChanges(changes);
    QVERIFY(!annotation->image(2).isNull());
    scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
    QCOMPARE(SceneSnapshot(scene).diff(before), QString());
}

void tst_SceneDeletion::unlinkedAnnotationsStay()
{
    Scene scene;
    addUsualLayers(scene, 3);
    QImage note(1, 1, QImage::Format_Indexed8);
    note.fill(9);
    scene.setAnnotation(2, note);
    scene.setLayerLinked(0, true);
    scene.deleteFrame(0, 2);
    QVERIFY(!qobject_cast<AnnotationLayer *>(scene.layer(2))->image(2).isNull());
}

void tst_SceneDeletion::unlinkedLayerIsAlone()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 3);
    scene.setLayerLinked(1, true);
    scene.setLayerLinked(2, true);
    scene.deleteFrame(0, 1);
    QCOMPARE(scene.lastFrame(0), 2);
    QCOMPARE(scene.lastFrame(1), 3);
    QCOMPARE(scene.lastFrame(2), 3);
}

void tst_SceneDeletion::severalFramesAreDeletedDownwards()
{
    Scene scene;
    addUsualLayers(scene, 6);
    const auto second = scene.item(0, 2);
    const auto sixth = scene.item(0, 6);
    scene.deleteFrames(0, 5, 3); // 5, 4, 3
    QCOMPARE(scene.lastFrame(0), 3);
    QCOMPARE(scene.item(0, 2), second);
    QCOMPARE(scene.item(0, 3), sixth);
}

void tst_SceneDeletion::severalFramesAreListedNewestFirst()
{
    Scene scene;
    addUsualLayers(scene, 6);
    QList<int> frames;
    for (const SceneChange &change : scene.deleteFrames(0, 5, 3))
        frames.append(change.frameId);
    QCOMPARE(frames, QList<int>({3, 4, 5}));
}

void tst_SceneDeletion::noMoreFramesAreDeletedThanThereAre()
{
    Scene scene;
    addUsualLayers(scene, 4);
    const auto fourth = scene.item(0, 4);
    QCOMPARE(scene.deleteFrames(0, 3, INT_MAX).size(), 3);
    QCOMPARE(scene.lastFrame(0), 1);
    QCOMPARE(scene.item(0, 1), fourth);
}

void tst_SceneDeletion::noFramesOfNoCount_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {INT_MIN, -1, 0})
        QTest::addRow("%d", count) << count;
}

void tst_SceneDeletion::noFramesOfNoCount()
{
    QFETCH(int, count);
    Scene scene;
    addUsualLayers(scene, 4);
    const SignalCount signalCount(&scene);
    QVERIFY(scene.deleteFrames(0, 3, count).isEmpty());
    QCOMPARE(scene.lastFrame(0), 4);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDeletion::positionsOutsideDoNothing_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("frameId");
    for (const int layerIdx : {INT_MIN, -1, 1, 2, 3, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << layerIdx << 1;
    for (const int frameId : {INT_MIN, -1, 0, 4, INT_MAX})
        QTest::addRow("frame %d", frameId) << 0 << frameId;
}

void tst_SceneDeletion::positionsOutsideDoNothing()
{
    QFETCH(int, layerIdx);
    QFETCH(int, frameId);
    Scene scene;
    addUsualLayers(scene, 3);
    const SignalCount signalCount(&scene);
    QVERIFY(scene.deleteFrame(layerIdx, frameId).isEmpty());
    QVERIFY(scene.deleteFrames(layerIdx, frameId, 2).isEmpty());
    QCOMPARE(scene.lastFrame(0), 3);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDeletion::deletionIsUndoneExactly_data()
{
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("count");
    for (int frameId = 1; frameId <= 7; ++frameId) {
        for (const int count : {1, 2, 7})
            QTest::addRow("%d from %d down", count, frameId) << frameId << count;
    }
}

void tst_SceneDeletion::deletionIsUndoneExactly()
{
    QFETCH(int, frameId);
    QFETCH(int, count);
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addCloneDrawing(0, 1);
    scene.addBlankDrawing(0, 2);
    scene.addBlankDrawing(0, 3);
    scene.addBlankDrawing(0, 4);
    scene.addCloneDrawings(0, 5, 2);
    const int other = addLayer(scene, "ooco");
    scene.makeDistantClone(0, 5, scene.originOfFrame(0, 1));
    scene.makeDistantClone(other, 2, scene.originOfFrame(0, 1));
    scene.makeDistantClone(other, 4, scene.originOfFrame(0, 3));
    for (const int frame : {1, 3, 4})
        scene.addStroke(0, frame, block(QRect(frame, 4, 5, 6)));
    for (int frame = 1; frame <= 7; ++frame) {
        scene.setKeyDrawing(0, frame, frame % 2 == 0);
        scene.setOffPegsTransform(frame, 0, QTransform::fromTranslate(frame, 1));
    }
    scene.setLayerLinked(0, true);
    scene.setLayerLinked(other, true);
    scene.setFrameRange(2, 6, 3, 0);
    QCOMPARE(kinds(scene, 0), "ocoodcc");
    const SceneSnapshot before(scene);
    const QList<SceneChange> changes = scene.deleteFrames(0, frameId, count);
    QCOMPARE(brokenInvariant(scene), QString());
    scene.undoChanges(changes);
    scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
    QCOMPARE(SceneSnapshot(scene).diff(before), QString());
    QCOMPARE(brokenInvariant(scene), QString());
}

QTEST_MAIN(tst_SceneDeletion)
#include "tst_scene_deletion.moc"
