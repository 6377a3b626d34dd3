// Which keys count for KeyGestures: whose they are, and what they are called.

#include "keygesturefixture.h"

#include "libmodel/tools/toolmanager.h"

#include <QDialog>
#include <QSignalSpy>
#include <QTest>

using Model::Tool;

Q_DECLARE_METATYPE(void (KeyGestures::*)())

class tst_KeyGestureKeys : public KeyGestureFixture
{
    Q_OBJECT

private slots:
    void whatAKeyShowsIsHiddenWhenTheWindowIsLeft_data();
    void whatAKeyShowsIsHiddenWhenTheWindowIsLeft();
    void settingsDoNotShowAfterTheWindowWasLeft();
    void keysOfATextFieldAreNotSeen();
    void keysOfADialogAreNotSeen();
    void keysOfAMenuAreNotSeen();
    void buttonIsPressedByItsKeys();
    void lettersOfOtherScriptsCountByTheirPlace();
    void keyWhoseNameChangesIsStillTheKey();
    void modifierReleasedUnseenIsForgotten();
    void repetitionBegunElsewhereIsIgnored();
    void repetitionIsNoShortcutOfAModifierThatJoined();
    void repetitionInHalvesIsNoRelease_data();
    void repetitionInHalvesIsNoRelease();
    void releaseAfterLongIsBelievedSoon();
    void releaseIsBelievedBeforeThePenComesDown();
    void pressThatComesLaterIsAPress();
    void settingsDoNotShowWhileAReleaseIsInDoubt();
    void drawingsStepWithEveryHalvedRepetition();
};

void tst_KeyGestureKeys::whatAKeyShowsIsHiddenWhenTheWindowIsLeft_data()
{
    using Signal = void (KeyGestures::*)();
    QTest::addColumn<int>("key");
    QTest::addColumn<Signal>("hiding");
    QTest::newRow("draw settings") << int(Qt::Key_D) << &KeyGestures::settingsHidingRequested;
    QTest::newRow("erase settings") << int(Qt::Key_E) << &KeyGestures::settingsHidingRequested;
    QTest::newRow("speed dial") << int(Qt::Key_S) << &KeyGestures::speedDialHidingRequested;
    QTest::newRow("palette") << int(Qt::Key_C) << &KeyGestures::paletteHidingRequested;
}

void tst_KeyGestureKeys::whatAKeyShowsIsHiddenWhenTheWindowIsLeft()
{
    using Signal = void (KeyGestures::*)();
    QFETCH(int, key);
    QFETCH(Signal, hiding);
    m_stage->press(key);
    QTest::qWait(300);
    QSignalSpy hidings(m_stage->gestures.get(), hiding);
    QDialog dialog(&m_stage->window);
    dialog.open();
    QCOMPARE(hidings.count(), 1);
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    dialog.close();
    m_stage->window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_stage->window));
    m_stage->repeat(key);
    m_stage->release(key);
    QCOMPARE(hidings.count(), 1);
}

void tst_KeyGestureKeys::settingsDoNotShowAfterTheWindowWasLeft()
{
    QSignalSpy draw(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    m_stage->press(Qt::Key_D);
    m_stage->field->setFocus();
    QTest::qWait(300);
    QCOMPARE(draw.count(), 0);
    m_stage->release(Qt::Key_D);
}

void tst_KeyGestureKeys::keysOfATextFieldAreNotSeen()
{
    m_stage->field->setFocus();
    m_stage->field->clear();
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::settingsHidingRequested);
    for (const int key : {int(Qt::Key_Z), int(Qt::Key_H), int(Qt::Key_E), int(Qt::Key_Space), int(Qt::Key_Shift)}) {
        m_stage->press(key);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        m_stage->release(key);
    }
    m_stage->tap(Qt::Key_Return);
    m_stage->tap(Qt::Key_Escape);
    QCOMPARE(m_stage->field->text(), QStringLiteral("zhe "));
    QVERIFY(!m_stage->playback->isActive());
    QCOMPARE(hidings.count(), 0);
}

