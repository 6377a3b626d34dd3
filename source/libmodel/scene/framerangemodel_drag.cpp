// What is shown while a cell is dragged.

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/framerangemodel_p.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Model {

bool FrameRangeModel::beginDrag(DragMode mode, const QModelIndex &index)
{
    endDrag();
    d->dropDrag();
    if (!isOwnIndex(index) || (mode != SlideMode && mode != AddClonesMode))
        return false;
    const QModelIndex source = mapToSource(index);
    if (!source.isValid() || !d->isVisual(index.column()) || source.data(SceneModel::BeyondLastRole).toBool())
        return false;
    if (mode == SlideMode && (source.row() == 0 || source.data(SceneModel::LocalCloneRole).toBool()))
        return false;

    d->dragRow = source.row();
    d->dragColumn = source.column();
    if (mode == SlideMode)
        d->beginSlide();
    else
        d->beginAddClones();
    d->mode = mode;
    announceDragHeaders(mode);
    return true;
}

void FrameRangeModel::setDragOffset(int value)
{
    if (d->mode == NoDrag || !d->moveTo(value))
        return;
    emit layoutAboutToBeChanged();
    d->showOffsets();
    keepHeldIndexes(0);
    emit layoutChanged();
    if (d->mode == AddClonesMode)
        announceLastFrames();
}

void FrameRangeModel::endDrag()
{
    const DragMode mode = d->mode;
    if (mode == NoDrag)
        return;
    emit layoutAboutToBeChanged();
    d->mode = NoDrag;
    d->slide = {};
    d->shifts.clear();
    d->displayedLast = d->range.last;
    keepHeldIndexes(0);
    emit layoutChanged();
    announceDragHeaders(mode);
}

FrameRangeModel::DragMode FrameRangeModel::dragMode() const
{
    return d->mode;
}

int FrameRangeModel::offset() const
{
    return d->offset;
}

int FrameRangeModel::lowestOffset() const
{
    return d->lowestOffset;
}

int FrameRangeModel::highestOffset() const
{
    return d->highestOffset;
}

int FrameRangeModel::minimumOffset() const
{
    return d->minimumOffset;
}

int FrameRangeModel::maximumOffset() const
{
    return d->maximumOffset;
}

bool FrameRangeModel::Private::isVisual(int column) const
{
    const Layer *layer = scene ? scene->layer(column) : nullptr;
    return layer && Layer::isVisualType(layer->layerType());
}

bool FrameRangeModel::Private::goesAlong(int column) const
{
    const Layer *layer = scene->layer(column);
    const Layer *dragged = scene->layer(dragColumn);
    return layer && dragged && (column == dragColumn || (layer->isLinked() && dragged->isLinked()));
}

ShownCell FrameRangeModel::Private::shownAt(int row, int column) const
{
    const int position = row + range.first - 1;
    if (mode == SlideMode && column == dragColumn)
        return slide.at(position);
    const int shift = shiftOf(column);
    if (mode != AddClonesMode || shift == 0)
        return {position, false};
    if (shift > 0) {
        if (position <= dragRow)
            return {position, false};
        return position <= dragRow + shift ? ShownCell{dragRow, true} : ShownCell{position - shift, false};
    }
    return {position <= dragRow + offset ? position : position - shift, false};
}

int FrameRangeModel::Private::positionOf(int sourceRow, int column) const
{
    if (mode == SlideMode && column == dragColumn)
        return slide.positionOf(sourceRow);
    const int shift = shiftOf(column);
    if (mode != AddClonesMode || shift == 0)
        return sourceRow;
    if (shift > 0)
        return sourceRow <= dragRow ? sourceRow : sourceRow + shift;
    if (sourceRow <= dragRow + offset)
        return sourceRow;
    return sourceRow <= dragRow + offset - shift ? -1 : sourceRow + shift;
}

int FrameRangeModel::Private::lastShown() const
{
    return mode == NoDrag ? std::min(displayedLast, scene->maximumFrameNumber()) : displayedLast;
}

// The scene tells of its length before it tells of the range that follows from it.
FrameSpan FrameRangeModel::Private::sceneRange() const
{
    if (!scene)
        return {};
    const int last = std::min(scene->rangeLast(), scene->maximumFrameNumber());
    return {std::min(scene->rangeFirst(), last), last};
}

void FrameRangeModel::Private::takeOverRange()
{
    range = sceneRange();
    displayedLast = range.last;
}

void FrameRangeModel::Private::dropDrag()
{
    mode = NoDrag;
    dragRow = -1;
    dragColumn = -1;
    offset = lowestOffset = highestOffset = 0;
    minimumOffset = maximumOffset = 0;
    slide = {};
    shifts.clear();
    displayedLast = range.last;
}

int FrameRangeModel::Private::dropDragAndTakeOverRange()
{
    if (mode != NoDrag)
        dropDrag();
    const int firstBefore = range.first;
    takeOverRange();
    return range.first - firstBefore;
}

bool FrameRangeModel::Private::isClone(int row, int column) const
{
    const VisualLayer *visual = scene->visualLayer(column);
    return visual && row >= 0 && row < visual->numFrames() && visual->frames().at(row)->isClone();
}

// How far the column's timing reaches: its cells, or the notes that were made.
int FrameRangeModel::Private::columnLength(int column) const
{
    const Layer *layer = scene->layer(column);
    const auto *annotation = qobject_cast<const AnnotationLayer *>(layer);
    return annotation ? static_cast<int>(annotation->images().size()) : layer->numFrames();
}

void FrameRangeModel::Private::beginSlide()
{
    for (int row = range.first - 1; row < dragRow; ++row)
        minimumOffset -= isClone(row, dragColumn) ? 1 : 0;
    const int end = std::min(range.last, columnLength(dragColumn));
    for (int row = dragRow + 1; row < end; ++row)
        maximumOffset += isClone(row, dragColumn) ? 1 : 0;
}

// Is a hold at \a row in every layer that goes along and reaches there, so that it can be taken out of all?
bool FrameRangeModel::Private::canShrinkAt(int row) const
{
    for (int column = 0; column < scene->layerCount(); ++column) {
        if (isVisual(column) && goesAlong(column) && row < columnLength(column) && !isClone(row, column))
            return false;
    }
    return true;
}

void FrameRangeModel::Private::beginAddClones()
{
    int longest = 0;
    for (int column = 0; column < scene->layerCount(); ++column) {
        if (goesAlong(column))
            longest = std::max(longest, columnLength(column));
    }
    maximumOffset = std::max(Layer::maximumFrames - longest, 0);
    while (dragRow + minimumOffset >= range.first - 1 && canShrinkAt(dragRow + minimumOffset))
        --minimumOffset;
}

bool FrameRangeModel::Private::moveTo(int value)
{
    value = std::clamp(value, minimumOffset, maximumOffset);
    if (value == offset)
        return false;
    offset = value;
    lowestOffset = std::min(lowestOffset, offset);
    highestOffset = std::max(highestOffset, offset);
    return true;
}

QList<DraggedLayer> FrameRangeModel::Private::draggedLayers() const
{
    QList<DraggedLayer> layers;
    for (int column = 0; column < scene->layerCount(); ++column)
        layers.append({scene->layer(column)->numFrames(), isVisual(column) && goesAlong(column)});
    return layers;
}

// By how many cells the column gets longer, which it does only as far as it reaches; notes grow on demand.
int FrameRangeModel::Private::shiftByOffset(int column) const
{
    const bool isNotes = column == scene->annotationLayerIdx();
    if (!goesAlong(column) || !(isNotes || isVisual(column)))
        return 0;
    const int length = columnLength(column);
    if (offset > 0)
        return isNotes || length > dragRow ? offset : 0;
    const int firstRemoved = dragRow + offset + 1;
    return -std::clamp(std::min(dragRow + 1, length) - firstRemoved, 0, -offset);
}

void FrameRangeModel::Private::showOffsets()
{
    if (mode == SlideMode) {
        const auto isHold = [this](int row) { return isClone(row, dragColumn); };
        slide = SlideMap(isHold, columnLength(dragColumn), dragRow, offset, lowestOffset, highestOffset);
        return;
    }
    shifts.clear();
    for (int column = 0; column < scene->layerCount(); ++column)
        shifts.append(shiftByOffset(column));
    displayedLast = offset > 0 ? rangeAfterAdding(range, draggedLayers(), dragRow + 1, offset).last
                               : rangeAfterDeleting(range, draggedLayers(), dragRow + 1, -offset).last;
}

} // namespace Model
