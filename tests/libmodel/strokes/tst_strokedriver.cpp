#include "coverageprobes.h"
#include "libmodel/strokes/linesegment.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedriver.h"
#include "strokemaking.h"
#include "support/glfixture.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <limits>

#include <algorithm>

using namespace Model;

class tst_StrokeDriver : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void beginDrawsADotAndTells();
    void beginWithAPreviousPointSetsTheTangent();
    void sampleNearerThanAPixelIsDropped();
    void droppedSampleStillEndsAtTheLastAcceptedOne();
    void restingPenIsChasedByTicks();
    void halfASecondWithoutSamplesFinishesTheStroke();
    void drawingOnAfterARestStartsTheChaseAgain();
    void endHandsTheFinishedStrokeOver();
    void endWithoutStrokeIsNull();
    void beginDropsTheFormerStroke();
    void noTicksAfterTheEnd();
    void acceptedSamplePutsOffTheRest();
    void strokeEndedWhileItBeginsLeavesNoTimers();
    void droppedSampleDoesNotPutOffTheRest();
    void samplesThatAreNoPlaceOnPaperAreDropped_data();
    void samplesThatAreNoPlaceOnPaperAreDropped();

private:
    static constexpr QSize frame{400, 300};
    TestPen m_pen{{3, 3, 1, 1}};
};

namespace {

QPointF endOfLine(const SingleStroke &stroke)
{
    const auto *line = dynamic_cast<const LineSegment *>(stroke.segments().back().get());
    return line ? line->end() : QPointF(-1, -1);
}

} // namespace

void tst_StrokeDriver::beginDrawsADotAndTells()
{
    StrokeDriver driver;
    QSignalSpy active(&driver, &StrokeDriver::hasActiveStrokeChanged);
    QSignalSpy changed(&driver, &StrokeDriver::rectChanged);
    QVERIFY(!driver.hasActiveStroke());
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    QVERIFY(driver.hasActiveStroke());
    QCOMPARE(active.count(), 1);
    QCOMPARE(active[0][0].toBool(), true);
    QCOMPARE(changed.count(), 1);
    QVERIFY(changed[0][0].toRect().contains(QRect(96, 96, 8, 8)));
    QVERIFY(coverageAt(driver.stroke()->image(), 100, 100) > 240);
    QCOMPARE(driver.stroke()->image().size(), frame);
}

void tst_StrokeDriver::beginWithAPreviousPointSetsTheTangent()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100), QPointF(90, 100));
    QVERIFY(driver.stroke()->hasTangent());
}

void tst_StrokeDriver::sampleNearerThanAPixelIsDropped()
{
    StrokeDriver driver;
    QVERIFY(!driver.update(sampleAt(1, 1)));
    driver.begin(frame, &m_pen, sampleAt(100, 100, 0.2));
    QSignalSpy changed(&driver, &StrokeDriver::rectChanged);
    QVERIFY(!driver.update(sampleAt(100.9, 100, 0.9)));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(driver.stroke()->samples().size(), size_t(1));
    QCOMPARE(driver.stroke()->lastSample().pressure, 0.2);
    QVERIFY(driver.update(sampleAt(101, 100)));
    QCOMPARE(changed.count(), 1);
}

void tst_StrokeDriver::droppedSampleStillEndsAtTheLastAcceptedOne()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    QVERIFY(driver.update(sampleAt(150, 100)));
    QVERIFY(!driver.update(sampleAt(150.5, 100)));
    const auto stroke = driver.end();
    QVERIFY(std::abs(endOfLine(*stroke).x() - 150) < 1e-9);
}

void tst_StrokeDriver::restingPenIsChasedByTicks()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    driver.update(sampleAt(200, 100));
    QSignalSpy changed(&driver, &StrokeDriver::rectChanged);
    // 60, 84, 93.6, 97.44, 98.976 of the way of 100; the next piece would be too short.
    // However late the ticks come on a busy machine, the segments tell whether each fitted one piece.
    QTRY_VERIFY_WITH_TIMEOUT(driver.stroke()->segments().size() >= 6, 5000);
    const auto end = [&](size_t index) {
        return dynamic_cast<const LineSegment &>(*driver.stroke()->segments().at(index)).end().x();
    };
    const double ends[] = {160, 184, 193.6, 197.44};
    for (size_t i = 0; i < 4; ++i)
        QVERIFY(std::abs(end(i + 1) - ends[i]) < 1e-9);
    // The rest of the half second may have come before the last tick, and takes all that is left.
    QVERIFY(std::abs(end(5) - 198.976) < 1e-9 || std::abs(end(5) - 200) < 1e-9);
    QVERIFY(changed.count() >= 4);
    QVERIFY(coverageAt(driver.stroke()->image(), 198, 100) > 200);
}

void tst_StrokeDriver::halfASecondWithoutSamplesFinishesTheStroke()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    driver.update(sampleAt(101.2, 100));
    QCOMPARE(driver.stroke()->segments().size(), size_t(1));
    QSignalSpy changed(&driver, &StrokeDriver::rectChanged);
    QTRY_COMPARE_WITH_TIMEOUT(driver.stroke()->segments().size(), size_t(2), 3000);
    QVERIFY(std::abs(endOfLine(*driver.stroke()).x() - 101.2) < 1e-9);
    QVERIFY(!driver.stroke()->hasTangent());
    QVERIFY(driver.hasActiveStroke());
    const int signalsAtRest = int(changed.count());
    QTest::qWait(80);
    QCOMPARE(int(changed.count()), signalsAtRest);
}

