#include "clipstage.h"

#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/setframerange.h"
#include "libcommands/stroke.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "support/modelwatch.h"
#include "support/scenepictures.h"

#include <QItemSelectionModel>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Commands;
using namespace Model;
using namespace TestSupport;

namespace {

std::unique_ptr<Model::Stroke> dot()
{
    QImage coverage(QSize(2, 2), QImage::Format_Alpha8);
    coverage.fill(255);
    return std::make_unique<BitmapStroke>(coverage, QRect(40, 25, 2, 2));
}

} // namespace

class tst_PasteDrawing : public QObject
{
    Q_OBJECT

private slots:
    void textTellsWhatItIs();
    // At a cell.
    void nothingSelectedInsertsAndOverwritesNothing();
    void insertedFramesOfThisSceneAreDistantClones();
    void holdOfThreeFramesBecomesOneDrawingWithTwoClones();
    void holdCopiedHereGoesOnWithTheHold();
    void holdOverItsOwnDrawingLeavesIt();
    void holdAtTheBeginningOfALayerBecomesADistantClone();
    void pasteElsewhereKeepsHoldsAndRepeats();
    void pasteTwiceElsewhereLinksTheSecondToTheFirst();
    void pasteBehindTheLastCellAddsCells();
    void pasteFarBehindTheRangeIsSeen();
    void pasteIntoLinkedLayersKeepsThemInStep();
    void cellsInTheRangeGrowTheRange();
    // Over a selection.
    void threeOntoFiveOverwriteThreeAndDiscardTwo();
    void threeOntoOneAddTwoClonesBehind();
    void threeOntoThreeOverwriteThree();
    void gapsAreFilledFromTheFirstCellOn();
    void selectionInAnyOrderBeginsWithTheTopmost();
    void selectionInSeveralLayersFillsTheFirst();
    void selectionOfTheSheetIsTaken();
    void layersWithoutPicturesAreLeftOut();
    void discardInLinkedLayersTakesTheirFramesToo();
    // Drawings that are known, and drawings that go.
    void pasteOntoItselfDoesNothing();
    void oneCellThatHasTheDrawingRefusesAtOnce();
    void swappedDrawingsFindEachOther();
    void discardedDrawingComesBack();
    void discardedOriginalWithAnHeirIsLinked();
    void overwrittenOriginalTakesItsDistantClonesAlong();
    void whatWasPastedIsNotOverwrittenByTheNext();
    void changedDrawingIsPastedAsItWasCopied();
    void undoneChangeMakesTheDrawingKnownAgain();
    void pastedDrawingsAreTheirOwn();
    void keyMarksAndPegsStay();
    // Undo.
    void undoAndRedoKeepIdentifiers();
    void laterStepsStandOnPastedCells();
    void undoGivesRangeAndPositionBack();
    void redoNeedsTheClipboardNoMore();
    void modelsAndPicturesFollow();
    void viewsHearOfEveryFilledCell();
    void frameOfAnotherSizeKeepsStrokesInPlace();
};

void tst_PasteDrawing::textTellsWhatItIs()
{
    CommandStage stage({"A"});
    const auto data = copied(stage, 1, 1);
    QCOMPARE(PasteDrawing(stage.mrScene(), stage.cell(1), data.get()).text(), "Paste Drawing");
    QCOMPARE(PasteDrawing(stage.mrScene(), stage.cells({1}), data.get()).text(), "Paste Drawing");
}

void tst_PasteDrawing::nothingSelectedInsertsAndOverwritesNothing()
{
    CommandStage source({"X Y Y*"});
    CommandStage stage({"A B C"});
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(2), data.get())), QString());
    QCOMPARE(seenText(stage), "A X Y Y* B C");
    QCOMPARE(stage.scene().activeFrame(), 2);
    QCOMPARE(stage.scene().activeLayerIdx(), 0);
}

void tst_PasteDrawing::insertedFramesOfThisSceneAreDistantClones()
{
    CommandStage stage({"A B C"});
    const auto data = copied(stage, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(3), data.get())), QString());
    QCOMPARE(stage.text(), "A B A* B* C");
}

