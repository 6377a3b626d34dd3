#include "app/pickup.h"
#include "app/stampactions.h"
#include "app/stamppreparation.h"
#include "floatingfixture.h"

#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "support/messageboxanswer.h"

#include <QItemSelectionModel>
#include <QPainterPath>
#include <QProgressDialog>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

using Model::FloatingSelection;
using Model::Settings;
using Model::Tool;

namespace {

/// Where \a coverage is more than faint.
QRect boundsOf(const QImage &coverage)
{
    QRect bounds;
    for (int y = 0; y < coverage.height(); ++y) {
        for (int x = 0; x < coverage.width(); ++x) {
            if (coverage.constScanLine(y)[x] > 40)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

/// Presses the button of every progress dialog that comes up.
class ProgressCanceller : public QObject
{
public:
    ProgressCanceller() { qApp->installEventFilter(this); }
    int count() const { return m_count; }

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (auto *dialog = qobject_cast<QProgressDialog *>(object); dialog && event->type() == QEvent::Show) {
            ++m_count;
            QTimer::singleShot(0, dialog, &QProgressDialog::cancel);
        }
        return false;
    }

    int m_count = 0;
};

} // namespace

/// What becomes of a floating selection in the real window.
class tst_StampActions : public FloatingFixture
{
    Q_OBJECT

private slots:
    void cleanup();

    void cutStampedWhereItLayGivesTheDrawingBack();
    void pressOutsideStamps_data();
    void pressOutsideStamps();
    void keysStamp_data();
    void keysStamp();
    void stampIsOneUndoStep();
    void handlesAreDragged_data();
    void handlesAreDragged();
    void draggedSelectionIsStampedWhereItLies();
    void dragUnderwayIsSettledByUndo();
    void escapeGivesADragUp();
    void stampsOnSeveralCellsAreOneUndoStep();
    void holdsOfOneDrawingAreStampedOnce();
    void stampOnADistantCloneGoesToItsOriginal();
    void stampBehindTheLastCellMakesADrawing();
    void stampFarBehindTheRangeIsOneUndoStepToo();
    void oneSelectedCellIsNoTargetOfItsOwn();
    void nothingIsStampedWhereOnlyOtherLayersAreSelected();
    void lockedHoldsTakeNoStamp();
    void blockedToolTakesNoStamp();
    void selectionFloatsOnInOtherFrames();
    void escapeDrops();
    void escapeStopsPlaybackAndGivesToolsBackFirst();
    void droppedSelectionIsGotBack();
    void stampedSelectionIsGotBack();
    void nothingIsGotBackOverWhatFloats();
    void cutThatWasUndoneComesBackAsACopy();
    void undoneDropGivesTheOneBeforeBack();
    void drawingThatTakesNoMoreLeavesItFloating();
    void stampIsPreparedWhileNobodyDoesAnything();
    void cancelledCollapseOfAStampLeavesItFloating();
    void cancelledCollapseKeepsTheTool();
    void cancelledCollapseKeepsABorrowedTool();
    void nothingElseHappensWhileAStampIsCollapsed();
    void collapsedStampLooksLikeTheOther();

private:
    QUndoStack *stack() const { return scene()->undoStack(); }
    StampActions &stamps() const { return *m_window->findChild<StampActions *>(); }
    /// Lets the whole line float, heavy enough to be collapsed with every stamp.
    void pickUpHeavy(MR::Action which);
    QPoint outside() const { return paperPoint(-300, -200); }
};

void tst_StampActions::cleanup()
{
    Settings::instance()->setCollapseAutomatically(false);
    Settings::instance()->setClonesLockedForDrawing(false);
    stamps().setProgressDelay(StampActions::collapsingMs);
    FloatingFixture::cleanup();
}

void tst_StampActions::pickUpHeavy(MR::Action which)
{
    Settings::instance()->setCollapseAutomatically(true);
    m_window->findChild<PickUp *>()->setHeavyLimit(-1);
    lead(which, wholeLine());
    QVERIFY(floats() && selection().collapsesOnStamp());
}

void tst_StampActions::cutStampedWhereItLayGivesTheDrawingBack()
{
    const QImage before = ink();
    cutter(wholeLine());
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!floats());
    QVERIFY2(difference(ink(), before) <= 2, qPrintable(QString::number(difference(ink(), before))));
}

void tst_StampActions::pressOutsideStamps_data()
{
    QTest::addColumn<bool>("withShift");
    QTest::newRow("plain") << false;
    QTest::newRow("with Shift it floats on") << true;
}

void tst_StampActions::pressOutsideStamps()
{
    QFETCH(bool, withShift);
    lasso(wholeLine());
    QCOMPARE(steps(), 1);
    click(outside(), withShift ? Qt::ShiftModifier : Qt::NoModifier);
    QCOMPARE(steps(), 2);
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    QCOMPARE(floats(), withShift);
    QCOMPARE(tool(), withShift ? Tool::Type::FloatingSelection : Tool::Type::Pen);
    // The press did not draw.
    QVERIFY(!scene()->hasActiveStroke());
}

void tst_StampActions::keysStamp_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<bool>("withShift");
    QTest::addColumn<bool>("floatsOn");
    QTest::newRow("Return") << int(Qt::Key_Return) << false << false;
    QTest::newRow("Enter") << int(Qt::Key_Enter) << false << false;
    QTest::newRow("Shift and Return") << int(Qt::Key_Return) << true << true;
    QTest::newRow("Shift and Enter") << int(Qt::Key_Enter) << true << true;
}

