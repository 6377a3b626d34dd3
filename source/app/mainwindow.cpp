#include "app/mainwindow.h"

#include "app/busyscope.h"
#include "app/frameexporter.h"
#include "app/menubar.h"
#include "app/recentfilesmenu.h"
#include "app/scenefiles.h"
#include "app/toolswitch.h"
#include "app/zoomlevels.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/setframerange.h"
#include "libcommands/stroke.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/scene/firstlayers.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/drawingarea.h"
#include "libui/paper/paper.h"
#include "libui/style/mrproxystyle.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <QScreen>
#include <QSplitter>
#include <QTimer>
#include <QUndoGroup>
#include <QVBoxLayout>

#include <utility>

using Model::Scene;
using Model::Settings;

namespace {

/// The largest window that a first start opens, in logical pixels.
constexpr QSize largestFirstWindow(2100, 1200);

QAction *catalogueAction(MR::Action action)
{
    return Model::ActionManager::instance()->action(action);
}

} // namespace

class MainWindow::Private
{
public:
    Settings *settings = Settings::instance();
    std::unique_ptr<Model::MRScene> scene;
    QUndoGroup undoGroup;
    bool busy = false;
    bool wasShown = false;
    QString startupError;
    UI::Paper *paper = nullptr;
    SceneFiles *files = nullptr;
    FrameExporter *frameExporter = nullptr;
    RecentFilesMenu *recentFiles = nullptr;
    ToolSwitch *toolSwitch = nullptr;
};

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), d(std::make_unique<Private>())
{
    QApplication::setStyle(new UI::MRProxyStyle);
    QIcon icon;
    for (const int size : {16, 32, 64, 128, 256, 512, 1024})
        icon.addFile(QStringLiteral(":/mr-icon_%1.png").arg(size));
    setWindowIcon(icon);

    auto *renderer = Model::OffscreenRenderer::instance();
    if (!renderer->initialize(d->settings->defaultFrameSize()))
        d->startupError = renderer->errorString();

    d->files = new SceneFiles(this);
    d->frameExporter = new FrameExporter(this);
    createCentralWidget();
    createActions();
    restoreWindowGeometry();
    actualizeTitlebar();
    Model::ToolManager::instance()->setCurrentTool(Model::Tool::Type::Pen, 0);
}

MainWindow::~MainWindow()
{
    setCurrentScene(nullptr);
}

QString MainWindow::startupError() const
{
    return d->startupError;
}

Model::MRScene *MainWindow::currentScene() const
{
    return d->scene.get();
}

void MainWindow::createCentralWidget()
{
    auto *central = new QWidget(this);
    central->setObjectName(QStringLiteral("centralwidget"));
    auto *layout = new QVBoxLayout(central);
    layout->setObjectName(QStringLiteral("verticalLayout_2"));
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto *splitter = new QSplitter(Qt::Horizontal, central);
    splitter->setObjectName(QStringLiteral("splitter"));
    layout->addWidget(splitter);

    auto *area = new UI::DrawingArea(splitter);
    area->setObjectName(QStringLiteral("frame"));
    d->paper = area->paper();
    splitter->addWidget(area);
    setCentralWidget(central);

    connect(d->paper, &UI::Paper::aboutToBeginStroke, this, &MainWindow::addDrawingToDrawOn);
    connect(d->paper, &UI::Paper::strokeEnded, this, &MainWindow::commitStroke);
    connect(d->paper, &UI::Paper::zoomLevelChanged, this, qOverload<double>(&MainWindow::actualizeTitlebar));
}

