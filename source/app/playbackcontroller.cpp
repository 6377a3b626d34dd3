#include "app/playbackcontroller.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace {

constexpr double slowestRate = 0.1;
constexpr double fastestRate = 60.0;

PlaybackController::Clock systemClock()
{
    QElapsedTimer timer;
    timer.start();
    return [timer] { return timer.elapsed(); };
}

/// The time of frame \a index after the clock's zero, in milliseconds.
qint64 momentOf(int index, double framesPerSecond)
{
    return qRound64(index * 1000.0 / framesPerSecond);
}

} // namespace

PlaybackController::PlaybackController(QObject *parent) : PlaybackController(systemClock(), parent)
{
}

PlaybackController::PlaybackController(Clock clock, QObject *parent) : QObject(parent), m_clock(std::move(clock))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &PlaybackController::tick);
}

bool PlaybackController::isActive() const
{
    return m_timer.isActive() || m_paused;
}

void PlaybackController::setFrameRange(int lower, int upper)
{
    m_rangeLower = lower;
    m_rangeUpper = upper;
}

void PlaybackController::setActiveFrame(int frameId)
{
    m_activeFrame = frameId;
}

void PlaybackController::setFrameRate(double framesPerSecond)
{
    framesPerSecond = qBound(slowestRate, framesPerSecond, fastestRate);
    if (qFuzzyCompare(m_frameRate, framesPerSecond))
        return;
    m_frameRate = framesPerSecond;
    m_intervalMs = int(momentOf(1, m_frameRate));
    if (m_timer.isActive())
        goOnFromShownFrame();
}

void PlaybackController::setPlaybackModes(PlaybackModes modes)
{
    const bool turned = (m_modes ^ modes).testFlag(Backwards);
    m_modes = modes;
    if (!turned || m_paused || (m_state != Looping && m_state != Once))
        return;
    goOnFromShownFrame();
    // Before the first frame, playing forward starts the sound by itself.
    if (m_currentFrame != -1)
        emit audioPlaybackChanged(!m_modes.testFlag(Backwards), m_currentFrame);
}

void PlaybackController::setPlaybackMode(PlaybackMode mode, bool on)
{
    PlaybackModes modes = m_modes;
    setPlaybackModes(modes.setFlag(mode, on));
}

void PlaybackController::setPlaybackMode(PlaybackMode mode)
{
    setPlaybackModes(mode);
}

void PlaybackController::startPlayback()
{
    m_currentFrame = -1;
    if (m_modes.testFlag(Loop))
        beginRun(Looping, m_activeFrame);
    else
        beginRun(Once, -1);
}

void PlaybackController::stopPlayback()
{
    if (isActive())
        endRun();
}

void PlaybackController::togglePlayback()
{
    if (isActive())
        endRun();
    else
        startPlayback();
}

bool PlaybackController::pausePlayback()
{
    if (!m_timer.isActive())
        return false;
    m_timer.stop();
    m_paused = true;
    emit audioPlaybackChanged(false, m_currentFrame);
    return true;
}

bool PlaybackController::unPausePlayback(int frameId)
{
    if (!m_paused)
        return false;
    m_currentFrame = frameId;
    goOnFromShownFrame();
    if (!m_modes.testFlag(Backwards))
        emit audioPlaybackChanged(true, frameId);
    return true;
}

void PlaybackController::flipBackAndReturn(int numFrames)
{
    m_currentFrame = -1;
    m_flipFrames = numFrames;
    beginRun(FlippingBackToReturn, m_activeFrame - 1);
}

void PlaybackController::startFlipBack()
{
    m_currentFrame = -1;
    beginRun(FlippingBack, m_activeFrame - 1);
}

void PlaybackController::startReturnFlip()
{
    if (!isActive())
        return;
    m_allowSwitchDirection = false;
    // A flip that is turned before it has shown a frame stands where it began.
    const int origin = m_currentFrame == -1 ? m_startFrame : m_currentFrame;
    if (m_flipBackward && origin <= m_startFrame)
        m_flipBackward = false;
    else if (!m_flipBackward && origin >= m_startFrame)
        m_flipBackward = true;
    beginRun(ReturningFlip, origin);
}

void PlaybackController::allowSwitchFlipDirection()
{
    m_allowSwitchDirection = true;
}

void PlaybackController::tick()
{
    if (!m_timer.isActive())
        return;
    const qint64 elapsedMs = m_clock() - m_clockStartMs;
    const int index = int(qRound64(double(elapsedMs) * m_frameRate / 1000.0));
    const bool skipped = index - m_lastFrameIndex >= 2 && elapsedMs - m_lastElapsedMs > m_intervalMs;
    m_lastFrameIndex = index;
    m_lastElapsedMs = elapsedMs;
    m_intervalMs = int(momentOf(index + 1, m_frameRate) - elapsedMs);
    m_timer.setInterval(m_intervalMs);

    // Whoever is told something on the way may end the run and even begin another one: this tick is none of that one's.
    const int round = m_clockRound;
    if (skipped)
        emit skippedFrame();
    if (m_clockRound != round)
        return;
    const int frame = frameAt(index);
    if (m_clockRound != round)
        return;
    m_currentFrame = frame;
    emit showFrame(m_currentFrame);
}

