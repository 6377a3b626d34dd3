#include "app/stampactions.h"

#include "app/behindlast.h"
#include "app/busyscope.h"
#include "app/catalogueaction.h"
#include "app/toolswitch.h"
#include "libcommands/changetooltype.h"
#include "libcommands/floatingselectionnew.h"
#include "libcommands/floatingselectiontransform.h"
#include "libcommands/stroke.h"
#include "libmodel/base/dialogprogress.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QUndoStack>

#include <algorithm>
#include <utility>

using FloatingState::Target;
using Model::FloatingSelection;
using Model::MRScene;
using Model::Tool;
using Model::ToolManager;

namespace {

/// Takes the floating selection away, and lets it be the one that can be got back as long as that is done.
class DropStep : public QUndoCommand
{
public:
    DropStep(const QString &text, const FloatingSelection &dropped, std::shared_ptr<FloatingSelection> latest)
        : QUndoCommand(text), m_dropped(dropped), m_latest(std::move(latest))
    {
    }

    void redo() override
    {
        QUndoCommand::redo();
        m_former = std::exchange(*m_latest, m_dropped);
    }

    void undo() override
    {
        QUndoCommand::undo();
        if (!m_former.isNull())
            *m_latest = m_former;
        else // With the drop undone, so may be the cut before it: what is got back then is a copy.
            m_latest->setCutOut(false);
    }

private:
    FloatingSelection m_dropped;
    FloatingSelection m_former;
    std::shared_ptr<FloatingSelection> m_latest;
};

/// Does any of the drawings in \a cells take \a stamp?
bool takes(const MRScene &mrScene, const QModelIndexList &cells, const Model::Stroke &stamp)
{
    return std::any_of(cells.begin(), cells.end(), [&](const QModelIndex &cell) {
        const auto drawing = mrScene.sceneModel()->drawing(cell);
        const auto *strokes = dynamic_cast<const Model::StrokeDrawing *>(drawing.get());
        return strokes && strokes->strokes().canAppend(stamp);
    });
}

} // namespace

StampActions::StampActions(ToolSwitch *toolSwitch, bool &busy, QWidget *window)
    : SceneFollower(window), m_toolSwitch(toolSwitch), m_busy(busy), m_window(window)
{
    toolSwitch->setLeavingFloatingSelection([this](Tool::Type type) { return leaveFor(type); });
    onTriggered(MR::Action::StampFloatingSelection, this, [this] { stamp(false); });
    onTriggered(MR::Action::StampFloatingSelectionKeepFloating, this, [this] { stamp(true); });
    onTriggered(MR::Action::DropFloatingSelection, this, &StampActions::drop);
    onTriggered(MR::Action::GetLatestFloatingSelectionBack, this, &StampActions::getLatestBack);
    onTriggered(MR::Action::FloatingSelection, this, &StampActions::choose);
}

void StampActions::actualize()
{
    // Steps of another scene keep theirs.
    m_dropped = std::make_shared<FloatingSelection>();
    emit hasDroppedChanged(false);
}

bool StampActions::isFloating() const
{
    return mrScene() && FloatingState::floats(*mrScene());
}

/// Would the strokes of the selection get lost with it?
bool StampActions::isAtRisk() const
{
    return mrScene() && mrScene()->floatingSelection().isCutOut();
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
    if (!isFloating() || FloatingState::isBlocked() || UI::InputSuspension::isActive())
        return;
    emit aboutToEdit();
    if (const auto target = FloatingState::target(*mrScene()))
        stampOn(*target, keepsFloating ? NextTool() : m_toolSwitch->toolToDrawWith());
}

/// The stroke to stamp; null if the user cancels the collapse.
std::unique_ptr<Model::Stroke> StampActions::makeStamp()
{
    const FloatingSelection selection = mrScene()->floatingSelection();
    const int scale = Model::Settings::instance()->collapseScale();
    if (!selection.collapsesOnStamp())
        return selection.stampStroke(scale, nullptr);
    const QPointer<MRScene> stampedIn = mrScene();
    const BusyScope busy(m_busy);
    Model::DialogProgress progress(m_window, tr("Collapsing stamp"), tr("Cancel"), m_progressDelayMs);
    std::unique_ptr<Model::Stroke> stamp = selection.stampStroke(scale, &progress);
    return stampedIn && stampedIn == mrScene() ? std::move(stamp) : nullptr;
}

