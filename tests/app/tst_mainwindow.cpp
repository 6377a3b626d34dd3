#include "app/mainwindow.h"

#include "app/recentfilesmenu.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/drawingtool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper.h"
#include "libui/uistartup.h"
#include "support/filedialoganswer.h"
#include "support/isolatedstore.h"
#include "support/messageboxanswer.h"

#include <QFile>
#include <QMenuBar>
#include <QScreen>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>
#include <csignal>
#include <qpa/qwindowsysteminterface.h>
#include <sys/resource.h>

using Model::Scene;
using Model::Tool;
using Model::ToolManager;
using PointerType = QPointingDevice::PointerType;

namespace {

QByteArray contentOf(const QString &filename)
{
    QFile file(filename);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &filename, const QByteArray &content)
{
    QFile file(filename);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QAction *action(MR::Action which)
{
    return Model::ActionManager::instance()->mrAction(which)->action;
}

/// Keeps the process from writing files longer than a few bytes, for as long as it lives.
class FullDisk
{
public:
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        rlimit limit = m_old;
        limit.rlim_cur = 64;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_old); }

private:
    rlimit m_old = {};
};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void newSceneHasThreeLayersAndStandsOnTheFirstFrame();
    void newSceneTakesSizeRateAndLengthFromTheSettings();
    void newSceneIfNoneOpenKeepsAnOpenScene();
    void titleShowsNameModificationSizeAndZoom();
    void mouseStrokeIsOneUndoStep();
    void tabletStrokeIsOneUndoStep();
    void undoCommitsTheStrokeUnderThePenFirst();
    void eraserOnAnEmptyDrawingLeavesNoUndoStep();
    void drawingBehindTheLastCellAddsADrawing();
    void drawingBehindTheLastCellAndTheRangeAddsADrawing();
    void drawingOnAHoldGoesToItsOriginal();
    void drawingOnAReferenceLayerAddsNothing();
    void changingTheToolCommitsTheStroke();
    void savedFileOpensAgain();
    void savingAnUnmodifiedSceneWritesNothing();
    void unreadableFileIsToldAndLeavesTheOldScene();
    void unparsableFileIsToldAndLeavesTheOldScene();
    void damagedFileIsOpenedAndToldOf();
    void onlyTheFirstOfManyDamagesAreTold();
    void failedSaveLeavesTheOldFileAndTheSceneModified();
    void saveIntoAMissingFolderIsTold();
    void secondOpenWhileTheFirstRunsReturnsAtOnce();
    void cancellingTheSaveQuestionKeepsTheSceneAndTheWindow();
    void discardingAtTheSaveQuestionGoesOn();
    void sceneOfAnotherSizeSizesTheRenderer();
    void recentFilesAreNewestFirstAndLimited();
    void zoomingInTakesTheNextLevel();
    void stylusTurnedRoundSwitchesBetweenPenAndEraser();
    void stylusTurnedWhileTheLassoIsCurrentChangesNothing();
    void nothingIsDrawnWhileAQuestionIsUp();
    void nothingElseStartsWhileTheCloseQuestionIsUp();
    void savingAtTheSaveQuestionGoesOn();
    void failedSaveAtTheSaveQuestionKeepsTheScene();
    void saveAsAsksForANameAndWritesThere();
    void cancelledSaveAsChangesNothing();
    void openSceneOpensTheChosenFile();
    void fileChosenFromTheRecentOnesOpens();
    void anyActionCommitsTheStrokeFirst_data();
    void anyActionCommitsTheStrokeFirst();
    void firstStrokeCanBeUndoneWhileItIsDrawn();
    void fixedZoomsStandOnCtrlAndADigit();
    void everyKeyOfTheCatalogueWorksInTheWindow();
    void bracketKeysChangeThePenSize();