void tst_StampActions::keysStamp()
{
    QFETCH(int, which);
    QFETCH(bool, withShift);
    QFETCH(bool, floatsOn);
    lasso(wholeLine());
    key(Qt::Key(which), withShift ? Qt::ShiftModifier : Qt::NoModifier);
    QCOMPARE(steps(), 2);
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    QCOMPARE(floats(), floatsOn);
}

void tst_StampActions::stampIsOneUndoStep()
{
    for (const MR::Action which :
         {MR::Action::StampFloatingSelection, MR::Action::StampFloatingSelectionKeepFloating}) {
        cutter(rightHalf());
        drag(seen(selection().rect().center() + QPointF(0, 12)), paperPoint(20, 120));
        const QImage before = ink();
        const int stepsBefore = steps();
        action(which)->trigger();
        QCOMPARE(steps(), stepsBefore + 1);
        const QImage after = ink();
        QVERIFY(after != before);
        const bool floatsOn = floats();
        QVERIFY(!selection().isCutOut());
        for (int i = 0; i < 2; ++i) {
            action(MR::Action::Undo)->trigger();
            QVERIFY(floats());
            QVERIFY(selection().isCutOut());
            QCOMPARE(ink(), before);
            action(MR::Action::Redo)->trigger();
            QCOMPARE(floats(), floatsOn);
            QVERIFY(!selection().isCutOut());
            QCOMPARE(ink(), after);
        }
        while (stack()->canUndo())
            stack()->undo();
        stack()->clear();
    }
}

void tst_StampActions::handlesAreDragged_data()
{
    QTest::addColumn<QPoint>("fromCorner"); // counted from the bottom right corner; null: the pivot
    QTest::addColumn<QString>("changes");
    QTest::newRow("scale") << QPoint(1, 1) << "scale";
    QTest::newRow("rotate") << QPoint(12, 12) << "rotation";
    QTest::newRow("scale and rotate") << QPoint(14, -3) << "both";
    QTest::newRow("move") << QPoint(-40, -30) << "translation";
    QTest::newRow("pivot") << QPoint() << "pivot";
}

void tst_StampActions::handlesAreDragged()
{
    QFETCH(QPoint, fromCorner);
    QFETCH(QString, changes);
    // Large enough on the screen for all of its handles.
    drag(paperPoint(-150, 100), paperPoint(150, -100));
    stack()->clear();
    lasso({-180, -130, 360, 260});
    const FloatingSelection::Transform before = selection().transform();
    const QImage inked = ink();
    const QPointF from = fromCorner.isNull() ? seen(before.pivot) : seen(selection().rect().bottomRight()) + fromCorner;
    drag(from, from + QPointF(30, -18));
    const FloatingSelection::Transform after = selection().transform();
    QCOMPARE(steps(), 2);
    QCOMPARE(undoText(), QStringLiteral("Change floating selection"));
    QCOMPARE(!(after.scale == before.scale), changes == "scale" || changes == "both");
    QCOMPARE(!(after.rotation == before.rotation), changes == "rotation" || changes == "both");
    QCOMPARE(!(after.pivot == before.pivot), changes == "pivot");
    if (changes == "translation")
        QVERIFY(!(after.translation == before.translation));
    QVERIFY(!(after == before));
    QCOMPARE(ink(), inked);
    action(MR::Action::Undo)->trigger();
    QVERIFY(selection().transform() == before);
    QVERIFY(floats());
    action(MR::Action::Redo)->trigger();
    QVERIFY(selection().transform() == after);
}

