#include "scenebuilder.h"

#include <QTest>

#include <climits>
#include <utility>

using namespace Model;
using namespace TestSupport;

namespace {

/// A scene of four frames with a sound, and what its audio layer asks to be heard.
class SoundScene
{
public:
    SoundScene()
    {
        addUsualLayers(scene, 4);
        audio().setOriginalAudioData("sound");
        QObject::connect(&audio(), &AudioLayer::startAudio, &m_context, [this] { m_heard += "start"; });
        QObject::connect(&audio(), &AudioLayer::stopAudio, &m_context, [this] { m_heard += "stop"; });
        QObject::connect(&audio(), &AudioLayer::framesToPlay, &m_context,
                         [this](int first, int last) { m_heard += QString("%1-%2").arg(first).arg(last); });
    }
    AudioLayer &audio() { return dynamic_cast<AudioLayer &>(*scene.layer(1)); }
    /// What was asked since the last call.
    QString heard() { return std::exchange(m_heard, {}).join(' '); }

    Scene scene;

private:
    QObject m_context;
    QStringList m_heard;
};

} // namespace

/// What the scene asks of its audio layer.
class tst_SceneAudio : public QObject
{
    Q_OBJECT

private slots:
    void scrubbingStartsTheOutput();
    void scrubbingBeginsWithTheScrubFrameThatIsSet();
    void soundFollowsTheScrubFrame();
    void soundDoesNotFollowOutsideOfScrubbing();
    void equalScrubFrameIsNotHeardAgain();
    void nothingIsHeardWhenTheScrubFrameIsUnset();
    void nothingIsHeardWhenActivatingClearsTheScrubFrame();
    void stoppingStopsTheOutput();
    void playingGoesToTheScenesLastFrame();
    void playingFromOutsideIsSilent_data();
    void playingFromOutsideIsSilent();
    void stoppingPlaybackStopsTheOutput();
    void mutedSoundIsNotHeard();
    void sceneWithoutAnAudioLayerDoesNothing();
    void sceneItselfTellsNobody();
};

void tst_SceneAudio::scrubbingStartsTheOutput()
{
    SoundScene sound;
    sound.scene.startScrubbing();
    QCOMPARE(sound.heard(), "start");
}

void tst_SceneAudio::scrubbingBeginsWithTheScrubFrameThatIsSet()
{
    SoundScene sound;
    sound.scene.setScrubFrame(3);
    QCOMPARE(sound.heard(), "");
    sound.scene.startScrubbing();
    QCOMPARE(sound.heard(), "start 3-3");
}

void tst_SceneAudio::soundFollowsTheScrubFrame()
{
    SoundScene sound;
    sound.scene.startScrubbing();
    sound.heard();
    for (const int frameId : {1, 2, 4})
        sound.scene.setScrubFrame(frameId);
    QCOMPARE(sound.heard(), "1-1 2-2 4-4");
}

void tst_SceneAudio::soundDoesNotFollowOutsideOfScrubbing()
{
    SoundScene sound;
    sound.scene.setScrubFrame(2);
    QCOMPARE(sound.heard(), "");
    sound.scene.startScrubbing();
    sound.scene.stopScrubbing();
    sound.heard();
    sound.scene.setScrubFrame(3);
    QCOMPARE(sound.heard(), "");
}

void tst_SceneAudio::equalScrubFrameIsNotHeardAgain()
{
    SoundScene sound;
    sound.scene.startScrubbing();
    sound.scene.setScrubFrame(2);
    sound.heard();
    sound.scene.setScrubFrame(2);
    sound.scene.setScrubFrame(5); // behind the last frame: stays where it is
    QCOMPARE(sound.heard(), "");
}

void tst_SceneAudio::nothingIsHeardWhenTheScrubFrameIsUnset()
{
    SoundScene sound;
    sound.scene.startScrubbing();
    sound.scene.setScrubFrame(2);
    sound.heard();
    sound.scene.unsetScrubFrame();
    QCOMPARE(sound.heard(), "");
    // Scrubbing is still on.
    sound.scene.setScrubFrame(3);
    QCOMPARE(sound.heard(), "3-3");
}

void tst_SceneAudio::nothingIsHeardWhenActivatingClearsTheScrubFrame()
{
    SoundScene sound;
    sound.scene.startScrubbing();
    sound.scene.setScrubFrame(2);
    sound.heard();
    sound.scene.setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    QCOMPARE(sound.scene.scrubFrame(), -1);
    QCOMPARE(sound.heard(), "");
}

void tst_SceneAudio::stoppingStopsTheOutput()
{
    SoundScene sound;
    sound.scene.startScrubbing();
    sound.scene.setScrubFrame(2);
    sound.heard();
    sound.scene.stopScrubbing();
    QCOMPARE(sound.heard(), "stop");
}

void tst_SceneAudio::playingGoesToTheScenesLastFrame()
{
    SoundScene sound;
    sound.scene.startAudioPlayback(2);
    QCOMPARE(sound.heard(), "start 2-4");
    sound.scene.addBlankDrawing(0, 4);
    sound.scene.startAudioPlayback(5);
    QCOMPARE(sound.heard(), "start 5-5");
    // The sound runs by itself: it is not fed frame by frame.
    sound.scene.setScrubFrame(3);
    QCOMPARE(sound.heard(), "");
}

void tst_SceneAudio::playingFromOutsideIsSilent_data()
{
    QTest::addColumn<int>("frameId");
    for (const int frameId : {INT_MIN, -1, 0, 5, INT_MAX})
        QTest::addRow("%d", frameId) << frameId;
}

void tst_SceneAudio::playingFromOutsideIsSilent()
{
    QFETCH(int, frameId);
    SoundScene sound;
    sound.scene.startAudioPlayback(frameId);
    QCOMPARE(sound.heard(), "");
}

void tst_SceneAudio::stoppingPlaybackStopsTheOutput()
{
    SoundScene sound;
    sound.scene.startAudioPlayback(1);
    sound.heard();
    sound.scene.stopAudioPlayback();
    QCOMPARE(sound.heard(), "stop");
}

void tst_SceneAudio::mutedSoundIsNotHeard()
{
    SoundScene sound;
    sound.audio().setAudible(false);
    sound.scene.startAudioPlayback(1);
    QCOMPARE(sound.heard(), "");
    sound.scene.startScrubbing();
    sound.scene.setScrubFrame(2);
    QCOMPARE(sound.heard(), "start");
}

void tst_SceneAudio::sceneWithoutAnAudioLayerDoesNothing()
{
    Scene scene;
    addStrokeLayer(scene, 4);
    const SignalCount signalCount(&scene);
    scene.startScrubbing();
    scene.startAudioPlayback(1);
    scene.stopAudioPlayback();
    scene.stopScrubbing();
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneAudio::sceneItselfTellsNobody()
{
    SoundScene sound;
    const SignalCount signalCount(&sound.scene);
    sound.scene.startScrubbing();
    sound.scene.startAudioPlayback(1);
    sound.scene.stopAudioPlayback();
    sound.scene.stopScrubbing();
    QCOMPARE(signalCount.heard(), QString());
}

QTEST_MAIN(tst_SceneAudio)
#include "tst_scene_audio.moc"
