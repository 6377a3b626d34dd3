// Steps of the view and of the frame on the paper: from the call or event to the painted widget, its backing store
// handed to the X server. Window and scene are 1920 x 1080, with four layers of line art and the backlight on. Run it
// on a screen of at least that size, with tools/with-display if need be.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper.h"
#include "libui/paper/viewtransform.h"
#include "libui/uistartup.h"
#include "paintcounter.h"
#include "support/glfixture.h"
#include "support/lineart.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <vector>

namespace {

constexpr QSize frameSize(1920, 1080);
constexpr int layerCount = 4;
constexpr int frameCount = 12;

/// A paper over a scene with line art in every cell.
class Stage
{
public:
    Stage()
    {
        scene().setFrameSize(frameSize, MR::FitMode::FitModeIgnore);
        for (int i = 0; i < layerCount; ++i) {
            auto layer = std::make_shared<Model::StrokeLayer>(QColor::fromHsv(i * 60, 200, 180), frameSize);
            for (int frameId = 1; frameId < frameCount; ++frameId)
                layer->insertBlankAfter(frameId);
            const int idx = scene().insertLayer(layer, i);
            for (int frameId = 1; frameId <= frameCount; ++frameId)
                scene().addStroke(
                    idx, frameId,
                    std::make_unique<Model::BitmapStroke>(TestSupport::lineArt(frameSize, i * frameCount + frameId),
                                                          QRect(QPoint(0, 0), frameSize)));
        }
        scene().setFrameRange(1, frameCount, 5, 0);
        setBacklight(true);
        Model::ToolManager::instance()->setCurrentTool(Model::Tool::Type::Pen, 0);
        paper.installEventFilter(&painted);
        paper.setWindowFlags(Qt::FramelessWindowHint);
        paper.setGeometry(QRect({0, 0}, frameSize));
        paper.setCurrentScene(&m_scene);
        paper.show();
        settle();
    }

    Model::Scene &scene() { return *m_scene.scene(); }

    void setBacklight(bool on)
    {
        Model::BacklightSettings settings;
        settings.on = on;
        scene().setBacklightSettings(settings);
    }

    /// Turns the wheel by \a pixels over the middle of the paper.
    void pan(QPoint pixels)
    {
        QWindow *window = paper.windowHandle();
        const QPointF middle = QRectF(paper.rect()).center();
        QWindowSystemInterface::handleWheelEvent(window, ++m_clock, middle, middle + window->position(), pixels, {},
                                                 {});
        QWindowSystemInterface::flushWindowSystemEvents();
    }

    void setSelection(const Model::FloatingSelection &selection) { m_scene.setFloatingSelection(selection); }

    /// A mouse event at \a position with \a buttons down from now on, the left one being what \a type is about.
    void mouse(QPointF position, Qt::MouseButtons buttons, QEvent::Type type)
    {
        QWindow *window = paper.windowHandle();
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QWindowSystemInterface::handleMouseEvent(window, ++m_clock, position, position + window->position(), buttons,
                                                 button, type);
        QWindowSystemInterface::flushWindowSystemEvents();
    }

    /// Calls \a change and waits until the paper has been painted. \return milliseconds.
    double timed(const std::function<void()> &change)
    {
        const int paintedBefore = painted.count;
        QElapsedTimer timer;
        timer.start();
        change();
        while (painted.count == paintedBefore)
            QCoreApplication::processEvents();
        return double(timer.nsecsElapsed()) * 1e-6;
    }

