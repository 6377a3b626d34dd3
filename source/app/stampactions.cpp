#include "app/stampactions.h"

#include "app/behindlast.h"
#include "app/catalogueaction.h"
#include "app/toolswitch.h"
#include "libcommands/changetooltype.h"
#include "libcommands/floatingselectionnew.h"
#include "libcommands/floatingselectiontransform.h"
#include "libcommands/stroke.h"
#include "libmodel/base/dialogprogress.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"

#include <QUndoStack>

#include <utility>

using FloatingState::Target;
using Model::FloatingSelection;
using Model::MRScene;
using Model::Tool;
using Model::ToolManager;

StampActions::StampActions(ToolSwitch *toolSwitch, QWidget *window)
    : SceneFollower(window), m_toolSwitch(toolSwitch), m_window(window)
{
    toolSwitch->setLeavingFloatingSelection([this](Tool::Type type) { return leaveFor(type); });
    onTriggered(MR::Action::StampFloatingSelection, this, [this] { stamp(false); });
    onTriggered(MR::Action::StampFloatingSelectionKeepFloating, this, [this] { stamp(true); });
    onTriggered(MR::Action::DropFloatingSelection, this, &StampActions::drop);
    onTriggered(MR::Action::GetLatestFloatingSelectionBack, this, &StampActions::getLatestBack);
    onTriggered(MR::Action::FloatingSelection, this, &StampActions::choose);
}

void StampActions::connectScene(MRScene &scene)
{
    follow(connect(scene.scene()->undoStack(), &QUndoStack::indexChanged, this, &StampActions::onStackMoved));
}

void StampActions::actualize()
{
    m_dropStep = nullptr;
    setDropped({});
}

bool StampActions::isFloating() const
{
    return mrScene() && FloatingState::floats(*mrScene());
}

/// What undo comes back to is the tool of the selection.
void StampActions::giveBackBorrowedTool()
{
    ToolManager *tools = ToolManager::instance();
    if (tools->currentToolType() != Tool::Type::FloatingSelection)
        tools->setCurrentTool(Tool::Type::FloatingSelection, 0);
}

void StampActions::stamp(bool keepsFloating)
{
    const ToolManager *tools = ToolManager::instance();
    const bool isBlocked = tools->currentToolType() == Tool::Type::FloatingSelection && tools->currentToolMode() != 0;
    if (!isFloating() || isBlocked || UI::InputSuspension::isActive())
        return;
    emit aboutToEdit();
    if (const auto target = FloatingState::target(*mrScene()))
        stampOn(*target, keepsFloating ? Tool::Type::FloatingSelection : m_toolSwitch->toolToDrawWith());
}

/// The stroke to stamp; null if the user cancels the collapse, and if meanwhile nothing floats any more.
std::unique_ptr<Model::Stroke> StampActions::makeStamp()
{
    const FloatingSelection selection = mrScene()->floatingSelection();
    const int scale = Model::Settings::instance()->collapseScale();
    if (!selection.collapsesOnStamp())
        return selection.stampStroke(scale, nullptr);
    const QPointer<MRScene> stampedIn = mrScene();
    const UI::InputSuspension suspension;
    Model::DialogProgress progress(m_window, tr("Collapsing stamp"), tr("Cancel"), m_progressDelayMs);
    std::unique_ptr<Model::Stroke> stamp = selection.stampStroke(scale, &progress);
    return isFloating() && stampedIn == mrScene() ? std::move(stamp) : nullptr;
}

bool StampActions::stampOn(const Target &target, Tool::Type nextTool)
{
    std::unique_ptr<Model::Stroke> stamp = makeStamp();
    if (!stamp)
        return false;
    giveBackBorrowedTool();
    QUndoStack *stack = scene()->undoStack();
    if (target.isBehindLast) {
        stack->beginMacro(tr("Stamp Floating Selection"));
        BehindLast::addBlankDrawing(*mrScene());
    }
    std::unique_ptr<QUndoCommand> step = stampStep(target, std::move(stamp), nextTool);
    const bool isStamped = step != nullptr;
    MRScene::pushCommand(step.release());
    if (target.isBehindLast)
        stack->endMacro();
    if (isStamped && target.isSelection)
        mrScene()->clearSelection();
    return isStamped;
}