void tst_KeyGestureKeys::keysOfADialogAreNotSeen()
{
    QDialog dialog(&m_stage->window);
    dialog.open();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    for (const int key : {int(Qt::Key_Z), int(Qt::Key_Space), int(Qt::Key_Shift)}) {
        QTest::keyPress(&dialog, Qt::Key(key));
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        QTest::keyRelease(&dialog, Qt::Key(key));
    }
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
    m_stage->window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_stage->window));
}

void tst_KeyGestureKeys::keysOfAMenuAreNotSeen()
{
    m_stage->menu->popup(m_stage->window.mapToGlobal(QPoint(20, 20)));
    QVERIFY(QTest::qWaitForWindowExposed(m_stage->menu));
    for (const int key : {int(Qt::Key_Z), int(Qt::Key_Shift)}) {
        m_stage->press(key);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        m_stage->release(key);
    }
    QTest::keyClick(m_stage->menu, Qt::Key_Escape);
    QVERIFY(!m_stage->menu->isVisible());
}

void tst_KeyGestureKeys::buttonIsPressedByItsKeys()
{
    m_stage->button->setFocus();
    QSignalSpy clicks(m_stage->button, &QPushButton::clicked);
    m_stage->tap(Qt::Key_Space);
    QCOMPARE(clicks.count(), 1);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->press(Qt::Key_H);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->release(Qt::Key_H);
}

void tst_KeyGestureKeys::lettersOfOtherScriptsCountByTheirPlace()
{
    // What the key right of Tab and two further sends on a Russian keyboard: Cyrillic U.
    const StageKey letter{0x0423, 26};
    m_stage->tap(letter);
    QCOMPARE(KeyStage::tool(), Tool::Type::Eraser);
    // French keyboards have A there where others have Q, and a letter's name is what counts.
    QSignalSpy drawings(m_stage->gestures.get(), &KeyGestures::drawingStepRequested);
    m_stage->tap({Qt::Key_A, 24});
    QCOMPARE(drawings.count(), 0);
    m_stage->tap({Qt::Key_Q, 38});
    QCOMPARE(drawings.count(), 1);
}

void tst_KeyGestureKeys::keyWhoseNameChangesIsStillTheKey()
{
    m_stage->press({Qt::Key_H, 43});
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    // The layout was changed meanwhile: Cyrillic Er.
    m_stage->release({0x0420, 43});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureKeys::modifierReleasedUnseenIsForgotten()
{
    m_stage->press({Qt::Key_Alt, 64});
    m_stage->loseModifiers();
    m_stage->press({Qt::Key_Control, 37});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->press({Qt::Key_Alt, 64});
    QCOMPARE(KeyStage::tool(), Tool::Type::OffPegs);
    m_stage->loseModifiers();
    m_stage->tap({Qt::Key_F7, 73});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureKeys::repetitionBegunElsewhereIsIgnored()
{
    QSignalSpy drawings(m_stage->gestures.get(), &KeyGestures::drawingStepRequested);
    m_stage->field->setFocus();
    m_stage->press(Qt::Key_W);
    m_stage->paper->setFocus();
    m_stage->repeat(Qt::Key_W);
    m_stage->repeat(Qt::Key_H);
    QCOMPARE(drawings.count(), 0);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_W);
}

void tst_KeyGestureKeys::repetitionIsNoShortcutOfAModifierThatJoined()
{
    QSignalSpy duplications(KeyStage::action(MR::Action::DuplicateActiveLayer), &QAction::triggered);
    m_stage->press(Qt::Key_D);
    m_stage->press(Qt::Key_Control);
    m_stage->repeat(Qt::Key_D);
    m_stage->release(Qt::Key_D);
    m_stage->release(Qt::Key_Control);
    QCOMPARE(duplications.count(), 0);
}

void tst_KeyGestureKeys::repetitionInHalvesIsNoRelease_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<quint32>("place");
    QTest::addColumn<Tool::Type>("tool");
    QTest::newRow("hand") << int(Qt::Key_H) << 43U << Tool::Type::Hand;
    QTest::newRow("all views") << int(Qt::Key_Space) << 65U << Tool::Type::ZPR;
    QTest::newRow("flip") << int(Qt::Key_Return) << 36U << Tool::Type::Pen;
}