/// The clock's zero is to stand for the frame \a origin.
void PlaybackController::beginRun(State state, int origin)
{
    m_state = state;
    m_origin = origin;
    if (m_rangeLower >= m_rangeUpper) {
        endRun();
        return;
    }
    m_startFrame = m_activeFrame;
    m_intervalMs = 0;
    restartClock();
    emit playbackChanged(isActive());
}

void PlaybackController::endRun()
{
    m_timer.stop();
    ++m_clockRound;
    m_paused = false;
    m_allowSwitchDirection = false;
    const State ended = std::exchange(m_state, Stopped);
    const bool stays = (ended == Looping || ended == Once) && m_modes.testFlag(StopAndStay) && m_currentFrame != -1;
    emit updateActiveFrame(stays ? m_currentFrame : m_activeFrame);
    emit audioPlaybackChanged(false, -1);
    emit playbackChanged(isActive());
}

/// Begins to count frames anew; the next tick comes after the interval that stands.
void PlaybackController::restartClock()
{
    ++m_clockRound;
    m_lastElapsedMs = 0;
    m_lastFrameIndex = 0;
    m_paused = false;
    m_clockStartMs = m_clock();
    m_timer.start(m_intervalMs);
}

void PlaybackController::goOnFromShownFrame()
{
    // Before its first frame a run has nothing to go on from; it begins with the changed values.
    if (m_currentFrame == -1) {
        m_intervalMs = 0;
    } else {
        m_intervalMs = int(momentOf(1, m_frameRate));
        m_origin = m_currentFrame;
    }
    restartClock();
}

/// \return the frame to show; of no meaning when the run has ended instead.
int PlaybackController::frameAt(int index)
{
    switch (m_state) {
    case Looping:
        return loopFrameAt(index);
    case Once:
        return onceFrameAt(index);
    case FlippingBack:
        return flipBackFrameAt(index);
    case ReturningFlip:
        return returnFlipFrameAt(index);
    case FlippingBackToReturn:
        return flipToReturnFrameAt(index);
    case Stopped:
        break;
    }
    return -1;
}

int PlaybackController::loopFrameAt(int index)
{
    const bool backwards = m_modes.testFlag(Backwards);
    const int base = std::max(m_rangeLower, std::min(m_rangeUpper, m_origin));
    // The range may have become empty since the run began.
    const int length = std::max(1, m_rangeUpper - m_rangeLower + 1);
    int place = (base - m_rangeLower + (backwards ? -index : index)) % length;
    if (place < 0)
        place += length;
    const int frame = m_rangeLower + place;
    // Sound has to begin again with every round.
    if (!backwards && (m_currentFrame == -1 || frame < m_currentFrame))
        emit audioPlaybackChanged(true, frame);
    return frame;
}

int PlaybackController::onceFrameAt(int index)
{
    const bool backwards = m_modes.testFlag(Backwards);
    const int rangeBegin = backwards ? m_rangeUpper : m_rangeLower;
    const int begin = m_origin == -1 ? rangeBegin : m_origin;
    const int frame = backwards ? begin - index : begin + index;
    if (frame < m_rangeLower || frame > m_rangeUpper) {
        endRun();
        return -1;
    }
    if (!backwards && m_currentFrame == -1)
        emit audioPlaybackChanged(true, frame);
    return frame;
}

int PlaybackController::flipBackFrameAt(int index)
{
    return std::max(m_rangeLower, m_origin - index);
}

int PlaybackController::returnFlipFrameAt(int index)
{
    const int frame = m_flipBackward ? m_origin - index : m_origin + index;
    const int farEnd = m_flipBackward ? m_rangeLower : m_rangeUpper;
    const int limit = m_allowSwitchDirection ? farEnd : m_startFrame;
    const bool arrived = m_flipBackward ? frame <= limit : frame >= limit;
    if (!arrived)
        return frame;
    m_flipBackward = !m_flipBackward && m_allowSwitchDirection;
    endRun();
    return -1;
}

int PlaybackController::flipToReturnFrameAt(int index)
{
    const int frame = flipBackFrameAt(index);
    if (frame <= m_startFrame - m_flipFrames || frame <= m_rangeLower) {
        // The clock goes on: the next index leads to the frame after this one.
        m_origin = frame - index;
        m_state = ReturningFlip;
        m_flipBackward = false;
    }
    return frame;
}