void MainWindow::createActions()
{
    auto *catalogue = Model::ActionManager::instance();
    catalogue->createActions();
    QAction *undo = d->undoGroup.createUndoAction(catalogue, tr("&Undo"));
    QAction *redo = d->undoGroup.createRedoAction(catalogue, tr("&Redo"));
    disconnect(undo, &QAction::triggered, &d->undoGroup, nullptr);
    disconnect(redo, &QAction::triggered, &d->undoGroup, nullptr);
    catalogue->insertUndoActions(undo, redo);
    // First of all connections: whatever an action does, the stroke under the pen goes onto the stack before it.
    for (const QAction *action : catalogue->actions())
        connect(action, &QAction::triggered, this, &MainWindow::commitStroke);
    // A key works only for an action that stands in a widget, and not all of them stand in a menu.
    addActions(catalogue->actions());
    connect(undo, &QAction::triggered, &d->undoGroup, &QUndoGroup::undo);
    connect(redo, &QAction::triggered, &d->undoGroup, &QUndoGroup::redo);
    connect(&d->undoGroup, &QUndoGroup::canUndoChanged, this, &MainWindow::actualizeUndoAction);

    d->toolSwitch = new ToolSwitch(this);
    connect(d->toolSwitch, &ToolSwitch::aboutToChangeTool, this, &MainWindow::commitStroke);
    d->recentFiles = new RecentFilesMenu(this);
    connect(d->recentFiles, &RecentFilesMenu::fileChosen, this, &MainWindow::openFile);
    auto *menus = new MenuBar(d->recentFiles, this);
    connect(menus, &MenuBar::zoomChosen, this, &MainWindow::zoomPaperTo);
    setMenuBar(menus);
    connectFileActions();
    connectViewActions();
    connect(&d->undoGroup, &QUndoGroup::cleanChanged, this, qOverload<>(&MainWindow::actualizeTitlebar));
}

void MainWindow::connectFileActions()
{
    connect(catalogueAction(MR::Action::NewScene), &QAction::triggered, this,
            [this] { newScene(NewSceneBehaviour::UseDefaults); });
    connect(catalogueAction(MR::Action::OpenScene), &QAction::triggered, this, &MainWindow::openScene);
    connect(catalogueAction(MR::Action::SaveScene), &QAction::triggered, this, &MainWindow::saveScene);
    connect(catalogueAction(MR::Action::SaveSceneAs), &QAction::triggered, this, &MainWindow::saveSceneAs);
    connect(catalogueAction(MR::Action::ExportFrames), &QAction::triggered, this, &MainWindow::exportFrames);
    connect(catalogueAction(MR::Action::Quit), &QAction::triggered, this, &MainWindow::close);
    connect(catalogueAction(MR::Action::About), &QAction::triggered, this, &MainWindow::showAbout);
}

void MainWindow::connectViewActions()
{
    connect(catalogueAction(MR::Action::ResetView), &QAction::triggered, d->paper, &UI::Paper::resetView);
    connect(catalogueAction(MR::Action::FitPaperToView), &QAction::triggered, d->paper, &UI::Paper::fitToView);
    connect(catalogueAction(MR::Action::ZoomIn), &QAction::triggered, this, &MainWindow::zoomPaperInToNextLevel);
    connect(catalogueAction(MR::Action::ZoomOut), &QAction::triggered, this, &MainWindow::zoomPaperOutToNextLevel);
    connect(catalogueAction(MR::Action::ViewToX1), &QAction::triggered, this, [this] { zoomPaperTo(1.0); });
    connect(d->paper, &UI::Paper::zoomLevelToFitChanged, this, &MainWindow::actualizeFitAction);
    actualizeFitAction(d->paper->zoomLevelToFit());
}

void MainWindow::restoreWindowGeometry()
{
    if (restoreGeometry(d->settings->mainWindowGeometry()))
        return;
    QRect available = screen()->availableGeometry();
    available.setTop(available.top() + style()->pixelMetric(QStyle::PM_TitleBarHeight));
    QRect geometry({}, available.size().boundedTo(largestFirstWindow));
    geometry.moveCenter(available.center());
    setGeometry(geometry);
}

