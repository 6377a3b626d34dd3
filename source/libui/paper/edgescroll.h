#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QRectF>

namespace UI {

/// How the paper moves in one step while something is held near the widget's edges: away from the edge, so that more
/// of what lies there comes into view. Null away from all edges of \a widget, beyond them it goes on. Lengths are
/// logical pixels, proportional to \a deviceRatio.
[[nodiscard]] QPointF edgeScrollStep(const QRectF &widget, QPointF position, double deviceRatio);

/// A step must not lose the paper: moved by \a step, \a paper (its outline in the widget) still meets the middle of
/// \a widget, or it did not before.
[[nodiscard]] bool mayScroll(const QRectF &widget, const QPolygonF &paper, QPointF step, double deviceRatio);

} // namespace UI
