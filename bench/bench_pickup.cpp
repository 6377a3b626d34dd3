// Half of a full HD drawing of 500 lines encircled, cut out, moved and stamped; and drawings made one bitmap. Lines are
// as a hand draws them in the middle of a picture: 60 to 100 px, a sample every five, with the pencil.

#include "pickupdrawing.h"

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/tools/pentool.h"
#include "support/glfixture.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <utility>
#include <vector>

using namespace PickUpDrawing;

namespace {

constexpr int collapseScale = 2;

using Model::FloatingSelection;
using Model::StrokeDrawing;

std::shared_ptr<StrokeDrawing> copyOf(const StrokeDrawing &drawing)
{
    return std::static_pointer_cast<StrokeDrawing>(drawing.clone());
}

const StrokeDrawing &drawnOnce()
{
    static const std::shared_ptr<StrokeDrawing> drawing = drawingOf(manyLines);
    return *drawing;
}

FloatingSelection pickedUp(StrokeDrawing &drawing, const QPainterPath &path, bool cut)
{
    FloatingSelection selection(drawing.extract(path), frameSize);
    (void)selection.image();
    if (cut)
        drawing.cutPath(path);
    return selection;
}

FloatingSelection::Transform turned()
{
    FloatingSelection::Transform transform;
    transform.rotation = QTransform().rotate(10);
    transform.translation = QTransform::fromTranslate(40, -30);
    return transform;
}

/// From a lasso until the selection floats, after state.range(0) cuts, each within a group of its own.
void lasso(benchmark::State &state)
{
    const Model::PenTool pencil(Model::Tool::PenType::Pencil);
    TestSupport::RandomNumbers random(3);
    const QPainterPath path = halfLasso();
    const auto cut = copyOf(drawnOnce());
    for (int i = 0; i < state.range(0); ++i) {
        cut->cutPath(lassoAt({double(random.between(200, 1700)), double(random.between(200, 900))}, 60, 40));
        cut->addStroke(line(pencil, random));
    }
    for (auto _ : state) {
        state.PauseTiming();
        const auto drawing = copyOf(*cut);
        state.ResumeTiming();
        benchmark::DoNotOptimize(pickedUp(*drawing, path, true));
    }
}

void stamp(benchmark::State &state, bool isMoved, bool isPrepared)
{
    const QPainterPath path = halfLasso();
    for (auto _ : state) {
        state.PauseTiming();
        const auto drawing = copyOf(drawnOnce());
        FloatingSelection selection = pickedUp(*drawing, path, true);
        if (isMoved)
            selection.setTransform(turned());
        while (isPrepared && !selection.prepareStamp(8))
            ;
        state.ResumeTiming();
        drawing->addStroke(selection.stampStroke(collapseScale, nullptr));
    }
}

/// One call while the user thinks.
void prepareStep(benchmark::State &state)
{
    FloatingSelection selection = pickedUp(*copyOf(drawnOnce()), halfLasso(), false);
    bool isMovedOn = false;
    for (auto _ : state) {
        if (!selection.prepareStamp(8))
            continue;
        isMovedOn = !isMovedOn;
        FloatingSelection::Transform next = turned();
        next.translation.translate(isMovedOn ? 10 : 20, 0);
        selection.setTransform(next);
    }
}

void collapse(benchmark::State &state)
{
    const auto drawing = drawingOf(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        const auto copy = copyOf(*drawing);
        state.ResumeTiming();
        copy->collapse(collapseScale, QRect(), nullptr);
    }
}

/// state.range(0) lines one after the other, and all of them off again.
void appendAndRemove(benchmark::State &state)
{
    const Model::PenTool pencil(Model::Tool::PenType::Pencil);
    TestSupport::RandomNumbers random(4);
    std::vector<std::unique_ptr<Model::SingleStroke>> lines;
    for (int i = 0; i < state.range(0); ++i)
        lines.push_back(line(pencil, random));
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::unique_ptr<Model::Stroke>> copies;
        for (const auto &stroke : lines)
            copies.push_back(stroke->clone());
        state.ResumeTiming();
        Model::CompoundStroke compound;
        for (auto &stroke : copies)
            compound.append(std::move(stroke));
        while (compound.removeLast())
            ;
    }
}

void cutAndStamp(StrokeDrawing &drawing, const QPainterPath &path, bool collapses)
{
    FloatingSelection selection = pickedUp(drawing, path, true);
    if (collapses)
        drawing.collapse(collapseScale, QRect(), nullptr);
    selection.setCollapsesOnStamp(collapses);
    if (auto stroke = selection.stampStroke(collapseScale, nullptr))
        drawing.addStroke(std::move(stroke));
}

/// One more round of cutting out and stamping after state.range(0) of them, at one place or anywhere.
void round(benchmark::State &state, bool isAnywhere, bool collapses)
{
    TestSupport::RandomNumbers random(2);
    const auto nextPath = [&] {
        if (!isAnywhere)
            return halfLasso();
        return lassoAt({double(random.between(500, 1400)), double(random.between(300, 800))}, 800, 600);
    };
    const auto drawing = copyOf(drawnOnce());
    for (int i = 0; i < state.range(0); ++i)
        cutAndStamp(*drawing, nextPath(), collapses);
    for (auto _ : state) {
        state.PauseTiming();
        const auto copy = copyOf(*drawing);
        const QPainterPath path = nextPath();
        state.ResumeTiming();
        cutAndStamp(*copy, path, collapses);
    }
    state.counters["strokes"] = drawing->strokes().recursiveCount();
    state.counters["levels"] = drawing->strokes().nesting();
}

} // namespace

BENCHMARK(lasso)->Arg(0)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stamp, in_place, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stamp, moved, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stamp, moved_prepared, true, true)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(prepareStep)->Unit(benchmark::kMillisecond);
BENCHMARK(collapse)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(appendAndRemove)->Arg(16'000)->Arg(60'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(round, one_place, false, false)->Arg(0)->Arg(20)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(round, anywhere, true, false)->Arg(0)->Arg(20)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(round, one_place_collapsed, false, true)->Arg(0)->Arg(1)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(round, anywhere_collapsed, true, true)->Arg(0)->Arg(1)->Arg(50)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (!TestSupport::startRenderer(frameSize))
        return 1;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
