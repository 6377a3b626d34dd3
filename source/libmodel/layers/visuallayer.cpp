#include "libmodel/layers/visuallayer.h"

#include "libmodel/base/fuzzy.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/fittransform.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QProgressDialog>

#include <algorithm>
#include <cmath>

namespace Model {

namespace {

QRect inkedRectOf(const Drawing &drawing, QSize frameSize)
{
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing))
        return strokes->inkedRect();
    return {QPoint(0, 0), frameSize};
}

/// A shared drawing is resized once, by the first cell that meets it in this layer or in another: a drawing of strokes
/// knows its size. That cell need not be the original, since a distant clone may have outlived its own.
bool needsResize(const LayerItem &cell, QSize size)
{
    const auto *strokes = dynamic_cast<const StrokeDrawing *>(cell.drawing.get());
    return strokes ? strokes->size() != size : cell.isOriginal();
}

} // namespace

VisualLayer::VisualLayer(QSize frameSize, QObject *parent) : Layer(parent), m_frameSize(frameSize)
{
}

VisualLayer::~VisualLayer() = default;

int VisualLayer::numFrames() const
{
    return static_cast<int>(m_frames.size());
}

void VisualLayer::insertBlankAfter(int frameId)
{
    if (frameId < 0 || frameId > numFrames() || numFrames() >= maximumFrames)
        return;
    m_frames.insert(frameId, newBlankItem());
    spreadDrawing(frameId + 1);
}

void VisualLayer::insertCloneAfter(int frameId)
{
    if (frameId == 0) {
        insertBlankAfter(0);
        return;
    }
    const auto held = item(frameId);
    if (held && numFrames() < maximumFrames)
        m_frames.insert(frameId, std::make_shared<LayerItem>(LayerItem::Type::Clone, held->drawing));
}

QString VisualLayer::frameLabel(int frameId) const
{
    const auto cell = item(frameId);
    const QString name = cell ? cell->drawing->name() : QString();
    return name.isEmpty() ? QString::number(frameId) : name;
}

void VisualLayer::setFrameSize(QSize size, MR::FitMode fitMode, QProgressDialog *progress)
{
    if (size.isEmpty() || size == m_frameSize)
        return;
    const QTransform fit = fitTransform(m_frameSize, size, fitMode);
    for (const auto &cell : std::as_const(m_frames)) {
        if (needsResize(*cell, size))
            cell->drawing->resize(size, fitMode);
        // The same motion as before, seen in the new frame's coordinates.
        if (!cell->offPegsTransform.isIdentity())
            cell->offPegsTransform = fit.inverted() * cell->offPegsTransform * fit;
        if (progress)
            progress->setValue(progress->value() + 1);
    }
    m_frameSize = size;
}

std::shared_ptr<LayerItem> VisualLayer::item(int frameId) const
{
    return isValidFrame(frameId) ? m_frames.at(frameId - 1) : nullptr;
}

bool VisualLayer::setFrames(const QList<std::shared_ptr<LayerItem>> &frames)
{
    const auto isUnusable = [](const std::shared_ptr<LayerItem> &cell) { return !cell || !cell->drawing; };
    if (frames.isEmpty() || frames.size() > maximumFrames || std::any_of(frames.begin(), frames.end(), isUnusable) ||
        frames.first()->isClone())
        return false;
    m_frames = frames;
    return true;
}

int VisualLayer::shownFrame(int frameId) const
{
    if (frameId < 1 || m_frames.isEmpty())
        return 0;
    if (isValidFrame(frameId))
        return frameId;
    switch (beyondLast()) {
    case FreezeLast:
        return numFrames();
    case CycleDrawings:
        return (frameId - 1) % numFrames() + 1;
    case ShowNothing:
        break;
    }
    return 0;
}

QRect VisualLayer::inkedRect(int frameId) const
{
    const LayerItem *cell = shownItem(frameId);
    return cell ? inkedRectOf(*cell->drawing, m_frameSize) : QRect();
}

bool VisualLayer::isShown() const
{
    return m_visible && isOpacityShown(m_opacity);
}

void VisualLayer::setVisible(bool visible)
{
    if (m_visible == visible)
        return;
    m_visible = visible;
    emit visibleChanged(m_visible);
}

void VisualLayer::setOpacity(double opacity)
{
    if (!std::isnan(opacity))
        m_opacity = std::clamp(opacity, 0.0, 1.0);
}

const LayerItem *VisualLayer::shownItem(int frameId) const
{
    const int shown = shownFrame(frameId);
    return shown > 0 ? m_frames.at(shown - 1).get() : nullptr;
}

void VisualLayer::appendItem(std::shared_ptr<LayerItem> item)
{
    m_frames.append(std::move(item));
}

// The clones behind the cell at frameId take its drawing, up to the first cell of another kind.
void VisualLayer::spreadDrawing(int frameId)
{
    const auto source = item(frameId);
    if (!source)
        return;
    for (int f = frameId; f < numFrames() && m_frames.at(f)->isClone(); ++f)
        m_frames.at(f)->drawing = source->drawing;
}

} // namespace Model
