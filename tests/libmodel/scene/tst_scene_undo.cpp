#include "scenebuilder.h"

#include "support/scenesnapshot.h"

#include <QTest>

#include <algorithm>
#include <climits>
#include <functional>

using namespace Model;
using namespace TestSupport;

namespace {

using Cells = QList<std::pair<int, int>>;
using Operation = std::function<QList<SceneChange>(Scene &)>;

/// Layer 0 "ocoodcco" and layer 3 "odcodo", linked with notes, full of links, marks and transforms. The d of layer 0
/// shows its frame 1, those of layer 3 show frames 1 and 4 of layer 0.
void fillScene(Scene &scene)
{
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addCloneDrawing(0, 1);
    for (const int frameId : {2, 3, 4})
        scene.addBlankDrawing(0, frameId);
    scene.addCloneDrawings(0, 5, 2);
    scene.addBlankDrawing(0, 7);
    const int other = addStrokeLayer(scene, 2);
    scene.addCloneDrawing(other, 2);
    for (const int frameId : {3, 4, 5})
        scene.addBlankDrawing(other, frameId);
    scene.makeDistantClone(0, 5, scene.originOfFrame(0, 1));
    scene.makeDistantClone(other, 2, scene.originOfFrame(0, 1));
    scene.makeDistantClone(other, 5, scene.originOfFrame(0, 4));
    for (const int frameId : {1, 3, 4, 8})
        scene.addStroke(0, frameId, block(QRect(frameId, 2, 5, 5)));
    for (int frameId = 1; frameId <= 6; ++frameId) {
        scene.setKeyDrawing(0, frameId, frameId % 2 == 0);
        scene.setKeyDrawing(other, frameId, frameId % 3 == 0);
        scene.setOffPegsTransform(frameId, 0, QTransform::fromTranslate(frameId, 1));
        scene.setOffPegsTransform(frameId, other, QTransform::fromTranslate(-frameId, 2));
        QImage note(2, 1, QImage::Format_Indexed8);
        note.fill(frameId);
        scene.setAnnotation(frameId, note);
    }
    for (const int layerIdx : {0, 2, other})
        scene.setLayerLinked(layerIdx, true);
    scene.setFrameRange(2, 6, 3, 0);
}

constexpr int lower = 3;

std::shared_ptr<StrokeDrawing> newDrawing()
{
    auto drawing = std::make_shared<StrokeDrawing>(sceneFrame);
    drawing->addStroke(block(QRect(20, 20, 3, 3)));
    return drawing;
}

/// Takes \a changes back and stands where \a position has it.
QList<SceneChange> takeBack(Scene &scene, const QList<SceneChange> &changes, const SceneSnapshot &position)
{
    QList<SceneChange> taken = scene.undoChanges(changes);
    scene.setFrameRange(position.rangeFirst, position.rangeLast, position.activeFrame, position.activeLayerIdx);
    return taken;
}

} // namespace

Q_DECLARE_METATYPE(Operation)

/// The way back of operations on cells.
class tst_SceneUndo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyOperationIsUndoneAndRedoneExactly_data();
    void everyOperationIsUndoneAndRedoneExactly();
    void operationsAreUndoneInReverse();
    void originThatIsGoneYieldsABlankOriginal();
    void cloneThatIsPutBackShowsWhatStandsBeforeIt();
    void undoOfADeletionWidensTheRange();
    void undoOfADeletionBeforeTheRangeMovesIt();
    void undoOfADeletionBehindTheRangeLeavesIt();
    void undoOfAnInsertionPullsTheRangeIn();
    void annotationsAreReversed();
    void undoIsTold();
    void undoTellsTheKindOfTheActiveCell();
    void undoTellsEveryCellOfTheDrawing();
    void nothingToUndoIsSilent();
    void unusableRecordsAreIgnored_data();
    void unusableRecordsAreIgnored();
};

void tst_SceneUndo::initTestCase()
{
    qRegisterMetaType<Cells>();
}

