#include "commandstage.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/deleteclonedrawing.h"
#include "libcommands/discardclonedrawings.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/losedrawingmakinghold.h"
#include "libcommands/turncloneintooriginal.h"
#include "libmodel/layers/layeritem.h"

#include <QTest>

using namespace Commands;
using TestSupport::CommandStage;

namespace {

const QUuid copyId = QUuid::fromString(QStringLiteral("{0000000c-0000-4000-8000-000000000000}"));

} // namespace

/// The commands that take cells away, or the drawings from them.
class tst_DiscardCommands : public QObject
{
    Q_OBJECT

private slots:
    void discardTakesTheFramesAsTheyMoveUp();
    void discardOfTheLastFrameGoesToTheOneBefore();
    void discardOfTheOnlyCellLeavesABlank();
    void discardOfAllCellsLeavesABlank();
    void discardOfAnOriginalWithDistantClonesPromotesTheFirst();
    void discardInSeveralLayersCountsEachForItself();
    void discardInLinkedLayersTakesAFrameOnce();
    void discardBehindTheLastCellIsObsolete();
    void deleteCloneTakesOnlyClones();
    void deleteCloneOfOneCell();
    void deleteCloneWithoutClonesIsObsolete();
    void discardedClonesGoFromTheActiveFrameDown();
    void discardClonesWithoutCellOrCountIsObsolete();
    void loseMakesHoldsOfAllButTheFirst();
    void loseOfAnOriginalWithDistantClonesPromotesTheFirst();
    void loseAtFrameOneIsObsolete();
    void loseOfAHoldNeverReachesTheStack();
    void clearMakesBlanksOfTheirOwn();
    void clearInAHoldIsShownByTheRestOfIt();
    void clearLeavesDistantClonesTheOldDrawing();
    void redoneClearBringsTheSameIdentity();
    void turnedCloneHasACopyOfItsOwn();
    void turnedDistantCloneIsUnlinked();
    void turnedOriginalNeverReachesTheStack();
    void redoneTurnBringsTheSameIdentity();
    void positionsWithoutACellAreNotTaken();
    void discardedClonesEndAtFrameOne();
};

void tst_DiscardCommands::discardTakesTheFramesAsTheyMoveUp()
{
    CommandStage stage({"A B C D"});
    stage.activate(3);
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), stage.cells({2, 3}))), QString());
    QCOMPARE(stage.text(), "A D");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::discardOfTheLastFrameGoesToTheOneBefore()
{
    CommandStage stage({"A B C"});
    stage.activate(3);
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), stage.cell(3))), QString());
    QCOMPARE(stage.text(), "A B");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::discardOfTheOnlyCellLeavesABlank()
{
    CommandStage stage({"A"});
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), stage.cell(1))), QString());
    QCOMPARE(stage.text(), "_");
}

void tst_DiscardCommands::discardOfAllCellsLeavesABlank()
{
    CommandStage stage({"A a B"});
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), stage.cells({1, 2, 3}))), QString());
    QCOMPARE(stage.text(), "_");
}

void tst_DiscardCommands::discardOfAnOriginalWithDistantClonesPromotesTheFirst()
{
    CommandStage stage({"A B A*", "A* a C"});
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), stage.cell(1))), QString());
    QCOMPARE(stage.text(), "B A | A* a C");
}

void tst_DiscardCommands::discardInSeveralLayersCountsEachForItself()
{
    CommandStage stage({"A B C", "D E F"});
    const QModelIndexList cells = stage.cells({1, 2}) + stage.cells({3}, 1);
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), cells)), QString());
    QCOMPARE(stage.text(), "C | D E");
}

void tst_DiscardCommands::discardInLinkedLayersTakesAFrameOnce()
{
    CommandStage stage({"A B C D", "E F G H"});
    stage.link({0, 1});
    const QModelIndexList cells = stage.cells({1, 3}) + stage.cells({1, 4}, 1);
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), cells)), QString());
    QCOMPARE(stage.text(), "B | F");
}

void tst_DiscardCommands::discardBehindTheLastCellIsObsolete()
{
    CommandStage stage({"A B"});
    QVERIFY(stage.cell(3).isValid());
    QVERIFY(stage.isRefused(new DiscardDrawing(stage.mrScene(), stage.cell(3))));
    QVERIFY(stage.isRefused(new DeleteCloneDrawing(stage.mrScene(), stage.cell(3))));
}

