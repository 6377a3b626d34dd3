#pragma once

#include <QCursor>

namespace Model {

// Pictures of the tip of a drawing tool. Radii are in paper pixels; scale is pixels of the picture per paper pixel. All
// have cursorPixelRatio pixels per logical pixel and their hot spot in the middle. They need a GUI application.

/// A crosshair and a circle of the radius \a outer; the crosshair's arms begin at the radius \a inner.
QCursor penTipCursor(double inner, double outer, double scale, bool faint);

/// A circle of the radius \a outer.
QCursor eraserTipCursor(double outer, double scale, bool faint);

/// A faint ring between the radii \a inner and \a outer with a crosshair, which shows the range of sizes itself.
QCursor sizeRangeCursor(double inner, double outer, double scale);

/// Two halves of a tip in the opacities \a lower and \a upper (0 to 1), which show the range of opacities itself.
QCursor opacityRangeCursor(double lower, double upper, bool erasing);

} // namespace Model
