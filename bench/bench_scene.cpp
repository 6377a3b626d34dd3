// What a frame step and a committed stroke cost in a scene of 1920 x 1080 pixels.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "support/glfixture.h"

#include <QApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>

using namespace Model;

namespace {

constexpr QSize frame(1920, 1080);
constexpr int layerCount = 4;

/// A drawing's worth of pixels: half covered, a square of the given side.
std::unique_ptr<Stroke> ink(int side)
{
    QImage coverage(side, side, QImage::Format_Alpha8);
    coverage.fill(128);
    return std::make_unique<BitmapStroke>(coverage, QRect(300, 200, side, side));
}

/// Four layers of two frames, each cell with a square of ink; no ink for a side of 0.
void fill(Scene &scene, int side)
{
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    for (int i = 0; i < layerCount; ++i) {
        auto layer = std::make_shared<StrokeLayer>(QColor::fromHsv(i * 60, 255, 255), frame);
        layer->insertBlankAfter(1);
        const int idx = scene.insertLayer(layer, i);
        for (int frameId = 1; side > 0 && frameId <= 2; ++frameId)
            scene.addStroke(idx, frameId, ink(side));
    }
    scene.setFrameRange(1, 2, 1, 0);
}

/// A line of about 200 x 200 pixels.
void drawCurve(Scene &scene)
{
    scene.beginStroke({QPointF(800, 400), 0.5, 0});
    for (int i = 1; i <= 60; ++i)
        scene.addSample({QPointF(800 + 3.3 * i, 500 + 100 * std::sin(i / 10.0)), 0.5, 0});
}

/// A step to the other frame of a scene with ink of the argument's side on every layer.
void stepFrame(benchmark::State &state)
{
    Scene scene;
    fill(scene, static_cast<int>(state.range(0)));
    int frameId = 1;
    for (auto _ : state) {
        frameId = 3 - frameId;
        scene.setActiveFrameAndLayer(frameId, 0, Scene::KeepFrameOnDrawing);
    }
}
BENCHMARK(stepFrame)->Arg(0)->Arg(200)->Arg(800)->Arg(1080)->Unit(benchmark::kMicrosecond);

/// Committing a drawn stroke into a drawing that holds other ink.
void commitStroke(benchmark::State &state)
{
    Scene scene;
    fill(scene, 800);
    for (auto _ : state) {
        state.PauseTiming();
        drawCurve(scene);
        auto stroke = scene.takeStroke();
        state.ResumeTiming();
        scene.addStroke(0, 1, std::move(stroke));
        state.PauseTiming();
        scene.removeLastStroke(0, 1);
        state.ResumeTiming();
    }
}
BENCHMARK(commitStroke)->Unit(benchmark::kMicrosecond);

/// What the paper asks for while the pen moves: a small rectangle with the stroke in progress in it.
void paintDuringStroke(benchmark::State &state)
{
    Scene scene;
    fill(scene, 800);
    drawCurve(scene);
    QImage target(frame, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    QPainter painter(&target);
    const int side = static_cast<int>(state.range(0));
    for (auto _ : state)
        scene.paintFrame(&painter, QRect(900, 450, side, side));
}
BENCHMARK(paintDuringStroke)->Arg(32)->Arg(200)->Unit(benchmark::kMicrosecond);

/// Painting the whole frame from the composed pixmap.
void paintWholeFrame(benchmark::State &state)
{
    Scene scene;
    fill(scene, static_cast<int>(state.range(0)));
    QImage target(frame, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    QPainter painter(&target);
    for (auto _ : state)
        scene.paintFrame(&painter, QRect(QPoint(0, 0), frame));
}
BENCHMARK(paintWholeFrame)->Arg(0)->Arg(200)->Arg(1080)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    if (!TestSupport::startRenderer(frame))
        return 1;
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
