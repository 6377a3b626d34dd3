#pragma once

#include "libmodel/layers/drawlayer.h"

#include <QColor>
#include <QRgb>

namespace Model {

/// A layer of drawn lines. Its drawings are masks without a colour; the layer's colour is what they are shown in.
class StrokeLayer : public DrawLayer
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    /// A layer of \a color for frames of \a frameSize, with one blank original.
    StrokeLayer(const QColor &color, QSize frameSize, QObject *parent = nullptr);
    ~StrokeLayer() override;

    [[nodiscard]] int layerType() const override;
    /// A copy with drawings of its own. Cells keep their identifiers, clones get new ones; no cell is off its pegs or
    /// marked as a key drawing. Links within the layer stand within the copy, distant clones of originals elsewhere
    /// remain that once the copy stands in a scene.
    [[nodiscard]] std::shared_ptr<Layer> clone() const override;
    void draw(int frameId, QPainter *painter, QRect rect, bool asBlack) const override;
    void drawPlain(int frameId, QPainter *painter, QRect rect) const override;
    [[nodiscard]] QImage frameImage(int frameId, QSize size) const override;
    [[nodiscard]] std::shared_ptr<LayerItem> newBlankItem() const override;
    void drawHueShifted(int frameId, QPainter *painter, QRect rect, int hueShift, double opacity) const override;
    void drawWithActiveStroke(int frameId, QPainter *painter, QRect rect, const SingleStroke &stroke) const override;

    [[nodiscard]] QColor color() const { return m_color; }
    /// The palette that shows a drawing's coverage: 256 entries of the colour with alpha 0 to 255.
    [[nodiscard]] const QList<QRgb> &colorTable() const { return m_colorTable; }

public slots:
    /// Takes \a color and lets the originals drop their coloured thumbnails. An equal or invalid colour is ignored.
    void setColor(const QColor &color);

private:
    StrokeLayer(const StrokeLayer &other);

    QColor m_color;
    QList<QRgb> m_colorTable;
};

} // namespace Model
