#include "mainwindowfixture.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/actions/actiontable.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/scenesnapshot.h"

#include <QItemSelectionModel>
#include <QTest>
#include <QUndoStack>

#include <algorithm>

using TestSupport::SceneSnapshot;

/// The actions on cells, triggered in the real window.
class tst_EditActions : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void editIsOneUndoStep_data();
    void editIsOneUndoStep();
    void clearGivesABlankDrawing();
    void addingFarBehindTheRangeIsOneUndoStep();
    void markingAgainUnmarks();
    void unmarkAllTakesTheMarksOffAllLayers();
    void selectAllTakesTheCellsOfVisualLayersWithinTheRange();
    void facesFollowTheNumberOfSelectedCells();
    void faceOfOneSelectedCellIsTheOrdinaryOne();
    void editsOfSoundAndNotesAreNone();
};

void tst_EditActions::editIsOneUndoStep_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("selectedFirst"); // 0: nothing selected
    QTest::addColumn<int>("selectedLast");
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("frameAfter");

    const auto single = [](const char *name, const char *before, int frame, MR::Action which, const char *after,
                           int frameAfter) {
        QTest::newRow(name) << QByteArray(before) << frame << 0 << 0 << which << QByteArray(after) << frameAfter;
    };
    const auto several = [](const char *name, const char *before, int first, int last, MR::Action which,
                            const char *after, int frameAfter) {
        QTest::newRow(name) << QByteArray(before) << first << first << last << which << QByteArray(after) << frameAfter;
    };
    using enum MR::Action;
    single("add a clone", "o-o", 1, AddCloneDrawing, "o--o", 2);
    single("add a clone behind the last", "oo", 3, AddCloneDrawing, "oo-", 3);
    single("add a blank", "o-o", 2, AddBlankDrawing, "o-oo", 3);
    single("add a blank behind the last", "oo", 3, AddBlankDrawing, "ooo", 3);
    single("insert a blank", "o-o", 3, InsertBlankDrawing, "o-oo", 3);
    single("insert a blank behind the last", "oo", 3, InsertBlankDrawing, "ooo", 3);
    single("turn a clone into an original", "o-o", 2, TurnCloneIntoOriginal, "ooo", 2);
    single("lose a drawing", "o-o", 3, LoseDrawingMakingHold, "o--", 3);
    single("delete a drawing", "ooo", 2, DiscardDrawing, "oo", 2);
    single("delete the last drawing", "o-o", 3, DiscardDrawing, "o-", 2);
    single("delete a clone", "o-o", 2, DeleteCloneDrawing, "oo", 1);
    single("back-delete", "ooo", 3, BackDeleteDrawing, "oo", 2);
    single("back-delete in the middle", "o-o", 2, BackDeleteDrawing, "oo", 1);
    single("back-delete behind the last", "o-o", 4, BackDeleteDrawing, "o-", 3);
    single("back-delete at the first frame", "ooo", 1, BackDeleteDrawing, "oo", 1);
    several("add clones", "oo", 1, 2, AddCloneDrawing, "o-o-", 2);
    several("add blanks", "o-", 1, 2, AddBlankDrawing, "oo-o", 2);
    several("insert blanks", "oo", 1, 2, InsertBlankDrawing, "oooo", 1);
    several("turn clones into originals", "o--", 1, 3, TurnCloneIntoOriginal, "ooo", 1);
    several("lose drawings", "ooo", 2, 3, LoseDrawingMakingHold, "o--", 2);
    several("delete drawings", "ooo", 2, 3, DiscardDrawing, "o", 1);
    several("delete the clones among them", "o-o-", 1, 4, DeleteCloneDrawing, "oo", 2);
    several("back-delete several", "ooo", 2, 3, BackDeleteDrawing, "o", 1);
    several("clone each", "o-o", 1, 3, CloneEachSelectedDrawingOnce, "o---o-", 3);
    several("cycle", "o-o", 1, 3, CycleSelectedDrawingsOnce, "o-od-d", 3);
}

void tst_EditActions::editIsOneUndoStep()
{
    QFETCH(QByteArray, before);
    QFETCH(int, frame);
    QFETCH(int, selectedFirst);
    QFETCH(int, selectedLast);
    QFETCH(MR::Action, which);
    makeCells(before);
    QCOMPARE(cells(), before);
    goTo(frame);
    if (selectedFirst)
        select(selectedFirst, selectedLast);
    const SceneSnapshot start(*scene());

    QVERIFY(action(which)->isEnabled());
    action(which)->trigger();
    QTEST(cells(), "after");
    QTEST(scene()->activeFrame(), "frameAfter");
    QCOMPARE(scene()->undoStack()->count(), 1);
    const SceneSnapshot end(*scene());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(start.diff(SceneSnapshot(*scene())), QString());
    action(MR::Action::Redo)->trigger();
    QCOMPARE(end.diff(SceneSnapshot(*scene())), QString());
}

void tst_EditActions::clearGivesABlankDrawing()
{
    drawLine();
    QVERIFY(!drawing().isEmpty());
    action(MR::Action::ClearDrawingMakingBlank)->trigger();
    QVERIFY(drawing().isEmpty());
    QCOMPARE(cells(), QByteArray("o"));
    action(MR::Action::Undo)->trigger();
    QVERIFY(!drawing().isEmpty());
}

