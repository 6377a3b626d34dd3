#include "libui/paper/paper.h"

#include "libmodel/base/fuzzy.h"
#include "libmodel/scene/scene.h"
#include "libmodel/tools/cursors.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper_p.h"

#include <utility>

namespace UI {

namespace {

bool looksTheSame(const ViewTransform &a, const ViewTransform &b)
{
    return a.widgetToDesk() == b.widgetToDesk() && a.shownOffPegs() == b.shownOffPegs() &&
           a.paperRect() == b.paperRect() && a.usableRect() == b.usableRect() && a.deviceRatio() == b.deviceRatio();
}

} // namespace

double Paper::zoomLevel() const
{
    return d->view.shownZoomLevel();
}

double Paper::zoomLevelToFit() const
{
    return d->view.zoomLevelToFit();
}

bool Paper::mirrorView() const
{
    return d->view.isMirrored();
}

const ViewTransform &Paper::view() const
{
    return d->view;
}

void Paper::setView(const ViewTransform &view)
{
    const ViewTransform before = std::exchange(d->view, view);
    if (before.usableRect() != view.usableRect())
        d->rebuildZones();
    if (before.paperRect() != view.paperRect())
        d->rebuildGrid();
    if (!looksTheSame(before, view)) {
        followView();
        updateZone();
        update();
    }
    if (before.isMirrored() != view.isMirrored())
        emit mirrorViewChanged(view.isMirrored());
    const bool zoomed = !Model::fuzzyEqual(before.shownZoomScale(), view.shownZoomScale());
    if (zoomed)
        Model::ToolManager::instance()->setViewScale(1.0 / view.shownZoomScale());
    if (zoomed || !Model::fuzzyEqual(before.shownRotation(), view.shownRotation())) {
        emit zoomLevelChanged(view.shownZoomLevel());
        emit zoomLevelToFitChanged(view.zoomLevelToFit());
    } else if (!Model::fuzzyEqual(before.zoomLevelToFit(), view.zoomLevelToFit())) {
        emit zoomLevelToFitChanged(view.zoomLevelToFit());
    }
}

ViewTransform Paper::settledView()
{
    ViewTransform view = d->view;
    view.commitDelta();
    view.commitOffPegsDelta();
    d->drag.restart();
    d->fingersFrom = d->fingersTo;
    return view;
}

void Paper::rotatePaperTo(double degrees)
{
    ViewTransform view = settledView();
    view.rotatePaperTo(degrees);
    setView(view);
}

void Paper::rotatePaperToNext(double degrees)
{
    ViewTransform view = settledView();
    view.rotatePaperToNext(degrees);
    setView(view);
}

void Paper::setZoomLevel(double level)
{
    ViewTransform view = settledView();
    view.setZoomLevel(level);
    setView(view);
}

void Paper::setZoomLevelCenteringOnOrigin(double level)
{
    ViewTransform view = settledView();
    view.setZoomLevelCenteringOnOrigin(level);
    setView(view);
}

void Paper::setMirrorView(bool mirror)
{
    ViewTransform view = settledView();
    view.setMirrored(mirror);
    setView(view);
}

void Paper::updateFrameSize()
{
    if (!d->mrScene)
        return;
    ViewTransform view = settledView();
    view.setPaperRect(QRectF({}, d->scene()->frameSize()));
    setView(view);
    followOffPegs();
}

void Paper::resetView()
{
    ViewTransform view = settledView();
    view.reset();
    setView(view);
}

void Paper::fitToView()
{
    ViewTransform view = settledView();
    view.fit();
    setView(view);
}

void Paper::setOffPegsTransform(const QTransform &transform)
{
    ViewTransform view = d->view;
    view.setOffPegs(transform);
    if (d->gesture == Private::Gesture::OffPegs)
        d->drag.restart();
    setView(view);
}

void Paper::updateDevicePixelRatio()
{
    if (devicePixelRatioF() == d->view.deviceRatio())
        return;
    showCursor(d->toolCursor);
    ViewTransform view = settledView();
    view.setDeviceRatio(devicePixelRatioF());
    setView(view);
}

void Paper::setTopBarHeight(int height)
{
    d->topBarHeight = height;
    updateUsableRect();
}

void Paper::updateUsableRect()
{
    ViewTransform view = settledView();
    view.setUsableRect(rect().adjusted(0, qMin(d->topBarHeight, height()), 0, 0));
    setView(view);
}

void Paper::showCursor(const QCursor &cursor)
{
    d->toolCursor = cursor;
    d->isForbidden = false;
    setCursor(Model::cursorForScreen(cursor, devicePixelRatioF()));
}

void Paper::setForbidden(bool forbidden)
{
    if (d->isForbidden == forbidden)
        return;
    showCursor(d->toolCursor);
    d->isForbidden = forbidden;
    if (forbidden)
        setCursor(Qt::ForbiddenCursor);
}

} // namespace UI
