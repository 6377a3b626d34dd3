#include "app/stamppreparation.h"

#include "app/floatingstate.h"
#include "app/playbackcontroller.h"
#include "libmodel/scene/scene.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/paper.h"

#include <QApplication>

namespace {

/// The longest that a key or a pen has to wait for a piece of the work.
constexpr int pieceMs = 8;
/// How long to wait where somebody does something.
constexpr int pauseMs = 100;

} // namespace

StampPreparation::StampPreparation(const PlaybackController *playback, const UI::Paper *paper, QObject *parent)
    : SceneFollower(parent), m_playback(playback), m_paper(paper)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &StampPreparation::prepare);
    connect(Model::ToolManager::instance(), &Model::ToolManager::currentToolTypeChanged, this,
            &StampPreparation::actualize);
}

void StampPreparation::connectScene(Model::MRScene &scene)
{
    follow(connect(&scene, &Model::MRScene::floatingSelectionChanged, this, &StampPreparation::actualize));
    follow(connect(&scene, &Model::MRScene::floatingSelectionTransformChanged, this, &StampPreparation::actualize));
}

void StampPreparation::actualize()
{
    if (mrScene() && FloatingState::floats(*mrScene()))
        m_timer.start(0);
    else
        m_timer.stop();
}

bool StampPreparation::isBusy() const
{
    return m_playback->isActive() || m_paper->isDevicePressed() || scene()->scrubFrame() >= 1 ||
           UI::InputSuspension::isActive() || QApplication::activeModalWidget() || QApplication::activePopupWidget();
}

void StampPreparation::prepare()
{
    if (!mrScene() || !FloatingState::floats(*mrScene()))
        return;
    if (isBusy())
        m_timer.start(pauseMs);
    else if (!mrScene()->floatingSelection().prepareStamp(pieceMs))
        m_timer.start(0);
}
