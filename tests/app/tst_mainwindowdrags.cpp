#include "mainwindowfixture.h"

#include "app/playbackcontroller.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "support/messageboxanswer.h"

#include <QTest>
#include <QUndoStack>

#include <functional>

using Model::Tool;
using Model::ToolManager;
using enum MR::Action;

/// Edits that are under way on the paper while something else is asked of the window: what was done by then counts.
class tst_MainWindowDrags : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void cleanup();
    void actionComesAfterTheDrag_data();
    void actionComesAfterTheDrag();
    void undoTakesTheDragBack();
    void dragIsSaved();
    void dragIsAskedForBeforeTheSceneGoes_data();
    void dragIsAskedForBeforeTheSceneGoes();
    void playbackBeginsAfterTheDrag();
    void pressThatBeginsAnEditEndsPlayback_data();
    void pressThatBeginsAnEditEndsPlayback();
    void pressThatBeginsAnEditEndsAFlip();
    void viewIsMovedWhilePlaybackGoesOn();

private:
    void beginDrag();
    void startPlaying();
    /// How far right of its pegs a frame lies. What the scene keeps leads the other way, from the desk to the paper.
    double movedX(int frameId) const { return 0.0 - scene()->offPegsTransformOfFrame(frameId).dx(); }
    PlaybackController *playback() const { return m_window->findChild<PlaybackController *>(); }
};

void tst_MainWindowDrags::cleanup()
{
    release(paperPoint(60, 0));
    playback()->stopPlayback();
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

// Frame 1 is on its way off its pegs, to the right, and the button is down.
void tst_MainWindowDrags::beginDrag()
{
    action(ViewToX1)->trigger();
    action(OffPegs)->trigger();
    press(paperPoint(0, 0));
    moveTo(paperPoint(30, 0));
    moveTo(paperPoint(60, 0));
}

void tst_MainWindowDrags::startPlaying()
{
    action(Play)->trigger();
    QTRY_VERIFY(scene()->scrubFrame() > scene()->activeFrame());
}

void tst_MainWindowDrags::actionComesAfterTheDrag_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<QString>("undoText");
    QTest::newRow("step") << StepForward << "Change Active Frame";
    QTest::newRow("blank drawing") << AddBlankDrawing << "Add Blank Drawing";
    QTest::newRow("new layer") << NewLayer << "New Layer";
    QTest::newRow("duplicate of the layer") << DuplicateActiveLayer << "Duplicate Layer";
    QTest::newRow("tool") << Pan << "";
    QTest::newRow("pen") << Draw << "";
    QTest::newRow("zoom") << ZoomIn << "";
    QTest::newRow("grid") << GridOnOff << "";
}

void tst_MainWindowDrags::actionComesAfterTheDrag()
{
    QFETCH(MR::Action, which);
    QFETCH(QString, undoText);
    makeCells("oo");
    beginDrag();
    action(which)->trigger();
    moveTo(paperPoint(90, 0));
    release(paperPoint(90, 0));
    QUndoStack *stack = scene()->undoStack();
    QCOMPARE(stack->count(), undoText.isEmpty() ? 1 : 2);
    if (!undoText.isEmpty())
        QCOMPARE(stack->undoText(), undoText);
    // What was done until then and nothing after it, to the frame that it was done to.
    QCOMPARE(movedX(1), 60.0);
    QCOMPARE(movedX(2), 0.0);
    while (stack->canUndo())
        stack->undo();
    QCOMPARE(movedX(1), 0.0);
}

void tst_MainWindowDrags::undoTakesTheDragBack()
{
    makeCells("oo");
    drawLine();
    beginDrag();
    action(Undo)->trigger();
    QVERIFY(!drawing().isEmpty());
    QCOMPARE(movedX(1), 0.0);
    release(paperPoint(60, 0));
    QCOMPARE(scene()->undoStack()->count(), 2);
    QCOMPARE(scene()->undoStack()->index(), 1);
    action(Redo)->trigger();
    QCOMPARE(movedX(1), 60.0);
}

