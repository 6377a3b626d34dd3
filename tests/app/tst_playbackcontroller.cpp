#include "playbackstage.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <limits>

using Controller = PlaybackController;

/// Rows by hand: at ten frames per second frame n is due after n tenths of a second.
class tst_PlaybackController : public QObject
{
    Q_OBJECT

private slots:
    void firstFrameIsDueAtOnce();
    void eachTickAimsAtTheNextFramesMoment_data();
    void eachTickAimsAtTheNextFramesMoment();
    void loopFromFrameSevenWrapsAndRestartsSound();
    void loopBeginsAtTheNearestEndOfTheRange_data();
    void loopBeginsAtTheNearestEndOfTheRange();
    void backwardsPlaybackIsSilent_data();
    void backwardsPlaybackIsSilent();
    void onceGoesThroughTheRangeWhateverIsActive();
    void onceLeavesTheFrameWhereItStarted();
    void onceWithStopAndStayLeavesTheLastFrameShown();
    void stoppedLoopWithStopAndStayLeavesTheFrameShown();
    void stopBeforeTheFirstFrameStaysWhereItWas();
    void rangeOfOneFrameCannotBePlayed_data();
    void rangeOfOneFrameCannotBePlayed();
    void lateTickSkipsFramesAndTellsOnce();
    void tickLateByLessThanAFrameIsNoLoss();
    void rateIsClamped_data();
    void rateIsClamped();
    void sameRateChangesNothing();
    void rateChangeGoesOnFromTheFrameOnShow_data();
    void rateChangeGoesOnFromTheFrameOnShow();
    void rateChangeBeforeTheFirstFrameLosesNone();
    void pauseKeepsTheRunAndUnPauseGoesOnAtTheFrameGiven();
    void onceGoesOnAtTheFrameGiven();
    void unPausedBackwardsRunIsSilent();
    void pauseAndUnPauseTellWhetherTheyActed();
    void pausedRunCanBeStopped();
    void turningRoundGoesOnFromTheFrameOnShow();
    void toggleStartsAndStops();
    void startAgainBeginsAtTheActiveFrame();
    void stopWithoutARunDoesNothing();
    void tickWithoutARunDoesNothing();
    void emptyRangeInTheMiddleDoesNoHarm();
    void receiverMayStopTheRun_data();
    void receiverMayStopTheRun();
    void modesAreSetWholeAndOneByOne();
    void realTimeFollowsTheClock();
    void slowPaintingSkipsFramesAndKeepsThePace();
};

namespace {

using Begin = void (*)(Controller &);

} // namespace

Q_DECLARE_METATYPE(Begin)

void tst_PlaybackController::firstFrameIsDueAtOnce()
{
    PlaybackStage stage(1, 10, 7);
    stage.controller.startPlayback();
    QVERIFY(stage.controller.isActive());
    QCOMPARE(stage.controller.intervalMs(), 0);
    QCOMPARE(stage.takeLog(), QStringList{"playing"});
    stage.tickAt(0);
    QCOMPARE(stage.takeLog(), (QStringList{"sound 7", "show 7"}));
}

void tst_PlaybackController::eachTickAimsAtTheNextFramesMoment_data()
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

void tst_PlaybackController::eachTickAimsAtTheNextFramesMoment()
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

void tst_PlaybackController::loopFromFrameSevenWrapsAndRestartsSound()
{
    PlaybackStage stage(1, 10, 7);
    stage.controller.startPlayback();
    stage.tickFrames(0, 5);
    QCOMPARE(stage.takeLog(), (QStringList{"playing", "sound 7", "show 7", "show 8", "show 9", "show 10", "sound 1",
                                           "show 1", "show 2"}));
    stage.controller.stopPlayback();
    QCOMPARE(stage.takeLog(), endAt(7));
    QVERIFY(!stage.controller.isActive());
}

void tst_PlaybackController::loopBeginsAtTheNearestEndOfTheRange_data()
{
    QTest::addColumn<int>("active");
    QTest::addColumn<QList<int>>("frames");
    QTest::addRow("behind") << 20 << QList<int>{9, 5, 6};
    QTest::addRow("before") << 2 << QList<int>{5, 6, 7};
    QTest::addRow("none") << -1 << QList<int>{5, 6, 7};
}

