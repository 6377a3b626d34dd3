#include "commandstage.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/addclonedrawings.h"
#include "libcommands/cloneeachselecteddrawingonce.h"
#include "libcommands/cycleselecteddrawingsonce.h"
#include "libcommands/insertblankdrawing.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/framerangemodel.h"

#include <QTest>

#include <functional>
#include <limits>

using namespace Commands;
using TestSupport::CommandStage;

/// Makes a command for cells of the stage.
using CellCommandMaker = std::function<QUndoCommand *(CommandStage &stage, const QModelIndexList &cells)>;

/// The commands that make layers longer.
class tst_AddCommands : public QObject
{
    Q_OBJECT

private slots:
    void blanksGoBehindEachSelectedCell();
    void blankGoesBehindOneCell();
    void blanksOfSeveralLayersGoBehindTheirOwnCells();
    void blankInALinkedLayerGivesTheOthersAHold();
    void blankBehindTheLastCellIsTheActiveOne();
    void clonesGoBehindEachSelectedCell();
    void clonesGoBehindOneCell();
    void clonesInALinkedLayerLengthenAllLinkedOnes();
    void blanksGoInFrontOfEachSelectedCell();
    void blankInsertedInAHoldIsShownByTheRestOfIt();
    void redoneAddsBringTheSameCells();
    void rangeOfTheSheetNamesTheCells();
    void selectionIsSortedAndEachCellCountsOnce();
    void cellsOfOtherLayersAreSkipped();
    void countBelowOneIsObsolete();
    void eachSelectedDrawingGetsOneClone();
    void linkedDrawingsOfOneFrameGetOneCloneEach();
    void cycleRepeatsTheSelectionAsDistantClones();
    void cycleKeepsAHoldAHold();
    void cycleOfADistantCloneShowsTheSameOriginal();
    void cycleGoesInBetween();
    void cycleOfTwoLayersStaysInEach();
    void cycleOfLinkedLayersAddsEachFrameOnce();
    void cycleOfASecondPartOfAHoldBeginsWithAHold();
    void frameOfTwoLinkedLayersGetsAStepForEach_data();
    void frameOfTwoLinkedLayersGetsAStepForEach();
    void positionsWithoutACellAreNotTaken();
    void blankIsInsertedBehindTheLastCell();
    void cycleWithoutRoomCopiesNothing();
    void clonesBeyondAllFramesGoToTheLastOne();
};

void tst_AddCommands::blanksGoBehindEachSelectedCell()
{
    CommandStage stage({"A B C D"});
    stage.activate(3);
    const QUuid second = stage.identifier(2);
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), stage.cells({1, 2, 3}))), QString());
    QCOMPARE(stage.text(), "A _ B _ C _ D");
    QCOMPARE(stage.identifier(3), second);
    // Behind C, which three blanks, one of them its own, have come up to.
    QCOMPARE(stage.scene().activeFrame(), 6);
}

void tst_AddCommands::blankGoesBehindOneCell()
{
    CommandStage stage({"A B C"});
    stage.activate(2);
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), stage.cell(2))), QString());
    QCOMPARE(stage.text(), "A B _ C");
    QCOMPARE(stage.scene().activeFrame(), 3);
    QCOMPARE(stage.scene().rangeLast(), 4);
}

void tst_AddCommands::blanksOfSeveralLayersGoBehindTheirOwnCells()
{
    CommandStage stage({"A B", "C D"});
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), stage.cells({1}) + stage.cells({1, 2}, 1))), QString());
    QCOMPARE(stage.text(), "A _ B | C _ D _");
}

void tst_AddCommands::blankInALinkedLayerGivesTheOthersAHold()
{
    CommandStage stage({"A B", "C D", "E F", "G"});
    stage.link({0, 1, 3});
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), stage.cell(1))), QString());
    QCOMPARE(stage.text(), "A _ B | C c D | E F | G g");
}

void tst_AddCommands::blankBehindTheLastCellIsTheActiveOne()
{
    CommandStage stage({"A B"});
    stage.activate(3);
    QVERIFY(!stage.scene().activeCellHasDrawing());
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), stage.cell(2))), QString());
    QCOMPARE(stage.text(), "A B _");
    QCOMPARE(stage.scene().activeFrame(), 3);
    QVERIFY(stage.scene().activeCellHasDrawing());
    stage.stack().undo();
    QCOMPARE(stage.scene().activeFrame(), 3);
    QVERIFY(!stage.scene().activeCellHasDrawing());
}

