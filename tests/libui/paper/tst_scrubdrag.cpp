#include "libui/paper/scrubdrag.h"

#include <QTest>

using UI::ScrubDrag;

class tst_ScrubDrag : public QObject
{
    Q_OBJECT

private slots:
    void aFrameForSixteenPixels_data();
    void aFrameForSixteenPixels();
    void onlyChangesAreReported();
    void limitsHoldTheEndAndNotTheWay();
    void nextDragGoesOnFromTheLast();
    void resetBeginsAnew();
};

void tst_ScrubDrag::aFrameForSixteenPixels_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<int>("offset");
    QTest::addRow("nowhere") << QPointF(0, 0) << 0;
    QTest::addRow("almost a frame") << QPointF(15.9, 0) << 0;
    QTest::addRow("right") << QPointF(16, 0) << 1;
    QTest::addRow("down") << QPointF(0, 33) << 2;
    QTest::addRow("both add up") << QPointF(8, 8) << 1;
    QTest::addRow("both cancel out") << QPointF(-40, 40) << 0;
    QTest::addRow("a hair to the left") << QPointF(-0.1, 0) << -1;
    QTest::addRow("left") << QPointF(-16, 0) << -1;
    QTest::addRow("up") << QPointF(0, -16.1) << -2;
}

void tst_ScrubDrag::aFrameForSixteenPixels()
{
    QFETCH(QPointF, way);
    QFETCH(int, offset);
    ScrubDrag drag;
    drag.setLimits(-100, 100);
    drag.press({200, 100});
    (void)drag.moveTo(QPointF(200, 100) + way);
    QCOMPARE(drag.offset(), offset);
}

void tst_ScrubDrag::onlyChangesAreReported()
{
    ScrubDrag drag;
    drag.setLimits(-10, 10);
    drag.press({0, 0});
    QVERIFY(!drag.moveTo({10, 0}));
    QVERIFY(drag.moveTo({17, 0}));
    QVERIFY(!drag.moveTo({20, 0}));
    QVERIFY(!drag.release());
    QCOMPARE(drag.offset(), 1);
}

void tst_ScrubDrag::limitsHoldTheEndAndNotTheWay()
{
    ScrubDrag drag;
    drag.setLimits(-2, 3);
    drag.press({0, 0});
    (void)drag.moveTo({16 * 9, 0});
    QCOMPARE(drag.offset(), 9);
    QVERIFY(drag.release());
    QCOMPARE(drag.offset(), 3);
    drag.press({0, 0});
    (void)drag.moveTo({-16 * 20, 0});
    QCOMPARE(drag.offset(), -17);
    QVERIFY(drag.release());
    QCOMPARE(drag.offset(), -2);
}

void tst_ScrubDrag::nextDragGoesOnFromTheLast()
{
    ScrubDrag drag;
    drag.setLimits(-100, 100);
    for (int i = 1; i <= 3; ++i) {
        drag.press({50, 70});
        (void)drag.moveTo({50 + 32, 70});
        (void)drag.release();
        QCOMPARE(drag.offset(), 2 * i);
    }
}

void tst_ScrubDrag::resetBeginsAnew()
{
    ScrubDrag drag;
    drag.setLimits(-100, 100);
    drag.press({0, 0});
    (void)drag.moveTo({160, 0});
    (void)drag.release();
    drag.reset();
    QCOMPARE(drag.offset(), 0);
    drag.press({0, 0});
    (void)drag.moveTo({16, 0});
    QCOMPARE(drag.offset(), 1);
}

QTEST_APPLESS_MAIN(tst_ScrubDrag)
#include "tst_scrubdrag.moc"
