#include "app/playbackactions.h"

#include "app/catalogueaction.h"
#include "app/playbackcontroller.h"
#include "libcommands/discardlayer.h"
#include "libcommands/setframerate.h"
#include "libmodel/actions/actiontable.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/base/fuzzy.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/paper.h"

#include <QInputDialog>
#include <QPointer>
#include <QScopedValueRollback>

#include <algorithm>

using Model::MRScene;
using Model::Scene;

namespace {

/// The frames of a flip that nobody holds a key for.
constexpr int flipFromMenu = 4;

/// Digits behind the point of a rate that is asked for.
constexpr int rateDecimals = 3;

/// Neighbours in the catalogue that edit the scene or go elsewhere in it.
struct ActionSpan
{
    MR::Action first;
    MR::Action last;
};

constexpr ActionSpan endingPlayback[] = {
    {MR::Action::AddCloneDrawing, MR::Action::CycleSelectedDrawingsOnce},
    {MR::Action::StepBack, MR::Action::SkipForwardToKeyDrawing},
    {MR::Action::JumpToStart, MR::Action::JumpToEnd},
    {MR::Action::DiscardAudio, MR::Action::DiscardAudio},
    {MR::Action::MarkAsKeyDrawing, MR::Action::UnmarkAllKeyDrawings},
    {MR::Action::NewLayer, MR::Action::CycleDrawingsBeyond},
    {MR::Action::MergeLayerDown, MR::Action::LinkAllLayers},
    {MR::Action::PickUpAllOfThisDrawing, MR::Action::FloatingSelection},
    {MR::Action::CollapseVectorData, MR::Action::CollapseVectorData},
};

const Model::AudioLayer *audioLayer(const Scene *scene)
{
    return scene ? dynamic_cast<const Model::AudioLayer *>(scene->layer(scene->audioLayerIdx())) : nullptr;
}

} // namespace

PlaybackActions::PlaybackActions(PlaybackController *playback, UI::Paper *paper, QWidget *window)
    : SceneFollower(window), m_playback(playback), m_paper(paper), m_window(window)
{
    connectController();
    connectActions();
    actualizeModes();
}

void PlaybackActions::connectController()
{
    connect(m_playback, &PlaybackController::showFrame, this, [this](int frameId) {
        if (scene())
            scene()->setScrubFrame(frameId);
    });
    connect(m_playback, &PlaybackController::updateActiveFrame, this, &PlaybackActions::land);
    connect(m_playback, &PlaybackController::audioPlaybackChanged, this, &PlaybackActions::playAudio);
    connect(m_playback, &PlaybackController::playbackChanged, this, [](bool playing) {
        Model::ActionManager::instance()->setActionFace(MR::Action::Play, playing ? 1 : 0, 1);
    });
}

void PlaybackActions::connectActions()
{
    for (const ActionSpan &span : endingPlayback) {
        for (int id = int(span.first); id <= int(span.last); ++id)
            onTriggered(MR::Action(id), this, &PlaybackActions::stop);
    }
    onTriggered(MR::Action::Undo, this, &PlaybackActions::stopWhereItBegan);
    onTriggered(MR::Action::Redo, this, &PlaybackActions::stopWhereItBegan);
    onTriggered(MR::Action::Play, m_playback, &PlaybackController::togglePlayback);
    onTriggered(MR::Action::PlayLoop, this, [this] {
        m_playback->setPlaybackMode(PlaybackController::Loop, true);
        actualizeModes();
    });
    onTriggered(MR::Action::PlayOnce, this, [this] {
        m_playback->setPlaybackMode(PlaybackController::Loop, false);
        actualizeModes();
    });
    onTriggered(MR::Action::PlayBackwards, this,
                [this](bool on) { m_playback->setPlaybackMode(PlaybackController::Backwards, on); });
    onTriggered(MR::Action::PlayStopAndStay, this,
                [this](bool on) { m_playback->setPlaybackMode(PlaybackController::StopAndStay, on); });
    onTriggered(MR::Action::ReturnFlip, this, [this] {
        stop();
        m_playback->flipBackAndReturn(flipFromMenu);
        m_paper->returnFlip_Menu();
    });
    for (const Model::ActionRow &row : Model::actionTable()) {
        if (row.frameRate > 0.0)
            onTriggered(row.action, this, [this, rate = row.frameRate] { setFrameRate(rate); });
    }
    onTriggered(MR::Action::FrameRateCustom, this, &PlaybackActions::askForFrameRate);
    onTriggered(MR::Action::MuteAudio, this, &PlaybackActions::setMuted);
    onTriggered(MR::Action::DiscardAudio, this, &PlaybackActions::discardAudio);
}