    void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    UI::Paper paper;
    PaintCounter painted;

private:
    Model::MRScene m_scene;
    ulong m_clock = 1000;
};

double percentile(std::vector<double> &values, double part)
{
    const auto place = values.begin() + std::ptrdiff_t(part * double(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

/// Measures \a change, which gets the number of the step.
void measure(benchmark::State &state, Stage &stage, const std::function<void(int)> &change)
{
    std::vector<double> times;
    for (int i = 0; i < 4; ++i)
        stage.timed([&] { change(i); });
    int step = 4;
    for (auto _ : state) {
        times.push_back(stage.timed([&] { change(step); }));
        ++step;
        state.SetIterationTime(times.back() * 1e-3);
    }
    state.counters["median_ms"] = percentile(times, 0.5);
    state.counters["p95_ms"] = percentile(times, 0.95);
    state.counters["worst_ms"] = percentile(times, 1.0);
}

/// How the sheet lies before the steps: its zoom in percent, and its rotation in degrees.
void lay(Stage &stage, const benchmark::State &state)
{
    stage.paper.resetView();
    stage.paper.rotatePaperTo(double(state.range(1)));
    stage.paper.setZoomLevel(double(state.range(0)) / 100.0);
    stage.settle();
}

void addViews(benchmark::internal::Benchmark *bench)
{
    bench->ArgNames({"percent", "degrees"});
    for (const int percent : {30, 70, 100, 150, 300}) {
        for (const int degrees : {0, 20})
            bench->Args({percent, degrees});
    }
    bench->UseManualTime()->Iterations(60)->Unit(benchmark::kMillisecond);
}

void panStep(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    measure(state, stage, [&](int step) { stage.pan(step % 8 < 4 ? QPoint(7, 5) : QPoint(-7, -5)); });
}
BENCHMARK(panStep)->Apply(addViews);

void zoomStep(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    const double level = double(state.range(0)) / 100.0;
    measure(state, stage, [&](int step) { stage.paper.setZoomLevel(level * (1.0 + 0.01 * (step % 8 + 1))); });
}
BENCHMARK(zoomStep)->Apply(addViews);

void rotateStep(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    measure(state, stage, [&](int step) { stage.paper.rotatePaperTo(double(state.range(1)) + 1.5 * (step % 8 + 1)); });
}
BENCHMARK(rotateStep)->Apply(addViews);

/// A held step key: the next frame, with six neighbours shining through on four layers.
void frameStep(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    measure(state, stage, [&](int step) {
        stage.scene().setActiveFrameAndLayer(step % frameCount + 1, 0, Model::Scene::KeepFrameOnDrawing);
    });
}
BENCHMARK(frameStep)->Apply(addViews);

/// The same with the frame off its pegs.
void panStepOffPegs(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    stage.scene().setCurrentDrawingOffPegsTransform(QTransform().translate(60, -40).rotate(7));
    stage.settle();
    measure(state, stage, [&](int step) { stage.pan(step % 8 < 4 ? QPoint(7, 5) : QPoint(-7, -5)); });
}
BENCHMARK(panStepOffPegs)->Apply(addViews);

/// A pan with the finest grid over the sheet.
void panStepWithGrid(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    stage.paper.setGridType(MR::GridType::FieldGuide);
    stage.paper.setGridStatus(MR::GridStatus::GridOn);
    stage.settle();
    measure(state, stage, [&](int step) { stage.pan(step % 8 < 4 ? QPoint(7, 5) : QPoint(-7, -5)); });
}
BENCHMARK(panStepWithGrid)->Apply(addViews);

/// A pan over checkers.
void panStepOnCheckers(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    stage.paper.setTransparencyType(MR::TransparencyType::TransparencySmallCheckersDark);
    stage.settle();
    measure(state, stage, [&](int step) { stage.pan(step % 8 < 4 ? QPoint(7, 5) : QPoint(-7, -5)); });
}
BENCHMARK(panStepOnCheckers)->Apply(addViews);

/// A drag of a floating selection that reaches over most of the frame, which the view's degrees turn too.
void dragStepOfASelection(benchmark::State &state)
{
    Stage stage;
    lay(stage, state);
    constexpr QRect part(160, 90, 1600, 900);
    stage.setSelection({std::make_unique<Model::BitmapStroke>(TestSupport::lineArt(part.size(), 3), part), frameSize});
    Model::ToolManager::instance()->setCurrentTool(Model::Tool::Type::FloatingSelection, 0);
    stage.settle();
    const QPointF grip = QRectF(stage.paper.rect()).center() + QPointF(60, 50); // clear of the pivot
    stage.mouse(grip, Qt::LeftButton, QEvent::MouseButtonPress);
    measure(state, stage, [&](int step) {
        stage.mouse(grip + 3.0 * QPointF(step % 8 + 1, step % 5), Qt::LeftButton, QEvent::MouseMove);
    });
    stage.mouse(grip, Qt::NoButton, QEvent::MouseButtonRelease);
    Model::ToolManager::instance()->setCurrentTool(Model::Tool::Type::Pen, 0);
}
BENCHMARK(dragStepOfASelection)->Apply(addViews);

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    UI::startUp();
    if (!TestSupport::startRenderer(frameSize)) {
        std::cerr << "There is no renderer to measure with.\n";
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
