#pragma once

#include "libmodel/tools/tool.h"

#include <QObject>
#include <QPointer>

class ToolSwitch;

namespace Model {
class MRScene;
}

namespace UI {
class Paper;
}

/// Runs through the frames while Shift is held: takes the scrubbing tool up, shows the frames that the paper's scrub
/// leads to, and goes back to the tool before.
///
/// The frame on show is the active frame of the beginning plus the paper's offset, held to the scene; where a drag ends
/// it is held to the range. The active frame stays as it is until landed() is answered.
///
/// A tool that is taken up over it ends it without landing, so that nothing is drawn or moved on a frame that is not
/// on show; tools that change the view alone leave it running.
class Scrubbing : public QObject
{
    Q_OBJECT

public:
    /// \a paper and \a toolSwitch are not owned and must outlive this.
    Scrubbing(UI::Paper *paper, ToolSwitch *toolSwitch, QObject *parent);

    /// \a scene is not owned; null for none. A scrub of the scene before ends without landing.
    void setCurrentScene(Model::MRScene *scene);

    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    /// Takes the scrubbing tool up. Nothing without a scene.
    void begin();
    /// Goes back to the tool before and silences the sound. With \a land the frame on show becomes the active one,
    /// otherwise the active one shows again. Nothing while none runs.
    void end(bool land);

signals:
    /// The frame on show is to become the active one.
    void landed(int frameId);

private:
    void onToolChanged(Model::Tool::Type current);
    void showOffset(int offset);

    UI::Paper *m_paper;
    ToolSwitch *m_toolSwitch;
    QPointer<Model::MRScene> m_scene;
    bool m_isRunning = false;
    bool m_isEnding = false;
    /// The frame that offset 0 stands for.
    int m_origin = 1;
};
