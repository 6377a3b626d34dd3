#include "libui/paper/paper.h"

#include "libmodel/base/settings.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/gridpaths.h"
#include "libui/paper/paper_p.h"
#include "libui/paper/paperbrushes.h"
#include "libui/paper/paperpictures.h"

#include <QCoreApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

#include <utility>

namespace UI {

namespace {

/// Pixels by which a changed region of the paper is repainted beyond its edges: smoothing reaches that far.
constexpr int repaintRoom = 2;

PaperOverlay::Symbol symbolOf(ViewDrag::Kind kind)
{
    switch (kind) {
    case ViewDrag::Kind::Pan:
        return PaperOverlay::Symbol::Pan;
    case ViewDrag::Kind::Zoom:
        return PaperOverlay::Symbol::Zoom;
    case ViewDrag::Kind::Rotate:
        return PaperOverlay::Symbol::Rotate;
    case ViewDrag::Kind::OffPegsPan:
        return PaperOverlay::Symbol::OffPegsPan;
    case ViewDrag::Kind::OffPegsRotate:
        return PaperOverlay::Symbol::OffPegsRotate;
    }
    return PaperOverlay::Symbol::None;
}

} // namespace

Paper::Paper(QWidget *parent) : QWidget(parent), d(std::make_unique<Private>())
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setTabletTracking(true);
    setMinimumSize(64, 64);
    setAccessibleName(tr("Paper"));
    setAccessibleDescription(tr("The sheet to draw on. It shows the current frame."));
    grabGesture(Qt::PinchGesture);
    grabGesture(Qt::PanGesture);

    auto *settings = Model::Settings::instance();
    d->look = {paperBrush(settings->transparencyType()), deskBrush()};
    d->gridType = settings->gridType();
    d->scale = settings->uiScalePercent() / 100.0;
    connect(settings, &Model::Settings::transparencyTypeChanged, this, &Paper::setTransparencyType);
    connect(settings, &Model::Settings::gridTypeChanged, this, &Paper::setGridType);
    connect(settings, &Model::Settings::UIScaleChanged, this, &Paper::setInterfaceScale);