void tst_StampActions::draggedSelectionIsStampedWhereItLies()
{
    const QImage before = ink();
    cutter(wholeLine());
    // At 100 percent a pixel of the widget is one of the paper.
    const QPointF from = seen(selection().rect().center() + QPointF(0, 14));
    drag(from, from + QPointF(40, 60));
    action(MR::Action::StampFloatingSelection)->trigger();
    const QImage after = ink();
    // The same line, that way further; its grain is that of the paper there.
    QCOMPARE(boundsOf(after), boundsOf(before).translated(40, 60));
}

void tst_StampActions::dragUnderwayIsSettledByUndo()
{
    lasso(wholeLine());
    const FloatingSelection::Transform before = selection().transform();
    const QPoint from = seen(selection().rect().center() + QPointF(0, 14)).toPoint();
    press(from);
    moveTo(from + QPoint(20, 20));
    moveTo(from + QPoint(40, 40));
    action(MR::Action::Undo)->trigger();
    // The move became a step, and that was undone.
    QCOMPARE(stack()->count(), 2);
    QCOMPARE(steps(), 1);
    QVERIFY(floats());
    QVERIFY(selection().transform() == before);
    moveTo(from + QPoint(80, 80));
    release(from + QPoint(80, 80));
    QVERIFY(selection().transform() == before);
    QCOMPARE(stack()->count(), 2);
}

void tst_StampActions::escapeGivesADragUp()
{
    lasso(wholeLine());
    const FloatingSelection::Transform before = selection().transform();
    const QPointF seenBefore = seen(selection().rect().topLeft());
    const QPoint from = seen(selection().rect().center() + QPointF(0, 14)).toPoint();
    press(from);
    moveTo(from + QPoint(20, 20));
    moveTo(from + QPoint(40, 40));
    QVERIFY(paper()->isPickingUp());
    key(Qt::Key_Escape);
    QVERIFY(!paper()->isPickingUp());
    moveTo(from + QPoint(60, 60));
    release(from + QPoint(60, 60));
    QCOMPARE(steps(), 1);
    QVERIFY(floats());
    QVERIFY(selection().transform() == before);
    QCOMPARE(seen(selection().rect().topLeft()), seenBefore);
    // The next one drops it.
    key(Qt::Key_Escape);
    QVERIFY(!floats());
}

void tst_StampActions::stampsOnSeveralCellsAreOneUndoStep()
{
    makeCells("ooo");
    lasso(wholeLine());
    const int before = steps();
    select(2, 3);
    action(MR::Action::StampFloatingSelection)->trigger();
    QCOMPARE(steps(), before + 1);
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    QVERIFY(!drawing(2).isEmpty() && !drawing(3).isEmpty());
    QCOMPARE(ink(2), ink(3));
    QVERIFY(!mrScene().selectionModel()->hasSelection());
    const QImage first = ink(1);
    action(MR::Action::Undo)->trigger();
    QVERIFY(drawing(2).isEmpty() && drawing(3).isEmpty());
    QCOMPARE(ink(1), first);
    QVERIFY(floats());
}

void tst_StampActions::holdsOfOneDrawingAreStampedOnce()
{
    makeCells("oo--");
    lasso(wholeLine());
    const QImage picture = ink(1);
    select(2, 4);
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!drawing(2).isEmpty());
    QVERIFY(difference(ink(2), picture) <= 2);
    QCOMPARE(ink(4), ink(2));
}

