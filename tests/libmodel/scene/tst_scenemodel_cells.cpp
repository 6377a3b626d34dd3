#include "scenebuilder.h"
#include "sheetfixture.h"

#include <QTest>

using namespace Model;
using namespace TestSupport;

class tst_SceneModelCells : public QObject
{
    Q_OBJECT

private slots:
    void cellsAreAddedBehindTheIndex();
    void blankIsInsertedInFrontOfTheIndex();
    void blankIsInsertedAtTheAfterLastCell();
    void severalClonesAreAddedAtOnce();
    void cellsAreDeletedUpwardsFromTheIndex();
    void drawingsAreReplaced();
    void distantClonesAreMade();
    void drawingsAreLostAndWonBack();
    void originalsSlide();
    void everyOperationCanBeTakenBackAndDoneAgain_data();
    void everyOperationCanBeTakenBackAndDoneAgain();
    void changesComeTheLastStepFirst();
    void originOfACellIsThatOfOriginalsOnly();
    void originIndexIsThatOfTheOriginal();
    void originalsAreFoundByTheirCopyId();
    void cellsAreFoundByReference();
    void operationsWithoutASceneDoNothing();
    void operationsOnForeignIndexesDoNothing();
};

void tst_SceneModelCells::cellsAreAddedBehindTheIndex()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    QCOMPARE(sheet.source.addCloneDrawing(sheet.source.index(1, 0)).size(), 1);
    QCOMPARE(kinds(sheet.scene, 0), "ooco");
    QCOMPARE(sheet.source.addBlankDrawing(sheet.source.index(3, 0)).size(), 1);
    QCOMPARE(kinds(sheet.scene, 0), "oocoo");
}

void tst_SceneModelCells::blankIsInsertedInFrontOfTheIndex()
{
    Sheet sheet;
    sheet.addColumn("o..");
    const auto first = sheet.scene.item(0, 1);
    QCOMPARE(sheet.source.insertBlankDrawing(sheet.source.index(0, 0)).size(), 1);
    QCOMPARE(kinds(sheet.scene, 0), "oocc");
    QCOMPARE(sheet.scene.item(0, 2), first);
}

void tst_SceneModelCells::blankIsInsertedAtTheAfterLastCell()
{
    Sheet sheet;
    sheet.addColumn("o..");
    QCOMPARE(sheet.source.insertBlankDrawing(sheet.source.index(3, 0)).size(), 1);
    QCOMPARE(kinds(sheet.scene, 0), "occo");
}

void tst_SceneModelCells::severalClonesAreAddedAtOnce()
{
    Sheet sheet;
    sheet.addColumn("oo");
    QCOMPARE(sheet.source.addCloneDrawings(sheet.source.index(0, 0), 3).size(), 3);
    QCOMPARE(kinds(sheet.scene, 0), "occco");
    QVERIFY(sheet.source.addCloneDrawings(sheet.source.index(0, 0), 0).isEmpty());
}

void tst_SceneModelCells::cellsAreDeletedUpwardsFromTheIndex()
{
    Sheet sheet;
    sheet.addColumn("oooooo");
    const auto second = sheet.scene.item(0, 2);
    const auto sixth = sheet.scene.item(0, 6);
    QCOMPARE(sheet.source.deleteDrawings(sheet.source.index(4, 0), 3).size(), 3);
    QCOMPARE(sheet.scene.lastFrame(0), 3);
    QCOMPARE(sheet.scene.item(0, 2), second);
    QCOMPARE(sheet.scene.item(0, 3), sixth);
    sheet.source.deleteDrawing(sheet.source.index(1, 0));
    QCOMPARE(sheet.scene.item(0, 2), sixth);
}

void tst_SceneModelCells::drawingsAreReplaced()
{
    Sheet sheet;
    sheet.addColumn("o.");
    const auto drawing = std::make_shared<StrokeDrawing>(sheet.scene.frameSize());
    QVERIFY(!sheet.source.replaceDrawing(sheet.source.index(0, 0), drawing).isEmpty());
    QCOMPARE(sheet.source.drawing(sheet.source.index(1, 0)), drawing);
}

void tst_SceneModelCells::distantClonesAreMade()
{
    Sheet sheet;
    sheet.addColumn("ooo");
    sheet.addColumn("oo");
    const CellRef origin = sheet.source.originOfCell(sheet.source.index(1, 0));
    QVERIFY(!sheet.source.makeDistantClone(sheet.source.index(0, 1), origin).isEmpty());
    QVERIFY(sheet.source.index(0, 1).data(SceneModel::DistantCloneRole).toBool());
    QCOMPARE(sheet.source.drawing(sheet.source.index(0, 1)), sheet.source.drawing(sheet.source.index(1, 0)));
}

