#include "mainwindowfixture.h"

#include "libmodel/layers/strokelayer.h"
#include "support/scenesnapshot.h"

#include <QItemSelectionModel>
#include <QTest>
#include <QUndoStack>

using TestSupport::SceneSnapshot;

/// The actions that step through frames and move the ends of the range, triggered in the real window.
class tst_StepActions : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void step_data();
    void step();
    void stepsMergeIntoOneUndoStep();
    void steppingForthAndBackLeavesNothingToUndo();
    void stepTakesTheSelectionAway();
    void stepThatLeadsNowhereKeepsTheSelection();
    void stepsStayInAShorterLayer();
    void stepsLeadBackFromFarBehindTheRange_data();
    void stepsLeadBackFromFarBehindTheRange();
    void rangeAction_data();
    void rangeAction();
    void rangeThatLeavesTheActiveFrameTakesItAlong();
    void keysStep();
};

void tst_StepActions::step_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    // Frames 1 to 8: o - - o - o o -, the range is 2 to 7, and 4 and 7 are key drawings.
    using enum MR::Action;
    QTest::newRow("back") << StepBack << 5 << 4;
    QTest::newRow("back at the start of the range") << StepBack << 2 << 2;
    QTest::newRow("forward") << StepForward << 5 << 6;
    QTest::newRow("forward at the end of the range") << StepForward << 7 << 7;
    QTest::newRow("to the drawing before") << StepBackSkippingLocalClones << 6 << 4;
    QTest::newRow("from a hold to its drawing") << StepBackSkippingLocalClones << 5 << 4;
    QTest::newRow("no drawing before within the range") << StepBackSkippingLocalClones << 4 << 4;
    QTest::newRow("to the next drawing") << StepForwardSkippingLocalClones << 4 << 6;
    QTest::newRow("from a hold to the next drawing") << StepForwardSkippingLocalClones << 3 << 4;
    QTest::newRow("no next drawing") << StepForwardSkippingLocalClones << 7 << 7;
    QTest::newRow("to the key drawing before") << SkipBackToKeyDrawing << 6 << 4;
    QTest::newRow("no key drawing before") << SkipBackToKeyDrawing << 4 << 4;
    QTest::newRow("to the next key drawing") << SkipForwardToKeyDrawing << 4 << 7;
    QTest::newRow("no next key drawing") << SkipForwardToKeyDrawing << 7 << 7;
    QTest::newRow("to the start") << JumpToStart << 6 << 2;
    QTest::newRow("to the end") << JumpToEnd << 3 << 7;
}

void tst_StepActions::step()
{
    QFETCH(MR::Action, which);
    QFETCH(int, from);
    QFETCH(int, to);
    makeCells("o--o-oo-");
    scene()->setKeyDrawing(0, 4, true);
    scene()->setKeyDrawing(0, 7, true);
    scene()->setFrameRange(2, 7, from, 0);
    QCOMPARE(scene()->activeFrame(), from);
    action(which)->trigger();
    QCOMPARE(scene()->activeFrame(), to);
    QCOMPARE(scene()->undoStack()->count(), from == to ? 0 : 1);
    if (from == to)
        return;
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Change Active Frame"));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->activeFrame(), from);
}

void tst_StepActions::stepsMergeIntoOneUndoStep()
{
    makeCells("ooooo");
    for (int i = 0; i < 3; ++i)
        action(MR::Action::StepForward)->trigger();
    QCOMPARE(scene()->activeFrame(), 4);
    QCOMPARE(scene()->undoStack()->count(), 1);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->activeFrame(), 1);
}

