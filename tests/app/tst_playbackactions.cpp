#include "mainwindowfixture.h"

#include "app/playbackcontroller.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QInputDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

/// The actions of playing and of sound, triggered in the real window.
class tst_PlaybackActions : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void cleanup();
    void playingShowsFramesAndStopsWhereItBegan();
    void playActionTellsWhatItWouldDo();
    void playingCommitsTheStrokeFirst();
    void stopAndStayMakesTheShownFrameTheActiveOne();
    void modesFollowTheirActions();
    void editEndsPlaybackFirst_data();
    void editEndsPlaybackFirst();
    void undoWhilePlayingUndoesWhatWasDoneBefore();
    void viewActionsDoNotEndPlayback();
    void drawingEndsPlaybackFirst();
    void anotherSceneEndsPlayback();
    void newRangeAndRateReachTheClock();
    void returnFlipFromTheMenuComesBack();
    void returnFlipFromTheMenuEndsPlaybackFirst();
    void soundIsHeardInEveryRoundUntilStopped();
    void soundIsNotHeardBackwards();
    void frameRate_data();
    void frameRate();
    void checkedFrameRateFollowsTheScene();
    void customFrameRateIsAskedFor();
    void cancelledFrameRateChangesNothing();
    void frameRateAskedForOneSceneIsNotGivenToAnother();
    void soundIsMutedAndHeardAgain();
    void discardedSoundComesBackByUndo();

private:
    PlaybackController *playback() const { return m_window->findChild<PlaybackController *>(); }
    Model::AudioLayer *sound() const { return static_cast<Model::AudioLayer *>(scene()->layer(1)); }
    void startPlaying();
    /// Some bytes in the place of the silence.
    void addSound();
    /// Answers the next input dialog: types \a text and accepts, or cancels if it is empty.
    static void answerInputDialog(const QString &text);
};

void tst_PlaybackActions::cleanup()
{
    playback()->stopPlayback();
    playback()->setPlaybackMode(PlaybackController::Loop);
}

void tst_PlaybackActions::addSound()
{
    auto sound = std::make_shared<Model::AudioLayer>();
    sound->setOriginalAudioData("bytes");
    scene()->swapLayer(1, sound);
}

void tst_PlaybackActions::startPlaying()
{
    action(MR::Action::Play)->trigger();
    QVERIFY(playback()->isActive());
    QTRY_VERIFY(scene()->scrubFrame() >= 1);
}

void tst_PlaybackActions::answerInputDialog(const QString &text)
{
    QTimer::singleShot(0, qApp, [text] {
        auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        if (text.isEmpty()) {
            dialog->reject();
            return;
        }
        auto *edit = dialog->findChild<QLineEdit *>();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    });
}

void tst_PlaybackActions::playingShowsFramesAndStopsWhereItBegan()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    goTo(3);
    QSignalSpy shown(scene(), &Model::Scene::scrubFrameChanged);
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(shown.count() > 6);
    for (const QList<QVariant> &signal : shown)
        QVERIFY(signal.at(0).toInt() >= 1 && signal.at(0).toInt() <= 6);
    QCOMPARE(scene()->activeFrame(), 3);
    action(MR::Action::Play)->trigger();
    QVERIFY(!playback()->isActive());
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(scene()->activeFrame(), 3);
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_PlaybackActions::playActionTellsWhatItWouldDo()
{
    makeCells("ooo");
    QCOMPARE(action(MR::Action::Play)->text(), QStringLiteral("Play"));
    startPlaying();
    QCOMPARE(action(MR::Action::Play)->text(), QStringLiteral("Stop"));
    action(MR::Action::Play)->trigger();
    QCOMPARE(action(MR::Action::Play)->text(), QStringLiteral("Play"));
}

void tst_PlaybackActions::playingCommitsTheStrokeFirst()
{
    makeCells("ooo");
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(scene()->hasActiveStroke());
    action(MR::Action::Play)->trigger();
    QVERIFY(!scene()->hasActiveStroke());
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Draw"));
    QVERIFY(playback()->isActive());
    release(paperPoint(50, 0));
}