private:
    UI::Paper *paper() const { return m_window->findChild<UI::Paper *>(); }
    Scene *scene() const { return m_window->currentScene()->scene(); }
    const Model::StrokeDrawing &drawing(int frameId = 1) const;
    QPoint paperPoint(int dx, int dy) const { return paper()->rect().center() + QPoint(dx, dy); }
    void press(QPoint at);
    void moveTo(QPoint at);
    void release(QPoint at);
    void drawLine();
    void newCleanScene();

    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
};

void TestMainWindow::initTestCase()
{
    m_store = std::make_unique<IsolatedStore>();
    Model::startUp();
    UI::startUp();
    // One window for all, as in the program: it makes the catalogue of actions, of which there is one in a process.
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(m_window->startupError(), QString());
    QVERIFY(!m_window->currentScene());
    QCOMPARE(QApplication::style()->metaObject()->className(), "UI::MRProxyStyle");
    QCOMPARE(m_window->windowIcon().availableSizes().size(), 7);
    const QRect available = m_window->screen()->availableGeometry();
    QVERIFY(m_window->width() <= 2100 && m_window->height() <= 1200);
    QVERIFY(m_window->geometry().top() > available.top());
    QVERIFY(std::abs(m_window->geometry().center().x() - available.center().x()) <= 1);
    m_window->resize(1000, 700);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->newSceneIfNoneOpen();
    QVERIFY(m_window->currentScene());
}

void TestMainWindow::init()
{
    Model::Settings::instance()->setRecentScenes({});
    Model::Settings::instance()->setDefaultFrameSize({1920, 1080});
    Model::Settings::instance()->setDefaultFrameRate(12.0);
    Model::Settings::instance()->setDefaultInitialNumberOfFrames(1);
    m_folder = std::make_unique<QTemporaryDir>();
    newCleanScene();
    action(MR::Action::Marker)->trigger();
}

void TestMainWindow::cleanupTestCase()
{
    scene()->undoStack()->setClean();
    QVERIFY(m_window->close());
    QVERIFY(!m_window->currentScene());
    QCOMPARE(Model::Settings::instance()->mainWindowGeometry(), m_window->saveGeometry());
    m_window.reset();
}

