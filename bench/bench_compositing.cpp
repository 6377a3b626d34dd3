#include "libmodel/strokes/compositing.h"

#include <QImage>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

namespace {

constexpr int width = 1920;
constexpr int height = 1080;

/// About the given share of the pixels inked, in runs of 1 to 12 as the lines of a drawing leave them in a row.
QImage lineArt(int percent, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(width, height, QImage::Format_Alpha8);
    image.fill(0);
    constexpr double meanRun = 6.5;
    const int runsPerRow = static_cast<int>(width * percent / 100.0 / meanRun);
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < runsPerRow; ++i) {
            const int start = random.bounded(width - 12);
            const int end = start + 1 + random.bounded(12);
            for (int x = start; x < end; ++x)
                image.scanLine(y)[x] = static_cast<uchar>(1 + random.bounded(255));
        }
    }
    return image;
}

QImage dense()
{
    QRandomGenerator random(7);
    QImage image(width, height, QImage::Format_Alpha8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.scanLine(y)[x] = static_cast<uchar>(1 + random.bounded(255));
    }
    return image;
}

void compositing(benchmark::State &state, const QImage &source, bool isPen)
{
    QImage destination = lineArt(30, 1);
    for (auto _ : state) {
        Model::composite(destination, source, source.rect(), isPen);
        benchmark::DoNotOptimize(destination.constBits());
    }
    state.SetBytesProcessed(state.iterations() * qint64(width) * height);
}
BENCHMARK_CAPTURE(compositing, pen_dense, dense(), true);
BENCHMARK_CAPTURE(compositing, pen_sparse, lineArt(3, 2), true);
BENCHMARK_CAPTURE(compositing, eraser_dense, dense(), false);
BENCHMARK_CAPTURE(compositing, eraser_sparse, lineArt(3, 2), false);

void maximum(benchmark::State &state, const QImage &source)
{
    QImage destination = lineArt(30, 1);
    for (auto _ : state) {
        Model::compositeMax(destination, source, source.rect(), {});
        benchmark::DoNotOptimize(destination.constBits());
    }
    state.SetBytesProcessed(state.iterations() * qint64(width) * height);
}
BENCHMARK_CAPTURE(maximum, dense, dense());
BENCHMARK_CAPTURE(maximum, sparse, lineArt(3, 2));

} // namespace

BENCHMARK_MAIN();