void tst_SceneUndo::everyOperationIsUndoneAndRedoneExactly_data()
{
    QTest::addColumn<Operation>("operation");
    const auto row = [](const QString &name, Operation operation) {
        QTest::newRow(qPrintable(name)) << std::move(operation);
    };
    for (const int layer : {0, lower}) {
        const QString of = QString(" of layer %1").arg(layer);
        for (int frame = 1; frame <= 6; ++frame) {
            const QString at = QString(" at %1").arg(frame) + of;
            row("blank behind" + at, [=](Scene &scene) { return scene.addBlankDrawing(layer, frame); });
            row("blank in front" + at, [=](Scene &scene) { return scene.insertBlankDrawing(layer, frame); });
            row("clone" + at, [=](Scene &scene) { return scene.addCloneDrawing(layer, frame); });
            row("three clones" + at, [=](Scene &scene) { return scene.addCloneDrawings(layer, frame, 3); });
            row("deletion" + at, [=](Scene &scene) { return scene.deleteFrame(layer, frame); });
            row("two deletions" + at, [=](Scene &scene) { return scene.deleteFrames(layer, frame, 2); });
            row("loss" + at, [=](Scene &scene) { return scene.loseDrawing(layer, frame); });
            row("turn" + at,
                [=](Scene &scene) { return scene.turnCloneIntoOriginal(layer, frame, QUuid::createUuid()); });
            row("link" + at,
                [=](Scene &scene) { return scene.makeDistantClone(layer, frame, scene.originOfFrame(0, 3)); });
            row("replacement" + at,
                [=](Scene &scene) { return scene.replaceDrawing(layer, frame, newDrawing(), false); });
            row("replacement with clones" + at,
                [=](Scene &scene) { return scene.replaceDrawing(layer, frame, newDrawing(), true); });
        }
        row("blank in front of all" + of, [=](Scene &scene) { return scene.addBlankDrawing(layer, 0); });
        row("deletion of all" + of,
            [=](Scene &scene) { return scene.deleteFrames(layer, scene.lastFrame(layer), 99); });
    }
    row("slide to the left", [](Scene &scene) { return scene.slideOriginalDrawing(0, 3, -1, -1, 0); });
    row("slide of a distant clone", [](Scene &scene) { return scene.slideOriginalDrawing(0, 5, 1, 0, 2); });
    row("slide there and back", [](Scene &scene) { return scene.slideOriginalDrawing(0, 5, 0, -1, 2); });
}

void tst_SceneUndo::everyOperationIsUndoneAndRedoneExactly()
{
    QFETCH(Operation, operation);
    Scene scene;
    fillScene(scene);
    QCOMPARE(kinds(scene, 0), "ocoodcco");
    QCOMPARE(kinds(scene, lower), "odcodo");
    QCOMPARE(brokenInvariant(scene), QString());
    const SceneSnapshot before(scene);
    QList<SceneChange> changes = operation(scene);
    const SceneSnapshot after(scene);
    QCOMPARE(brokenInvariant(scene), QString());
    QCOMPARE(changes.isEmpty(), after == before);
    for (int round = 0; round < 2; ++round) {
        changes = takeBack(scene, changes, before);
        QCOMPARE(SceneSnapshot(scene).diff(before), QString());
        QCOMPARE(brokenInvariant(scene), QString());
        changes = takeBack(scene, changes, after);
        QCOMPARE(SceneSnapshot(scene).diff(after), QString());
        QCOMPARE(brokenInvariant(scene), QString());
    }
}

void tst_SceneUndo::operationsAreUndoneInReverse()
{
    Scene scene;
    fillScene(scene);
    const QList<Operation> operations{
        [](Scene &s) { return s.deleteFrame(0, 1); },
        [](Scene &s) { return s.turnCloneIntoOriginal(lower, 2); },
        [](Scene &s) { return s.makeDistantClone(0, 1, s.originOfFrame(lower, 2)); },
        [](Scene &s) { return s.deleteFrame(lower, 2); },
        [](Scene &s) { return s.addCloneDrawings(0, 2, 2); },
        [](Scene &s) { return s.replaceDrawing(0, 1, newDrawing(), true); },
        [](Scene &s) { return s.deleteFrames(0, 4, 4); },
    };
    QList<SceneSnapshot> states{SceneSnapshot(scene)};
    QList<QList<SceneChange>> lists;
    for (const Operation &operation : operations) {
        lists.append(operation(scene));
        QVERIFY(!lists.last().isEmpty());
        states.append(SceneSnapshot(scene));
        QCOMPARE(brokenInvariant(scene), QString());
    }
    for (qsizetype i = lists.size() - 1; i >= 0; --i) {
        lists[i] = takeBack(scene, lists.at(i), states.at(i));
        QCOMPARE(SceneSnapshot(scene).diff(states.at(i)), QString());
    }
    for (qsizetype i = 0; i < lists.size(); ++i) {
        takeBack(scene, lists.at(i), states.at(i + 1));
        QCOMPARE(SceneSnapshot(scene).diff(states.at(i + 1)), QString());
    }
}