void tst_DiscardCommands::deleteCloneTakesOnlyClones()
{
    CommandStage stage({"A a a B b"});
    QCOMPARE(stage.walk(new DeleteCloneDrawing(stage.mrScene(), stage.cells({1, 2, 3, 4, 5}))), QString());
    QCOMPARE(stage.text(), "A B");
    // Frame 5, of which three frames are gone.
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::deleteCloneOfOneCell()
{
    CommandStage stage({"A a a B"});
    stage.activate(3);
    QCOMPARE(stage.walk(new DeleteCloneDrawing(stage.mrScene(), stage.cell(3))), QString());
    QCOMPARE(stage.text(), "A a B");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::deleteCloneWithoutClonesIsObsolete()
{
    CommandStage stage({"A B A* C c"});
    QVERIFY(stage.isRefused(new DeleteCloneDrawing(stage.mrScene(), stage.cells({1, 2, 3, 4}))));
    QVERIFY(stage.isRefused(new DeleteCloneDrawing(stage.mrScene(), stage.cell(3))));
}

void tst_DiscardCommands::discardedClonesGoFromTheActiveFrameDown()
{
    CommandStage stage({"A a a B"});
    stage.activate(3);
    QCOMPARE(stage.walk(new DiscardCloneDrawings(stage.mrScene(), 2)), QString());
    QCOMPARE(stage.text(), "A B");
    QCOMPARE(stage.scene().activeFrame(), 1);
}

void tst_DiscardCommands::discardClonesWithoutCellOrCountIsObsolete()
{
    CommandStage stage({"A a"});
    stage.activate(2);
    QVERIFY(stage.isRefused(new DiscardCloneDrawings(stage.mrScene(), 0)));
    stage.activate(3);
    QVERIFY(stage.isRefused(new DiscardCloneDrawings(stage.mrScene(), 1)));
}

void tst_DiscardCommands::loseMakesHoldsOfAllButTheFirst()
{
    CommandStage stage({"A B b C"});
    stage.activate(2);
    QCOMPARE(stage.walk(new LoseDrawingMakingHold(stage.mrScene(), stage.cells({1, 2, 3, 4}))), QString());
    QCOMPARE(stage.text(), "A a a a");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::loseOfAnOriginalWithDistantClonesPromotesTheFirst()
{
    CommandStage stage({"A B C B* b B*"});
    QCOMPARE(stage.walk(new LoseDrawingMakingHold(stage.mrScene(), stage.cell(2))), QString());
    QCOMPARE(stage.text(), "A a C B b B*");
}

void tst_DiscardCommands::loseAtFrameOneIsObsolete()
{
    CommandStage stage({"A B"});
    QVERIFY(stage.isRefused(new LoseDrawingMakingHold(stage.mrScene(), stage.cell(1))));
}

void tst_DiscardCommands::loseOfAHoldNeverReachesTheStack()
{
    CommandStage stage({"A a"});
    QVERIFY(stage.isRefused(new LoseDrawingMakingHold(stage.mrScene(), stage.cell(2))));
}

void tst_DiscardCommands::clearMakesBlanksOfTheirOwn()
{
    CommandStage stage({"A a B"});
    stage.activate(2);
    QCOMPARE(stage.walk(new ClearDrawingMakingBlank(stage.mrScene(), stage.cells({1, 2, 3}))), QString());
    QCOMPARE(stage.text(), "_ _ _");
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::clearInAHoldIsShownByTheRestOfIt()
{
    CommandStage stage({"A a a"});
    QCOMPARE(stage.walk(new ClearDrawingMakingBlank(stage.mrScene(), stage.cell(2))), QString());
    QCOMPARE(stage.text(), "A _ .");
}

void tst_DiscardCommands::clearLeavesDistantClonesTheOldDrawing()
{
    CommandStage stage({"A a B A* a", "A*"});
    QCOMPARE(stage.walk(new ClearDrawingMakingBlank(stage.mrScene(), stage.cell(1))), QString());
    QCOMPARE(stage.text(), "_ . B A a | A*");
}

void tst_DiscardCommands::redoneClearBringsTheSameIdentity()
{
    CommandStage stage({"A B"});
    stage.stack().push(new ClearDrawingMakingBlank(stage.mrScene(), stage.cells({1, 2})));
    stage.drawing(2).setCopyId(copyId);
    stage.stack().undo();
    QCOMPARE(stage.text(), "A B");
    QVERIFY(stage.drawing(2).copyId().isNull());
    stage.stack().redo();
    QCOMPARE(stage.drawing(2).copyId(), copyId);
    QCOMPARE(stage.model().findOriginal(copyId), stage.cell(2));
}

void tst_DiscardCommands::turnedCloneHasACopyOfItsOwn()
{
    CommandStage stage({"A a a"});
    stage.activate(2);
    QCOMPARE(stage.walk(new TurnCloneIntoOriginal(stage.mrScene(), stage.cell(2))), QString());
    QCOMPARE(stage.text(), "A A a");
    QVERIFY(&stage.drawing(2) != &stage.drawing(1));
    QCOMPARE(&stage.drawing(3), &stage.drawing(2));
    QCOMPARE(stage.drawing(2).image(), stage.drawing(1).image());
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_DiscardCommands::turnedDistantCloneIsUnlinked()
{
    CommandStage stage({"A a A*", "A*"});
    QCOMPARE(stage.walk(new TurnCloneIntoOriginal(stage.mrScene(), stage.cells({1, 2, 3}))), QString());
    QCOMPARE(stage.text(), "A A A | A*");
    QCOMPARE(stage.scene().item(0, 1)->clones.size(), 1);
}

void tst_DiscardCommands::turnedOriginalNeverReachesTheStack()
{
    CommandStage stage({"A B"});
    QVERIFY(stage.isRefused(new TurnCloneIntoOriginal(stage.mrScene(), stage.cells({1, 2}))));
}

void tst_DiscardCommands::redoneTurnBringsTheSameIdentity()
{
    CommandStage stage({"A a"});
    stage.stack().push(new TurnCloneIntoOriginal(stage.mrScene(), stage.cell(2)));
    stage.drawing(2).setCopyId(copyId);
    const Model::Drawing *own = &stage.drawing(2);
    stage.stack().undo();
    QCOMPARE(stage.text(), "A a");
    stage.stack().redo();
    QCOMPARE(&stage.drawing(2), own);
    QCOMPARE(stage.drawing(2).copyId(), copyId);
}

void tst_DiscardCommands::positionsWithoutACellAreNotTaken()
{
    CommandStage stage({"A B b X X X", "C D E F G H"});
    // The cells were there when their indexes were made: now the layer ends behind B.
    const QModelIndexList cells = stage.cells({2, 3, 6});
    const QModelIndexList far = stage.cells({4, 6});
    stage.scene().deleteFrames(0, 6, 4);
    QCOMPARE(stage.text(), "A B | C D E F G H");
    for (const QModelIndexList &none : {far, stage.cells({3})}) {
        QVERIFY(stage.isRefused(new DiscardDrawing(stage.mrScene(), none)));
        QVERIFY(stage.isRefused(new DeleteCloneDrawing(stage.mrScene(), none)));
        QVERIFY(stage.isRefused(new LoseDrawingMakingHold(stage.mrScene(), none)));
        QVERIFY(stage.isRefused(new ClearDrawingMakingBlank(stage.mrScene(), none)));
        QVERIFY(stage.isRefused(new TurnCloneIntoOriginal(stage.mrScene(), none)));
    }
    // Deleting B is all there is to do.
    QCOMPARE(stage.walk(new DiscardDrawing(stage.mrScene(), cells)), QString());
    QCOMPARE(stage.text(), "A | C D E F G H");
    QCOMPARE(stage.scene().activeFrame(), 1);
}

void tst_DiscardCommands::discardedClonesEndAtFrameOne()
{
    CommandStage stage({"A a a B"});
    stage.activate(2);
    // Frame 2, then frame 1, whose drawing goes on in the hold behind it; nothing stands before.
    QCOMPARE(stage.walk(new DiscardCloneDrawings(stage.mrScene(), 5)), QString());
    QCOMPARE(stage.text(), "A B");
    QCOMPARE(stage.scene().activeFrame(), 1);
}

QTEST_MAIN(tst_DiscardCommands)
#include "tst_discardcommands.moc"
