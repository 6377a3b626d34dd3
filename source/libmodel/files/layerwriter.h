#pragma once

#include "libmodel/layers/identifierhash.h"

#include <functional>

class QTransform;
class QXmlStreamWriter;

namespace Model {

class Drawing;
class Layer;
struct LayerItem;
class VisualLayer;

/// Writes one `layer` element with all that stands in it.
class LayerWriter
{
public:
    /// Writes to \a xml. \a step is called after the layer's attributes with 0 and after each cell with 1, the number
    /// of steps done; it may throw to break off. \a originals are those of the whole scene.
    LayerWriter(QXmlStreamWriter &xml, CellRefSet originals, std::function<void(int)> step);

    /// Writes the element of \a layer.
    void write(const Layer &layer);

private:
    void writeAttributes(const Layer &layer);
    void writeContent(const Layer &layer);
    void writeCells(const VisualLayer &layer);
    void writeCell(const LayerItem &cell);
    [[nodiscard]] bool holdsOwnDrawing(const LayerItem &cell) const;
    void writeTransform(const QTransform &transform);
    void writeNumber(const QString &attribute, double value);
    void writeDrawing(const Drawing &drawing);

    QXmlStreamWriter &m_xml;
    CellRefSet m_originals;
    std::function<void(int)> m_step;
};

} // namespace Model
