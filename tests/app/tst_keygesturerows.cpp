// The rows of KeyGestures' table, one by one, but 12 and 13: those of the modifiers are in tst_keygesturemodifiers. How
// gestures begin and end is tested in tst_keygestures.

#include "keygesturefixture.h"

#include <QCursor>
#include <QSignalSpy>
#include <QTest>

using Model::Tool;

namespace {

/// As long as settings are waited for, and a little.
constexpr int beyondHoldMs = 300;
constexpr quint32 capsLock = 0x100;

} // namespace

class tst_KeyGestureRows : public KeyGestureFixture
{
    Q_OBJECT

private slots:
    void row1EscapeStopsTheRun();
    void row1EscapeLeavesTheViewTools_data();
    void row1EscapeLeavesTheViewTools();
    void row1EscapeHidesTheSettingsFirst();
    void row1EscapeGivesTheLassoUp();
    void row1EscapeIsAShortcutWhereItHasNothingToEnd();
    void row1EscapeUnderSpaceIsAShortcut();
    void row2ReturnStampsAFloatingSelection();
    void row3ReturnStopsPlayback();
    void row3ReturnInAFlipLetsItTurnRound();
    void row4ReturnFlipsBackAndItsReleaseReturns_data();
    void row4ReturnFlipsBackAndItsReleaseReturns();
    void row4NoFlipWhereItsActionIsDisabled();
    void row4FlipReturnsWhenTheWindowIsLeft();
    void row5SpaceStopsARun();
    void row6SpaceAwayFromThePaperWaitsAWhile();
    void row6PointerThatComesToThePaperNeedsNoWaiting();
    void row6SpaceWithModifiersIsAShortcut();
    void row7SettingsShowAfterAWhile_data();
    void row7SettingsShowAfterAWhile();
    void row7ShortPressShowsNoSettings();
    void row7SettingsStayAwayFromALineBegun();
    void row7KeyWithinTheWhileKeepsTheSettingsAway_data();
    void row7KeyWithinTheWhileKeepsTheSettingsAway();
    void row7OneKeyTakesOverFromTheOther();
    void row7LettersWithModifiersAreShortcuts();
    void row8StepsAlongTheLayer_data();
    void row8StepsAlongTheLayer();
    void row8StepsRepeatWithTheKey();
    void row8NoStepWhereItsActionIsDisabled();
    void row9SpeedDials();
    void row10KeyLaysItsToolDown();
    void row11PaletteIsHiddenOnRelease();
    void row14OtherKeysHideTheSettings();
};

void tst_KeyGestureRows::row1EscapeStopsTheRun()
{
    KeyStage::action(MR::Action::Pan)->trigger();
    m_stage->playback->startPlayback();
    m_stage->tap(Qt::Key_Escape);
    QVERIFY(!m_stage->playback->isActive());
    // One thing at a time.
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_KeyGestureRows::row1EscapeLeavesTheViewTools_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::newRow("pan") << MR::Action::Pan;
    QTest::newRow("zoom") << MR::Action::Zoom;
    QTest::newRow("rotate") << MR::Action::Rotate;
    QTest::newRow("off pegs") << MR::Action::OffPegs;
    QTest::newRow("all in one") << MR::Action::ZPR;
}

void tst_KeyGestureRows::row1EscapeLeavesTheViewTools()
{
    QFETCH(MR::Action, which);
    m_stage->reset(Tool::Type::Eraser);
    KeyStage::action(which)->trigger();
    QVERIFY(KeyStage::tool() != Tool::Type::Eraser);
    m_stage->tap(Qt::Key_Escape);
    QCOMPARE(KeyStage::tool(), Tool::Type::Eraser);
}

void tst_KeyGestureRows::row1EscapeHidesTheSettingsFirst()
{
    KeyStage::action(MR::Action::Pan)->trigger();
    m_stage->press(Qt::Key_D);
    KeyStage::action(MR::Action::Pan)->trigger();
    QTest::qWait(beyondHoldMs);
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::settingsHidingRequested);
    m_stage->tap(Qt::Key_Escape);
    QVERIFY(hidings.count() > 0);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->tap(Qt::Key_Escape);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_D);
}

