#include "floatingfixture.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "support/filedialoganswer.h"
#include "support/messageboxanswer.h"

#include <QDir>
#include <QFile>
#include <QSet>
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
    void cutWithoutACellAtThisFrameIsInTheFile();
    void cutWithoutACellAtThisFrameOutlivesALasso();
    void cutWithoutALayerOfDrawingsStays();
    void savingBringsHomeWhatWasCutOut();
    void exportBringsHomeWhatWasCutOut();
    void cancelledNamesLeaveTheCutFloating();
    void newSceneIsLedByADrawingTool();
    void toolWithoutASelectionIsNotTakenToANewScene();
    void cutFloatsOnWhereItsSceneIsNotLeft();
    void cutIsInTheFileOfASceneThatIsLeft();
    void discardedSceneIsLeftAsItIs();
    void fileThatCannotBeOpenedLeavesTheCutFloating();
    void otherFrameOnShowHidesIt();

private:
    QUndoStack *stack() const { return scene()->undoStack(); }
    QPoint outside() const { return paperPoint(-300, -200); }
    /// A layer for pictures that goes on for some frames, while that of strokes ends with the first. \return its index.
    int addLongReferenceLayer();
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

int tst_StampActionsLeaving::addLongReferenceLayer()
{
    const int reference = addReferenceLayer();
    for (int frameId = 1; frameId < 5; ++frameId)
        scene()->addCloneDrawing(reference, frameId);
    scene()->setFrameRange(1, 5, 1, 0);
    stack()->clear();
    return reference;
}

void tst_StampActionsLeaving::cutWithoutACellAtThisFrameIsInTheFile()
{
    const QString file = m_folder->filePath(QStringLiteral("home.mr"));
    const int reference = addLongReferenceLayer();
    scene()->setFilename(file);
    const QImage before = ink();
    cutter(wholeLine());
    goTo(4, reference);
    QVERIFY(m_window->saveScene());
    QVERIFY(!floats() && !selection().isCutOut());
    QVERIFY(stack()->isClean());
    QVERIFY(m_window->openFile(file));
    QVERIFY(difference(ink(), before) <= 2);
}

void tst_StampActionsLeaving::cutWithoutACellAtThisFrameOutlivesALasso()
{
    const QImage before = ink();
    const int reference = addLongReferenceLayer();
    cutter(rightHalf());
    goTo(4, reference);
    action(MR::Action::Draw)->trigger();
    QVERIFY(!floats() && !selection().isCutOut());
    goTo(1, 0);
    const QImage stamped = ink();
    QVERIFY(difference(stamped, before) <= 60); // along the cut
    lasso(wholeLine());
    QVERIFY(floats());
    QCOMPARE(ink(), stamped);
}

void tst_StampActionsLeaving::cutWithoutALayerOfDrawingsStays()
{
    const QString file = m_folder->filePath(QStringLiteral("homeless.mr"));
    addReferenceLayer();
    scene()->setFilename(file);
    goTo(1, 0);
    cutter(wholeLine());
    action(MR::Action::DiscardActiveLayer)->trigger();
    QCOMPARE(steps(), 2);
    MessageBoxAnswer answer(QMessageBox::Ok);
    action(MR::Action::Draw)->trigger();
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().contains("no layer with drawings"));
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    QVERIFY(!action(MR::Action::Draw)->isChecked());
    QVERIFY(!m_window->saveScene());
    QCOMPARE(answer.count(), 2);
    QVERIFY(!QFile::exists(file));
    QCOMPARE(steps(), 2);
    // Dropped, it stands in nobody's way.
    action(MR::Action::DropFloatingSelection)->trigger();
    QVERIFY(m_window->saveScene());
    QCOMPARE(answer.count(), 2);
}

void tst_StampActionsLeaving::exportBringsHomeWhatWasCutOut()
{
    cutter(wholeLine());
    FileDialogAnswer answer(m_folder->filePath(QStringLiteral("walk")));
    action(MR::Action::ExportFrames)->trigger();
    QCOMPARE(answer.count(), 1);
    QVERIFY(!floats());
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    const QStringList files = QDir(m_folder->path()).entryList({QStringLiteral("walk*.png")});
    QCOMPARE(files.size(), 1);
    const QImage exported(m_folder->filePath(files.constFirst()));
    QCOMPARE(exported.size(), scene()->frameSize());
    // The line's middle is 20 pixels below that of the sheet at most.
    const QPoint middle = exported.rect().center();
    QSet<QRgb> colors;
    for (int y = -10; y <= 30; ++y)
        colors.insert(exported.pixel(middle + QPoint(0, y)));
    QVERIFY(colors.size() > 1);
}

void tst_StampActionsLeaving::cancelledNamesLeaveTheCutFloating()
{
    cutter(wholeLine());
    FileDialogAnswer cancel{QString()};
    QVERIFY(!m_window->saveScene());
    QVERIFY(!m_window->saveSceneAs());
    m_window->exportFrames();
    QCOMPARE(cancel.count(), 3);
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(steps(), 1);
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

void tst_StampActionsLeaving::toolWithoutASelectionIsNotTakenToANewScene()
{
    Model::ToolManager::instance()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    QVERIFY(!floats());
    action(MR::Action::Pan)->trigger();
    newCleanScene();
    QCOMPARE(tool(), Tool::Type::Pen);
    QCOMPARE(Model::ToolManager::instance()->latestPaperToolType(), Tool::Type::Pen);
}

void tst_StampActionsLeaving::cutFloatsOnWhereItsSceneIsNotLeft()
{
    cutter(wholeLine());
    const QImage cut = ink();
    const Model::Scene *left = scene();
    MessageBoxAnswer cancel(QMessageBox::Cancel);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    m_window->openScene();
    QVERIFY(!m_window->openFile(m_folder->filePath(QStringLiteral("other.mr"))));
    QVERIFY(!m_window->close());
    QCOMPARE(cancel.count(), 4);
    QCOMPARE(scene(), left);
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(steps(), 1);
    QCOMPARE(ink(), cut);
}

void tst_StampActionsLeaving::cutIsInTheFileOfASceneThatIsLeft()
{
    const QString file = m_folder->filePath(QStringLiteral("left.mr"));
    scene()->setFilename(file);
    const QImage before = ink();
    cutter(wholeLine());
    const Model::Scene *left = scene();
    MessageBoxAnswer save(QMessageBox::Save);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(save.count(), 1);
    QVERIFY(scene() != left);
    QVERIFY(m_window->openFile(file));
    QVERIFY(difference(ink(), before) <= 2);
}

void tst_StampActionsLeaving::discardedSceneIsLeftAsItIs()
{
    const QString file = m_folder->filePath(QStringLiteral("discarded.mr"));
    scene()->setFilename(file);
    cutter(wholeLine());
    const Model::Scene *left = scene();
    MessageBoxAnswer discard(QMessageBox::Discard);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QVERIFY(scene() != left);
    QVERIFY(!QFile::exists(file));
    QCOMPARE(tool(), Tool::Type::Pen);
}

void tst_StampActionsLeaving::fileThatCannotBeOpenedLeavesTheCutFloating()
{
    cutter(wholeLine());
    const Model::Scene *kept = scene();
    MessageBoxAnswer discard(QMessageBox::Discard);
    QVERIFY(!m_window->openFile(m_folder->filePath(QStringLiteral("nowhere.mr"))));
    QCOMPARE(discard.count(), 2); // the question and the bad news
    QCOMPARE(scene(), kept);
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(steps(), 1);
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
