#pragma once

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
    EditorState m_state;
};