void TestMainWindow::newCleanScene()
{
    scene()->undoStack()->setClean();
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

const Model::StrokeDrawing &TestMainWindow::drawing(int frameId) const
{
    return static_cast<const Model::StrokeDrawing &>(*scene()->item(0, frameId)->drawing);
}

void TestMainWindow::press(QPoint at)
{
    QTest::mousePress(paper(), Qt::LeftButton, {}, at);
}

void TestMainWindow::moveTo(QPoint at)
{
    QTest::mouseMove(paper(), at);
    QMouseEvent event(QEvent::MouseMove, at, paper()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(paper(), &event);
}

void TestMainWindow::release(QPoint at)
{
    QTest::mouseRelease(paper(), Qt::LeftButton, {}, at);
}

void TestMainWindow::drawLine()
{
    press(paperPoint(-60, 0));
    moveTo(paperPoint(0, 20));
    moveTo(paperPoint(60, 0));
    release(paperPoint(60, 0));
}

void TestMainWindow::newSceneHasThreeLayersAndStandsOnTheFirstFrame()
{
    QCOMPARE(scene()->layerCount(), 3);
    QCOMPARE(scene()->layer(0)->layerType(), 1);
    QCOMPARE(scene()->layer(1)->layerType(), 4);
    QCOMPARE(scene()->layer(2)->layerType(), 5);
    auto *layer = static_cast<Model::StrokeLayer *>(scene()->layer(0));
    QCOMPARE(layer->color(), QColor(40, 97, 184, 255));
    QCOMPARE(layer->name(), QStringLiteral("1"));
    QCOMPARE(scene()->activeFrame(), 1);
    QCOMPARE(scene()->activeLayerIdx(), 0);
    QVERIFY(scene()->undoStack()->isClean());
}

void TestMainWindow::newSceneTakesSizeRateAndLengthFromTheSettings()
{
    Model::Settings::instance()->setDefaultFrameSize({640, 480});
    Model::Settings::instance()->setDefaultFrameRate(25.0);
    Model::Settings::instance()->setDefaultInitialNumberOfFrames(5);
    newCleanScene();
    QCOMPARE(scene()->frameSize(), QSize(640, 480));
    QCOMPARE(scene()->frameRate(), 25.0);
    QCOMPARE(scene()->lastFrame(0), 5);
    QCOMPARE(scene()->item(0, 5)->drawing, scene()->item(0, 1)->drawing);
}

void TestMainWindow::newSceneIfNoneOpenKeepsAnOpenScene()
{
    const Model::MRScene *before = m_window->currentScene();
    m_window->newSceneIfNoneOpen();
    QCOMPARE(m_window->currentScene(), before);
}

void TestMainWindow::titleShowsNameModificationSizeAndZoom()
{
    action(MR::Action::ViewToX1)->trigger();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled:  [1920x1080] 100%"));
    drawLine();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled: * [1920x1080] 100%"));
    action(MR::Action::ZoomOut)->trigger();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled: * [1920x1080] 75%"));
    scene()->setFilename("/some/folder/walk.mr");
    scene()->undoStack()->setClean();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("walk.mr:  [1920x1080] 75%"));
}

void TestMainWindow::mouseStrokeIsOneUndoStep()
{
    drawLine();
    QCOMPARE(scene()->undoStack()->count(), 1);
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Draw"));
    QVERIFY(!drawing().isEmpty());
    const QImage drawn = drawing().image().copy();

    action(MR::Action::Undo)->trigger();
    QVERIFY(drawing().isEmpty());
    QVERIFY(drawing().image().isNull());
    QVERIFY(scene()->undoStack()->isClean());

    action(MR::Action::Redo)->trigger();
    QCOMPARE(drawing().image(), drawn);
}

void TestMainWindow::tabletStrokeIsOneUndoStep()
{
    QPointingDevice stylus("stylus", 42, QInputDevice::DeviceType::Stylus, PointerType::Pen,
                           QInputDevice::Capability::Position | QInputDevice::Capability::Pressure, 1, 3);
    QWindowSystemInterface::registerInputDevice(&stylus);
    ulong timestamp = 1000;
    const auto send = [&](QPoint at, Qt::MouseButtons buttons, double pressure) {
        const QPoint inWindow = paper()->mapTo(m_window.get(), at);
        QWindowSystemInterface::handleTabletEvent(m_window->windowHandle(), timestamp += 8, &stylus, inWindow,
                                                  paper()->mapToGlobal(at), buttons, pressure, 0, 0, 0, 0, 0);
        QCoreApplication::processEvents();
    };
    send(paperPoint(-80, 0), Qt::NoButton, 0.0);
    for (int step = 0; step <= 16; ++step)
        send(paperPoint(-60 + 8 * step, step), Qt::LeftButton, 0.3 + 0.03 * step);
    send(paperPoint(70, 16), Qt::NoButton, 0.0);

    QTRY_COMPARE(scene()->undoStack()->count(), 1);
    QVERIFY(!scene()->hasActiveStroke());
    QVERIFY(!drawing().isEmpty());
}

void TestMainWindow::undoCommitsTheStrokeUnderThePenFirst()
{
    drawLine();
    press(paperPoint(-50, 80));
    moveTo(paperPoint(50, 90));
    QVERIFY(scene()->hasActiveStroke());
    action(MR::Action::Undo)->trigger();
    QVERIFY(!scene()->hasActiveStroke());
    // Two strokes were drawn and the second is undone; the first is still there.
    QCOMPARE(scene()->undoStack()->count(), 2);
    QCOMPARE(scene()->undoStack()->index(), 1);
    release(paperPoint(50, 90));
    QCOMPARE(scene()->undoStack()->count(), 2);
}

void TestMainWindow::eraserOnAnEmptyDrawingLeavesNoUndoStep()
{
    action(MR::Action::RubberEraser)->trigger();
    drawLine();
    QVERIFY(drawing().isEmpty());
    QVERIFY(scene()->undoStack()->isClean());
    QVERIFY(!action(MR::Action::Undo)->isEnabled());
}

void TestMainWindow::drawingBehindTheLastCellAddsADrawing()
{
    scene()->setActiveFrameAndLayer(2, 0, Scene::AllowFrameAfterLast);
    QVERIFY(!scene()->activeCellHasDrawing());
    drawLine();
    QCOMPARE(scene()->lastFrame(0), 2);
    QCOMPARE(scene()->activeFrame(), 2);
    QVERIFY(!drawing(2).isEmpty());
    QVERIFY(drawing(1).isEmpty());
    QCOMPARE(scene()->undoStack()->count(), 2);
    action(MR::Action::Undo)->trigger();
    QVERIFY(drawing(2).isEmpty());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->lastFrame(0), 1);
    QCOMPARE(scene()->activeFrame(), 2);
    QVERIFY(scene()->undoStack()->isClean());
    action(MR::Action::Redo)->trigger();
    action(MR::Action::Redo)->trigger();
    QVERIFY(!drawing(2).isEmpty());
}

