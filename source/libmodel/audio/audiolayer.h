#pragma once

#include "libmodel/layers/layer.h"

#include <QByteArray>

namespace Model {

/// The scene's one sound track: the imported file's bytes as they were, and where on the sheet the sound starts.
class AudioLayer : public Layer
{
    Q_OBJECT

public:
    explicit AudioLayer(QObject *parent = nullptr);
    ~AudioLayer() override;

    [[nodiscard]] int layerType() const override;
    /// The frames that the sound covers, counted from frame 1; 0 without a sound.
    [[nodiscard]] int numFrames() const override;
    /// A sound has no cells: does nothing.
    void insertBlankAfter(int frameId) override;
    /// A sound has no cells: does nothing.
    void insertCloneAfter(int frameId) override;
    /// A sound has no cells: does nothing and returns an empty list.
    QList<LayerChange> removeFrame(int frameId) override;

    /// Is there a sound?
    [[nodiscard]] bool hasAudio() const { return !m_originalAudioData.isEmpty(); }
    /// The bytes of the imported file, kept for saving; empty without a sound.
    [[nodiscard]] QByteArray originalAudioData() const { return m_originalAudioData; }
    void setOriginalAudioData(const QByteArray &data);

    /// Where the sound starts, in frames after the start of frame 1, in hundredths; negative when its start is cut.
    [[nodiscard]] double offsetFrames() const { return m_offsetFrames; }
    /// Rounds \a frames to hundredths, halves away from zero. What is no number is ignored.
    void setOffset(double frames);
    /// Puts back an offset that offsetFrames() gave, exactly: nothing is rounded. What is no number is ignored.
    void restoreOffset(double frames);

    /// The scene's frames per second, 0 as long as the layer stands in no scene.
    [[nodiscard]] double frameRate() const { return m_frameRate; }
    /// Takes the scene's rate. A negative offset is rescaled, so that the sound's start stays where it is in time.
    void setFrameRate(double framesPerSecond);
    /// The length of a frame in microseconds, 0 without a rate.
    [[nodiscard]] double frameDurationUs() const { return m_frameDurationUs; }

    /// Whether the sound is to be heard.
    [[nodiscard]] bool isAudible() const { return m_audible; }

public slots:
    void setAudible(bool audible);
    /// Lets the one frame \a frameId (1-based) be heard, see framesToPlay(). Nothing below frame 1, without a sound and
    /// while it is not to be heard.
    void scrubFrame(int frameId);
    /// Lets the sound be heard from frame \a frameId to the end of \a lastFrame: startAudio(), then framesToPlay().
    /// Nothing where scrubFrame() does nothing, and when \a frameId lies behind \a lastFrame.
    void playFrames(int frameId, int lastFrame);

signals:
    /// The sound output is to be made ready; what is to be heard follows with framesToPlay().
    void startAudio();
    /// The sound output is to fade out and stop.
    void stopAudio();
    /// From the start of \a firstFrame to the end of \a lastFrame the sound is to be heard, in place of what was.
    void framesToPlay(int firstFrame, int lastFrame);

private:
    bool m_audible = true;
    double m_frameRate = 0;
    double m_frameDurationUs = 0;
    QByteArray m_originalAudioData;
    double m_offsetFrames = 0;
};

} // namespace Model
