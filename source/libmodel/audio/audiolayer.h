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

    /// The bytes of the imported file, kept for saving; empty without a sound.
    [[nodiscard]] QByteArray originalAudioData() const { return m_originalAudioData; }
    void setOriginalAudioData(const QByteArray &data);

    /// Where the sound starts, in frames after the start of frame 1, in hundredths; negative when its start is cut.
    [[nodiscard]] double offsetFrames() const { return m_offsetFrames; }
    /// Rounds \a frames to hundredths, halves away from zero. What is no number is ignored.
    void setOffset(double frames);

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

private:
    bool m_audible = true;
    double m_frameRate = 0;
    double m_frameDurationUs = 0;
    QByteArray m_originalAudioData;
    double m_offsetFrames = 0;
};

} // namespace Model
