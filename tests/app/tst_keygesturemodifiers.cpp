// What KeyGestures makes of modifier keys that are held: rows 12 and 13 of its table. The others are tested in
// tst_keygesturerows.

#include "keygesturefixture.h"

#include <QSignalSpy>
#include <QTest>

using Model::Tool;

class tst_KeyGestureModifiers : public KeyGestureFixture
{
    Q_OBJECT

private slots:
    void row12OtherModifiersAreNoOffPegs();
    void row12AltThatBecomesMetaIsStillAlt();
    void row12AltGrIsNoGesture();
    void row13ShiftWithAnotherKeyEndsTheScrub_data();
    void row13ShiftWithAnotherKeyEndsTheScrub();
    void row13SecondShiftKeepsTheScrub();
    void row13NoScrubWhileSomethingIsUnderWay();
    void row13ScrubLandsOverThePaperOnly();
};

void tst_KeyGestureModifiers::row12OtherModifiersAreNoOffPegs()
{
    for (const int other : {int(Qt::Key_Shift), int(Qt::Key_Meta)}) {
        m_stage->press(other);
        m_stage->press(Qt::Key_Control);
        m_stage->press(Qt::Key_Alt);
        QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
        m_stage->release(Qt::Key_Alt);
        m_stage->release(Qt::Key_Control);
        m_stage->release(other);
    }
}

void tst_KeyGestureModifiers::row12AltThatBecomesMetaIsStillAlt()
{
    m_stage->press({Qt::Key_Alt, 64});
    m_stage->press({Qt::Key_Control, 37});
    QCOMPARE(KeyStage::tool(), Tool::Type::OffPegs);
    m_stage->press({Qt::Key_Shift, 50});
    QCOMPARE(KeyStage::tool(), Tool::Type::OffPegs);
    m_stage->release({Qt::Key_Meta, 64});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release({Qt::Key_Shift, 50});
    m_stage->release({Qt::Key_Control, 37});
    m_stage->press({Qt::Key_Control, 37});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release({Qt::Key_Control, 37});
}

void tst_KeyGestureModifiers::row12AltGrIsNoGesture()
{
    m_stage->press(Qt::Key_Control);
    m_stage->tap(Qt::Key_AltGr);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Control);
}

void tst_KeyGestureModifiers::row13ShiftWithAnotherKeyEndsTheScrub_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("a shortcut") << int(Qt::Key_K);
    QTest::newRow("a key of a gesture") << int(Qt::Key_W);
    QTest::newRow("a key of nothing") << int(Qt::Key_J);
    QTest::newRow("another modifier") << int(Qt::Key_Control);
}

void tst_KeyGestureModifiers::row13ShiftWithAnotherKeyEndsTheScrub()
{
    QFETCH(int, key);
    m_stage->press(Qt::Key_Shift);
    QCOMPARE(KeyStage::tool(), Tool::Type::Scrubbing);
    emit m_stage->paper->scrubOffsetChanged(2);
    QCOMPARE(m_stage->scene()->scrubFrame(), 7);
    m_stage->press(key);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
    m_stage->release(key);
    // Shift is still down, but it was meant for the other key.
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Shift);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_KeyGestureModifiers::row13SecondShiftKeepsTheScrub()
{
    m_stage->press({Qt::Key_Shift, 50});
    m_stage->press({Qt::Key_Shift, 62});
    m_stage->release({Qt::Key_Shift, 50});
    QCOMPARE(KeyStage::tool(), Tool::Type::Scrubbing);
    m_stage->release({Qt::Key_Shift, 62});
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_KeyGestureModifiers::row13NoScrubWhileSomethingIsUnderWay()
{
    m_stage->playback->startPlayback();
    m_stage->tap(Qt::Key_Shift);
    m_stage->press(Qt::Key_Shift);
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_stage->release(Qt::Key_Shift);
    m_stage->playback->stopPlayback();

    m_stage->press(Qt::Key_H);
    m_stage->press(Qt::Key_Shift);
    QCOMPARE(KeyStage::tool(), Tool::Type::Hand);
    m_stage->release(Qt::Key_H);
    m_stage->release(Qt::Key_Shift);

    m_stage->reset(Tool::Type::FloatingSelection);
    m_stage->press(Qt::Key_Shift);
    QCOMPARE(KeyStage::tool(), Tool::Type::FloatingSelection);
    m_stage->release(Qt::Key_Shift);
}

void tst_KeyGestureModifiers::row13ScrubLandsOverThePaperOnly()
{
    m_stage->press(Qt::Key_Shift);
    emit m_stage->paper->scrubOffsetChanged(-3);
    m_stage->hoverElsewhere();
    m_stage->release(Qt::Key_Shift);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
    m_stage->hover({0, 0});
    m_stage->press(Qt::Key_Shift);
    emit m_stage->paper->scrubOffsetChanged(-3);
    m_stage->release(Qt::Key_Shift);
    QCOMPARE(m_stage->scene()->activeFrame(), 2);
}

QTEST_MAIN(tst_KeyGestureModifiers)
#include "tst_keygesturemodifiers.moc"
