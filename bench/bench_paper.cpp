// From a pen's sample to the repainted widget: the event goes in at the window system's end, the segment is fitted,
// rendered, composed with the frame and painted, and the backing store is handed to the X server. Run it on a screen of
// at least 1700 x 1100, with tools/with-display if need be.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/paper.h"
#include "libui/paper/viewtransform.h"
#include "paintcounter.h"
#include "support/glfixture.h"
#include "support/penstreams.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPointingDevice>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

constexpr QSize frameSize(1920, 1080);
constexpr QSize widgetSize(1600, 1000);

/// A paper over a scene of two layers, with the streams drawn on both.
class Stage
{
public:
    Stage()
    {
        QWindowSystemInterface::registerInputDevice(&m_pen);
        scene().setFrameSize(frameSize, MR::FitMode::FitModeIgnore);
        for (const QColor color : {QColor(184, 60, 40), QColor(40, 97, 184)})
            scene().insertLayer(std::make_shared<Model::StrokeLayer>(color, frameSize), 0);
        scene().setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
        Model::ToolManager::instance()->setCurrentTool(Model::Tool::Type::Pen, 0);
        QObject::connect(&paper, &UI::Paper::strokeEnded, &paper,
                         [this] { scene().addStroke(layer, 1, scene().takeStroke()); });
        paper.installEventFilter(&painted);
        paper.setWindowFlags(Qt::FramelessWindowHint);
        paper.setGeometry(QRect({0, 0}, widgetSize));
        paper.setCurrentScene(&m_scene);
        paper.show();
        settle();
        for (layer = 1; layer >= 0; --layer) {
            for (const TestSupport::PenStream &stream : TestSupport::allPenStreams())
                draw(stream, 100.0 * layer, nullptr);
        }
        layer = 0;
    }

    Model::Scene &scene() { return *m_scene.scene(); }

    /// Replays \a stream on the paper, \a offset pixels aside, and appends each sample's time in microseconds.
    void draw(const TestSupport::PenStream &stream, double offset, std::vector<double> *times)
    {
        for (const Model::Sample &sample : stream.samples) {
            const QPointF onPaper = sample.point + QPointF(400.0 + offset, 200.0);
            const QPointF position = paper.view().paperToWidget().map(onPaper);
            const int paintedBefore = painted.count;
            QElapsedTimer timer;
            timer.start();
            send(position, sample.pressure, Qt::LeftButton);
            QCoreApplication::processEvents();
            const double elapsed = double(timer.nsecsElapsed()) / 1000.0;
            if (times && painted.count > paintedBefore)
                times->push_back(elapsed);
        }
        send({}, 0.0, Qt::NoButton);
        settle();
    }

    void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    UI::Paper paper;
    PaintCounter painted;
    int layer = 0;

private:
    void send(QPointF position, double pressure, Qt::MouseButtons buttons)
    {
        QWindow *window = paper.windowHandle();
        m_clock += TestSupport::sampleIntervalMs;
        QWindowSystemInterface::handleTabletEvent(window, m_clock, &m_pen, position, position + window->position(),
                                                  buttons, pressure, 0, 0, 0.0, 0.0, 0);
        QWindowSystemInterface::flushWindowSystemEvents();
    }

    Model::MRScene m_scene;
    QPointingDevice m_pen{QStringLiteral("bench pen"),
                          77,
                          QInputDevice::DeviceType::Stylus,
                          QPointingDevice::PointerType::Pen,
                          QInputDevice::Capability::Position | QInputDevice::Capability::Pressure,
                          1,
                          3};
    ulong m_clock = 1000;
};

double percentile(std::vector<double> &values, double part)
{
    if (values.empty())
        return 0.0;
    const auto place = values.begin() + std::ptrdiff_t(part * double(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

enum View { Fitted, FullSize, ZoomedIn, Rotated };

void look(Stage &stage, int64_t view)
{
    switch (view) {
    case Fitted:
        stage.paper.fitToView();
        break;
    case FullSize:
        stage.paper.resetView();
        break;
    case ZoomedIn:
        stage.paper.setZoomLevel(2.0);
        break;
    default:
        stage.paper.rotatePaperTo(30.0);
        break;
    }
    stage.settle();
}

void addViews(benchmark::internal::Benchmark *bench)
{
    bench->ArgName("view")->Arg(Fitted)->Arg(FullSize)->Arg(ZoomedIn)->Arg(Rotated)->Unit(benchmark::kMillisecond);
}

void sampleToRepaintedPaper(benchmark::State &state)
{
    Stage stage;
    look(stage, state.range(0));
    std::vector<double> times;
    for (auto _ : state) {
        const size_t before = times.size();
        for (const TestSupport::PenStream &stream : TestSupport::allPenStreams())
            stage.draw(stream, 0.0, &times);
        double sum = 0.0;
        for (size_t i = before; i < times.size(); ++i)
            sum += times[i];
        state.SetIterationTime(sum * 1e-6);
    }
    state.counters["samples"] = double(times.size());
    state.counters["median_us"] = percentile(times, 0.5);
    state.counters["p99_us"] = percentile(times, 0.99);
    state.counters["worst_us"] = percentile(times, 1.0);
}
BENCHMARK(sampleToRepaintedPaper)->Apply(addViews)->UseManualTime()->Iterations(3);

/// What a pan, a zoom or a frame step costs on top of its own work.
void wholePaperRepainted(benchmark::State &state)
{
    Stage stage;
    look(stage, state.range(0));
    for (auto _ : state)
        stage.paper.repaint();
}
BENCHMARK(wholePaperRepainted)->Apply(addViews);

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (!TestSupport::startRenderer(frameSize)) {
        std::cerr << "There is no renderer to measure with.\n";
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
