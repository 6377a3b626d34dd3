#pragma once

#include <QList>

namespace Model {

/// The first and the last frame of the playback range, from 1. A value.
struct FrameSpan
{
    int first = 1;
    int last = 1;

    bool operator==(const FrameSpan &other) const = default;
};

/// What the range goes by when timing is edited: how long a layer is, and whether the edit reaches it.
struct DraggedLayer
{
    int numFrames = 0;
    bool goesAlong = false; ///< is the layer edited, or linked to it
};

/// The playback range after \a count holds were added behind \a frameId to the layers that go along and reach it.
[[nodiscard]] FrameSpan rangeAfterAdding(FrameSpan range, const QList<DraggedLayer> &layers, int frameId, int count);
/// The playback range after \a count frames were deleted from \a frameId downwards, in the layers that go along as far
/// as they have these frames.
[[nodiscard]] FrameSpan rangeAfterDeleting(FrameSpan range, QList<DraggedLayer> layers, int frameId, int count);

} // namespace Model
