#include "app/actionstates.h"

#include "app/actionneeds.h"
#include "app/catalogueaction.h"
#include "app/playbackcontroller.h"
#include "app/zoomlevels.h"
#include "libmodel/base/fuzzy.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper.h"
#include "libui/paper/viewtransform.h"

#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QUndoStack>

#include <algorithm>
#include <utility>

using Model::DrawingTool;
using Model::Scene;
using Model::Tool;
using Model::ToolManager;

namespace {

/// Actions that the catalogue makes disabled, though nothing stands in their way.
constexpr MR::Action alwaysWorking[] = {MR::Action::FullScreen};

/// What \a need lacks while \a state holds; empty when it holds.
QString obstacleOf(const ActionNeed &need, const EditorState &state)
{
    const bool hasScene = state.hasScene || !need.isOfScene;
    if (hasScene && need.condition && state.*need.condition)
        return {};
    return QCoreApplication::translate("ActionStates", hasScene ? need.obstacle : "No scene is open");
}

/// Is what \a need lacks the same for both states?
bool isSameFor(const ActionNeed &need, const EditorState &a, const EditorState &b)
{
    const bool isSameScene = a.hasScene == b.hasScene || !need.isOfScene;
    return isSameScene && (!need.condition || a.*need.condition == b.*need.condition);
}

void showObstacle(const ActionNeeds &entry, const EditorState &state)
{
    const QString obstacle = obstacleOf(*entry.need, state);
    Model::ActionManager::instance()->setAvailable(entry.action, obstacle.isEmpty(), obstacle);
}

} // namespace

ActionStates::ActionStates(const PlaybackController *playback, const UI::Paper *paper, QObject *parent)
    : SceneFollower(parent), m_playback(playback), m_paper(paper)
{
    for (const MR::Action action : alwaysWorking)
        Model::ActionManager::instance()->setAvailable(action, true);
    for (const ActionNeeds &entry : actionNeeds())
        showObstacle(entry, m_state);
    const ToolManager *tools = ToolManager::instance();
    connect(tools, &ToolManager::currentToolTypeChanged, this, &ActionStates::actualizeTool);
    for (const Tool::PenType pen : {Tool::PenType::Pencil, Tool::PenType::Marker, Tool::PenType::Brush})
        connect(tools->pen(pen), &DrawingTool::sizeRangeChanged, this, &ActionStates::actualizeTool);
    for (const Tool::EraserType eraser :
         {Tool::EraserType::KneadedEraser, Tool::EraserType::RubberEraser, Tool::EraserType::VinylEraser})
        connect(tools->eraser(eraser), &DrawingTool::sizeRangeChanged, this, &ActionStates::actualizeTool);
    connect(playback, &PlaybackController::playbackChanged, this, &ActionStates::actualize);
    connect(paper, &UI::Paper::zoomLevelChanged, this, &ActionStates::actualizeZoom);
    connect(Model::Settings::instance(), &Model::Settings::clonesLockedForDrawingChanged, this,
            &ActionStates::actualize);
    actualizeTool();
    actualizeZoom();
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
    watch(&mrScene, &Model::MRScene::floatingSelectionChanged);
    watch(mrScene.selectionModel(), &QItemSelectionModel::selectionChanged);
    watch(mrScene.frameRangeModel(), &QAbstractItemModel::layoutChanged);
}

void ActionStates::actualize()
{
    EditorState state = EditorState::of(mrScene());
    if (state.hasScene && m_playback->isActive())
        state.allowPlaybackToEnd();
    if (state.hasScene && m_isSelectionDropped)
        state.allowGettingBack();
    state.canPaste = state.hasScene && m_clipboard.canBePasted(*mrScene());
    state.canDecreaseSize = m_state.canDecreaseSize;
    state.canIncreaseSize = m_state.canIncreaseSize;
    state.canZoomIn = m_state.canZoomIn;
    state.canZoomOut = m_state.canZoomOut;
    takeOver(state);
}

void ActionStates::setClipboardContent(const ClipboardContent &clipboard)
{
    m_clipboard = clipboard;
    actualize();
}

void ActionStates::setSelectionDropped(bool dropped)
{
    m_isSelectionDropped = dropped;
    actualize();
}

void ActionStates::actualizeTool()
{
    const auto *tool = qobject_cast<const DrawingTool *>(ToolManager::instance()->currentTool());
    EditorState state = m_state;
    // Steps go on for as long as one end of the range is left to be moved.
    state.canDecreaseSize = tool && tool->sizeMaxPercent() > 0.0;
    state.canIncreaseSize = tool && tool->sizeMinPercent() < 100.0;
    if (mrScene())
        state.readFloating(*mrScene());
    if (mrScene() && m_isSelectionDropped)
        state.allowGettingBack();
    takeOver(state);
}

void ActionStates::actualizeZoom()
{
    const double level = m_paper->zoomLevel();
    const double next = ZoomLevels::next(level);
    EditorState state = m_state;
    // Past the largest level of all it would be the smallest one's turn, but the paper ends before that.
    state.canZoomIn = level < next && next <= UI::ViewTransform::largestLevel;
    state.canZoomOut = ZoomLevels::previous(level) < level && !Model::fuzzyEqual(level, ZoomLevels::smallest);
    takeOver(state);
}

void ActionStates::takeOver(const EditorState &state)
{
    if (state == m_state)
        return;
    const EditorState former = std::exchange(m_state, state);
    for (const ActionNeeds &entry : actionNeeds()) {
        if (!isSameFor(*entry.need, former, state))
            showObstacle(entry, state);
    }
}
