#pragma once

#include "app/clipboardcontent.h"
#include "app/editorstate.h"
#include "app/scenefollower.h"
#include "libmodel/base/mr.h"

class PlaybackController;

namespace UI {
class Paper;
}

/// Enables each action of the catalogue as long as it can do its work, and lets a disabled one tell what it lacks.
///
/// What an action needs stands in one table. It is looked at when something changes that an action may depend on; only
/// a change of EditorState reaches the actions.
class ActionStates : public SceneFollower
{
    Q_OBJECT

public:
    /// \a playback and \a paper are not owned and must outlive this.
    ActionStates(const PlaybackController *playback, const UI::Paper *paper, QObject *parent);

    /// What \a clipboard holds can be pasted from now on.
    void setClipboardContent(const ClipboardContent &clipboard);
    /// Another selection than the scene keeps can be got back, or not any more.
    void setSelectionDropped(bool dropped);

    /// What \a action lacks while \a state holds, for people; empty when it can do its work.
    [[nodiscard]] static QString obstacle(MR::Action action, const EditorState &state);

protected:
    void connectScene(Model::MRScene &scene) override;
    void actualize() override;

private:
    /// What does not depend on the scene, which need not be looked at again for it.
    void actualizeTool();
    void actualizeZoom();
    void takeOver(const EditorState &state);

    const PlaybackController *m_playback;
    const UI::Paper *m_paper;
    ClipboardContent m_clipboard;
    bool m_isSelectionDropped = false;
    EditorState m_state;
};