void tst_StepActions::steppingForthAndBackLeavesNothingToUndo()
{
    makeCells("ooo");
    action(MR::Action::StepForward)->trigger();
    action(MR::Action::StepBack)->trigger();
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_StepActions::stepTakesTheSelectionAway()
{
    makeCells("ooo");
    select(1, 2);
    action(MR::Action::StepForward)->trigger();
    QVERIFY(!m_window->currentScene()->selectionModel()->hasSelection());
}

void tst_StepActions::stepThatLeadsNowhereKeepsTheSelection()
{
    makeCells("ooo");
    select(1, 2);
    action(MR::Action::StepBack)->trigger();
    QVERIFY(m_window->currentScene()->selectionModel()->hasSelection());
}

void tst_StepActions::stepsStayInAShorterLayer()
{
    makeCells("ooooo");
    const int layerIdx = scene()->insertLayer(std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize()), 3);
    goTo(1, layerIdx);
    action(MR::Action::JumpToEnd)->trigger();
    QCOMPARE(scene()->activeFrame(), 1);
    // One frame on lies the empty position, where the next drawing goes; there it ends.
    action(MR::Action::StepForward)->trigger();
    QCOMPARE(scene()->activeFrame(), 2);
    action(MR::Action::StepForward)->trigger();
    QCOMPARE(scene()->activeFrame(), 2);
    action(MR::Action::StepBackSkippingLocalClones)->trigger();
    QCOMPARE(scene()->activeFrame(), 1);
}

void tst_StepActions::stepsLeadBackFromFarBehindTheRange_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<int>("to");
    using enum MR::Action;
    QTest::newRow("a frame") << StepBack << 3;
    QTest::newRow("a drawing") << StepBackSkippingLocalClones << 2;
    QTest::newRow("a key drawing") << SkipBackToKeyDrawing << 1;
    QTest::newRow("to the end") << JumpToEnd << 3;
}

void tst_StepActions::stepsLeadBackFromFarBehindTheRange()
{
    QFETCH(MR::Action, which);
    makeCells("oo-ooo");
    for (const int frameId : {1, 5})
        scene()->setKeyDrawing(0, frameId, true);
    scene()->setFrameRange(1, 3, 7, 0);
    QCOMPARE(scene()->activeFrame(), 7);
    action(which)->trigger();
    QTEST(scene()->activeFrame(), "to");
}

void tst_StepActions::rangeAction_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    using enum MR::Action;
    QTest::newRow("start back") << RangeStartStepBack << 2 << 6;
    QTest::newRow("start forward") << RangeStartStepForward << 4 << 6;
    QTest::newRow("end back") << RangeEndStepBack << 3 << 5;
    QTest::newRow("end forward") << RangeEndStepForward << 3 << 7;
    QTest::newRow("start to the first frame") << RangeStartToFirstFrame << 1 << 6;
    QTest::newRow("end to the last frame") << RangeEndToLastFrame << 3 << 8;
}

void tst_StepActions::rangeAction()
{
    QFETCH(MR::Action, which);
    makeCells("oooooooo");
    scene()->setFrameRange(3, 6, 5, 0);
    const SceneSnapshot start(*scene());
    action(which)->trigger();
    QTEST(scene()->rangeFirst(), "first");
    QTEST(scene()->rangeLast(), "last");
    QCOMPARE(scene()->activeFrame(), 5);
    QCOMPARE(scene()->undoStack()->count(), 1);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(start.diff(SceneSnapshot(*scene())), QString());
}

void tst_StepActions::rangeThatLeavesTheActiveFrameTakesItAlong()
{
    makeCells("ooooo");
    scene()->setFrameRange(1, 5, 1, 0);
    action(MR::Action::RangeStartStepForward)->trigger();
    QCOMPARE(scene()->activeFrame(), 2);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->activeFrame(), 1);
    QCOMPARE(scene()->rangeFirst(), 1);
}

void tst_StepActions::keysStep()
{
    makeCells("o-o--o");
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    const auto frameAfter = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(m_window->windowHandle(), key, modifiers);
        return scene()->activeFrame();
    };
    QCOMPARE(frameAfter(Qt::Key_Right), 2);
    QCOMPARE(frameAfter(Qt::Key_Down), 3);
    QCOMPARE(frameAfter(Qt::Key_W), 6);
    QCOMPARE(frameAfter(Qt::Key_Up), 3);
    QCOMPARE(frameAfter(Qt::Key_Q), 1);
    QCOMPARE(frameAfter(Qt::Key_End), 6);
    QCOMPARE(frameAfter(Qt::Key_Left), 5);
    QCOMPARE(frameAfter(Qt::Key_Home), 1);
}

QTEST_MAIN(tst_StepActions)
#include "tst_stepactions.moc"
