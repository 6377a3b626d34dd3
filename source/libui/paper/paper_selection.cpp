#include "libui/paper/paper.h"

#include "libmodel/scene/scene.h"
#include "libmodel/tools/floatingselectiontool.h"
#include "libmodel/tools/offpegstool.h"
#include "libmodel/tools/toolmanager.h"
#include "libmodel/tools/zprtool.h"
#include "libui/paper/edgescroll.h"
#include "libui/paper/paper_p.h"

#include <QToolTip>

#include <utility>

namespace UI {

namespace {

using Type = Model::Tool::Type;
using Zone = FloatingSelectionView::Zone;
using SelectionCursor = Model::FloatingSelectionTool::FSCursorType;

constexpr int edgeInterval = 10;

SelectionCursor cursorOf(Zone zone)
{
    switch (zone) {
    case Zone::Move:
        return SelectionCursor::Move;
    case Zone::Pivot:
        return SelectionCursor::Pivot;
    case Zone::Rotate:
        return SelectionCursor::Rotate;
    case Zone::Scale:
        return SelectionCursor::Scale;
    case Zone::ScaleRotate:
        return SelectionCursor::ScaleRotate;
    case Zone::HorizontalEdge:
        return SelectionCursor::HorizontalEdge;
    case Zone::VerticalEdge:
        return SelectionCursor::VerticalEdge;
    case Zone::Outside:
        break;
    }
    return SelectionCursor::Stamp;
}

Model::ZPRTool::ZPRCursorType cursorOf(ViewZones::Zpr zone)
{
    using Cursor = Model::ZPRTool::ZPRCursorType;
    switch (zone) {
    case ViewZones::Zpr::Pan:
        return Cursor::Pan;
    case ViewZones::Zpr::Rotate:
        return Cursor::Rotate;
    case ViewZones::Zpr::Zoom:
    case ViewZones::Zpr::None:
        break;
    }
    return Cursor::Zoom;
}

Model::OffPegsTool::OPCursorType cursorOf(ViewZones::OffPegs zone)
{
    using Cursor = Model::OffPegsTool::OPCursorType;
    switch (zone) {
    case ViewZones::OffPegs::Rotate:
        return Cursor::Rotate;
    case ViewZones::OffPegs::Pan:
        return Cursor::Pan;
    case ViewZones::OffPegs::Button:
        break;
    }
    return Cursor::PutBack;
}

template<typename ToolClass>
ToolClass *toolOf(Type type)
{
    return qobject_cast<ToolClass *>(Model::ToolManager::instance()->tool(type));
}

} // namespace

bool Paper::Private::floats() const
{
    return mrScene && Model::ToolManager::instance()->latestPaperToolType() == Type::FloatingSelection &&
           showsActiveFrame();
}

bool Paper::Private::canPickUp() const
{
    const Model::Layer *layer = scene()->layer(scene()->activeLayerIdx());
    return layer && layer->layerType() == Model::Layer::Stroke && scene()->isLayerShown(scene()->activeLayerIdx());
}

/// Shows the selection or hides it, where that has changed.
void Paper::followFloating()
{
    const bool isSeen = d->floats() && !d->mrScene->floatingSelection().isNull();
    if (isSeen == d->floating.isNull())
        takeFloatingSelection();
}

/// Takes the scene's floating selection over; a drag of the one before has nothing more to move.
void Paper::takeFloatingSelection()
{
    const QRect before = d->floatingRect();
    if (d->gesture == Private::Gesture::Floating) {
        d->gesture = Private::Gesture::None;
        d->edgeTimer.stop();
    }
    d->floating.setSelection(d->floats() ? d->mrScene->floatingSelection() : Model::FloatingSelection());
    d->floating.rebuildHandles(d->view, d->scale);
    update(before | d->floatingRect());
    updateZone();
}

void Paper::setFloatingSelectionTransform(const Model::FloatingSelection::Transform &transform)
{
    if (d->floating.isNull() || !transform.isUsable() ||
        (!d->floating.isDragging() && d->floating.transform() == transform))
        return;
    layFloatingAt(transform);
}

/// What is dragged there is let go of.
void Paper::layFloatingAt(const Model::FloatingSelection::Transform &transform)
{
    const QRect before = d->floatingRect();
    if (d->gesture == Private::Gesture::Floating) {
        d->gesture = Private::Gesture::None;
        d->edgeTimer.stop();
    }
    d->floating.setTransform(transform);
    update(before | d->floatingRect());
    updateZone();
}

void Paper::beginFloating(const PointerEvent &pointer)
{
    // With another frame on show it is out of sight, until that is told of the press.
    if (!mayEdit() || d->mrScene->floatingSelection().isNull() || !announce(&Paper::aboutToBeginEdit) ||
        d->floating.isNull())
        return;
    showZone(pointer.position);
    const Zone zone = d->floating.zoneAt(pointer.position);
    if (zone == Zone::Outside) {
        emit floatingSelectionStamped(pointer.modifiers);
        return;
    }
    d->lastModifiers = pointer.modifiers;
    d->floating.beginDrag(zone, pointer.position);
    d->gesture = Private::Gesture::Floating;
}

void Paper::dragFloating(QPointF position, Qt::KeyboardModifiers modifiers)
{
    const QRect before = d->floatingRect();
    d->floating.dragTo(position, modifiers, d->view);
    update(before | d->floatingRect());
    const bool scrolls =
        d->floating.draggedZone() == Zone::Move && !edgeScrollStep(rect(), position, d->view.deviceRatio()).isNull();
    if (!scrolls)
        d->edgeTimer.stop();
    else if (!d->edgeTimer.isActive())
        d->edgeTimer.start(edgeInterval, Qt::PreciseTimer, this);
}

/// The scene has the last word here, too: with nobody to answer, the selection lies where it says.
void Paper::endFloating(Ending ending)
{
    d->gesture = Private::Gesture::None;
    d->edgeTimer.stop();
    const bool moved = d->floating.endDrag();
    if (!moved || ending == Ending::SceneLeft)
        return;
    emit floatingSelectionTransformChanged(d->floating.transform());
    if (d->mrScene)
        setFloatingSelectionTransform(d->mrScene->floatingSelection().transform());
}

/// The view has changed: what is held stays under the pointer, and the handles keep their size.
void Paper::followView()
{
    d->floating.rebuildHandles(d->view, d->scale);
    if (d->gesture == Private::Gesture::Floating && d->lastPosition)
        d->floating.dragTo(*d->lastPosition, d->lastModifiers, d->view);
}

void Paper::scrollAtEdge()
{
    if (d->gesture != Private::Gesture::Floating || !d->lastPosition) {
        d->edgeTimer.stop();
        return;
    }
    const double ratio = d->view.deviceRatio();
    const QPointF step = edgeScrollStep(rect(), *d->lastPosition, ratio);
    const QPolygonF paper = d->view.paperToWidget().map(QPolygonF(d->view.paperRect()));
    if (step.isNull() || !mayScroll(rect(), paper, step, ratio))
        return;
    ViewTransform view = settledView();
    view.panTo({}, step);
    setView(view);
}

/// Shift makes a scale even: the running drag is looked at anew where it stands.
void Paper::shiftChanged(bool isDown)
{
    if (d->gesture != Private::Gesture::Floating || !d->lastPosition)
        return;
    d->lastModifiers.setFlag(Qt::ShiftModifier, isDown);
    dragFloating(*d->lastPosition, d->lastModifiers);
}

/// Shows what the tool would do where the pointer is. While something is pressed its zone stays.
void Paper::updateZone()
{
    if (d->lastPosition && !d->filter.isAnyDown())
        showZone(*d->lastPosition);
}

void Paper::showZone(QPointF position)
{
    if (d->toolType == Type::ZPR) {
        toolOf<Model::ZPRTool>(Type::ZPR)->setCursorType(cursorOf(d->zones.zprZoneAt(position)));
    } else if (d->toolType == Type::OffPegs) {
        const ViewZones::OffPegs zone = d->offPegsZoneAt(position);
        setOverButton(zone == ViewZones::OffPegs::Button);
        toolOf<Model::OffPegsTool>(Type::OffPegs)->setCursorType(cursorOf(zone));
    } else if (d->toolType == Type::FloatingSelection) {
        auto *tool = toolOf<Model::FloatingSelectionTool>(Type::FloatingSelection);
        tool->setCursorType(cursorOf(d->floating.zoneAt(position)));
        tool->setHandleAngle(d->floating.handleAngleAt(position));
    } else if (Model::ToolManager::isLassoOrCutterType(d->toolType)) {
        setForbidden(d->mrScene && !d->canPickUp());
    }
}

void Paper::setOverButton(bool over)
{
    if (std::exchange(d->isOverButton, over) != over)
        update(d->buttonRect());
}

/// The tip stands below the button, of which it covers nothing.
bool Paper::showToolTip(QPoint position, QPoint globalPosition)
{
    if (d->toolType != Type::OffPegs || d->offPegsZoneAt(position) != ViewZones::OffPegs::Button)
        return false;
    const QRect button = d->buttonRect();
    const QPoint below(0, button.bottom() - position.y());
    QToolTip::showText(globalPosition + below, tr("Put Frame On the Pegs"), this, button);
    return true;
}

} // namespace UI
