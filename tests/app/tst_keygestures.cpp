// How gestures begin and end, whatever comes between. What each key means is tested in tst_keygesturerows and
// tst_keygesturemodifiers.

#include "keygesturefixture.h"

#include "libmodel/tools/toolmanager.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>

#include <vector>

using Model::Tool;

namespace {

/// A gesture that borrows a tool while its keys are down.
struct Gesture
{
    const char *name;
    std::vector<StageKey> keys;
    Tool::Type tool;
};

// Scan codes as of a keyboard under X11, so that left and right can be told apart.
constexpr StageKey leftShift{Qt::Key_Shift, 50};
constexpr StageKey rightShift{Qt::Key_Shift, 62};
constexpr StageKey leftControl{Qt::Key_Control, 37};
constexpr StageKey rightControl{Qt::Key_Control, 105};
constexpr StageKey leftAlt{Qt::Key_Alt, 64};

const std::vector<Gesture> &toolGestures()
{
    static const std::vector<Gesture> all = {
        {"space", {{Qt::Key_Space, 65}}, Tool::Type::ZPR},
        {"h", {{Qt::Key_H, 43}}, Tool::Type::Hand},
        {"z", {{Qt::Key_Z, 52}}, Tool::Type::Zoom},
        {"r", {{Qt::Key_R, 27}}, Tool::Type::Rotate},
        {"control, alt", {leftControl, leftAlt}, Tool::Type::OffPegs},
        {"alt, control", {leftAlt, leftControl}, Tool::Type::OffPegs},
        {"right control, alt", {rightControl, leftAlt}, Tool::Type::OffPegs},
        {"shift", {leftShift}, Tool::Type::Scrubbing},
        {"right shift", {rightShift}, Tool::Type::Scrubbing},
    };
    return all;
}

/// Ways in which the release of a key goes elsewhere.
enum class Interruption { WindowInactive, TextField, Dialog, Menu, WindowHidden, SceneEnds };

} // namespace

Q_DECLARE_METATYPE(Interruption)

class tst_KeyGestures : public KeyGestureFixture
{
    Q_OBJECT

private slots:
    void toolIsBorrowedWhileTheKeyIsDown_data() { gesturesOverTools(); }
    void toolIsBorrowedWhileTheKeyIsDown();
    void autoRepeatChangesNothing_data() { gesturesOverTools(); }
    void autoRepeatChangesNothing();
    void keysMayBeReleasedInAnyOrder_data();
    void keysMayBeReleasedInAnyOrder();
    void heldToolsUncoverEachOther();
    void toolBorrowedByItsActionIsThereAgain();
    void chosenToolEndsWhatIsHeld();
    void gestureEndsWhereItsReleaseIsNotSeen_data();
    void gestureEndsWhereItsReleaseIsNotSeen();
    void keyInTheMidstOfAContact_data() { gestures(); }
    void keyInTheMidstOfAContact();
    void contactInTheMidstOfAKey_data() { gestures(); }
    void contactInTheMidstOfAKey();
    void keyThatEndsBeforeTheContact_data() { gestures(); }
    void keyThatEndsBeforeTheContact();
    void strokeIsCommittedAheadOfTheTool_data() { gestures(); }
    void strokeIsCommittedAheadOfTheTool();
    void middleButtonKeepsItsTool();
    void middleButtonGivesTheToolOfAnActionBack();
    void disabledActionTakesNoToolUp_data();
    void disabledActionTakesNoToolUp();
    void lostReleaseIsMadeUpForByTheNextPress();

private:
    void gestures();
    void gesturesOverTools();
    void interrupt(Interruption interruption);
    void pressAll(const Gesture &gesture);
    void releaseAll(const Gesture &gesture);
};

void tst_KeyGestures::gestures()
{
    QTest::addColumn<size_t>("index");
    for (size_t i = 0; i < toolGestures().size(); ++i)
        QTest::newRow(toolGestures()[i].name) << i;
}

void tst_KeyGestures::gesturesOverTools()
{
    QTest::addColumn<size_t>("index");
    QTest::addColumn<Tool::Type>("base");
    for (size_t i = 0; i < toolGestures().size(); ++i) {
        for (const auto &[name, base] :
             {std::pair("pen", Tool::Type::Pen), std::pair("eraser", Tool::Type::Eraser),
              std::pair("lasso", Tool::Type::Lasso), std::pair("cutter", Tool::Type::Cutter)})
            QTest::addRow("%s over %s", toolGestures()[i].name, name) << i << base;
    }
}