bool StampActions::stampOn(const Target &target, NextTool nextTool)
{
    std::unique_ptr<Model::Stroke> stamp = makeStamp();
    return stamp && isTakenOrMessage(target, *stamp) && putDown(target, std::move(stamp), nextTool);
}

/// A drawing of a file can be nested so deeply that it takes no more. The user is told.
bool StampActions::isTakenOrMessage(const Target &target, const Model::Stroke &stamp)
{
    if (target.isBehindLast || takes(*mrScene(), CellSelection::indexes(*mrScene(), target.spans), stamp))
        return true;
    const BusyScope busy(m_busy);
    QMessageBox::warning(m_window, QGuiApplication::applicationDisplayName(),
                         tr("What floats cannot be put down: the drawing here takes no more strokes."));
    return false;
}

bool StampActions::putDown(const Target &target, std::unique_ptr<Model::Stroke> stamp, NextTool nextTool)
{
    if (isFloating())
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
                                                      NextTool nextTool)
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
    if (nextTool)
        new Commands::ChangeToolType(mrScene(), *nextTool, step.get());
    return step;
}

void StampActions::drop()
{
    if (!isFloating())
        return;
    emit aboutToEdit();
    giveBackBorrowedTool();
    const FloatingSelection dropped = mrScene()->floatingSelection();
    auto step = std::make_unique<DropStep>(tr("Drop Floating Selection"), dropped, m_dropped);
    new Commands::FloatingSelectionNew(mrScene(), {}, step.get());
    new Commands::ChangeToolType(mrScene(), m_toolSwitch->toolToDrawWith(), step.get());
    MRScene::pushCommand(step.release());
    emit hasDroppedChanged(hasDropped());
}

void StampActions::getLatestBack()
{
    if (!mrScene() || isFloating())
        return;
    const bool isKept = !mrScene()->floatingSelection().isNull();
    if (!isKept && !hasDropped())
        return;
    emit aboutToEdit();
    m_toolSwitch->giveBackAll();
    auto step = std::make_unique<QUndoCommand>(tr("Get latest Floating Selection back"));
    if (!isKept)
        new Commands::FloatingSelectionNew(mrScene(), *m_dropped, step.get());
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
    if (isAtRisk()) {
        const auto refuge = refugeOrMessage();
        return refuge && stampOn(*refuge, type);
    }
    giveBackBorrowedTool();
    MRScene::pushCommand(new Commands::ChangeToolType(mrScene(), type));
    return true;
}

bool StampActions::bringHome()
{
    if (!isAtRisk())
        return true;
    if (isFloating())
        return leaveFor(m_toolSwitch->toolToDrawWith());
    emit aboutToEdit();
    const auto refuge = refugeOrMessage();
    return refuge && stampOn(*refuge, {});
}

bool StampActions::bringHomeAhead(const QString &text, const std::function<void()> &edit)
{
    if (!isAtRisk()) {
        edit();
        return true;
    }
    const auto refuge = refugeOrMessage();
    std::unique_ptr<Model::Stroke> stamp = refuge ? makeStamp() : nullptr;
    if (!stamp || !isTakenOrMessage(*refuge, *stamp))
        return false;
    QUndoStack *stack = scene()->undoStack();
    stack->beginMacro(text);
    putDown(*refuge, std::move(stamp), {});
    edit();
    stack->endMacro();
    return true;
}

/// Where a selection goes that would get lost; nothing where there is no such place, which the user is told.
std::optional<Target> StampActions::refugeOrMessage()
{
    auto refuge = FloatingState::refuge(*mrScene());
    if (!refuge) {
        const BusyScope busy(m_busy);
        QMessageBox::warning(m_window, QGuiApplication::applicationDisplayName(),
                             tr("What floats was cut out of a drawing, and cannot be put down: there is no layer with "
                                "drawings any more.\n\nAdd one, or drop the floating selection."));
    }
    return refuge;
}

void StampActions::leaveScene()
{
    if (ToolManager::instance()->latestPaperToolType() == Tool::Type::FloatingSelection)
        ToolManager::instance()->setCurrentTool(m_toolSwitch->toolToDrawWith(), 0);
}