void tst_KeyGestureRows::row1EscapeGivesTheLassoUp()
{
    m_stage->reset(Tool::Type::Lasso);
    QSignalSpy drops(KeyStage::action(MR::Action::DropFloatingSelection), &QAction::triggered);
    QSignalSpy lassos(m_stage->paper, &UI::Paper::lassoingCompleted);
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({50, 0});
    m_stage->mouseMove({50, 50});
    QVERIFY(m_stage->paper->isPickingUp());
    m_stage->tap(Qt::Key_Escape);
    QVERIFY(!m_stage->paper->isPickingUp());
    m_stage->mouseMove({0, 50});
    m_stage->mouseRelease({0, 0});
    QCOMPARE(lassos.count() + drops.count(), 0);
    QCOMPARE(KeyStage::tool(), Tool::Type::Lasso);
    // There is nothing more to give up.
    m_stage->tap(Qt::Key_Escape);
    QCOMPARE(drops.count(), 1);
}

void tst_KeyGestureRows::row1EscapeIsAShortcutWhereItHasNothingToEnd()
{
    QSignalSpy drops(KeyStage::action(MR::Action::DropFloatingSelection), &QAction::triggered);
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::settingsHidingRequested);
    m_stage->tap(Qt::Key_Escape);
    QCOMPARE(drops.count(), 1);
    QCOMPARE(hidings.count(), 1);
}