void tst_AddCommands::clonesGoBehindEachSelectedCell()
{
    CommandStage stage({"A B C"});
    stage.activate(2);
    QCOMPARE(stage.walk(new AddCloneDrawings(stage.mrScene(), stage.cells({1, 2}), 2)), QString());
    QCOMPARE(stage.text(), "A a a B b b C");
    // The last hold of B.
    QCOMPARE(stage.scene().activeFrame(), 6);
}

void tst_AddCommands::clonesGoBehindOneCell()
{
    CommandStage stage({"A B"});
    QCOMPARE(stage.walk(new AddCloneDrawings(stage.mrScene(), stage.cell(1), 3)), QString());
    QCOMPARE(stage.text(), "A a a a B");
    QCOMPARE(stage.scene().activeFrame(), 4);
}

void tst_AddCommands::clonesInALinkedLayerLengthenAllLinkedOnes()
{
    CommandStage stage({"A B", "C D", "E F"});
    stage.link({0, 1});
    QCOMPARE(stage.walk(new AddCloneDrawings(stage.mrScene(), stage.cell(1), 2)), QString());
    QCOMPARE(stage.text(), "A a a B | C c c D | E F");
}

void tst_AddCommands::blanksGoInFrontOfEachSelectedCell()
{
    CommandStage stage({"A B C"});
    stage.activate(3);
    QCOMPARE(stage.walk(new InsertBlankDrawing(stage.mrScene(), stage.cells({2, 3}))), QString());
    QCOMPARE(stage.text(), "A _ B _ C");
    QCOMPARE(stage.scene().activeFrame(), 4);
}

void tst_AddCommands::blankInsertedInAHoldIsShownByTheRestOfIt()
{
    CommandStage stage({"A a a B"});
    stage.activate(2);
    QCOMPARE(stage.walk(new InsertBlankDrawing(stage.mrScene(), stage.cell(2))), QString());
    QCOMPARE(stage.text(), "A _ . . B");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_AddCommands::redoneAddsBringTheSameCells()
{
    CommandStage stage({"A B"});
    stage.stack().push(new AddBlankDrawing(stage.mrScene(), stage.cells({1, 2})));
    const std::shared_ptr<Model::LayerItem> first = stage.scene().item(0, 2);
    const std::shared_ptr<Model::LayerItem> second = stage.scene().item(0, 4);
    const QUuid firstId = first->identifier;
    stage.stack().undo();
    stage.stack().redo();
    QCOMPARE(stage.scene().item(0, 2), first);
    QCOMPARE(stage.scene().item(0, 4), second);
    QCOMPARE(stage.identifier(2), firstId);
}

void tst_AddCommands::rangeOfTheSheetNamesTheCells()
{
    CommandStage stage({"A B C D"});
    stage.scene().setFrameRange(2, 3, 2, 0);
    const Model::FrameRangeModel *sheet = stage.mrScene()->frameRangeModel();
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), sheet->index(1, 0))), QString());
    QCOMPARE(stage.text(), "A B C _ D");
}

void tst_AddCommands::selectionIsSortedAndEachCellCountsOnce()
{
    CommandStage stage({"A B C"});
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), stage.cells({3, 1, 3}))), QString());
    QCOMPARE(stage.text(), "A _ B C _");
}

void tst_AddCommands::cellsOfOtherLayersAreSkipped()
{
    CommandStage stage({"A B"});
    const int audio = stage.scene().audioLayerIdx();
    const int annotation = stage.scene().annotationLayerIdx();
    const QModelIndexList others = {stage.cell(1, audio), stage.cell(1, annotation), QModelIndex()};
    QVERIFY(stage.isRefused(new AddBlankDrawing(stage.mrScene(), others)));
    QCOMPARE(stage.walk(new AddBlankDrawing(stage.mrScene(), others + stage.cells({1}))), QString());
    QCOMPARE(stage.text(), "A _ B");

    CommandStage other({"C"});
    QVERIFY(other.isRefused(new AddBlankDrawing(other.mrScene(), stage.cell(1))));
}

