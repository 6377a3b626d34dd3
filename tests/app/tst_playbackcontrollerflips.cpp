#include "playbackstage.h"

#include <QTest>

using Controller = PlaybackController;

/// Flipping by hand, at ten frames per second.
class tst_PlaybackControllerFlips : public QObject
{
    Q_OBJECT

private slots:
    void flipBackWaitsAtTheRangesLowerEnd();
    void returnFlipEndsWhereTheFlipBegan();
    void returnFlipOfALateRunGoesBackToTheActiveFrame();
    void returnFlipBeforeAFrameWasShownEndsAtOnce();
    void returnFlipForgetsWhatAnEarlierRunHasShown();
    void returnFlipGoesForwardAfterOneThatWentBack();
    void returnFlipNeedsARun();
    void flipsIgnoreStopAndStay();
    void flipOfFixedLengthReturns_data();
    void flipOfFixedLengthReturns();
    void lateFlipContinuesFromTheFrameReached();
    void allowedReturnFlipRunsToTheEndOfTheRange();
    void allowedReturnFlipBackwardsRunsToTheBeginning();
    void allowanceEndsWithTheRun();
    void returnFlipArrivesInSpiteOfARateChange();
    void flipBackLosesNoFrameByARateChange();
    void flipOfFixedLengthKeepsItsLengthAfterARateChange();
    void flipTurnedAfterARateChangeReturns();
    void loopTurnedAfterARateChangeGoesBackToWhereItBegan();
    void unPausedReturnFlipGoesOnToWhereItBegan();
    void turningAgainTakesTheAllowanceBack();
    void flipOfFixedLengthReturnsForwardAfterAReturnThatWentBack();
    void flipBegunWhilePlayingForgetsTheFrameOnShow_data();
    void flipBegunWhilePlayingForgetsTheFrameOnShow();
    void flipsAreNotTurnedByTheModes();
    void flipTurnedWhereItBeganAlternates();
};

void tst_PlaybackControllerFlips::flipBackWaitsAtTheRangesLowerEnd()
{
    PlaybackStage stage(3, 10, 6);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 4);
    QCOMPARE(stage.takeLog(), (QStringList{"playing", "show 5", "show 4", "show 3", "show 3", "show 3"}));
    QVERIFY(stage.controller.isActive());
}

void tst_PlaybackControllerFlips::returnFlipEndsWhereTheFlipBegan()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 2);
    QCOMPARE(stage.shown, (QList<int>{5, 4, 3}));
    stage.takeLog();
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.tickFrames(0, 2);
    QCOMPARE(stage.takeLog(), (QStringList{"playing", "show 3", "show 4", "show 5"}));
    // The active frame is shown once more by becoming it.
    stage.tickAt(300);
    QCOMPARE(stage.takeLog(), endAt(6));
}

void tst_PlaybackControllerFlips::returnFlipOfALateRunGoesBackToTheActiveFrame()
{
    PlaybackStage stage(1, 10, 4);
    stage.controller.startPlayback();
    stage.tickFrames(0, 3);
    QCOMPARE(stage.shown.last(), 7);
    stage.takeLog();
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.tickFrames(0, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"playing", "show 7", "show 6", "show 5"}) + endAt(4));
}

void tst_PlaybackControllerFlips::returnFlipBeforeAFrameWasShownEndsAtOnce()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startFlipBack();
    stage.controller.startReturnFlip();
    stage.takeLog();
    stage.tickAt(0);
    QCOMPARE(stage.takeLog(), endAt(6));
}

void tst_PlaybackControllerFlips::returnFlipForgetsWhatAnEarlierRunHasShown()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startPlayback();
    stage.tickFrames(0, 3);
    stage.controller.stopPlayback();
    stage.countFromNow();
    stage.controller.startFlipBack();
    stage.controller.startReturnFlip();
    stage.takeLog();
    stage.tickAt(0);
    QCOMPARE(stage.takeLog(), endAt(6));
}

void tst_PlaybackControllerFlips::returnFlipGoesForwardAfterOneThatWentBack()
{
    PlaybackStage stage(1, 10, 4);
    stage.controller.startPlayback();
    stage.tickFrames(0, 3);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.tickAt(0);
    stage.controller.stopPlayback();

    stage.countFromNow();
    stage.controller.startFlipBack();
    stage.tickFrames(0, 2);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.takeLog();
    stage.tickFrames(0, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"show 1", "show 2", "show 3"}) + endAt(4));
}

void tst_PlaybackControllerFlips::returnFlipNeedsARun()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startReturnFlip();
    QVERIFY(!stage.controller.isActive());
    QCOMPARE(stage.takeLog(), QStringList());
}