void tst_StampActions::stampOnADistantCloneGoesToItsOriginal()
{
    makeCells("ooo");
    scene()->makeDistantClone(0, 3, scene()->originOfFrame(0, 2));
    stack()->clear();
    lasso(wholeLine());
    goTo(3);
    QVERIFY(floats());
    action(MR::Action::StampFloatingSelection)->trigger();
    QCOMPARE(cells(), QByteArray("ood"));
    QVERIFY(!drawing(2).isEmpty());
    QCOMPARE(ink(3), ink(2));
}

void tst_StampActions::stampBehindTheLastCellMakesADrawing()
{
    lasso(wholeLine());
    const int before = steps();
    goTo(2);
    QVERIFY(action(MR::Action::StampFloatingSelection)->isEnabled());
    action(MR::Action::StampFloatingSelection)->trigger();
    QCOMPARE(steps(), before + 1);
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
    QCOMPARE(cells(), QByteArray("oo"));
    QCOMPARE(scene()->activeFrame(), 2);
    QVERIFY(!drawing(2).isEmpty());
    QVERIFY(difference(ink(2), ink(1)) <= 2);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("o"));
    QVERIFY(floats());
    action(MR::Action::Redo)->trigger();
    QCOMPARE(cells(), QByteArray("oo"));
    QVERIFY(!drawing(2).isEmpty() && !floats());
}

void tst_StampActions::stampFarBehindTheRangeIsOneUndoStepToo()
{
    makeCells("ooooo");
    cutter(wholeLine());
    const int before = steps();
    scene()->setFrameRange(1, 2, 6, 0);
    QCOMPARE(scene()->activeFrame(), 6);
    action(MR::Action::StampFloatingSelection)->trigger();
    QCOMPARE(steps(), before + 1);
    QCOMPARE(cells(), QByteArray("oooooo"));
    QCOMPARE(scene()->activeFrame(), 6);
    QVERIFY(!drawing(6).isEmpty());
    QVERIFY(scene()->rangeLast() >= 6);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(cells(), QByteArray("ooooo"));
    QCOMPARE(scene()->rangeLast(), 2);
    QVERIFY(floats() && selection().isCutOut());
}

void tst_StampActions::oneSelectedCellIsNoTargetOfItsOwn()
{
    makeCells("ooo");
    lasso(wholeLine());
    goTo(2);
    select(3, 3);
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!drawing(2).isEmpty());
    QVERIFY(drawing(3).isEmpty());
}

void tst_StampActions::nothingIsStampedWhereOnlyOtherLayersAreSelected()
{
    const int reference = addReferenceLayer();
    goTo(1, 0);
    makeCells("ooo");
    while (scene()->lastFrame(reference) < 3)
        scene()->addCloneDrawing(reference, scene()->lastFrame(reference));
    stack()->clear();
    cutter(wholeLine());
    select(1, 3, reference);
    QVERIFY(!action(MR::Action::StampFloatingSelection)->isEnabled());
    stamps().stamp(false);
    QCOMPARE(steps(), 1);
    QVERIFY(floats());
    // With cells of lines among them only those are stamped.
    select(2, 3, 0);
    QVERIFY(action(MR::Action::StampFloatingSelection)->isEnabled());
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!drawing(2).isEmpty() && !drawing(3).isEmpty());
}

void tst_StampActions::lockedHoldsTakeNoStamp()
{
    makeCells("o--o");
    lasso(wholeLine());
    select(2, 3);
    QVERIFY(action(MR::Action::StampFloatingSelection)->isEnabled());
    action(MR::Action::ClonesLockedForDrawing)->trigger();
    QVERIFY(Settings::instance()->clonesLockedForDrawing());
    QVERIFY(!action(MR::Action::StampFloatingSelection)->isEnabled());
    QVERIFY(action(MR::Action::StampFloatingSelection)->toolTip().endsWith("takes a stamp"));
    stamps().stamp(false);
    QVERIFY(floats());
    QCOMPARE(steps(), 1);
    // With a drawing of its own among them that is stamped.
    select(4, 4);
    QVERIFY(action(MR::Action::StampFloatingSelection)->isEnabled());
    const QImage first = ink(1);
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!floats());
    QVERIFY(!drawing(4).isEmpty());
    QCOMPARE(ink(1), first);
}

