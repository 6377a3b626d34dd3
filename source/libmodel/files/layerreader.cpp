#include "libmodel/files/layerreader.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/base64.h"
#include "libmodel/files/celltransform.h"
#include "libmodel/files/contentblocks.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/files/limits.h"
#include "libmodel/files/readingstate.h"
#include "libmodel/files/readnumber.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QColor>
#include <QVariant>
#include <QXmlStreamReader>

#include <algorithm>
#include <limits>
#include <utility>

namespace Model {

namespace {

/// True for any word but "no"; a missing attribute says no.
bool isSet(const QXmlStreamAttributes &attributes, const QString &name)
{
    return attributes.hasAttribute(name) && attributes.value(name) != FormatWords::no;
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

LayerReader::LayerReader(QXmlStreamReader &xml, QSize frameSize, ReadingState &state, std::function<void(int)> step)
    : m_xml(xml), m_frameSize(frameSize), m_state(state), m_step(std::move(step))
{
}

std::shared_ptr<Layer> LayerReader::read()
{
    const QXmlStreamAttributes attributes = m_xml.attributes();
    const std::shared_ptr<Layer> layer = makeLayer(attributes);
    if (!layer) {
        m_xml.skipCurrentElement();
        return nullptr;
    }
    if (!takesIdentifier(m_layerIdentifiers, uuidAttribute(attributes, "identifier"),
                         tr("Two layers have the same identifier")))
        return nullptr;
    readContent(*layer);
    applyAttributes(*layer, attributes);
    return layer;
}

bool LayerReader::isOfUse(const QXmlStreamAttributes &attributes)
{
    const std::optional<int> type = FormatWords::layerType(attributes.value("type"));
    return type && *type != Layer::Paint;
}

std::shared_ptr<Layer> LayerReader::makeLayer(const QXmlStreamAttributes &attributes) const
{
    switch (FormatWords::layerType(attributes.value("type")).value_or(Layer::Paint)) {
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
    m_cellIdentifiers.clear();
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
    if (m_xml.qualifiedName() == u"opacity")
        readOpacity(layer);
    else if (stroke && m_xml.qualifiedName() == u"color")
        readColor(*stroke);
    else if (m_xml.qualifiedName() == u"drawing")
        readCell(layer);
    else
        m_xml.skipCurrentElement();
}

void LayerReader::readAudioLayerChild(AudioLayer &layer)
{
    if (m_xml.qualifiedName() == u"offsetFrames") {
        if (const auto offset = checkedNumber("offsetFrames", readText(), Limits::maximumSoundOffset))
            layer.setOffset(*offset);
    } else if (m_xml.qualifiedName() == u"originalAudioData") {
        readSound(layer);
    } else {
        m_xml.skipCurrentElement();
    }
}

// A sound with something wrong in the middle can still be heard, more or less.
void LayerReader::readSound(AudioLayer &layer)
{
    const qint64 line = m_xml.lineNumber();
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return;
    const DecodedBase64 decoded = decodeBase64(text, BadBase64::PassedOver);
    if (decoded.isDamaged)
        noteDamage(line, tr("the sound is not stored as it should be"));
    layer.setOriginalAudioData(decoded.bytes);
}

void LayerReader::readAnnotationLayerChild(AnnotationLayer &layer)
{
    if (m_xml.qualifiedName() != u"image") {
        m_xml.skipCurrentElement();
        return;
    }
    if (layer.images().size() >= Layer::maximumFrames) {
        m_xml.raiseError(tr("A layer has more than %1 notes").arg(Layer::maximumFrames));
        return;
    }
    const qint64 line = m_xml.lineNumber();
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return;
    const DecodedImage decoded = decodeAnnotation(text, m_state.memory);
    if (decoded.exceedsMemory)
        raiseOutOfMemory();
    else if (decoded.isDamaged)
        noteDamage(line, tr("a note cannot be read"));
    layer.appendImage(decoded.image);
}

void LayerReader::readOpacity(VisualLayer &layer)
{
    if (const auto opacity = checkedNumber("opacity", readText(), std::numeric_limits<double>::infinity()))
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
    if (!attributes.hasAttribute("type")) {
        m_xml.skipCurrentElement();
        return;
    }
    const QStringView typeWord = attributes.value("type");
    const auto type = FormatWords::cellType(typeWord);
    if (!type) {
        m_xml.raiseError(tr("There is no drawing of the type \"%1\"").arg(typeWord.left(32)));
        return;
    }
    if (m_cells.size() >= Layer::maximumFrames) {
        m_xml.raiseError(tr("A layer has more than %1 drawings").arg(Layer::maximumFrames));
        return;
    }
    const QTransform transform = readTransform();
    Cell cell;
    if (*type == LayerItem::Type::Clone)
        cell = readClone();
    else if (*type == LayerItem::Type::Original)
        cell = readOriginal(layer);
    else
        cell = readDistantClone(layer);
    if (!cell)
        return;
    cell->offPegsTransform = transform;
    cell->keyDrawing = attributes.value("keyDrawing") == FormatWords::yes;
    m_cells.append(cell);
}

QTransform LayerReader::readTransform()
{
    const auto dx = readNumberAttribute("xOffset");
    const auto dy = readNumberAttribute("yOffset");
    const auto degrees = readNumberAttribute("rotationDeg");
    return cellTransform(dx, dy, degrees);
}

std::optional<double> LayerReader::readNumberAttribute(const QString &name)
{
    const QXmlStreamAttributes attributes = m_xml.attributes();
    return checkedNumber(name, attributes.value(name), Limits::maximumCellOffset);
}

std::optional<double> LayerReader::checkedNumber(const QString &name, QStringView text, double limit)
{
    const NumberInText number = numberIn(text, limit);
    if (number.isRefused)
        m_xml.raiseError(tr("The number %1 in %2 is out of range").arg(text.left(32).toString(), name));
    return number.value;
}

bool LayerReader::takesIdentifier(IdentifierSet &used, const QUuid &identifier, const QString &refusal)
{
    if (identifier.isNull() || used.insert(identifier).second)
        return true;
    m_xml.raiseError(refusal);
    return false;
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
    takeIdentity(*cell);
    bool hasContent = false;
    bool isWhole = false;
    while (m_xml.readNextStartElement()) {
        if (m_xml.qualifiedName() == u"clone") {
            if (const CellRef clone = referenceIn(m_xml.attributes()); !clone.isNull())
                cell->clones.append(clone);
            m_xml.skipCurrentElement();
        } else if (m_xml.qualifiedName() == (holdsPicture ? u"image" : u"strokes")) {
            if (std::exchange(hasContent, true))
                m_xml.raiseError(tr("A drawing has its content twice"));
            else
                isWhole = holdsPicture ? readImage(*cell) : readStrokes(*cell);
        } else {
            m_xml.skipCurrentElement();
        }
    }
    // A paste would take what is left of a drawing for the drawing that was copied.
    if (isWhole)
        cell->drawing->setCopyId(uuidAttribute(attributes, "copyId"));
    return cell;
}

LayerReader::Cell LayerReader::readDistantClone(const VisualLayer &layer)
{
    const Cell cell = layer.newBlankItem();
    cell->type = LayerItem::Type::DistantClone;
    takeIdentity(*cell);
    const FilePlace place{m_xml.lineNumber(), m_xml.columnNumber()};
    while (m_xml.readNextStartElement()) {
        if (m_xml.qualifiedName() == u"original" && cell->origin.isNull())
            cell->origin = referenceIn(m_xml.attributes());
        m_xml.skipCurrentElement();
    }
    if (cell->origin.isNull())
        return nullptr;
    m_state.places.insert(cell.get(), place);
    return cell;
}

// Gives the cell the identifier of the element at whose start the stream stands.
void LayerReader::takeIdentity(LayerItem &cell)
{
    const QUuid identifier = uuidAttribute(m_xml.attributes(), "identifier");
    if (takesIdentifier(m_cellIdentifiers, identifier, tr("Two drawings of a layer have the same identifier")) &&
        !identifier.isNull())
        cell.identifier = identifier;
}

bool LayerReader::readStrokes(LayerItem &cell)
{
    const qint64 line = m_xml.lineNumber();
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return false;
    const DecodedStrokes decoded = decodeStrokes(text, m_frameSize, m_state.memory, m_state.work);
    cell.drawing = decoded.drawing;
    m_state.lacksRenderer |= decoded.isUnrendered;
    if (decoded.exceedsMemory)
        raiseOutOfMemory();
    else if (decoded.isDamaged)
        noteDamage(line, tr("a drawing cannot be read to its end"));
    if (decoded.isShownInPart)
        noteDamage(line, tr("a drawing is shown only in part, as drawing all of it would take too long"));
    return !decoded.isDamaged && !decoded.exceedsMemory;
}

bool LayerReader::readImage(LayerItem &cell)
{
    const qint64 line = m_xml.lineNumber();
    const QByteArray text = readBase64();
    if (m_xml.hasError())
        return false;
    const DecodedImage decoded = decodeImage(text, m_state.memory);
    cell.drawing = std::make_shared<ImageDrawing>(decoded.image);
    if (decoded.exceedsMemory)
        raiseOutOfMemory();
    else if (decoded.isDamaged)
        noteDamage(line, tr("a picture cannot be read"));
    return !decoded.isDamaged && !decoded.exceedsMemory;
}

QString LayerReader::readText()
{
    return m_xml.readElementText(QXmlStreamReader::SkipChildElements);
}

QByteArray LayerReader::readBase64()
{
    return readText().toLatin1();
}

void LayerReader::noteDamage(qint64 line, const QString &what)
{
    m_state.damages.append(tr("Line %1: %2").arg(QString::number(line), what));
}

void LayerReader::raiseOutOfMemory()
{
    m_xml.raiseError(tr("The pictures in the file need more memory than there is"));
}

} // namespace Model