void tst_PasteDrawing::holdOfThreeFramesBecomesOneDrawingWithTwoClones()
{
    CommandStage source({"X x x"});
    CommandStage stage({"A"});
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(1), data.get())), QString());
    QCOMPARE(seenText(stage), "X x x A");
    // And where the drawing stands already:
    CommandStage same({"X x x"});
    const auto own = copied(same, 1, 3);
    QCOMPARE(same.walk(new PasteDrawing(same.mrScene(), same.cell(4), own.get())), QString());
    QCOMPARE(same.text(), "X x x X* x x");
}

void tst_PasteDrawing::holdCopiedHereGoesOnWithTheHold()
{
    CommandStage stage({"A a B"});
    const auto data = copied(stage, 2, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(3), data.get())), QString());
    QCOMPARE(stage.text(), "A a a B");
    // Behind a distant clone of it too, but not behind another drawing.
    CommandStage distant({"A a B A* C"});
    const auto own = copied(distant, 2, 1);
    QCOMPARE(distant.walk(new PasteDrawing(distant.mrScene(), distant.cell(5), own.get())), QString());
    QCOMPARE(distant.text(), "A a B A* a C");
    QCOMPARE(distant.walk(new PasteDrawing(distant.mrScene(), distant.cell(4), own.get())), QString());
    QCOMPARE(distant.text(), "A a B A* A* a C");
}

void tst_PasteDrawing::holdOverItsOwnDrawingLeavesIt()
{
    CommandStage original({"B A a C A*"});
    const auto hold = copied(original, 3, 1);
    for (const int frameId : {2, 3, 5})
        QVERIFY(original.isRefused(new PasteDrawing(original.mrScene(), original.cells({frameId}), hold.get())));
    QCOMPARE(original.text(), "B A a C A*");
}

void tst_PasteDrawing::holdAtTheBeginningOfALayerBecomesADistantClone()
{
    CommandStage stage({"A a B"});
    const auto data = copied(stage, 2, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(1), data.get())), QString());
    QCOMPARE(stage.text(), "A* B* A a B");
}

void tst_PasteDrawing::pasteElsewhereKeepsHoldsAndRepeats()
{
    CommandStage source({"X x Y X* x Y* Z", "Z* X*"});
    CommandStage stage({"A"});
    const auto data = copied(source, 1, 7);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(2), data.get())), QString());
    QCOMPARE(seenText(stage), "A X x Y X* x Y* Z");
    // The first of several that show one drawing becomes the original.
    const auto clones = copied(source, 1, 2, 1);
    CommandStage other({"A"});
    QCOMPARE(other.walk(new PasteDrawing(other.mrScene(), other.cell(2), clones.get())), QString());
    QCOMPARE(seenText(other), "A Z X");
}

void tst_PasteDrawing::pasteTwiceElsewhereLinksTheSecondToTheFirst()
{
    CommandStage source({"X x Y"});
    CommandStage stage({"A", "B"});
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(1), data.get())), QString());
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(2, 1), data.get())), QString());
    QCOMPARE(seenText(stage), "X x Y A");
    QCOMPARE(seenText(stage, 1), "B X* x Y*");
}

void tst_PasteDrawing::pasteBehindTheLastCellAddsCells()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B"});
    const auto data = copied(source, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(3), data.get())), QString());
    QCOMPARE(seenText(stage), "A B X Y");
    QCOMPARE(stage.scene().rangeLast(), 4);
    QCOMPARE(stage.scene().activeFrame(), 3);
}

void tst_PasteDrawing::pasteFarBehindTheRangeIsSeen()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B C D E"});
    stage.stack().push(new SetFrameRange(stage.mrScene(), 1, 2, 1, 0));
    const auto data = copied(source, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(6), data.get())), QString());
    QCOMPARE(seenText(stage), "A B C D E X Y");
    QCOMPARE(stage.scene().rangeFirst(), 1);
    QCOMPARE(stage.scene().rangeLast(), 7);
    QCOMPARE(stage.scene().activeFrame(), 6);
}

