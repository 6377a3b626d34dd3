#include "libmodel/files/scenewriter.h"

#include "libmodel/base/dialogprogress.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/files/layerwriter.h"
#include "libmodel/files/limits.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

#include <QStringList>
#include <QXmlStreamWriter>

#include <algorithm>

namespace Model {

namespace {

/// Thrown where a cancel is noticed, caught in SceneWriter::write().
class WritingCancelledException
{
};

/// The number of cells in all layers that have any.
int countDrawings(const Scene &scene)
{
    int count = 0;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (Layer::isVisualType(scene.layer(layerIdx)->layerType()))
            count += scene.layer(layerIdx)->numFrames();
    }
    return count;
}

CellRefSet originals(const Scene &scene)
{
    CellRefSet refs;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        if (!layer)
            continue;
        for (const auto &cell : layer->frames()) {
            if (cell->isOriginal())
                refs.insert({layer->identifier(), cell->identifier});
        }
    }
    return refs;
}

QString displayOrderText(const Scene &scene)
{
    QStringList entries;
    for (const int layerIdx : scene.layerOrder())
        entries.append(QString::number(layerIdx));
    return entries.join(u';');
}

} // namespace

class SceneWriter::Private
{
public:
    Private(Scene *writtenScene, Progress &reportedTo) : scene(*writtenScene), progress(reportedTo)
    {
        xml.setAutoFormatting(true);
    }
    Private(Scene *writtenScene, std::unique_ptr<DialogProgress> ownDialog) : Private(writtenScene, *ownDialog)
    {
        dialog = std::move(ownDialog);
    }

    void writeDocument();
    void writeScene();
    void writeSceneAttributes(int drawings);
    void writeLayers();
    void throwIfCancelled() const;

    const Scene &scene;
    std::unique_ptr<DialogProgress> dialog; ///< null where somebody else's progress is reported to
    Progress &progress;
    QXmlStreamWriter xml;
};

void SceneWriter::Private::writeDocument()
{
    xml.writeStartDocument();
    xml.writeDTD("<!DOCTYPE mr>");
    xml.writeStartElement("mr");
    xml.writeAttribute("version", FormatWords::version);
    writeScene();
    xml.writeEndElement();
    xml.writeEndDocument();
}

void SceneWriter::Private::writeScene()
{
    const int drawings = countDrawings(scene);
    progress.reset();
    progress.setSteps(scene.layerCount() + 1 + drawings, 0);
    xml.writeStartElement("scene");
    writeSceneAttributes(drawings);
    throwIfCancelled();
    writeLayers();
    xml.writeEndElement();
}

void SceneWriter::Private::writeSceneAttributes(int drawings)
{
    xml.writeAttribute("frameWidth", QString::number(scene.frameSize().width()));
    xml.writeAttribute("frameHeight", QString::number(scene.frameSize().height()));
    xml.writeAttribute("frameRange", QString("%1;%2").arg(scene.rangeFirst()).arg(scene.rangeLast()));
    xml.writeAttribute("activeFrameNumber", QString::number(scene.activeFrame()));
    xml.writeAttribute("activeLayerIndex", QString::number(scene.activeLayerIdx()));
    // Higher ones are not read; names may then be used twice, which does no harm.
    xml.writeAttribute("highestUsedLayerNumber",
                       QString::number(std::min(scene.highestUsedLayerNumber(), Limits::maximumLayerNumber)));
    xml.writeAttribute("fps", QString::number(scene.frameRate(), 'g', 6));
    xml.writeAttribute("totalNumberOfDrawings", QString::number(drawings));
}

void SceneWriter::Private::writeLayers()
{
    LayerWriter layerWriter(xml, originals(scene), [this](int steps) {
        throwIfCancelled();
        if (steps > 0)
            progress.advance();
    });
    xml.writeStartElement("layers");
    xml.writeTextElement("ordering", displayOrderText(scene));
    throwIfCancelled();
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        layerWriter.write(*scene.layer(layerIdx));
        progress.advance();
    }
    xml.writeEndElement();
}

void SceneWriter::Private::throwIfCancelled() const
{
    progress.poll();
    if (progress.wasCancelled())
        throw WritingCancelledException();
}

SceneWriter::SceneWriter(Scene *scene, QWidget *parent)
    : d(std::make_unique<Private>(scene, std::make_unique<DialogProgress>(parent, tr("Saving scene..."), tr("Cancel"))))
{
}

SceneWriter::SceneWriter(Scene *scene, Progress &progress) : d(std::make_unique<Private>(scene, progress))
{
}

SceneWriter::~SceneWriter() = default;

QString SceneWriter::refusal() const
{
    const QSize size = d->scene.frameSize();
    return std::max(size.width(), size.height()) <= Scene::maximumFrameSide
               ? QString()
               : tr("The frames are larger than %1 pixels, which no file can hold").arg(Scene::maximumFrameSide);
}

FileResult SceneWriter::write(QIODevice *device)
{
    if (!refusal().isEmpty())
        return FileResult::Error;
    d->xml.setDevice(device);
    try {
        d->writeDocument();
    } catch (const WritingCancelledException &) {
        d->progress.reset();
        return FileResult::Cancelled;
    }
    d->progress.reset();
    return d->xml.hasError() ? FileResult::Error : FileResult::Success;
}

} // namespace Model