void tst_MainWindowDrags::dragIsSaved()
{
    const QString filename = m_folder->filePath("moved.mr");
    makeCells("oo");
    drawLine();
    scene()->setFilename(filename);
    beginDrag();
    QVERIFY(m_window->saveScene());
    QVERIFY(scene()->undoStack()->isClean());
    release(paperPoint(60, 0));
    QVERIFY(scene()->undoStack()->isClean());
    QVERIFY(m_window->openFile(filename));
    QCOMPARE(movedX(1), 60.0);
}

void tst_MainWindowDrags::dragIsAskedForBeforeTheSceneGoes_data()
{
    QTest::addColumn<std::function<void(MainWindow &)>>("leave");
    const auto row = [](const char *name, std::function<void(MainWindow &)> leave) { QTest::newRow(name) << leave; };
    row("close", [](MainWindow &window) { window.close(); });
    row("new scene", [](MainWindow &window) { window.newScene(MainWindow::NewSceneBehaviour::UseDefaults); });
    row("open", [](MainWindow &window) { window.openFile("/any.mr"); });
}

void tst_MainWindowDrags::dragIsAskedForBeforeTheSceneGoes()
{
    QFETCH(std::function<void(MainWindow &)>, leave);
    makeCells("oo");
    const Model::MRScene *before = m_window->currentScene();
    beginDrag();
    const MessageBoxAnswer answer(QMessageBox::Cancel);
    leave(*m_window);
    QCOMPARE(answer.count(), 1);
    QCOMPARE(m_window->currentScene(), before);
    QVERIFY(m_window->isVisible());
    QCOMPARE(movedX(1), 60.0);
}

void tst_MainWindowDrags::playbackBeginsAfterTheDrag()
{
    makeCells("oooo");
    scene()->setFrameRate(60);
    beginDrag();
    startPlaying();
    moveTo(paperPoint(90, 0));
    release(paperPoint(90, 0));
    QVERIFY(playback()->isActive());
    QCOMPARE(scene()->undoStack()->count(), 1);
    QCOMPARE(movedX(1), 60.0);
}

void tst_MainWindowDrags::pressThatBeginsAnEditEndsPlayback_data()
{
    QTest::addColumn<Tool::Type>("tool");
    QTest::newRow("pen") << Tool::Type::Pen;
    QTest::newRow("eraser") << Tool::Type::Eraser;
    QTest::newRow("off pegs") << Tool::Type::OffPegs;
    QTest::newRow("lasso") << Tool::Type::Lasso;
    QTest::newRow("cutter") << Tool::Type::Cutter;
}

void tst_MainWindowDrags::pressThatBeginsAnEditEndsPlayback()
{
    QFETCH(Tool::Type, tool);
    makeCells("oooooo");
    scene()->setFrameRate(60);
    goTo(2);
    action(ViewToX1)->trigger();
    startPlaying();
    ToolManager::instance()->setCurrentTool(tool, 0);
    press(paperPoint(0, 0));
    QVERIFY(!playback()->isActive());
    // The frame that is edited is the one that is seen.
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(scene()->activeFrame(), 2);
    moveTo(paperPoint(30, 0));
    moveTo(paperPoint(60, 0));
    release(paperPoint(60, 0));
    if (tool != Tool::Type::OffPegs)
        return;
    QCOMPARE(movedX(2), 60.0);
    QCOMPARE(scene()->undoStack()->count(), 1);
}

void tst_MainWindowDrags::pressThatBeginsAnEditEndsAFlip()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    goTo(5);
    action(ViewToX1)->trigger();
    playback()->startFlipBack();
    QTRY_COMPARE(scene()->scrubFrame(), 1);
    action(OffPegs)->trigger();
    press(paperPoint(0, 0));
    QVERIFY(!playback()->isActive());
    moveTo(paperPoint(60, 0));
    release(paperPoint(60, 0));
    QCOMPARE(movedX(5), 60.0);
    QCOMPARE(movedX(1), 0.0);
}

void tst_MainWindowDrags::viewIsMovedWhilePlaybackGoesOn()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    startPlaying();
    action(Pan)->trigger();
    press(paperPoint(0, 0));
    moveTo(paperPoint(60, 0));
    release(paperPoint(60, 0));
    QVERIFY(playback()->isActive());
}

QTEST_MAIN(tst_MainWindowDrags)
#include "tst_mainwindowdrags.moc"
