// Half of a full HD drawing of 500 lines in the real window: from the end of the cutter's line until the selection
// floats, a move of its drag, and its stamp, each with the undo step, the signals and the painting of all of it.

#include "pickupdrawing.h"

#include "app/mainwindow.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/mr.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libui/paper/paper.h"
#include "libui/uistartup.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QUndoStack>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <iostream>

using namespace PickUpDrawing;

namespace {

MainWindow *window = nullptr;
UI::Paper *paper = nullptr;

Model::MRScene &mrScene()
{
    return *window->currentScene();
}

double secondsOf(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) * 1e-9;
}

void mouse(QPointF offset, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    const QPointF position = paper->mapTo(window, paper->rect().center()) + offset;
    QWindow *handle = window->windowHandle();
    QWindowSystemInterface::handleMouseEvent(handle, position, handle->mapToGlobal(position), buttons, button, type);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void waitFor(int milliseconds)
{
    for (const QDeadlineTimer deadline(milliseconds); !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

/// Everything as it was before the lasso.
void takeAllBack()
{
    while (mrScene().scene()->undoStack()->canUndo())
        mrScene().scene()->undoStack()->undo();
    paper->repaint();
}

void cutHalf()
{
    emit paper->lassoingCompleted(halfLasso(), true);
    paper->repaint();
}

/// Along a small circle, ending where \a steps takes it. \return the longest move, in seconds.
double dragAbout(int steps)
{
    constexpr double radius = 60.0;
    const QPointF beside(200, 100); // of the pivot
    double longest = 0.0;
    QPointF at = beside;
    mouse(at, QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    for (int step = 1; step <= steps; ++step) {
        const double angle = 0.3 * step;
        at = beside + QPointF(std::cos(angle), std::sin(angle)) * radius;
        QElapsedTimer timer;
        timer.start();
        mouse(at, QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
        QCoreApplication::sendPostedEvents();
        longest = std::max(longest, secondsOf(timer));
    }
    mouse(at, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    return longest;
}

void lassoUntilFloating(benchmark::State &state)
{
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        cutHalf();
        state.SetIterationTime(secondsOf(timer));
        if (mrScene().floatingSelection().isNull()) {
            state.SkipWithError("Nothing floats.");
            return;
        }
        takeAllBack();
    }
}

void moveOfADrag(benchmark::State &state)
{
    constexpr int steps = 20;
    double longest = 0.0;
    for (auto _ : state) {
        cutHalf();
        QElapsedTimer timer;
        timer.start();
        longest = std::max(longest, dragAbout(steps));
        state.SetIterationTime(secondsOf(timer) / steps);
        takeAllBack();
    }
    state.counters["longest_ms"] = longest * 1e3;
}

/// After a drag, at once or when the user has looked at it for a while.
void stamp(benchmark::State &state, bool atOnce)
{
    constexpr int whileMs = 1500;
    QAction *action = Model::ActionManager::instance()->action(MR::Action::StampFloatingSelection);
    for (auto _ : state) {
        cutHalf();
        dragAbout(7);
        if (!atOnce)
            waitFor(whileMs);
        QElapsedTimer timer;
        timer.start();
        action->trigger();
        paper->repaint();
        state.SetIterationTime(secondsOf(timer));
        takeAllBack();
    }
}

} // namespace

BENCHMARK(lassoUntilFloating)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(moveOfADrag)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK_CAPTURE(stamp, after_a_look, false)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK_CAPTURE(stamp, at_once, true)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const IsolatedStore store;
    Model::startUp();
    UI::startUp();
    MainWindow mainWindow;
    if (!mainWindow.startupError().isEmpty()) {
        std::cerr << qPrintable(mainWindow.startupError()) << '\n';
        return 1;
    }
    mainWindow.resize(1920, 1150);
    mainWindow.show();
    mainWindow.newSceneIfNoneOpen();
    window = &mainWindow;
    paper = mainWindow.findChild<UI::Paper *>();
    Model::Scene *scene = mainWindow.currentScene()->scene();
    scene->replaceDrawing(scene->activeLayerIdx(), scene->activeFrame(), drawingOf(manyLines));
    waitFor(500);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    scene->undoStack()->setClean();
    mainWindow.close();
    return 0;
}
