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
/// each segment by the rectangle around it, and as often as it is drawn where the whole is drawn some rows at a time.
/// What lies outside of \a rect costs next to nothing. \a effort, if it is given, becomes what the drawable children
/// take.
[[nodiscard]] int drawableChildren(const CompoundStroke &compound, QRect rect, qint64 limit, qint64 *effort = nullptr);

/// True if \a stroke holds a line, for which drawing takes a renderer.
[[nodiscard]] bool needsRenderer(const Stroke &stroke);

} // namespace Model
