#pragma once

#include <QLineF>
#include <QPolygonF>
#include <QRectF>

#include <optional>

namespace UI {

// A sheet at a high zoom has corners far beyond what a rasteriser works with exactly, so shapes are cut down to what is
// painted before they are drawn.

/// The part of \a line within \a rect, in the line's direction. \return nothing if they don't meet.
std::optional<QLineF> clippedLine(const QLineF &line, const QRectF &rect);

/// The part of a convex polygon within \a rect, empty if they don't meet. The polygon need not be closed.
QPolygonF clippedPolygon(const QPolygonF &convex, const QRectF &rect);

} // namespace UI