void tst_PlaybackActions::stopAndStayMakesTheShownFrameTheActiveOne()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    action(MR::Action::PlayStopAndStay)->trigger();
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(scene()->scrubFrame() > 1);
    const int shown = scene()->scrubFrame();
    action(MR::Action::Play)->trigger();
    QCOMPARE(scene()->activeFrame(), shown);
    QCOMPARE(scene()->scrubFrame(), -1);
    action(MR::Action::PlayStopAndStay)->trigger();
}

void tst_PlaybackActions::modesFollowTheirActions()
{
    using Mode = PlaybackController::PlaybackMode;
    QVERIFY(action(MR::Action::PlayLoop)->isChecked());
    QVERIFY(!action(MR::Action::PlayOnce)->isChecked());
    action(MR::Action::PlayOnce)->trigger();
    QVERIFY(!playback()->playbackModes().testFlag(Mode::Loop));
    QVERIFY(action(MR::Action::PlayOnce)->isChecked() && !action(MR::Action::PlayLoop)->isChecked());
    action(MR::Action::PlayBackwards)->trigger();
    QVERIFY(playback()->playbackModes().testFlag(Mode::Backwards));
    action(MR::Action::PlayBackwards)->trigger();
    QVERIFY(!playback()->playbackModes().testFlag(Mode::Backwards));
    action(MR::Action::PlayStopAndStay)->trigger();
    QVERIFY(playback()->playbackModes().testFlag(Mode::StopAndStay));
    action(MR::Action::PlayStopAndStay)->trigger();
    action(MR::Action::PlayLoop)->trigger();
    QCOMPARE(playback()->playbackModes(), PlaybackController::PlaybackModes(Mode::Loop));
}

void tst_PlaybackActions::editEndsPlaybackFirst_data()
{
    QTest::addColumn<MR::Action>("which");
    using enum MR::Action;
    QTest::newRow("edit of a cell") << AddBlankDrawing;
    QTest::newRow("key drawing") << MarkAsKeyDrawing;
    QTest::newRow("layer") << NewLayer;
    QTest::newRow("step") << StepForward;
    QTest::newRow("jump") << JumpToEnd;
    QTest::newRow("undo") << Undo;
}

void tst_PlaybackActions::editEndsPlaybackFirst()
{
    QFETCH(MR::Action, which);
    makeCells("ooo");
    drawLine();
    startPlaying();
    action(which)->trigger();
    QVERIFY(!playback()->isActive());
    QCOMPARE(scene()->scrubFrame(), -1);
}

void tst_PlaybackActions::undoWhilePlayingUndoesWhatWasDoneBefore()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    drawLine();
    drawLine();
    action(MR::Action::Undo)->trigger();
    action(MR::Action::PlayStopAndStay)->trigger();
    for (const MR::Action which : {MR::Action::Redo, MR::Action::Undo}) {
        action(MR::Action::Play)->trigger();
        QTRY_VERIFY(scene()->scrubFrame() > 1);
        action(which)->trigger();
        QVERIFY(!playback()->isActive());
        QCOMPARE(scene()->scrubFrame(), -1);
        QCOMPARE(scene()->activeFrame(), 1);
        QCOMPARE(scene()->undoStack()->count(), 2);
        QCOMPARE(scene()->undoStack()->index(), which == MR::Action::Redo ? 2 : 1);
    }
    action(MR::Action::PlayStopAndStay)->trigger();
}

void tst_PlaybackActions::viewActionsDoNotEndPlayback()
{
    makeCells("ooo");
    startPlaying();
    action(MR::Action::ZoomIn)->trigger();
    action(MR::Action::MirrorView)->trigger();
    action(MR::Action::MirrorView)->trigger();
    QVERIFY(playback()->isActive());
}

void tst_PlaybackActions::drawingEndsPlaybackFirst()
{
    makeCells("ooo");
    goTo(2);
    startPlaying();
    drawLine();
    QVERIFY(!playback()->isActive());
    QVERIFY(!drawing(2).isEmpty());
}

