#pragma once

#include "libmodel/layers/visuallayer.h"

namespace Model {

/// A layer of imported pictures, frame by frame. It can't be drawn on; its cells hold Model::ImageDrawing. Half
/// transparent at first, so that it stays behind what is drawn over it.
class ReferenceLayer : public VisualLayer
{
    Q_OBJECT

public:
    /// A layer for frames of \a frameSize, with one original without a picture.
    explicit ReferenceLayer(QSize frameSize, QObject *parent = nullptr);
    ~ReferenceLayer() override;

    [[nodiscard]] int layerType() const override;
    /// A copy with pictures of its own. Cells keep their identifiers, clones get new ones; no cell is off its pegs or
    /// marked as a key drawing. Distant clones of originals in this layer become originals in the copy; those of
    /// originals elsewhere remain that once the copy stands in a scene.
    [[nodiscard]] std::shared_ptr<Layer> clone() const override;
    /// Paints the picture of the cell at \a frameId alone: no rule beyond the last cell, no opacity, no black.
    void draw(int frameId, QPainter *painter, QRect rect, bool asBlack) const override;
    void drawPlain(int frameId, QPainter *painter, QRect rect) const override;
    /// Pictures keep their colours: \a hueShift has no say.
    void drawHueShifted(int frameId, QPainter *painter, QRect rect, int hueShift, double opacity) const override;
    [[nodiscard]] QImage frameImage(int frameId, QSize size) const override;
    [[nodiscard]] std::shared_ptr<LayerItem> newBlankItem() const override;
    /// A stroke cannot go here: paints as drawPlain().
    void drawWithActiveStroke(int frameId, QPainter *painter, QRect rect, const SingleStroke &stroke) const override;

private:
    ReferenceLayer(const ReferenceLayer &other);
};

} // namespace Model