void tst_PasteDrawing::pasteIntoLinkedLayersKeepsThemInStep()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B", "C D", "E F"});
    stage.link({0, 1});
    const auto data = copied(source, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(2), data.get())), QString());
    QCOMPARE(seenText(stage, 0), "A X Y B");
    QCOMPARE(seenText(stage, 1), "C c c D");
    QCOMPARE(seenText(stage, 2), "E F");
}

void tst_PasteDrawing::cellsInTheRangeGrowTheRange()
{
    CommandStage source({"X Y Z"});
    CommandStage stage({"A B C D E"});
    stage.stack().push(new SetFrameRange(stage.mrScene(), 2, 4, 2, 0));
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(3), data.get())), QString());
    QCOMPARE(stage.scene().rangeFirst(), 2);
    QCOMPARE(stage.scene().rangeLast(), 7);
}

void tst_PasteDrawing::threeOntoFiveOverwriteThreeAndDiscardTwo()
{
    CommandStage source({"X Y Z"});
    CommandStage stage({"A B C D E F G"});
    const auto data = copied(source, 1, 3);
    const QModelIndexList cells = stage.cells({2, 3, 4, 5, 6});
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), cells, data.get())), QString());
    QCOMPARE(seenText(stage), "A X Y Z G");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_PasteDrawing::threeOntoOneAddTwoClonesBehind()
{
    CommandStage source({"X Y y"});
    CommandStage stage({"A B C"});
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({2}), data.get())), QString());
    QCOMPARE(seenText(stage), "A X Y y C");
}

void tst_PasteDrawing::threeOntoThreeOverwriteThree()
{
    CommandStage source({"X Y Z"});
    CommandStage stage({"A B b b D"});
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 2, 3}), data.get())), QString());
    // The hold behind goes on with what came in front of it.
    QCOMPARE(seenText(stage), "X Y Z z D");
}

void tst_PasteDrawing::gapsAreFilledFromTheFirstCellOn()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B C D E"});
    const auto data = copied(source, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({2, 5}), data.get())), QString());
    QCOMPARE(seenText(stage), "A X Y D E");
    const auto own = copied(source, 1, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 3, 5}), own.get())), QString());
    QCOMPARE(seenText(stage), "X* X D");
}

void tst_PasteDrawing::selectionInAnyOrderBeginsWithTheTopmost()
{
    CommandStage source({"X Y Z"});
    CommandStage stage({"A B C D"});
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({4, 2, 3}), data.get())), QString());
    QCOMPARE(seenText(stage), "A X Y Z");
}

void tst_PasteDrawing::selectionInSeveralLayersFillsTheFirst()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B C", "D E F"});
    const auto data = copied(source, 1, 2);
    const QModelIndexList cells = stage.cells({2, 3}, 0) + stage.cells({1, 2, 3}, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), cells, data.get())), QString());
    QCOMPARE(seenText(stage, 0), "A B C");
    QCOMPARE(seenText(stage, 1), "X Y");
}

void tst_PasteDrawing::selectionOfTheSheetIsTaken()
{
    CommandStage source({"X"});
    CommandStage stage({"A B C D"});
    stage.stack().push(new SetFrameRange(stage.mrScene(), 2, 4, 2, 0));
    const FrameRangeModel &sheet = *stage.mrScene()->frameRangeModel();
    QItemSelectionModel &selection = *stage.mrScene()->selectionModel();
    selection.select(QItemSelection(sheet.index(1, 0), sheet.index(1, 0)), QItemSelectionModel::Select);
    const auto data = copied(source, 1, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), selection.selectedIndexes(), data.get())), QString());
    QCOMPARE(seenText(stage), "A B X D");
}