void tst_PlaybackActions::anotherSceneEndsPlayback()
{
    makeCells("ooo");
    startPlaying();
    newCleanScene();
    QVERIFY(!playback()->isActive());
    QVERIFY(!action(MR::Action::Play)->isEnabled());
}

void tst_PlaybackActions::newRangeAndRateReachTheClock()
{
    makeCells("oooooo");
    scene()->setFrameRate(50);
    QCOMPARE(playback()->frameRate(), 50.0);
    scene()->setFrameRange(4, 5, 4, 0);
    QSignalSpy shown(scene(), &Model::Scene::scrubFrameChanged);
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(shown.count() > 3);
    for (const QList<QVariant> &signal : shown)
        QVERIFY(signal.at(0).toInt() == 4 || signal.at(0).toInt() == 5);
}

void tst_PlaybackActions::returnFlipFromTheMenuComesBack()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    goTo(5);
    QList<int> shown;
    connect(scene(), &Model::Scene::scrubFrameChanged, this, [&shown](int frameId) { shown.append(frameId); });
    action(MR::Action::ReturnFlip)->trigger();
    QVERIFY(playback()->isActive());
    QTRY_VERIFY(!playback()->isActive());
    // Up to four frames back and again forward; late ticks may leave some out.
    const int lowest = *std::min_element(shown.begin(), shown.end() - 1);
    QVERIFY2(lowest >= 1 && lowest <= 4, qPrintable(QString::number(lowest)));
    QCOMPARE(scene()->activeFrame(), 5);
    QCOMPARE(scene()->scrubFrame(), -1);
}

void tst_PlaybackActions::returnFlipFromTheMenuEndsPlaybackFirst()
{
    makeCells("oooooo");
    addSound();
    action(MR::Action::PlayStopAndStay)->trigger();
    goTo(3);
    startPlaying();
    const int shown = scene()->scrubFrame();
    QSignalSpy silences(sound(), &Model::AudioLayer::stopAudio);
    action(MR::Action::ReturnFlip)->trigger();
    // All of this before the flip shows its first frame.
    QCOMPARE(scene()->scrubFrame(), -1);
    QCOMPARE(silences.count(), 1);
    QCOMPARE(scene()->activeFrame(), shown);
    QVERIFY(playback()->isFlipping());
    QTRY_VERIFY(!playback()->isActive());
    QCOMPARE(scene()->activeFrame(), shown);
    action(MR::Action::PlayStopAndStay)->trigger();
}

void tst_PlaybackActions::soundIsHeardInEveryRoundUntilStopped()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    addSound();
    goTo(3);
    QSignalSpy starts(sound(), &Model::AudioLayer::startAudio);
    QSignalSpy stretches(sound(), &Model::AudioLayer::framesToPlay);
    QSignalSpy silences(sound(), &Model::AudioLayer::stopAudio);
    action(MR::Action::Play)->trigger();
    QTRY_COMPARE(starts.count(), 1);
    QCOMPARE(stretches.first(), (QList<QVariant>{3, 6}));
    QTRY_COMPARE(starts.count(), 3);
    QCOMPARE(stretches.count(), 3);
    // A late tick may begin the round behind its first frame.
    QVERIFY(stretches.last().first().toInt() < 6);
    QCOMPARE(silences.count(), 0);
    action(MR::Action::Play)->trigger();
    QCOMPARE(silences.count(), 1);
    QCOMPARE(starts.count(), 3);
}

void tst_PlaybackActions::soundIsNotHeardBackwards()
{
    makeCells("oooooo");
    scene()->setFrameRate(60);
    addSound();
    goTo(3);
    QSignalSpy starts(sound(), &Model::AudioLayer::startAudio);
    QSignalSpy shown(scene(), &Model::Scene::scrubFrameChanged);
    action(MR::Action::PlayBackwards)->trigger();
    action(MR::Action::Play)->trigger();
    QTRY_VERIFY(shown.count() > 12);
    QCOMPARE(starts.count(), 0);
    action(MR::Action::Play)->trigger();
    action(MR::Action::PlayBackwards)->trigger();
}

