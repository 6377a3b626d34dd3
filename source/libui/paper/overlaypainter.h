#pragma once

#include "libui/paper/paperoverlay.h"

class QPainter;
class QRect;
class QTransform;

namespace UI {

// What lies on top of the sheet, piece by piece. Painters are in widget coordinates and antialias; \a rect is the part
// of the widget that is painted, to which the painter is clipped: what doesn't touch it is left out, and what does
// takes the same pixels whatever the part is.

/// Paints the grid of \a overlay. \a view is the widget's whole rectangle, to which lines are cut.
void paintGrid(QPainter *painter, const QRect &rect, const PaperOverlay &overlay, const QTransform &paperToWidget,
               const QRect &view);

/// Paints the symbol of the running gesture, if there is one.
void paintSymbol(QPainter *painter, const QRect &rect, const PaperOverlay &overlay);

/// Paints the button that puts the frame back on its pegs, if it is shown.
void paintOffPegsButton(QPainter *painter, const QRect &rect, const PaperOverlay &overlay);

/// Paints the lasso in progress, if there is one.
void paintLasso(QPainter *painter, const QRect &rect, const PaperOverlay &overlay);

} // namespace UI
