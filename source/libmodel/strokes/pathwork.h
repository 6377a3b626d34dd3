#pragma once

class QPainterPath;

namespace Model {

/// Can it be found out quickly whether \a path contains something? Qt may look at every element of a winding path once
/// for each of its elements. Keeping a mask that limits nothing costs less.
[[nodiscard]] bool canTestContainment(const QPainterPath &path);

/// Are \a one and \a other, or one path with itself (\a other empty), united quickly? Qt takes time with the square of
/// the number of crossings: 30,000 are a tenth of a second, ten times as many take ten. A hand has its crossings with
/// neighbours only.
[[nodiscard]] bool isUnitedQuickly(const QPainterPath &one, const QPainterPath &other);

} // namespace Model