void tst_KeyGestureRows::row1EscapeUnderSpaceIsAShortcut()
{
    QSignalSpy drops(KeyStage::action(MR::Action::DropFloatingSelection), &QAction::triggered);
    m_stage->press(Qt::Key_Space);
    m_stage->tap(Qt::Key_Escape);
    QCOMPARE(drops.count(), 1);
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureRows::row2ReturnStampsAFloatingSelection()
{
    m_stage->reset(Tool::Type::FloatingSelection);
    QSignalSpy stamps(KeyStage::action(MR::Action::StampFloatingSelection), &QAction::triggered);
    m_stage->tap(Qt::Key_Return);
    m_stage->tap(Qt::Key_Enter);
    QCOMPARE(stamps.count(), 2);
    QVERIFY(!m_stage->playback->isActive());
}

void tst_KeyGestureRows::row3ReturnStopsPlayback()
{
    m_stage->playback->startPlayback();
    m_stage->press(Qt::Key_Return);
    QVERIFY(!m_stage->playback->isActive());
    m_stage->release(Qt::Key_Return);
    QVERIFY(!m_stage->playback->isActive());
}

void tst_KeyGestureRows::row3ReturnInAFlipLetsItTurnRound()
{
    m_stage->playback->setFrameRate(4.0);
    m_stage->press(Qt::Key_Return);
    QTRY_COMPARE(m_stage->scene()->scrubFrame(), 3);
    m_stage->release(Qt::Key_Return);
    QVERIFY(m_stage->playback->isFlipping());
    // Without a second press the flip would end at frame 5, where it began.
    m_stage->press(Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(m_stage->scene()->scrubFrame(), 6, 5000);
    m_stage->release(Qt::Key_Return);
    m_stage->playback->stopPlayback();
    m_stage->playback->setFrameRate(12.0);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_KeyGestureRows::row4ReturnFlipsBackAndItsReleaseReturns_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
}

void tst_KeyGestureRows::row4ReturnFlipsBackAndItsReleaseReturns()
{
    QFETCH(int, key);
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({20, 0});
    m_stage->press(key);
    QCOMPARE(m_stage->commits, 1);
    QVERIFY(m_stage->playback->isFlipping());
    QTRY_VERIFY(m_stage->scene()->scrubFrame() >= 1);
    QVERIFY(m_stage->scene()->scrubFrame() < 5);
    m_stage->repeat(key);
    QTRY_COMPARE(m_stage->scene()->scrubFrame(), 1);
    m_stage->release(key);
    QTRY_VERIFY(!m_stage->playback->isActive());
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
    m_stage->mouseRelease({20, 0});
}

void tst_KeyGestureRows::row4NoFlipWhereItsActionIsDisabled()
{
    KeyStage::action(MR::Action::ReturnFlip)->setEnabled(false);
    m_stage->press(Qt::Key_Return);
    const bool flips = m_stage->playback->isActive();
    m_stage->release(Qt::Key_Return);
    KeyStage::action(MR::Action::ReturnFlip)->setEnabled(true);
    QVERIFY(!flips);
}

void tst_KeyGestureRows::row4FlipReturnsWhenTheWindowIsLeft()
{
    m_stage->press(Qt::Key_Return);
    QTRY_VERIFY(m_stage->scene()->scrubFrame() >= 1);
    m_stage->field->setFocus();
    QTRY_VERIFY(!m_stage->playback->isActive());
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
    m_stage->release(Qt::Key_Return);
}

void tst_KeyGestureRows::row5SpaceStopsARun()
{
    QSignalSpy plays(KeyStage::action(MR::Action::Play), &QAction::triggered);
    m_stage->playback->startPlayback();
    m_stage->press(Qt::Key_Space);
    QCOMPARE(plays.count(), 1);
    QVERIFY(!m_stage->playback->isActive());
    m_stage->repeat(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(plays.count(), 1);
}

void tst_KeyGestureRows::row6SpaceAwayFromThePaperWaitsAWhile()
{
    m_stage->hoverElsewhere();
    m_stage->press(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QTest::qWait(beyondHoldMs);
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->tap(Qt::Key_Space);
    QTest::qWait(beyondHoldMs);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureRows::row6PointerThatComesToThePaperNeedsNoWaiting()
{
    m_stage->hoverElsewhere();
    m_stage->press(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    // As a pen comes down from nowhere.
    m_stage->mousePress({0, 0});
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    QVERIFY(!m_stage->scene()->hasActiveStroke());
    m_stage->mouseMove({20, 0});
    m_stage->mouseRelease({20, 0});
    QCOMPARE(m_stage->commits, 0);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureRows::row6SpaceWithModifiersIsAShortcut()
{
    QSignalSpy backlight(KeyStage::action(MR::Action::BacklightOnOff), &QAction::triggered);
    m_stage->press(Qt::Key_Shift);
    m_stage->tap(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Shift);
    QCOMPARE(backlight.count(), 1);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureRows::row7SettingsShowAfterAWhile_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Tool::Type>("tool");
    QTest::newRow("draw") << int(Qt::Key_D) << Tool::Type::Pen;
    QTest::newRow("erase") << int(Qt::Key_E) << Tool::Type::Eraser;
}

void tst_KeyGestureRows::row7SettingsShowAfterAWhile()
{
    QFETCH(int, key);
    QFETCH(Tool::Type, tool);
    m_stage->reset(Tool::Type::Lasso);
    const bool draws = tool == Tool::Type::Pen;
    QSignalSpy draw(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    QSignalSpy erase(m_stage->gestures.get(), &KeyGestures::eraseSettingsRequested);
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::settingsHidingRequested);
    const QPoint place = QCursor::pos();
    m_stage->press(key);
    QCOMPARE(KeyStage::tool(), tool);
    QCOMPARE(draw.count() + erase.count(), 0);
    QCursor::setPos(place + QPoint(40, 0));
    m_stage->repeat(key);
    QTRY_COMPARE(draw.count() + erase.count(), 1);
    QCOMPARE(draw.count(), draws ? 1 : 0);
    QCOMPARE((draws ? draw : erase).first().first().toPoint(), place);
    QCOMPARE(hidings.count(), 0);
    m_stage->release(key);
    QCOMPARE(hidings.count(), 1);
    QCOMPARE(KeyStage::tool(), tool);
}

void tst_KeyGestureRows::row7ShortPressShowsNoSettings()
{
    QSignalSpy draw(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    m_stage->tap(Qt::Key_D);
    QTest::qWait(beyondHoldMs);
    QCOMPARE(draw.count(), 0);
}

void tst_KeyGestureRows::row7SettingsStayAwayFromALineBegun()
{
    QSignalSpy draw(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    m_stage->press(Qt::Key_D);
    m_stage->mousePress({0, 0});
    QTest::qWait(beyondHoldMs);
    QCOMPARE(draw.count(), 0);
    m_stage->mouseRelease({0, 0});
    m_stage->release(Qt::Key_D);
}

void tst_KeyGestureRows::row7KeyWithinTheWhileKeepsTheSettingsAway_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("escape") << int(Qt::Key_Escape);
    QTest::newRow("another") << int(Qt::Key_F7);
}

void tst_KeyGestureRows::row7KeyWithinTheWhileKeepsTheSettingsAway()
{
    QFETCH(int, key);
    QSignalSpy draw(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    m_stage->press(Qt::Key_D);
    m_stage->tap(key);
    QTest::qWait(beyondHoldMs);
    QCOMPARE(draw.count(), 0);
    m_stage->release(Qt::Key_D);
}

void tst_KeyGestureRows::row7OneKeyTakesOverFromTheOther()
{
    QSignalSpy draw(m_stage->gestures.get(), &KeyGestures::drawSettingsRequested);
    QSignalSpy erase(m_stage->gestures.get(), &KeyGestures::eraseSettingsRequested);
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::settingsHidingRequested);
    m_stage->press(Qt::Key_D);
    QTRY_COMPARE(draw.count(), 1);
    m_stage->press(Qt::Key_E);
    QCOMPARE(hidings.count(), 1);
    m_stage->release(Qt::Key_D);
    QTRY_COMPARE(erase.count(), 1);
    m_stage->release(Qt::Key_E);
    QCOMPARE(hidings.count(), 2);
    QCOMPARE(KeyStage::tool(), Tool::Type::Eraser);
}

void tst_KeyGestureRows::row7LettersWithModifiersAreShortcuts()
{
    QSignalSpy resets(KeyStage::action(MR::Action::DuplicateActiveLayer), &QAction::triggered);
    m_stage->reset(Tool::Type::Eraser);
    m_stage->press(Qt::Key_Control);
    m_stage->tap(Qt::Key_D);
    m_stage->release(Qt::Key_Control);
    QCOMPARE(resets.count(), 1);
    QCOMPARE(KeyStage::tool(), Tool::Type::Eraser);
}

void tst_KeyGestureRows::row8StepsAlongTheLayer_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("withShift");
    QTest::addColumn<bool>("withCapsLock");
    QTest::addColumn<int>("direction");
    QTest::addColumn<bool>("byKeyDrawings");
    for (const bool back : {true, false}) {
        const int key = back ? Qt::Key_Q : Qt::Key_W;
        const int direction = back ? -1 : 1;
        const char *name = back ? "q" : "w";
        QTest::addRow("%s", name) << key << false << false << direction << false;
        QTest::addRow("shift %s", name) << key << true << false << direction << true;
        QTest::addRow("caps lock %s", name) << key << false << true << direction << true;
        QTest::addRow("shift and caps lock %s", name) << key << true << true << direction << false;
    }
}

void tst_KeyGestureRows::row8StepsAlongTheLayer()
{
    QFETCH(int, key);
    QFETCH(bool, withShift);
    QFETCH(bool, withCapsLock);
    QFETCH(int, direction);
    QFETCH(bool, byKeyDrawings);
    QSignalSpy drawings(m_stage->gestures.get(), &KeyGestures::drawingStepRequested);
    QSignalSpy keyDrawings(m_stage->gestures.get(), &KeyGestures::keyDrawingStepRequested);
    QSignalSpy announcements(m_stage->gestures.get(), &KeyGestures::aboutToAct);
    if (withShift)
        m_stage->press(Qt::Key_Shift);
    announcements.clear();
    m_stage->tap({key, 0, withCapsLock ? capsLock : 0});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    if (withShift)
        m_stage->release(Qt::Key_Shift);
    QCOMPARE(announcements.count(), 1);
    QCOMPARE(drawings.count(), byKeyDrawings ? 0 : 1);
    QCOMPARE(keyDrawings.count(), byKeyDrawings ? 1 : 0);
    QCOMPARE((byKeyDrawings ? keyDrawings : drawings).first().first().toInt(), direction);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_KeyGestureRows::row8StepsRepeatWithTheKey()
{
    QSignalSpy drawings(m_stage->gestures.get(), &KeyGestures::drawingStepRequested);
    m_stage->press(Qt::Key_W);
    m_stage->press({Qt::Key_W}, true);
    m_stage->release({Qt::Key_W}, true);
    m_stage->press({Qt::Key_W}, true);
    m_stage->release(Qt::Key_W);
    QCOMPARE(drawings.count(), 3);
}

void tst_KeyGestureRows::row8NoStepWhereItsActionIsDisabled()
{
    QSignalSpy drawings(m_stage->gestures.get(), &KeyGestures::drawingStepRequested);
    KeyStage::action(MR::Action::StepBackSkippingLocalClones)->setEnabled(false);
    m_stage->tap(Qt::Key_Q);
    KeyStage::action(MR::Action::StepBackSkippingLocalClones)->setEnabled(true);
    QCOMPARE(drawings.count(), 0);
}

void tst_KeyGestureRows::row9SpeedDials()
{
    QAction *first = KeyStage::action(MR::Action::PrimarySpeedDial);
    QAction *second = KeyStage::action(MR::Action::SecondarySpeedDial);
    QSignalSpy firstShown(first, &QAction::triggered);
    QSignalSpy secondShown(second, &QAction::triggered);
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::speedDialHidingRequested);
    m_stage->press(Qt::Key_S);
    m_stage->repeat(Qt::Key_S);
    QCOMPARE(firstShown.count(), 1);
    QCOMPARE(hidings.count(), 0);
    m_stage->release(Qt::Key_S);
    QCOMPARE(hidings.count(), 1);
    m_stage->press(Qt::Key_Shift);
    m_stage->press(Qt::Key_S);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Shift);
    QCOMPARE(hidings.count(), 1);
    m_stage->release(Qt::Key_S);
    QCOMPARE(hidings.count(), 2);
    QCOMPARE(firstShown.count(), 1);
    QCOMPARE(secondShown.count(), 1);
}

void tst_KeyGestureRows::row10KeyLaysItsToolDown()
{
    KeyStage::action(MR::Action::Zoom)->trigger();
    QCOMPARE(KeyStage::tool(), Tool::Type::Zoom);
    m_stage->press(Qt::Key_Z);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Z);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureRows::row11PaletteIsHiddenOnRelease()
{
    QAction *palette = KeyStage::action(MR::Action::Palette);
    palette->setEnabled(true);
    QSignalSpy shown(palette, &QAction::triggered);
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::paletteHidingRequested);
    m_stage->press(Qt::Key_C);
    QCOMPARE(shown.count(), 1);
    QCOMPARE(hidings.count(), 0);
    m_stage->release(Qt::Key_C);
    palette->setEnabled(false);
    QCOMPARE(hidings.count(), 1);
    m_stage->tap(Qt::Key_C);
    QCOMPARE(shown.count(), 1);
}

void tst_KeyGestureRows::row14OtherKeysHideTheSettings()
{
    QSignalSpy hidings(m_stage->gestures.get(), &KeyGestures::settingsHidingRequested);
    m_stage->tap(Qt::Key_G);
    QCOMPARE(hidings.count(), 1);
    m_stage->tap(Qt::Key_F7);
    QCOMPARE(hidings.count(), 2);
    m_stage->press(Qt::Key_Control);
    m_stage->tap(Qt::Key_F7);
    m_stage->release(Qt::Key_Control);
    QCOMPARE(hidings.count(), 2);
    KeyStage::action(MR::Action::GridOnOff)->setChecked(false);
}

QTEST_MAIN(tst_KeyGestureRows)
#include "tst_keygesturerows.moc"
