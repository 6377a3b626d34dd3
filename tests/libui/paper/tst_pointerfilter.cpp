#include "libui/paper/pointerfilter.h"

#include <QTest>

using namespace UI;

class tst_PointerFilter : public QObject
{
    Q_OBJECT

private slots:
    void contactBeginsAndEnds();
    void secondDeviceIsDroppedWhileTheFirstIsDown();
    void mouseAfterTablet_data();
    void mouseAfterTablet();
    void tabletAfterTabletIsTaken();
    void droppedPressHasNoRelease();
    void cancelledContactIsForgotten();
};

namespace {

PointerEvent at(PointerDevice device, QPointF position, quint64 timestamp)
{
    return {device, position, 0.5, timestamp, Qt::NoModifier, false};
}

PointerEvent pen(QPointF position, quint64 timestamp)
{
    return at(PointerDevice::Tablet, position, timestamp);
}

PointerEvent mouse(QPointF position, quint64 timestamp)
{
    return at(PointerDevice::Mouse, position, timestamp);
}

} // namespace

void tst_PointerFilter::contactBeginsAndEnds()
{
    PointerFilter filter;
    QVERIFY(filter.press(mouse({5, 5}, 100)));
    QVERIFY(filter.isAnyDown());
    QVERIFY(filter.isDown(PointerDevice::Mouse));
    QVERIFY(!filter.isDown(PointerDevice::Tablet));
    QVERIFY(filter.release(mouse({5, 5}, 120)));
    QVERIFY(!filter.isAnyDown());
}

void tst_PointerFilter::secondDeviceIsDroppedWhileTheFirstIsDown()
{
    PointerFilter filter;
    QVERIFY(filter.press(pen({5, 5}, 100)));
    QVERIFY(!filter.press(mouse({5, 5}, 101)));
    QVERIFY(!filter.release(mouse({5, 5}, 102)));
    QVERIFY(filter.isDown(PointerDevice::Tablet));
    QVERIFY(filter.release(pen({5, 5}, 103)));
}

void tst_PointerFilter::mouseAfterTablet_data()
{
    QTest::addColumn<int>("elapsed");
    QTest::addColumn<QPointF>("offset");
    QTest::addColumn<bool>("taken");
    QTest::addRow("at once, same place") << 0 << QPointF(0, 0) << false;
    QTest::addRow("10 ms, 2 px") << 10 << QPointF(1, -1) << false;
    QTest::addRow("11 ms") << 11 << QPointF(0, 0) << true;
    QTest::addRow("3 px") << 5 << QPointF(2, 1) << true;
    QTest::addRow("stamped just before") << -3 << QPointF(0, 0) << false;
}

void tst_PointerFilter::mouseAfterTablet()
{
    QFETCH(int, elapsed);
    QFETCH(QPointF, offset);
    QFETCH(bool, taken);
    PointerFilter filter;
    QVERIFY(filter.press(pen({50, 50}, 900)));
    QVERIFY(filter.release(pen({50, 50}, 1000)));
    QCOMPARE(filter.press(mouse(QPointF(50, 50) + offset, quint64(1000 + elapsed))), taken);
}

void tst_PointerFilter::tabletAfterTabletIsTaken()
{
    PointerFilter filter;
    QVERIFY(filter.press(pen({50, 50}, 900)));
    QVERIFY(filter.release(pen({50, 50}, 1000)));
    QVERIFY(filter.press(pen({50, 50}, 1001)));
}

void tst_PointerFilter::droppedPressHasNoRelease()
{
    PointerFilter filter;
    QVERIFY(filter.press(pen({50, 50}, 900)));
    QVERIFY(filter.release(pen({50, 50}, 1000)));
    QVERIFY(!filter.press(mouse({50, 50}, 1002)));
    QVERIFY(!filter.release(mouse({50, 50}, 1004)));
}

void tst_PointerFilter::cancelledContactIsForgotten()
{
    PointerFilter filter;
    QVERIFY(filter.press(mouse({5, 5}, 100)));
    filter.cancel();
    QVERIFY(!filter.isAnyDown());
    QVERIFY(!filter.release(mouse({5, 5}, 120)));
    QVERIFY(filter.press(mouse({5, 5}, 140)));
}

QTEST_GUILESS_MAIN(tst_PointerFilter)
#include "tst_pointerfilter.moc"
