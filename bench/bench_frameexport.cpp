// What it costs to have 96 frames of line art, 1920 x 1080 pixels, as image files.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "support/lineart.h"
#include "support/noprogress.h"

#include <QApplication>
#include <QPainter>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace Model;

namespace {

constexpr QSize frame(1920, 1080);
constexpr int frameCount = 96;

/// One layer with a line drawing of its own in every frame.
void fillWithLineArt(Scene &scene)
{
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    auto layer = std::make_shared<StrokeLayer>(QColor(40, 97, 184), frame);
    for (int frameId = 1; frameId < frameCount; ++frameId)
        layer->insertBlankAfter(frameId);
    layer->setName("1");
    const int idx = scene.insertLayer(layer, 0);
    for (int frameId = 1; frameId <= frameCount; ++frameId) {
        const QImage art = TestSupport::lineArt(frame, frameId);
        scene.addStroke(idx, frameId, std::make_unique<BitmapStroke>(art, QRect(QPoint(0, 0), frame)));
    }
}

/// The whole export, with the layers apart for the argument 0 and combined for 1.
void exportFrames(benchmark::State &state, ExportFramesSettings::ImageFormat format)
{
    Scene scene;
    fillWithLineArt(scene);
    const QTemporaryDir folder;
    ExportFramesSettings settings;
    settings.fileName = "walk";
    settings.exportDir = folder.path();
    settings.imageFormat = format;
    settings.combineLayers = state.range(0) != 0;
    TestSupport::NoProgress progress;
    for (auto _ : state) {
        const FrameExportResult result = scene.exportFrames(settings, progress);
        if (result.written != frameCount)
            state.SkipWithError("not all files were written");
    }
}

void exportPng(benchmark::State &state)
{
    exportFrames(state, ExportFramesSettings::ImageFormat::PNG);
}
BENCHMARK(exportPng)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void exportExr(benchmark::State &state)
{
    exportFrames(state, ExportFramesSettings::ImageFormat::OpenEXR);
}
BENCHMARK(exportExr)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

/// The least there is to compare with: the same pictures painted and saved one after the other on one core.
void paintAndSaveOneByOne(benchmark::State &state)
{
    Scene scene;
    fillWithLineArt(scene);
    const QTemporaryDir folder;
    for (auto _ : state) {
        for (int frameId = 1; frameId <= frameCount; ++frameId) {
            QImage image(frame, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            scene.visualLayer(0)->draw(frameId, &painter, image.rect(), false);
            painter.end();
            if (!image.save(folder.filePath(QString::number(frameId)), "png", -1))
                state.SkipWithError("a file was not written");
        }
    }
}
BENCHMARK(paintAndSaveOneByOne)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

/// Only the painting.
void paintOnly(benchmark::State &state)
{
    Scene scene;
    fillWithLineArt(scene);
    for (auto _ : state) {
        for (int frameId = 1; frameId <= frameCount; ++frameId) {
            QImage image(frame, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            scene.visualLayer(0)->draw(frameId, &painter, image.rect(), false);
            benchmark::DoNotOptimize(image.constBits());
        }
    }
}
BENCHMARK(paintOnly)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
