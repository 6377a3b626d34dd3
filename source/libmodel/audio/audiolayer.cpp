#include "libmodel/audio/audiolayer.h"

#include <cmath>

namespace Model {

namespace {

constexpr double slowestRate = 0.1;

double roundedToHundredths(double frames)
{
    return std::round(frames * 100) * 0.01;
}

} // namespace

AudioLayer::AudioLayer(QObject *parent) : Layer(parent)
{
}

AudioLayer::~AudioLayer() = default;

int AudioLayer::layerType() const
{
    return Audio;
}

int AudioLayer::numFrames() const
{
    return 0;
}

void AudioLayer::insertBlankAfter(int)
{
}

void AudioLayer::insertCloneAfter(int)
{
}

QList<LayerChange> AudioLayer::removeFrame(int)
{
    return {};
}

void AudioLayer::setOriginalAudioData(const QByteArray &data)
{
    m_originalAudioData = data;
}

void AudioLayer::setOffset(double frames)
{
    if (std::isfinite(frames))
        m_offsetFrames = roundedToHundredths(frames);
}

void AudioLayer::restoreOffset(double frames)
{
    if (std::isfinite(frames))
        m_offsetFrames = frames;
}

void AudioLayer::setFrameRate(double framesPerSecond)
{
    if (!(framesPerSecond > 0) || !std::isfinite(framesPerSecond))
        return;
    if (m_offsetFrames < 0 && m_frameRate > slowestRate)
        m_offsetFrames *= framesPerSecond / m_frameRate;
    m_frameRate = framesPerSecond;
    m_frameDurationUs = 1e6 / framesPerSecond;
}

void AudioLayer::setAudible(bool audible)
{
    m_audible = audible;
}

void AudioLayer::scrubFrame(int frameId)
{
    if (frameId >= 1 && hasAudio() && m_audible)
        emit framesToPlay(frameId, frameId);
}

void AudioLayer::playFrames(int frameId, int lastFrame)
{
    if (frameId < 1 || frameId > lastFrame || !hasAudio() || !m_audible)
        return;
    emit startAudio();
    emit framesToPlay(frameId, lastFrame);
}

} // namespace Model
