#include "libmodel/layers/strokelayer.h"

#include "libmodel/layers/identifierhash.h"
#include "libmodel/layers/opacityscope.h"
#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QPainter>

#include <unordered_map>

namespace Model {

namespace {

const QList<QRgb> &blackTable()
{
    static const QList<QRgb> table = Model::colorTable(Qt::black);
    return table;
}

void paintDrawing(const Drawing &drawing, QSize frameSize, QPainter *painter, const QList<QRgb> &table, QRect rect)
{
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing))
        strokes->paint(painter, table, rect);
    else if (const auto *picture = dynamic_cast<const ImageDrawing *>(&drawing))
        picture->paint(painter, frameSize, rect);
}

} // namespace

StrokeLayer::StrokeLayer(const QColor &color, QSize frameSize, QObject *parent)
    : DrawLayer(frameSize, parent), m_color(color), m_colorTable(Model::colorTable(color))
{
    appendItem(StrokeLayer::newBlankItem());
}

StrokeLayer::StrokeLayer(const StrokeLayer &other)
    : DrawLayer(other), m_color(other.m_color), m_colorTable(other.m_colorTable)
{
}

StrokeLayer::~StrokeLayer() = default;

int StrokeLayer::layerType() const
{
    return Layer::Stroke;
}

std::shared_ptr<Layer> StrokeLayer::clone() const
{
    const std::shared_ptr<StrokeLayer> copy(new StrokeLayer(*this));
    std::unordered_map<QUuid, std::shared_ptr<Drawing>, IdentifierHash> originals;
    for (const auto &cell : frames()) {
        auto drawing = cell->isClone() ? copy->frames().last()->drawing : cell->drawing->clone();
        const auto copied = std::make_shared<LayerItem>(cell->type, std::move(drawing));
        // Links that stay within the layer are led to the copy's own cells.
        const auto led = [&](const CellRef &ref) {
            return ref.layer == identifier() ? CellRef{copy->identifier(), ref.cell} : ref;
        };
        if (!cell->isClone())
            copied->identifier = cell->identifier;
        if (cell->isOriginal()) {
            originals.insert_or_assign(cell->identifier, copied->drawing);
            for (const CellRef &ref : std::as_const(cell->clones)) {
                if (ref.layer == identifier())
                    copied->clones.append(led(ref));
            }
        } else if (cell->isDistantClone()) {
            copied->origin = led(cell->origin);
        }
        copy->appendItem(copied);
    }
    for (int frameId = 1; frameId <= copy->numFrames(); ++frameId) {
        const auto cell = copy->item(frameId);
        if (!cell->isDistantClone() || cell->origin.layer != copy->identifier())
            continue;
        if (const auto original = originals.find(cell->origin.cell); original != originals.end()) {
            cell->drawing = original->second;
            copy->spreadDrawing(frameId);
        }
    }
    return copy;
}

void StrokeLayer::draw(int frameId, QPainter *painter, QRect rect, bool asBlack) const
{
    const LayerItem *cell = shownItem(frameId);
    const QRect inked = rect.intersected(inkedRect(frameId));
    if (cell && !inked.isEmpty())
        paintDrawing(*cell->drawing, frameSize(), painter, asBlack ? blackTable() : m_colorTable, inked);
}

void StrokeLayer::drawPlain(int frameId, QPainter *painter, QRect rect) const
{
    const OpacityScope scope(painter, opacity());
    draw(frameId, painter, rect, false);
}

void StrokeLayer::drawHueShifted(int frameId, QPainter *painter, QRect rect, int hueShift, double shownOpacity) const
{
    const LayerItem *cell = shownItem(frameId);
    const QRect inked = rect.intersected(inkedRect(frameId));
    if (!cell || inked.isEmpty())
        return;
    const bool hasColors = cell->drawing->type() == Drawing::Type::Image;
    const OpacityScope scope(painter, hasColors ? opacity() * shownOpacity : opacity());
    paintDrawing(*cell->drawing, frameSize(), painter, Model::colorTable(m_color, shownOpacity, hueShift), inked);
}

QImage StrokeLayer::frameImage(int frameId, QSize size) const
{
    const auto cell = item(frameId);
    return cell ? cell->drawing->thumbnail(size, m_colorTable) : QImage();
}

std::shared_ptr<LayerItem> StrokeLayer::newBlankItem() const
{
    return std::make_shared<LayerItem>(LayerItem::Type::Original, std::make_shared<StrokeDrawing>(frameSize()));
}

void StrokeLayer::drawWithActiveStroke(int frameId, QPainter *painter, QRect rect, const SingleStroke &stroke) const
{
    const OpacityScope scope(painter, opacity());
    const auto cell = item(frameId);
    const auto *drawing = cell ? dynamic_cast<const StrokeDrawing *>(cell->drawing.get()) : nullptr;
    const QRect inked = drawing ? drawing->inkedRect() : QRect();
    const QRect touched = rect.intersected(inked.united(stroke.boundingRect()));
    if (touched.isEmpty())
        return;
    if (drawing)
        drawing->paintWithActiveStroke(painter, m_colorTable, touched, stroke);
    else
        StrokeDrawing(frameSize()).paintWithActiveStroke(painter, m_colorTable, touched, stroke);
}

void StrokeLayer::setColor(const QColor &color)
{
    if (!color.isValid() || color == m_color)
        return;
    m_color = color;
    m_colorTable = Model::colorTable(color);
    for (const auto &cell : frames()) {
        if (cell->isOriginal())
            cell->drawing->clearThumbnails();
    }
}

} // namespace Model
