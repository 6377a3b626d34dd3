#include "libui/paper/paper.h"

#include "libmodel/base/fuzzy.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/cursors.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper_p.h"
#include "libui/paper/paperbrushes.h"

#include <QCoreApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

#include <utility>

namespace UI {

namespace {

/// Pixels by which a changed region of the paper is repainted beyond its edges: smoothing reaches that far.
constexpr int repaintRoom = 2;

} // namespace

Paper::Paper(QWidget *parent) : QWidget(parent), d(std::make_unique<Private>())
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::ClickFocus);
    setMouseTracking(true);
    setTabletTracking(true);
    setMinimumSize(64, 64);

    auto *settings = Model::Settings::instance();
    d->look = {paperBrush(settings->transparencyType()), deskBrush()};
    connect(settings, &Model::Settings::transparencyTypeChanged, this, &Paper::setTransparencyType);

    auto *tools = Model::ToolManager::instance();
    connect(tools, &Model::ToolManager::cursorChanged, this, &Paper::showCursor);
    tools->setViewScale(1.0 / d->view.zoomScale());
    showCursor(tools->cursor());
    // A tablet tells of pens that leave its range to the application only.
    QCoreApplication::instance()->installEventFilter(this);
}

Paper::~Paper()
{
    for (const QMetaObject::Connection &connection : d->sceneConnections)
        disconnect(connection);
}

double Paper::zoomLevel() const
{
    return d->view.zoomLevel();
}

double Paper::zoomLevelToFit() const
{
    return d->view.zoomLevelToFit();
}

bool Paper::mirrorView() const
{
    return d->view.isMirrored();
}

bool Paper::isDevicePressed() const
{
    return d->filter.isAnyDown();
}

const ViewTransform &Paper::view() const
{
    return d->view;
}

QSize Paper::sizeHint() const
{
    return {1024, 640};
}

void Paper::setTopBarHeight(int height)
{
    d->topBarHeight = height;
    updateUsableRect();
}

void Paper::setCurrentScene(Model::MRScene *scene)
{
    if (scene == d->mrScene)
        return;
    endContact();
    for (const QMetaObject::Connection &connection : std::exchange(d->sceneConnections, {}))
        disconnect(connection);
    d->mrScene = scene;
    if (scene) {
        connectScene();
        updateFrameSize();
    }
    update();
}

void Paper::connectScene()
{
    Model::Scene *scene = d->scene();
    const auto repaint = [this] { update(); };
    const auto follow = [&](auto signal, auto slot) {
        d->sceneConnections.push_back(connect(scene, signal, this, slot));
    };
    follow(&Model::Scene::rectChanged, &Paper::updateRegion);
    follow(&Model::Scene::frameSizeChanged, &Paper::updateFrameSize);
    follow(&Model::Scene::activeFrameAndLayerChanged, repaint);
    follow(&Model::Scene::scrubFrameChanged, repaint);
    follow(&Model::Scene::currentDrawingTypeUpdated, repaint);
    follow(&Model::Scene::layersChanged, repaint);
    follow(&Model::Scene::layerMoved, repaint);
    follow(&Model::Scene::layerInserted, repaint);
    follow(&Model::Scene::layerRemoved, repaint);
    follow(&Model::Scene::layerOpacityChanged, repaint);
    d->sceneConnections.push_back(connect(d->mrScene, &QObject::destroyed, this, repaint));
}

void Paper::setView(const ViewTransform &view)
{
    const ViewTransform before = std::exchange(d->view, view);
    update();
    if (before.isMirrored() != view.isMirrored())
        emit mirrorViewChanged(view.isMirrored());
    const bool zoomed = !Model::fuzzyEqual(before.zoomScale(), view.zoomScale());
    if (zoomed)
        Model::ToolManager::instance()->setViewScale(1.0 / view.zoomScale());
    if (zoomed || !Model::fuzzyEqual(before.rotation(), view.rotation())) {
        emit zoomLevelChanged(view.zoomLevel());
        emit zoomLevelToFitChanged(view.zoomLevelToFit());
    } else if (!Model::fuzzyEqual(before.zoomLevelToFit(), view.zoomLevelToFit())) {
        emit zoomLevelToFitChanged(view.zoomLevelToFit());
    }
}

ViewTransform Paper::settledView()
{
    ViewTransform view = d->view;
    view.commitDelta();
    d->panFrom = d->panTo;
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

void Paper::showCursor(const QCursor &cursor)
{
    d->toolCursor = cursor;
    setCursor(Model::cursorForScreen(cursor, devicePixelRatioF()));
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

void Paper::setTransparencyType(MR::TransparencyType type)
{
    d->look.paper = paperBrush(type);
    update();
}

void Paper::updateUsableRect()
{
    ViewTransform view = settledView();
    view.setUsableRect(rect().adjusted(0, qMin(d->topBarHeight, height()), 0, 0));
    setView(view);
}

/// \a paperRect reaches to the pen's place; how wide the tail is there, only the view knows.
void Paper::updateRegion(const QRect &paperRect)
{
    QRectF changed = paperRect;
    if (const Model::SingleStroke *stroke = d->scene()->activeStroke(); stroke && !stroke->samples().empty()) {
        const double room = 2.0 * d->view.shownZoomScale();
        const QPointF pen = stroke->lastSample().point;
        changed |= QRectF(pen, pen).adjusted(-room, -room, room, room);
    }
    const QRectF shown = PaperPainter::paperToWidget(d->view).mapRect(changed);
    update(shown.intersected(rect()).toAlignedRect().adjusted(-repaintRoom, -repaintRoom, repaintRoom, repaintRoom));
}

void Paper::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const PaperPainter paper(d->view, d->scene(), d->look);
    for (const QRect &part : event->region())
        paper.paint(&painter, part);
}

void Paper::resizeEvent(QResizeEvent *)
{
    updateUsableRect();
}

void Paper::showEvent(QShowEvent *)
{
    updateDevicePixelRatio();
    if (const QWindow *handle = window()->windowHandle())
        connect(handle, &QWindow::screenChanged, this, &Paper::updateDevicePixelRatio, Qt::UniqueConnection);
}

} // namespace UI
