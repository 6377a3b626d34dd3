#include "libmodel/files/scenereader.h"

#include "libmodel/base/dialogprogress.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/files/layerreader.h"
#include "libmodel/files/limits.h"
#include "libmodel/files/linkresolver.h"
#include "libmodel/files/readingstate.h"
#include "libmodel/files/readnumber.h"
#include "libmodel/files/xmlguard.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/scene/firstlayers.h"
#include "libmodel/scene/scene.h"

#include <QSize>
#include <QStringTokenizer>
#include <QXmlStreamReader>

#include <algorithm>
#include <limits>
#include <optional>

namespace Model {

namespace {

/// Thrown where a cancel is noticed, caught in SceneReader::read().
class ReadingCancelledException
{
};

/// What the attributes of `scene` say that can only be applied once all layers are there.
struct Position
{
    int rangeFirst = 0;
    std::optional<int> rangeLast; ///< none: the last frame of the scene
    int activeFrame = 1;
    int activeLayer = 0;
};

bool isUtf8(QStringView encoding)
{
    return encoding.isEmpty() || encoding.compare(u"UTF-8", Qt::CaseInsensitive) == 0;
}

std::optional<int> intAttribute(const QXmlStreamAttributes &attributes, const QString &name)
{
    if (!attributes.hasAttribute(name))
        return std::nullopt;
    return attributes.value(name).toInt();
}

/// True for digits with or without a sign, however many they are.
bool isInteger(QStringView text)
{
    if (text.startsWith(u'-') || text.startsWith(u'+'))
        text = text.sliced(1);
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// The number of drawings that the file tells, if it tells any that there can be.
std::optional<int> totalIn(const QXmlStreamAttributes &attributes)
{
    const QStringView text = attributes.value("totalNumberOfDrawings").trimmed();
    const int total = text.toInt(); // 0 beyond 32 bits
    if (!isInteger(text) || total < 0)
        return std::nullopt;
    return std::min(total, std::numeric_limits<int>::max() - 1);
}

} // namespace

class SceneReader::Private
{
public:
    Private(Scene *filledScene, Progress &reportedTo) : scene(*filledScene), progress(reportedTo) {}
    Private(Scene *filledScene, std::unique_ptr<DialogProgress> ownDialog) : Private(filledScene, *ownDialog)
    {
        dialog = std::move(ownDialog);
    }

    void readDocument(QIODevice *device);
    void readRoot();
    void readScene();
    bool countScene();
    void readSceneAttributes();
    void readLayerNumber(const QXmlStreamAttributes &attributes);
    void readFrameRate(const QXmlStreamAttributes &attributes);
    void readFrameSize(const QXmlStreamAttributes &attributes);
    [[nodiscard]] bool takeFrame(QSize size);
    void readFrameRange(const QXmlStreamAttributes &attributes);
    void readLayers();
    void readLayersChild(LayerReader &layerReader);
    void readOrder(const QString &text);
    void removeAllLayers();
    void addLayer(LayerReader &layerReader);
    void makeLinks();
    void applyOrder();
    void applyPosition();
    void throwIfCancelled() const;

