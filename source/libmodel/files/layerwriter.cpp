#include "libmodel/files/layerwriter.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/celltransform.h"
#include "libmodel/files/contentblocks.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QVariant>
#include <QXmlStreamWriter>

namespace Model {

namespace {

QString yesOrNo(bool value)
{
    return value ? FormatWords::yes : FormatWords::no;
}

QString uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithBraces);
}

/// Six significant digits are all the precision that a cell's transform has in a file.
QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}

/// \a name without the characters that no XML document can hold, which would make it unreadable.
QString storableText(const QString &name)
{
    QString text;
    text.reserve(name.size());
    for (const char32_t c : name.toUcs4()) {
        const bool isControl = c < 0x20 && c != u'\t' && c != u'\n' && c != u'\r';
        const bool isNoCharacter = c == 0xfffe || c == 0xffff;
        if (!isControl && !isNoCharacter)
            text += QString::fromUcs4(&c, 1);
    }
    return text;
}

void writeReference(QXmlStreamWriter &xml, const QString &element, const CellRef &cell)
{
    xml.writeEmptyElement(element);
    xml.writeAttribute("layer", uuidText(cell.layer));
    xml.writeAttribute("drawing", uuidText(cell.cell));
}

void writeBlock(QXmlStreamWriter &xml, const QString &element, const QByteArray &base64)
{
    xml.writeTextElement(element, QString::fromLatin1(base64));
}

} // namespace

LayerWriter::LayerWriter(QXmlStreamWriter &xml, std::function<void(int)> step) : m_xml(xml), m_step(std::move(step))
{
}

void LayerWriter::write(const Layer &layer)
{
    m_xml.writeStartElement("layer");
    writeAttributes(layer);
    m_step(0);
    writeContent(layer);
    m_xml.writeEndElement();
}

void LayerWriter::writeAttributes(const Layer &layer)
{
    m_xml.writeAttribute("identifier", uuidText(layer.identifier()));
    m_xml.writeAttribute("name", storableText(layer.name()));
    m_xml.writeAttribute("linked", yesOrNo(layer.isLinked()));
    if (const auto *visual = qobject_cast<const VisualLayer *>(&layer)) {
        m_xml.writeAttribute("visible", yesOrNo(visual->isVisible()));
        if (visual->beyondLast() != Layer::LayerBeyondLast::ShowNothing)
            m_xml.writeAttribute("beyond", FormatWords::beyondLast(visual->beyondLast()));
    }
    m_xml.writeAttribute("type", FormatWords::layerType(layer.layerType()));
}

void LayerWriter::writeContent(const Layer &layer)
{
    if (layer.layerType() == Layer::Paint)
        return;
    if (const auto *visual = qobject_cast<const VisualLayer *>(&layer)) {
        m_xml.writeTextElement("opacity", QVariant(visual->opacity()).toString());
        if (const auto *stroke = qobject_cast<const StrokeLayer *>(&layer))
            m_xml.writeTextElement("color", QVariant(stroke->color()).toString());
        writeCells(*visual);
    } else if (const auto *audio = qobject_cast<const AudioLayer *>(&layer)) {
        m_xml.writeTextElement("offsetFrames", QVariant(audio->offsetFrames()).toString());
        writeBlock(m_xml, "originalAudioData", audio->originalAudioData().toBase64());
    } else if (const auto *annotation = qobject_cast<const AnnotationLayer *>(&layer)) {
        for (const QImage &image : annotation->images())
            writeBlock(m_xml, "image", encodeAnnotation(image));
    }
}

void LayerWriter::writeCells(const VisualLayer &layer)
{
    for (const auto &cell : layer.frames()) {
        writeCell(*cell);
        m_step(1);
    }
}

void LayerWriter::writeCell(const LayerItem &cell)
{
    m_xml.writeStartElement("drawing");
    writeTransform(cell.offPegsTransform);
    if (cell.keyDrawing)
        m_xml.writeAttribute("keyDrawing", FormatWords::yes);
    m_xml.writeAttribute("type", FormatWords::cellType(cell.type));
    if (cell.type != LayerItem::Type::Clone)
        m_xml.writeAttribute("identifier", uuidText(cell.identifier));
    if (cell.type == LayerItem::Type::Original) {
        if (!cell.drawing->copyId().isNull())
            m_xml.writeAttribute("copyId", uuidText(cell.drawing->copyId()));
        for (const CellRef &clone : cell.clones)
            writeReference(m_xml, "clone", clone);
        writeDrawing(*cell.drawing);
    } else if (cell.type == LayerItem::Type::DistantClone) {
        writeReference(m_xml, "original", cell.origin);
    }
    m_xml.writeEndElement();
}

void LayerWriter::writeTransform(const QTransform &transform)
{
    if (transform.type() == QTransform::TxNone)
        return;
    m_xml.writeAttribute("xOffset", numberText(transform.dx()));
    m_xml.writeAttribute("yOffset", numberText(transform.dy()));
    m_xml.writeAttribute("rotationDeg", numberText(rotationDegrees(transform)));
}

void LayerWriter::writeDrawing(const Drawing &drawing)
{
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing))
        writeBlock(m_xml, "strokes", encodeStrokes(*strokes));
    else if (const auto *image = dynamic_cast<const ImageDrawing *>(&drawing))
        writeBlock(m_xml, "image", encodeImage(image->image()));
}

} // namespace Model