void tst_PlaybackController::loopBeginsAtTheNearestEndOfTheRange()
{
    QFETCH(int, active);
    QFETCH(QList<int>, frames);
    PlaybackStage stage(5, 9, active);
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    QCOMPARE(stage.shown, frames);
}

void tst_PlaybackController::backwardsPlaybackIsSilent_data()
{
    QTest::addColumn<Controller::PlaybackModes>("modes");
    QTest::addColumn<QList<int>>("frames");
    QTest::addRow("loop") << Controller::PlaybackModes(Controller::Loop | Controller::Backwards)
                          << QList<int>{4, 3, 6, 5, 4};
    QTest::addRow("once") << Controller::PlaybackModes(Controller::Backwards) << QList<int>{6, 5, 4, 3};
}

void tst_PlaybackController::backwardsPlaybackIsSilent()
{
    QFETCH(Controller::PlaybackModes, modes);
    QFETCH(QList<int>, frames);
    PlaybackStage stage(3, 6, 4, modes);
    stage.controller.startPlayback();
    stage.tickFrames(0, 4);
    QCOMPARE(stage.shown, frames);
    QVERIFY(stage.log.filter(QStringLiteral("sound")).isEmpty());
}

void tst_PlaybackController::onceGoesThroughTheRangeWhateverIsActive()
{
    PlaybackStage stage(3, 6, 5, {});
    stage.controller.startPlayback();
    stage.tickFrames(0, 4);
    QCOMPARE(stage.takeLog(), (QStringList{"playing", "sound 3", "show 3", "show 4", "show 5", "show 6"}) + endAt(5));
    QVERIFY(!stage.controller.isActive());
}

void tst_PlaybackController::onceLeavesTheFrameWhereItStarted()
{
    PlaybackStage stage(3, 6, 4, {});
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.takeLog();
    // The one tick that comes far behind the end shows nothing any more.
    stage.tickAt(5000);
    QCOMPARE(stage.takeLog(), QStringList{"skipped"} + endAt(4));
}

void tst_PlaybackController::onceWithStopAndStayLeavesTheLastFrameShown()
{
    PlaybackStage stage(3, 6, 4, Controller::StopAndStay);
    stage.controller.startPlayback();
    stage.tickFrames(0, 3);
    stage.takeLog();
    stage.tickAt(400);
    QCOMPARE(stage.takeLog(), endAt(6));
    QCOMPARE(stage.shown.last(), 6);
}

void tst_PlaybackController::stoppedLoopWithStopAndStayLeavesTheFrameShown()
{
    PlaybackStage stage(1, 10, 4, Controller::Loop | Controller::StopAndStay);
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.takeLog();
    stage.controller.stopPlayback();
    QCOMPARE(stage.takeLog(), endAt(6));
}

void tst_PlaybackController::stopBeforeTheFirstFrameStaysWhereItWas()
{
    PlaybackStage stage(1, 10, 4, Controller::Loop | Controller::StopAndStay);
    stage.controller.startPlayback();
    stage.takeLog();
    stage.controller.stopPlayback();
    QCOMPARE(stage.takeLog(), endAt(4));
}

void tst_PlaybackController::rangeOfOneFrameCannotBePlayed_data()
{
    QTest::addColumn<Begin>("begin");
    QTest::addRow("start") << Begin([](Controller &controller) { controller.startPlayback(); });
    QTest::addRow("toggle") << Begin([](Controller &controller) { controller.togglePlayback(); });
    QTest::addRow("flip back") << Begin([](Controller &controller) { controller.startFlipBack(); });
    QTest::addRow("flip and return") << Begin([](Controller &controller) { controller.flipBackAndReturn(4); });
}

void tst_PlaybackController::rangeOfOneFrameCannotBePlayed()
{
    QFETCH(Begin, begin);
    PlaybackStage stage(4, 4, 4, Controller::Loop | Controller::StopAndStay);
    begin(stage.controller);
    QCOMPARE(stage.takeLog(), endAt(4));
    QVERIFY(!stage.controller.isActive());
    stage.tickFrames(0, 3);
    QCOMPARE(stage.takeLog(), QStringList());
}

void tst_PlaybackController::lateTickSkipsFramesAndTellsOnce()
{
    PlaybackStage stage(1, 100, 1);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.takeLog();
    stage.tickAt(300);
    QCOMPARE(stage.takeLog(), (QStringList{"skipped", "show 4"}));
    stage.tickAt(400);
    QCOMPARE(stage.takeLog(), QStringList{"show 5"});
}

