// From a key press to the tool it stands for, in the real window: the event goes in at the window system's end, passes
// the gestures and the shortcuts, the stroke under the pen becomes an undo step, the tool changes, and actions, their
// states and the cursor follow. The worst time counts the release that lays the tool down again, too.

#include "app/mainwindow.h"
#include "libmodel/base/mr.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/startup.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper.h"
#include "libui/uistartup.h"
#include "support/isolatedstore.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QUndoStack>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

using Model::Tool;

struct Key
{
    const char *name;
    std::vector<int> keys;
    Tool::Type tool;
};

const Key keys[] = {
    {"space", {Qt::Key_Space}, Tool::Type::ZPR},
    {"h", {Qt::Key_H}, Tool::Type::Hand},
    {"z", {Qt::Key_Z}, Tool::Type::Zoom},
    {"r", {Qt::Key_R}, Tool::Type::Rotate},
    {"e", {Qt::Key_E}, Tool::Type::Eraser},
    {"3", {Qt::Key_3}, Tool::Type::Eraser}, // a shortcut, no gesture
    {"control, alt", {Qt::Key_Control, Qt::Key_Alt}, Tool::Type::OffPegs},
    {"shift", {Qt::Key_Shift}, Tool::Type::Scrubbing},
};

MainWindow *window = nullptr;
UI::Paper *paper = nullptr;

void send(int key, QEvent::Type type, Qt::KeyboardModifiers modifiers = {})
{
    QWindowSystemInterface::handleKeyEvent(window->windowHandle(), type, key, modifiers);
    QWindowSystemInterface::flushWindowSystemEvents();
}

void mouse(QPointF offset, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    const QPointF position = paper->mapTo(window, paper->rect().center()) + offset;
    QWindow *handle = window->windowHandle();
    QWindowSystemInterface::handleMouseEvent(handle, position, handle->mapToGlobal(position), buttons, button, type);
    QWindowSystemInterface::flushWindowSystemEvents();
}

double milliseconds(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) * 1e-6;
}

void drawWithoutRelease()
{
    mouse({-40, 0}, QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    for (int x = -40; x < 40; x += 4)
        mouse(QPointF(x, x / 2.0), QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
}

void keyToTool(benchmark::State &state)
{
    const Key &key = keys[state.range(0)];
    // A scrub waits for the end of the stroke.
    const bool drawing = state.range(1) != 0 && key.tool != Tool::Type::Scrubbing;
    state.SetLabel(std::string(key.name) + (drawing ? ", in a stroke" : ""));
    Model::ToolManager *tools = Model::ToolManager::instance();
    std::vector<double> worst = {0.0};
    for (auto _ : state) {
        tools->setCurrentTool(Tool::Type::Pen, 0);
        mouse({0, 0}, QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
        if (drawing)
            drawWithoutRelease();
        QCoreApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        for (const int pressed : key.keys)
            send(pressed, QEvent::KeyPress);
        const double pressMs = milliseconds(timer);
        if (tools->currentToolType() != key.tool) {
            state.SkipWithError("The key has not taken its tool up.");
            return;
        }
        timer.start();
        for (const int pressed : key.keys)
            send(pressed, QEvent::KeyRelease);
        worst.push_back(std::max(pressMs, milliseconds(timer)));
        state.SetIterationTime(pressMs * 1e-3);
        if (drawing)
            mouse({40, 20}, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    }
    state.counters["worst_ms"] = *std::ranges::max_element(worst);
}
BENCHMARK(keyToTool)
    ->ArgsProduct({benchmark::CreateDenseRange(0, std::size(keys) - 1, 1), {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(100);

} // namespace

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
    mainWindow.resize(1600, 1000);
    mainWindow.show();
    mainWindow.newSceneIfNoneOpen();
    window = &mainWindow;
    paper = mainWindow.findChild<UI::Paper *>();
    paper->setFocus();
    // Shortcuts work in an active window only.
    mainWindow.activateWindow();
    for (const QDeadlineTimer deadline(5000); !mainWindow.isActiveWindow() && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    mainWindow.currentScene()->scene()->undoStack()->setClean();
    mainWindow.close();
    return 0;
}
