#pragma once

#include "app/playbackcontroller.h"

#include <QList>
#include <QStringList>

#include <utility>

/// A controller at ten frames per second on a clock of its own, with a protocol of what it signals.
struct PlaybackStage
{
    qint64 nowMs = 5000;
    qint64 beginMs = 5000;
    PlaybackController controller{[this] { return nowMs; }};
    QList<int> shown;
    QStringList log;

    PlaybackStage(int lower, int upper, int active, PlaybackController::PlaybackModes modes = PlaybackController::Loop)
    {
        controller.setFrameRate(10.0);
        controller.setFrameRange(lower, upper);
        controller.setActiveFrame(active);
        controller.setPlaybackModes(modes);
        QObject::connect(&controller, &PlaybackController::showFrame, &controller, [this](int frame) {
            shown << frame;
            log << QStringLiteral("show %1").arg(frame);
        });
        QObject::connect(&controller, &PlaybackController::updateActiveFrame, &controller,
                         [this](int frame) { log << QStringLiteral("active %1").arg(frame); });
        QObject::connect(&controller, &PlaybackController::playbackChanged, &controller,
                         [this](bool playing) { log << (playing ? "playing" : "stopped"); });
        QObject::connect(&controller, &PlaybackController::audioPlaybackChanged, &controller,
                         [this](bool playing, int frame) {
                             log << (playing ? QStringLiteral("sound %1") : QStringLiteral("silence %1")).arg(frame);
                         });
        QObject::connect(&controller, &PlaybackController::skippedFrame, &controller, [this] { log << "skipped"; });
    }

    /// Ticks at \a milliseconds after the moment from which the run counts.
    void tickAt(qint64 milliseconds)
    {
        nowMs = beginMs + milliseconds;
        controller.tick();
    }

    /// Ticks at the moments of frames \a first to \a last of the run.
    void tickFrames(int first, int last)
    {
        for (int index = first; index <= last; ++index)
            tickAt(100 * index);
    }

    /// From now on the run counts from this moment.
    void countFromNow() { beginMs = nowMs; }

    QStringList takeLog() { return std::exchange(log, {}); }
};

/// What a run signals at its end, \a frame being the active one from then on.
inline QStringList endAt(int frame)
{
    return {QStringLiteral("active %1").arg(frame), QStringLiteral("silence -1"), QStringLiteral("stopped")};
}
