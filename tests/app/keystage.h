#pragma once

#include "app/keygestures.h"
#include "app/playbackcontroller.h"
#include "app/scrubbing.h"
#include "app/toolswitch.h"
#include "libmodel/base/mr.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/tools/tool.h"
#include "libui/paper/paper.h"

#include <QAction>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPointF>
#include <QPushButton>

#include <memory>

/// A key as the keyboard sends it.
struct StageKey
{
    int key = 0;
    quint32 scanCode = 0;
    quint32 nativeModifiers = 0;
};

/// A window with a paper, a text field, a button and a menu, over a scene of ten frames, with key gestures wired as in
/// the program. Keys and mouse come from the window system, so that shortcuts take part.
///
/// The catalogue's actions must have been made.
class KeyStage
{
public:
    KeyStage();
    ~KeyStage();

    Model::Scene *scene() const { return mrScene->scene(); }
    static QAction *action(MR::Action which);
    static Model::Tool::Type tool();
    static void useTool(Model::Tool::Type type);

    /// Keys go to the widget that has the focus. Modifier keys that are down are known here and go with every event, as
    /// they were ahead of it.
    void press(const StageKey &key, bool autoRepeat = false);
    void release(const StageKey &key, bool autoRepeat = false);
    /// Without the moment that it takes to believe the release of a key that was down for long.
    void releaseAtOnce(const StageKey &key, bool autoRepeat = false);
    void tap(const StageKey &key);
    /// What a key that is held sends, as release and press in turn and as presses alone.
    void repeat(const StageKey &key);
    /// The key has been down for a second.
    void wait() { m_clock += 1000; }
    /// What a held key sends on a busy machine: release and press of one moment, which nobody has joined.
    void repeatInHalves(const StageKey &key);
    void press(int key) { press(StageKey{key}); }
    void release(int key) { release(StageKey{key}); }
    void tap(int key) { tap(StageKey{key}); }
    void repeat(int key) { repeat(StageKey{key}); }

    /// The modifier keys that are down come up, and nobody here is told.
    void loseModifiers() { m_modifiers = {}; }

    /// \a offset is counted from the middle of the paper, in pixels.
    void hover(QPointF offset);
    void mousePress(QPointF offset, Qt::MouseButton button = Qt::LeftButton);
    void mouseMove(QPointF offset, Qt::MouseButton button = Qt::LeftButton);
    void mouseRelease(QPointF offset, Qt::MouseButton button = Qt::LeftButton);
    /// The pointer goes where there is no paper.
    void hoverElsewhere();

    /// Everything in the hand's way is gone: paper focused, pointer over it, \a base in the hand, frame 5.
    void reset(Model::Tool::Type base = Model::Tool::Type::Pen);

    QMainWindow window;
    UI::Paper *paper = nullptr;
    QLineEdit *field = nullptr;
    QPushButton *button = nullptr;
    QMenu *menu = nullptr;
    std::unique_ptr<Model::MRScene> mrScene;
    std::unique_ptr<ToolSwitch> toolSwitch;
    std::unique_ptr<PlaybackController> playback;
    std::unique_ptr<Scrubbing> scrubbing;
    std::unique_ptr<KeyGestures> gestures;
    /// Strokes that were taken from the scene.
    int commits = 0;

private:
    void commit();
    void makeWindow();
    void makeScene();
    void sendKey(QEvent::Type type, const StageKey &key, bool autoRepeat);
    void sendMouse(QPointF position, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons);
    QPointF inWindow(QPointF offset) const;

    Qt::KeyboardModifiers m_modifiers;
    unsigned long m_clock = 1000;
    unsigned long m_pressTime = 0;
};
