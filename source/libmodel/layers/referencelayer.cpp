#include "libmodel/layers/referencelayer.h"

#include "libmodel/layers/opacityscope.h"
#include "libmodel/strokes/imagedrawing.h"

namespace Model {

namespace {

constexpr double defaultOpacity = 0.5;

/// The cell \a source of the layer \a sourceLayer for a copy of that layer whose last cell so far is \a previous.
std::shared_ptr<LayerItem> copiedCell(const LayerItem &source, const QUuid &sourceLayer, const LayerItem *previous)
{
    if (source.isClone())
        return std::make_shared<LayerItem>(LayerItem::Type::Clone, previous->drawing);
    // What showed an original of the layer itself is on its own from now on; so no original has clones in the copy.
    const bool staysLinked = source.isDistantClone() && source.origin.layer != sourceLayer;
    auto copy = std::make_shared<LayerItem>(staysLinked ? LayerItem::Type::DistantClone : LayerItem::Type::Original,
                                            source.drawing->clone());
    copy->identifier = source.identifier;
    if (staysLinked)
        copy->origin = source.origin;
    return copy;
}

void paintCell(const LayerItem *cell, QSize frameSize, QPainter *painter, QRect rect)
{
    if (const auto *picture = cell ? dynamic_cast<const ImageDrawing *>(cell->drawing.get()) : nullptr)
        picture->paint(painter, frameSize, rect);
}

} // namespace

ReferenceLayer::ReferenceLayer(QSize frameSize, QObject *parent) : VisualLayer(frameSize, parent)
{
    setOpacity(defaultOpacity);
    appendItem(ReferenceLayer::newBlankItem());
}

ReferenceLayer::ReferenceLayer(const ReferenceLayer &other) : VisualLayer(other)
{
    const LayerItem *previous = nullptr;
    for (const auto &cell : other.frames()) {
        auto copy = copiedCell(*cell, other.identifier(), previous);
        previous = copy.get();
        appendItem(std::move(copy));
    }
}

ReferenceLayer::~ReferenceLayer() = default;

int ReferenceLayer::layerType() const
{
    return Reference;
}

std::shared_ptr<Layer> ReferenceLayer::clone() const
{
    return std::shared_ptr<ReferenceLayer>(new ReferenceLayer(*this));
}

void ReferenceLayer::draw(int frameId, QPainter *painter, QRect rect, bool) const
{
    paintCell(item(frameId).get(), frameSize(), painter, rect);
}

void ReferenceLayer::drawPlain(int frameId, QPainter *painter, QRect rect) const
{
    const OpacityScope scope(painter, opacity());
    paintCell(shownItem(frameId), frameSize(), painter, rect);
}

void ReferenceLayer::drawHueShifted(int frameId, QPainter *painter, QRect rect, int, double opacity) const
{
    const OpacityScope scope(painter, opacity);
    drawPlain(frameId, painter, rect);
}

QImage ReferenceLayer::frameImage(int frameId, QSize size) const
{
    const auto cell = item(frameId);
    return cell ? cell->drawing->thumbnail(size, {}) : QImage();
}

std::shared_ptr<LayerItem> ReferenceLayer::newBlankItem() const
{
    return std::make_shared<LayerItem>(LayerItem::Type::Original, std::make_shared<ImageDrawing>(QImage()));
}

void ReferenceLayer::drawWithActiveStroke(int frameId, QPainter *painter, QRect rect, const SingleStroke &) const
{
    drawPlain(frameId, painter, rect);
}

} // namespace Model
