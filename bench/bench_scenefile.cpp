// What saving and opening a long scene costs, beside what Qt's base64 and XML alone take for the same text: 1,000
// drawings of 50 strokes at 1920 x 1080 pixels. And the memory that a process needs to open it.

#include "libmodel/files/scenereader.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/rleimage.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/pentool.h"
#include "support/glfixture.h"
#include "support/noprogress.h"
#include "support/penstreams.h"

#include <QApplication>
#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>

#include <malloc.h>

using namespace Model;

namespace {

constexpr QSize frame(1920, 1080);
constexpr int drawingCount = 1000;
constexpr int originalCount = 20;
constexpr int strokeCount = 50;
const QString openOption = QStringLiteral("--open");

/// The strokes of one drawing, all moved by \a shift: pieces of the recorded pen movements somewhere in the frame, each
/// drawn in a quarter to half a second.
std::vector<std::unique_ptr<SingleStroke>> strokesOf(int variant, QPoint shift)
{
    const PenTool pen(Tool::PenType::Pencil);
    const std::vector<TestSupport::PenStream> movements = TestSupport::allPenStreams();
    std::mt19937 random(static_cast<unsigned>(variant));
    std::vector<std::unique_ptr<SingleStroke>> strokes;
    for (int i = 0; i < strokeCount; ++i) {
        const auto &samples = movements[random() % movements.size()].samples;
        const size_t length = 50 + random() % 50;
        const size_t first = random() % (samples.size() - std::min(samples.size() - 1, length));
        const QPointF place(double(random() % 1500) - 200, double(random() % 800) - 200);
        auto stroke = std::make_unique<SingleStroke>(&pen);
        for (size_t s = first; s < std::min(samples.size(), first + length); ++s) {
            Sample sample = samples[s];
            sample.point += place + shift;
            stroke->addSample(sample);
        }
        stroke->finish();
        strokes.push_back(std::move(stroke));
    }
    return strokes;
}

std::shared_ptr<StrokeDrawing> drawnWithRenderer(int variant)
{
    auto drawing = std::make_shared<StrokeDrawing>(frame);
    for (auto &stroke : strokesOf(variant, {}))
        drawing->addStroke(std::move(stroke));
    return drawing;
}

/// \a original as it looks when all of it is drawn a little beside: strokes fitted anew, pixels moved.
std::shared_ptr<StrokeDrawing> moved(const StrokeDrawing &original, int variant, QPoint shift)
{
    CompoundStroke strokes;
    for (auto &stroke : strokesOf(variant, shift))
        strokes.append(std::move(stroke));
    QByteArray block;
    QDataStream out(&block, QIODevice::WriteOnly);
    out.setFloatingPointPrecision(QDataStream::SinglePrecision);
    out << frame;
    strokes.write(out);
    out << qint32(2);
    RleImage(original.image().copy(original.image().rect().translated(-shift))).write(out);
    auto drawing = std::make_shared<StrokeDrawing>(frame);
    QDataStream in(block);
    in.setFloatingPointPrecision(QDataStream::SinglePrecision);
    if (!drawing->read(in))
        qFatal("A moved drawing could not be read");
    return drawing;
}

std::unique_ptr<Scene> longScene()
{
    auto scene = std::make_unique<Scene>();
    scene->setFrameSize(frame, MR::FitMode::FitModeIgnore);
    std::vector<std::shared_ptr<StrokeDrawing>> originals;
    for (int i = 0; i < originalCount; ++i)
        originals.push_back(drawnWithRenderer(i));
    QList<std::shared_ptr<LayerItem>> cells;
    for (int i = 0; i < drawingCount; ++i) {
        const int variant = i % originalCount;
        const QPoint shift(i / originalCount % 7 * 3, i / originalCount / 7 * 2);
        cells.append(
            std::make_shared<LayerItem>(LayerItem::Type::Original, moved(*originals[size_t(variant)], variant, shift)));
    }
    auto layer = std::make_shared<StrokeLayer>(QColor(40, 97, 184), frame);
    layer->setFrames(cells);
    scene->insertLayer(layer, 0);
    scene->setFrameRange(1, drawingCount, 1, 0);
    return scene;
}

QByteArray saved(Scene &scene)
{
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    TestSupport::NoProgress progress;
    if (SceneWriter(&scene, progress).write(&buffer) != FileResult::Success)
        qFatal("The scene could not be written");
    return file;
}

/// The scene and what it becomes, made once.
struct Material
{
    QTemporaryDir folder;
    QString fileName = folder.filePath(QStringLiteral("long.mr"));
    std::unique_ptr<Scene> scene = longScene();
    std::vector<QByteArray> blocks; ///< the payload of each drawing
    qint64 payload = 0;
    qint64 fileSize = 0;

    Material()
    {
        const QByteArray text = saved(*scene);
        fileSize = text.size();
        QFile file(fileName);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("The scene file could not be kept");
        QXmlStreamReader xml(text);
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"strokes") {
                blocks.push_back(QByteArray::fromBase64(xml.readElementText().toLatin1()));
                payload += blocks.back().size();
            }
        }
    }
};

Material &material()
{
    static Material made;
    return made;
}