void tst_StrokeDriver::drawingOnAfterARestStartsTheChaseAgain()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    driver.update(sampleAt(101.2, 100));
    QTRY_COMPARE_WITH_TIMEOUT(driver.stroke()->segments().size(), size_t(2), 3000);
    QVERIFY(driver.update(sampleAt(101.2, 200)));
    QVERIFY(std::abs(endOfLine(*driver.stroke()).y() - 160) < 1e-6);
    QTRY_VERIFY_WITH_TIMEOUT(driver.stroke()->segments().size() >= 5, 450);
}

void tst_StrokeDriver::endHandsTheFinishedStrokeOver()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    driver.update(sampleAt(200, 100));
    QSignalSpy active(&driver, &StrokeDriver::hasActiveStrokeChanged);
    const auto stroke = driver.end();
    QVERIFY(stroke);
    QCOMPARE(active.count(), 1);
    QCOMPARE(active[0][0].toBool(), false);
    QVERIFY(!driver.hasActiveStroke());
    QVERIFY(std::abs(endOfLine(*stroke).x() - 200) < 1e-9);
    QVERIFY(coverageAt(stroke->image(), 199, 100) > 240);
}

void tst_StrokeDriver::endWithoutStrokeIsNull()
{
    StrokeDriver driver;
    QSignalSpy active(&driver, &StrokeDriver::hasActiveStrokeChanged);
    QVERIFY(!driver.end());
    QCOMPARE(active.count(), 0);
}

void tst_StrokeDriver::beginDropsTheFormerStroke()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    QSignalSpy active(&driver, &StrokeDriver::hasActiveStrokeChanged);
    driver.begin(frame, &m_pen, sampleAt(300, 200));
    QCOMPARE(active.count(), 2);
    QCOMPARE(active[0][0].toBool(), false);
    QCOMPARE(active[1][0].toBool(), true);
    QCOMPARE(driver.stroke()->samples().size(), size_t(1));
    QCOMPARE(driver.stroke()->lastSample().point, QPointF(300, 200));
}

void tst_StrokeDriver::noTicksAfterTheEnd()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    const auto timers = driver.findChildren<QTimer *>();
    const auto isActive = [](const QTimer *timer) { return timer->isActive(); };
    QCOMPARE(timers.size(), 2);
    QVERIFY(std::ranges::all_of(timers, isActive));
    driver.end();
    QVERIFY(std::ranges::none_of(timers, isActive));
    QSignalSpy changed(&driver, &StrokeDriver::rectChanged);
    QTest::qWait(80);
    QCOMPARE(changed.count(), 0);
}

void tst_StrokeDriver::acceptedSamplePutsOffTheRest()
{
    // On a bend, so that only a rest, which closes the stroke, leaves the line without a direction.
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    const QTimer *idle = nullptr;
    for (const QTimer *timer : driver.findChildren<QTimer *>()) {
        if (timer->interval() == 500)
            idle = timer;
    }
    QVERIFY(idle);
    for (int step = 1; step <= 4; ++step) {
        QTest::qWait(60);
        const int before = idle->remainingTime();
        driver.update(sampleAt(100 + 20 * step, 100 + 3 * step * step));
        QVERIFY2(idle->remainingTime() > before, qPrintable(QString::number(before)));
    }
}

void tst_StrokeDriver::strokeEndedWhileItBeginsLeavesNoTimers()
{
    StrokeDriver driver;
    QSignalSpy active(&driver, &StrokeDriver::hasActiveStrokeChanged);
    const auto connection = connect(&driver, &StrokeDriver::rectChanged, this, [&] { driver.end(); });
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    disconnect(connection);
    QVERIFY(!driver.hasActiveStroke());
    QCOMPARE(active.count(), 1);
    QCOMPARE(active[0][0].toBool(), false);
    QCOMPARE(driver.findChildren<QTimer *>().size(), 2);
    for (const QTimer *timer : driver.findChildren<QTimer *>())
        QVERIFY(!timer->isActive());
}

void tst_StrokeDriver::droppedSampleDoesNotPutOffTheRest()
{
    StrokeDriver driver;
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    driver.update(sampleAt(101.2, 100));
    QCOMPARE(driver.stroke()->segments().size(), size_t(1));
    // Trembling for four times the pause: if that put the rest off, it would not come before the trembling ends.
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 4 * StrokeDriver::idleInterval && driver.stroke()->segments().size() == 1) {
        QVERIFY(!driver.update(sampleAt(101.4, 100)));
        QTest::qWait(20);
    }
    QCOMPARE(driver.stroke()->segments().size(), size_t(2));
}

void tst_StrokeDriver::samplesThatAreNoPlaceOnPaperAreDropped_data()
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double endless = std::numeric_limits<double>::infinity();
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<double>("pressure");
    QTest::newRow("no x") << QPointF(none, 10) << 0.5;
    QTest::newRow("no y") << QPointF(10, none) << 0.5;
    QTest::newRow("endless") << QPointF(10, -endless) << 0.5;
    QTest::newRow("far beyond all frames") << QPointF(1e300, 10) << 0.5;
    QTest::newRow("no pressure") << QPointF(10, 10) << none;
}

void tst_StrokeDriver::samplesThatAreNoPlaceOnPaperAreDropped()
{
    QFETCH(QPointF, point);
    QFETCH(double, pressure);
    const Sample bad{point, pressure, 0};
    StrokeDriver driver;
    QSignalSpy rects(&driver, &StrokeDriver::rectChanged);
    driver.begin(frame, &m_pen, bad);
    QVERIFY(!driver.hasActiveStroke());
    driver.begin(frame, &m_pen, sampleAt(100, 100));
    rects.clear();
    QVERIFY(!driver.update(bad));
    QCOMPARE(rects.count(), 0);
    QVERIFY(driver.update(sampleAt(120, 100)));
}

QTEST_MAIN(tst_StrokeDriver)
#include "tst_strokedriver.moc"
