#include "libmodel/layers/visuallayer.h"

#include "libmodel/base/fuzzy.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/fittransform.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QProgressDialog>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Model {

namespace {

QRect inkedRectOf(const Drawing &drawing, QSize frameSize)
{
    if (const auto *strokes = dynamic_cast<const StrokeDrawing *>(&drawing))
        return strokes->inkedRect();
    if (const auto *picture = dynamic_cast<const ImageDrawing *>(&drawing))
        return picture->paintedRect(frameSize);
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

VisualLayer::VisualLayer(const VisualLayer &other)
    : Layer(other), m_frameSize(other.m_frameSize), m_visible(other.m_visible), m_opacity(other.m_opacity)
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

QList<LayerChange> VisualLayer::removeFrame(int frameId)
{
    const auto cell = item(frameId);
    if (!cell)
        return {};
    const auto step = [](LayerChange::Type type, int frame, std::shared_ptr<LayerItem> removed) {
        LayerChange change(type, frame);
        change.item = std::move(removed);
        return change;
    };

    if (const auto hold = item(2); frameId == 1 && hold && hold->isClone()) {
        LayerChange moved(LayerChange::TransformChanged, 1);
        moved.transform = std::exchange(cell->offPegsTransform, hold->offPegsTransform);
        m_frames.removeAt(1);
        return {step(LayerChange::ItemRemoved, 2, hold), moved};
    }
    const CellFinder find = cellFinder();
    if (cell->isOriginal())
        promoteFirstClone(*cell, find);
    else if (cell->isDistantClone())
        unlinkDistantClone(*cell, cellRef(frameId), find);
    if (numFrames() == 1) {
        m_frames.first() = newBlankItem();
        return {step(LayerChange::ItemReplaced, 1, cell)};
    }
    m_frames.removeAt(frameId - 1);
    spreadDrawing(frameId - 1);
    return {step(LayerChange::ItemRemoved, frameId, cell)};
}

QImage VisualLayer::selectionThumbnail(int frameId, QSize size) const
{
    // A picture that is fitted into a size keeps its proportions, and the shorter side has to be long enough too.
    constexpr QSizeF smallest(25, 25);
    const QSizeF fitted = QSizeF(m_frameSize).scaled(smallest, Qt::KeepAspectRatioByExpanding);
    return frameImage(frameId, size.expandedTo(QSize(qCeil(fitted.width()), qCeil(fitted.height()))));
}

QString VisualLayer::frameLabel(int frameId) const
{
    const auto cell = item(frameId);
    const QString name = cell ? cell->drawing->name() : QString();
    return name.isEmpty() ? QString::number(frameId) : name;
}

void VisualLayer::setFrameSize(QSize size, MR::FitMode fitMode, QProgressDialog *progress)
{
    if (size == m_frameSize && progress)
        progress->setValue(progress->value() + numFrames());
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

bool VisualLayer::insertItem(int frameId, std::shared_ptr<LayerItem> item)
{
    if (frameId < 1 || frameId > numFrames() + 1 || numFrames() >= maximumFrames || !item || !item->drawing)
        return false;
    m_frames.insert(frameId - 1, std::move(item));
    spreadDrawing(frameId);
    return true;
}

std::shared_ptr<LayerItem> VisualLayer::replaceItem(int frameId, std::shared_ptr<LayerItem> item)
{
    if (!isValidFrame(frameId) || !item || !item->drawing)
        return {};
    auto replaced = std::exchange(m_frames[frameId - 1], std::move(item));
    spreadDrawing(frameId);
    return replaced;
}

CellRef VisualLayer::cellRef(int frameId) const
{
    const auto cell = item(frameId);
    return cell ? CellRef{identifier(), cell->identifier} : CellRef();
}

void VisualLayer::setCellFinder(const CellFinder &find)
{
    m_cellFinderSource = {};
    if (find)
        m_cellFinderSource = [find] { return find; };
}

void VisualLayer::setCellFinderSource(std::function<CellFinder()> source)
{
    m_cellFinderSource = std::move(source);
}

CellFinder VisualLayer::cellFinder() const
{
    if (m_cellFinderSource)
        return m_cellFinderSource();
    return [this](const CellRef &ref) -> std::shared_ptr<LayerItem> {
        if (ref.layer != identifier())
            return {};
        const auto found = std::find_if(m_frames.begin(), m_frames.end(),
                                        [&ref](const auto &cell) { return cell->identifier == ref.cell; });
        return found == m_frames.end() ? nullptr : *found;
    };
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

void VisualLayer::spreadDrawing(int frameId)
{
    const auto source = item(frameId);
    if (!source)
        return;
    for (int f = frameId; f < numFrames() && m_frames.at(f)->isClone(); ++f)
        m_frames.at(f)->drawing = source->drawing;
}

} // namespace Model
