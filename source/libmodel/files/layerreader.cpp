#include "libmodel/files/layerreader.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/celltransform.h"
#include "libmodel/files/contentblocks.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QColor>
#include <QDebug>
#include <QVariant>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace Model {

namespace {

/// True for any word but "no"; a missing attribute says no.
bool isSet(const QXmlStreamAttributes &attributes, const QString &name)
{
    return attributes.hasAttribute(name) && attributes.value(name) != FormatWords::no;
}

std::optional<double> numberAttribute(const QXmlStreamAttributes &attributes, const QString &name)
{
    bool isNumber = false;
    const double value = attributes.value(name).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

QUuid uuidAttribute(const QXmlStreamAttributes &attributes, const QString &name)
{
    return QUuid::fromString(attributes.value(name));
}

/// The cell that a `clone` or `original` element names.
CellRef referenceIn(const QXmlStreamAttributes &attributes)
{
    return {uuidAttribute(attributes, "layer"), uuidAttribute(attributes, "drawing")};
}

std::optional<double> toNumber(const QString &text)
{
    bool isNumber = false;
    const double value = QVariant(text).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

void applyAttributes(Layer &layer, const QXmlStreamAttributes &attributes)
{
    layer.setIdentifier(uuidAttribute(attributes, "identifier"));
    if (const QString name = attributes.value("name").toString(); !name.isEmpty())
        layer.setName(name);
    layer.setLinked(isSet(attributes, "linked"));
    if (auto *visual = qobject_cast<VisualLayer *>(&layer)) {
        visual->setVisible(isSet(attributes, "visible"));
        if (const auto mode = FormatWords::beyondLast(attributes.value("beyond")))
            visual->setLayerBeyondLast(*mode);
    }
}

} // namespace

LayerReader::LayerReader(QXmlStreamReader &xml, QSize frameSize, std::function<void(int)> step)
    : m_xml(xml), m_frameSize(frameSize), m_step(std::move(step))
{
}

std::shared_ptr<Layer> LayerReader::read()
{
    const QXmlStreamAttributes attributes = m_xml.attributes();
    const std::optional<int> type = FormatWords::layerType(attributes.value("type"));
    const std::shared_ptr<Layer> layer = type ? makeLayer(*type) : nullptr;
    if (!layer) {
        m_xml.skipCurrentElement();
        return nullptr;
    }
    readContent(*layer);
    applyAttributes(*layer, attributes);
    return layer;
}

std::shared_ptr<Layer> LayerReader::makeLayer(int type) const
{
    switch (type) {
    case Layer::Stroke:
        return std::make_shared<StrokeLayer>(QColor(Qt::black), m_frameSize);
    case Layer::Reference:
        return std::make_shared<ReferenceLayer>(m_frameSize);
    case Layer::Audio:
        return std::make_shared<AudioLayer>();
    case Layer::Annotation:
        return std::make_shared<AnnotationLayer>();
    default:
        return nullptr;
    }
}

void LayerReader::readContent(Layer &layer)
{
    m_cells.clear();
    while (m_xml.readNextStartElement())
        readChild(layer);
    if (auto *visual = qobject_cast<VisualLayer *>(&layer))
        visual->setFrames(m_cells); // without any cell in the file the layer keeps its blank one
    m_cells.clear();
}

void LayerReader::readChild(Layer &layer)
{
    const qsizetype cellsBefore = m_cells.size();
    if (auto *visual = qobject_cast<VisualLayer *>(&layer))
        readVisualLayerChild(*visual);
    else if (auto *audio = qobject_cast<AudioLayer *>(&layer))
        readAudioLayerChild(*audio);
    else if (auto *annotation = qobject_cast<AnnotationLayer *>(&layer))
        readAnnotationLayerChild(*annotation);
    else
        m_xml.skipCurrentElement();
    m_step(int(m_cells.size() - cellsBefore));
}

void LayerReader::readVisualLayerChild(VisualLayer &layer)
{
    auto *stroke = qobject_cast<StrokeLayer *>(&layer);
    if (m_xml.name() == u"opacity")
        readOpacity(layer);
    else if (stroke && m_xml.name() == u"color")
        readColor(*stroke);
    else if (m_xml.name() == u"drawing")
        readCell(layer);
    else
        m_xml.skipCurrentElement();
}

void LayerReader::readAudioLayerChild(AudioLayer &layer)
{
    if (m_xml.name() == u"offsetFrames") {
        if (const auto offset = toNumber(readText()))
            layer.setOffset(*offset);
    } else if (m_xml.name() == u"originalAudioData") {
        layer.setOriginalAudioData(QByteArray::fromBase64(readBase64()));
    } else {
        m_xml.skipCurrentElement();
    }
}

void LayerReader::readAnnotationLayerChild(AnnotationLayer &layer)
{
    if (m_xml.name() != u"image") {
        m_xml.skipCurrentElement();
        return;
    }
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return;
    bool isDamaged = false;
    layer.appendImage(decodeAnnotation(text, &isDamaged));
    if (isDamaged)
        warnOfDamage("annotation");
}

void LayerReader::readOpacity(VisualLayer &layer)
{
    if (const auto opacity = toNumber(readText()))
        layer.setOpacity(std::clamp(*opacity, 0.0, 1.0));
}

void LayerReader::readColor(StrokeLayer &layer)
{
    const QString text = readText();
    if (QColor::isValidColor(text))
        layer.setColor(QVariant(text).value<QColor>());
}

void LayerReader::readCell(const VisualLayer &layer)
{
    const QXmlStreamAttributes attributes = m_xml.attributes();
    const auto type = FormatWords::cellType(attributes.value("type"));
    Cell cell;
    if (!type || m_cells.size() >= Layer::maximumFrames)
        m_xml.skipCurrentElement();
    else if (*type == LayerItem::Type::Clone)
        cell = readClone();
    else if (*type == LayerItem::Type::Original)
        cell = readOriginal(layer);
    else
        cell = readDistantClone(layer);
    if (!cell)
        return;
    cell->offPegsTransform =
        cellTransform(numberAttribute(attributes, "xOffset"), numberAttribute(attributes, "yOffset"),
                      numberAttribute(attributes, "rotationDeg"));
    cell->keyDrawing = attributes.value("keyDrawing") == FormatWords::yes;
    m_cells.append(cell);
}

LayerReader::Cell LayerReader::readClone()
{
    m_xml.skipCurrentElement();
    if (m_cells.isEmpty())
        return nullptr;
    return std::make_shared<LayerItem>(LayerItem::Type::Clone, m_cells.constLast()->drawing);
}

LayerReader::Cell LayerReader::readOriginal(const VisualLayer &layer)
{
    const QXmlStreamAttributes attributes = m_xml.attributes();
    const Cell cell = layer.newBlankItem();
    const bool holdsPicture = cell->drawing->type() == Drawing::Type::Image;
    if (const QUuid identifier = uuidAttribute(attributes, "identifier"); !identifier.isNull())
        cell->identifier = identifier;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == u"clone") {
            if (const CellRef clone = referenceIn(m_xml.attributes()); !clone.isNull())
                cell->clones.append(clone);
            m_xml.skipCurrentElement();
        } else if (m_xml.name() == u"strokes" && !holdsPicture) {
            readStrokes(*cell);
        } else if (m_xml.name() == u"image" && holdsPicture) {
            readImage(*cell);
        } else {
            m_xml.skipCurrentElement();
        }
    }
    cell->drawing->setCopyId(uuidAttribute(attributes, "copyId"));
    return cell;
}