void tst_SceneUndo::originThatIsGoneYieldsABlankOriginal()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    const int other = addStrokeLayer(scene, 2);
    scene.addStroke(other, 1, block(QRect(2, 2, 5, 5)));
    scene.makeDistantClone(0, 2, scene.originOfFrame(other, 1));
    const QUuid identity = scene.item(0, 2)->identifier;
    const QList<SceneChange> changes = scene.deleteFrame(0, 2);
    scene.removeLayer(other);
    scene.undoChanges(changes);
    QCOMPARE(kinds(scene, 0), "ooo");
    QCOMPARE(scene.item(0, 2)->identifier, identity);
    QVERIFY(scene.item(0, 2)->origin.isNull());
    QVERIFY(drawingAt(scene, 0, 2).isEmpty());
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneUndo::cloneThatIsPutBackShowsWhatStandsBeforeIt()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    scene.addCloneDrawings(0, 2, 2);
    const QList<SceneChange> changes = scene.deleteFrame(0, 3);
    scene.replaceDrawing(0, 2, newDrawing());
    scene.undoChanges(changes);
    QCOMPARE(kinds(scene, 0), "oocc");
    QCOMPARE(scene.item(0, 3)->drawing, scene.item(0, 2)->drawing);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneUndo::undoOfADeletionWidensTheRange()
{
    Scene scene;
    addUsualLayers(scene, 5);
    const QList<SceneChange> changes = scene.deleteFrame(0, 3);
    QCOMPARE(scene.rangeLast(), 4);
    scene.undoChanges(changes);
    QCOMPARE(scene.maximumFrameNumber(), 5);
    QCOMPARE(scene.rangeFirst(), 1);
    QCOMPARE(scene.rangeLast(), 5);
}

void tst_SceneUndo::undoOfADeletionBeforeTheRangeMovesIt()
{
    Scene scene;
    addUsualLayers(scene, 9);
    scene.setFrameRange(4, 6, 5, 0);
    const QList<SceneChange> changes = scene.deleteFrame(0, 2);
    QCOMPARE(scene.rangeFirst(), 3);
    QCOMPARE(scene.rangeLast(), 5);
    scene.undoChanges(changes);
    QCOMPARE(scene.rangeFirst(), 4);
    QCOMPARE(scene.rangeLast(), 6);
}

void tst_SceneUndo::undoOfADeletionBehindTheRangeLeavesIt()
{
    Scene scene;
    addUsualLayers(scene, 9);
    const QList<SceneChange> changes = scene.deleteFrame(0, 8);
    scene.setFrameRange(2, 5, 3, 0);
    scene.undoChanges(changes);
    QCOMPARE(scene.rangeFirst(), 2);
    QCOMPARE(scene.rangeLast(), 5);
}