void PlaybackActions::connectScene(MRScene &mrScene)
{
    const Scene *scene = mrScene.scene();
    follow(connect(scene, &Scene::frameRangeChanged, m_playback, &PlaybackController::setFrameRange));
    follow(connect(scene, &Scene::activeFrameAndLayerChanged, m_playback, &PlaybackController::setActiveFrame));
    follow(connect(scene, &Scene::frameRateChanged, m_playback, &PlaybackController::setFrameRate));
    follow(connect(scene, &Scene::frameRateChanged, this, &PlaybackActions::actualizeFrameRate));
    follow(connect(scene, &Scene::layersChanged, this, &PlaybackActions::actualizeSound));
    follow(
        connect(mrScene.sceneModel(), &QAbstractItemModel::headerDataChanged, this, &PlaybackActions::actualizeSound));
    follow(connect(scene, &Scene::endInsertLayer, this, &PlaybackActions::actualizeSound));
    follow(connect(scene, &Scene::endRemoveLayer, this, &PlaybackActions::actualizeSound));
}

void PlaybackActions::actualize()
{
    if (!scene())
        return;
    m_playback->setFrameRange(scene()->rangeFirst(), scene()->rangeLast());
    m_playback->setActiveFrame(scene()->activeFrame());
    m_playback->setFrameRate(scene()->frameRate());
    actualizeFrameRate();
    actualizeSound();
}

void PlaybackActions::actualizeFrameRate()
{
    if (!scene())
        return;
    const double rate = scene()->frameRate();
    const auto rows = Model::actionTable();
    const auto listed = std::ranges::find_if(rows, [rate](const Model::ActionRow &row) {
        return row.frameRate > 0.0 && Model::fuzzyEqual(row.frameRate, rate);
    });
    const bool isListed = listed != rows.end();
    catalogueAction(isListed ? listed->action : MR::Action::FrameRateCustom)->setChecked(true);
}

void PlaybackActions::actualizeModes()
{
    const PlaybackController::PlaybackModes modes = m_playback->playbackModes();
    const bool loops = modes.testFlag(PlaybackController::Loop);
    catalogueAction(loops ? MR::Action::PlayLoop : MR::Action::PlayOnce)->setChecked(true);
    catalogueAction(MR::Action::PlayBackwards)->setChecked(modes.testFlag(PlaybackController::Backwards));
    catalogueAction(MR::Action::PlayStopAndStay)->setChecked(modes.testFlag(PlaybackController::StopAndStay));
}

void PlaybackActions::actualizeSound()
{
    const Model::AudioLayer *audio = audioLayer(scene());
    catalogueAction(MR::Action::MuteAudio)->setChecked(audio && !audio->isAudible());
}

void PlaybackActions::stop()
{
    m_playback->stopPlayback();
}

void PlaybackActions::stopWhereItBegan()
{
    const QScopedValueRollback<bool> staysNowhere(m_staysNowhere, true);
    stop();
}

void PlaybackActions::land(int frameId)
{
    if (scene())
        emit landed(m_staysNowhere ? scene()->activeFrame() : frameId);
}

void PlaybackActions::setFrameRate(double framesPerSecond)
{
    if (!mrScene())
        return;
    MRScene::pushCommand(new Commands::SetFrameRate(mrScene(), framesPerSecond));
    // The action has checked itself, whatever has become of the command.
    actualizeFrameRate();
}

void PlaybackActions::askForFrameRate()
{
    if (!mrScene())
        return;
    stop();
    const QPointer<MRScene> asked = mrScene();
    bool accepted = false;
    double rate = 0;
    {
        const UI::InputSuspension suspension;
        rate = QInputDialog::getDouble(m_window, tr("Playback Rate"), tr("Frames per second:"), scene()->frameRate(),
                                       Scene::slowestFrameRate, Scene::fastestFrameRate, rateDecimals, &accepted);
    }
    // Meanwhile another scene may have been opened from outside.
    if (accepted && asked && asked == mrScene())
        setFrameRate(rate);
    actualizeFrameRate();
}

void PlaybackActions::setMuted(bool muted)
{
    if (mrScene()) {
        mrScene()->sceneModel()->setHeaderData(scene()->audioLayerIdx(), Qt::Horizontal, !muted,
                                               Model::SceneModel::LayerAudibleRole);
    }
}

void PlaybackActions::discardAudio()
{
    if (mrScene())
        MRScene::pushCommand(new Commands::DiscardLayer(mrScene(), scene()->audioLayerIdx()));
}

void PlaybackActions::playAudio(bool playing, int frameId)
{
    if (!scene())
        return;
    if (playing)
        scene()->startAudioPlayback(frameId);
    else
        scene()->stopAudioPlayback();
}