void tst_KeyGestures::pressAll(const Gesture &gesture)
{
    for (const StageKey &key : gesture.keys)
        m_stage->press(key);
}

void tst_KeyGestures::releaseAll(const Gesture &gesture)
{
    for (const StageKey &key : gesture.keys)
        m_stage->release(key);
}

void tst_KeyGestures::toolIsBorrowedWhileTheKeyIsDown()
{
    QFETCH(size_t, index);
    QFETCH(Tool::Type, base);
    const Gesture &gesture = toolGestures()[index];
    m_stage->reset(base);
    for (int i = 0; i < 2; ++i) {
        pressAll(gesture);
        QCOMPARE(KeyStage::tool(), gesture.tool);
        // The first of two keys that goes ends it.
        m_stage->release(gesture.keys.front());
        QCOMPARE(KeyStage::tool(), base);
        for (size_t key = 1; key < gesture.keys.size(); ++key)
            m_stage->release(gesture.keys[key]);
        QCOMPARE(KeyStage::tool(), base);
    }
}

void tst_KeyGestures::autoRepeatChangesNothing()
{
    QFETCH(size_t, index);
    QFETCH(Tool::Type, base);
    const Gesture &gesture = toolGestures()[index];
    m_stage->reset(base);
    pressAll(gesture);
    m_stage->repeat(gesture.keys.back());
    QCOMPARE(KeyStage::tool(), gesture.tool);
    releaseAll(gesture);
    QCOMPARE(KeyStage::tool(), base);
}

void tst_KeyGestures::keysMayBeReleasedInAnyOrder_data()
{
    QTest::addColumn<size_t>("first");
    QTest::addColumn<size_t>("second");
    for (size_t first = 0; first < toolGestures().size(); ++first) {
        for (size_t second = 0; second < toolGestures().size(); ++second) {
            if (first != second)
                QTest::addRow("%s; %s", toolGestures()[first].name, toolGestures()[second].name) << first << second;
        }
    }
}

void tst_KeyGestures::keysMayBeReleasedInAnyOrder()
{
    QFETCH(size_t, first);
    QFETCH(size_t, second);
    const Gesture &outer = toolGestures()[first];
    const Gesture &inner = toolGestures()[second];
    for (const bool innerGoesFirst : {true, false}) {
        pressAll(outer);
        pressAll(inner);
        releaseAll(innerGoesFirst ? inner : outer);
        releaseAll(innerGoesFirst ? outer : inner);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        QVERIFY(!m_stage->scrubbing->isRunning());
        QCOMPARE(m_stage->scene()->activeFrame(), 5);
    }
}

void tst_KeyGestures::heldToolsUncoverEachOther()
{
    m_stage->press(Qt::Key_H);
    m_stage->press(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    m_stage->press(Qt::Key_Z);
    QCOMPARE(KeyStage::tool(), Tool::Type::Zoom);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Zoom);
    m_stage->release(Qt::Key_Z);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->release(Qt::Key_H);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);

    m_stage->press(Qt::Key_Space);
    m_stage->press(leftControl);
    m_stage->press(leftAlt);
    QCOMPARE(KeyStage::tool(), Tool::Type::OffPegs);
    m_stage->release(leftControl);
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    m_stage->release(leftAlt);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestures::toolBorrowedByItsActionIsThereAgain()
{
    KeyStage::action(MR::Action::Pan)->trigger();
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    for (const Gesture &gesture : toolGestures()) {
        // Row 10: the tool's own key lays it down.
        if (gesture.tool == Tool::Type::Hand)
            continue;
        pressAll(gesture);
        QCOMPARE(KeyStage::tool(), gesture.tool);
        releaseAll(gesture);
        QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
        QVERIFY(KeyStage::action(MR::Action::Pan)->isChecked());
    }
    m_stage->press(Qt::Key_Space);
    m_stage->press(Qt::Key_H);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->release(Qt::Key_H);
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->tap(Qt::Key_H);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestures::chosenToolEndsWhatIsHeld()
{
    m_stage->press(Qt::Key_Space);
    m_stage->press(Qt::Key_E);
    QCOMPARE(KeyStage::tool(), Tool::Type::Eraser);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Eraser);
    m_stage->release(Qt::Key_E);
    m_stage->press(Qt::Key_H);
    KeyStage::useTool(Tool::Type::Lasso);
    m_stage->release(Qt::Key_H);
    QCOMPARE(KeyStage::tool(), Tool::Type::Lasso);
}

