#pragma once

#include <QTransform>

#include <optional>

namespace Model {

/// The rotation in \a transform in degrees, the angle of its first row (of its second where the first is null),
/// positive from the x axis towards the y axis. 0 for a null matrix. A matrix that turns by t and scales evenly gives
/// t, in the range -180 to 180.
[[nodiscard]] double rotationDegrees(const QTransform &transform);

/// The transform that a cell gets from the numbers a file gives: a move by (\a dx, \a dy) and a rotation about the
/// moved origin by \a degrees. What is not given is left out; a scale has no place in it.
[[nodiscard]] QTransform cellTransform(std::optional<double> dx, std::optional<double> dy,
                                       std::optional<double> degrees);

} // namespace Model
