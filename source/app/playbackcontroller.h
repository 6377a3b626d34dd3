#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

/// Turns the time of day into frame numbers: playback of the range, and flipping back and forth by hand.
///
/// It shows frames by signalling and knows no scene. Frames are 1-based, -1 is none. The frame on show is computed from
/// the clock, so a late tick skips frames and never slows the pace. A run's first frame is due at once.
///
/// | state | run                  | begun by              | ends                                  |
/// |-------|----------------------|-----------------------|---------------------------------------|
/// | 0     | stopped              |                       |                                       |
/// | 1     | loop                 | startPlayback()       | when stopped                          |
/// | 2     | once                 | startPlayback()       | at the end of the range               |
/// | 3     | flip back            | startFlipBack()       | when it is turned into a return flip  |
/// | 4     | return flip          | startReturnFlip()     | at the frame where the flip began     |
/// | 5     | flip back and return | flipBackAndReturn()   | as a return flip                      |
///
/// A paused run is still in its state, only the clock stands. A run that ends leaves the active frame as it was; only
/// playback with StopAndStay makes the frame last shown the active one.
class PlaybackController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double frameRate READ frameRate WRITE setFrameRate)
    Q_PROPERTY(PlaybackModes playbackModes READ playbackModes WRITE setPlaybackModes)

public:
    /// How playback goes; without Loop it goes through the range once.
    enum PlaybackMode { Loop = 1, Backwards = 2, StopAndStay = 4 };
    Q_DECLARE_FLAGS(PlaybackModes, PlaybackMode)
    Q_FLAG(PlaybackModes)

    /// Milliseconds since some moment; never goes back.
    using Clock = std::function<qint64()>;

    /// Goes by the system's monotonic clock.
    explicit PlaybackController(QObject *parent = nullptr);
    /// Goes by \a clock.
    explicit PlaybackController(Clock clock, QObject *parent = nullptr);

    /// True while a run goes on, paused or not.
    [[nodiscard]] bool isActive() const;
    /// True while the run that goes on is a flip, there or back.
    [[nodiscard]] bool isFlipping() const { return m_state >= FlippingBack; }
    /// Frames per second, 0.1 to 60.
    [[nodiscard]] double frameRate() const { return m_frameRate; }
    [[nodiscard]] PlaybackModes playbackModes() const { return m_modes; }
    /// Milliseconds from the last tick to the moment of the next frame; 0 at the beginning of a run.
    [[nodiscard]] int intervalMs() const { return m_intervalMs; }

public slots:
    /// The frames that are played, both included. One frame alone can't be played.
    void setFrameRange(int lower, int upper);
    /// The scene's current frame: where loops and flips begin.
    void setActiveFrame(int frameId);
    /// Keeps \a framesPerSecond within 0.1 and 60. A run goes on from the frame on show.
    void setFrameRate(double framesPerSecond);
    /// A run that is turned round goes on from the frame on show; Loop counts from the next run on.
    void setPlaybackModes(PlaybackController::PlaybackModes modes);
    void setPlaybackMode(PlaybackController::PlaybackMode mode, bool on);
    /// Sets the whole value.
    void setPlaybackMode(PlaybackController::PlaybackMode mode);
    void startPlayback();
    /// Ends the run; does nothing while none goes on.
    void stopPlayback();
    void togglePlayback();
    /// \return whether a run was interrupted.
    bool pausePlayback();
    /// Goes on at \a frameId. \return whether a run was paused.
    bool unPausePlayback(int frameId);
    /// Flips \a numFrames frames back and returns.
    void flipBackAndReturn(int numFrames);
    /// Flips back from the active frame, and waits at the beginning of the range.
    void startFlipBack();
    /// Turns the run, whatever it is, into a return to the active frame.
    void startReturnFlip();
    /// Lets the flip that goes on pass the frame where it began, up to the end of the range.
    void allowSwitchFlipDirection();

    /// Shows the frame that is due. The timer calls it; a late call skips frames. Does nothing unless a run goes on.
    void tick();

signals:
    /// To be shown for the moment; the active frame stays.
    void showFrame(int frameId);
    /// The run has ended; \a frameId is to be the active frame.
    void updateActiveFrame(int frameId);
    void playbackChanged(bool playing);
    /// Sound is to start at \a frameIdStart, or to stop.
    void audioPlaybackChanged(bool playing, int frameIdStart);
    /// At least one frame could not be shown in time.
    void skippedFrame();

private:
    enum State { Stopped = 0, Looping = 1, Once = 2, FlippingBack = 3, ReturningFlip = 4, FlippingBackToReturn = 5 };

    void beginRun(State state, int origin);
    void endRun();
    void restartClock();
    void goOnFromShownFrame();
    int frameAt(int index);
    int loopFrameAt(int index);
    int onceFrameAt(int index);
    int flipBackFrameAt(int index);
    int returnFlipFrameAt(int index);
    int flipToReturnFrameAt(int index);

    Clock m_clock;
    double m_frameRate = 12.0;
    QTimer m_timer;
    int m_rangeLower = -1;
    int m_rangeUpper = -1;
    int m_activeFrame = -1;
    /// The active frame as the run began.
    int m_startFrame = -1;
    /// The frame that the clock's zero stands for; -1, in playing once, is the end of the range that comes first.
    int m_origin = -1;
    int m_flipFrames = -1;
    /// The frame that the run has shown last; -1 before its first.
    int m_currentFrame = -1;
    PlaybackModes m_modes = Loop;
    State m_state = Stopped;
    bool m_paused = false;
    bool m_allowSwitchDirection = false;
    bool m_flipBackward = false;
    /// Counts how often the clock was set going or stopped for good.
    int m_clockRound = 0;
    qint64 m_clockStartMs = 0;
    qint64 m_lastElapsedMs = 0;
    int m_lastFrameIndex = 0;
    int m_intervalMs = 83;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(PlaybackController::PlaybackModes)