void TestMainWindow::drawingBehindTheLastCellAndTheRangeAddsADrawing()
{
    scene()->appendCloneDrawings(0, 1, 4);
    scene()->setFrameRange(1, 2, 6, 0);
    QCOMPARE(scene()->activeFrame(), 6);
    drawLine();
    QCOMPARE(scene()->lastFrame(0), 6);
    QCOMPARE(scene()->activeFrame(), 6);
    QCOMPARE(scene()->rangeLast(), 6);
    QVERIFY(!drawing(6).isEmpty());
    QVERIFY(drawing(1).isEmpty());
    while (scene()->undoStack()->canUndo())
        scene()->undoStack()->undo();
    QCOMPARE(scene()->lastFrame(0), 5);
    QCOMPARE(scene()->rangeLast(), 2);
    QCOMPARE(scene()->activeFrame(), 6);
}

void TestMainWindow::drawingOnAHoldGoesToItsOriginal()
{
    scene()->appendCloneDrawings(0, 1, 1);
    scene()->setFrameRange(1, 2, 2, 0);
    drawLine();
    QCOMPARE(scene()->lastFrame(0), 2);
    QVERIFY(!drawing(1).isEmpty());
    QCOMPARE(&drawing(1), &drawing(2));
    QCOMPARE(scene()->undoStack()->count(), 1);
}

void TestMainWindow::drawingOnAReferenceLayerAddsNothing()
{
    const int layerIdx = scene()->insertLayer(std::make_shared<Model::ReferenceLayer>(scene()->frameSize()), 3);
    scene()->setActiveFrameAndLayer(2, layerIdx, Scene::AllowFrameAfterLast);
    QCOMPARE(scene()->activeFrame(), 2);
    drawLine();
    QCOMPARE(scene()->lastFrame(layerIdx), 1);
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void TestMainWindow::changingTheToolCommitsTheStroke()
{
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    action(MR::Action::VinylEraser)->trigger();
    QCOMPARE(scene()->undoStack()->count(), 1);
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Draw"));
    QVERIFY(!scene()->hasActiveStroke());
    release(paperPoint(50, 0));
    QCOMPARE(scene()->undoStack()->count(), 1);
}

void TestMainWindow::savedFileOpensAgain()
{
    const QString filename = m_folder->filePath("walk & run äöü.mr");
    drawLine();
    const QImage drawn = drawing().image().copy();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    QVERIFY(scene()->undoStack()->isClean());

    QVERIFY(m_window->openFile(filename));
    QCOMPARE(drawing().image(), drawn);
    QCOMPARE(scene()->filename(), filename);
    QVERIFY(scene()->undoStack()->isClean());
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{filename});
}

