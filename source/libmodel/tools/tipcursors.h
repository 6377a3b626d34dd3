#pragma once

#include <QCursor>

namespace Model {

// Pictures of the tip of a drawing tool. Radii are in paper pixels; scale is pixels of the picture per paper pixel. All
// have cursorPixelRatio pixels per logical pixel and their hot spot in the middle. They need a GUI application.

/// Whether a circle of the radius \a outer is too large for a cursor: it would take longer to draw than a frame of the
/// view, and screens refuse pointers of such a size.
bool isTipTooLarge(double outer, double scale);

/// The same for an eraser, whose picture is twice as large as its circle.
bool isEraserTipTooLarge(double outer, double scale);

/// A crosshair and a circle of the radius \a outer; the crosshair's arms begin at the radius \a inner.
QCursor penTipCursor(double inner, double outer, double scale, bool faint);

/// A circle of the radius \a outer.
QCursor eraserTipCursor(double outer, double scale, bool faint);

/// A faint ring between the radii \a inner and \a outer with a crosshair, which shows the range of sizes itself.
QCursor sizeRangeCursor(double inner, double outer, double scale);

/// Two halves of a tip in the opacities \a lower and \a upper (0 to 1), which show the range of opacities itself.
QCursor opacityRangeCursor(double lower, double upper, bool erasing);

} // namespace Model