void MainWindow::setCurrentScene(std::unique_ptr<Model::MRScene> scene)
{
    if (!scene && !d->scene)
        return;
    // Whatever ends the contact on the old scene must not commit its stroke on the new one.
    commitStroke();
    Model::MRScene *old = d->scene.release();
    d->scene = std::move(scene);
    Model::MRScene::setCurrent(d->scene.get());
    d->paper->setCurrentScene(d->scene.get());
    if (d->scene) {
        Scene *model = d->scene->scene();
        resizeRenderer(model->frameSize());
        // Ahead of the change: the drawings are rendered anew while it goes on.
        connect(model, &Scene::frameSizeAboutToChange, this, &MainWindow::resizeRenderer);
        connect(model, &Scene::frameSizeChanged, this, qOverload<>(&MainWindow::actualizeTitlebar));
        connect(model, &Scene::hasActiveStrokeChanged, this, &MainWindow::actualizeUndoAction);
        connect(model, &Scene::nameChanged, this, qOverload<>(&MainWindow::actualizeTitlebar));
        d->undoGroup.addStack(model->undoStack());
        d->undoGroup.setActiveStack(model->undoStack());
        // A sheet larger than the view is shown whole; a smaller one as large as it is.
        d->paper->resetView();
        if (d->paper->zoomLevelToFit() < 1.0)
            d->paper->fitToView();
    } else {
        d->undoGroup.setActiveStack(nullptr);
    }
    if (old) {
        d->undoGroup.removeStack(old->scene()->undoStack());
        old->deleteLater();
    }
    actualizeTitlebar();
}

void MainWindow::resizeRenderer(QSize frameSize)
{
    auto *renderer = Model::OffscreenRenderer::instance();
    renderer->resize(frameSize);
    if (!renderer->errorString().isEmpty())
        QMessageBox::warning(this, QGuiApplication::applicationDisplayName(), renderer->errorString());
}

void MainWindow::newScene(NewSceneBehaviour)
{
    const BusyScope busy(d->busy);
    if (!busy.entered() || !saveIfWanted())
        return;
    auto scene = std::make_unique<Model::MRScene>();
    scene->scene()->setFrameSize(d->settings->defaultFrameSize(), MR::FitMode::FitModeIgnore);
    scene->scene()->setFrameRate(d->settings->defaultFrameRate());
    Model::addMissingLayers(*scene->scene());
    scene->scene()->appendCloneDrawings(0, 1, d->settings->defaultInitialNumberOfFrames() - 1);
    scene->scene()->setActiveFrameAndLayer(1, 0, Scene::SetFrameBehaviour::KeepFrameOnDrawing);
    setCurrentScene(std::move(scene));
}

void MainWindow::newSceneIfNoneOpen()
{
    if (!d->scene)
        newScene(NewSceneBehaviour::UseDefaults);
}

void MainWindow::openScene()
{
    const BusyScope busy(d->busy);
    if (!busy.entered() || !saveIfWanted())
        return;
    const QString filename = d->files->askForOpenName();
    if (!filename.isEmpty())
        replaceScene(filename);
}

bool MainWindow::openFile(QString filename)
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return false;
    return saveIfWanted() && replaceScene(filename);
}

bool MainWindow::replaceScene(const QString &filename)
{
    auto scene = d->files->read(filename);
    if (!scene) {
        // Reading has sized the renderer for the scene that was not to be.
        if (d->scene)
            resizeRenderer(d->scene->scene()->frameSize());
        return false;
    }
    setCurrentScene(std::move(scene));
    return true;
}

bool MainWindow::maybeSave()
{
    const BusyScope busy(d->busy);
    return busy.entered() && saveIfWanted();
}

bool MainWindow::closeAllScenes()
{
    return maybeSave();
}

bool MainWindow::saveIfWanted()
{
    commitStroke();
    return !d->scene || d->files->maybeSave(*d->scene);
}

bool MainWindow::saveScene()
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return false;
    commitStroke();
    return !d->scene || d->files->save(*d->scene);
}

bool MainWindow::saveSceneAs()
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return false;
    commitStroke();
    return !d->scene || d->files->saveAs(*d->scene);
}

void MainWindow::exportFrames()
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return;
    commitStroke();
    if (d->scene)
        d->frameExporter->exportFrames(*d->scene->scene());
}