void tst_SceneUndo::undoOfAnInsertionPullsTheRangeIn()
{
    Scene scene;
    addUsualLayers(scene, 3);
    const QList<SceneChange> changes = scene.addCloneDrawings(0, 3, 4);
    QCOMPARE(scene.rangeLast(), 7);
    scene.undoChanges(changes);
    QCOMPARE(scene.lastFrame(0), 3);
    QCOMPARE(scene.maximumFrameNumber(), 3);
    QCOMPARE(scene.rangeLast(), 3);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneUndo::annotationsAreReversed()
{
    Scene scene;
    addUsualLayers(scene, 3);
    auto *notes = qobject_cast<AnnotationLayer *>(scene.layer(2));
    QImage note(1, 1, QImage::Format_Indexed8);
    note.fill(9);
    QImage other(1, 1, QImage::Format_Indexed8);
    other.fill(7);
    notes->setImage(2, note);
    const auto undo = [&](const QList<LayerChange> &steps) {
        for (const LayerChange &step : steps)
            scene.undoChanges({SceneChange(step, 2)});
    };
    undo(notes->setImage(2, other));
    QCOMPARE(notes->image(2), note);
    undo(notes->removeFrame(2));
    QCOMPARE(notes->image(2), note);
    undo(notes->insertImage(1, other));
    QVERIFY(notes->image(1).isNull());
    QCOMPARE(notes->image(2), note);
}

void tst_SceneUndo::undoIsTold()
{
    Scene scene;
    fillScene(scene);
    const QList<SceneChange> changes = scene.deleteFrame(0, 4);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    QSignalSpy rect(&scene, &Scene::rectChanged);
    QSignalSpy drawings(&scene, &Scene::drawingsChanged);
    scene.undoChanges(changes);
    QCOMPARE(layers.size(), 1);
    // The notes stand in between.
    QCOMPARE(layers.first(), QVariantList({0, lower}));
    QVERIFY(std::any_of(rect.begin(), rect.end(), [](const QVariantList &arguments) {
        return arguments.first().toRect() == QRect(QPoint(), sceneFrame);
    }));
    QCOMPARE(drawings.size(), 1);
}

void tst_SceneUndo::undoTellsEveryCellOfTheDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 4);
    scene.addCloneDrawing(0, 2);
    const int other = addStrokeLayer(scene, 2);
    scene.makeDistantClone(other, 2, scene.originOfFrame(0, 2));
    const QList<SceneChange> changes = scene.replaceDrawing(0, 2, newDrawing(), true);
    QSignalSpy drawings(&scene, &Scene::drawingsChanged);
    scene.undoChanges(changes);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(drawings.first().first().value<Cells>(), Cells({{2, 0}, {2, other}, {3, 0}}));
}

void tst_SceneUndo::nothingToUndoIsSilent()
{
    Scene scene;
    fillScene(scene);
    const SignalCount signalCount(&scene);
    QVERIFY(scene.undoChanges({}).isEmpty());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneUndo::unusableRecordsAreIgnored_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("layerIdx");
    for (const int layerIdx : {INT_MIN, -1, 1, 4, INT_MAX})
        QTest::addRow("insertion in layer %d", layerIdx) << int(LayerChange::ItemInserted) << 1 << layerIdx;
    for (const int frameId : {INT_MIN, -1, 0, 9, INT_MAX}) {
        QTest::addRow("insertion at %d", frameId) << int(LayerChange::ItemInserted) << frameId << 0;
        QTest::addRow("transform at %d", frameId) << int(LayerChange::TransformChanged) << frameId << 0;
        QTest::addRow("note at %d", frameId) << int(LayerChange::AnnotationInserted) << frameId << 2;
    }
    QTest::newRow("no change") << int(LayerChange::NoChange) << 1 << 0;
    QTest::newRow("removal without a cell") << int(LayerChange::ItemRemoved) << 1 << 0;
    QTest::newRow("replacement without a cell") << int(LayerChange::ItemReplaced) << 1 << 0;
    QTest::newRow("a note's removal in a layer of cells") << int(LayerChange::AnnotationInserted) << 1 << 0;
    QTest::newRow("a cell's removal in the layer of notes") << int(LayerChange::ItemInserted) << 1 << 2;
}

void tst_SceneUndo::undoTellsTheKindOfTheActiveCell()
{
    Scene scene;
    addUsualLayers(scene, 3);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    const QList<SceneChange> lost = scene.loseDrawing(0, 2);
    const QList<SceneChange> others = scene.loseDrawing(0, 3);
    QSignalSpy kind(&scene, &Scene::currentDrawingTypeUpdated);
    scene.undoChanges(others);
    QCOMPARE(kind.size(), 0);
    const QList<SceneChange> again = scene.undoChanges(lost);
    QCOMPARE(kind.size(), 1);
    scene.undoChanges(again);
    QCOMPARE(kind.size(), 2);
}

void tst_SceneUndo::unusableRecordsAreIgnored()
{
    QFETCH(int, type);
    QFETCH(int, frameId);
    QFETCH(int, layerIdx);
    Scene scene;
    fillScene(scene);
    const SceneSnapshot before(scene);
    const SignalCount signalCount(&scene);
    QVERIFY(scene.undoChanges({SceneChange(static_cast<LayerChange::Type>(type), frameId, layerIdx)}).isEmpty());
    QCOMPARE(SceneSnapshot(scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

QTEST_MAIN(tst_SceneUndo)
#include "tst_scene_undo.moc"