void TestMainWindow::savingAnUnmodifiedSceneWritesNothing()
{
    const QString filename = m_folder->filePath("kept.mr");
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    QVERIFY(!QFile::exists(filename));
}

void TestMainWindow::unreadableFileIsToldAndLeavesTheOldScene()
{
    const Model::MRScene *before = m_window->currentScene();
    const QString filename = m_folder->filePath("nowhere.mr");
    Model::Settings::instance()->setRecentScenes({filename, "/other.mr"});
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Cannot read file " + filename + ":\n"));
    QCOMPARE(m_window->currentScene(), before);
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{"/other.mr"});
}

void TestMainWindow::unparsableFileIsToldAndLeavesTheOldScene()
{
    const Model::MRScene *before = m_window->currentScene();
    const QString filename = m_folder->filePath("old.mr");
    writeFile(filename, "<?xml version=\"1.0\"?>\n<!DOCTYPE mr>\n<mr version=\"0.3\"/>\n");
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Parse error in file " + filename +
                                     ":\n\nThe file is not an MR version 0.4 file\nLine 3, column "));
    QCOMPARE(m_window->currentScene(), before);
}

void TestMainWindow::damagedFileIsOpenedAndToldOf()
{
    const QString filename = m_folder->filePath("damaged.mr");
    writeFile(filename, "<mr version=\"0.4\"><scene><layers><layer type=\"stroke\" visible=\"yes\">\n"
                        "<drawing type=\"original\"><strokes>AAAA</strokes></drawing>\n"
                        "<drawing type=\"original\"/></layer></layers></scene></mr>\n");
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(m_window->openFile(filename));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.title(), QGuiApplication::applicationDisplayName());
    QCOMPARE(answer.text(), "The file " + filename +
                                " is damaged. What could be read was opened:\n\n"
                                "Line 2: a drawing cannot be read to its end");
    QCOMPARE(scene()->filename(), filename);
    QCOMPARE(scene()->maximumFrameNumber(), 2);
    QVERIFY(scene()->undoStack()->isClean());
}

void TestMainWindow::onlyTheFirstOfManyDamagesAreTold()
{
    const QString filename = m_folder->filePath("damaged.mr");
    const QByteArray damaged("<drawing type=\"original\"><strokes>AAAA</strokes></drawing>\n");
    writeFile(filename, "<mr version=\"0.4\"><scene><layers><layer type=\"stroke\" visible=\"yes\">\n" +
                            damaged.repeated(13) + "</layer></layers></scene></mr>\n");
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(m_window->openFile(filename));
    QCOMPARE(answer.text().count("\nLine "), 10);
    QVERIFY2(answer.text().endsWith("\nLine 11: a drawing cannot be read to its end\n... and 3 more"),
             qPrintable(answer.text()));
}

void TestMainWindow::failedSaveLeavesTheOldFileAndTheSceneModified()
{
    const QString filename = m_folder->filePath("precious.mr");
    const QByteArray precious("weeks of work");
    writeFile(filename, precious);
    drawLine();
    scene()->setFilename(filename);
    MessageBoxAnswer answer(QMessageBox::Ok);
    {
        const FullDisk fullDisk;
        QVERIFY(!m_window->saveScene());
    }
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Cannot write file " + filename));
    QCOMPARE(contentOf(filename), precious);
    QVERIFY(!scene()->undoStack()->isClean());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"precious.mr"});
}

void TestMainWindow::saveIntoAMissingFolderIsTold()
{
    const QString filename = m_folder->filePath("gone/walk.mr");
    drawLine();
    scene()->setFilename(filename);
    MessageBoxAnswer answer(QMessageBox::Ok);
    QVERIFY(!m_window->saveScene());
    QCOMPARE(answer.count(), 1);
    QVERIFY(answer.text().startsWith("Cannot write file " + filename + ":\n"));
    QVERIFY(!scene()->undoStack()->isClean());
}

