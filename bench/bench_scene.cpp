// What a frame step and a committed stroke cost in a scene of 1920 x 1080 pixels.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "support/glfixture.h"
#include "support/lineart.h"

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

/// Turns the backlight on or off, the same for every run.
void setBacklight(Scene &scene, bool on)
{
    BacklightSettings settings;
    settings.on = on;
    scene.setBacklightSettings(settings);
}

/// Four layers of seven frames, each cell with a line drawing that reaches over most of the frame.
void fillWithLineArt(Scene &scene)
{
    constexpr int frames = 7;
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    for (int i = 0; i < layerCount; ++i) {
        auto layer = std::make_shared<StrokeLayer>(QColor::fromHsv(i * 60, 255, 255), frame);
        for (int frameId = 1; frameId < frames; ++frameId)
            layer->insertBlankAfter(frameId);
        const int idx = scene.insertLayer(layer, i);
        for (int frameId = 1; frameId <= frames; ++frameId)
            scene.addStroke(idx, frameId,
                            std::make_unique<BitmapStroke>(TestSupport::lineArt(frame, i * frames + frameId),
                                                           QRect(QPoint(0, 0), frame)));
    }
    scene.setFrameRange(1, frames, 4, 0);
}

/// Four layers of two frames, each cell with a square of ink; no ink for a side of 0.
void fill(Scene &scene, int side)
{
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    setBacklight(scene, false);
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

/// A step to the other frame of a scene with ink of the argument's side on every layer, painted once.
void stepFrame(benchmark::State &state)
{
    Scene scene;
    fill(scene, static_cast<int>(state.range(0)));
    QImage target(frame, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    QPainter painter(&target);
    int frameId = 1;
    for (auto _ : state) {
        frameId = 3 - frameId;
        scene.setActiveFrameAndLayer(frameId, 0, Scene::KeepFrameOnDrawing);
        scene.paintFrame(&painter, target.rect());
    }
}
BENCHMARK(stepFrame)->Arg(0)->Arg(200)->Arg(800)->Arg(1080)->Unit(benchmark::kMicrosecond);

/// The same with line art on four layers, and with six neighbouring frames shining through for the argument 1.
void stepThroughLineArt(benchmark::State &state)
{
    Scene scene;
    fillWithLineArt(scene);
    setBacklight(scene, state.range(0) != 0);
    QImage target(frame, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    QPainter painter(&target);
    scene.paintFrame(&painter, target.rect());
    size_t step = 0;
    for (auto _ : state) {
        // The middle frame, with three neighbours on each side, on one layer after the other: all pictures are made
        // anew.
        scene.setActiveFrameAndLayer(4, static_cast<int>(++step % layerCount), Scene::KeepFrameOnDrawing);
        scene.paintFrame(&painter, target.rect());
    }
}
BENCHMARK(stepThroughLineArt)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/// A step while scrubbing: only the frame on show changes, the backlight stays.
void scrubThroughLineArt(benchmark::State &state)
{
    Scene scene;
    fillWithLineArt(scene);
    setBacklight(scene, true);
    QImage target(frame, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    QPainter painter(&target);
    int step = 0;
    for (auto _ : state) {
        scene.setScrubFrame(++step % 7 + 1);
        scene.paintFrame(&painter, target.rect());
    }
}
BENCHMARK(scrubThroughLineArt)->Unit(benchmark::kMicrosecond);

/// Committing a drawn stroke into a drawing that holds other ink, and painting it there.
void commitStroke(benchmark::State &state)
{
    Scene scene;
    fill(scene, 800);
    QImage target(frame, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    QPainter painter(&target);
    scene.paintFrame(&painter, target.rect());
    for (auto _ : state) {
        state.PauseTiming();
        drawCurve(scene);
        auto stroke = scene.takeStroke();
        const QRect bounds = stroke->boundingRect();
        state.ResumeTiming();
        scene.addStroke(0, 1, std::move(stroke));
        scene.paintFrame(&painter, bounds);
        state.PauseTiming();
        scene.removeLastStroke(0, 1);
        scene.paintFrame(&painter, bounds);
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
