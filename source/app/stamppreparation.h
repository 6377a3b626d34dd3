#pragma once

#include "app/scenefollower.h"

#include <QTimer>

class PlaybackController;

namespace UI {
class Paper;
}

/// Makes the stamp of a floating selection ahead, bit by bit, while nobody does anything: so that the stamp is there at
/// once when it is wanted.
class StampPreparation : public SceneFollower
{
    Q_OBJECT

public:
    /// \a playback and \a paper are not owned and must outlive this.
    StampPreparation(const PlaybackController *playback, const UI::Paper *paper, QObject *parent);

    /// Is there something left to be made ahead?
    [[nodiscard]] bool isUnderWay() const { return m_timer.isActive(); }

protected:
    void connectScene(Model::MRScene &scene) override;
    void actualize() override;

private:
    void prepare();
    [[nodiscard]] bool isBusy() const;

    const PlaybackController *m_playback;
    const UI::Paper *m_paper;
    QTimer m_timer;
};