void TestMainWindow::secondOpenWhileTheFirstRunsReturnsAtOnce()
{
    drawLine();
    bool secondResult = true;
    MessageBoxAnswer answer(QMessageBox::Cancel);
    answer.beforeAnswering([this, &secondResult] { secondResult = m_window->openFile("/any.mr"); });
    QVERIFY(!m_window->openFile(m_folder->filePath("any.mr")));
    QVERIFY(!secondResult);
    // Only the save question of the first call came up.
    QCOMPARE(answer.count(), 1);
}

void TestMainWindow::cancellingTheSaveQuestionKeepsTheSceneAndTheWindow()
{
    drawLine();
    const Model::MRScene *before = m_window->currentScene();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    QVERIFY(!m_window->close());
    QVERIFY(m_window->isVisible());
    QCOMPARE(answer.text(), QStringLiteral("\"Untitled\" has been modified.\n\nSave the scene?"));
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(m_window->currentScene(), before);
    QCOMPARE(answer.count(), 2);
}

void TestMainWindow::discardingAtTheSaveQuestionGoesOn()
{
    drawLine();
    MessageBoxAnswer answer(QMessageBox::Discard);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(answer.count(), 1);
    QVERIFY(drawing().isEmpty());
}

void TestMainWindow::sceneOfAnotherSizeSizesTheRenderer()
{
    Model::Settings::instance()->setDefaultFrameSize({800, 1200});
    newCleanScene();
    action(MR::Action::FitPaperToView)->trigger();
    press(paperPoint(0, 250));
    moveTo(paperPoint(40, 250));
    release(paperPoint(40, 250));
    QCOMPARE(drawing().image().size(), QSize(800, 1200));
    QVERIFY(!drawing().isEmpty());
}

void TestMainWindow::recentFilesAreNewestFirstAndLimited()
{
    for (int number = 1; number <= 12; ++number)
        RecentFilesMenu::add(QStringLiteral("/scenes/%1.mr").arg(number));
    RecentFilesMenu::add("/scenes/5.mr");
    const QStringList files = Model::Settings::instance()->recentScenes();
    QCOMPARE(files.size(), RecentFilesMenu::maximumCount);
    QCOMPARE(files.mid(0, 3), (QStringList{"/scenes/5.mr", "/scenes/12.mr", "/scenes/11.mr"}));

    auto *menu = m_window->findChild<RecentFilesMenu *>();
    emit menu->aboutToShow();
    QCOMPARE(menu->actions().size(), files.size());
    QCOMPARE(menu->actions().constFirst()->text(), QStringLiteral("5.mr"));
    QCOMPARE(menu->actions().constFirst()->toolTip(), QStringLiteral("/scenes/5.mr"));
}

void TestMainWindow::zoomingInTakesTheNextLevel()
{
    paper()->setZoomLevel(1.003);
    action(MR::Action::ZoomIn)->trigger();
    QCOMPARE(paper()->zoomLevel(), 1.5);
}

void TestMainWindow::stylusTurnedRoundSwitchesBetweenPenAndEraser()
{
    auto *tools = ToolManager::instance();
    m_window->setTabletPointerType(PointerType::Pen);
    QCOMPARE(tools->currentToolType(), Tool::Type::Pen);
    m_window->setTabletPointerType(PointerType::Eraser);
    QCOMPARE(tools->currentToolType(), Tool::Type::Eraser);
    QVERIFY(action(MR::Action::Erase)->isChecked());
    QVERIFY(!action(MR::Action::Draw)->isChecked());
    m_window->setTabletPointerType(PointerType::Pen);
    QCOMPARE(tools->currentToolType(), Tool::Type::Pen);
    QVERIFY(action(MR::Action::Draw)->isChecked());
}