void tst_SceneModelCells::drawingsAreLostAndWonBack()
{
    Sheet sheet;
    sheet.addColumn("oo");
    QVERIFY(!sheet.source.loseDrawing(sheet.source.index(1, 0)).isEmpty());
    QCOMPARE(kinds(sheet.scene, 0), "oc");
    const QUuid copyId = QUuid::createUuid();
    QVERIFY(!sheet.source.turnCloneIntoOriginal(sheet.source.index(1, 0), copyId).isEmpty());
    QCOMPARE(kinds(sheet.scene, 0), "oo");
    QCOMPARE(sheet.source.findOriginal(copyId), sheet.source.index(1, 0));
}

void tst_SceneModelCells::originalsSlide()
{
    Sheet sheet;
    sheet.addColumn("o.o..");
    QVERIFY(!sheet.source.slideOriginalDrawing(sheet.source.index(2, 0), 1, 0, 1).isEmpty());
    QCOMPARE(kinds(sheet.scene, 0), "occoc");
}

void tst_SceneModelCells::everyOperationCanBeTakenBackAndDoneAgain_data()
{
    using Operation = std::function<QList<SceneChange>(Sheet &)>;
    QTest::addColumn<std::function<QList<SceneChange>(Sheet &)>>("operation");
    const auto row = [](const char *name, const Operation &operation) { QTest::newRow(name) << operation; };
    row("add blank", [](Sheet &s) { return s.source.addBlankDrawing(s.source.index(2, 0)); });
    row("insert blank", [](Sheet &s) { return s.source.insertBlankDrawing(s.source.index(2, 0)); });
    row("add clone", [](Sheet &s) { return s.source.addCloneDrawing(s.source.index(2, 0)); });
    row("add clones", [](Sheet &s) { return s.source.addCloneDrawings(s.source.index(2, 0), 4); });
    row("delete", [](Sheet &s) { return s.source.deleteDrawing(s.source.index(2, 0)); });
    row("delete several", [](Sheet &s) { return s.source.deleteDrawings(s.source.index(3, 0), 3); });
    row("replace", [](Sheet &s) {
        return s.source.replaceDrawing(s.source.index(2, 0), std::make_shared<StrokeDrawing>(sceneFrame));
    });
    row("lose", [](Sheet &s) { return s.source.loseDrawing(s.source.index(2, 0)); });
    row("turn into original", [](Sheet &s) { return s.source.turnCloneIntoOriginal(s.source.index(1, 0)); });
    row("slide", [](Sheet &s) { return s.source.slideOriginalDrawing(s.source.index(2, 0), 0, -1, 2); });
}

void tst_SceneModelCells::everyOperationCanBeTakenBackAndDoneAgain()
{
    QFETCH(std::function<QList<SceneChange>(Sheet &)>, operation);
    Sheet sheet;
    sheet.addColumn("o.o..o");
    const auto state = [&] {
        QStringList cells;
        for (const auto &cell : sheet.scene.visualLayer(0)->frames()) {
            cells += QStringLiteral("%1 %2 %3")
                         .arg(int(cell->type))
                         .arg(cell->identifier.toString())
                         .arg(quintptr(cell->drawing.get()));
        }
        return cells;
    };
    const QStringList before = state();
    const QList<SceneChange> changes = operation(sheet);
    const QStringList after = state();
    QVERIFY(after != before);
    const QList<SceneChange> back = sheet.source.undoChanges(changes);
    QCOMPARE(state(), before);
    sheet.source.undoChanges(back);
    QCOMPARE(state(), after);
}

void tst_SceneModelCells::changesComeTheLastStepFirst()
{
    Sheet sheet;
    sheet.addColumn("oooooo");
    const QList<SceneChange> changes = sheet.source.deleteDrawings(sheet.source.index(4, 0), 3);
    QCOMPARE(changes.size(), 3);
    // Frames 5, 4 and 3 went, in this order.
    QCOMPARE(changes.at(0).frameId, 3);
    QCOMPARE(changes.at(1).frameId, 4);
    QCOMPARE(changes.at(2).frameId, 5);
}

void tst_SceneModelCells::originOfACellIsThatOfOriginalsOnly()
{
    Sheet sheet;
    sheet.addColumn("o.");
    const CellRef origin = sheet.source.originOfCell(sheet.source.index(0, 0));
    QCOMPARE(origin.layer, sheet.scene.layer(0)->identifier());
    QCOMPARE(origin.cell, sheet.scene.item(0, 1)->identifier);
    QVERIFY(sheet.source.originOfCell(sheet.source.index(1, 0)).isNull());
    QVERIFY(sheet.source.originOfCell(sheet.source.index(2, 0)).isNull());
}

