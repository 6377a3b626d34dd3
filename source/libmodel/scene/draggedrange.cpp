#include "libmodel/scene/draggedrange.h"

#include <algorithm>

namespace Model {

FrameSpan rangeAfterAdding(FrameSpan range, const QList<DraggedLayer> &layers, int frameId, int count)
{
    // Cells behind the range do not move its end.
    if (frameId > range.last)
        return range;
    int longest = 0;
    for (const DraggedLayer &layer : layers) {
        if (layer.goesAlong && layer.numFrames >= frameId)
            longest = std::max(longest, layer.numFrames);
    }
    // The range grows with each cell that a layer puts out beyond it.
    range.last += std::clamp(longest - range.last + count, 0, count);
    return range;
}

FrameSpan rangeAfterDeleting(FrameSpan range, QList<DraggedLayer> layers, int frameId, int count)
{
    for (int frame = frameId; frame > frameId - count && frame >= 1; --frame) {
        bool shrinks = true;
        int longest = 1;
        for (DraggedLayer &layer : layers) {
            if (layer.goesAlong && layer.numFrames >= frame)
                --layer.numFrames;
            else if (layer.numFrames >= range.last)
                shrinks = false;
            longest = std::max(longest, layer.numFrames);
        }
        if (shrinks && range.last > range.first) {
            --range.last;
            if (frame < range.first)
                --range.first;
        }
        range.first = std::clamp(range.first, 1, longest);
        range.last = std::clamp(range.last, 1, longest);
        // A range of one frame is for scenes of one frame only.
        if (range.first == range.last && longest > 1) {
            if (range.first > 1)
                --range.first;
            else
                ++range.last;
        }
    }
    return range;
}

} // namespace Model