/// \return null if no cell of \a target takes a stroke.
std::unique_ptr<QUndoCommand> StampActions::stampStep(const Target &target, std::unique_ptr<Model::Stroke> stamp,
                                                      Tool::Type nextTool)
{
    const QModelIndexList cells = CellSelection::indexes(*mrScene(), target.spans);
    auto step = std::make_unique<QUndoCommand>(tr("Stamp Floating Selection"));
    const auto *stroke = target.isSelection
                             ? new Commands::Stroke(mrScene(), cells, std::move(stamp), step.get())
                             : new Commands::Stroke(mrScene(), cells.value(0), std::move(stamp), step.get());
    if (stroke->isObsolete())
        return nullptr;
    FloatingSelection selection = mrScene()->floatingSelection();
    if (selection.isCutOut()) {
        selection.setCutOut(false);
        new Commands::FloatingSelectionNew(mrScene(), selection, step.get());
    }
    if (nextTool != Tool::Type::FloatingSelection)
        new Commands::ChangeToolType(mrScene(), nextTool, step.get());
    return step;
}

void StampActions::drop()
{
    if (!isFloating())
        return;
    emit aboutToEdit();
    giveBackBorrowedTool();
    const FloatingSelection dropped = mrScene()->floatingSelection();
    auto step = std::make_unique<QUndoCommand>(tr("Drop Floating Selection"));
    new Commands::FloatingSelectionNew(mrScene(), {}, step.get());
    new Commands::ChangeToolType(mrScene(), m_toolSwitch->toolToDrawWith(), step.get());
    MRScene::pushCommand(step.release());
    m_wasCutOut = dropped.isCutOut();
    m_dropIndex = scene()->undoStack()->index();
    m_dropStep = scene()->undoStack()->command(m_dropIndex - 1);
    setDropped(dropped);
}

void StampActions::getLatestBack()
{
    if (!mrScene() || isFloating())
        return;
    const bool isKept = !mrScene()->floatingSelection().isNull();
    if (!isKept && m_dropped.isNull())
        return;
    emit aboutToEdit();
    m_toolSwitch->giveBackAll();
    auto step = std::make_unique<QUndoCommand>(tr("Get latest Floating Selection back"));
    if (!isKept)
        new Commands::FloatingSelectionNew(mrScene(), m_dropped, step.get());
    new Commands::ChangeToolType(mrScene(), Tool::Type::FloatingSelection, step.get());
    MRScene::pushCommand(step.release());
}

/// Its action was triggered: the selection that the scene keeps floats again, or no longer.
void StampActions::choose(bool on)
{
    if (isFloating()) {
        m_toolSwitch->setTool(on ? Tool::Type::FloatingSelection : m_toolSwitch->toolToDrawWith(), true);
    } else if (mrScene() && !mrScene()->floatingSelection().isNull()) {
        emit aboutToEdit();
        m_toolSwitch->giveBackAll();
        MRScene::pushCommand(new Commands::ChangeToolType(mrScene(), Tool::Type::FloatingSelection));
    }
    // The action has checked itself, whatever has become of the tool.
    catalogueAction(MR::Action::FloatingSelection)
        ->setChecked(ToolManager::instance()->currentToolType() == Tool::Type::FloatingSelection);
}

void StampActions::moveTo(const FloatingSelection::Transform &transform)
{
    if (mrScene())
        MRScene::pushCommand(new Commands::FloatingSelectionTransform(mrScene(), transform));
}

bool StampActions::leaveFor(Tool::Type type)
{
    if (!isFloating())
        return true;
    emit aboutToEdit();
    if (mrScene()->floatingSelection().isCutOut()) {
        if (const auto refuge = FloatingState::refuge(*mrScene()))
            return stampOn(*refuge, type);
    }
    giveBackBorrowedTool();
    MRScene::pushCommand(new Commands::ChangeToolType(mrScene(), type));
    return true;
}

bool StampActions::bringHome()
{
    return !isFloating() || !mrScene()->floatingSelection().isCutOut() || leaveFor(m_toolSwitch->toolToDrawWith());
}

void StampActions::leaveScene()
{
    if (isFloating())
        ToolManager::instance()->setCurrentTool(m_toolSwitch->toolToDrawWith(), 0);
}

/// With the drop undone, so may be the cut before it: what is got back then is a copy.
void StampActions::onStackMoved()
{
    const QUndoStack *stack = scene()->undoStack();
    const bool isDone = stack->index() >= m_dropIndex && stack->command(m_dropIndex - 1) == m_dropStep;
    m_dropped.setCutOut(m_wasCutOut && isDone && m_dropStep);
}

void StampActions::setDropped(const FloatingSelection &selection)
{
    const bool had = hasDropped();
    m_dropped = selection;
    if (hasDropped() != had)
        emit hasDroppedChanged(hasDropped());
}
