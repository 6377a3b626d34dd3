#include "app/mainwindow.h"

#include "app/actionstates.h"
#include "app/behindlast.h"
#include "app/busyscope.h"
#include "app/catalogueaction.h"
#include "app/drawingclipboard.h"
#include "app/editactions.h"
#include "app/frameexporter.h"
#include "app/fullscreen.h"
#include "app/helpactions.h"
#include "app/keygestures.h"
#include "app/layeractions.h"
#include "app/lighttable.h"
#include "app/menubar.h"
#include "app/pickup.h"
#include "app/playbackactions.h"
#include "app/playbackcontroller.h"
#include "app/recentfilesmenu.h"
#include "app/scenefiles.h"
#include "app/scrubbing.h"
#include "app/stampactions.h"
#include "app/stamppreparation.h"
#include "app/stepactions.h"
#include "app/toolswitch.h"
#include "app/viewsteps.h"
#include "app/windowgeometry.h"
#include "libcommands/offpegs.h"
#include "libcommands/stroke.h"
#include "libmodel/base/settings.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/scene/firstlayers.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/drawingarea.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/paper.h"
#include "libui/style/mrproxystyle.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <QSplitter>
#include <QTimer>
#include <QUndoGroup>
#include <QVBoxLayout>

#include <utility>

using Model::Scene;
using Model::Settings;

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
    ViewSteps *viewSteps = nullptr;
    MenuBar *menus = nullptr;
    ToolSwitch *toolSwitch = nullptr;
    PlaybackController *playback = nullptr;
    PlaybackActions *playbackActions = nullptr;
    StepActions *stepActions = nullptr;
    ActionStates *actionStates = nullptr;
    PickUp *pickUp = nullptr;
    StampActions *stamps = nullptr;
    QList<SceneFollower *> followers;
    Scrubbing *scrubbing = nullptr;
    /// Ahead of all that it works with.
    std::unique_ptr<KeyGestures> keyGestures;
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
    createGestures();
    createMenus();
    WindowGeometry::restore(*this, d->settings->mainWindowGeometry());
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
    area->setAccessibleName(tr("Drawing Area"));
    d->paper = area->paper();
    splitter->addWidget(area);
    setCentralWidget(central);

    connect(d->paper, &UI::Paper::aboutToBeginStroke, this, &MainWindow::addDrawingToDrawOn);
    connect(d->paper, &UI::Paper::strokeEnded, this, &MainWindow::commitStroke);
    connect(d->paper, &UI::Paper::aboutToBeginEdit, this, [this] { d->playbackActions->stop(); });
    connect(d->paper, &UI::Paper::offPegsTransformChanged, this, &MainWindow::moveOffPegs);
    connect(d->paper, &UI::Paper::zoomLevelChanged, this, qOverload<double>(&MainWindow::actualizeTitlebar));
}

void MainWindow::createUndoActions()
{
    auto *catalogue = Model::ActionManager::instance();
    QAction *undo = d->undoGroup.createUndoAction(catalogue, tr("&Undo"));
    QAction *redo = d->undoGroup.createRedoAction(catalogue, tr("&Redo"));
    // Taken apart again: what is triggered goes through the window, and ActionStates knows what can be undone.
    disconnect(undo, &QAction::triggered, &d->undoGroup, nullptr);
    disconnect(redo, &QAction::triggered, &d->undoGroup, nullptr);
    disconnect(&d->undoGroup, &QUndoGroup::canUndoChanged, undo, nullptr);
    disconnect(&d->undoGroup, &QUndoGroup::canRedoChanged, redo, nullptr);
    catalogue->insertUndoActions(undo, redo);
    connect(&d->undoGroup, &QUndoGroup::undoTextChanged, this,
            [catalogue] { catalogue->mrAction(MR::Action::Undo)->updateToolTip(); });
    connect(&d->undoGroup, &QUndoGroup::redoTextChanged, this,
            [catalogue] { catalogue->mrAction(MR::Action::Redo)->updateToolTip(); });
    connect(&d->undoGroup, &QUndoGroup::cleanChanged, this, qOverload<>(&MainWindow::actualizeTitlebar));
}