void tst_StampActions::blockedToolTakesNoStamp()
{
    auto *tools = Model::ToolManager::instance();
    lasso(wholeLine());
    for (const int mode : {1, 2, 3}) {
        tools->setCurrentTool(Tool::Type::FloatingSelection, mode);
        QVERIFY(floats());
        for (const MR::Action which :
             {MR::Action::StampFloatingSelection, MR::Action::StampFloatingSelectionKeepFloating})
            QVERIFY(!action(which)->isEnabled());
        stamps().stamp(false);
        stamps().stamp(true);
        key(Qt::Key_Return);
        click(outside());
        QCOMPARE(steps(), 1);
        QVERIFY(floats());
    }
    tools->setCurrentTool(Tool::Type::FloatingSelection, 0);
    QVERIFY(action(MR::Action::StampFloatingSelection)->isEnabled());
    action(MR::Action::StampFloatingSelection)->trigger();
    QCOMPARE(steps(), 2);
}

void tst_StampActions::selectionFloatsOnInOtherFrames()
{
    makeCells("ooo");
    cutter(wholeLine());
    key(Qt::Key_W);
    QCOMPARE(scene()->activeFrame(), 2);
    QVERIFY(floats());
    key(Qt::Key_Return, Qt::ShiftModifier);
    key(Qt::Key_W);
    QVERIFY(floats());
    key(Qt::Key_Return);
    QVERIFY(!drawing(2).isEmpty() && !drawing(3).isEmpty());
}

void tst_StampActions::escapeDrops()
{
    const QImage before = ink();
    cutter(rightHalf());
    const QImage cut = ink();
    key(Qt::Key_Escape);
    QVERIFY(!floats() && selection().isNull());
    QCOMPARE(steps(), 2);
    QCOMPARE(undoText(), QStringLiteral("Drop Floating Selection"));
    QCOMPARE(tool(), Tool::Type::Pen);
    QCOMPARE(ink(), cut);
    action(MR::Action::Undo)->trigger();
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(ink(), before);
}

void tst_StampActions::escapeStopsPlaybackAndGivesToolsBackFirst()
{
    makeCells("o-o");
    lasso(wholeLine());
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(scene()->scrubFrame() > 0);
    key(Qt::Key_Escape);
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(tool(), Tool::Type::Hand);
    key(Qt::Key_Escape);
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
    QVERIFY(floats());
    key(Qt::Key_Escape);
    QVERIFY(!floats());
}

void tst_StampActions::droppedSelectionIsGotBack()
{
    cutter(rightHalf());
    const QPointF from = seen(selection().rect().center() + QPointF(0, 12));
    drag(from, from + QPointF(30, 30));
    const FloatingSelection::Transform there = selection().transform();
    QVERIFY(!action(MR::Action::GetLatestFloatingSelectionBack)->isEnabled());
    key(Qt::Key_Escape);
    QVERIFY(action(MR::Action::GetLatestFloatingSelectionBack)->isEnabled());
    const int before = steps();
    key(Qt::Key_Escape, Qt::ShiftModifier);
    QVERIFY(floats());
    QVERIFY(selection().isCutOut());
    QVERIFY(selection().transform() == there);
    QCOMPARE(steps(), before + 1);
    QCOMPARE(undoText(), QStringLiteral("Get latest Floating Selection back"));
    action(MR::Action::Undo)->trigger();
    QVERIFY(!floats() && selection().isNull());
    QCOMPARE(tool(), Tool::Type::Pen);
    action(MR::Action::Redo)->trigger();
    QVERIFY(floats());
}

void tst_StampActions::stampedSelectionIsGotBack()
{
    lasso(wholeLine());
    key(Qt::Key_Return);
    QVERIFY(!floats());
    QVERIFY(action(MR::Action::GetLatestFloatingSelectionBack)->isEnabled());
    action(MR::Action::GetLatestFloatingSelectionBack)->trigger();
    QVERIFY(floats());
    QCOMPARE(undoText(), QStringLiteral("Get latest Floating Selection back"));
    action(MR::Action::Undo)->trigger();
    QVERIFY(!floats());
    QCOMPARE(tool(), Tool::Type::Pen);
}

