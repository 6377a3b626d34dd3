#include "libmodel/layers/strokelayer.h"

#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QPainter>

namespace Model {

namespace {

/// Multiplies a painter's opacity for as long as it lives.
class OpacityScope
{
public:
    OpacityScope(QPainter *painter, double factor) : m_painter(painter), m_opacity(painter->opacity())
    {
        m_painter->setOpacity(m_opacity * factor);
    }
    ~OpacityScope() { m_painter->setOpacity(m_opacity); }
    Q_DISABLE_COPY_MOVE(OpacityScope)

private:
    QPainter *m_painter;
    double m_opacity;
};

const QList<QRgb> &blackTable()
{
    static const QList<QRgb> table = Model::colorTable(Qt::black);
    return table;
}

} // namespace

StrokeLayer::StrokeLayer(const QColor &color, QSize frameSize, QObject *parent)
    : DrawLayer(frameSize, parent), m_color(color), m_colorTable(Model::colorTable(color))
{
    appendItem(StrokeLayer::newBlankItem());
}

StrokeLayer::~StrokeLayer() = default;

int StrokeLayer::layerType() const
{
    return Layer::Stroke;
}

void StrokeLayer::draw(int frameId, QPainter *painter, QRect rect, bool asBlack) const
{
    const LayerItem *cell = shownItem(frameId);
    if (!cell)
        return;
    const QRect inked = rect.intersected(inkedRect(frameId));
    if (inked.isEmpty())
        return;
    if (const auto *drawing = dynamic_cast<const StrokeDrawing *>(cell->drawing.get()))
        drawing->paint(painter, asBlack ? blackTable() : m_colorTable, inked);
    else if (const auto *picture = dynamic_cast<const ImageDrawing *>(cell->drawing.get()))
        picture->paint(painter, frameSize(), inked);
}

void StrokeLayer::drawPlain(int frameId, QPainter *painter, QRect rect) const
{
    const OpacityScope scope(painter, opacity());
    draw(frameId, painter, rect, false);
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