void MainWindow::createActions()
{
    auto *catalogue = Model::ActionManager::instance();
    catalogue->createActions();
    createUndoActions();
    // First of all connections: whatever an action does, the stroke under the pen goes onto the stack before it.
    for (const QAction *action : catalogue->actions())
        connect(action, &QAction::triggered, this, &MainWindow::commitStroke);
    // These do their work even before they tell that they were triggered.
    connect(catalogue, &Model::ActionManager::aboutToChangeSetting, this, &MainWindow::commitStroke);
    // A key works only for an action that stands in a widget, and not all of them stand in a menu.
    addActions(catalogue->actions());

    // Second of all: what edits the scene ends playback before it does its work.
    d->playback = new PlaybackController(this);
    d->playbackActions = new PlaybackActions(d->playback, d->paper, this);
    d->stepActions = new StepActions(this);
    d->actionStates = new ActionStates(d->playback, d->paper, this);
    auto *clipboard = new DrawingClipboard(this);
    connect(clipboard, &DrawingClipboard::contentChanged, d->actionStates,
            [this, clipboard] { d->actionStates->setClipboardContent(clipboard->content()); });
    d->followers = {d->playbackActions,     d->stepActions, new EditActions(this),
                    new LayerActions(this), clipboard,      d->actionStates};
    connect(d->playbackActions, &PlaybackActions::landed, d->stepActions, &StepActions::goTo);
    onTriggered(MR::Action::Undo, &d->undoGroup, &QUndoGroup::undo);
    onTriggered(MR::Action::Redo, &d->undoGroup, &QUndoGroup::redo);

    d->viewSteps = new ViewSteps(d->paper, this);
    new LightTable(d->paper, this);
    new FullScreen(this);
    new HelpActions(this);
    connectFileActions();
}

void MainWindow::connectFileActions()
{
    onTriggered(MR::Action::NewScene, this, [this] { newScene(NewSceneBehaviour::UseDefaults); });
    onTriggered(MR::Action::OpenScene, this, &MainWindow::openScene);
    onTriggered(MR::Action::SaveScene, this, &MainWindow::saveScene);
    onTriggered(MR::Action::SaveSceneAs, this, &MainWindow::saveSceneAs);
    onTriggered(MR::Action::ExportFrames, this, &MainWindow::exportFrames);
    onTriggered(MR::Action::Quit, this, &MainWindow::close);
}

void MainWindow::createGestures()
{
    d->toolSwitch = new ToolSwitch(this);
    createPickUp();
    d->scrubbing = new Scrubbing(d->paper, d->toolSwitch, this);
    d->keyGestures = std::make_unique<KeyGestures>(this, d->paper, d->toolSwitch, d->playback, d->scrubbing);
    connect(d->toolSwitch, &ToolSwitch::aboutToChangeTool, this, &MainWindow::commitStroke);
    connect(d->paper, &UI::Paper::panHeldChanged, d->toolSwitch, &ToolSwitch::setPanHeld);
    connect(d->scrubbing, &Scrubbing::landed, d->stepActions, &StepActions::goTo);
    const KeyGestures *keys = d->keyGestures.get();
    connect(keys, &KeyGestures::aboutToAct, this, &MainWindow::commitStroke);
    connect(keys, &KeyGestures::drawingStepRequested, d->playbackActions, &PlaybackActions::stop);
    connect(keys, &KeyGestures::keyDrawingStepRequested, d->playbackActions, &PlaybackActions::stop);
    connect(keys, &KeyGestures::drawingStepRequested, d->stepActions, &StepActions::stepDrawing);
    connect(keys, &KeyGestures::keyDrawingStepRequested, d->stepActions, &StepActions::stepKeyDrawing);
}

void MainWindow::createPickUp()
{
    d->stamps = new StampActions(d->toolSwitch, d->busy, this);
    d->pickUp = new PickUp(d->toolSwitch, d->stamps, d->busy, this);
    // What floats must be in the file, but only when it is sure that there is to be one.
    d->files->setBeforeWriting([this] { return d->stamps->bringHome(); });
    d->followers << d->pickUp << d->stamps << new StampPreparation(d->playback, d->paper, this);
    connect(d->pickUp, &PickUp::aboutToEdit, d->playbackActions, &PlaybackActions::stop);
    connect(d->stamps, &StampActions::aboutToEdit, d->playbackActions, &PlaybackActions::stop);
    connect(d->stamps, &StampActions::hasDroppedChanged, d->actionStates, &ActionStates::setSelectionDropped);
    connect(d->paper, &UI::Paper::lassoingCompleted, d->pickUp, &PickUp::onLassoingCompleted);
    connect(d->paper, &UI::Paper::floatingSelectionTransformChanged, d->stamps, &StampActions::moveTo);
    connect(d->paper, &UI::Paper::floatingSelectionStamped, d->stamps,
            [this](Qt::KeyboardModifiers modifiers) { d->stamps->stamp(modifiers.testFlag(Qt::ShiftModifier)); });
}