void tst_StampActions::nothingIsGotBackOverWhatFloats()
{
    lasso(wholeLine());
    key(Qt::Key_Escape);
    cutter(rightHalf());
    QVERIFY(!action(MR::Action::GetLatestFloatingSelectionBack)->isEnabled());
    const int before = steps();
    stamps().getLatestBack();
    QCOMPARE(steps(), before);
    QVERIFY(selection().isCutOut());
    // A new scene has none.
    key(Qt::Key_Return);
    newCleanScene();
    QVERIFY(!action(MR::Action::GetLatestFloatingSelectionBack)->isEnabled());
    stamps().getLatestBack();
    QVERIFY(!floats());
}

void tst_StampActions::cutThatWasUndoneComesBackAsACopy()
{
    cutter(rightHalf());
    key(Qt::Key_Escape);
    action(MR::Action::Undo)->trigger();
    action(MR::Action::Undo)->trigger();
    // Its ink is in the drawing again, and what comes back must not be stamped over it unasked.
    action(MR::Action::GetLatestFloatingSelectionBack)->trigger();
    QVERIFY(floats());
    QVERIFY(!selection().isCutOut());
    action(MR::Action::Undo)->trigger();
    // With the cut and the drop done again it has its ink nowhere else.
    cutter(rightHalf());
    key(Qt::Key_Escape);
    action(MR::Action::Undo)->trigger();
    action(MR::Action::Redo)->trigger();
    action(MR::Action::GetLatestFloatingSelectionBack)->trigger();
    QVERIFY(selection().isCutOut());
}

void tst_StampActions::undoneDropGivesTheOneBeforeBack()
{
    cutter(rightHalf());
    key(Qt::Key_Escape);
    action(MR::Action::GetLatestFloatingSelectionBack)->trigger();
    key(Qt::Key_Escape);
    action(MR::Action::Undo)->trigger();
    action(MR::Action::Undo)->trigger();
    // The cut stands, and so does its first drop.
    action(MR::Action::GetLatestFloatingSelectionBack)->trigger();
    QVERIFY(selection().isCutOut());
}

void tst_StampActions::drawingThatTakesNoMoreLeavesItFloating()
{
    // As a file may have it: as deep as can be, under a mask, and too large at the bottom to become pixels.
    QImage block = Model::blankCoverage({4, 4});
    block.fill(3);
    auto deep = std::make_unique<Model::CompoundStroke>();
    deep->append(std::make_unique<Model::BitmapStroke>(block, QRect(-6000, -6000, 20000, 20000)));
    for (int level = 1; level < Model::CompoundStroke::maximumDepth - 1; ++level) {
        auto outer = std::make_unique<Model::CompoundStroke>();
        outer->append(std::move(deep));
        deep = std::move(outer);
    }
    auto full = std::make_shared<Model::StrokeDrawing>(scene()->frameSize());
    full->addStroke(std::move(deep));
    QPainterPath hole;
    hole.addRect(10, 10, 20, 20);
    QVERIFY(full->cutPath(hole));
    makeCells("oo");
    drawLine();
    scene()->replaceDrawing(0, 2, full);
    cutter(wholeLine());
    goTo(2);
    const int steps = scene()->undoStack()->count();
    const int strokes = full->strokes().recursiveCount();
    MessageBoxAnswer answer(QMessageBox::Ok);
    key(Qt::Key_Return);
    QCOMPARE(answer.count(), 1);
    QVERIFY(floats());
    QVERIFY(selection().isCutOut());
    QCOMPARE(scene()->undoStack()->count(), steps);
    QCOMPARE(full->strokes().recursiveCount(), strokes);
}

void tst_StampActions::stampIsPreparedWhileNobodyDoesAnything()
{
    const auto &preparation = *m_window->findChild<StampPreparation *>();
    QVERIFY(!preparation.isUnderWay());
    lasso(wholeLine());
    QVERIFY(preparation.isUnderWay());
    QTRY_VERIFY(!preparation.isUnderWay());
    const QPointF from = seen(selection().rect().center() + QPointF(0, 14));
    drag(from, from + QPointF(30, 30));
    QVERIFY(preparation.isUnderWay());
    QTRY_VERIFY(!preparation.isUnderWay());
    drag(from + QPointF(30, 30), from + QPointF(60, 30));
    QVERIFY(preparation.isUnderWay());
    key(Qt::Key_Escape);
    QVERIFY(!preparation.isUnderWay());
}

