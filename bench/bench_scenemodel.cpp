// What the sheet's models cost in a scene of 12 layers of 2000 frames: a role of a cell, a changed hold, a drag.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QApplication>

#include <benchmark/benchmark.h>

using namespace Model;

namespace {

constexpr int layerCount = 12;
constexpr int frameCount = 2000;

/// Holds of four frames throughout, but for layer 0, whose first drawing holds 200.
struct Sheet
{
    Sheet()
    {
        scene.setFrameSize(QSize(60, 40), MR::FitMode::FitModeIgnore);
        for (int layerIdx = 0; layerIdx < layerCount; ++layerIdx) {
            auto layer = std::make_shared<StrokeLayer>(Qt::black, scene.frameSize());
            for (int frameId = 1; frameId < frameCount; ++frameId) {
                if (frameId % 4 == 0 && (layerIdx > 0 || frameId >= 200))
                    layer->insertBlankAfter(frameId);
                else
                    layer->insertCloneAfter(frameId);
            }
            layer->setLinked(true);
            scene.insertLayer(layer, layerIdx);
        }
        scene.setFrameRange(1, frameCount, 1, 0);
        source.setScene(&scene);
        model.setSourceModel(&source);
        model.setScene(&scene);
    }

    Scene scene;
    SceneModel source;
    FrameRangeModel model;
};

Sheet &sheet()
{
    static Sheet sheet;
    return sheet;
}

/// One role of one cell; the argument is the role.
void cellRole(benchmark::State &state, const QAbstractItemModel &model)
{
    const int role = static_cast<int>(state.range(0));
    QList<QModelIndex> cells;
    for (int i = 0; i < 64; ++i)
        cells += model.index(i * 31 % frameCount, i % layerCount);
    size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(model.data(cells.at(static_cast<qsizetype>(i++ % 64)), role));
}
void sourceRole(benchmark::State &state)
{
    cellRole(state, sheet().source);
}
BENCHMARK(sourceRole)
    ->Arg(SceneModel::LocalCloneRole)
    ->Arg(SceneModel::KeyDrawingRole)
    ->Arg(SceneModel::BeyondLastRole);
void rangeRole(benchmark::State &state)
{
    cellRole(state, sheet().model);
}
BENCHMARK(rangeRole)->Arg(SceneModel::LocalCloneRole)->Arg(SceneModel::KeyDrawingRole)->Arg(SceneModel::BeyondLastRole);

/// Making the index of a cell.
void rangeIndex(benchmark::State &state)
{
    int i = 0;
    for (auto _ : state) {
        ++i;
        benchmark::DoNotOptimize(sheet().model.index(i % frameCount, i % layerCount));
    }
}
BENCHMARK(rangeIndex);

void backlitRow(benchmark::State &state)
{
    int i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            sheet().model.headerData(++i % frameCount, Qt::Vertical, SceneModel::FrameBacklitRole));
}
BENCHMARK(backlitRow);

/// A changed drawing that 200 cells show, to the signals of both models.
void changedHold(benchmark::State &state)
{
    QList<std::pair<int, int>> cells;
    for (int frameId = 1; frameId <= 200; ++frameId)
        cells.append({frameId, 0});
    int heard = 0;
    QObject::connect(&sheet().model, &QAbstractItemModel::dataChanged, &sheet().model, [&heard] { ++heard; });
    for (auto _ : state)
        emit sheet().scene.drawingsChanged(cells);
    if (heard != 200 * state.iterations())
        state.SkipWithError("not every cell was told");
    QObject::disconnect(&sheet().model, &QAbstractItemModel::dataChanged, &sheet().model, nullptr);
}
BENCHMARK(changedHold)->Unit(benchmark::kMicrosecond);

/// One step of the pointer in a drag; the argument is the mode.
void dragStep(benchmark::State &state)
{
    const auto mode = static_cast<FrameRangeModel::DragMode>(state.range(0));
    sheet().model.beginDrag(mode, sheet().model.index(1000, 3));
    int i = 0;
    for (auto _ : state)
        sheet().model.setDragOffset(++i % 2 ? 500 : -500);
    sheet().model.endDrag();
}
BENCHMARK(dragStep)
    ->Arg(FrameRangeModel::SlideMode)
    ->Arg(FrameRangeModel::AddClonesMode)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
