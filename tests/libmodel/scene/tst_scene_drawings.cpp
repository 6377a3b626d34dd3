#include "scenebuilder.h"

#include "libmodel/layers/referencelayer.h"
#include "support/scenesnapshot.h"

#include <QTest>

#include <algorithm>
#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

using Cells = QList<std::pair<int, int>>;

/// Two stroke layers of small frames, every original of the first with a block of its own: layer 0 is "ooco", layer 3
/// "ooc". Layers 1 and 2 are for sound and notes.
class TwoLayers
{
public:
    TwoLayers()
    {
        makeSmall(scene);
        addUsualLayers(scene, 3);
        scene.addCloneDrawing(0, 2);
        other = addStrokeLayer(scene, 2);
        scene.addCloneDrawing(other, 2);
        for (const int frameId : {1, 2, 4})
            scene.addStroke(0, frameId, block(QRect(frameId, 2, 4, 4)));
    }

    Scene scene;
    int other = -1;
};

std::shared_ptr<StrokeDrawing> newDrawing(QRect rect)
{
    auto drawing = std::make_shared<StrokeDrawing>(sceneFrame);
    drawing->addStroke(block(rect));
    return drawing;
}

Cells cellsOf(const QSignalSpy &spy)
{
    return spy.first().first().value<Cells>();
}

QList<CellRef> none()
{
    return {};
}

} // namespace

/// What one cell shows: losing a drawing, being given one, showing one from elsewhere.
class tst_SceneDrawings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void losingTheDrawingAtFrameOneDoesNothing();
    void originalThatLosesItsDrawingIsAHold();
    void distantCloneThatLosesItsDrawingIsUnlinked();
    void losingADrawingPromotesItsFirstClone();
    void holdHasNoDrawingToLose();
    void losingIsRecordedWithTheDrawing();
    void losingIsTold();
    void holdIsTurnedIntoAnOriginal();
    void turnedHoldIsACopy();
    void turnedHoldTakesTheRestOfTheHoldAlong();
    void turnedHoldTellsThePreviousCellToo();
    void turnedDistantCloneIsUnlinked();
    void originalIsNotTurned();
    void copyIdIsTakenUnlessNull();
    void distantCloneIsLinkedBothWays();
    void distantCloneTakesItsHoldAlong();
    void distantCloneOfADrawingOfAnotherLayerTypeIsRefused();
    void distantCloneOfItselfIsRefused();
    void distantCloneOfNothingIsRefused();
    void distantCloneOfWhatIsNoOriginalIsRefused();
    void newDistantClonePromotesItsOwnFirstClone();
    void distantCloneIsLedToAnotherOriginal();
    void replacedDrawingIsShownWithItsHold();
    void replacedHoldIsAnOriginal();
    void replacedDistantCloneIsUnlinked();
    void replacingLeavesDistantClonesTheOldDrawing();
    void replacingTakesDistantClonesAlongIfWanted();
    void replacementIsRecordedWithTheOldDrawing();
    void replacementIsTold();
    void unusableDrawingsAreRefused();
    void blockedOperationsAreSilentAndRestoreTheSignals();
    void linkedLayersHaveNoPartInIt();
    void positionsOutsideDoNothing_data();
    void positionsOutsideDoNothing();
    void originalIsFoundByItsCopyId();
    void unknownCopyIdsFindNothing();
};

void tst_SceneDrawings::initTestCase()
{
    qRegisterMetaType<Cells>();
}