void tst_StampActions::cancelledCollapseOfAStampLeavesItFloating()
{
    pickUpHeavy(MR::Action::Cutter);
    stamps().setProgressDelay(0);
    const QImage before = ink();
    const int stepsBefore = steps();
    {
        const ProgressCanceller canceller;
        action(MR::Action::StampFloatingSelection)->trigger();
        QCOMPARE(canceller.count(), 1);
    }
    QVERIFY(floats() && selection().isCutOut());
    QCOMPARE(steps(), stepsBefore);
    QCOMPARE(ink(), before);
    stamps().setProgressDelay(StampActions::collapsingMs);
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!floats());
    QVERIFY(ink() != before);
}

void tst_StampActions::cancelledCollapseKeepsTheTool()
{
    pickUpHeavy(MR::Action::Cutter);
    stamps().setProgressDelay(0);
    scene()->setFilename(m_folder->filePath(QStringLiteral("cancelled.mr")));
    const QImage before = ink();
    {
        const ProgressCanceller canceller;
        action(MR::Action::Erase)->trigger();
        QCOMPARE(canceller.count(), 1);
        QVERIFY(floats());
        QCOMPARE(tool(), Tool::Type::FloatingSelection);
        QVERIFY(!action(MR::Action::Erase)->isChecked());
        QVERIFY(!m_window->saveScene());
        QVERIFY(floats());
    }
    QCOMPARE(ink(), before);
}

void tst_StampActions::cancelledCollapseKeepsABorrowedTool()
{
    pickUpHeavy(MR::Action::Cutter);
    stamps().setProgressDelay(0);
    action(MR::Action::Pan)->trigger();
    const auto pen = Model::ToolManager::instance()->currentPenType();
    const ProgressCanceller canceller;
    int asked = 0;
    for (const MR::Action which : {MR::Action::Erase, MR::Action::Draw, MR::Action::Brush, MR::Action::PencilPreset2,
                                   MR::Action::VinylEraser, MR::Action::Lasso}) {
        action(which)->trigger();
        QCOMPARE(canceller.count(), ++asked);
        QVERIFY(floats() && selection().isCutOut());
        QCOMPARE(tool(), Tool::Type::Hand);
        QVERIFY(action(MR::Action::Pan)->isChecked());
        QVERIFY(!action(MR::Action::Erase)->isChecked());
        QCOMPARE(Model::ToolManager::instance()->currentPenType(), pen);
        QVERIFY(action(MR::Action::Marker)->isChecked());
    }
    // It can be given back as ever.
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tool(), Tool::Type::FloatingSelection);
}

void tst_StampActions::nothingElseHappensWhileAStampIsCollapsed()
{
    pickUpHeavy(MR::Action::Cutter);
    scene()->setFilename(m_folder->filePath(QStringLiteral("collapsed.mr")));
    bool hasLooked = false;
    bool canUndo = true;
    bool canClose = true;
    bool canSave = true;
    QTimer::singleShot(0, this, [&] {
        hasLooked = true;
        canUndo = action(MR::Action::Undo)->isEnabled();
        canClose = canUndo || m_window->close();
        canSave = canUndo || m_window->saveScene();
        key(Qt::Key_Escape);
    });
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(hasLooked);
    QVERIFY(!canUndo && !canClose && !canSave);
    QVERIFY(!floats());
    QCOMPARE(steps(), 2);
    QCOMPARE(undoText(), QStringLiteral("Stamp Floating Selection"));
}

void tst_StampActions::collapsedStampLooksLikeTheOther()
{
    const QImage before = ink();
    pickUpHeavy(MR::Action::Cutter);
    action(MR::Action::StampFloatingSelection)->trigger();
    QVERIFY(!floats());
    // At twice the size and back again: edges may be a little softer.
    QVERIFY2(difference(ink(), before) <= 64, qPrintable(QString::number(difference(ink(), before))));
}

QTEST_MAIN(tst_StampActions)
#include "tst_stampactions.moc"
