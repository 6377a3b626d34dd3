#include "floatingfixture.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/messageboxanswer.h"

#include <QTest>
#include <QUndoStack>

using Model::Tool;

/// A floating selection in the real window that other tools, layers, frames and scenes come over.
class tst_StampActionsLeaving : public FloatingFixture
{
    Q_OBJECT

private slots:
    void otherToolLeavesACopyUnstamped_data();
    void otherToolLeavesACopyUnstamped();
    void otherToolStampsWhatWasCutOut_data();
    void otherToolStampsWhatWasCutOut();
    void whatWasStampedIsNoLongerCutOut();
    void stylusEndIsUsedAfterTheStamp();
    void borrowedToolsLeaveItAlone();
    void stampUnderABorrowedToolGivesThatBack();
    void actionShowsAndHidesIt();
    void hiddenLayerTakesNoStamp_data();
    void hiddenLayerTakesNoStamp();
    void cutOverAReferenceLayerIsBroughtHome();
    void savingBringsHomeWhatWasCutOut();
    void newSceneIsLedByADrawingTool();
    void cutIsAskedAboutBeforeItsSceneIsLeft();
    void otherFrameOnShowHidesIt();

private:
    QUndoStack *stack() const { return scene()->undoStack(); }
    QPoint outside() const { return paperPoint(-300, -200); }
};

namespace {

void addTools()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<Tool::Type>("chosen");
    QTest::newRow("draw") << MR::Action::Draw << Tool::Type::Pen;
    QTest::newRow("erase") << MR::Action::Erase << Tool::Type::Eraser;
    QTest::newRow("toggle") << MR::Action::DrawEraseToggle << Tool::Type::Pen;
    QTest::newRow("pencil") << MR::Action::Pencil << Tool::Type::Pen;
    QTest::newRow("preset") << MR::Action::BrushPreset2 << Tool::Type::Pen;
    QTest::newRow("rubber") << MR::Action::RubberEraser << Tool::Type::Eraser;
    QTest::newRow("lasso") << MR::Action::Lasso << Tool::Type::Lasso;
    QTest::newRow("cutter") << MR::Action::Cutter << Tool::Type::Cutter;
    QTest::newRow("its own action") << MR::Action::FloatingSelection << Tool::Type::Pen;
}

} // namespace

void tst_StampActionsLeaving::otherToolLeavesACopyUnstamped_data()
{
    addTools();
}

void tst_StampActionsLeaving::otherToolLeavesACopyUnstamped()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::Type, chosen);
    const QImage before = ink();
    lasso(wholeLine());
    action(which)->trigger();
    QCOMPARE(tool(), chosen);
    QVERIFY(!floats());
    QVERIFY(!selection().isNull());
    QCOMPARE(ink(), before);
    QCOMPARE(undoText(), QStringLiteral("Change tool type"));
    action(MR::Action::Undo)->trigger();
    QVERIFY(floats());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    action(MR::Action::Redo)->trigger();
    QCOMPARE(tool(), chosen);
    QVERIFY(action(MR::Action::GetLatestFloatingSelectionBack)->isEnabled());
}

void tst_StampActionsLeaving::otherToolStampsWhatWasCutOut_data()
{
    addTools();
}

void tst_StampActionsLeaving::otherToolStampsWhatWasCutOut()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::Type, chosen);
    const QImage before = ink();
    cutter(wholeLine());
    const QImage cut = ink();
    action(which)->trigger();
    QCOMPARE(tool(), chosen);
    QVERIFY(!floats());
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    QCOMPARE(steps(), 2);
    QVERIFY(difference(ink(), before) <= 2);
    action(MR::Action::Undo)->trigger();
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    QCOMPARE(ink(), cut);
    action(MR::Action::Redo)->trigger();
    QCOMPARE(tool(), chosen);
    QVERIFY(difference(ink(), before) <= 2);
}

void tst_StampActionsLeaving::whatWasStampedIsNoLongerCutOut()
{
    cutter(wholeLine());
    key(Qt::Key_Return, Qt::ShiftModifier);
    QVERIFY(floats() && !selection().isCutOut());
    const QImage stamped = ink();
    action(MR::Action::Draw)->trigger();
    QCOMPARE(ink(), stamped);
    action(MR::Action::GetLatestFloatingSelectionBack)->trigger();
    action(MR::Action::Draw)->trigger();
    QCOMPARE(ink(), stamped);
}

void tst_StampActionsLeaving::stylusEndIsUsedAfterTheStamp()
{
    lasso(wholeLine());
    m_window->setTabletPointerType(QPointingDevice::PointerType::Eraser);
    QVERIFY(floats());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    key(Qt::Key_Return);
    QCOMPARE(tool(), Tool::Type::Eraser);
    m_window->setTabletPointerType(QPointingDevice::PointerType::Pen);
    QCOMPARE(tool(), Tool::Type::Pen);
}

void tst_StampActionsLeaving::borrowedToolsLeaveItAlone()
{
    cutter(wholeLine());
    const QImage withIt = paper()->grab().toImage();
    for (const MR::Action which : {MR::Action::Pan, MR::Action::Zoom, MR::Action::Rotate, MR::Action::ZPR}) {
        action(which)->trigger();
        QVERIFY(tool() != Tool::Type::FloatingSelection);
        QVERIFY(floats());
        QCOMPARE(paper()->grab().toImage(), withIt);
        action(which)->trigger();
        QCOMPARE(tool(), Tool::Type::FloatingSelection);
    }
    QCOMPARE(steps(), 1);
}