void tst_PasteDrawing::layersWithoutPicturesAreLeftOut()
{
    CommandStage source({"X"});
    CommandStage stage({"A B"});
    const auto data = copied(source, 1, 1);
    constexpr int notes = 2;
    const QModelIndexList cells = stage.cells({1}, notes) + stage.cells({2}) + QModelIndexList{QModelIndex()};
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), cells, data.get())), QString());
    QCOMPARE(seenText(stage), "A X");
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cells({1}, notes), data.get())));
    QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cell(1, notes), data.get())));
}

void tst_PasteDrawing::discardInLinkedLayersTakesTheirFramesToo()
{
    CommandStage source({"X"});
    CommandStage stage({"A B C", "D E F"});
    stage.link({0, 1});
    const auto data = copied(source, 1, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 2}), data.get())), QString());
    QCOMPARE(seenText(stage, 0), "X C");
    QCOMPARE(seenText(stage, 1), "D F");
}

void tst_PasteDrawing::pasteOntoItselfDoesNothing()
{
    CommandStage stage({"A a B A*"});
    const auto data = copied(stage, 1, 4);
    QVERIFY(stage.drops(new PasteDrawing(stage.mrScene(), stage.cells({1, 2, 3, 4}), data.get())));
}

void tst_PasteDrawing::oneCellThatHasTheDrawingRefusesAtOnce()
{
    // What could be redone can be redone still.
    CommandStage stage({"A a B A*"});
    const auto drawing = copied(stage, 1, 1);
    const auto hold = copied(stage, 2, 1);
    for (const int frameId : {1, 4})
        QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cells({frameId}), drawing.get())));
    for (const int frameId : {1, 2, 4})
        QVERIFY(stage.isRefused(new PasteDrawing(stage.mrScene(), stage.cells({frameId}), hold.get())));
    QCOMPARE(stage.text(), "A a B A*");
    stage.stack().clear();
    for (const int frameId : {2, 3}) {
        QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({frameId}), drawing.get())), QString());
        QVERIFY(stage.scene().item(0, frameId)->isDistantClone());
    }
}

void tst_PasteDrawing::swappedDrawingsFindEachOther()
{
    // B is filled over before its turn comes, and was not copied anywhere else.
    CommandStage stage({"A B C"});
    const auto data = copied(stage, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({2, 3}), data.get())), QString());
    QCOMPARE(stage.text(), "A A* B");
}

void tst_PasteDrawing::discardedDrawingComesBack()
{
    CommandStage stage({"A B C"});
    const auto data = copied(stage, 3, 1);
    const Drawing *drawing = stage.scene().item(0, 3)->drawing.get();
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 2, 3}), data.get())), QString());
    QCOMPARE(stage.text(), "C");
    QCOMPARE(stage.scene().item(0, 1)->drawing.get(), drawing);
}

void tst_PasteDrawing::discardedOriginalWithAnHeirIsLinked()
{
    CommandStage stage({"A B C", "C* D"});
    const auto data = copied(stage, 3, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 2, 3}), data.get())), QString());
    QCOMPARE(stage.text(), "C* | C D");
}

void tst_PasteDrawing::overwrittenOriginalTakesItsDistantClonesAlong()
{
    CommandStage source({"X"});
    CommandStage stage({"A B A*", "A* a"});
    const auto data = copied(source, 1, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1}), data.get())), QString());
    QCOMPARE(seenText(stage, 0), "X B X*");
    QCOMPARE(seenText(stage, 1), "X* x");
}

void tst_PasteDrawing::whatWasPastedIsNotOverwrittenByTheNext()
{
    // The first frame is linked to the very cell that is filled over next, with a drawing that is not here.
    CommandStage stage({"A B C"});
    const auto data = copied(stage, 2, 2);
    stage.stack().push(new Commands::Stroke(stage.mrScene(), stage.cell(3), dot()));
    const QImage changed = stage.drawing(3).image();
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 2}), data.get())), QString());
    for (int frameId = 1; frameId <= 3; ++frameId)
        QVERIFY(stage.scene().item(0, frameId)->isOriginal());
    QCOMPARE(seenText(stage).left(3), "B C");
    QCOMPARE(stage.drawing(3).image(), changed);
}

