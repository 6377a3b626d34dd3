#include "playbackstage.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <limits>

using Controller = PlaybackController;

/// How playback keeps time: rates, late ticks, and the real clock.
///
/// Rows by hand: at ten frames per second frame n is due after n tenths of a second.
class tst_PlaybackControllerClock : public QObject
{
    Q_OBJECT

private slots:
    void eachTickAimsAtTheNextFramesMoment_data();
    void eachTickAimsAtTheNextFramesMoment();
    void lateTickSkipsFramesAndTellsOnce_data();
    void lateTickSkipsFramesAndTellsOnce();
    void tickLateByLessThanAFrameIsNoLoss();
    void everyRunCountsLostFramesAnew_data();
    void everyRunCountsLostFramesAnew();
    void rateIsClamped_data();
    void rateIsClamped();
    void sameRateChangesNothing();
    void rateChangeGoesOnFromTheFrameOnShow_data();
    void rateChangeGoesOnFromTheFrameOnShow();
    void rateChangeBeforeTheFirstFrameLosesNone();
    void firstFrameDoesNotWaitForTheRate();
    void slowRateWaitsForItsMoment();
    void ticksComeNoFasterThanFrames();
    void realTimeFollowsTheClock();
    void slowPaintingSkipsFramesAndKeepsThePace();
};

void tst_PlaybackControllerClock::eachTickAimsAtTheNextFramesMoment_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<QList<int>>("elapsedMs");
    QTest::addColumn<QList<int>>("intervalMs");
    QTest::addRow("on time") << 10.0 << QList<int>{0, 100, 200} << QList<int>{100, 100, 100};
    QTest::addRow("late and early") << 10.0 << QList<int>{0, 130, 195} << QList<int>{100, 70, 105};
    // Frames at 24 per second stand at 0, 41.67, 83.33 and 125 ms.
    QTest::addRow("thirds") << 24.0 << QList<int>{0, 42, 83, 125} << QList<int>{42, 41, 42, 42};
    QTest::addRow("two frames late") << 10.0 << QList<int>{0, 340} << QList<int>{100, 60};
    // Half way to a frame counts as that frame.
    QTest::addRow("half way") << 10.0 << QList<int>{49, 50} << QList<int>{51, 150};
}

void tst_PlaybackControllerClock::eachTickAimsAtTheNextFramesMoment()
{
    QFETCH(double, rate);
    QFETCH(QList<int>, elapsedMs);
    QFETCH(QList<int>, intervalMs);
    PlaybackStage stage(1, 100, 1);
    stage.controller.setFrameRate(rate);
    stage.controller.startPlayback();
    QList<int> intervals;
    for (int moment : elapsedMs) {
        stage.tickAt(moment);
        intervals << stage.controller.intervalMs();
    }
    QCOMPARE(intervals, intervalMs);
}

void tst_PlaybackControllerClock::lateTickSkipsFramesAndTellsOnce_data()
{
    QTest::addColumn<int>("lost");
    QTest::addRow("one") << 1;
    QTest::addRow("two") << 2;
    QTest::addRow("many") << 20;
}

void tst_PlaybackControllerClock::lateTickSkipsFramesAndTellsOnce()
{
    QFETCH(int, lost);
    PlaybackStage stage(1, 100, 1);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.takeLog();
    stage.tickAt(100 * (lost + 1));
    QCOMPARE(stage.takeLog(), (QStringList{"skipped", QStringLiteral("show %1").arg(lost + 2)}));
    stage.tickAt(100 * (lost + 2));
    QCOMPARE(stage.takeLog(), QStringList{QStringLiteral("show %1").arg(lost + 3)});
}

void tst_PlaybackControllerClock::tickLateByLessThanAFrameIsNoLoss()
{
    PlaybackStage stage(1, 100, 1);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.tickAt(149);
    QCOMPARE(stage.shown, (QList<int>{1, 2}));
    QVERIFY(!stage.log.contains(QStringLiteral("skipped")));
}

void tst_PlaybackControllerClock::everyRunCountsLostFramesAnew_data()
{
    QTest::addColumn<bool>("anotherRun");
    QTest::addRow("another run") << true;
    QTest::addRow("another rate") << false;
}

