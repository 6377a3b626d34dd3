#pragma once

#include "libmodel/strokes/floatingselection.h"

#include <QPointF>

#include <optional>

/// What dragging a handle makes of a floating selection's transform.
///
/// Each function takes the transform as it was at the press, and the way of the pointer from \a press to \a now in
/// paper coordinates, so that zoom, rotation and mirroring of the view are out of the game. The pivot of the transform
/// is in the coordinates of the content and, but for pivotMoved(), stays where it is there. A way that leads too far
/// makes a transform that is not usable.
///
/// The selection is turned as it is seen, and scaled along its own sides: it stays a rectangle whatever is done in
/// which order. As the scale comes first in a transform, next to the paper, it is kept as a scale along the sides as
/// they lie there, and a turn takes it along.
namespace UI::FloatingDrag {

using Transform = Model::FloatingSelection::Transform;

/// What was under the press comes under the pointer.
[[nodiscard]] Transform moved(const Transform &from, QPointF press, QPointF now);

/// The pivot goes the way of the pointer, everything else stays.
[[nodiscard]] Transform pivotMoved(const Transform &from, QPointF press, QPointF now);

/// Turned about the pivot, by the angle between its lines to the press and to the pointer.
[[nodiscard]] Transform rotated(const Transform &from, QPointF press, QPointF now);

/// Scaled about the pivot, so that \a corner (of the content's rectangle, in its coordinates) goes the way of the
/// pointer; \a evenly: by the same in both directions, as far as the way leads away from the pivot.
///
/// Beyond the pivot it comes out mirrored. Nothing where the result could not be inverted: at the pivot itself, and
/// beyond smallestScale and largestScale.
[[nodiscard]] std::optional<Transform> scaled(const Transform &from, QPointF corner, QPointF press, QPointF now,
                                              bool evenly);

/// Turned as by rotated(), and then scaled evenly by what that leaves of the way, towards the pivot or away from it.
/// Nothing as with scaled().
[[nodiscard]] std::optional<Transform> scaledAndRotated(const Transform &from, QPointF press, QPointF now);

/// How much smaller or larger than its content a selection can be made.
inline constexpr double smallestScale = 1.0 / 1024.0;
inline constexpr double largestScale = 1024.0;

} // namespace UI::FloatingDrag