void count(benchmark::State &state)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * material().payload);
    state.counters["payload_MB"] = double(material().payload) / 1e6;
    state.counters["file_MB"] = double(material().fileSize) / 1e6;
}

void save(benchmark::State &state)
{
    Scene &scene = *material().scene;
    for (auto unused : state)
        benchmark::DoNotOptimize(saved(scene).size());
    count(state);
}
BENCHMARK(save)->Unit(benchmark::kMillisecond)->Iterations(2)->Repetitions(3)->ReportAggregatesOnly();

/// Base64 and XML for the same payload.
void saveFloor(benchmark::State &state)
{
    for (auto unused : state) {
        QByteArray text;
        QBuffer buffer(&text);
        buffer.open(QIODevice::WriteOnly);
        QXmlStreamWriter xml(&buffer);
        xml.setAutoFormatting(true);
        xml.writeStartDocument();
        xml.writeStartElement("layer");
        for (const QByteArray &block : material().blocks)
            xml.writeTextElement("strokes", QString::fromLatin1(block.toBase64()));
        xml.writeEndDocument();
        benchmark::DoNotOptimize(text.size());
    }
    count(state);
}
BENCHMARK(saveFloor)->Unit(benchmark::kMillisecond)->Iterations(2)->Repetitions(3)->ReportAggregatesOnly();

void open(benchmark::State &state)
{
    TestSupport::NoProgress progress;
    for (auto unused : state) {
        Scene scene;
        QFile file(material().fileName);
        if (!file.open(QIODevice::ReadOnly) || SceneReader(&scene, progress).read(&file) != FileResult::Success)
            qFatal("The scene could not be read");
        benchmark::DoNotOptimize(scene.layerCount());
        state.PauseTiming();
        while (scene.layerCount() > 0)
            scene.removeLayer(scene.layerCount() - 1);
        state.ResumeTiming();
    }
    count(state);
}
BENCHMARK(open)->Unit(benchmark::kMillisecond)->Iterations(2)->Repetitions(3)->ReportAggregatesOnly();

/// XML and base64 for the same text.
void openFloor(benchmark::State &state)
{
    for (auto unused : state) {
        QFile file(material().fileName);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("The scene file is gone");
        QXmlStreamReader xml(&file);
        qint64 bytes = 0;
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"strokes")
                bytes += QByteArray::fromBase64(xml.readElementText().toLatin1()).size();
        }
        if (bytes != material().payload)
            qFatal("The floor has read something else");
    }
    count(state);
}
BENCHMARK(openFloor)->Unit(benchmark::kMillisecond)->Iterations(2)->Repetitions(3)->ReportAggregatesOnly();

// The two halves of the floors, to tell where a better library would pay.

void base64Encode(benchmark::State &state)
{
    for (auto unused : state) {
        for (const QByteArray &block : material().blocks)
            benchmark::DoNotOptimize(block.toBase64().size());
    }
    count(state);
}
BENCHMARK(base64Encode)->Unit(benchmark::kMillisecond)->Iterations(2);

void base64Decode(benchmark::State &state)
{
    std::vector<QByteArray> texts;
    for (const QByteArray &block : material().blocks)
        texts.push_back(block.toBase64());
    for (auto unused : state) {
        for (const QByteArray &text : texts)
            benchmark::DoNotOptimize(QByteArray::fromBase64(text).size());
    }
    count(state);
}
BENCHMARK(base64Decode)->Unit(benchmark::kMillisecond)->Iterations(2);

qint64 kibOf(const QByteArray &key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

/// Opens \a fileName in this process and prints what it takes, in KiB: before, peak while opening, after.
int openAndTell(const QString &fileName)
{
    const qint64 before = kibOf("VmRSS");
    Scene scene;
    TestSupport::NoProgress progress;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || SceneReader(&scene, progress).read(&file) != FileResult::Success)
        return 1;
    const qint64 peak = kibOf("VmHWM");
    malloc_trim(0); // what has been freed is not the scene's
    std::printf("%lld %lld %lld\n", static_cast<long long>(before), static_cast<long long>(peak),
                static_cast<long long>(kibOf("VmRSS")));
    return 0;
}

/// The memory of a fresh process that opens the file. `peak_to_need` is its peak while opening, over what the opened
/// scene and the file take together; both without what the process had before.
void openMemory(benchmark::State &state)
{
    constexpr double mib = 1024.0;
    QList<QByteArray> figures;
    for (auto unused : state) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {openOption, material().fileName});
        if (!child.waitForFinished(-1) || child.exitCode() != 0)
            qFatal("The child could not open the scene");
        figures = child.readAllStandardOutput().split(' ');
    }
    const double before = figures.value(0).toDouble() / mib;
    const double peak = figures.value(1).toDouble() / mib - before;
    const double scene = figures.value(2).toDouble() / mib - before;
    const double file = double(material().fileSize) / mib / mib;
    state.counters["peak_MiB"] = peak;
    state.counters["scene_MiB"] = scene;
    state.counters["file_MiB"] = file;
    state.counters["peak_to_need"] = peak / (scene + file);
    state.counters["peak_to_scene"] = peak / scene;
}
BENCHMARK(openMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (!TestSupport::startRenderer(frame))
        return 1;
    if (application.arguments().value(1) == openOption)
        return openAndTell(application.arguments().value(2));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