    auto *tools = Model::ToolManager::instance();
    connect(tools, &Model::ToolManager::cursorChanged, this, &Paper::showCursor);
    connect(tools, &Model::ToolManager::currentToolTypeChanged, this, &Paper::onToolChanged);
    d->toolType = tools->currentToolType();
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

bool Paper::isDevicePressed() const
{
    return d->filter.isAnyDown() || d->nativeGesturing || d->touch != Private::Touch::None;
}

QSize Paper::sizeHint() const
{
    return {1024, 640};
}

void Paper::setCurrentScene(Model::MRScene *scene)
{
    if (scene != d->mrScene)
        takeScene(scene);
}

/// Of a scene before that has been deleted nothing is left but what was taken over from it.
void Paper::takeScene(Model::MRScene *scene)
{
    endContact(Ending::SceneLeft);
    for (const QMetaObject::Connection &connection : std::exchange(d->sceneConnections, {}))
        disconnect(connection);
    d->mrScene = scene;
    d->scrub.reset();
    if (scene) {
        connectScene();
        updateFrameSize();
    } else {
        setOffPegsTransform({});
    }
    takeFloatingSelection();
    update();
}

void Paper::connectScene()
{
    Model::Scene *scene = d->scene();
    const auto repaint = [this] { update(); };
    const auto follow = [&](auto *sender, auto signal, auto slot) {
        d->sceneConnections.push_back(connect(sender, signal, this, slot));
    };
    follow(scene, &Model::Scene::rectChanged, &Paper::updateRegion);
    follow(scene, &Model::Scene::frameSizeChanged, &Paper::updateFrameSize);
    follow(scene, &Model::Scene::offPegsTransformChanged, &Paper::followOffPegs);
    follow(scene, &Model::Scene::activeFrameAndLayerChanged, repaint);
    follow(scene, &Model::Scene::activeFrameAndLayerChanged, &Paper::followOffPegs);
    follow(scene, &Model::Scene::scrubFrameChanged, repaint);
    follow(scene, &Model::Scene::scrubFrameChanged, &Paper::followOffPegs);
    follow(scene, &Model::Scene::scrubFrameChanged, &Paper::followFloating);
    follow(scene, &Model::Scene::currentDrawingTypeUpdated, repaint);
    follow(scene, &Model::Scene::layersChanged, repaint);
    follow(scene, &Model::Scene::layerMoved, repaint);
    follow(scene, &Model::Scene::layerInserted, repaint);
    follow(scene, &Model::Scene::layerRemoved, repaint);
    follow(scene, &Model::Scene::layerOpacityChanged, repaint);
    Model::MRScene *mrScene = d->mrScene;
    follow(mrScene, &Model::MRScene::floatingSelectionChanged, &Paper::takeFloatingSelection);
    follow(mrScene, &Model::MRScene::floatingSelectionTransformChanged, &Paper::setFloatingSelectionTransform);
    follow(mrScene, &QObject::destroyed, [this] { takeScene(nullptr); });
}

bool Paper::Private::showsActiveFrame() const
{
    return scene()->scrubFrame() < 1;
}

int Paper::Private::shownFrame() const
{
    return showsActiveFrame() ? scene()->activeFrame() : scene()->scrubFrame();
}

void Paper::followOffPegs()
{
    if (d->mrScene)
        setOffPegsTransform(d->scene()->offPegsTransformOfFrame(d->shownFrame()));
}

void Paper::setTransparencyType(MR::TransparencyType type)
{
    d->look.paper = paperBrush(type);
    update();
}

void Paper::setGridStatus(MR::GridStatus status)
{
    d->gridStatus = status;
    d->rebuildGrid();
    update();
}

void Paper::setGridType(MR::GridType type)
{
    d->gridType = type;
    d->rebuildGrid();
    if (d->gridStatus == MR::GridStatus::GridOn)
        update();
}

void Paper::Private::rebuildGrid()
{
    grid = gridStatus == MR::GridStatus::GridOn ? gridPath(gridType, view.paperRect()) : QPainterPath();
}

void Paper::setInterfaceScale(int percent)
{
    d->scale = percent / 100.0;
    d->rebuildZones();
    d->floating.rebuildHandles(d->view, d->scale);
    updateZone();
    update();
}

void Paper::returnFlip_Menu()
{
    setFocus(Qt::OtherFocusReason);
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
    QRectF shown = PaperPainter::paperToWidget(d->view).mapRect(changed);
    // The neighbours that shine through stay on the pegs.
    if (d->view.isOffPegs())
        shown |= PaperPainter::deskToWidget(d->view).mapRect(changed);
    update(shown.intersected(rect()).toAlignedRect().adjusted(-repaintRoom, -repaintRoom, repaintRoom, repaintRoom));
}

PaperOverlay Paper::Private::overlay() const
{
    PaperOverlay overlay;
    overlay.scale = scale;
    overlay.grid = grid;
    if (gesture == Gesture::View || gesture == Gesture::OffPegs) {
        overlay.symbol = symbolOf(drag.kind());
        overlay.symbolPosition = drag.press();
    }
    overlay.buttonRect = zones.button();
    if (toolType == Model::Tool::Type::OffPegs && view.isOffPegs()) {
        using Button = PaperOverlay::Button;
        const Button under = gesture == Gesture::PutBack ? Button::Click : Button::Hover;
        overlay.button = isOverButton ? under : Button::Normal;
    }
    if (lasso.isActive())
        overlay.lasso = view.paperToWidget().map(lasso.path());
    if (!floating.isNull())
        overlay.floating = &floating;
    return overlay;
}

QRect Paper::Private::symbolRect() const
{
    return symbolBounds(overlay());
}

QRect Paper::Private::buttonRect() const
{
    return zones.button().toAlignedRect().adjusted(-repaintRoom, -repaintRoom, repaintRoom, repaintRoom);
}

void Paper::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const PaperPainter paper(d->view, d->scene(), d->look, d->overlay());
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