void tst_PasteDrawing::changedDrawingIsPastedAsItWasCopied()
{
    CommandStage stage({"A B"});
    const QImage before = stage.drawing(1).image();
    const auto data = copied(stage, 1, 1);
    stage.stack().push(new Commands::Stroke(stage.mrScene(), stage.cell(1), dot()));
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({2}), data.get())), QString());
    QVERIFY(stage.scene().item(0, 2)->isOriginal());
    QCOMPARE(stage.drawing(2).image(), before);
    QVERIFY(stage.drawing(1).image() != before);
}

void tst_PasteDrawing::undoneChangeMakesTheDrawingKnownAgain()
{
    CommandStage stage({"A B"});
    const auto data = copied(stage, 1, 1);
    stage.stack().push(new Commands::Stroke(stage.mrScene(), stage.cell(1), dot()));
    stage.stack().undo();
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({2}), data.get())), QString());
    QCOMPARE(stage.text(), "A A*");
}

void tst_PasteDrawing::pastedDrawingsAreTheirOwn()
{
    CommandStage source({"X"});
    CommandStage stage({"A B"});
    const auto data = copied(source, 1, 1);
    stage.stack().push(new PasteDrawing(stage.mrScene(), stage.cell(1), data.get()));
    stage.stack().push(new Commands::Stroke(stage.mrScene(), stage.cell(1), dot()));
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(3), data.get())), QString());
    QVERIFY(stage.scene().item(0, 3)->isOriginal());
    QVERIFY(stage.drawing(3).image() != stage.drawing(1).image());
    QCOMPARE(stage.drawing(3).image(), source.drawing(1).image());
}

void tst_PasteDrawing::keyMarksAndPegsStay()
{
    CommandStage source({"X! Y"});
    CommandStage stage({"A B!"});
    stage.scene().setOffPegsTransform(2, 0, QTransform::fromTranslate(3, 4));
    const auto data = copied(source, 1, 2);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({1, 2}), data.get())), QString());
    QVERIFY(!stage.scene().item(0, 1)->keyDrawing);
    QVERIFY(stage.scene().item(0, 2)->keyDrawing);
    QCOMPARE(stage.scene().item(0, 2)->offPegsTransform, QTransform::fromTranslate(3, 4));
}

void tst_PasteDrawing::undoAndRedoKeepIdentifiers()
{
    CommandStage source({"X x Y X*"});
    CommandStage stage({"A B"});
    const auto data = copied(source, 1, 4);
    stage.stack().push(new PasteDrawing(stage.mrScene(), stage.cell(2), data.get()));
    QList<QUuid> identifiers;
    for (int frameId = 1; frameId <= 6; ++frameId)
        identifiers += stage.identifier(frameId);
    stage.stack().undo();
    stage.stack().redo();
    for (int frameId = 1; frameId <= 6; ++frameId)
        QCOMPARE(stage.identifier(frameId), identifiers.at(frameId - 1));
}

void tst_PasteDrawing::laterStepsStandOnPastedCells()
{
    CommandStage source({"X Y"});
    CommandStage stage({"A B", "C"});
    const SceneSnapshot start = stage.snapshot();
    const auto data = copied(source, 1, 2);
    stage.stack().push(new PasteDrawing(stage.mrScene(), stage.cell(2), data.get()));
    const auto own = copied(stage, 2, 2);
    stage.stack().push(new PasteDrawing(stage.mrScene(), stage.cell(2, 1), own.get()));
    stage.stack().push(new Commands::Stroke(stage.mrScene(), stage.cell(2, 1), dot()));
    stage.stack().push(new DiscardDrawing(stage.mrScene(), stage.cell(2)));
    const SceneSnapshot end = stage.snapshot();
    for (int round = 0; round < 2; ++round) {
        while (stage.stack().canUndo())
            stage.stack().undo();
        QCOMPARE(start.diff(stage.snapshot()), QString());
        while (stage.stack().canRedo())
            stage.stack().redo();
        QCOMPARE(end.diff(stage.snapshot()), QString());
        QCOMPARE(brokenInvariant(stage.scene()), QString());
    }
}