void TestMainWindow::stylusTurnedWhileTheLassoIsCurrentChangesNothing()
{
    auto *tools = ToolManager::instance();
    tools->setCurrentTool(Tool::Type::Lasso, 0);
    m_window->setTabletPointerType(PointerType::Eraser);
    QCOMPARE(tools->currentToolType(), Tool::Type::Lasso);
    m_window->setTabletPointerType(PointerType::Pen);
    QCOMPARE(tools->currentToolType(), Tool::Type::Lasso);
}

void TestMainWindow::nothingIsDrawnWhileAQuestionIsUp()
{
    drawLine();
    const int steps = scene()->undoStack()->count();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    answer.beforeAnswering([this] { drawLine(); });
    QVERIFY(!m_window->maybeSave());
    QCOMPARE(answer.count(), 1);
    QCOMPARE(scene()->undoStack()->count(), steps);
    QVERIFY(!scene()->hasActiveStroke());
}

void TestMainWindow::nothingElseStartsWhileTheCloseQuestionIsUp()
{
    drawLine();
    const Model::MRScene *before = m_window->currentScene();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    bool opened = true;
    bool saved = true;
    bool savedAs = true;
    answer.beforeAnswering([&] {
        opened = m_window->openFile("/any.mr");
        saved = m_window->saveScene();
        savedAs = m_window->saveSceneAs();
        m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
        m_window->openScene();
    });
    QVERIFY(!m_window->close());
    QVERIFY(!opened && !saved && !savedAs);
    QCOMPARE(answer.count(), 1);
    QCOMPARE(m_window->currentScene(), before);
}

void TestMainWindow::savingAtTheSaveQuestionGoesOn()
{
    const QString filename = m_folder->filePath("kept.mr");
    drawLine();
    scene()->setFilename(filename);
    MessageBoxAnswer answer(QMessageBox::Save);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(answer.count(), 1);
    QVERIFY(contentOf(filename).contains("<!DOCTYPE mr>"));
    QVERIFY(drawing().isEmpty());
}

void TestMainWindow::failedSaveAtTheSaveQuestionKeepsTheScene()
{
    drawLine();
    const Model::MRScene *before = m_window->currentScene();
    scene()->setFilename(m_folder->filePath("gone/kept.mr"));
    MessageBoxAnswer answer(QMessageBox::Save);
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCOMPARE(answer.count(), 2); // the question and the message that tells why
    QCOMPARE(m_window->currentScene(), before);
}

void TestMainWindow::saveAsAsksForANameAndWritesThere()
{
    Model::Settings::instance()->setDefaultSaveDir(m_folder->path());
    drawLine();
    FileDialogAnswer answer(m_folder->filePath("named"));
    bool enabledMeanwhile = true;
    answer.beforeAnswering([&] { enabledMeanwhile = action(MR::Action::ZoomIn)->isEnabled(); });
    QVERIFY(m_window->saveSceneAs());
    QCOMPARE(answer.title(), QStringLiteral("Save Scene"));
    QCOMPARE(answer.proposedFile(), m_folder->filePath("Untitled.mr"));
    QVERIFY(!enabledMeanwhile);
    QVERIFY(action(MR::Action::ZoomIn)->isEnabled());
    QCOMPARE(scene()->filename(), m_folder->filePath("named.mr"));
    QVERIFY(contentOf(m_folder->filePath("named.mr")).contains("<!DOCTYPE mr>"));
    QCOMPARE(Model::Settings::instance()->recentScenes(), QStringList{m_folder->filePath("named.mr")});
    QVERIFY(scene()->undoStack()->isClean());
}

void TestMainWindow::cancelledSaveAsChangesNothing()
{
    drawLine();
    FileDialogAnswer answer({});
    QVERIFY(!m_window->saveSceneAs());
    QCOMPARE(answer.count(), 1);
    QVERIFY(scene()->filename().isEmpty());
    QVERIFY(!scene()->undoStack()->isClean());
}

