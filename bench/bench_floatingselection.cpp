// A floating selection of a whole full HD drawing under the pointer: a move of a drag, and the picture with its handles
// painted anew at its new place, into an image of the window's size. The sheet below it is not part of this.

#include "libmodel/strokes/bitmapstroke.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/viewtransform.h"
#include "support/lineart.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr QSize frameSize(1920, 1080);
const QRect frame({0, 0}, frameSize);

UI::ViewTransform viewAt(double zoomLevel, double rotation)
{
    UI::ViewTransform view;
    view.setUsableRect(frame);
    view.setPaperRect(frame);
    view.setZoomLevel(zoomLevel);
    view.rotateTo(rotation);
    return view;
}

Model::FloatingSelection selection()
{
    return {std::make_unique<Model::BitmapStroke>(TestSupport::lineArt(frameSize), frame), frameSize};
}

void dragStep(benchmark::State &state, UI::FloatingZone zone, double zoomLevel, double rotation)
{
    const UI::ViewTransform view = viewAt(zoomLevel, rotation);
    UI::FloatingSelectionView floating;
    floating.setSelection(selection());
    floating.rebuildHandles(view, 1.0);
    QImage window(frameSize, QImage::Format_RGB32);
    window.fill(Qt::white);
    const QPointF press(1700, 900);
    floating.beginDrag(zone, press);
    int step = 0;
    for (auto _ : state) {
        step = (step + 1) % 100;
        floating.dragTo(press - QPointF(3, 2) * step, Qt::NoModifier, view);
        QPainter painter(&window);
        painter.setRenderHint(QPainter::Antialiasing);
        floating.paint(&painter, frame, view, Qt::black);
    }
}

/// From new strokes to the first picture.
void firstPaint(benchmark::State &state)
{
    const UI::ViewTransform view = viewAt(1.0, 0.0);
    QImage window(frameSize, QImage::Format_RGB32);
    for (auto _ : state) {
        state.PauseTiming();
        const Model::FloatingSelection taken = selection();
        state.ResumeTiming();
        UI::FloatingSelectionView floating;
        floating.setSelection(taken);
        floating.rebuildHandles(view, 1.0);
        QPainter painter(&window);
        floating.paint(&painter, frame, view, Qt::black);
    }
}

} // namespace

BENCHMARK_CAPTURE(dragStep, move, UI::FloatingZone::Move, 1.0, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, move_zoomed_out, UI::FloatingZone::Move, 0.8, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, move_turned_view, UI::FloatingZone::Move, 0.9, 10.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, rotate, UI::FloatingZone::Rotate, 1.0, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, scale, UI::FloatingZone::Scale, 1.0, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, scale_and_rotate, UI::FloatingZone::ScaleRotate, 1.0, 33.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragStep, rotate_zoomed_in, UI::FloatingZone::Rotate, 4.0, 0.0)->Unit(benchmark::kMillisecond);
BENCHMARK(firstPaint)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