void tst_KeyGestureKeys::repetitionInHalvesIsNoRelease()
{
    QFETCH(int, key);
    QFETCH(quint32, place);
    QFETCH(Tool::Type, tool);
    const StageKey held{key, place};
    const bool isFlip = key == Qt::Key_Return;
    // A pointer that the window system has at that place already would send nothing.
    m_stage->hover({30, 30});
    m_stage->press(held);
    QCOMPARE(KeyStage::tool(), tool);
    m_stage->wait();
    QSignalSpy changes(Model::ToolManager::instance(), &Model::ToolManager::currentToolTypeChanged);
    QSignalSpy runs(m_stage->playback.get(), &PlaybackController::playbackChanged);
    for (int i = 0; i < 3; ++i)
        m_stage->repeatInHalves(held);
    QTest::qWait(60);
    QCOMPARE(KeyStage::tool(), tool);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(runs.count(), 0);
    QCOMPARE(m_stage->playback->isActive(), isFlip);
    m_stage->release(held);
    QTRY_COMPARE(KeyStage::tool(), Tool::Type::Pen);
    QTRY_VERIFY(!m_stage->playback->isActive());
}

void tst_KeyGestureKeys::releaseAfterLongIsBelievedSoon()
{
    const StageKey held{Qt::Key_H, 43};
    m_stage->press(held);
    m_stage->wait();
    m_stage->release(held);
    QTRY_COMPARE_WITH_TIMEOUT(KeyStage::tool(), Tool::Type::Pen, 500);
    // A press that comes later is a press.
    m_stage->press(held);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->release(held);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureKeys::releaseIsBelievedBeforeThePenComesDown()
{
    const StageKey held{Qt::Key_H, 43};
    m_stage->press(held);
    m_stage->wait();
    m_stage->releaseAtOnce(held);
    m_stage->mousePress({0, 0});
    QVERIFY(m_stage->scene()->hasActiveStroke());
    m_stage->mouseRelease({0, 0});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureKeys::pressThatComesLaterIsAPress()
{
    const StageKey held{Qt::Key_H, 43};
    m_stage->press(held);
    m_stage->wait();
    QSignalSpy changes(Model::ToolManager::instance(), &Model::ToolManager::currentToolTypeChanged);
    m_stage->releaseAtOnce(held);
    m_stage->press(held);
    QTest::qWait(60);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    QCOMPARE(changes.count(), 2);
    m_stage->release(held);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureKeys::settingsDoNotShowWhileAReleaseIsInDoubt()
{
    const StageKey held{Qt::Key_D, 40};
    QSignalSpy settings(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    m_stage->press(held);
    QTest::qWait(190);
    m_stage->wait();
    m_stage->releaseAtOnce(held);
    QTest::qWait(100);
    QCOMPARE(settings.count(), 0);
}

void tst_KeyGestureKeys::drawingsStepWithEveryHalvedRepetition()
{
    const StageKey held{Qt::Key_W, 25};
    QSignalSpy steps(m_stage->gestures.get(), &KeyGestures::drawingStepRequested);
    m_stage->press(held);
    m_stage->wait();
    m_stage->repeatInHalves(held);
    m_stage->repeatInHalves(held);
    QCOMPARE(steps.count(), 3);
    m_stage->release(held);
    QTest::qWait(60);
    QCOMPARE(steps.count(), 3);
}

QTEST_MAIN(tst_KeyGestureKeys)
#include "tst_keygesturekeys.moc"
