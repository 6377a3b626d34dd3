#pragma once

#include "libmodel/base/mr.h"

#include <QPainterPath>
#include <QRectF>

namespace UI {

/// The lines of the grid \a type on a sheet that covers \a paperRect, in paper coordinates and within it: straight
/// lines only, each a subpath of its own. Empty for an empty sheet.
///
/// - FieldGuide: 30 columns and rows, both diagonals, a margin of 5 %
/// - Safety: margins of 5 % and 10 %, marks at the middles of their sides and a cross in the centre
/// - Thirds: 3 columns and rows
/// - Diagonals: both diagonals, lines at 30 % from each edge, and from each corner the perpendicular onto the diagonal
///   that does not begin there
/// - Renaissance: 4 columns and rows, and through the points at 25 % of each side the parallels of both diagonals
QPainterPath gridPath(MR::GridType type, const QRectF &paperRect);

} // namespace UI