LayerReader::Cell LayerReader::readDistantClone(const VisualLayer &layer)
{
    const QUuid identifier = uuidAttribute(m_xml.attributes(), "identifier");
    CellRef origin;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == u"original" && origin.isNull())
            origin = referenceIn(m_xml.attributes());
        m_xml.skipCurrentElement();
    }
    if (origin.isNull())
        return nullptr;
    const Cell cell = layer.newBlankItem();
    cell->type = LayerItem::Type::DistantClone;
    if (!identifier.isNull())
        cell->identifier = identifier;
    cell->origin = origin;
    return cell;
}

void LayerReader::readStrokes(LayerItem &cell)
{
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return;
    bool isDamaged = false;
    cell.drawing = decodeStrokes(text, m_frameSize, &isDamaged);
    if (isDamaged)
        warnOfDamage("drawing");
}

void LayerReader::readImage(LayerItem &cell)
{
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return;
    bool isDamaged = false;
    cell.drawing = std::make_shared<ImageDrawing>(decodeImage(text, &isDamaged));
    if (isDamaged)
        warnOfDamage("picture");
}

QString LayerReader::readText()
{
    return m_xml.readElementText(QXmlStreamReader::SkipChildElements);
}

QByteArray LayerReader::readBase64()
{
    return readText().toLatin1();
}

void LayerReader::warnOfDamage(const char *what) const
{
    qWarning().noquote() << "The scene file has a damaged" << what << "that ends in line" << m_xml.lineNumber();
}

} // namespace Model