void TestMainWindow::openSceneOpensTheChosenFile()
{
    const QString filename = m_folder->filePath("chosen.mr");
    drawLine();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    newCleanScene();

    FileDialogAnswer answer(filename);
    m_window->openScene();
    QCOMPARE(answer.title(), QStringLiteral("Open Scene"));
    QCOMPARE(scene()->filename(), filename);
    QVERIFY(!drawing().isEmpty());
}

void TestMainWindow::fileChosenFromTheRecentOnesOpens()
{
    const QString filename = m_folder->filePath("recent.mr");
    drawLine();
    scene()->setFilename(filename);
    QVERIFY(m_window->saveScene());
    newCleanScene();

    auto *menu = m_window->findChild<RecentFilesMenu *>();
    emit menu->aboutToShow();
    menu->actions().constFirst()->trigger();
    QCOMPARE(scene()->filename(), filename);
}

void TestMainWindow::anyActionCommitsTheStrokeFirst_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::newRow("zoom in") << MR::Action::ZoomIn;
    QTest::newRow("zoom out") << MR::Action::ZoomOut;
    QTest::newRow("100 percent") << MR::Action::ViewToX1;
    QTest::newRow("reset view") << MR::Action::ResetView;
    QTest::newRow("fit") << MR::Action::FitPaperToView;
    QTest::newRow("toggle cursor") << MR::Action::ToggleCursor;
    QTest::newRow("hand") << MR::Action::Pan;
}

void TestMainWindow::anyActionCommitsTheStrokeFirst()
{
    QFETCH(MR::Action, which);
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(scene()->hasActiveStroke());
    action(which)->trigger();
    QVERIFY(!scene()->hasActiveStroke());
    QCOMPARE(scene()->undoStack()->count(), 1);
    release(paperPoint(50, 0));
    action(MR::Action::Draw)->trigger();
}

void TestMainWindow::firstStrokeCanBeUndoneWhileItIsDrawn()
{
    QVERIFY(!action(MR::Action::Undo)->isEnabled());
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(action(MR::Action::Undo)->isEnabled());
    action(MR::Action::Undo)->trigger();
    QVERIFY(drawing().isEmpty());
    release(paperPoint(50, 0));
    QVERIFY(!action(MR::Action::Undo)->isEnabled());
}

void TestMainWindow::fixedZoomsStandOnCtrlAndADigit()
{
    QHash<QKeySequence, QAction *> byKey;
    for (QAction *candidate : m_window->menuBar()->findChildren<QAction *>())
        byKey.insert(candidate->shortcut(), candidate);
    for (int zoom = 2; zoom <= 9; ++zoom) {
        QAction *fixed = byKey.value(QKeySequence(QStringLiteral("Ctrl+%1").arg(zoom)));
        QVERIFY(fixed);
        fixed->trigger();
        QVERIFY(std::abs(paper()->zoomLevel() - zoom) < 1e-9);
    }
}

void TestMainWindow::everyKeyOfTheCatalogueWorksInTheWindow()
{
    for (QAction *candidate : Model::ActionManager::instance()->actions())
        QVERIFY2(candidate->shortcuts().isEmpty() || !candidate->associatedObjects().isEmpty(),
                 qPrintable(candidate->text()));
}

void TestMainWindow::bracketKeysChangeThePenSize()
{
    const auto *pen = static_cast<const Model::DrawingTool *>(ToolManager::instance()->currentTool());
    const double before = pen->sizeMaxPercent();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTest::keyClick(m_window.get(), Qt::Key_BracketRight);
    QVERIFY(pen->sizeMaxPercent() > before);
    QTest::keyClick(m_window.get(), Qt::Key_BracketLeft);
    QVERIFY(std::abs(pen->sizeMaxPercent() - before) < 1e-6);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