void tst_AddCommands::countBelowOneIsObsolete()
{
    CommandStage stage({"A B"});
    QVERIFY(stage.isRefused(new AddCloneDrawings(stage.mrScene(), stage.cell(1), 0)));
    QVERIFY(stage.isRefused(new AddCloneDrawings(stage.mrScene(), stage.cells({1}), -1)));
}

void tst_AddCommands::eachSelectedDrawingGetsOneClone()
{
    CommandStage stage({"A B C"});
    QCOMPARE(stage.walk(new CloneEachSelectedDrawingOnce(stage.mrScene(), stage.cells({1, 3}))), QString());
    QCOMPARE(stage.text(), "A a B C c");
    QCOMPARE(stage.scene().activeFrame(), 3);
}

void tst_AddCommands::linkedDrawingsOfOneFrameGetOneCloneEach()
{
    CommandStage stage({"A B", "C D", "E F"});
    stage.link({0, 1});
    const QModelIndexList all = stage.cells({1, 2}) + stage.cells({1, 2}, 1) + stage.cells({1}, 2);
    QCOMPARE(stage.walk(new CloneEachSelectedDrawingOnce(stage.mrScene(), all)), QString());
    QCOMPARE(stage.text(), "A a B b | C c D d | E e F");
}

void tst_AddCommands::cycleRepeatsTheSelectionAsDistantClones()
{
    CommandStage stage({"A B C"});
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), stage.cells({1, 2, 3}))), QString());
    QCOMPARE(stage.text(), "A B C A* B* C*");
    QCOMPARE(stage.scene().item(0, 4)->origin.cell, stage.identifier(1));
    QCOMPARE(stage.scene().activeFrame(), 3);
}

void tst_AddCommands::cycleKeepsAHoldAHold()
{
    CommandStage stage({"A a"});
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), stage.cells({1, 2}))), QString());
    QCOMPARE(stage.text(), "A a A* a");
}

void tst_AddCommands::cycleOfADistantCloneShowsTheSameOriginal()
{
    CommandStage stage({"A B A*"});
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), stage.cells({2, 3}))), QString());
    QCOMPARE(stage.text(), "A B A* B* A*");
    QCOMPARE(stage.scene().item(0, 5)->origin.cell, stage.identifier(1));
}

void tst_AddCommands::cycleGoesInBetween()
{
    CommandStage stage({"A B C c"});
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), stage.cells({1, 2}))), QString());
    QCOMPARE(stage.text(), "A B A* B* C c");
}

void tst_AddCommands::cycleOfTwoLayersStaysInEach()
{
    CommandStage stage({"A B", "C D"});
    const QModelIndexList all = stage.cells({1, 2}) + stage.cells({1, 2}, 1);
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), all)), QString());
    QCOMPARE(stage.text(), "A B A* B* | C D C* D*");
}

void tst_AddCommands::cycleOfLinkedLayersAddsEachFrameOnce()
{
    CommandStage stage({"A B", "C c"});
    stage.link({0, 1});
    const QModelIndexList all = stage.cells({1, 2}) + stage.cells({1, 2}, 1);
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), all)), QString());
    QCOMPARE(stage.text(), "A B A* B* | C c C* c");
}

void tst_AddCommands::cycleOfASecondPartOfAHoldBeginsWithAHold()
{
    CommandStage stage({"A a B"});
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), stage.cells({2, 3}))), QString());
    // The first new cell repeats the hold: it holds what stands before it now.
    QCOMPARE(stage.text(), "A a B b B*");
}

void tst_AddCommands::frameOfTwoLinkedLayersGetsAStepForEach_data()
{
    QTest::addColumn<CellCommandMaker>("make");
    QTest::addColumn<QString>("text");
    // The lower layer's turn comes first, then the upper one's: each time the other layer gets a hold.
    QTest::newRow("blanks behind") << CellCommandMaker([](CommandStage &s, const QModelIndexList &c) {
        return new AddBlankDrawing(s.mrScene(), c);
    }) << "A _ . B | C c _ D | E F";
    QTest::newRow("blanks in front") << CellCommandMaker([](CommandStage &s, const QModelIndexList &) {
        return new InsertBlankDrawing(s.mrScene(), s.cells({2}) + s.cells({2}, 1));
    }) << "A _ . B | C c _ D | E F";
    QTest::newRow("holds") << CellCommandMaker([](CommandStage &s, const QModelIndexList &c) {
        return new AddCloneDrawings(s.mrScene(), c, 2);
    }) << "A a a a a B | C c c c c D | E F";
}

