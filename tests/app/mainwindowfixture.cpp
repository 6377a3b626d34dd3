#include "mainwindowfixture.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/startup.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libui/uistartup.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <QTest>
#include <QUndoStack>

QAction *action(MR::Action which)
{
    return Model::ActionManager::instance()->mrAction(which)->action;
}

void MainWindowFixture::initTestCase()
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

void MainWindowFixture::init()
{
    Model::Settings::instance()->setRecentScenes({});
    Model::Settings::instance()->setDefaultFrameSize({1920, 1080});
    Model::Settings::instance()->setDefaultFrameRate(12.0);
    Model::Settings::instance()->setDefaultInitialNumberOfFrames(1);
    m_folder = std::make_unique<QTemporaryDir>();
    newCleanScene();
    action(MR::Action::Marker)->trigger();
}

void MainWindowFixture::cleanupTestCase()
{
    scene()->undoStack()->setClean();
    QVERIFY(m_window->close());
    QVERIFY(!m_window->currentScene());
    QCOMPARE(Model::Settings::instance()->mainWindowGeometry(), m_window->saveGeometry());
    m_window.reset();
}

void MainWindowFixture::newCleanScene()
{
    scene()->undoStack()->setClean();
    m_window->newScene(MainWindow::NewSceneBehaviour::UseDefaults);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void MainWindowFixture::makeCells(const QByteArray &cells)
{
    for (int frameId = 2; frameId <= cells.size(); ++frameId) {
        if (cells.at(frameId - 1) == '-')
            scene()->addCloneDrawing(0, frameId - 1);
        else
            scene()->addBlankDrawing(0, frameId - 1);
    }
    scene()->setFrameRange(1, int(cells.size()), 1, 0);
    scene()->undoStack()->clear();
}

QByteArray MainWindowFixture::cells(int layerIdx) const
{
    QByteArray letters;
    for (int frameId = 1; frameId <= scene()->lastFrame(layerIdx); ++frameId) {
        const auto cell = scene()->item(layerIdx, frameId);
        letters += cell->isClone() ? '-' : cell->isDistantClone() ? 'd' : 'o';
    }
    return letters;
}

void MainWindowFixture::goTo(int frameId, int layerIdx)
{
    scene()->setActiveFrameAndLayer(frameId, layerIdx, Model::Scene::AllowFrameAfterLast);
    QCOMPARE(scene()->activeFrame(), frameId);
    QCOMPARE(scene()->activeLayerIdx(), layerIdx);
}

void MainWindowFixture::select(int firstFrame, int lastFrame, int layerIdx)
{
    const Model::FrameRangeModel *sheet = m_window->currentScene()->frameRangeModel();
    const int first = scene()->rangeFirst();
    m_window->currentScene()->selectionModel()->select(
        {sheet->index(firstFrame - first, layerIdx), sheet->index(lastFrame - first, layerIdx)},
        QItemSelectionModel::Select);
}

const Model::StrokeDrawing &MainWindowFixture::drawing(int frameId) const
{
    return static_cast<const Model::StrokeDrawing &>(*scene()->item(0, frameId)->drawing);
}

void MainWindowFixture::press(QPoint at)
{
    QTest::mousePress(paper(), Qt::LeftButton, {}, at);
}

void MainWindowFixture::moveTo(QPoint at)
{
    QTest::mouseMove(paper(), at);
    QMouseEvent event(QEvent::MouseMove, at, paper()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(paper(), &event);
}

void MainWindowFixture::release(QPoint at)
{
    QTest::mouseRelease(paper(), Qt::LeftButton, {}, at);
}

void MainWindowFixture::drawLine()
{
    press(paperPoint(-60, 0));
    moveTo(paperPoint(0, 20));
    moveTo(paperPoint(60, 0));
    release(paperPoint(60, 0));
}