void tst_SceneModelCells::originIndexIsThatOfTheOriginal()
{
    Sheet sheet;
    sheet.addColumn("oo.");
    sheet.addColumn("oo.");
    sheet.source.makeDistantClone(sheet.source.index(1, 1), sheet.source.originOfCell(sheet.source.index(1, 0)));
    for (const auto &[row, column] : {std::pair(1, 0), {2, 0}, {1, 1}, {2, 1}})
        QCOMPARE(sheet.source.originIndex(sheet.source.index(row, column)), sheet.source.index(1, 0));
    QVERIFY(!sheet.source.originIndex(sheet.source.index(3, 1)).isValid());
}

void tst_SceneModelCells::originalsAreFoundByTheirCopyId()
{
    Sheet sheet;
    sheet.addColumn("o.o");
    const QUuid copyId = QUuid::createUuid();
    sheet.scene.item(0, 3)->drawing->setCopyId(copyId);
    QCOMPARE(sheet.source.findOriginal(copyId), sheet.source.index(2, 0));
    QVERIFY(!sheet.source.findOriginal(QUuid::createUuid()).isValid());
    QVERIFY(!sheet.source.findOriginal({}).isValid());
}

void tst_SceneModelCells::cellsAreFoundByReference()
{
    Sheet sheet;
    sheet.addColumn("oo");
    const CellRef ref = sheet.source.originOfCell(sheet.source.index(1, 0));
    QCOMPARE(sheet.source.indexOfCell(ref), sheet.source.index(1, 0));
    sheet.source.insertBlankDrawing(sheet.source.index(0, 0));
    QCOMPARE(sheet.source.indexOfCell(ref), sheet.source.index(2, 0));
    sheet.source.deleteDrawing(sheet.source.index(2, 0));
    QVERIFY(!sheet.source.indexOfCell(ref).isValid());
    QVERIFY(!sheet.source.indexOfCell({}).isValid());
}

namespace {

/// Calls every operation with an index that must be refused. \return the name of one that did something.
QString operationThatWorks(SceneModel &model, const QModelIndex &index)
{
    const CellRef ref{QUuid::createUuid(), QUuid::createUuid()};
    if (!model.addBlankDrawing(index).isEmpty() || !model.insertBlankDrawing(index).isEmpty())
        return "blank";
    if (!model.addCloneDrawing(index).isEmpty() || !model.addCloneDrawings(index, 2).isEmpty())
        return "clone";
    if (!model.deleteDrawing(index).isEmpty() || !model.deleteDrawings(index, 2).isEmpty())
        return "delete";
    if (!model.replaceDrawing(index, std::make_shared<StrokeDrawing>(sceneFrame)).isEmpty())
        return "replace";
    if (!model.makeDistantClone(index, ref).isEmpty() || !model.loseDrawing(index).isEmpty())
        return "distant clone, lose";
    if (!model.turnCloneIntoOriginal(index).isEmpty() || !model.slideOriginalDrawing(index, 1, 0, 1).isEmpty())
        return "original, slide";
    if (!model.originOfCell(index).isNull() || model.originIndex(index).isValid() || model.item(index))
        return "origin, item";
    if (model.addStroke(index, block(QRect(1, 1, 2, 2))) || model.removeLastStroke(index))
        return "stroke";
    return {};
}

} // namespace

void tst_SceneModelCells::operationsWithoutASceneDoNothing()
{
    SceneModel model;
    QCOMPARE(operationThatWorks(model, {}), QString());
    QVERIFY(model.undoChanges({SceneChange(LayerChange::ItemInserted, 1, 0)}).isEmpty());
    QVERIFY(!model.findOriginal(QUuid::createUuid()).isValid());
    QVERIFY(!model.indexOfCell({QUuid::createUuid(), QUuid::createUuid()}).isValid());
}

void tst_SceneModelCells::operationsOnForeignIndexesDoNothing()
{
    Sheet sheet;
    sheet.addColumn("oo..");
    sheet.setRange(1, 4);
    QCOMPARE(operationThatWorks(sheet.source, sheet.cell(2, 0)), QString());
    QCOMPARE(operationThatWorks(sheet.source, {}), QString());
    QCOMPARE(kinds(sheet.scene, 0), "oocc");
}

QTEST_MAIN(tst_SceneModelCells)
#include "tst_scenemodel_cells.moc"