void tst_PlaybackControllerFlips::flipsIgnoreStopAndStay()
{
    PlaybackStage stage(1, 10, 6, Controller::Loop | Controller::StopAndStay);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 2);
    stage.takeLog();
    stage.controller.stopPlayback();
    QCOMPARE(stage.takeLog(), endAt(6));
}

void tst_PlaybackControllerFlips::flipOfFixedLengthReturns_data()
{
    QTest::addColumn<int>("active");
    QTest::addColumn<int>("length");
    QTest::addColumn<QList<int>>("frames");
    QTest::addRow("four") << 10 << 4 << QList<int>{9, 8, 7, 6, 7, 8, 9};
    QTest::addRow("one") << 10 << 1 << QList<int>{9};
    QTest::addRow("range too short") << 5 << 4 << QList<int>{4, 3, 4};
    QTest::addRow("second frame") << 4 << 4 << QList<int>{3};
    QTest::addRow("first frame") << 3 << 4 << QList<int>{3};
}

void tst_PlaybackControllerFlips::flipOfFixedLengthReturns()
{
    QFETCH(int, active);
    QFETCH(int, length);
    QFETCH(QList<int>, frames);
    PlaybackStage stage(3, 12, active);
    stage.controller.flipBackAndReturn(length);
    stage.tickFrames(0, 10);
    QCOMPARE(stage.shown, frames);
    QCOMPARE(stage.log.mid(stage.log.size() - 3), endAt(active));
    QVERIFY(!stage.controller.isActive());
}

void tst_PlaybackControllerFlips::lateFlipContinuesFromTheFrameReached()
{
    PlaybackStage stage(1, 12, 10);
    stage.controller.flipBackAndReturn(4);
    stage.tickAt(0);
    stage.tickAt(300);
    stage.tickFrames(4, 8);
    QCOMPARE(stage.shown, (QList<int>{9, 6, 7, 8, 9}));
}

void tst_PlaybackControllerFlips::allowedReturnFlipRunsToTheEndOfTheRange()
{
    PlaybackStage stage(1, 8, 6);
    stage.controller.startFlipBack();
    stage.tickAt(0);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.controller.allowSwitchFlipDirection();
    stage.takeLog();
    stage.tickFrames(0, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"show 5", "show 6", "show 7"}) + endAt(6));
}

void tst_PlaybackControllerFlips::allowedReturnFlipBackwardsRunsToTheBeginning()
{
    PlaybackStage stage(2, 8, 4);
    stage.controller.startPlayback();
    stage.tickFrames(0, 1);
    QCOMPARE(stage.shown.last(), 5);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.controller.allowSwitchFlipDirection();
    stage.takeLog();
    stage.tickFrames(0, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"show 5", "show 4", "show 3"}) + endAt(4));
}

void tst_PlaybackControllerFlips::allowanceEndsWithTheRun()
{
    PlaybackStage stage(1, 8, 5);
    stage.controller.startPlayback();
    stage.controller.allowSwitchFlipDirection();
    stage.controller.stopPlayback();
    stage.controller.flipBackAndReturn(2);
    stage.tickFrames(0, 5);
    QCOMPARE(stage.shown, (QList<int>{4, 3, 4}));
}

void tst_PlaybackControllerFlips::returnFlipArrivesInSpiteOfARateChange()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 3);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.tickFrames(0, 1);
    stage.shown.clear();
    stage.takeLog();
    stage.controller.setFrameRate(5.0);
    stage.countFromNow();
    for (int moment : {200, 400, 600})
        stage.tickAt(moment);
    QCOMPARE(stage.takeLog(), (QStringList{"show 4", "show 5"}) + endAt(6));
}

void tst_PlaybackControllerFlips::flipBackLosesNoFrameByARateChange()
{
    PlaybackStage stage(1, 12, 10);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 2);
    QCOMPARE(stage.shown, (QList<int>{9, 8, 7}));
    stage.countFromNow();
    stage.controller.setFrameRate(5.0);
    stage.tickAt(200);
    stage.tickAt(400);
    QCOMPARE(stage.shown, (QList<int>{9, 8, 7, 6, 5}));
}

void tst_PlaybackControllerFlips::flipOfFixedLengthKeepsItsLengthAfterARateChange()
{
    PlaybackStage stage(1, 12, 10);
    stage.controller.flipBackAndReturn(4);
    stage.tickFrames(0, 1);
    stage.countFromNow();
    stage.controller.setFrameRate(5.0);
    for (int index = 1; index <= 6; ++index)
        stage.tickAt(200 * index);
    QCOMPARE(stage.shown, (QList<int>{9, 8, 7, 6, 7, 8, 9}));
    QCOMPARE(stage.log.mid(stage.log.size() - 3), endAt(10));
}