void tst_PlaybackControllerClock::everyRunCountsLostFramesAnew()
{
    QFETCH(bool, anotherRun);
    PlaybackStage stage(1, 100, 1);
    stage.controller.startPlayback();
    stage.tickFrames(0, 9);
    stage.countFromNow();
    if (anotherRun)
        stage.controller.startPlayback();
    else
        stage.controller.setFrameRate(5.0);
    stage.takeLog();
    // The third frame at five per second, the sixth at ten: less than what had passed before.
    stage.tickAt(600);
    QCOMPARE(stage.takeLog().first(), QStringLiteral("skipped"));
}

void tst_PlaybackControllerClock::rateIsClamped_data()
{
    QTest::addColumn<double>("wanted");
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("intervalMs");
    QTest::addRow("default") << 12.0 << 12.0 << 83;
    QTest::addRow("film") << 24.0 << 24.0 << 42;
    QTest::addRow("fraction") << 12.5 << 12.5 << 80;
    QTest::addRow("slowest") << 0.1 << 0.1 << 10000;
    QTest::addRow("zero") << 0.0 << 0.1 << 10000;
    QTest::addRow("negative") << -24.0 << 0.1 << 10000;
    QTest::addRow("fastest") << 60.0 << 60.0 << 17;
    QTest::addRow("too fast") << 1000.0 << 60.0 << 17;
    QTest::addRow("infinite") << std::numeric_limits<double>::infinity() << 60.0 << 17;
    QTest::addRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0.1 << 10000;
}

void tst_PlaybackControllerClock::rateIsClamped()
{
    QFETCH(double, wanted);
    QFETCH(double, rate);
    QFETCH(int, intervalMs);
    Controller controller;
    controller.setFrameRate(wanted);
    QCOMPARE(controller.frameRate(), rate);
    QCOMPARE(controller.intervalMs(), intervalMs);
}

void tst_PlaybackControllerClock::sameRateChangesNothing()
{
    PlaybackStage stage(1, 100, 1);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.tickAt(130);
    stage.controller.setFrameRate(10.0);
    stage.controller.setFrameRate(10.0 + 1e-12);
    // The clock has not been restarted: it still aims at the moment of frame 2.
    QCOMPARE(stage.controller.intervalMs(), 70);
    stage.tickAt(200);
    QCOMPARE(stage.shown, (QList<int>{1, 2, 3}));
}

void tst_PlaybackControllerClock::rateChangeGoesOnFromTheFrameOnShow_data()
{
    QTest::addColumn<Controller::PlaybackModes>("modes");
    QTest::addColumn<QList<int>>("frames");
    QTest::addRow("loop") << Controller::PlaybackModes(Controller::Loop) << QList<int>{3, 4, 5, 6, 7};
    QTest::addRow("loop backwards") << Controller::PlaybackModes(Controller::Loop | Controller::Backwards)
                                    << QList<int>{3, 2, 1, 10, 9};
    QTest::addRow("once") << Controller::PlaybackModes() << QList<int>{1, 2, 3, 4, 5};
    QTest::addRow("once backwards") << Controller::PlaybackModes(Controller::Backwards) << QList<int>{10, 9, 8, 7, 6};
}

void tst_PlaybackControllerClock::rateChangeGoesOnFromTheFrameOnShow()
{
    QFETCH(Controller::PlaybackModes, modes);
    QFETCH(QList<int>, frames);
    PlaybackStage stage(1, 10, 3, modes);
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.nowMs += 30;
    stage.controller.setFrameRate(5.0);
    QCOMPARE(stage.controller.intervalMs(), 200);
    stage.countFromNow();
    stage.tickAt(200);
    stage.tickAt(400);
    QCOMPARE(stage.shown, frames);
}

void tst_PlaybackControllerClock::rateChangeBeforeTheFirstFrameLosesNone()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.controller.setFrameRate(5.0);
    QCOMPARE(stage.controller.intervalMs(), 0);
    stage.tickAt(0);
    stage.tickAt(200);
    QCOMPARE(stage.shown, (QList<int>{3, 4}));
}

