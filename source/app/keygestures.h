#pragma once

#include "app/heldkeys.h"
#include "app/heldmodifiers.h"
#include "libmodel/base/mr.h"
#include "libmodel/tools/tool.h"

#include <QObject>
#include <QPoint>
#include <QTimer>

#include <optional>

class PlaybackController;
class QKeyEvent;
class Scrubbing;
class ToolSwitch;

namespace UI {
class Paper;
}

/// Turns keys that are pressed, held and released into what the hand means by them: a tool while a key is down, a flip
/// while Return is down, settings while D is down.
///
/// |    | key           | on press                                                    | on release             |
/// |----|---------------|-------------------------------------------------------------|------------------------|
/// |  1 | Escape        | give up the lasso or the drag of a floating selection, or   |                        |
/// |    |               | stop the run, or hide the settings, or leave the view tools |                        |
/// |  2 | Return, Enter | with a floating selection: stamp it                         |                        |
/// |  3 |               | a flip runs: it may turn round; playback runs: stop it      | return from the flip   |
/// |  4 |               | nothing runs: flip back                                     | return                 |
/// |  5 | Space         | a run goes on: the action Play                              |                        |
/// |  6 |               | hand, zoom and rotate in one; off the paper after a while,  | the tool before        |
/// |    |               | or as soon as the pointer comes to it                       |                        |
/// |  7 | D, E          | the action Draw or Erase; after a while its settings        | hide the settings      |
/// |  8 | Q, W          | one drawing back or on, and again as the key repeats        |                        |
/// |  9 | S             | a speed dial: the first, with Shift the second              | hide it                |
/// | 10 | Z, H, R       | zoom, hand or rotate tool; if in the hand, lay it down      | the tool before        |
/// | 11 | C             | the palette                                                 | hide it                |
/// | 12 | Ctrl and Alt  | off-pegs tool                                               | the tool before        |
/// | 13 | Shift alone   | scrubbing, unless something is under way                    | land if over the paper |
/// | 14 | any other     | hide the settings; a scrub ends where it began              |                        |
///
/// Rows 1 to 11 and 14 are for keys without modifiers, but for Shift in rows 8 and 9. A key whose action is disabled
/// does nothing. While the middle mouse button pans, no tool is taken up by a key.
///
/// It looks at the keys of the whole program ahead of shortcuts, and leaves those alone that it has no gesture for.
/// Keys for a dialog, a menu or a text field are not seen. A gesture always ends: with its key, and when its release
/// cannot come (focus lost, window inactive, a dialog or menu opened, scene closed).
///
/// X11 repeats a held key as releases and presses of one moment. The toolkit joins such pairs, but not those it sees
/// only half of because the machine is busy; so the release of a key that has been down for long is believed a moment
/// later, when no press of the same time has followed it.
class KeyGestures : public QObject
{
    Q_OBJECT

public:
    /// Nothing of it is owned; all must outlive this. \a window is the one whose keys count.
    KeyGestures(QWidget *window, UI::Paper *paper, ToolSwitch *toolSwitch, PlaybackController *playback,
                Scrubbing *scrubbing);

    /// Ends every gesture that runs, as if its keys had been released elsewhere.
    void endAll();

signals:
    /// A gesture is about to change tool, frame or playback: what is under the pen is to be committed.
    void aboutToAct();
    /// The settings of the drawing or erasing tool are to be shown at a place of the screen, or hidden again.
    void drawSettingsRequested(QPoint globalPosition);
    void eraseSettingsRequested(QPoint globalPosition);
    void settingsHidingRequested();
    void speedDialHidingRequested();
    void paletteHidingRequested();
    /// A step along the active layer: one drawing on (1) or back (-1), holds skipped; or from key drawing to key
    /// drawing.
    void drawingStepRequested(int direction);
    void keyDrawingStepRequested(int direction);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool keyEvent(const QObject *watched, QKeyEvent *event);
    bool isHandedOn(const QObject *watched, const QKeyEvent &event);
    bool mayRepeat(const QKeyEvent &release) const;
    bool isOtherHalf(const QKeyEvent &event) const;
    void holdOn(QKeyEvent *press);
    void believeRelease();
    bool areKeysSeen(const QObject *watched) const;
    bool hasMeaningNow(KeyGesture gesture) const;
    bool lookAhead(const QObject *watched, QKeyEvent *event);
    bool keyPressed(const QObject *watched, QKeyEvent *event);
    bool keyReleased(QKeyEvent *event);
    void dropStaleModifiers(const QKeyEvent &event);
    void modifierPressed(const QKeyEvent &event);
    void modifierReleased(const QKeyEvent &event);
    void otherKeyPressed(const QKeyEvent &event);

    void begin(KeyGesture gesture, const QKeyEvent &event);
    void end(KeyGesture gesture);
    void escape();
    void beginFlip();
    void beginView();
    void takeUpView();
    void beginSettings(KeyGesture gesture, MR::Action action);
    void showSettings();
    void endSettings(KeyGesture gesture);
    void hideSettings();
    void step(int direction, const QKeyEvent &event);
    void takeUp(Model::Tool::Type tool, MR::Action action);
    void beginScrubbing();
    void endOffPegs();
    bool isPointerOverPaper() const;

    QWidget *m_window;
    UI::Paper *m_paper;
    ToolSwitch *m_toolSwitch;
    PlaybackController *m_playback;
    Scrubbing *m_scrubbing;

    /// What went by last, and who got it.
    struct Passed
    {
        const QObject *receiver = nullptr;
        const QKeyEvent *event = nullptr;
        int type = 0;
        int key = 0;
        quint64 timestamp = 0;
    };

    /// A key with the time of its event, milliseconds.
    struct TimedKey
    {
        KeyIdentity key;
        quint64 timestamp = 0;
    };

    Passed m_passed;
    /// The press of the key that may repeat: no other one does.
    TimedKey m_latestPress;
    /// A release that may be half of a repetition, while that is not known.
    std::optional<TimedKey> m_doubtful;
    QTimer m_doubtTimer;
    HeldKeys m_held;
    HeldModifiers m_modifiers;
    /// Ctrl and Alt have taken the off-pegs tool up.
    bool m_holdsOffPegs = false;
    /// The flip that runs is to return when the key is released.
    bool m_flips = false;
    bool m_settingsShown = false;
    /// Draw or Erase while that key's settings are waited for or shown.
    KeyGesture m_settings = KeyGesture::None;
    QPoint m_settingsPosition;
    QTimer m_settingsTimer;
    QTimer m_viewTimer;
    /// Where the pointer was last, on the screen, and whether the paper has got it and not lost it since.
    QPointF m_pointer;
    bool m_isPaperEntered = false;
};
