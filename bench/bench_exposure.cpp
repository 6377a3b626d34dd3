// What edits of timing cost in a long scene: 12 layers of 2000 frames at 1920 x 1080, every third cell an original with
// line art, all layers linked, the table models attached as in the program.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/toolmanager.h"
#include "support/glfixture.h"
#include "support/lineart.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cmath>
#include <malloc.h>

using namespace Model;

namespace {

constexpr QSize frame(1920, 1080);
constexpr int layerCount = 12;
constexpr int frameCount = 2000;
constexpr int middle = frameCount / 2;

/// A layer whose originals show copies of one drawing. Copies share their pixels, which nothing here changes.
std::shared_ptr<StrokeLayer> longLayer(const Drawing &drawing)
{
    auto layer = std::make_shared<StrokeLayer>(Qt::black, frame);
    QList<std::shared_ptr<LayerItem>> cells;
    for (int i = 0; i < frameCount; ++i) {
        const bool isOriginal = i % 3 == 0;
        cells.append(std::make_shared<LayerItem>(isOriginal ? LayerItem::Type::Original : LayerItem::Type::Clone,
                                                 isOriginal ? drawing.clone() : cells.last()->drawing));
    }
    layer->setFrames(cells);
    layer->setLinked(true);
    return layer;
}

void fill(MRScene &mrScene)
{
    Scene &scene = *mrScene.scene();
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    StrokeDrawing drawing(frame);
    drawing.addStroke(std::make_unique<BitmapStroke>(TestSupport::lineArt(frame), QRect(QPoint(0, 0), frame)));
    for (int i = 0; i < layerCount; ++i)
        scene.insertLayer(longLayer(drawing), i);
    scene.setFrameRange(1, frameCount, middle, 0);
}

void addFrame(benchmark::State &state)
{
    MRScene mrScene;
    fill(mrScene);
    for (auto _ : state) {
        const auto changes = mrScene.scene()->addBlankDrawing(0, middle);
        state.PauseTiming();
        mrScene.scene()->undoChanges(changes);
        state.ResumeTiming();
    }
}
BENCHMARK(addFrame)->Unit(benchmark::kMicrosecond);

void undoAddFrame(benchmark::State &state)
{
    MRScene mrScene;
    fill(mrScene);
    for (auto _ : state) {
        state.PauseTiming();
        const auto changes = mrScene.scene()->addBlankDrawing(0, middle);
        state.ResumeTiming();
        mrScene.scene()->undoChanges(changes);
    }
}
BENCHMARK(undoAddFrame)->Unit(benchmark::kMicrosecond);

void deleteFrame(benchmark::State &state)
{
    MRScene mrScene;
    fill(mrScene);
    for (auto _ : state) {
        const auto changes = mrScene.scene()->deleteFrame(0, middle);
        state.PauseTiming();
        mrScene.scene()->undoChanges(changes);
        state.ResumeTiming();
    }
}
BENCHMARK(deleteFrame)->Unit(benchmark::kMicrosecond);

void undoDeleteFrame(benchmark::State &state)
{
    MRScene mrScene;
    fill(mrScene);
    for (auto _ : state) {
        state.PauseTiming();
        const auto changes = mrScene.scene()->deleteFrame(0, middle);
        state.ResumeTiming();
        mrScene.scene()->undoChanges(changes);
    }
}
BENCHMARK(undoDeleteFrame)->Unit(benchmark::kMicrosecond);

/// A drawn line of about 200 x 200 pixels that goes to a drawing shown at 200 frames: in holds, and with distant
/// clones in every layer. The argument is the number of distant clones among them.
void commitOnManyFrames(benchmark::State &state)
{
    constexpr int shownAt = 200;
    MRScene mrScene;
    fill(mrScene);
    Scene &scene = *mrScene.scene();
    const int distantClones = static_cast<int>(state.range(0));
    const CellRef origin = scene.originOfFrame(0, 1);
    for (int i = 0; i < distantClones; ++i)
        scene.makeDistantClone(i % layerCount, 2 + 3 * (i / layerCount) + 300, origin);
    scene.setLayerLinked(0, false);
    scene.addCloneDrawings(0, 1, shownAt - 1 - distantClones);
    for (auto _ : state) {
        state.PauseTiming();
        scene.beginStroke({QPointF(800, 400), 0.5, 0});
        for (int i = 1; i <= 60; ++i)
            scene.addSample({QPointF(800 + 3.3 * i, 500 + 100 * std::sin(i / 10.0)), 0.5, 0});
        auto stroke = scene.takeStroke();
        state.ResumeTiming();
        scene.addStroke(0, 1, std::move(stroke));
        state.PauseTiming();
        scene.removeLastStroke(0, 1);
        state.ResumeTiming();
    }
}
BENCHMARK(commitOnManyFrames)->Arg(0)->Arg(199)->Unit(benchmark::kMicrosecond);

/// Bytes that the process has allocated and not given back.
qint64 bytesInUse()
{
    const auto info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

/// A line across the sheet, as a pen draws it: 100 samples.
std::unique_ptr<Stroke> lineAcross(Scene &scene, int number)
{
    constexpr int samples = 100;
    const double top = 80.0 + 75.0 * number;
    scene.beginStroke({QPointF(100, top), 0.5, 0});
    for (int i = 1; i < samples; ++i)
        scene.addSample({QPointF(100 + 17.0 * i, top + 60 * std::sin(i / 9.0)), 0.5, 0});
    return scene.takeStroke();
}

/// Bytes for each of 20 drawings of twelve lines across the sheet, and for each of 200 holds and 200 distant clones.
void memoryOfDrawings(benchmark::State &state)
{
    constexpr int drawings = 20;
    constexpr int lines = 12;
    constexpr int repeats = 200;
    for (auto _ : state) {
        Scene scene;
        scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
        const int layer = scene.insertLayer(std::make_shared<StrokeLayer>(Qt::black, frame), 0);
        scene.setFrameRange(1, 1, 1, layer);
        const qint64 before = bytesInUse();
        for (int i = 1; i <= drawings; ++i) {
            if (i > 1)
                scene.addBlankDrawing(layer, i - 1);
            for (int line = 0; line < lines; ++line)
                scene.addStroke(layer, i, lineAcross(scene, line));
        }
        const qint64 drawn = bytesInUse();
        scene.appendCloneDrawings(layer, drawings, repeats);
        const qint64 held = bytesInUse();
        for (int i = 1; i <= repeats; ++i)
            scene.makeDistantClone(layer, drawings + i, scene.originOfFrame(layer, 1));
        const qint64 repeated = bytesInUse();
        state.counters["bytesPerDrawing"] = double(drawn - before) / drawings;
        state.counters["bytesPerHold"] = double(held - drawn) / repeats;
        state.counters["bytesPerDistantClone"] = double(repeated - drawn) / repeats;
    }
}
BENCHMARK(memoryOfDrawings)->Iterations(1)->Unit(benchmark::kMillisecond);

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
