// What drawing and undo cost: nothing in here may grow with the length of a stroke or the size of the frame.

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/pentool.h"
#include "support/glfixture.h"
#include "support/penstreams.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <random>

using namespace Model;

namespace {

const QSize frame(1920, 1080);

/// One more sample and its pixels, on a stroke that has state.range(0) samples already.
void oneMoreSample(benchmark::State &state)
{
    const PenTool pen(Tool::PenType::Pencil);
    const auto before = size_t(state.range(0));
    constexpr size_t more = 50;
    // The measured samples are the same whatever came before them, so that only the length differs.
    const auto samples = TestSupport::longWalk(int(before)).samples;
    const auto measured = TestSupport::longWalk(int(more)).samples;
    for (auto unused : state) {
        state.PauseTiming();
        SingleStroke stroke(frame, &pen);
        for (const Sample &sample : samples)
            stroke.addSample(sample);
        stroke.addSample(measured.front());
        stroke.finish();
        stroke.renderLatestSegment();
        state.ResumeTiming();
        for (const Sample &sample : measured) {
            stroke.addSample(sample);
            stroke.renderLatestSegment();
        }
    }
    state.SetItemsProcessed(state.iterations() * int64_t(more));
}
BENCHMARK(oneMoreSample)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

/// What a pen event costs in the middle of a stroke of radius state.range(0): the newest segment into the live image.
void latestSegment(benchmark::State &state)
{
    PenTool pen(static_cast<Tool::PenType>(state.range(1)));
    const auto radius = double(state.range(0));
    pen.setSizeRangeLimits(2 * radius, 2 * radius);
    const auto samples = TestSupport::longWalk(2000).samples;
    SingleStroke stroke(frame, &pen);
    stroke.addSample(samples.front());
    stroke.renderLatestSegment();
    size_t next = 1;
    for (auto unused : state) {
        state.PauseTiming();
        const size_t before = stroke.segments().size();
        while (stroke.segments().size() == before)
            stroke.addSample(samples[next++ % samples.size()]);
        state.ResumeTiming();
        benchmark::DoNotOptimize(stroke.renderLatestSegment());
    }
}
BENCHMARK(latestSegment)
    ->ArgNames({"radius", "pen"})
    ->Args({20, 1})
    ->Args({20, 0})
    ->Args({2, 0})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// Fitting alone, without pixels.
void fitOnly(benchmark::State &state)
{
    const PenTool pen(Tool::PenType::Pencil);
    const auto samples = TestSupport::longWalk(int(state.range(0))).samples;
    for (auto unused : state) {
        SingleStroke stroke(&pen);
        for (const Sample &sample : samples)
            stroke.addSample(sample);
        benchmark::DoNotOptimize(stroke.segments().size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(fitOnly)->Arg(100)->Arg(10000);

/// A curved stroke of about 200 x 200 pixels somewhere in the frame, from every \a step-th of 900 samples: at 9 it is
/// drawn in half a second, at 4 in more than one.
std::unique_ptr<SingleStroke> someStroke(const PenTool &pen, std::mt19937 &random, size_t step = 9)
{
    const auto stream = TestSupport::slowCurve();
    const QPointF shift(double(random() % 1700), double(random() % 860));
    auto stroke = std::make_unique<SingleStroke>(&pen);
    for (size_t i = 0; i < stream.samples.size(); i += step) {
        Sample sample = stream.samples[i];
        // The curve lies within (120, 140) and (540, 400).
        sample.point = QPointF((sample.point.x() - 120) * 200 / 420, (sample.point.y() - 140) * 200 / 260) + shift;
        stroke->addSample(sample);
    }
    stroke->finish();
    return stroke;
}

/// Takes the newest of state.range(0) strokes back.
void undoLastStroke(benchmark::State &state)
{
    const PenTool pen(Tool::PenType::Pencil);
    std::mt19937 random(1);
    StrokeDrawing drawing(frame);
    const auto step = size_t(state.range(1));
    for (int64_t i = 0; i + 1 < state.range(0); ++i)
        drawing.addStroke(someStroke(pen, random, step));
    for (auto unused : state) {
        state.PauseTiming();
        drawing.addStroke(someStroke(pen, random, step));
        state.ResumeTiming();
        benchmark::DoNotOptimize(drawing.removeLastStroke());
    }
}
BENCHMARK(undoLastStroke)->Args({10, 9})->Args({500, 9})->Args({500, 4})->Unit(benchmark::kMillisecond);

void addStrokeToDrawing(benchmark::State &state)
{
    const PenTool pen(Tool::PenType::Pencil);
    std::mt19937 random(1);
    StrokeDrawing drawing(frame);
    for (int i = 0; i < 500; ++i)
        drawing.addStroke(someStroke(pen, random));
    for (auto unused : state) {
        state.PauseTiming();
        auto stroke = someStroke(pen, random);
        state.ResumeTiming();
        drawing.addStroke(std::move(stroke));
        state.PauseTiming();
        drawing.removeLastStroke();
        state.ResumeTiming();
    }
}
BENCHMARK(addStrokeToDrawing)->Unit(benchmark::kMillisecond);

/// A line of about 25 segments, \a side pixels wide and high, somewhere in the frame.
std::unique_ptr<SingleStroke> smallStroke(const PenTool &pen, std::mt19937 &random, int side)
{
    const auto stream = TestSupport::slowCurve();
    const QPointF shift(double(random() % unsigned(frame.width() - side)),
                        double(random() % unsigned(frame.height() - side)));
    constexpr size_t step = 36;
    auto stroke = std::make_unique<SingleStroke>(&pen);
    for (size_t i = 0; i < stream.samples.size(); i += step) {
        Sample sample = stream.samples[i];
        sample.point = QPointF((sample.point.x() - 120) * side / 420, (sample.point.y() - 140) * side / 260) + shift;
        stroke->addSample(sample);
    }
    stroke->finish();
    return stroke;
}

/// Draws state.range(0) lines of state.range(1) pixels with pen state.range(2), all at once as a rebuild does, at scale
/// state.range(3).
void manyLines(benchmark::State &state)
{
    const PenTool pen(static_cast<Tool::PenType>(state.range(2)));
    std::mt19937 random(1);
    CompoundStroke lines;
    for (int64_t i = 0; i < state.range(0); ++i)
        lines.append(smallStroke(pen, random, int(state.range(1))));
    const auto scale = int(state.range(3));
    const QTransform transform = QTransform::fromScale(scale, scale);
    for (auto unused : state) {
        QImage image(frame * scale, QImage::Format_Alpha8);
        image.fill(0);
        lines.render(image, image.rect(), transform, {}, scale);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(manyLines)
    ->ArgNames({"lines", "side", "pen", "scale"})
    ->Args({500, 80, 0, 1})
    ->Args({500, 80, 1, 1})
    ->Args({5000, 60, 0, 2})
    ->Args({5000, 60, 1, 2})
    ->MeasureProcessCPUTime() // the software renderer works in threads of its own
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (!TestSupport::startRenderer(frame))
        return 1;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