void tst_KeyGestures::gestureEndsWhereItsReleaseIsNotSeen_data()
{
    QTest::addColumn<size_t>("index");
    QTest::addColumn<Interruption>("interruption");
    for (size_t i = 0; i < toolGestures().size(); ++i) {
        for (const auto &[name, interruption] :
             {std::pair("window inactive", Interruption::WindowInactive),
              std::pair("text field", Interruption::TextField), std::pair("dialog", Interruption::Dialog),
              std::pair("menu", Interruption::Menu), std::pair("window hidden", Interruption::WindowHidden),
              std::pair("scene ends", Interruption::SceneEnds)})
            QTest::addRow("%s; %s", toolGestures()[i].name, name) << i << interruption;
    }
}

/// What happens to the hand, and its end: the window is active and the paper has the focus again.
void tst_KeyGestures::interrupt(Interruption interruption)
{
    QMainWindow &window = m_stage->window;
    switch (interruption) {
    case Interruption::WindowInactive: {
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QVERIFY(!window.isActiveWindow());
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        break;
    }
    case Interruption::TextField:
        m_stage->field->setFocus();
        break;
    case Interruption::Dialog: {
        QMessageBox box(&window);
        box.open();
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        QVERIFY(QTest::qWaitForWindowActive(&box));
        box.close();
        break;
    }
    case Interruption::Menu:
        m_stage->menu->popup(window.mapToGlobal(QPoint(20, 20)));
        QVERIFY(QTest::qWaitForWindowExposed(m_stage->menu));
        m_stage->menu->hide();
        break;
    case Interruption::WindowHidden:
        window.hide();
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        QTRY_VERIFY(!window.isActiveWindow());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        break;
    case Interruption::SceneEnds:
        m_stage->gestures->endAll();
        m_stage->scrubbing->setCurrentScene(nullptr);
        break;
    }
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QVERIFY(!m_stage->scrubbing->isRunning());
    m_stage->scrubbing->setCurrentScene(m_stage->mrScene.get());
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    m_stage->paper->setFocus();
}