void tst_SceneDrawings::losingTheDrawingAtFrameOneDoesNothing()
{
    TwoLayers two;
    const SceneSnapshot before(two.scene);
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.loseDrawing(0, 1).isEmpty());
    QCOMPARE(SceneSnapshot(two.scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::originalThatLosesItsDrawingIsAHold()
{
    TwoLayers two;
    const auto cell = two.scene.item(0, 2);
    const QUuid identity = cell->identifier;
    const auto first = two.scene.item(0, 1)->drawing;
    QCOMPARE(two.scene.loseDrawing(0, 2).size(), 1);
    QCOMPARE(kinds(two.scene, 0), "occo");
    QCOMPARE(two.scene.item(0, 2)->identifier, identity);
    // The hold behind it follows.
    QCOMPARE(two.scene.item(0, 2)->drawing, first);
    QCOMPARE(two.scene.item(0, 3)->drawing, first);
    QVERIFY(two.scene.item(0, 4)->drawing != first);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::distantCloneThatLosesItsDrawingIsUnlinked()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 2, two.scene.originOfFrame(0, 1));
    QCOMPARE(two.scene.loseDrawing(two.other, 2).size(), 1);
    QCOMPARE(kinds(two.scene, two.other), "occ");
    QVERIFY(two.scene.item(two.other, 2)->origin.isNull());
    QCOMPARE(two.scene.item(0, 1)->clones, none());
    QCOMPARE(two.scene.item(two.other, 3)->drawing, two.scene.item(two.other, 1)->drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::losingADrawingPromotesItsFirstClone()
{
    TwoLayers two;
    const CellRef original = two.scene.originOfFrame(0, 4);
    two.scene.makeDistantClone(two.other, 2, original);
    two.scene.makeDistantClone(two.other, 1, original);
    const auto drawing = two.scene.item(0, 4)->drawing;
    two.scene.loseDrawing(0, 4);
    QCOMPARE(kinds(two.scene, 0), "oocc");
    QCOMPARE(two.scene.item(0, 4)->clones, none());
    // The one that was linked first.
    QCOMPARE(kinds(two.scene, two.other), "doc");
    QCOMPARE(two.scene.item(two.other, 1)->origin, two.scene.originOfFrame(two.other, 2));
    for (int frameId = 1; frameId <= 3; ++frameId)
        QCOMPARE(two.scene.item(two.other, frameId)->drawing, drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::holdHasNoDrawingToLose()
{
    TwoLayers two;
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.loseDrawing(0, 3).isEmpty());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::losingIsRecordedWithTheDrawing()
{
    TwoLayers two;
    const auto drawing = two.scene.item(0, 2)->drawing;
    const QUuid identity = two.scene.item(0, 2)->identifier;
    const SceneChange change = two.scene.loseDrawing(0, 2).first();
    QCOMPARE(change.type, LayerChange::ItemReplaced);
    QCOMPARE(change.frameId, 2);
    QCOMPARE(change.layerIndex, 0);
    QVERIFY(change.item->isOriginal());
    QCOMPARE(change.item->identifier, identity);
    QCOMPARE(change.item->drawing, drawing);
}

void tst_SceneDrawings::losingIsTold()
{
    TwoLayers two;
    QSignalSpy drawings(&two.scene, &Scene::drawingsChanged);
    QSignalSpy rect(&two.scene, &Scene::rectChanged);
    QSignalSpy type(&two.scene, &Scene::currentDrawingTypeUpdated);
    two.scene.loseDrawing(0, 2);
    QCOMPARE(drawings.size(), 1);
    const Cells cells = cellsOf(drawings);
    QVERIFY(cells.contains({2, 0}));
    QVERIFY(cells.contains({3, 0}));
    QVERIFY(!cells.contains({4, 0}));
    QVERIFY(std::is_sorted(cells.begin(), cells.end()));
    QVERIFY(!rect.isEmpty());
    QCOMPARE(type.size(), 1);
}

void tst_SceneDrawings::holdIsTurnedIntoAnOriginal()
{
    TwoLayers two;
    const QUuid identity = two.scene.item(0, 3)->identifier;
    const QList<SceneChange> changes = two.scene.turnCloneIntoOriginal(0, 3);
    QCOMPARE(kinds(two.scene, 0), "oooo");
    QCOMPARE(two.scene.item(0, 3)->identifier, identity);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemReplaced);
    QCOMPARE(changes.first().frameId, 3);
    QVERIFY(changes.first().item->isClone());
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::turnedHoldIsACopy()
{
    TwoLayers two;
    two.scene.turnCloneIntoOriginal(0, 3);
    QVERIFY(two.scene.item(0, 3)->drawing != two.scene.item(0, 2)->drawing);
    QCOMPARE(drawingAt(two.scene, 0, 3).image(), drawingAt(two.scene, 0, 2).image());
    two.scene.addStroke(0, 3, block(QRect(30, 20, 4, 4)));
    QVERIFY(drawingAt(two.scene, 0, 3).image() != drawingAt(two.scene, 0, 2).image());
}

void tst_SceneDrawings::turnedHoldTakesTheRestOfTheHoldAlong()
{
    TwoLayers two;
    two.scene.addCloneDrawings(0, 3, 2);
    QCOMPARE(kinds(two.scene, 0), "ooccco");
    two.scene.turnCloneIntoOriginal(0, 3);
    QCOMPARE(kinds(two.scene, 0), "ooocco");
    QCOMPARE(two.scene.item(0, 4)->drawing, two.scene.item(0, 3)->drawing);
    QCOMPARE(two.scene.item(0, 5)->drawing, two.scene.item(0, 3)->drawing);
}

void tst_SceneDrawings::turnedHoldTellsThePreviousCellToo()
{
    TwoLayers two;
    two.scene.addCloneDrawing(0, 3);
    QSignalSpy drawings(&two.scene, &Scene::drawingsChanged);
    two.scene.turnCloneIntoOriginal(0, 3);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(cellsOf(drawings), Cells({{2, 0}, {3, 0}, {4, 0}}));
}

void tst_SceneDrawings::turnedDistantCloneIsUnlinked()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 2, two.scene.originOfFrame(0, 1));
    QSignalSpy drawings(&two.scene, &Scene::drawingsChanged);
    const QList<SceneChange> changes = two.scene.turnCloneIntoOriginal(two.other, 2);
    QCOMPARE(changes.size(), 1);
    // No hold became shorter by this.
    QCOMPARE(cellsOf(drawings), Cells({{2, two.other}, {3, two.other}}));
    QVERIFY(changes.first().item->isDistantClone());
    QCOMPARE(kinds(two.scene, two.other), "ooc");
    QVERIFY(two.scene.item(two.other, 2)->origin.isNull());
    QCOMPARE(two.scene.item(0, 1)->clones, none());
    QVERIFY(two.scene.item(two.other, 2)->drawing != two.scene.item(0, 1)->drawing);
    QCOMPARE(drawingAt(two.scene, two.other, 2).image(), drawingAt(two.scene, 0, 1).image());
    QCOMPARE(two.scene.item(two.other, 3)->drawing, two.scene.item(two.other, 2)->drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::originalIsNotTurned()
{
    TwoLayers two;
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.turnCloneIntoOriginal(0, 2, QUuid::createUuid()).isEmpty());
    QVERIFY(two.scene.item(0, 2)->drawing->copyId().isNull());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::copyIdIsTakenUnlessNull()
{
    TwoLayers two;
    const QUuid former = QUuid::createUuid();
    const QUuid given = QUuid::createUuid();
    two.scene.item(0, 2)->drawing->setCopyId(former);
    two.scene.addCloneDrawing(0, 3);
    two.scene.turnCloneIntoOriginal(0, 4, given);
    QCOMPARE(two.scene.item(0, 4)->drawing->copyId(), given);
    two.scene.turnCloneIntoOriginal(0, 3);
    QCOMPARE(two.scene.item(0, 3)->drawing->copyId(), former);
    QCOMPARE(two.scene.item(0, 2)->drawing->copyId(), former);
}

void tst_SceneDrawings::distantCloneIsLinkedBothWays()
{
    TwoLayers two;
    const CellRef original = two.scene.originOfFrame(0, 2);
    const auto cell = two.scene.item(two.other, 1);
    const QList<SceneChange> changes = two.scene.makeDistantClone(two.other, 1, original);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemReplaced);
    QVERIFY(changes.first().item->isOriginal());
    QVERIFY(two.scene.item(two.other, 1)->isDistantClone());
    QCOMPARE(two.scene.item(two.other, 1)->identifier, cell->identifier);
    QCOMPARE(two.scene.item(two.other, 1)->origin, original);
    const CellRef clone{two.scene.layer(two.other)->identifier(), cell->identifier};
    QCOMPARE(two.scene.item(0, 2)->clones, QList<CellRef>({clone}));
    QCOMPARE(two.scene.item(two.other, 1)->drawing, two.scene.item(0, 2)->drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::distantCloneTakesItsHoldAlong()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 2, two.scene.originOfFrame(0, 1));
    QCOMPARE(kinds(two.scene, two.other), "odc");
    QCOMPARE(two.scene.item(two.other, 3)->drawing, two.scene.item(0, 1)->drawing);
    // A hold may become one, too.
    two.scene.makeDistantClone(two.other, 3, two.scene.originOfFrame(0, 4));
    QCOMPARE(kinds(two.scene, two.other), "odd");
    QCOMPARE(two.scene.item(two.other, 2)->drawing, two.scene.item(0, 1)->drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::distantCloneOfADrawingOfAnotherLayerTypeIsRefused()
{
    TwoLayers two;
    const int reference = two.scene.insertLayer(std::make_shared<ReferenceLayer>(sceneFrame), two.scene.layerCount());
    const SceneSnapshot before(two.scene);
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.makeDistantClone(reference, 1, two.scene.originOfFrame(0, 1)).isEmpty());
    QVERIFY(two.scene.makeDistantClone(0, 2, two.scene.originOfFrame(reference, 1)).isEmpty());
    QCOMPARE(SceneSnapshot(two.scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::distantCloneOfItselfIsRefused()
{
    TwoLayers two;
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.makeDistantClone(0, 2, two.scene.originOfFrame(0, 2)).isEmpty());
    QCOMPARE(kinds(two.scene, 0), "ooco");
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::distantCloneOfNothingIsRefused()
{
    TwoLayers two;
    const CellRef original = two.scene.originOfFrame(0, 1);
    const SignalCount signalCount(&two.scene);
    for (const CellRef &ref : {CellRef(), CellRef{original.layer, QUuid::createUuid()},
                               CellRef{QUuid::createUuid(), original.cell}, CellRef{original.layer, {}}})
        QVERIFY(two.scene.makeDistantClone(0, 4, ref).isEmpty());
    QCOMPARE(kinds(two.scene, 0), "ooco");
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::distantCloneOfWhatIsNoOriginalIsRefused()
{
    TwoLayers two;
    const QUuid layer = two.scene.layer(0)->identifier();
    const CellRef hold{layer, two.scene.item(0, 3)->identifier};
    QVERIFY(two.scene.makeDistantClone(two.other, 1, hold).isEmpty());
    two.scene.makeDistantClone(0, 4, two.scene.originOfFrame(0, 1));
    const CellRef clone{layer, two.scene.item(0, 4)->identifier};
    QVERIFY(two.scene.makeDistantClone(two.other, 1, clone).isEmpty());
    // Not even by its own original, of which it would be the origin.
    QVERIFY(two.scene.makeDistantClone(0, 1, clone).isEmpty());
    QCOMPARE(kinds(two.scene, two.other), "ooc");
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::newDistantClonePromotesItsOwnFirstClone()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 1, two.scene.originOfFrame(0, 2));
    const auto drawing = two.scene.item(0, 2)->drawing;
    two.scene.makeDistantClone(0, 2, two.scene.originOfFrame(0, 1));
    QVERIFY(two.scene.item(two.other, 1)->isOriginal());
    QCOMPARE(two.scene.item(two.other, 1)->drawing, drawing);
    QCOMPARE(two.scene.item(0, 2)->clones, none());
    QCOMPARE(kinds(two.scene, 0), "odco");
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::distantCloneIsLedToAnotherOriginal()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 1, two.scene.originOfFrame(0, 1));
    two.scene.makeDistantClone(two.other, 1, two.scene.originOfFrame(0, 4));
    QCOMPARE(two.scene.item(0, 1)->clones, none());
    QCOMPARE(two.scene.item(0, 4)->clones.size(), 1);
    QCOMPARE(two.scene.item(two.other, 1)->drawing, two.scene.item(0, 4)->drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::replacedDrawingIsShownWithItsHold()
{
    TwoLayers two;
    const auto drawing = newDrawing(QRect(20, 20, 3, 3));
    QCOMPARE(two.scene.replaceDrawing(0, 2, drawing).size(), 1);
    QCOMPARE(kinds(two.scene, 0), "ooco");
    QCOMPARE(two.scene.item(0, 2)->drawing, drawing);
    QCOMPARE(two.scene.item(0, 3)->drawing, drawing);
    QVERIFY(two.scene.item(0, 4)->drawing != drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::replacedHoldIsAnOriginal()
{
    TwoLayers two;
    two.scene.addCloneDrawing(0, 3);
    const auto before = two.scene.item(0, 2)->drawing;
    const auto drawing = newDrawing(QRect(20, 20, 3, 3));
    two.scene.replaceDrawing(0, 3, drawing);
    QCOMPARE(kinds(two.scene, 0), "oooco");
    QCOMPARE(two.scene.item(0, 2)->drawing, before);
    QCOMPARE(two.scene.item(0, 4)->drawing, drawing);
}

void tst_SceneDrawings::replacedDistantCloneIsUnlinked()
{
    for (const bool updateDistantClones : {false, true}) {
        TwoLayers two;
        two.scene.makeDistantClone(two.other, 2, two.scene.originOfFrame(0, 1));
        const auto original = two.scene.item(0, 1)->drawing;
        const auto drawing = newDrawing(QRect(20, 20, 3, 3));
        two.scene.replaceDrawing(two.other, 2, drawing, updateDistantClones);
        QCOMPARE(kinds(two.scene, two.other), "ooc");
        QVERIFY(two.scene.item(two.other, 2)->origin.isNull());
        QCOMPARE(two.scene.item(two.other, 3)->drawing, drawing);
        QCOMPARE(two.scene.item(0, 1)->clones, none());
        QCOMPARE(two.scene.item(0, 1)->drawing, original);
        QCOMPARE(brokenInvariant(two.scene), QString());
    }
}

void tst_SceneDrawings::replacingLeavesDistantClonesTheOldDrawing()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 1, two.scene.originOfFrame(0, 2));
    two.scene.makeDistantClone(two.other, 2, two.scene.originOfFrame(0, 2));
    const auto old = two.scene.item(0, 2)->drawing;
    const auto drawing = newDrawing(QRect(20, 20, 3, 3));
    two.scene.replaceDrawing(0, 2, drawing, false);
    QCOMPARE(two.scene.item(0, 2)->clones, none());
    QCOMPARE(kinds(two.scene, two.other), "odc");
    for (int frameId = 1; frameId <= 3; ++frameId)
        QCOMPARE(two.scene.item(two.other, frameId)->drawing, old);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::replacingTakesDistantClonesAlongIfWanted()
{
    TwoLayers two;
    const CellRef original = two.scene.originOfFrame(0, 2);
    two.scene.makeDistantClone(two.other, 1, original);
    two.scene.makeDistantClone(two.other, 2, original);
    const QList<CellRef> listed = two.scene.item(0, 2)->clones;
    const auto drawing = newDrawing(QRect(20, 20, 3, 3));
    two.scene.replaceDrawing(0, 2, drawing, true);
    QCOMPARE(two.scene.item(0, 2)->clones, listed);
    QCOMPARE(kinds(two.scene, two.other), "ddc");
    for (int frameId = 1; frameId <= 3; ++frameId)
        QCOMPARE(two.scene.item(two.other, frameId)->drawing, drawing);
    QCOMPARE(two.scene.item(0, 3)->drawing, drawing);
    QCOMPARE(brokenInvariant(two.scene), QString());
}

void tst_SceneDrawings::replacementIsRecordedWithTheOldDrawing()
{
    TwoLayers two;
    const auto old = two.scene.item(0, 2)->drawing;
    const SceneChange change = two.scene.replaceDrawing(0, 2, newDrawing(QRect(20, 20, 3, 3))).first();
    QCOMPARE(change.type, LayerChange::ItemReplaced);
    QCOMPARE(change.frameId, 2);
    QCOMPARE(change.layerIndex, 0);
    QCOMPARE(change.item->drawing, old);
    QCOMPARE(change.item->identifier, two.scene.item(0, 2)->identifier);
}

void tst_SceneDrawings::replacementIsTold()
{
    TwoLayers two;
    two.scene.makeDistantClone(two.other, 2, two.scene.originOfFrame(0, 2));
    QStringList order;
    connect(&two.scene, &Scene::rectChanged, this, [&](QRect rect) {
        QCOMPARE(rect, QRect(QPoint(), sceneFrame));
        order += "rect";
    });
    connect(&two.scene, &Scene::drawingsChanged, this, [&](const Cells &cells) {
        QCOMPARE(cells, Cells({{2, 0}, {2, two.other}, {3, 0}, {3, two.other}}));
        order += "drawings";
    });
    connect(&two.scene, &Scene::currentDrawingTypeUpdated, this, [&] { order += "type"; });
    two.scene.replaceDrawing(0, 2, newDrawing(QRect(20, 20, 3, 3)), true);
    QCOMPARE(order, QStringList({"rect", "drawings", "type"}));
}

void tst_SceneDrawings::unusableDrawingsAreRefused()
{
    TwoLayers two;
    const SceneSnapshot before(two.scene);
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.replaceDrawing(0, 2, nullptr).isEmpty());
    QVERIFY(two.scene.replaceDrawing(0, 2, two.scene.item(0, 1)->drawing).isEmpty());
    QVERIFY(two.scene.replaceDrawing(0, 2, two.scene.item(0, 2)->drawing, true).isEmpty());
    QCOMPARE(SceneSnapshot(two.scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::blockedOperationsAreSilentAndRestoreTheSignals()
{
    TwoLayers two;
    const SignalCount signalCount(&two.scene);
    QVERIFY(!two.scene.loseDrawing(0, 2, true).isEmpty());
    QVERIFY(!two.scene.makeDistantClone(two.other, 1, two.scene.originOfFrame(0, 1), true).isEmpty());
    QVERIFY(!two.scene.replaceDrawing(0, 4, newDrawing(QRect(20, 20, 3, 3)), false, true).isEmpty());
    QCOMPARE(signalCount.heard(), QString());
    QVERIFY(!two.scene.signalsBlocked());
    two.scene.blockSignals(true);
    two.scene.loseDrawing(0, 4, true);
    QVERIFY(two.scene.signalsBlocked());
}

void tst_SceneDrawings::linkedLayersHaveNoPartInIt()
{
    TwoLayers two;
    two.scene.setLayerLinked(0, true);
    two.scene.setLayerLinked(two.other, true);
    two.scene.loseDrawing(0, 2);
    two.scene.turnCloneIntoOriginal(0, 3);
    two.scene.replaceDrawing(0, 2, newDrawing(QRect(20, 20, 3, 3)));
    two.scene.makeDistantClone(0, 4, two.scene.originOfFrame(0, 1));
    two.scene.setKeyDrawing(0, 2, true);
    QCOMPARE(kinds(two.scene, two.other), "ooc");
    QVERIFY(!two.scene.item(two.other, 2)->keyDrawing);
}

void tst_SceneDrawings::positionsOutsideDoNothing_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("frameId");
    for (const int layerIdx : {INT_MIN, -1, 1, 2, 4, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << layerIdx << 2;
    for (const int frameId : {INT_MIN, -1, 0, 5, INT_MAX})
        QTest::addRow("frame %d", frameId) << 0 << frameId;
}

void tst_SceneDrawings::positionsOutsideDoNothing()
{
    QFETCH(int, layerIdx);
    QFETCH(int, frameId);
    TwoLayers two;
    const SceneSnapshot before(two.scene);
    const SignalCount signalCount(&two.scene);
    QVERIFY(two.scene.loseDrawing(layerIdx, frameId).isEmpty());
    QVERIFY(two.scene.turnCloneIntoOriginal(layerIdx, frameId, QUuid::createUuid()).isEmpty());
    QVERIFY(two.scene.makeDistantClone(layerIdx, frameId, two.scene.originOfFrame(0, 1)).isEmpty());
    QVERIFY(two.scene.replaceDrawing(layerIdx, frameId, newDrawing(QRect(20, 20, 3, 3)), true).isEmpty());
    QVERIFY(two.scene.originOfFrame(layerIdx, frameId).isNull());
    QCOMPARE(SceneSnapshot(two.scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneDrawings::originalIsFoundByItsCopyId()
{
    TwoLayers two;
    const QUuid copyId = QUuid::createUuid();
    two.scene.item(two.other, 2)->drawing->setCopyId(copyId);
    // A distant clone shows the drawing, too, and stands in front of it; it is no original.
    two.scene.makeDistantClone(0, 1, two.scene.originOfFrame(two.other, 2));
    CellRef ref;
    int layerIdx = -7;
    int frameId = -7;
    const auto found = two.scene.findOriginalByCopyId(copyId, &ref, &layerIdx, &frameId);
    QCOMPARE(found, two.scene.item(two.other, 2));
    QCOMPARE(ref, two.scene.originOfFrame(two.other, 2));
    QCOMPARE(layerIdx, two.other);
    QCOMPARE(frameId, 2);
    QCOMPARE(two.scene.findOriginalByCopyId(copyId), found);
}

void tst_SceneDrawings::unknownCopyIdsFindNothing()
{
    TwoLayers two;
    CellRef ref = two.scene.originOfFrame(0, 1);
    const CellRef untouched = ref;
    int layerIdx = -7;
    int frameId = -7;
    QVERIFY(!two.scene.findOriginalByCopyId({}, &ref, &layerIdx, &frameId));
    QVERIFY(!two.scene.findOriginalByCopyId(QUuid::createUuid(), &ref, &layerIdx, &frameId));
    QCOMPARE(ref, untouched);
    QCOMPARE(layerIdx, -7);
    QCOMPARE(frameId, -7);
}

QTEST_MAIN(tst_SceneDrawings)
#include "tst_scene_drawings.moc"
