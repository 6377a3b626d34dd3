#include "mainwindowfixture.h"

#include "app/playbackcontroller.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "support/filedialoganswer.h"
#include "support/messageboxanswer.h"

#include <QTest>
#include <QUndoStack>
#include <qpa/qwindowsysteminterface.h>

using Model::Tool;
using Model::ToolManager;

/// What the window ties together: held keys and drags on the paper with scene, tools and playback. Keys come as the
/// window system reports them.
class tst_MainWindowGestures : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void cleanup();
    void spaceHeldTakesTheViewToolAndGivesItBack();
    void spaceCommitsTheStrokeFirst();
    void returnHeldFlipsBackAndReturns();
    void shiftHeldScrubsAndLandsWhereItIsLetGo();
    void escapeEndsPlayback();
    void spaceWhilePlayingStops();
    void frameTakenOffItsPegsIsOneUndoStep();
    void questionEndsAGesture();
    void anotherSceneEndsAGesture();
    void closingIsAskedForInTheMiddleOfAGesture();
    void busyWindowEndsThePanOfTheMiddleButton_data();
    void busyWindowEndsThePanOfTheMiddleButton();

private:
    void sendKey(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers = {}, const QString &text = {});
    void pressKey(int key, Qt::KeyboardModifiers modifiers = {}, const QString &text = {});
    void releaseKey(int key, Qt::KeyboardModifiers modifiers = {}, const QString &text = {});
    void pointAt(QPoint at);
    Tool::Type tool() const { return ToolManager::instance()->currentToolType(); }
    PlaybackController *playback() const { return m_window->findChild<PlaybackController *>(); }
};

void tst_MainWindowGestures::cleanup()
{
    QCOMPARE(tool(), Tool::Type::Pen);
    QVERIFY(!playback()->isActive());
}

void tst_MainWindowGestures::sendKey(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QWindowSystemInterface::handleKeyEvent(m_window->windowHandle(), type, key, modifiers, text);
    QCoreApplication::processEvents();
}

void tst_MainWindowGestures::pressKey(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    sendKey(QEvent::KeyPress, key, modifiers, text);
}

void tst_MainWindowGestures::releaseKey(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    sendKey(QEvent::KeyRelease, key, modifiers, text);
}

void tst_MainWindowGestures::pointAt(QPoint at)
{
    const QPointF inWindow = paper()->mapTo(m_window.get(), at);
    QWindowSystemInterface::handleMouseEvent(m_window->windowHandle(), inWindow, paper()->mapToGlobal(QPointF(at)),
                                             Qt::NoButton, Qt::NoButton, QEvent::MouseMove);
    QCoreApplication::processEvents();
}

void tst_MainWindowGestures::spaceHeldTakesTheViewToolAndGivesItBack()
{
    pointAt(paperPoint(0, 0));
    pressKey(Qt::Key_Space, {}, " ");
    QTRY_COMPARE(tool(), Tool::Type::ZPR);
    releaseKey(Qt::Key_Space, {}, " ");
    QCOMPARE(tool(), Tool::Type::Pen);
    QVERIFY(action(MR::Action::Draw)->isChecked());
}

void tst_MainWindowGestures::spaceCommitsTheStrokeFirst()
{
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(scene()->hasActiveStroke());
    pressKey(Qt::Key_Space, {}, " ");
    QVERIFY(!scene()->hasActiveStroke());
    QCOMPARE(scene()->undoStack()->count(), 1);
    releaseKey(Qt::Key_Space, {}, " ");
    release(paperPoint(50, 0));
    QCOMPARE(scene()->undoStack()->count(), 1);
}

void tst_MainWindowGestures::returnHeldFlipsBackAndReturns()
{
    makeCells("oooooo");
    scene()->setFrameRate(30);
    goTo(5);
    pressKey(Qt::Key_Return, {}, "\r");
    // Back to the beginning of the range, where it waits.
    QTRY_COMPARE(scene()->scrubFrame(), 1);
    QVERIFY(playback()->isActive());
    releaseKey(Qt::Key_Return, {}, "\r");
    QTRY_VERIFY(!playback()->isActive());
    QCOMPARE(scene()->activeFrame(), 5);
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_MainWindowGestures::shiftHeldScrubsAndLandsWhereItIsLetGo()
{
    makeCells("oooooo");
    goTo(2);
    pointAt(paperPoint(0, 0));
    pressKey(Qt::Key_Shift, Qt::ShiftModifier);
    QCOMPARE(tool(), Tool::Type::Scrubbing);
    press(paperPoint(0, 0));
    moveTo(paperPoint(40, 0)); // two frames and a half
    QCOMPARE(scene()->scrubFrame(), 4);
    QCOMPARE(scene()->activeFrame(), 2);
    release(paperPoint(40, 0));
    pointAt(paperPoint(40, 0));
    releaseKey(Qt::Key_Shift);
    QCOMPARE(scene()->activeFrame(), 4);
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(tool(), Tool::Type::Pen);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->activeFrame(), 2);
}

