// The sound beside the picture: what the scene asks of its audio layer.

#include "libmodel/audio/audiolayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"

#include <cmath>

namespace Model {

void Scene::Private::soundScrubFrame() const
{
    if (AudioLayer *audio = scrubbing ? audioLayer() : nullptr)
        audio->scrubFrame(scrubFrame);
}

void Scene::restoreAudioOffset(double frames)
{
    AudioLayer *audio = d->audioLayer();
    if (!audio || !std::isfinite(frames) || frames == audio->offsetFrames())
        return;
    audio->restoreOffset(frames);
    emit layersChanged(d->audioLayerIdx, d->audioLayerIdx);
}

void Scene::startScrubbing()
{
    d->scrubbing = true;
    if (AudioLayer *audio = d->audioLayer())
        emit audio->startAudio();
    d->soundScrubFrame();
}

void Scene::stopScrubbing()
{
    d->scrubbing = false;
    stopAudioPlayback();
}

void Scene::startAudioPlayback(int frameId)
{
    if (AudioLayer *audio = d->audioLayer())
        audio->playFrames(frameId, d->maximumFrameNumber);
}

void Scene::stopAudioPlayback()
{
    if (AudioLayer *audio = d->audioLayer())
        emit audio->stopAudio();
}

} // namespace Model
