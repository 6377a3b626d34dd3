#include "libmodel/files/layerwriter.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/celltransform.h"
#include "libmodel/files/contentblocks.h"
#include "libmodel/files/formatwords.h"
#include "libmodel/files/limits.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QVariant>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

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

/// \a value, at most \a limit away from 0. A cell or a sound farther off is out of sight and hearing wherever exactly
/// it is.
double within(double limit, double value)
{
    return std::clamp(value, -limit, limit);
}

/// Six significant digits are all the precision that a cell's transform has in a file.
QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}

/// \a name without the characters that no XML document can hold, which would make it unreadable. Half of a pair of
/// surrogates becomes the replacement character, as everywhere in Unicode.
QString storableText(const QString &name)
{
    const auto isPair = [&name](qsizetype i) {
        return i >= 0 && i + 1 < name.size() && name[i].isHighSurrogate() && name[i + 1].isLowSurrogate();
    };
    QString text;
    text.reserve(name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name[i];
        const bool isControl = c < u' ' && c != u'\t' && c != u'\n' && c != u'\r';
        const bool isNoCharacter = c == QChar(0xfffe) || c == QChar(0xffff);
        if (c.isSurrogate())
            text += isPair(i) || isPair(i - 1) ? c : QChar(QChar::ReplacementCharacter);
        else if (!isControl && !isNoCharacter)
            text += c;
    }
    return text;
}

bool isBlank(const Drawing &drawing)
{
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing))
        return strokes->isEmpty();
    const auto *image = dynamic_cast<const ImageDrawing *>(&drawing);
    return !image || image->image().isNull();
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

LayerWriter::LayerWriter(QXmlStreamWriter &xml, CellRefSet originals, std::function<void(int)> step)
    : m_xml(xml), m_originals(std::move(originals)), m_step(std::move(step))
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
        const double start = within(Limits::maximumSoundOffset, audio->offsetFrames());
        m_xml.writeTextElement("offsetFrames", QVariant(start).toString());
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
    const bool isOriginal = holdsOwnDrawing(cell);
    m_xml.writeAttribute("type", FormatWords::cellType(isOriginal ? LayerItem::Type::Original : cell.type));
    if (cell.type != LayerItem::Type::Clone)
        m_xml.writeAttribute("identifier", uuidText(cell.identifier));
    if (isOriginal) {
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

// A distant clone of an original that is not there shows a drawing of its own. Once something was drawn on it, it can
// only be kept as an original.
bool LayerWriter::holdsOwnDrawing(const LayerItem &cell) const
{
    if (!cell.isDistantClone())
        return cell.isOriginal();
    return !isBlank(*cell.drawing) && !m_originals.contains(cell.origin);
}

void LayerWriter::writeTransform(const QTransform &transform)
{
    if (transform.type() == QTransform::TxNone)
        return;
    writeNumber("xOffset", transform.dx());
    writeNumber("yOffset", transform.dy());
    writeNumber("rotationDeg", rotationDegrees(transform));
}

// What is no number has no text that reads as one; without the attribute that part of the transform is none.
void LayerWriter::writeNumber(const QString &attribute, double value)
{
    if (std::isfinite(value))
        m_xml.writeAttribute(attribute, numberText(within(Limits::maximumWrittenCellOffset, value)));
}

void LayerWriter::writeDrawing(const Drawing &drawing)
{
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing))
        writeBlock(m_xml, "strokes", encodeStrokes(*strokes));
    else if (const auto *image = dynamic_cast<const ImageDrawing *>(&drawing))
        writeBlock(m_xml, "image", encodeImage(image->image()));
}

} // namespace Model
