#include "playbackstage.h"

#include <QTest>

using Controller = PlaybackController;

/// What runs show and tell, at ten frames per second: frame n is due after n tenths of a second.
class tst_PlaybackController : public QObject
{
    Q_OBJECT

private slots:
    void firstFrameIsDueAtOnce();
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
    void pauseKeepsTheRunAndUnPauseGoesOnAtTheFrameGiven();
    void onceGoesOnAtTheFrameGiven();
    void onceThatGoesOnOutsideTheRangeEnds_data();
    void onceThatGoesOnOutsideTheRangeEnds();
    void onceBeginsAnewAfterARunThatWentOn();
    void unPausedBackwardsRunIsSilent();
    void pauseAndUnPauseTellWhetherTheyActed();
    void pausedRunCanBeStopped();
    void pausedRunCanBeStoppedByWhoHearsOfIt();
    void startEndsThePause();
    void turningRoundGoesOnFromTheFrameOnShow();
    void turningOnceRoundPlaysBackToTheBeginning();
    void turningAPausedRunLeavesItPaused();
    void turningBeforeTheFirstFrameSaysNothing();
    void toggleStartsAndStops();
    void startAgainBeginsAtTheActiveFrame();
    void stopWithoutARunDoesNothing();
    void tickWithoutARunDoesNothing();
    void emptyRangeInTheMiddleDoesNoHarm();
    void receiverMayStopTheRun_data();
    void receiverMayStopTheRun();
    void receiverMayBeginAnotherRun_data();
    void receiverMayBeginAnotherRun();
    void modesAreSetWholeAndOneByOne();
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

void tst_PlaybackController::onceThatGoesOnOutsideTheRangeEnds_data()
{
    QTest::addColumn<Controller::PlaybackModes>("modes");
    QTest::addColumn<int>("goesOnAt");
    const Controller::PlaybackModes backwards(Controller::Backwards);
    QTest::addRow("forward, before the range") << Controller::PlaybackModes() << 1;
    QTest::addRow("forward, behind the range") << Controller::PlaybackModes() << 12;
    QTest::addRow("backwards, before the range") << backwards << 1;
    QTest::addRow("backwards, behind the range") << backwards << 12;
}

void tst_PlaybackController::onceThatGoesOnOutsideTheRangeEnds()
{
    QFETCH(Controller::PlaybackModes, modes);
    QFETCH(int, goesOnAt);
    PlaybackStage stage(4, 8, 5, modes);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.controller.pausePlayback();
    stage.countFromNow();
    stage.controller.unPausePlayback(goesOnAt);
    stage.takeLog();
    stage.tickAt(100);
    QCOMPARE(stage.takeLog(), endAt(5));
}

void tst_PlaybackController::onceBeginsAnewAfterARunThatWentOn()
{
    PlaybackStage stage(1, 6, 3, {});
    stage.controller.startPlayback();
    stage.tickFrames(0, 1);
    stage.controller.pausePlayback();
    stage.countFromNow();
    stage.controller.unPausePlayback(5);
    stage.tickFrames(1, 2);
    QVERIFY(!stage.controller.isActive());
    stage.shown.clear();
    stage.countFromNow();
    stage.controller.startPlayback();
    stage.tickFrames(0, 1);
    QCOMPARE(stage.shown, (QList<int>{1, 2}));
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

void tst_PlaybackController::pausedRunCanBeStoppedByWhoHearsOfIt()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickAt(0);
    connect(&stage.controller, &Controller::audioPlaybackChanged, &stage.controller, &Controller::stopPlayback);
    QVERIFY(stage.controller.pausePlayback());
    QVERIFY(!stage.controller.isActive());
    QVERIFY(!stage.controller.unPausePlayback(5));
}

void tst_PlaybackController::startEndsThePause()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickAt(0);
    stage.controller.pausePlayback();
    stage.controller.startPlayback();
    QVERIFY(!stage.controller.unPausePlayback(8));
    stage.tickAt(0);
    QCOMPARE(stage.shown, (QList<int>{3, 3}));
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

void tst_PlaybackController::turningOnceRoundPlaysBackToTheBeginning()
{
    PlaybackStage stage(4, 8, 5, {});
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.countFromNow();
    stage.takeLog();
    stage.controller.setPlaybackMode(Controller::Backwards, true);
    stage.tickFrames(1, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"silence 6", "show 5", "show 4"}) + endAt(5));
}

void tst_PlaybackController::turningAPausedRunLeavesItPaused()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickFrames(0, 2);
    stage.controller.pausePlayback();
    stage.takeLog();
    stage.controller.setPlaybackMode(Controller::Backwards, true);
    stage.tickAt(1000);
    QCOMPARE(stage.takeLog(), QStringList());
    stage.countFromNow();
    QVERIFY(stage.controller.unPausePlayback(5));
    stage.tickAt(100);
    QCOMPARE(stage.takeLog(), QStringList{"show 4"});
}

void tst_PlaybackController::turningBeforeTheFirstFrameSaysNothing()
{
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.takeLog();
    stage.controller.setPlaybackMode(Controller::Backwards, true);
    stage.controller.setPlaybackMode(Controller::Backwards, false);
    QCOMPARE(stage.takeLog(), QStringList());
    stage.tickFrames(0, 1);
    QCOMPARE(stage.takeLog(), (QStringList{"sound 3", "show 3", "show 4"}));
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

void tst_PlaybackController::receiverMayBeginAnotherRun_data()
{
    QTest::addColumn<bool>("onSound");
    QTest::addRow("sound") << true;
    QTest::addRow("skipped frame") << false;
}

/// The tick that told of it shows nothing any more: the new run's first frame is due with its own first tick.
void tst_PlaybackController::receiverMayBeginAnotherRun()
{
    QFETCH(bool, onSound);
    PlaybackStage stage(1, 10, 3);
    Controller &controller = stage.controller;
    controller.startPlayback();
    stage.tickAt(0);
    const auto begin = [&] {
        controller.disconnect(this);
        controller.setPlaybackMode(Controller::Loop, false);
        controller.startPlayback();
        stage.countFromNow();
    };
    if (onSound)
        connect(&controller, &Controller::audioPlaybackChanged, this, begin);
    else
        connect(&controller, &Controller::skippedFrame, this, begin);
    stage.takeLog();
    // Two rounds later: frames are skipped, and the sound begins again.
    stage.tickAt(1900);
    QCOMPARE(stage.log.filter(QStringLiteral("show")), QStringList());
    QVERIFY(controller.isActive());
    stage.tickFrames(0, 1);
    QCOMPARE(stage.log.filter(QStringLiteral("show")), (QStringList{"show 1", "show 2"}));
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

QTEST_GUILESS_MAIN(tst_PlaybackController)
#include "tst_playbackcontroller.moc"