void tst_EditActions::addingFarBehindTheRangeIsOneUndoStep()
{
    makeCells("ooooo");
    scene()->setFrameRange(1, 2, 6, 0);
    QCOMPARE(scene()->activeFrame(), 6);
    for (const MR::Action which : {MR::Action::AddBlankDrawing, MR::Action::AddCloneDrawing}) {
        const SceneSnapshot start(*scene());
        action(which)->trigger();
        QCOMPARE(scene()->lastFrame(0), 6);
        QCOMPARE(scene()->activeFrame(), 6);
        QCOMPARE(scene()->rangeLast(), 6);
        QCOMPARE(scene()->undoStack()->count(), 1);
        action(MR::Action::Undo)->trigger();
        QCOMPARE(start.diff(SceneSnapshot(*scene())), QString());
    }
}

void tst_EditActions::markingAgainUnmarks()
{
    makeCells("oo");
    goTo(2);
    action(MR::Action::MarkAsKeyDrawing)->trigger();
    QVERIFY(scene()->item(0, 2)->keyDrawing);
    QVERIFY(!scene()->item(0, 1)->keyDrawing);
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Mark as Key Drawing"));
    action(MR::Action::MarkAsKeyDrawing)->trigger();
    QVERIFY(!scene()->item(0, 2)->keyDrawing);
    QCOMPARE(scene()->undoStack()->count(), 2);
}

void tst_EditActions::unmarkAllTakesTheMarksOffAllLayers()
{
    makeCells("oo");
    scene()->insertLayer(std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize()), 3);
    scene()->setKeyDrawing(0, 2, true);
    scene()->setKeyDrawing(3, 1, true);
    action(MR::Action::UnmarkAllKeyDrawings)->trigger();
    QVERIFY(!scene()->item(0, 2)->keyDrawing);
    QVERIFY(!scene()->item(3, 1)->keyDrawing);
    QCOMPARE(scene()->undoStack()->count(), 1);
    QVERIFY(!action(MR::Action::UnmarkAllKeyDrawings)->isEnabled());
}

void tst_EditActions::selectAllTakesTheCellsOfVisualLayersWithinTheRange()
{
    makeCells("ooooo");
    scene()->insertLayer(std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize()), 3);
    scene()->setFrameRange(1, 3, 1, 0);
    action(MR::Action::SelectAllDrawings)->trigger();
    QList<std::pair<int, int>> selected; // frame and layer
    for (const QModelIndex &index : m_window->currentScene()->selectionModel()->selectedIndexes())
        selected.append({index.row() + 1, index.column()});
    std::sort(selected.begin(), selected.end());
    const QList<std::pair<int, int>> expected{{1, 0}, {1, 3}, {2, 0}, {3, 0}};
    QCOMPARE(selected, expected);
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_EditActions::facesFollowTheNumberOfSelectedCells()
{
    makeCells("ooo");
    const QList<std::pair<MR::Action, QStringList>> faces{
        {MR::Action::AddCloneDrawing, {"Add Clone Drawing", "Add Clone after each Selected Drawing"}},
        {MR::Action::DeleteCloneDrawing, {"Delete Clone Drawing", "Delete All Selected Clone Drawings"}},
        {MR::Action::AddBlankDrawing, {"Add Blank Drawing", "Add Blank after each Selected Drawing"}},
        {MR::Action::InsertBlankDrawing, {"Insert Blank Drawing", "Insert Blank before each Selected Drawing"}},
        {MR::Action::TurnCloneIntoOriginal, {"Turn Clone into Original", "Turn Selected Clones into Originals"}},
        {MR::Action::CutDrawing, {"Cut Drawing", "Cut Selected Drawings"}},
        {MR::Action::CopyDrawing, {"Copy Drawing", "Copy Selected Drawings"}},
        {MR::Action::PasteDrawing, {"Paste Drawing", "Paste Drawings"}},
        {MR::Action::ClearDrawingMakingBlank,
         {"Clear Drawing (Make it Blank)", "Clear Selected Drawings (Make them Blank)"}},
        {MR::Action::LoseDrawingMakingHold, {"Lose Drawing (Keep Timing)", "Lose Selected Drawings (Keep Timing)"}},
        {MR::Action::DiscardDrawing, {"Delete Drawing", "Delete Selected Drawings"}},
        {MR::Action::BackDeleteDrawing, {"Back-delete Drawing", "Back-delete Selected Drawings"}},
    };
    // All there are, but for that of Play, which tells of something else.
    QCOMPARE(
        std::ranges::count_if(Model::actionTable(),
                              [](const Model::ActionRow &row) { return Model::secondFace(row.action) != nullptr; }),
        faces.size() + 1);
    select(1, 3);
    for (const auto &[which, texts] : faces)
        QCOMPARE(action(which)->text(), texts.at(1));
    m_window->currentScene()->clearSelection();
    for (const auto &[which, texts] : faces)
        QCOMPARE(action(which)->text(), texts.at(0));
}

void tst_EditActions::faceOfOneSelectedCellIsTheOrdinaryOne()
{
    makeCells("ooo");
    goTo(1);
    select(3, 3);
    QCOMPARE(action(MR::Action::DiscardDrawing)->text(), QStringLiteral("Delete Drawing"));
    action(MR::Action::DiscardDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("oo"));
}

void tst_EditActions::editsOfSoundAndNotesAreNone()
{
    makeCells("oo");
    goTo(2);
    select(1, 2, 1);
    select(1, 2, 2);
    QCOMPARE(action(MR::Action::DiscardDrawing)->text(), QStringLiteral("Delete Drawing"));
    QVERIFY(!action(MR::Action::CloneEachSelectedDrawingOnce)->isEnabled());
    action(MR::Action::DiscardDrawing)->trigger();
    QCOMPARE(cells(), QByteArray("o"));
}

QTEST_MAIN(tst_EditActions)
#include "tst_editactions.moc"