void tst_PlaybackController::tickLateByLessThanAFrameIsNoLoss()
{
    PlaybackStage stage(1, 100, 1);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.tickAt(149);
    QCOMPARE(stage.shown, (QList<int>{1, 2}));
    QVERIFY(!stage.log.contains(QStringLiteral("skipped")));
}

void tst_PlaybackController::rateIsClamped_data()
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

void tst_PlaybackController::rateIsClamped()
{
    QFETCH(double, wanted);
    QFETCH(double, rate);
    QFETCH(int, intervalMs);
    Controller controller;
    controller.setFrameRate(wanted);
    QCOMPARE(controller.frameRate(), rate);
    QCOMPARE(controller.intervalMs(), intervalMs);
}

void tst_PlaybackController::sameRateChangesNothing()
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

void tst_PlaybackController::rateChangeGoesOnFromTheFrameOnShow_data()
{
    QTest::addColumn<Controller::PlaybackModes>("modes");
    QTest::addColumn<QList<int>>("frames");
    QTest::addRow("loop") << Controller::PlaybackModes(Controller::Loop) << QList<int>{3, 4, 5, 6, 7};
    QTest::addRow("loop backwards") << Controller::PlaybackModes(Controller::Loop | Controller::Backwards)
                                    << QList<int>{3, 2, 1, 10, 9};
    QTest::addRow("once") << Controller::PlaybackModes() << QList<int>{1, 2, 3, 4, 5};
    QTest::addRow("once backwards") << Controller::PlaybackModes(Controller::Backwards) << QList<int>{10, 9, 8, 7, 6};
}

void tst_PlaybackController::rateChangeGoesOnFromTheFrameOnShow()
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

void tst_PlaybackController::rateChangeBeforeTheFirstFrameLosesNone()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.controller.setFrameRate(5.0);
    QCOMPARE(stage.controller.intervalMs(), 0);
    stage.tickAt(0);
    stage.tickAt(200);
    QCOMPARE(stage.shown, (QList<int>{3, 4}));
}

void tst_PlaybackController::pauseKeepsTheRunAndUnPauseGoesOnAtTheFrameGiven()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.takeLog();
    QVERIFY(stage.controller.pausePlayback());
    QCOMPARE(stage.takeLog(), QStringList{"silence 5"});
    QVERIFY(stage.controller.isActive());
    stage.tickAt(1000);
    QCOMPARE(stage.takeLog(), QStringList());
    stage.countFromNow();
    QVERIFY(stage.controller.unPausePlayback(9));
    QCOMPARE(stage.takeLog(), QStringList{"sound 9"});
    stage.tickFrames(1, 2);
    QCOMPARE(stage.takeLog(), (QStringList{"show 10", "sound 1", "show 1"}));
}

void tst_PlaybackController::onceGoesOnAtTheFrameGiven()
{
    PlaybackStage stage(1, 10, 3, {});
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.controller.pausePlayback();
    stage.countFromNow();
    stage.controller.unPausePlayback(8);
    stage.takeLog();
    stage.tickFrames(1, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"show 9", "show 10"}) + endAt(3));
}

void tst_PlaybackController::unPausedBackwardsRunIsSilent()
{
    PlaybackStage stage(1, 10, 3, Controller::Loop | Controller::Backwards);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.controller.pausePlayback();
    stage.takeLog();
    stage.controller.unPausePlayback(8);
    QCOMPARE(stage.takeLog(), QStringList());
    stage.tickAt(100);
    QCOMPARE(stage.takeLog(), QStringList{"show 7"});
}

void tst_PlaybackController::pauseAndUnPauseTellWhetherTheyActed()
{
    PlaybackStage stage(1, 10, 3);
    QVERIFY(!stage.controller.pausePlayback());
    QVERIFY(!stage.controller.unPausePlayback(5));
    stage.controller.startPlayback();
    QVERIFY(!stage.controller.unPausePlayback(5));
    QVERIFY(stage.controller.pausePlayback());
    QVERIFY(!stage.controller.pausePlayback());
}

void tst_PlaybackController::pausedRunCanBeStopped()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.controller.pausePlayback();
    stage.takeLog();
    stage.controller.stopPlayback();
    QCOMPARE(stage.takeLog(), endAt(3));
    QVERIFY(!stage.controller.isActive());
    QVERIFY(!stage.controller.unPausePlayback(5));
}

