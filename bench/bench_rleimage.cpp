#include "libmodel/strokes/rleimage.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

namespace {

/// A drawing of curved lines, as an animator's: softly edged, a few hundredths of the frame inked.
QImage lineArt(int lines)
{
    QRandomGenerator random(5);
    QImage image(1920, 1080, QImage::Format_Alpha8);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto point = [&random] { return QPointF(random.bounded(1920), random.bounded(1080)); };
    for (int i = 0; i < lines; ++i) {
        QPainterPath path(point());
        path.cubicTo(point(), point(), point());
        painter.setPen(QPen(Qt::black, 2 + random.bounded(5)));
        painter.drawPath(path);
    }
    return image;
}

double inkedPercent(const QImage &image)
{
    qint64 inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            inked += image.constScanLine(y)[x] != 0 ? 1 : 0;
    }
    return 100.0 * static_cast<double>(inked) / (image.width() * image.height());
}

void encoding(benchmark::State &state)
{
    const QImage image = lineArt(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const Model::RleImage encoded(image);
        benchmark::DoNotOptimize(encoded.data().constData());
    }
    state.SetBytesProcessed(state.iterations() * image.width() * image.height());
    state.counters["inked_percent"] = inkedPercent(image);
    state.counters["bytes"] = static_cast<double>(Model::RleImage(image).data().size());
}
BENCHMARK(encoding)->Arg(7)->Arg(13)->Arg(60);

void decoding(benchmark::State &state)
{
    const QImage image = lineArt(static_cast<int>(state.range(0)));
    const Model::RleImage encoded(image);
    for (auto _ : state) {
        const QImage decoded = encoded.toImage();
        benchmark::DoNotOptimize(decoded.constBits());
    }
    state.SetBytesProcessed(state.iterations() * image.width() * image.height());
    state.counters["inked_percent"] = inkedPercent(image);
}
BENCHMARK(decoding)->Arg(7)->Arg(13)->Arg(60);

} // namespace

BENCHMARK_MAIN();