    Scene &scene;
    std::unique_ptr<DialogProgress> dialog; ///< null where somebody else's progress is reported to
    Progress &progress;
    std::optional<XmlGuard> guard; ///< in front of the device that is read
    QXmlStreamReader xml;
    bool endsEarly = false;              ///< the error is that the data end in the middle
    std::optional<FilePlace> errorPlace; ///< of an error that was noticed behind it
    ReadingState state;
    MemoryBudget wholeMemory;       ///< for a scene
    MemoryBudget memoryBesideFrame; ///< what of it remains for the pictures in the file
    int scenesRead = 0;
    int layersRead = 0;   ///< of all scenes
    int layersInList = 0; ///< those of them that stand in the present `layers` element
    Position position;
    QList<int> order;                 ///< layer indices in display order
    std::optional<int> totalDrawings; ///< the number of cells as the file tells it
};

void SceneReader::Private::readDocument(QIODevice *device)
{
    xml.setDevice(&guard.emplace(device));
    // A prefix is no more than a part of a name here, and looking after many of them costs the parser dear. Hence all
    // names are asked for as they stand in the file.
    xml.setNamespaceProcessing(false);
    readRoot();
    // The parser knows no more than that the data ended there.
    if (xml.hasError() && !guard->refusal().isEmpty() && endsEarly)
        xml.raiseError(guard->refusal());
}

void SceneReader::Private::readRoot()
{
    xml.readNext();
    if (!isUtf8(xml.documentEncoding())) {
        xml.raiseError(tr("The file is not in UTF-8"));
        return;
    }
    const bool isScene = xml.readNextStartElement() && xml.qualifiedName() == u"mr" &&
                         xml.attributes().value("version") == FormatWords::version;
    if (!isScene) {
        endsEarly = xml.error() == QXmlStreamReader::PrematureEndOfDocumentError;
        xml.raiseError(tr("The file is not an MR version 0.4 file"));
        return;
    }
    while (xml.readNextStartElement()) {
        if (xml.qualifiedName() == u"scene")
            readScene();
        else
            xml.skipCurrentElement();
    }
    // Nothing but comments may follow.
    while (!xml.atEnd())
        xml.readNext();
    endsEarly = xml.error() == QXmlStreamReader::PrematureEndOfDocumentError;
    if (scenesRead == 0 && !xml.hasError()) {
        addMissingLayers(scene);
        applyPosition();
    }
}

void SceneReader::Private::readScene()
{
    progress.reset();
    if (!countScene())
        return;
    if (scenesRead > 1)
        removeAllLayers(); // otherwise they would be brought to the size of the frames to come
    readSceneAttributes();
    if (xml.hasError())
        return;
    // Without a renderer the strokes stay without pixels, and the application has told the user at its start.
    OffscreenRenderer::instance()->initialize(scene.frameSize());
    while (xml.readNextStartElement()) {
        if (xml.qualifiedName() == u"layers")
            readLayers();
        else
            xml.skipCurrentElement();
    }
    throwIfCancelled();
    if (xml.hasError())
        return;
    addMissingLayers(scene);
    applyPosition();
    progress.finish();
    throwIfCancelled();
}

// The last of several scenes counts, and each may ask for another frame size.
bool SceneReader::Private::countScene()
{
    constexpr int maximumScenes = 4;
    if (++scenesRead <= maximumScenes)
        return true;
    xml.raiseError(tr("The file has more than %1 scenes").arg(maximumScenes));
    return false;
}

void SceneReader::Private::readSceneAttributes()
{
    const QXmlStreamAttributes attributes = xml.attributes();
    position = Position();
    readLayerNumber(attributes);
    readFrameSize(attributes);
    readFrameRange(attributes);
    position.activeFrame = intAttribute(attributes, "activeFrameNumber").value_or(1);
    position.activeLayer = intAttribute(attributes, "activeLayerIndex").value_or(0);
    readFrameRate(attributes);

    totalDrawings = totalIn(attributes);
    if (totalDrawings)
        progress.setSteps(*totalDrawings + 1, 0);
}

void SceneReader::Private::readLayerNumber(const QXmlStreamAttributes &attributes)
{
    const auto number = intAttribute(attributes, "highestUsedLayerNumber");
    if (!number)
        return;
    if (*number >= 0 && *number <= Limits::maximumLayerNumber)
        scene.setHighestUsedLayerNumber(*number);
    else
        xml.raiseError(
            tr("The layer number %1 in the file is not between 0 and %2").arg(*number).arg(Limits::maximumLayerNumber));
}

void SceneReader::Private::readFrameRate(const QXmlStreamAttributes &attributes)
{
    const NumberInText fps = numberIn(attributes.value("fps"), std::numeric_limits<double>::infinity());
    if (fps.isRefused)
        xml.raiseError(tr("The frame rate in the file is not a number"));
    else if (fps.value)
        scene.setFrameRate(*fps.value);
}

void SceneReader::Private::readFrameSize(const QXmlStreamAttributes &attributes)
{
    const auto width = intAttribute(attributes, "frameWidth");
    const auto height = intAttribute(attributes, "frameHeight");
    if (!width || !height)
        return;
    const auto isUsable = [](int side) { return side >= 1 && side <= Scene::maximumFrameSide; };
    const QSize size(*width, *height);
    if (!isUsable(*width) || !isUsable(*height))
        xml.raiseError(tr("The frame size in the file is not between 1 and %1 pixels").arg(Scene::maximumFrameSide));
    else if (!takeFrame(size))
        xml.raiseError(tr("Frames of %1 x %2 pixels need more memory than there is").arg(*width).arg(*height));
    else
        scene.setFrameSize(size, MR::FitMode::FitModeIgnore);
}

// A scene composes up to three pictures of its frames, whatever they show.
bool SceneReader::Private::takeFrame(QSize size)
{
    constexpr qint64 bytesPerPixel = 3 * 4;
    MemoryBudget remaining = wholeMemory;
    if (!remaining.take(bytesPerPixel * size.width() * size.height()))
        return false;
    memoryBesideFrame = remaining;
    state.memory = remaining;
    return true;
}

void SceneReader::Private::readFrameRange(const QXmlStreamAttributes &attributes)
{
    const QList<QStringView> bounds = attributes.value("frameRange").split(u';');
    if (bounds.size() != 2)
        return;
    position.rangeFirst = bounds.first().toInt();
    position.rangeLast = bounds.last().toInt();
    if (*position.rangeLast < position.rangeFirst)
        xml.raiseError(tr("The frame range in the file ends before it begins"));
}

void SceneReader::Private::readLayers()
{
    removeAllLayers();
    LayerReader layerReader(xml, scene.frameSize(), state, [this](int cells) {
        if (cells > 0 && totalDrawings)
            progress.advance();
        throwIfCancelled();
    });
    while (xml.readNextStartElement()) {
        readLayersChild(layerReader);
        throwIfCancelled();
    }
    if (xml.hasError())
        return;
    makeLinks();
    throwIfCancelled();
    if (!xml.hasError())
        applyOrder();
}

void SceneReader::Private::makeLinks()
{
    const LinkProblem problem = resolveLinks(scene);
    if (problem.kind == LinkProblem::Kind::None)
        return;
    errorPlace = state.places.value(problem.cell);
    xml.raiseError(problem.kind == LinkProblem::Kind::Circle
                       ? tr("A distant clone has no original: its links go round in a circle")
                       : tr("A distant clone shows a drawing from a layer of another type"));
}

void SceneReader::Private::readLayersChild(LayerReader &layerReader)
{
    if (xml.qualifiedName() == u"ordering") {
        readOrder(xml.readElementText(QXmlStreamReader::SkipChildElements));
    } else if (xml.qualifiedName() == u"layer") {
        if (!totalDrawings)
            progress.setSteps(int(order.size()) + 1, layersInList);
        addLayer(layerReader);
    } else {
        xml.skipCurrentElement();
    }
}

void SceneReader::Private::readOrder(const QString &text)
{
    for (const QStringView entry : qTokenize(text, u';', Qt::SkipEmptyParts)) {
        // One too many is enough to have the whole order ignored.
        if (order.size() > Scene::maximumLayers)
            return;
        order.append(entry.toInt());
    }
}

void SceneReader::Private::addLayer(LayerReader &layerReader)
{
    if (layersRead >= Scene::maximumLayers && LayerReader::isOfUse(xml.attributes())) {
        xml.raiseError(tr("The file has more than %1 layers").arg(Scene::maximumLayers));
        return;
    }
    const qint64 line = xml.lineNumber();
    const std::shared_ptr<Layer> layer = layerReader.read();
    if (xml.hasError() || !layer)
        return;
    ++layersRead;
    ++layersInList;
    if (scene.appendReadLayer(layer) >= 0)
        return;
    if (Layer::isVisualType(layer->layerType()))
        xml.raiseError(tr("The file has more than %1 layers beside sound and notes").arg(Scene::maximumVisualLayers));
    else
        state.damages.append(
            tr("Line %1: a scene has only one layer for %2, this one was left out")
                .arg(QString::number(line), layer->layerType() == Layer::Audio ? tr("sound") : tr("notes")));
}

// With the layers goes what was noted about them, and the memory that they took is free again. Links are dropped first:
// mending them for layers that all go is for nothing.
void SceneReader::Private::removeAllLayers()
{
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        for (int frameId = 1; layer && frameId <= layer->numFrames(); ++frameId) {
            layer->item(frameId)->clones.clear();
            layer->item(frameId)->origin = {};
        }
    }
    for (int layerIdx = scene.layerCount() - 1; layerIdx >= 0; --layerIdx)
        scene.removeLayer(layerIdx);
    state.places.clear();
    state.damages = DamageList();
    state.lacksRenderer = false;
    state.memory = memoryBesideFrame;
    order.clear();
    layersInList = 0;
}

void SceneReader::Private::applyOrder()
{
    if (order.size() != scene.layerCount())
        return;
    for (int visualIndex = 0; visualIndex < order.size(); ++visualIndex)
        scene.moveLayer(order.at(visualIndex), visualIndex);
}

void SceneReader::Private::applyPosition()
{
    // Until now no frame was active; setting the range composes the picture.
    scene.updateMaxFrameNumber();
    const int lastFrame = scene.maximumFrameNumber();
    const int first = std::clamp(position.rangeFirst, 1, lastFrame);
    const int last = std::clamp(position.rangeLast.value_or(lastFrame), 1, lastFrame);
    const bool hasLayer = position.activeLayer >= 0 && position.activeLayer < scene.layerCount();
    scene.setFrameRange(first, last, std::max(position.activeFrame, 1), hasLayer ? position.activeLayer : 0);
}

void SceneReader::Private::throwIfCancelled() const
{
    progress.poll();
    if (progress.wasCancelled())
        throw ReadingCancelledException();
}

SceneReader::SceneReader(Scene *scene, QWidget *parent)
    : d(std::make_unique<Private>(scene,
                                  std::make_unique<DialogProgress>(parent, tr("Opening scene..."), tr("Cancel"))))
{
}

SceneReader::SceneReader(Scene *scene, Progress &progress) : d(std::make_unique<Private>(scene, progress))
{
}

SceneReader::~SceneReader() = default;

FileResult SceneReader::read(QIODevice *device)
{
    try {
        d->readDocument(device);
    } catch (const ReadingCancelledException &) {
        d->progress.reset();
        return FileResult::Cancelled;
    }
    d->progress.reset();
    return d->xml.hasError() ? FileResult::Error : FileResult::Success;
}

QStringList SceneReader::damages() const
{
    return d->state.damages.texts();
}

qsizetype SceneReader::damageCount() const
{
    return d->state.damages.count();
}

bool SceneReader::lacksRenderer() const
{
    return d->state.lacksRenderer;
}

void SceneReader::setMemoryLimit(qint64 bytes)
{
    d->wholeMemory = MemoryBudget(bytes);
    d->memoryBesideFrame = d->wholeMemory;
    d->state.memory = d->wholeMemory;
}

QString SceneReader::errorString() const
{
    const FilePlace place = d->errorPlace.value_or(FilePlace{d->xml.lineNumber(), d->xml.columnNumber()});
    return tr("%1\nLine %2, column %3")
        .arg(d->xml.errorString(), QString::number(place.line), QString::number(place.column));
}

} // namespace Model