void tst_AddCommands::frameOfTwoLinkedLayersGetsAStepForEach()
{
    QFETCH(const CellCommandMaker, make);
    QFETCH(const QString, text);
    CommandStage stage({"A B", "C D", "E F"});
    stage.link({0, 1});
    // walk() goes back to exactly what was, and forth to exactly what came, twice.
    QCOMPARE(stage.walk(make(stage, stage.cells({1}) + stage.cells({1}, 1))), QString());
    QCOMPARE(stage.text(), text);
    stage.stack().undo();
    QCOMPARE(stage.text(), "A B | C D | E F");
}

void tst_AddCommands::positionsWithoutACellAreNotTaken()
{
    CommandStage stage({"A B C D E F", "G H I J K L"});
    // The cells were there when their indexes were made: now the layer ends behind B.
    const QModelIndexList cells = stage.cells({2, 3, 6});
    const QModelIndexList far = stage.cells({4, 6});
    stage.scene().deleteFrames(0, 6, 4);
    QCOMPARE(stage.text(), "A B | G H I J K L");
    QVERIFY(stage.isRefused(new CycleSelectedDrawingsOnce(stage.mrScene(), far)));
    QVERIFY(stage.isRefused(new CloneEachSelectedDrawingOnce(stage.mrScene(), far)));
    QVERIFY(stage.isRefused(new AddBlankDrawing(stage.mrScene(), far)));
    QVERIFY(stage.isRefused(new AddBlankDrawing(stage.mrScene(), stage.cell(3))));
    QVERIFY(stage.isRefused(new AddCloneDrawings(stage.mrScene(), far, 2)));
    QVERIFY(stage.isRefused(new InsertBlankDrawing(stage.mrScene(), far)));
    // Only B is repeated, just behind itself, and it is B's frame that becomes the active one.
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), cells)), QString());
    QCOMPARE(stage.text(), "A B B* | G H I J K L");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_AddCommands::blankIsInsertedBehindTheLastCell()
{
    CommandStage stage({"A B"});
    QCOMPARE(stage.walk(new InsertBlankDrawing(stage.mrScene(), stage.cells({3}))), QString());
    QCOMPARE(stage.text(), "A B _");
}

void tst_AddCommands::cycleWithoutRoomCopiesNothing()
{
    CommandStage stage({"A B C"});
    // The notes, which have room for one more frame, are linked with the drawings.
    const int notes = stage.scene().annotationLayerIdx();
    QVERIFY(stage.scene().setAnnotation(Model::Layer::maximumFrames - 1, QImage(1, 1, QImage::Format_Indexed8)));
    stage.link({0, notes});
    QCOMPARE(stage.walk(new CycleSelectedDrawingsOnce(stage.mrScene(), stage.cells({1, 2}))), QString());
    // Where B would have been repeated, C stands as it stood.
    QCOMPARE(stage.text(), "A B A* C");
}

void tst_AddCommands::clonesBeyondAllFramesGoToTheLastOne()
{
    constexpr int cellCount = 250'000;
    constexpr int activeFrame = 200'000;
    constexpr int cloneCount = 11'000;
    // More frames than a number of 32 bits can name.
    static_assert(qint64(activeFrame) * cloneCount > std::numeric_limits<int>::max());
    CommandStage stage({"A", "B"});
    QList<std::shared_ptr<Model::LayerItem>> cells{stage.scene().item(0, 1)};
    while (cells.size() < cellCount)
        cells.append(std::make_shared<Model::LayerItem>(Model::LayerItem::Type::Clone, cells.first()->drawing));
    QVERIFY(stage.scene().visualLayer(0)->setFrames(cells));
    stage.scene().updateMaxFrameNumber();
    stage.scene().setFrameRange(1, cellCount, activeFrame, 0);
    QCOMPARE(stage.scene().activeFrame(), activeFrame);
    stage.stack().push(new AddCloneDrawings(stage.mrScene(), stage.cell(1, 1), cloneCount));
    QCOMPARE(stage.scene().lastFrame(1), cloneCount + 1);
    QCOMPARE(stage.scene().activeFrame(), cellCount);
}

QTEST_MAIN(tst_AddCommands)
#include "tst_addcommands.moc"
