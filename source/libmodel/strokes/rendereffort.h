#pragma once

#include <QRect>
#include <QtGlobal>

namespace Model {

class CompoundStroke;
class Stroke;

/// How many children of \a compound, from the oldest on, can be drawn within \a rect (paper pixels) with an effort of
/// \a limit; all of them, as a rule.
///
/// The unit is a pass over a pixel, about a nanosecond. It is counted roughly, segment by segment and mask by mask:
/// each segment by the rectangle around it. What lies outside of \a rect costs next to nothing.
[[nodiscard]] int drawableChildren(const CompoundStroke &compound, QRect rect, qint64 limit);

/// True if \a stroke holds a line, for which drawing takes a renderer.
[[nodiscard]] bool needsRenderer(const Stroke &stroke);

} // namespace Model
