#include "libui/paper/paper.h"

#include "libmodel/scene/scene.h"
#include "libmodel/strokes/sample.h"
#include "libmodel/tools/fixedcursortools.h"
#include "libmodel/tools/penadjustmenttool.h"
#include "libmodel/tools/toolmanager.h"
#include "libmodel/tools/zprtool.h"
#include "libui/paper/paper_p.h"

#include <QApplication>

#include <cmath>
#include <utility>

namespace UI {

namespace {

using Type = Model::Tool::Type;

/// Pixels around a piece of the lasso's line that its pen may cover.
constexpr double lassoRoom = 3.0;

Model::Sample sampleOf(const PointerEvent &pointer, const ViewTransform &view)
{
    return {view.widgetToPaper().map(pointer.position), pointer.pressure, quint32(pointer.timestamp)};
}

/// What a drag with the tool \a type does to the view.
ViewDrag::Kind viewKind(Type type, ViewZones::Zpr zone)
{
    const bool byZone = type == Type::ZPR;
    if (type == Type::Hand || (byZone && zone == ViewZones::Zpr::Pan))
        return ViewDrag::Kind::Pan;
    if (type == Type::Rotate || (byZone && zone == ViewZones::Zpr::Rotate))
        return ViewDrag::Kind::Rotate;
    return ViewDrag::Kind::Zoom;
}

bool isViewTool(Type type)
{
    return type == Type::Hand || type == Type::Zoom || type == Type::Rotate || type == Type::ZPR;
}

template<typename ToolClass>
ToolClass *toolOf(Type type)
{
    return qobject_cast<ToolClass *>(Model::ToolManager::instance()->tool(type));
}

} // namespace

void Paper::moveGesture(const PointerEvent &pointer)
{
    d->lastModifiers = pointer.modifiers;
    switch (d->gesture) {
    case Private::Gesture::Stroke:
        if (d->mrScene)
            d->scene()->addSample(sampleOf(pointer, d->view));
        break;
    case Private::Gesture::View:
    case Private::Gesture::OffPegs: {
        ViewTransform view = d->view;
        d->drag.moveTo(pointer.position, view);
        setView(view);
        break;
    }
    case Private::Gesture::PutBack:
        setOverButton(d->offPegsZoneAt(pointer.position) == ViewZones::OffPegs::Button);
        break;
    case Private::Gesture::Lasso:
        leadLasso(pointer);
        break;
    case Private::Gesture::Floating:
        dragFloating(pointer.position, pointer.modifiers);
        break;
    case Private::Gesture::Scrub:
        if (d->scrub.moveTo(pointer.position))
            emit scrubOffsetChanged(d->scrub.offset());
        break;
    case Private::Gesture::PenAdjustment:
        movePenAdjustment(pointer.position);
        break;
    case Private::Gesture::None:
        break;
    }
}

void Paper::endGesture(Ending ending)
{
    switch (d->gesture) {
    case Private::Gesture::Stroke:
        d->gesture = Private::Gesture::None;
        // A scene that has been deleted took its stroke along.
        if (d->mrScene)
            emit strokeEnded();
        break;
    case Private::Gesture::View:
        endViewDrag();
        break;
    case Private::Gesture::OffPegs:
        endOffPegs(ending);
        break;
    case Private::Gesture::PutBack:
        endPutBack(ending);
        break;
    case Private::Gesture::Lasso:
        endLasso(ending);
        break;
    case Private::Gesture::Floating:
        endFloating(ending);
        break;
    case Private::Gesture::Scrub:
        endScrub();
        break;
    case Private::Gesture::PenAdjustment:
        endPenAdjustment();
        break;
    case Private::Gesture::None:
        break;
    }
}

void Paper::settleEdits()
{
    if (d->gesture == Private::Gesture::OffPegs || d->gesture == Private::Gesture::Floating)
        endGesture(Ending::Lost);
}

bool Paper::isPickingUp() const
{
    return d->gesture == Private::Gesture::Lasso || d->gesture == Private::Gesture::Floating;
}

void Paper::giveUpPickingUp()
{
    if (d->gesture == Private::Gesture::Lasso)
        endLasso(Ending::Lost);
    else if (d->gesture == Private::Gesture::Floating)
        layFloatingAt(d->floating.transform());
}

/// Whatever tool comes, the gesture of the one before ends where it stands. The contact stays down and does nothing.
void Paper::onToolChanged(Type current)
{
    endGesture(Ending::Lost);
    update(d->buttonRect());
    d->toolType = current;
    if (current == Type::Scrubbing)
        d->scrub.reset();
    followFloating();
    updateZone();
}

void Paper::beginStroke(const PointerEvent &pointer, QPointF hover)
{
    if (!mayEdit() || Model::ToolManager::instance()->currentToolMode() != 0)
        return;
    if (!announce(&Paper::aboutToBeginEdit) || !announce(&Paper::aboutToBeginStroke))
        return;
    // Where nobody could make a drawing to draw on, a line would be gone at its end.
    if (!d->scene()->activeCellHasDrawing())
        return;
    d->gesture = Private::Gesture::Stroke;
    const Model::Sample sample = sampleOf(pointer, d->view);
    if (hover.isNull())
        d->scene()->beginStroke(sample);
    else
        d->scene()->beginStroke(sample, d->view.widgetToPaper().map(hover));
}

/// \return false for tools that take the second tap as any press.
bool Paper::takeDoubleTap(QPointF position)
{
    if (!isViewTool(d->toolType))
        return false;
    ViewTransform view = settledView();
    switch (viewKind(d->toolType, d->zones.zprZoneAt(position))) {
    case ViewDrag::Kind::Pan:
        view.recenter();
        break;
    case ViewDrag::Kind::Rotate:
        view.rotateTo(0.0);
        break;
    default:
        view.setZoomLevel(1.0);
        break;
    }
    setView(view);
    return true;
}

void Paper::beginViewDrag(QPointF position)
{
    const bool byZone = d->toolType == Type::ZPR;
    if (byZone)
        toolOf<Model::ZPRTool>(Type::ZPR)->setPressPosGlobal(mapToGlobal(position).toPoint());
    const ViewDrag::Kind kind = viewKind(d->toolType, d->zones.zprZoneAt(position));
    d->drag = ViewDrag(kind, position, byZone ? d->zones.center() : d->view.center());
    d->gesture = Private::Gesture::View;
    update(d->symbolRect());
}

void Paper::beginPan(QPointF position)
{
    d->drag = ViewDrag(ViewDrag::Kind::Pan, position);
    d->gesture = Private::Gesture::View;
    update(d->symbolRect());
}

void Paper::endViewDrag()
{
    update(d->symbolRect());
    d->gesture = Private::Gesture::None;
    ViewTransform view = d->view;
    d->drag.commit(view);
    setView(view);
}

void Paper::beginOffPegs(QPointF position)
{
    if (!mayEdit() || !announce(&Paper::aboutToBeginEdit))
        return;
    // There is nothing to take off its pegs behind the last cell, unless another layer's has taken the frame off.
    if (!d->scene()->activeCellHasDrawing() && !d->view.isOffPegs())
        return;
    showZone(position);
    const ViewZones::OffPegs zone = d->offPegsZoneAt(position);
    if (zone == ViewZones::OffPegs::Button) {
        d->gesture = Private::Gesture::PutBack;
        update(d->buttonRect());
        return;
    }
    const bool pans = zone == ViewZones::OffPegs::Pan;
    d->drag = ViewDrag(pans ? ViewDrag::Kind::OffPegsPan : ViewDrag::Kind::OffPegsRotate, position);
    d->gesture = Private::Gesture::OffPegs;
    update(d->symbolRect());
}

void Paper::endOffPegs(Ending ending)
{
    update(d->symbolRect());
    d->gesture = Private::Gesture::None;
    ViewTransform view = d->view;
    d->drag.commit(view);
    setView(view);
    if (ending == Ending::SceneLeft)
        return;
    // What was dragged may have given way to another frame.
    if (d->mrScene && d->showsActiveFrame())
        tellOffPegs();
    else
        followOffPegs();
}

void Paper::endPutBack(Ending ending)
{
    d->gesture = Private::Gesture::None;
    update(d->buttonRect());
    if (ending != Ending::Released || !d->isOverButton || !d->mrScene || !d->showsActiveFrame())
        return;
    ViewTransform view = settledView();
    view.setOffPegs({});
    setView(view);
    tellOffPegs();
}

/// The scene has the last word: with nobody to answer, or another layer off its pegs, the frame lies where it says.
void Paper::tellOffPegs()
{
    emit offPegsTransformChanged(d->view.offPegs());
    followOffPegs();
}

void Paper::beginLasso(const PointerEvent &pointer)
{
    if (!mayEdit() || !d->canPickUp() || !announce(&Paper::aboutToBeginEdit))
        return;
    d->lassoCuts = d->toolType == Type::Cutter;
    d->lasso.begin(d->scene()->frameSize(), Model::ToolManager::instance()->tool(Type::Pen));
    d->gesture = Private::Gesture::Lasso;
    leadLasso(pointer);
}

void Paper::leadLasso(const PointerEvent &pointer)
{
    const QRectF added = d->lasso.add(sampleOf(pointer, d->view));
    if (!added.isEmpty()) {
        const QRectF shown = d->view.paperToWidget().mapRect(added);
        update(shown.adjusted(-lassoRoom, -lassoRoom, lassoRoom, lassoRoom).toAlignedRect());
    }
}

void Paper::endLasso(Ending ending)
{
    d->gesture = Private::Gesture::None;
    const QRectF shown = d->view.paperToWidget().mapRect(d->lasso.bounds());
    update(shown.adjusted(-lassoRoom, -lassoRoom, lassoRoom, lassoRoom).toAlignedRect());
    const QPainterPath path = d->lasso.finish();
    if (ending == Ending::Released && d->mrScene && d->showsActiveFrame())
        emit lassoingCompleted(path, d->lassoCuts);
}

void Paper::setMinMaxScrubOffset(int minOffset, int maxOffset)
{
    d->scrub.setLimits(minOffset, maxOffset);
}

void Paper::beginScrub(QPointF position)
{
    auto *tool = toolOf<Model::ScrubbingTool>(Type::Scrubbing);
    tool->setDragging(true);
    // Taking the tool up has left the cursor as it was.
    showCursor(tool->cursor());
    d->scrub.press(position);
    d->gesture = Private::Gesture::Scrub;
}

void Paper::endScrub()
{
    d->gesture = Private::Gesture::None;
    toolOf<Model::ScrubbingTool>(Type::Scrubbing)->setDragging(false);
    if (d->scrub.release())
        emit scrubOffsetChanged(d->scrub.offset());
}

void Paper::beginPenAdjustment(QPointF position)
{
    auto *tools = Model::ToolManager::instance();
    if (!mayEdit() || (tools->isDrawingOrErasing() && tools->currentToolMode() != 0))
        return;
    const Type drawing = tools->isDrawingOrErasing() ? tools->currentToolType() : tools->latestDrawingToolType();
    auto *adjusted = qobject_cast<Model::DrawingTool *>(tools->tool(drawing));
    if (!adjusted)
        return;
    toolOf<Model::PenAdjustmentTool>(Type::PenAdjustment)->setDrawingTool(adjusted);
    tools->setCurrentTool(Type::PenAdjustment, 0);
    d->penAdjustment = PenAdjustmentDrag(position, QApplication::startDragDistance());
    d->gesture = Private::Gesture::PenAdjustment;
}

void Paper::movePenAdjustment(QPointF position)
{
    d->penAdjustment.moveTo(position);
    auto *tool = toolOf<Model::PenAdjustmentTool>(Type::PenAdjustment);
    switch (d->penAdjustment.direction()) {
    case PenAdjustmentDrag::Direction::Size:
        tool->adjustSizeRange(d->penAdjustment.factor());
        break;
    case PenAdjustmentDrag::Direction::Opacity:
        tool->adjustOpacityRange(d->penAdjustment.factor());
        break;
    case PenAdjustmentDrag::Direction::None:
        break;
    }
}

/// If another tool was taken up meanwhile, it stays.
void Paper::endPenAdjustment()
{
    d->gesture = Private::Gesture::None;
    auto *tools = Model::ToolManager::instance();
    if (tools->currentToolType() == Type::PenAdjustment)
        tools->setCurrentTool(tools->latestDrawingToolType(), 0);
    toolOf<Model::PenAdjustmentTool>(Type::PenAdjustment)->setDrawingTool(nullptr);
}

} // namespace UI
