#include "app/heldkeys.h"
#include "app/heldmodifiers.h"

#include <QTest>

class tst_HeldKeys : public QObject
{
    Q_OBJECT

private slots:
    void keyIsHeldForItsGestureUntilItIsReleased();
    void placeTellsKeysApartWhereItIsKnown();
    void nameTellsKeysApartWhereNoPlaceIsKnown();
    void pressedAgainIsHeldForTheNewGesture();
    void allAreReleasedFromTheLastOn();

    void modifierStaysWhileOneOfItsKeysIsDown();
    void altReleasedAsMetaIsAlt();
    void metaOfItsOwnLeavesAltAlone();
    void altGrIsNoModifier();
    void modifiersReleasedUnseenAreForgotten();
};

void tst_HeldKeys::keyIsHeldForItsGestureUntilItIsReleased()
{
    HeldKeys keys;
    QVERIFY(keys.isEmpty());
    keys.press({Qt::Key_H, 43}, KeyGesture::Pan);
    QVERIFY(!keys.isEmpty());
    QVERIFY(keys.isHeld(KeyGesture::Pan));
    QVERIFY(!keys.isHeld(KeyGesture::Zoom));
    QVERIFY(keys.gestureOf({Qt::Key_H, 43}) == KeyGesture::Pan);
    QVERIFY(keys.release({Qt::Key_Z, 52}) == KeyGesture::None);
    QVERIFY(keys.release({Qt::Key_H, 43}) == KeyGesture::Pan);
    QVERIFY(keys.release({Qt::Key_H, 43}) == KeyGesture::None);
    QVERIFY(keys.isEmpty());
}

void tst_HeldKeys::placeTellsKeysApartWhereItIsKnown()
{
    HeldKeys keys;
    keys.press({Qt::Key_H, 43}, KeyGesture::Pan);
    QVERIFY(keys.gestureOf({Qt::Key_H, 44}) == KeyGesture::None);
    QVERIFY(keys.gestureOf({0x0420, 43}) == KeyGesture::Pan);
}

void tst_HeldKeys::nameTellsKeysApartWhereNoPlaceIsKnown()
{
    HeldKeys keys;
    keys.press({Qt::Key_H, 0}, KeyGesture::Pan);
    QVERIFY(keys.gestureOf({Qt::Key_H, 43}) == KeyGesture::Pan);
    QVERIFY(keys.gestureOf({Qt::Key_Z, 0}) == KeyGesture::None);
}

void tst_HeldKeys::pressedAgainIsHeldForTheNewGesture()
{
    HeldKeys keys;
    keys.press({Qt::Key_H, 43}, KeyGesture::Pan);
    keys.press({0x0420, 43}, KeyGesture::Draw);
    QVERIFY(keys.release({Qt::Key_H, 43}) == KeyGesture::Draw);
    QVERIFY(keys.isEmpty());
}

void tst_HeldKeys::allAreReleasedFromTheLastOn()
{
    HeldKeys keys;
    keys.press({Qt::Key_H, 0}, KeyGesture::Pan);
    keys.press({Qt::Key_Z, 0}, KeyGesture::Zoom);
    keys.press({Qt::Key_D, 0}, KeyGesture::Draw);
    const std::vector<KeyGesture> expected = {KeyGesture::Draw, KeyGesture::Zoom, KeyGesture::Pan};
    QVERIFY(keys.releaseAll() == expected);
    QVERIFY(keys.isEmpty());
}

void tst_HeldKeys::modifierStaysWhileOneOfItsKeysIsDown()
{
    HeldModifiers modifiers;
    modifiers.press({Qt::Key_Shift, 50});
    modifiers.press({Qt::Key_Shift, 62});
    modifiers.press({Qt::Key_Control, 37});
    modifiers.release({Qt::Key_Shift, 50});
    QCOMPARE(modifiers.modifiers(), Qt::ShiftModifier | Qt::ControlModifier);
    modifiers.release({Qt::Key_Shift, 62});
    QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers(Qt::ControlModifier));
    modifiers.releaseAll();
    QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers());
}

void tst_HeldKeys::altReleasedAsMetaIsAlt()
{
    for (const quint32 scanCode : {64u, 0u}) {
        HeldModifiers modifiers;
        modifiers.press({Qt::Key_Alt, scanCode});
        modifiers.press({Qt::Key_Shift, 0});
        modifiers.release({Qt::Key_Meta, scanCode});
        QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers(Qt::ShiftModifier));
    }
}

void tst_HeldKeys::metaOfItsOwnLeavesAltAlone()
{
    HeldModifiers modifiers;
    modifiers.press({Qt::Key_Alt, 64});
    modifiers.press({Qt::Key_Meta, 133});
    QCOMPARE(modifiers.modifiers(), Qt::AltModifier | Qt::MetaModifier);
    modifiers.release({Qt::Key_Meta, 133});
    QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers(Qt::AltModifier));
}

void tst_HeldKeys::altGrIsNoModifier()
{
    HeldModifiers modifiers;
    modifiers.press({Qt::Key_AltGr, 108});
    QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers());
}

void tst_HeldKeys::modifiersReleasedUnseenAreForgotten()
{
    HeldModifiers modifiers;
    modifiers.press({Qt::Key_Alt, 64});
    modifiers.press({Qt::Key_Shift, 50});
    modifiers.keepOnly(Qt::AltModifier | Qt::ControlModifier);
    QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers(Qt::AltModifier));
    modifiers.keepOnly({});
    QCOMPARE(modifiers.modifiers(), Qt::KeyboardModifiers());
}

QTEST_GUILESS_MAIN(tst_HeldKeys)
#include "tst_heldkeys.moc"