void tst_MainWindowGestures::escapeEndsPlayback()
{
    makeCells("ooo");
    action(MR::Action::Play)->trigger();
    QVERIFY(playback()->isActive());
    pressKey(Qt::Key_Escape);
    releaseKey(Qt::Key_Escape);
    QVERIFY(!playback()->isActive());
}

void tst_MainWindowGestures::spaceWhilePlayingStops()
{
    makeCells("ooo");
    action(MR::Action::Play)->trigger();
    pressKey(Qt::Key_Space, {}, " ");
    releaseKey(Qt::Key_Space, {}, " ");
    QVERIFY(!playback()->isActive());
    QCOMPARE(action(MR::Action::Play)->text(), QStringLiteral("Play"));
}

void tst_MainWindowGestures::frameTakenOffItsPegsIsOneUndoStep()
{
    const QTransform moved = QTransform::fromTranslate(20, -10);
    emit paper()->offPegsTransformChanged(moved);
    QCOMPARE(scene()->offPegsTransformOfFrame(1), moved);
    QCOMPARE(scene()->undoStack()->count(), 1);
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Take Frame Off the Pegs"));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->offPegsTransformOfFrame(1), QTransform());
}

void tst_MainWindowGestures::questionEndsAGesture()
{
    drawLine();
    pointAt(paperPoint(0, 0));
    pressKey(Qt::Key_Space, {}, " ");
    QTRY_COMPARE(tool(), Tool::Type::ZPR);
    MessageBoxAnswer answer(QMessageBox::Cancel);
    QVERIFY(!m_window->maybeSave());
    QCOMPARE(answer.count(), 1);
    QCOMPARE(tool(), Tool::Type::Pen);
    releaseKey(Qt::Key_Space, {}, " ");
    QCOMPARE(tool(), Tool::Type::Pen);
}

void tst_MainWindowGestures::anotherSceneEndsAGesture()
{
    makeCells("oooooo");
    goTo(5);
    pressKey(Qt::Key_Return, {}, "\r");
    QVERIFY(playback()->isActive());
    newCleanScene();
    QVERIFY(!playback()->isActive());
    releaseKey(Qt::Key_Return, {}, "\r");
    QVERIFY(!playback()->isActive());
}

void tst_MainWindowGestures::closingIsAskedForInTheMiddleOfAGesture()
{
    drawLine();
    pressKey(Qt::Key_Shift, Qt::ShiftModifier);
    QCOMPARE(tool(), Tool::Type::Scrubbing);
    MessageBoxAnswer answer(QMessageBox::Cancel);
    QVERIFY(!m_window->close());
    QCOMPARE(answer.count(), 1);
    QVERIFY(m_window->isVisible());
    QCOMPARE(tool(), Tool::Type::Pen);
    QVERIFY(!drawing().isEmpty());
    releaseKey(Qt::Key_Shift);
}

void tst_MainWindowGestures::busyWindowEndsThePanOfTheMiddleButton_data()
{
    QTest::addColumn<bool>("saves");
    QTest::newRow("new scene") << false;
    QTest::newRow("saving that is cancelled") << true;
}

void tst_MainWindowGestures::busyWindowEndsThePanOfTheMiddleButton()
{
    QFETCH(bool, saves);
    pointAt(paperPoint(0, 0));
    QTest::mousePress(paper(), Qt::MiddleButton, {}, paperPoint(0, 0));
    QCOMPARE(tool(), Tool::Type::Hand);
    if (saves) {
        FileDialogAnswer answer({});
        action(MR::Action::SaveSceneAs)->trigger();
        QCOMPARE(answer.count(), 1);
    } else {
        newCleanScene();
    }
    QTest::mouseRelease(paper(), Qt::MiddleButton, {}, paperPoint(0, 0));
    QCOMPARE(tool(), Tool::Type::Pen);
    QVERIFY(!action(MR::Action::Pan)->isChecked());
    QVERIFY(action(MR::Action::Pan)->isEnabled());
}

QTEST_MAIN(tst_MainWindowGestures)
#include "tst_mainwindowgestures.moc"