void tst_PlaybackControllerFlips::flipTurnedAfterARateChangeReturns()
{
    PlaybackStage stage(1, 12, 10);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 2);
    stage.controller.setFrameRate(5.0);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.takeLog();
    for (int index = 0; index <= 3; ++index)
        stage.tickAt(200 * index);
    QCOMPARE(stage.takeLog(), (QStringList{"show 7", "show 8", "show 9"}) + endAt(10));
}

void tst_PlaybackControllerFlips::loopTurnedAfterARateChangeGoesBackToWhereItBegan()
{
    PlaybackStage stage(1, 7, 3);
    stage.controller.startPlayback();
    stage.tickFrames(0, 4);
    QCOMPARE(stage.shown.last(), 7);
    stage.countFromNow();
    stage.controller.setFrameRate(5.0);
    for (int index = 1; index <= 5; ++index)
        stage.tickAt(200 * index);
    QCOMPARE(stage.shown.last(), 5);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.takeLog();
    for (int index = 0; index <= 2; ++index)
        stage.tickAt(200 * index);
    QCOMPARE(stage.takeLog(), (QStringList{"show 5", "show 4"}) + endAt(3));
}

void tst_PlaybackControllerFlips::unPausedReturnFlipGoesOnToWhereItBegan()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 3);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.tickAt(0);
    stage.controller.pausePlayback();
    stage.controller.unPausePlayback(3);
    stage.takeLog();
    stage.tickFrames(1, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"show 4", "show 5"}) + endAt(6));
}

void tst_PlaybackControllerFlips::turningAgainTakesTheAllowanceBack()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 2);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.controller.allowSwitchFlipDirection();
    stage.tickFrames(0, 1);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.takeLog();
    stage.tickFrames(0, 2);
    QCOMPARE(stage.takeLog(), (QStringList{"show 4", "show 5"}) + endAt(6));
}

void tst_PlaybackControllerFlips::flipOfFixedLengthReturnsForwardAfterAReturnThatWentBack()
{
    PlaybackStage stage(1, 12, 10);
    stage.controller.startPlayback();
    stage.tickFrames(0, 1);
    stage.controller.startReturnFlip();
    stage.controller.stopPlayback();
    stage.shown.clear();
    stage.countFromNow();
    stage.controller.flipBackAndReturn(2);
    stage.tickFrames(0, 3);
    QCOMPARE(stage.shown, (QList<int>{9, 8, 9}));
    QVERIFY(!stage.controller.isActive());
}

void tst_PlaybackControllerFlips::flipBegunWhilePlayingForgetsTheFrameOnShow_data()
{
    QTest::addColumn<bool>("returns");
    QTest::addRow("flip back") << false;
    QTest::addRow("flip back and return") << true;
}

void tst_PlaybackControllerFlips::flipBegunWhilePlayingForgetsTheFrameOnShow()
{
    QFETCH(bool, returns);
    PlaybackStage stage(1, 10, 3);
    stage.controller.startPlayback();
    stage.tickFrames(0, 4);
    QCOMPARE(stage.shown.last(), 7);
    stage.countFromNow();
    if (returns)
        stage.controller.flipBackAndReturn(2);
    else
        stage.controller.startFlipBack();
    stage.controller.setFrameRate(5.0);
    stage.tickAt(0);
    QCOMPARE(stage.shown.last(), 2);
}

void tst_PlaybackControllerFlips::flipsAreNotTurnedByTheModes()
{
    PlaybackStage stage(1, 10, 6);
    stage.controller.startFlipBack();
    stage.tickFrames(0, 1);
    stage.takeLog();
    stage.controller.setPlaybackMode(Controller::Backwards, true);
    stage.tickFrames(2, 3);
    QCOMPARE(stage.takeLog(), (QStringList{"show 3", "show 2"}));
}

/// Where it began there is no way back to tell the direction: it is the other one than that of the flip before.
void tst_PlaybackControllerFlips::flipTurnedWhereItBeganAlternates()
{
    PlaybackStage stage(1, 5, 3);
    const auto turnAtOnce = [&stage] {
        stage.countFromNow();
        stage.controller.startFlipBack();
        stage.controller.startReturnFlip();
        stage.controller.allowSwitchFlipDirection();
        stage.shown.clear();
        stage.tickFrames(0, 3);
    };
    turnAtOnce();
    QCOMPARE(stage.shown, (QList<int>{3, 2}));

    stage.countFromNow();
    stage.controller.startFlipBack();
    stage.tickAt(0);
    stage.countFromNow();
    stage.controller.startReturnFlip();
    stage.controller.allowSwitchFlipDirection();
    stage.tickFrames(0, 3);
    QVERIFY(!stage.controller.isActive());
    turnAtOnce();
    QCOMPARE(stage.shown, (QList<int>{3, 4}));
}

QTEST_GUILESS_MAIN(tst_PlaybackControllerFlips)
#include "tst_playbackcontrollerflips.moc"
