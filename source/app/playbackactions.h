#pragma once

#include "app/scenefollower.h"

class PlaybackController;
class QWidget;

namespace UI {
class Paper;
}

/// The actions of playing and of sound, and what ties the clock of playback to the open scene.
///
///     scene: range, active frame, rate  ->  PlaybackController  ->  scene: frame on show, sound, active frame
///
/// Whatever edits the cells or the layers, or goes elsewhere in the scene, ends playback first. The range and the frame
/// rate may change while it goes on: it follows them.
class PlaybackActions : public SceneFollower
{
    Q_OBJECT

public:
    /// \a playback and \a paper are not owned and must outlive this. \a window is the parent of dialogs.
    PlaybackActions(PlaybackController *playback, UI::Paper *paper, QWidget *window);

    /// Ends playing and flipping, if any goes on.
    void stop();
    /// The same without staying at the frame on show, as undo and redo must: going there is an undo step of its own.
    void stopWhereItBegan();

signals:
    /// \a frameId is to become the active frame.
    void landed(int frameId);

protected:
    void connectScene(Model::MRScene &scene) override;
    void actualize() override;

private:
    void connectActions();
    void connectController();
    void actualizeFrameRate();
    void actualizeModes();
    void actualizeSound();
    void setFrameRate(double framesPerSecond);
    void askForFrameRate();
    void setMuted(bool muted);
    void discardAudio();
    void playAudio(bool playing, int frameId);
    void land(int frameId);

    PlaybackController *m_playback;
    UI::Paper *m_paper;
    QWidget *m_window;
    bool m_staysNowhere = false;
};