void tst_PlaybackControllerClock::firstFrameDoesNotWaitForTheRate()
{
    Controller controller;
    controller.setFrameRate(0.1);
    controller.setFrameRange(1, 10);
    controller.setActiveFrame(3);
    QSignalSpy shown(&controller, &Controller::showFrame);
    controller.startPlayback();
    QCoreApplication::processEvents();
    QCOMPARE(shown.count(), 1);
}

/// Flipping back at the beginning of the range shows it again with every tick, and so counts them.
void tst_PlaybackControllerClock::slowRateWaitsForItsMoment()
{
    Controller controller;
    controller.setFrameRate(60.0);
    controller.setFrameRange(1, 10);
    controller.setActiveFrame(1);
    QSignalSpy shown(&controller, &Controller::showFrame);
    controller.startFlipBack();
    QTRY_VERIFY(shown.count() >= 2);
    controller.setFrameRate(0.1);
    const int before = shown.count();
    QTest::qWait(300);
    QCOMPARE(shown.count(), before);
}

void tst_PlaybackControllerClock::ticksComeNoFasterThanFrames()
{
    Controller controller;
    controller.setFrameRate(10.0);
    controller.setFrameRange(1, 10);
    controller.setActiveFrame(1);
    QSignalSpy shown(&controller, &Controller::showFrame);
    QElapsedTimer timer;
    timer.start();
    controller.startFlipBack();
    QTest::qWait(500);
    // One at once and one for each tenth of a second; a timer that comes a moment early may tick twice for a frame.
    const qint64 most = 2 * (timer.elapsed() / 100 + 1);
    QVERIFY2(shown.count() <= most, qPrintable(QString::number(shown.count())));
    QVERIFY(shown.count() >= 2);
}

void tst_PlaybackControllerClock::realTimeFollowsTheClock()
{
    Controller controller;
    controller.setFrameRate(24.0);
    controller.setFrameRange(1, 1000);
    controller.setActiveFrame(1);
    QElapsedTimer timer;
    int shown = 0;
    double largestDeviation = 0.0;
    int lastFrame = 0;
    connect(&controller, &Controller::showFrame, &controller, [&](int frame) {
        ++shown;
        lastFrame = frame;
        largestDeviation = std::max(largestDeviation, std::abs(double(timer.elapsed()) * 0.024 - (frame - 1)));
    });
    timer.start();
    controller.startPlayback();
    QTRY_VERIFY_WITH_TIMEOUT(timer.elapsed() >= 1000, 5000);
    controller.stopPlayback();
    qInfo("%d frames shown in a second, frame %d last, at most %.2f frames from the clock", shown, lastFrame,
          largestDeviation);
    // Half a frame is what rounding allows; the rest is for a machine that has other things to do.
    QVERIFY2(largestDeviation <= 1.0, qPrintable(QString::number(largestDeviation)));
    QVERIFY2(lastFrame >= 22, qPrintable(QString::number(lastFrame)));
    QVERIFY2(shown >= 15, qPrintable(QString::number(shown)));
}

void tst_PlaybackControllerClock::slowPaintingSkipsFramesAndKeepsThePace()
{
    Controller controller;
    controller.setFrameRate(24.0);
    controller.setFrameRange(1, 1000);
    controller.setActiveFrame(1);
    QSignalSpy skipped(&controller, &Controller::skippedFrame);
    QElapsedTimer timer;
    QList<int> frames;
    connect(&controller, &Controller::showFrame, &controller, [&frames](int frame) {
        frames << frame;
        QThread::msleep(100);
    });
    timer.start();
    controller.startPlayback();
    QTRY_VERIFY_WITH_TIMEOUT(timer.elapsed() >= 1000, 5000);
    const double elapsedFrames = double(timer.elapsed()) * 0.024;
    controller.stopPlayback();
    // A frame takes 100 ms and more; counted by ticks it would be at most the eleventh.
    QVERIFY(frames.size() <= 11);
    QVERIFY2(frames.last() >= elapsedFrames - 5.0, qPrintable(QString::number(frames.last())));
    QVERIFY(skipped.count() >= frames.size() / 2);
}

QTEST_GUILESS_MAIN(tst_PlaybackControllerClock)
#include "tst_playbackcontrollerclock.moc"
