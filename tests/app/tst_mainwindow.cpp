#include "mainwindowfixture.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/drawingtool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/viewtransform.h"
#include "support/messageboxanswer.h"

#include <QMenuBar>
#include <QTest>
#include <QUndoStack>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

using Model::Scene;
using Model::Tool;
using Model::ToolManager;
using PointerType = QPointingDevice::PointerType;

class tst_MainWindow : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void newSceneHasThreeLayersAndStandsOnTheFirstFrame();
    void newSceneTakesSizeRateAndLengthFromTheSettings();
    void newSceneIfNoneOpenKeepsAnOpenScene();
    void titleShowsNameModificationSizeAndZoom();
    void titleFollowsTheFrameSize();
    void markOfModificationInANameIsShownAsItIs();
    void largeSheetIsShownWholeAndASmallOneAsItIs_data();
    void largeSheetIsShownWholeAndASmallOneAsItIs();
    void mouseStrokeIsOneUndoStep();
    void tabletStrokeIsOneUndoStep();
    void undoCommitsTheStrokeUnderThePenFirst();
    void eraserOnAnEmptyDrawingLeavesNoUndoStep();
    void drawingBehindTheLastCellAddsADrawing();
    void drawingBehindTheLastCellAndTheRangeAddsADrawing();
    void drawingOnAHoldGoesToItsOriginal();
    void drawingOnAReferenceLayerAddsNothing();
    void changingTheToolCommitsTheStroke();
    void sceneOfAnotherSizeSizesTheRenderer();
    void zoomingInTakesTheNextLevel();
    void stylusTurnedRoundSwitchesBetweenPenAndEraser();
    void stylusTurnedWhileTheLassoIsCurrentChangesNothing();
    void nothingIsDrawnWhileAQuestionIsUp();
    void nothingIsEditedWhileAQuestionIsUp();
    void anyActionCommitsTheStrokeFirst_data();
    void anyActionCommitsTheStrokeFirst();
    void firstStrokeCanBeUndoneWhileItIsDrawn();
    void fixedZoomsStandOnCtrlAndADigit();
    void everyKeyOfTheCatalogueWorksInTheWindow();
    void bracketKeysChangeThePenSize();
    void resetActionsPutTheSizesBack_data();
    void resetActionsPutTheSizesBack();
};

void tst_MainWindow::newSceneHasThreeLayersAndStandsOnTheFirstFrame()
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

void tst_MainWindow::newSceneTakesSizeRateAndLengthFromTheSettings()
{
    Model::Settings::instance()->setDefaultFrameSize({640, 480});
    Model::Settings::instance()->setDefaultFrameRate(25.0);
    Model::Settings::instance()->setDefaultInitialNumberOfFrames(5);
    newCleanScene();
    QCOMPARE(scene()->frameSize(), QSize(640, 480));
    QCOMPARE(scene()->frameRate(), 25.0);
    QCOMPARE(scene()->lastFrame(0), 5);
    QCOMPARE(scene()->rangeFirst(), 1);
    QCOMPARE(scene()->rangeLast(), 5);
    QCOMPARE(scene()->item(0, 5)->drawing, scene()->item(0, 1)->drawing);
}

void tst_MainWindow::newSceneIfNoneOpenKeepsAnOpenScene()
{
    const Model::MRScene *before = m_window->currentScene();
    m_window->newSceneIfNoneOpen();
    QCOMPARE(m_window->currentScene(), before);
}

void tst_MainWindow::titleShowsNameModificationSizeAndZoom()
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

void tst_MainWindow::titleFollowsTheFrameSize()
{
    action(MR::Action::ViewToX1)->trigger();
    scene()->setFrameSize({640, 480}, MR::FitMode::FitModeIgnore);
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled:  [640x480] 100%"));
}

// The toolkit's placeholder in window titles.
void tst_MainWindow::markOfModificationInANameIsShownAsItIs()
{
    action(MR::Action::ViewToX1)->trigger();
    scene()->setFilename("/some/a[*]b[*][*]c.mr");
    QVERIFY2(m_window->windowHandle()->title().startsWith("a[*]b[*][*]c.mr:  [1920x1080] 100%"),
             qPrintable(m_window->windowHandle()->title()));
}

void tst_MainWindow::largeSheetIsShownWholeAndASmallOneAsItIs_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isShrunk");
    QTest::newRow("wide") << QSize(4000, 300) << true;
    QTest::newRow("tall") << QSize(300, 4000) << true;
    QTest::newRow("small") << QSize(320, 200) << false;
}

void tst_MainWindow::largeSheetIsShownWholeAndASmallOneAsItIs()
{
    QFETCH(QSize, size);
    QFETCH(bool, isShrunk);
    paper()->setZoomLevel(3.0);
    Model::Settings::instance()->setDefaultFrameSize(size);
    newCleanScene();
    const QRectF sheet = paper()->view().widgetToPaper().inverted().mapRect(QRectF(QPointF(), size));
    QVERIFY(QRectF(paper()->rect()).contains(sheet));
    if (isShrunk)
        QVERIFY(paper()->zoomLevel() < 1.0);
    else
        QCOMPARE(paper()->zoomLevel(), 1.0);
}

void tst_MainWindow::mouseStrokeIsOneUndoStep()
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

void tst_MainWindow::tabletStrokeIsOneUndoStep()
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