void MainWindow::createMenus()
{
    auto *recentFiles = new RecentFilesMenu(this);
    connect(recentFiles, &RecentFilesMenu::fileChosen, this, &MainWindow::openFile);
    auto *menus = d->menus = new MenuBar(recentFiles, this);
    // These stand in the menus alone, and commit the stroke as those of the catalogue do.
    connect(menus, &MenuBar::zoomChosen, this, &MainWindow::commitStroke);
    connect(menus, &MenuBar::rotationChosen, this, &MainWindow::commitStroke);
    connect(menus, &MenuBar::rotationStepChosen, this, &MainWindow::commitStroke);
    connect(menus, &MenuBar::zoomChosen, d->viewSteps, &ViewSteps::zoomPaperTo);
    connect(menus, &MenuBar::rotationChosen, d->viewSteps, &ViewSteps::rotatePaperTo);
    connect(menus, &MenuBar::rotationStepChosen, d->viewSteps, &ViewSteps::rotatePaperToNext);
    connect(menus, &MenuBar::putOnPegsChosen, this, [this] {
        d->playbackActions->stop();
        commitStroke();
        moveOffPegs(QTransform());
    });
    setMenuBar(menus);
}

void MainWindow::setCurrentScene(std::unique_ptr<Model::MRScene> scene)
{
    if (!scene && !d->scene)
        return;
    // Whatever goes on in the old scene must not end in the new one.
    comeToRest();
    d->stamps->leaveScene();
    Model::MRScene *old = d->scene.release();
    d->scene = std::move(scene);
    Model::MRScene::setCurrent(d->scene.get());
    d->paper->setCurrentScene(d->scene.get());
    d->scrubbing->setCurrentScene(d->scene.get());
    for (SceneFollower *follower : std::as_const(d->followers))
        follower->setCurrentScene(d->scene.get());
    actualizePegs();
    if (d->scene) {
        Scene *model = d->scene->scene();
        connect(model, &Scene::offPegsTransformChanged, this, &MainWindow::actualizePegs);
        resizeRenderer(model->frameSize());
        // Ahead of the change: the drawings are rendered anew while it goes on.
        connect(model, &Scene::frameSizeAboutToChange, this, &MainWindow::resizeRenderer);
        connect(model, &Scene::frameSizeChanged, this, qOverload<>(&MainWindow::actualizeTitlebar));
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
    if (renderer->errorString().isEmpty())
        return;
    const UI::InputSuspension suspension;
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
    comeToRest();
    return !d->scene || d->files->maybeSave(*d->scene);
}

bool MainWindow::saveScene()
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return false;
    comeToRest();
    return !d->scene || d->files->save(*d->scene);
}

bool MainWindow::saveSceneAs()
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return false;
    comeToRest();
    return !d->scene || d->files->saveAs(*d->scene);
}

void MainWindow::exportFrames()
{
    const BusyScope busy(d->busy);
    if (!busy.entered())
        return;
    comeToRest();
    if (d->scene)
        d->frameExporter->exportFrames(*d->scene->scene(), [this] { return d->stamps->bringHome(); });
}

void MainWindow::addDrawingToDrawOn()
{
    if (!d->scene)
        return;
    const Model::Layer *layer = d->scene->scene()->layer(d->scene->scene()->activeLayerIdx());
    if (layer && Model::Layer::isDrawType(layer->layerType()) && BehindLast::isActive(*d->scene))
        BehindLast::addBlankDrawing(*d->scene);
}

void MainWindow::moveOffPegs(const QTransform &transform)
{
    if (d->scene)
        Model::MRScene::pushCommand(new Commands::OffPegs(d->scene.get(), transform));
}

void MainWindow::actualizePegs()
{
    const Scene *scene = d->scene ? d->scene->scene() : nullptr;
    d->menus->setFrameOffPegs(scene && !scene->offPegsTransformOfFrame(scene->activeFrame()).isIdentity());
}

void MainWindow::comeToRest()
{
    d->keyGestures->endAll();
    d->playbackActions->stop();
    commitStroke();
}

void MainWindow::commitStroke()
{
    if (!d->scene)
        return;
    d->paper->settleEdits();
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
    // Qt takes this for its own mark of what is modified, unless it stands there twice.
    const QString name = scene->displayName().replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
    const QSize size = scene->frameSize();
    const QString modified = d->undoGroup.isClean() ? QString() : QStringLiteral("*");
    const QString view = tr(" [%1x%2] %3%").arg(size.width()).arg(size.height()).arg(qRound(zoomLevel * 100));
    setWindowTitle(tr("%1: %2%3").arg(name, modified, view));
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