void MainWindow::addDrawingToDrawOn()
{
    if (!d->scene)
        return;
    const Scene *scene = d->scene->scene();
    const int layerIdx = scene->activeLayerIdx();
    const int frameId = scene->activeFrame();
    const Model::Layer *layer = scene->layer(layerIdx);
    if (!layer || !Model::Layer::isDrawType(layer->layerType()) || !scene->isAfterLast(layerIdx, frameId))
        return;
    const QModelIndex last = d->scene->sceneModel()->index(scene->lastFrame(layerIdx) - 1, layerIdx);
    Model::MRScene::pushCommand(new Commands::AddBlankDrawing(d->scene.get(), last));
    // The new drawing may stand behind the range: the line must not go to the range's last frame instead.
    if (scene->activeFrame() != frameId) {
        Model::MRScene::pushCommand(
            new Commands::SetFrameRange(d->scene.get(), scene->rangeFirst(), frameId, frameId, layerIdx));
    }
}

void MainWindow::commitStroke()
{
    if (!d->scene)
        return;
    Scene *scene = d->scene->scene();
    std::unique_ptr<Model::SingleStroke> stroke = scene->takeStroke();
    if (!stroke)
        return;
    const QModelIndex cell = d->scene->sceneModel()->index(scene->activeFrame() - 1, scene->activeLayerIdx());
    Model::MRScene::pushCommand(new Commands::Stroke(d->scene.get(), cell, std::move(stroke)));
}

void MainWindow::setTabletPointerType(QPointingDevice::PointerType pointerType)
{
    d->toolSwitch->setTabletPointerType(pointerType);
}

void MainWindow::actualizeTitlebar()
{
    actualizeTitlebar(d->paper->zoomLevel());
}

void MainWindow::actualizeTitlebar(double zoomLevel)
{
    if (!d->scene) {
        setWindowTitle(QGuiApplication::applicationDisplayName());
        return;
    }
    const Scene *scene = d->scene->scene();
    const QSize size = scene->frameSize();
    const QString modified = d->undoGroup.isClean() ? QString() : QStringLiteral("*");
    const QString view = tr(" [%1x%2] %3%").arg(size.width()).arg(size.height()).arg(qRound(zoomLevel * 100));
    setWindowTitle(tr("%1: %2%3").arg(scene->displayName(), modified, view));
}

void MainWindow::actualizeFitAction(double zoomLevelToFit)
{
    const auto *record = Model::ActionManager::instance()->mrAction(MR::Action::FitPaperToView);
    record->action->setText(tr("Fit View (%1%)").arg(qRound(zoomLevelToFit * 100)));
    record->updateToolTip();
}

void MainWindow::actualizeUndoAction()
{
    // The stroke under the pen can be taken back, too, although it is not on the stack yet.
    const bool drawing = d->scene && d->scene->scene()->hasActiveStroke();
    catalogueAction(MR::Action::Undo)->setEnabled(d->undoGroup.canUndo() || drawing);
}

void MainWindow::zoomPaperTo(double zoomLevel)
{
    d->paper->setZoomLevel(zoomLevel);
}

void MainWindow::zoomPaperInToNextLevel()
{
    zoomPaperTo(ZoomLevels::next(d->paper->zoomLevel()));
}

void MainWindow::zoomPaperOutToNextLevel()
{
    zoomPaperTo(ZoomLevels::previous(d->paper->zoomLevel()));
}

void MainWindow::showAbout()
{
    const QString name = QGuiApplication::applicationDisplayName();
    QMessageBox::about(
        this, tr("About %1").arg(name),
        tr("%1 %2\n\nHand-drawn, frame-by-frame 2D animation.").arg(name, QStringLiteral(MIRELLE_VERSION)));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    const BusyScope busy(d->busy);
    if (!busy.entered() || !saveIfWanted()) {
        event->ignore();
        return;
    }
    d->settings->setMainWindowGeometry(saveGeometry());
    setCurrentScene(nullptr);
    event->accept();
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (std::exchange(d->wasShown, true))
        return;
    // The driver translates its shaders at their first use: better behind the first picture than under the first line.
    auto *renderer = Model::OffscreenRenderer::instance();
    QTimer::singleShot(0, renderer, &Model::OffscreenRenderer::warmUp);
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    emit resized(event);
}