void tst_StampActionsLeaving::stampUnderABorrowedToolGivesThatBack()
{
    cutter(wholeLine());
    action(MR::Action::Pan)->trigger();
    action(MR::Action::StampFloatingSelection)->trigger();
    QCOMPARE(tool(), Tool::Type::Pen);
    QVERIFY(!floats());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    QVERIFY(floats());
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Draw)->trigger();
    action(MR::Action::Undo)->trigger();
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
}

void tst_StampActionsLeaving::actionShowsAndHidesIt()
{
    QVERIFY(!action(MR::Action::FloatingSelection)->isEnabled());
    lasso(wholeLine());
    QVERIFY(action(MR::Action::FloatingSelection)->isChecked());
    action(MR::Action::FloatingSelection)->trigger();
    QVERIFY(!floats());
    QVERIFY(!action(MR::Action::FloatingSelection)->isChecked());
    QCOMPARE(steps(), 2);
    action(MR::Action::FloatingSelection)->trigger();
    QVERIFY(floats());
    QVERIFY(action(MR::Action::FloatingSelection)->isChecked());
    // There and back is no step at all.
    QCOMPARE(steps(), 1);
    action(MR::Action::Pan)->trigger();
    QVERIFY(!action(MR::Action::FloatingSelection)->isChecked());
    action(MR::Action::FloatingSelection)->trigger();
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    QVERIFY(action(MR::Action::FloatingSelection)->isChecked());
    QCOMPARE(steps(), 1);
}

void tst_StampActionsLeaving::hiddenLayerTakesNoStamp_data()
{
    QTest::addColumn<bool>("isReference");
    QTest::newRow("hidden") << false;
    QTest::newRow("reference") << true;
}

void tst_StampActionsLeaving::hiddenLayerTakesNoStamp()
{
    QFETCH(bool, isReference);
    const int reference = addReferenceLayer();
    goTo(1, 0);
    lasso(wholeLine());
    const QImage before = ink();
    if (isReference)
        goTo(1, reference);
    else
        scene()->setLayerVisible(0, false);
    QVERIFY(floats());
    for (const MR::Action which :
         {MR::Action::StampFloatingSelection, MR::Action::StampFloatingSelectionKeepFloating}) {
        QVERIFY(!action(which)->isEnabled());
        QVERIFY(action(which)->toolTip().endsWith("takes a stamp"));
    }
    click(outside());
    key(Qt::Key_Return);
    QCOMPARE(steps(), 1);
    QVERIFY(floats());
    QCOMPARE(ink(), before);
    // It can be dropped all the same.
    key(Qt::Key_Escape);
    QVERIFY(!floats());
}

void tst_StampActionsLeaving::cutOverAReferenceLayerIsBroughtHome()
{
    const QImage before = ink();
    const int reference = addReferenceLayer();
    goTo(1, 0);
    cutter(wholeLine());
    goTo(1, reference);
    action(MR::Action::Draw)->trigger();
    QVERIFY(!floats());
    QVERIFY(difference(ink(), before) <= 2);
    action(MR::Action::Undo)->trigger();
    goTo(1, 0);
    scene()->setLayerVisible(0, false);
    action(MR::Action::Draw)->trigger();
    QVERIFY(!floats());
    QVERIFY(difference(ink(), before) <= 2);
}

void tst_StampActionsLeaving::savingBringsHomeWhatWasCutOut()
{
    const QString file = m_folder->filePath(QStringLiteral("floating.mr"));
    scene()->setFilename(file);
    const QImage before = ink();
    cutter(wholeLine());
    QVERIFY(m_window->saveScene());
    QVERIFY(!floats());
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    QVERIFY(stack()->isClean());
    QVERIFY(difference(ink(), before) <= 2);
    QVERIFY(m_window->openFile(file));
    QVERIFY(difference(ink(), before) <= 2);
    // A copy is nowhere else missing, and floats on.
    lasso(wholeLine());
    QVERIFY(m_window->saveScene());
    QVERIFY(floats());
}

void tst_StampActionsLeaving::newSceneIsLedByADrawingTool()
{
    lasso(wholeLine());
    action(MR::Action::Pan)->trigger();
    newCleanScene();
    QVERIFY(!floats());
    QCOMPARE(tool(), Tool::Type::Pen);
    QVERIFY(!action(MR::Action::FloatingSelection)->isEnabled());
    drawLine();
    QVERIFY(!drawing().isEmpty());
}

void tst_StampActionsLeaving::cutIsAskedAboutBeforeItsSceneIsLeft()
{
    const QImage before = ink();
    cutter(wholeLine());
    MessageBoxAnswer cancel(QMessageBox::Cancel);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(cancel.count(), 1);
    // It is still the scene of before, and nothing of it is missing.
    QVERIFY(!floats());
    QVERIFY(difference(ink(), before) <= 2);
}

void tst_StampActionsLeaving::otherFrameOnShowHidesIt()
{
    makeCells("ooo");
    const QImage without = paper()->grab().toImage();
    lasso(wholeLine());
    const QImage withIt = paper()->grab().toImage();
    QVERIFY(withIt != without);
    scene()->setScrubFrame(1);
    QCOMPARE(paper()->grab().toImage(), without);
    scene()->unsetScrubFrame();
    QCOMPARE(paper()->grab().toImage(), withIt);
    // A press while it is hidden stops the run first, and then means it.
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(scene()->scrubFrame() > 0);
    click(outside());
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
}

QTEST_MAIN(tst_StampActionsLeaving)
#include "tst_stampactions_leaving.moc"