void tst_MainWindow::undoCommitsTheStrokeUnderThePenFirst()
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

void tst_MainWindow::eraserOnAnEmptyDrawingLeavesNoUndoStep()
{
    action(MR::Action::RubberEraser)->trigger();
    drawLine();
    QVERIFY(drawing().isEmpty());
    QVERIFY(scene()->undoStack()->isClean());
    QVERIFY(!action(MR::Action::Undo)->isEnabled());
}

void tst_MainWindow::drawingBehindTheLastCellAddsADrawing()
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

void tst_MainWindow::drawingBehindTheLastCellAndTheRangeAddsADrawing()
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

void tst_MainWindow::drawingOnAHoldGoesToItsOriginal()
{
    scene()->appendCloneDrawings(0, 1, 1);
    scene()->setFrameRange(1, 2, 2, 0);
    drawLine();
    QCOMPARE(scene()->lastFrame(0), 2);
    QVERIFY(!drawing(1).isEmpty());
    QCOMPARE(&drawing(1), &drawing(2));
    QCOMPARE(scene()->undoStack()->count(), 1);
}

void tst_MainWindow::drawingOnAReferenceLayerAddsNothing()
{
    const int layerIdx = scene()->insertLayer(std::make_shared<Model::ReferenceLayer>(scene()->frameSize()), 3);
    scene()->setActiveFrameAndLayer(2, layerIdx, Scene::AllowFrameAfterLast);
    QCOMPARE(scene()->activeFrame(), 2);
    drawLine();
    QCOMPARE(scene()->lastFrame(layerIdx), 1);
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_MainWindow::changingTheToolCommitsTheStroke()
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

void tst_MainWindow::sceneOfAnotherSizeSizesTheRenderer()
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

void tst_MainWindow::zoomingInTakesTheNextLevel()
{
    paper()->setZoomLevel(1.003);
    action(MR::Action::ZoomIn)->trigger();
    QCOMPARE(paper()->zoomLevel(), 1.5);
}

void tst_MainWindow::stylusTurnedRoundSwitchesBetweenPenAndEraser()
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

void tst_MainWindow::stylusTurnedWhileTheLassoIsCurrentChangesNothing()
{
    auto *tools = ToolManager::instance();
    tools->setCurrentTool(Tool::Type::Lasso, 0);
    m_window->setTabletPointerType(PointerType::Eraser);
    QCOMPARE(tools->currentToolType(), Tool::Type::Lasso);
    m_window->setTabletPointerType(PointerType::Pen);
    QCOMPARE(tools->currentToolType(), Tool::Type::Lasso);
}

void tst_MainWindow::nothingIsDrawnWhileAQuestionIsUp()
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

void tst_MainWindow::nothingIsEditedWhileAQuestionIsUp()
{
    drawLine();
    const int steps = scene()->undoStack()->count();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    answer.beforeAnswering([] {
        for (const QAction *which : Model::ActionManager::instance()->actions())
            QVERIFY2(!which->isEnabled(), qPrintable(which->text()));
        action(MR::Action::AddBlankDrawing)->trigger();
        action(MR::Action::Undo)->trigger();
    });
    QVERIFY(!m_window->maybeSave());
    QCOMPARE(answer.count(), 1);
    QCOMPARE(scene()->undoStack()->count(), steps);
    QCOMPARE(scene()->undoStack()->index(), steps);
    QVERIFY(action(MR::Action::AddBlankDrawing)->isEnabled() && action(MR::Action::Undo)->isEnabled());
    QVERIFY(!action(MR::Action::Redo)->isEnabled());
}

void tst_MainWindow::anyActionCommitsTheStrokeFirst_data()
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

void tst_MainWindow::anyActionCommitsTheStrokeFirst()
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

void tst_MainWindow::firstStrokeCanBeUndoneWhileItIsDrawn()
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

void tst_MainWindow::fixedZoomsStandOnCtrlAndADigit()
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

void tst_MainWindow::everyKeyOfTheCatalogueWorksInTheWindow()
{
    for (QAction *candidate : Model::ActionManager::instance()->actions())
        QVERIFY2(candidate->shortcuts().isEmpty() || !candidate->associatedObjects().isEmpty(),
                 qPrintable(candidate->text()));
}

void tst_MainWindow::bracketKeysChangeThePenSize()
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

void tst_MainWindow::resetActionsPutTheSizesBack_data()
{
    QTest::addColumn<MR::Action>("tool");
    QTest::addColumn<MR::Action>("reset");
    QTest::newRow("pen") << MR::Action::Brush << MR::Action::ResetDrawingUserSettings;
    QTest::newRow("eraser") << MR::Action::VinylEraser << MR::Action::ResetErasingUserSettings;
}

void tst_MainWindow::resetActionsPutTheSizesBack()
{
    QFETCH(MR::Action, tool);
    QFETCH(MR::Action, reset);
    action(tool)->trigger();
    auto *current = qobject_cast<Model::DrawingTool *>(ToolManager::instance()->currentTool());
    action(reset)->trigger();
    const double usual = current->sizeMaxPercent();
    const double other = usual > 50.0 ? 20.0 : 90.0;
    current->setSizeRangePercent(10.0, other);
    action(reset)->trigger();
    QCOMPARE(current->sizeMaxPercent(), usual);
}

QTEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
