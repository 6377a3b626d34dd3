#include "app/actionstates.h"

#include "app/actionneeds.h"
#include "app/catalogueaction.h"
#include "app/playbackcontroller.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/tools/toolmanager.h"

#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QUndoStack>

#include <algorithm>

using Model::Scene;
using Model::ToolManager;

namespace {

/// Actions that the catalogue makes disabled, though nothing stands in their way.
constexpr MR::Action alwaysWorking[] = {MR::Action::FullScreen};

/// What \a need lacks while \a state holds; empty when it holds.
QString obstacleOf(const ActionNeed &need, const EditorState &state)
{
    if (need.condition && state.*need.condition)
        return {};
    const bool lacksScene = need.condition && need.condition != &EditorState::hasDrawingTool && !state.hasScene;
    return QCoreApplication::translate("ActionStates", lacksScene ? "No scene is open" : need.obstacle);
}

} // namespace

ActionStates::ActionStates(const PlaybackController *playback, QObject *parent)
    : SceneFollower(parent), m_playback(playback)
{
    connect(ToolManager::instance(), &ToolManager::currentToolTypeChanged, this, &ActionStates::actualize);
    connect(playback, &PlaybackController::playbackChanged, this, &ActionStates::actualize);
    for (const MR::Action action : alwaysWorking)
        Model::ActionManager::instance()->setAvailable(action, true);
    apply();
}

QString ActionStates::obstacle(MR::Action action, const EditorState &state)
{
    const auto needs = actionNeeds();
    const auto found = std::ranges::find(needs, action, &ActionNeeds::action);
    return found == needs.end() ? QString() : obstacleOf(*found->need, state);
}

void ActionStates::connectScene(Model::MRScene &mrScene)
{
    const Scene *scene = mrScene.scene();
    const auto watch = [this](auto *sender, auto signal) {
        follow(connect(sender, signal, this, &ActionStates::actualize));
    };
    watch(scene, &Scene::activeFrameAndLayerChanged);
    watch(scene, &Scene::frameRangeChanged);
    watch(scene, &Scene::maximumFrameNumberChanged);
    watch(scene, &Scene::layersChanged);
    watch(scene, &Scene::layerMoved);
    watch(scene, &Scene::endInsertLayer);
    watch(scene, &Scene::endRemoveLayer);
    watch(scene, &Scene::drawingsChanged);
    watch(scene, &Scene::hasActiveStrokeChanged);
    watch(scene->undoStack(), &QUndoStack::indexChanged);
    watch(mrScene.selectionModel(), &QItemSelectionModel::selectionChanged);
    watch(mrScene.frameRangeModel(), &QAbstractItemModel::layoutChanged);
}

void ActionStates::actualize()
{
    EditorState state = EditorState::of(mrScene());
    state.canPlay |= m_playback->isActive();
    state.hasDrawingTool = ToolManager::instance()->isDrawingOrErasing();
    if (state == m_state)
        return;
    m_state = state;
    apply();
}

void ActionStates::apply() const
{
    auto *catalogue = Model::ActionManager::instance();
    for (const ActionNeeds &entry : actionNeeds()) {
        const QString obstacle = obstacleOf(*entry.need, m_state);
        catalogue->setAvailable(entry.action, obstacle.isEmpty(), obstacle);
    }
}