void tst_PlaybackController::turningRoundGoesOnFromTheFrameOnShow()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickFrames(0, 3);
    stage.countFromNow();
    stage.takeLog();
    stage.controller.setPlaybackMode(Controller::Backwards, true);
    stage.tickFrames(1, 2);
    QCOMPARE(stage.takeLog(), (QStringList{"silence 6", "show 5", "show 4"}));
    stage.countFromNow();
    stage.controller.setPlaybackMode(Controller::Backwards, false);
    stage.tickAt(100);
    QCOMPARE(stage.takeLog(), (QStringList{"sound 4", "show 5"}));
}

void tst_PlaybackController::toggleStartsAndStops()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.togglePlayback();
    QVERIFY(stage.controller.isActive());
    stage.tickAt(0);
    QCOMPARE(stage.shown, QList<int>{3});
    stage.controller.pausePlayback();
    stage.controller.togglePlayback();
    QVERIFY(!stage.controller.isActive());
}

void tst_PlaybackController::startAgainBeginsAtTheActiveFrame()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.controller.setActiveFrame(8);
    stage.countFromNow();
    stage.controller.startPlayback();
    stage.takeLog();
    stage.tickFrames(0, 1);
    QCOMPARE(stage.takeLog(), (QStringList{"sound 8", "show 8", "show 9"}));
}

void tst_PlaybackController::stopWithoutARunDoesNothing()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.stopPlayback();
    QCOMPARE(stage.takeLog(), QStringList());
}

void tst_PlaybackController::tickWithoutARunDoesNothing()
{
    PlaybackStage stage(1, 10, 3);
    stage.tickFrames(0, 3);
    QCOMPARE(stage.takeLog(), QStringList());
}

void tst_PlaybackController::emptyRangeInTheMiddleDoesNoHarm()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.controller.setFrameRange(5, 4);
    stage.tickFrames(1, 3);
    stage.controller.setFrameRange(2, 4);
    stage.tickFrames(4, 6);
    for (int frame : stage.shown.mid(4))
        QVERIFY(frame >= 2 && frame <= 4);
}

void tst_PlaybackController::receiverMayStopTheRun_data()
{
    QTest::addColumn<int>("signal");
    QTest::addRow("shown frame") << 0;
    QTest::addRow("sound") << 1;
    QTest::addRow("skipped frame") << 2;
}

void tst_PlaybackController::receiverMayStopTheRun()
{
    QFETCH(int, signal);
    PlaybackStage stage(1, 10, 3);
    Controller &controller = stage.controller;
    if (signal == 0)
        connect(&controller, &Controller::showFrame, &controller, &Controller::stopPlayback);
    else if (signal == 1)
        connect(&controller, &Controller::audioPlaybackChanged, &controller, &Controller::stopPlayback);
    else
        connect(&controller, &Controller::skippedFrame, &controller, &Controller::stopPlayback);
    controller.startPlayback();
    stage.tickAt(0);
    stage.tickAt(500);
    QVERIFY(!controller.isActive());
    QCOMPARE(stage.log.mid(stage.log.size() - 3), endAt(3));
    QCOMPARE(stage.shown, signal == 1 ? QList<int>{} : QList<int>{3});
}

void tst_PlaybackController::modesAreSetWholeAndOneByOne()
{
    Controller controller;
    QCOMPARE(controller.playbackModes(), Controller::PlaybackModes(Controller::Loop));
    controller.setPlaybackMode(Controller::StopAndStay, true);
    QCOMPARE(controller.playbackModes(), Controller::Loop | Controller::StopAndStay);
    controller.setPlaybackMode(Controller::Loop, false);
    QCOMPARE(controller.playbackModes(), Controller::PlaybackModes(Controller::StopAndStay));
    controller.setPlaybackMode(Controller::Backwards);
    QCOMPARE(controller.property("playbackModes").value<Controller::PlaybackModes>(),
             Controller::PlaybackModes(Controller::Backwards));
    QVERIFY(controller.setProperty("frameRate", 24.0));
    QCOMPARE(controller.frameRate(), 24.0);
}

void tst_PlaybackController::realTimeFollowsTheClock()
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

void tst_PlaybackController::slowPaintingSkipsFramesAndKeepsThePace()
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

QTEST_GUILESS_MAIN(tst_PlaybackController)
#include "tst_playbackcontroller.moc"
