#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/render/rendererassets.h"
#include "support/glfixture.h"
#include "support/handmadestrokes.h"

#include <QGuiApplication>
#include <QImage>
#include <QTransform>

#include <benchmark/benchmark.h>

#include <cstdlib>

using Model::OffscreenRenderer;
using Model::Tool;

namespace {

bool startAt(benchmark::State &state, QSize size)
{
    if (TestSupport::startRenderer(size) && OffscreenRenderer::instance()->size() == size)
        return true;
    state.SkipWithError("no renderer of that size");
    return false;
}

/// What a pen event costs here: one line with its two caps, in an image of its own bounds.
void newestSegment(benchmark::State &state)
{
    const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    if (!startAt(state, size))
        return;
    const double radius = static_cast<double>(state.range(2));
    const auto pen = static_cast<Tool::PenType>(state.range(3));
    const TestSupport::StrokeEnd start{{500.0, 400.0}, 0.8, radius};
    const TestSupport::StrokeEnd end{{508.0, 403.0}, 0.9, radius};
    const QRectF bounds = QRectF(start.point, end.point).adjusted(-radius, -radius, radius, radius);
    const QRect rect = bounds.toAlignedRect().adjusted(-1, -1, 1, 1);
    const QTransform transform = QTransform::fromTranslate(-rect.left(), -rect.top());
    for (auto _ : state) {
        Model::VertexStreams vertices;
        TestSupport::appendLine(vertices, start, end);
        QImage image(rect.size(), QImage::Format_Alpha8);
        image.fill(0);
        OffscreenRenderer::instance()->renderPen(image, pen, rect.topLeft(), 1.0F, image.rect(), transform, vertices);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(newestSegment)
    ->ArgNames({"width", "height", "radius", "pen"})
    ->Args({1920, 1080, 20, 1})
    ->Args({1920, 1080, 20, 0})
    ->Args({1920, 1080, 2, 1})
    ->Args({1920, 1080, 90, 0})
    ->Args({8192, 8192, 20, 1})
    ->Args({8192, 8192, 20, 0})
    ->MeasureProcessCPUTime() // the software renderer works in threads of its own
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// A long stroke, all at once, as when an image is rebuilt.
void wholeStroke(benchmark::State &state)
{
    const QSize size(1920, 1080);
    if (!startAt(state, size))
        return;
    Model::VertexStreams vertices;
    for (int i = 0; i < 100; ++i) {
        const double x = 100 + 15 * i;
        TestSupport::appendLine(vertices, {{x, 300.0 + 5 * (i % 7)}, 1.0, 6},
                                {{x + 15, 300.0 + 5 * ((i + 1) % 7)}, 1.0, 6});
    }
    QImage image(size, QImage::Format_Alpha8);
    for (auto _ : state) {
        const QRect rect(90, 280, 1530, 70);
        OffscreenRenderer::instance()->renderPen(image, Tool::PenType::Marker, {}, 1.0F, rect, {}, vertices);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(wholeStroke)->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);

/// The renderer's share of the program's start, framebuffers of 1920 x 1080 included.
void initialization(benchmark::State &state)
{
    TestSupport::registerModelResources();
    for (auto _ : state) {
        OffscreenRenderer::instance()->shutDown();
        if (!OffscreenRenderer::instance()->initialize(QSize(1920, 1080)))
            state.SkipWithError("no renderer");
    }
}
BENCHMARK(initialization)->Unit(benchmark::kMillisecond);

void initializationWithoutFramebuffers(benchmark::State &state)
{
    TestSupport::registerModelResources();
    for (auto _ : state) {
        OffscreenRenderer::instance()->shutDown();
        if (!OffscreenRenderer::instance()->initialize(QSize()))
            state.SkipWithError("no renderer");
    }
}
BENCHMARK(initializationWithoutFramebuffers)->Unit(benchmark::kMillisecond);

/// The first drawing after the start, for which the driver compiles its programs: without and with warmUp() before it.
void firstSegment(benchmark::State &state)
{
    TestSupport::registerModelResources();
    Model::VertexStreams vertices;
    TestSupport::appendLine(vertices, {{50, 40}, 0.8, 20}, {{58, 43}, 0.9, 20});
    QImage image(128, 128, QImage::Format_Alpha8);
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    for (auto _ : state) {
        state.PauseTiming();
        renderer->shutDown();
        if (!renderer->initialize(QSize(1920, 1080)))
            state.SkipWithError("no renderer");
        if (state.range(0) != 0)
            renderer->warmUp();
        state.ResumeTiming();
        renderer->renderPen(image, Tool::PenType::Marker, {}, 1.0F, image.rect(), {}, vertices);
    }
}
BENCHMARK(firstSegment)->ArgName("warm")->Arg(0)->Arg(1)->Iterations(10)->UseRealTime()->Unit(benchmark::kMillisecond);

void loadingTheGrain(benchmark::State &state)
{
    TestSupport::registerModelResources();
    for (auto _ : state)
        benchmark::DoNotOptimize(Model::loadRendererImage(QString::fromLatin1(Model::paperTextureFile), 16384));
}
BENCHMARK(loadingTheGrain)->Unit(benchmark::kMillisecond);

void resizing(benchmark::State &state)
{
    if (!startAt(state, QSize(1920, 1080)))
        return;
    bool larger = false;
    for (auto _ : state) {
        larger = !larger;
        OffscreenRenderer::instance()->resize(QSize(1920, larger ? 1081 : 1080));
    }
}
BENCHMARK(resizing)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
