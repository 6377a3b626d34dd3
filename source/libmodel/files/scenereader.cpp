#include "libmodel/files/scenereader.h"

#include "libmodel/files/fileprogress.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/files/layerreader.h"
#include "libmodel/files/linkresolver.h"
#include "libmodel/layers/layer.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/scene/firstlayers.h"
#include "libmodel/scene/scene.h"

#include <QDebug>
#include <QSize>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
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

std::optional<int> intAttribute(const QXmlStreamAttributes &attributes, const QString &name)
{
    if (!attributes.hasAttribute(name))
        return std::nullopt;
    return attributes.value(name).toInt();
}

/// A scene has at most one audio and one annotation layer.
bool isOneTooMany(const Scene &scene, const Layer &layer)
{
    return (layer.layerType() == Layer::Audio && scene.audioLayerIdx() >= 0) ||
           (layer.layerType() == Layer::Annotation && scene.annotationLayerIdx() >= 0);
}

} // namespace

class SceneReader::Private
{
public:
    Private(Scene *filledScene, QWidget *parent)
        : scene(*filledScene), progress(parent, tr("Opening scene..."), tr("Cancel"))
    {
    }

    void readDocument();
    void readScene();
    void readSceneAttributes();
    void readFrameSize(const QXmlStreamAttributes &attributes);
    void readFrameRange(const QXmlStreamAttributes &attributes);
    void readLayers();
    void readLayersChild(LayerReader &layerReader);
    void removeAllLayers();
    void applyOrder();
    void applyPosition();
    void throwIfCancelled() const;

    Scene &scene;
    FileProgress progress;
    QXmlStreamReader xml;
    Position position;
    QList<int> order;                 ///< layer indices in display order
    std::optional<int> totalDrawings; ///< the number of cells as the file tells it
};

void SceneReader::Private::readDocument()
{
    const bool isScene =
        xml.readNextStartElement() && xml.name() == u"mr" && xml.attributes().value("version") == FormatWords::version;
    if (!isScene) {
        xml.raiseError(tr("The file is not an MR version 0.4 file"));
        return;
    }
    bool hasScene = false;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"scene") {
            hasScene = true;
            readScene();
        } else {
            xml.skipCurrentElement();
        }
    }
    if (!hasScene && !xml.hasError()) {
        addMissingLayers(scene);
        applyPosition();
    }
}

void SceneReader::Private::readScene()
{
    progress.reset();
    readSceneAttributes();
    if (xml.hasError())
        return;
    // Without a renderer the strokes stay without pixels, and the application has told the user at its start.
    OffscreenRenderer::instance()->initialize(scene.frameSize());
    while (xml.readNextStartElement()) {
        if (xml.name() == u"layers")
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

void SceneReader::Private::readSceneAttributes()
{
    constexpr int maximumLayerNumber = 1'000'000'000;
    const QXmlStreamAttributes attributes = xml.attributes();
    position = Position();
    if (const auto number = intAttribute(attributes, "highestUsedLayerNumber"))
        scene.setHighestUsedLayerNumber(std::clamp(*number, 0, maximumLayerNumber));
    readFrameSize(attributes);
    readFrameRange(attributes);
    position.activeFrame = intAttribute(attributes, "activeFrameNumber").value_or(1);
    position.activeLayer = intAttribute(attributes, "activeLayerIndex").value_or(0);

    bool isNumber = false;
    const double fps = attributes.value("fps").toDouble(&isNumber);
    if (isNumber && std::isfinite(fps))
        scene.setFrameRate(fps);

    const int drawings = attributes.value("totalNumberOfDrawings").toInt(&isNumber);
    totalDrawings.reset();
    if (isNumber && drawings >= 0) {
        totalDrawings = std::min(drawings, std::numeric_limits<int>::max() - 1);
        progress.setSteps(*totalDrawings + 1, 0);
    }
}

void SceneReader::Private::readFrameSize(const QXmlStreamAttributes &attributes)
{
    const auto width = intAttribute(attributes, "frameWidth");
    const auto height = intAttribute(attributes, "frameHeight");
    if (!width || !height)
        return;
    const auto isUsable = [](int side) { return side >= 1 && side <= maximumFrameSide; };
    if (isUsable(*width) && isUsable(*height))
        scene.setFrameSize(QSize(*width, *height), MR::FitMode::FitModeIgnore);
    else
        xml.raiseError(tr("The frame size in the file is not between 1 and %1 pixels").arg(maximumFrameSide));
}

void SceneReader::Private::readFrameRange(const QXmlStreamAttributes &attributes)
{
    const QList<QStringView> bounds = attributes.value("frameRange").split(u';');
    if (bounds.size() != 2)
        return;
    position.rangeFirst = bounds.first().toInt();
    position.rangeLast = bounds.last().toInt();
}

void SceneReader::Private::readLayers()
{
    removeAllLayers();
    LayerReader layerReader(xml, scene.frameSize(), [this](int cells) {
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
    resolveLinks(scene);
    throwIfCancelled();
    applyOrder();
}

void SceneReader::Private::readLayersChild(LayerReader &layerReader)
{
    if (xml.name() == u"ordering") {
        const QStringList entries =
            xml.readElementText(QXmlStreamReader::SkipChildElements).split(u';', Qt::SkipEmptyParts);
        for (const QString &entry : entries)
            order.append(entry.toInt());
    } else if (xml.name() == u"layer") {
        if (!totalDrawings)
            progress.setSteps(int(order.size()) + 1, scene.layerCount());
        const std::shared_ptr<Layer> layer = layerReader.read();
        if (layer && isOneTooMany(scene, *layer))
            qWarning().noquote() << "The scene file has one more sound or notes layer, which ends in line"
                                 << xml.lineNumber();
        else if (layer)
            scene.insertLayer(layer, scene.layerCount());
    } else {
        xml.skipCurrentElement();
    }
}

void SceneReader::Private::removeAllLayers()
{
    for (int layerIdx = scene.layerCount() - 1; layerIdx >= 0; --layerIdx)
        scene.removeLayer(layerIdx);
    order.clear();
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
    int first = std::clamp(position.rangeFirst, 1, lastFrame);
    int last = std::clamp(position.rangeLast.value_or(lastFrame), 1, lastFrame);
    // The scene refuses a range that ends before it begins, and would be left without an active frame.
    if (first > last) {
        first = 1;
        last = lastFrame;
    }
    const bool hasLayer = position.activeLayer >= 0 && position.activeLayer < scene.layerCount();
    scene.setFrameRange(first, last, std::max(position.activeFrame, 1), hasLayer ? position.activeLayer : 0);
}

void SceneReader::Private::throwIfCancelled() const
{
    if (progress.wasCancelled())
        throw ReadingCancelledException();
}

SceneReader::SceneReader(Scene *scene, QWidget *parent) : d(std::make_unique<Private>(scene, parent))
{
}

SceneReader::~SceneReader() = default;

FileResult SceneReader::read(QIODevice *device)
{
    d->xml.setDevice(device);
    try {
        d->readDocument();
    } catch (const ReadingCancelledException &) {
        d->progress.reset();
        return FileResult::Cancelled;
    }
    d->progress.reset();
    return d->xml.hasError() ? FileResult::Error : FileResult::Success;
}

QString SceneReader::errorString() const
{
    return tr("%1\nLine %2, column %3")
        .arg(d->xml.errorString(), QString::number(d->xml.lineNumber()), QString::number(d->xml.columnNumber()));
}

} // namespace Model