void tst_KeyGestures::gestureEndsWhereItsReleaseIsNotSeen()
{
    QFETCH(size_t, index);
    QFETCH(Interruption, interruption);
    const Gesture &gesture = toolGestures()[index];
    pressAll(gesture);
    QCOMPARE(KeyStage::tool(), gesture.tool);
    interrupt(interruption);
    // The key is still down, and comes up now; once more, and all is as ever.
    m_stage->repeat(gesture.keys.back());
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    releaseAll(gesture);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->hover({3, 3});
    pressAll(gesture);
    QCOMPARE(KeyStage::tool(), gesture.tool);
    releaseAll(gesture);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestures::keyInTheMidstOfAContact()
{
    QFETCH(size_t, index);
    const Gesture &gesture = toolGestures()[index];
    m_stage->mousePress({-20, 0});
    m_stage->mouseMove({0, 10});
    QVERIFY(m_stage->scene()->hasActiveStroke());
    pressAll(gesture);
    // Scrubbing waits for the hand to be free; every other tool is taken up at once.
    QCOMPARE(KeyStage::tool(), gesture.tool == Tool::Type::Scrubbing ? Tool::Type::Pen : gesture.tool);
    m_stage->mouseMove({20, 0});
    releaseAll(gesture);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->mouseMove({30, 0});
    m_stage->mouseRelease({30, 0});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QCOMPARE(m_stage->commits, 1);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_KeyGestures::contactInTheMidstOfAKey()
{
    QFETCH(size_t, index);
    const Gesture &gesture = toolGestures()[index];
    pressAll(gesture);
    m_stage->mousePress({-20, 0});
    m_stage->mouseMove({20, 20});
    m_stage->mouseRelease({20, 20});
    QCOMPARE(KeyStage::tool(), gesture.tool);
    m_stage->hoverElsewhere();
    releaseAll(gesture);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QCOMPARE(m_stage->commits, 0);
}

void tst_KeyGestures::keyThatEndsBeforeTheContact()
{
    QFETCH(size_t, index);
    const Gesture &gesture = toolGestures()[index];
    pressAll(gesture);
    m_stage->mousePress({-20, 0});
    m_stage->mouseMove({20, 20});
    releaseAll(gesture);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->mouseMove({30, 20});
    m_stage->mouseRelease({30, 20});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QCOMPARE(m_stage->commits, 0);
    // The next contact draws again.
    m_stage->mousePress({-20, 0});
    m_stage->mouseMove({20, 20});
    m_stage->mouseRelease({20, 20});
    QCOMPARE(m_stage->commits, 1);
}

void tst_KeyGestures::strokeIsCommittedAheadOfTheTool()
{
    QFETCH(size_t, index);
    const Gesture &gesture = toolGestures()[index];
    if (gesture.tool == Tool::Type::Scrubbing)
        return; // waits for the contact's end
    Tool::Type atCommit = Tool::Type::None;
    const auto connection = connect(m_stage->toolSwitch.get(), &ToolSwitch::aboutToChangeTool, this, [&] {
        if (atCommit == Tool::Type::None)
            atCommit = KeyStage::tool();
    });
    m_stage->mousePress({-20, 0});
    m_stage->mouseMove({0, 10});
    pressAll(gesture);
    disconnect(connection);
    QCOMPARE(atCommit, Tool::Type::Pen);
    QCOMPARE(m_stage->commits, 1);
    m_stage->mouseRelease({0, 10});
    releaseAll(gesture);
}

void tst_KeyGestures::middleButtonKeepsItsTool()
{
    for (const Gesture &gesture : toolGestures()) {
        m_stage->mousePress({0, 0}, Qt::MiddleButton);
        QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
        // Row 10: the tool's own key would lay it down.
        if (gesture.tool != Tool::Type::Hand) {
            pressAll(gesture);
            QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
        }
        m_stage->mouseRelease({0, 0}, Qt::MiddleButton);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        releaseAll(gesture);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        // And the other way round.
        pressAll(gesture);
        m_stage->mousePress({0, 0}, Qt::MiddleButton);
        m_stage->mouseRelease({0, 0}, Qt::MiddleButton);
        releaseAll(gesture);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    }
}

void tst_KeyGestures::middleButtonGivesTheToolOfAnActionBack()
{
    KeyStage::action(MR::Action::OffPegs)->trigger();
    m_stage->mousePress({0, 0}, Qt::MiddleButton);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    QVERIFY(KeyStage::action(MR::Action::Pan)->isChecked());
    // Its key does nothing now, neither on press nor on release.
    m_stage->tap(Qt::Key_H);
    m_stage->tap(Qt::Key_Z);
    m_stage->mouseMove({30, 0}, Qt::MiddleButton);
    m_stage->mouseRelease({30, 0}, Qt::MiddleButton);
    QCOMPARE(KeyStage::tool(), Tool::Type::OffPegs);
    QVERIFY(KeyStage::action(MR::Action::OffPegs)->isChecked());
    QVERIFY(!KeyStage::action(MR::Action::Pan)->isChecked());
}

void tst_KeyGestures::disabledActionTakesNoToolUp_data()
{
    QTest::addColumn<size_t>("index");
    QTest::addColumn<MR::Action>("which");
    for (size_t i = 0; i < toolGestures().size(); ++i) {
        for (const auto &[tool, which] :
             {std::pair(Tool::Type::ZPR, MR::Action::ZPR), std::pair(Tool::Type::Hand, MR::Action::Pan),
              std::pair(Tool::Type::Zoom, MR::Action::Zoom), std::pair(Tool::Type::Rotate, MR::Action::Rotate),
              std::pair(Tool::Type::OffPegs, MR::Action::OffPegs)}) {
            if (toolGestures()[i].tool == tool)
                QTest::newRow(toolGestures()[i].name) << i << which;
        }
    }
}

void tst_KeyGestures::disabledActionTakesNoToolUp()
{
    QFETCH(size_t, index);
    QFETCH(MR::Action, which);
    KeyStage::action(which)->setEnabled(false);
    pressAll(toolGestures()[index]);
    const Tool::Type tool = KeyStage::tool();
    KeyStage::action(which)->setEnabled(true);
    releaseAll(toolGestures()[index]);
    QCOMPARE(tool, Tool::Type::Pen);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestures::lostReleaseIsMadeUpForByTheNextPress()
{
    m_stage->press(Qt::Key_Space);
    m_stage->press(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::ZPR);
    m_stage->release(Qt::Key_Space);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

QTEST_MAIN(tst_KeyGestures)
#include "tst_keygestures.moc"
