#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>

namespace UI {

class FloatingSelectionView;

/// What lies on top of the sheet for the moment: grid, symbols of a running gesture, lasso, floating selection.
struct PaperOverlay
{
    /// The sign of what the running gesture does.
    enum class Symbol { None, Pan, Zoom, Rotate, OffPegsPan, OffPegsRotate };
    /// The button that puts a frame back on its pegs.
    enum class Button { Hidden, Normal, Hover, Click };

    /// Lines of the grid, paper coordinates; empty for no grid.
    QPainterPath grid = {};
    Symbol symbol = Symbol::None;
    /// The symbol's middle, widget coordinates.
    QPointF symbolPosition = {};
    Button button = Button::Hidden;
    /// Widget coordinates.
    QRectF buttonRect = {};
    /// The lasso in progress, widget coordinates; empty for none.
    QPainterPath lasso = {};
    /// The floating selection with its handles, borrowed for a paint event; null for none.
    const FloatingSelectionView *floating = nullptr;
    /// Interface scale, 1.0 for 100 percent.
    double scale = 1.0;
};

} // namespace UI