void tst_PasteDrawing::undoGivesRangeAndPositionBack()
{
    CommandStage source({"X Y Z"});
    CommandStage stage({"A B C D", "E F G H"});
    stage.stack().push(new SetFrameRange(stage.mrScene(), 2, 3, 3, 1));
    const auto data = copied(source, 1, 3);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cells({2, 3}), data.get())), QString());
    QCOMPARE(stage.scene().activeLayerIdx(), 0);
    stage.stack().undo();
    QCOMPARE(stage.scene().rangeFirst(), 2);
    QCOMPARE(stage.scene().rangeLast(), 3);
    QCOMPARE(stage.scene().activeFrame(), 3);
    QCOMPARE(stage.scene().activeLayerIdx(), 1);
}

void tst_PasteDrawing::redoNeedsTheClipboardNoMore()
{
    CommandStage stage({"A"});
    auto source = std::make_unique<CommandStage>(QStringList{"X Y"});
    auto data = copied(*source, 1, 2);
    auto command = std::make_unique<PasteDrawing>(stage.mrScene(), stage.cell(2), data.get());
    data.reset();
    source.reset();
    QCOMPARE(stage.walk(command.release()), QString());
    QCOMPARE(seenText(stage), "A X Y");
}

void tst_PasteDrawing::modelsAndPicturesFollow()
{
    CommandStage source({"X x Y X* Z z"});
    CommandStage stage({"A B b D", "E F"});
    const auto data = copied(source, 1, 6);
    ModelWatch sheet(stage.mrScene()->frameRangeModel());
    ModelWatch model(&stage.model());
    QVERIFY(!stage.scene().framePixmap().isNull()); // composed, so that it can go stale
    for (const bool overCells : {true, false}) {
        auto *command = overCells ? new PasteDrawing(stage.mrScene(), stage.cells({1, 2}), data.get())
                                  : new PasteDrawing(stage.mrScene(), stage.cell(2), data.get());
        QCOMPARE(stage.walk(command), QString());
        QCOMPARE(stalePicture(stage.scene()), QString());
        QCOMPARE(sheet.broken() + model.broken(), QString());
    }
}

void tst_PasteDrawing::viewsHearOfEveryFilledCell()
{
    // The last frame goes on with the hold that stands there, which is nothing to tell of.
    CommandStage source({"X Y y"});
    CommandStage stage({"A B b D"});
    const auto data = copied(source, 1, 3);
    QSignalSpy changed(&stage.model(), &SceneModel::dataChanged);
    QSignalSpy picture(&stage.scene(), &Scene::rectChanged);
    MRScene::pushCommand(new PasteDrawing(stage.mrScene(), stage.cells({1, 2, 3}), data.get()));
    QSet<int> rows;
    for (const QList<QVariant> &arguments : changed)
        rows.insert(arguments.first().toModelIndex().row());
    QVERIFY(rows.contains(QSet<int>{0, 1, 2}));
    QVERIFY(picture.contains({QRect(QPoint(), stageFrame)}));
}

void tst_PasteDrawing::frameOfAnotherSizeKeepsStrokesInPlace()
{
    CommandStage source({"X"});
    CommandStage stage({"A"});
    stage.scene().setFrameSize(QSize(96, 20), MR::FitMode::FitModeIgnore);
    const auto data = copied(source, 1, 1);
    QCOMPARE(stage.walk(new PasteDrawing(stage.mrScene(), stage.cell(1), data.get())), QString());
    QCOMPARE(stage.drawing(1).size(), QSize(96, 20));
    QCOMPARE(stage.drawing(1).image().copy(0, 0, 48, 20), source.drawing(1).image().copy(0, 0, 48, 20));
}

QTEST_MAIN(tst_PasteDrawing)
#include "tst_pastedrawing.moc"
