#include "app/keymeaning.h"

#include <QKeyEvent>
#include <QTest>

Q_DECLARE_METATYPE(KeyGesture)

class tst_KeyMeaning : public QObject
{
    Q_OBJECT

private slots:
    void keyAndModifiersMakeTheGesture_data();
    void keyAndModifiersMakeTheGesture();
    void stepsAreByKeyDrawingsWithEitherOfShiftAndCapsLock_data();
    void stepsAreByKeyDrawingsWithEitherOfShiftAndCapsLock();
};

namespace {

QKeyEvent eventOf(int key, Qt::KeyboardModifiers modifiers, quint32 scanCode = 0, quint32 nativeModifiers = 0)
{
    return QKeyEvent(QEvent::KeyPress, key, modifiers, scanCode, 0, nativeModifiers);
}

} // namespace

void tst_KeyMeaning::keyAndModifiersMakeTheGesture_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<quint32>("scanCode");
    QTest::addColumn<KeyGesture>("gesture");
    const auto row = [](const char *name, int key, Qt::KeyboardModifiers modifiers, KeyGesture gesture,
                        quint32 scanCode = 0) { QTest::newRow(name) << key << modifiers << scanCode << gesture; };
    row("escape", Qt::Key_Escape, {}, KeyGesture::Escape);
    row("shift escape", Qt::Key_Escape, Qt::ShiftModifier, KeyGesture::None);
    row("return", Qt::Key_Return, {}, KeyGesture::Flip);
    row("enter", Qt::Key_Enter, Qt::KeypadModifier, KeyGesture::Flip);
    row("shift return", Qt::Key_Return, Qt::ShiftModifier, KeyGesture::None);
    row("space", Qt::Key_Space, {}, KeyGesture::View);
    row("shift space", Qt::Key_Space, Qt::ShiftModifier, KeyGesture::None);
    row("d", Qt::Key_D, {}, KeyGesture::Draw);
    row("e", Qt::Key_E, {}, KeyGesture::Erase);
    row("shift e", Qt::Key_E, Qt::ShiftModifier, KeyGesture::None);
    row("q", Qt::Key_Q, {}, KeyGesture::StepBack);
    row("shift q", Qt::Key_Q, Qt::ShiftModifier, KeyGesture::StepBack);
    row("control q", Qt::Key_Q, Qt::ControlModifier, KeyGesture::None);
    row("alt q", Qt::Key_Q, Qt::AltModifier, KeyGesture::None);
    row("w", Qt::Key_W, {}, KeyGesture::StepForward);
    row("s", Qt::Key_S, {}, KeyGesture::SpeedDial);
    row("shift s", Qt::Key_S, Qt::ShiftModifier, KeyGesture::SpeedDial);
    row("control s", Qt::Key_S, Qt::ControlModifier, KeyGesture::None);
    row("z", Qt::Key_Z, {}, KeyGesture::Zoom);
    row("control z", Qt::Key_Z, Qt::ControlModifier, KeyGesture::None);
    row("h", Qt::Key_H, {}, KeyGesture::Pan);
    row("r", Qt::Key_R, {}, KeyGesture::Rotate);
    row("r of a second group of letters", Qt::Key_R, Qt::GroupSwitchModifier, KeyGesture::Rotate);
    row("c", Qt::Key_C, {}, KeyGesture::Palette);
    row("k", Qt::Key_K, {}, KeyGesture::None);
    row("shift itself", Qt::Key_Shift, {}, KeyGesture::None);
    row("cyrillic letter where s is", 0x042b, {}, KeyGesture::SpeedDial, 39);
    row("cyrillic letter where k is", 0x041b, {}, KeyGesture::None, 45);
    row("latin letter where s is", Qt::Key_O, {}, KeyGesture::None, 39);
    row("accented letter where w is", Qt::Key_Eacute, {}, KeyGesture::None, 25);
    row("function key with the scan code of s", Qt::Key_F1, {}, KeyGesture::None, 39);
}

void tst_KeyMeaning::keyAndModifiersMakeTheGesture()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(quint32, scanCode);
    QFETCH(KeyGesture, gesture);
    QCOMPARE(gestureOf(eventOf(key, modifiers, scanCode)), gesture);
}

void tst_KeyMeaning::stepsAreByKeyDrawingsWithEitherOfShiftAndCapsLock_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<quint32>("nativeModifiers");
    QTest::addColumn<bool>("byKeyDrawings");
    QTest::newRow("neither") << Qt::KeyboardModifiers() << 0u << false;
    QTest::newRow("shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << 0u << true;
    QTest::newRow("caps lock") << Qt::KeyboardModifiers() << 0x100u << true;
    QTest::newRow("both") << Qt::KeyboardModifiers(Qt::ShiftModifier) << 0x100u << false;
    QTest::newRow("other bits") << Qt::KeyboardModifiers() << 0x2ffu << false;
}

void tst_KeyMeaning::stepsAreByKeyDrawingsWithEitherOfShiftAndCapsLock()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(quint32, nativeModifiers);
    QFETCH(bool, byKeyDrawings);
    QCOMPARE(stepsByKeyDrawings(eventOf(Qt::Key_Q, modifiers, 0, nativeModifiers)), byKeyDrawings);
}

QTEST_GUILESS_MAIN(tst_KeyMeaning)
#include "tst_keymeaning.moc"