void tst_PlaybackActions::frameRate_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<double>("rate");
    using enum MR::Action;
    QTest::newRow("6") << FrameRate06 << 6.0;
    QTest::newRow("12.5") << FrameRate12_5 << 12.5;
    QTest::newRow("15") << FrameRate15 << 15.0;
    QTest::newRow("24") << FrameRate24 << 24.0;
    QTest::newRow("25") << FrameRate25 << 25.0;
    QTest::newRow("30") << FrameRate30 << 30.0;
    QTest::newRow("50") << FrameRate50 << 50.0;
    QTest::newRow("60") << FrameRate60 << 60.0;
}

void tst_PlaybackActions::frameRate()
{
    QFETCH(MR::Action, which);
    QVERIFY(action(MR::Action::FrameRate12)->isChecked());
    action(which)->trigger();
    QTEST(scene()->frameRate(), "rate");
    QVERIFY(action(which)->isChecked());
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Set Frame Rate"));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->frameRate(), 12.0);
    QVERIFY(action(MR::Action::FrameRate12)->isChecked());
}

void tst_PlaybackActions::checkedFrameRateFollowsTheScene()
{
    scene()->setFrameRate(18);
    QVERIFY(action(MR::Action::FrameRateCustom)->isChecked());
    scene()->setFrameRate(30);
    QVERIFY(action(MR::Action::FrameRate30)->isChecked());
    QVERIFY(!action(MR::Action::FrameRateCustom)->isChecked());
}

void tst_PlaybackActions::customFrameRateIsAskedFor()
{
    answerInputDialog("18.5");
    action(MR::Action::FrameRateCustom)->trigger();
    QCOMPARE(scene()->frameRate(), 18.5);
    QVERIFY(action(MR::Action::FrameRateCustom)->isChecked());
    QCOMPARE(scene()->undoStack()->count(), 1);
}

void tst_PlaybackActions::cancelledFrameRateChangesNothing()
{
    answerInputDialog({});
    action(MR::Action::FrameRateCustom)->trigger();
    QCOMPARE(scene()->frameRate(), 12.0);
    QVERIFY(action(MR::Action::FrameRate12)->isChecked());
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_PlaybackActions::frameRateAskedForOneSceneIsNotGivenToAnother()
{
    const QString filename = m_folder->filePath("other.mr");
    drawLine();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    newCleanScene();
    bool opened = false;
    // As the desktop's file manager asks it to.
    QTimer::singleShot(0, this, [&] { opened = m_window->openFile(filename); });
    answerInputDialog("18.5");
    action(MR::Action::FrameRateCustom)->trigger();
    QVERIFY(opened);
    QCOMPARE(scene()->filename(), filename);
    QCOMPARE(scene()->frameRate(), 12.0);
    QCOMPARE(scene()->undoStack()->count(), 0);
    QVERIFY(action(MR::Action::FrameRate12)->isChecked());
}

void tst_PlaybackActions::soundIsMutedAndHeardAgain()
{
    addSound();
    QVERIFY(!action(MR::Action::MuteAudio)->isChecked());
    action(MR::Action::MuteAudio)->trigger();
    QVERIFY(!sound()->isAudible());
    action(MR::Action::MuteAudio)->trigger();
    QVERIFY(sound()->isAudible());
    m_window->currentScene()->sceneModel()->setHeaderData(1, Qt::Horizontal, false,
                                                          Model::SceneModel::LayerAudibleRole);
    QVERIFY(action(MR::Action::MuteAudio)->isChecked());
}

void tst_PlaybackActions::discardedSoundComesBackByUndo()
{
    addSound();
    QVERIFY(action(MR::Action::DiscardAudio)->isEnabled());
    action(MR::Action::DiscardAudio)->trigger();
    QVERIFY(!sound()->hasAudio());
    QVERIFY(!action(MR::Action::DiscardAudio)->isEnabled());
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Discard Audio"));
    action(MR::Action::Undo)->trigger();
    QCOMPARE(sound()->originalAudioData(), QByteArray("bytes"));
    QVERIFY(action(MR::Action::DiscardAudio)->isEnabled());
}

QTEST_MAIN(tst_PlaybackActions)
#include "tst_playbackactions.moc"
