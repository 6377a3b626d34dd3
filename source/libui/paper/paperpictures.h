#pragma once

#include "libui/paper/paperoverlay.h"

#include <QPixmap>
#include <QRect>
#include <QSizeF>
#include <QString>

namespace UI {

/// The picture `:/paper/NAME.svg`, \a size logical pixels large, for a screen of \a ratio device pixels per logical
/// one. Drawn once for each size and ratio. \return null if there is no such picture, it can't be read, or \a size is
/// empty.
QPixmap paperPicture(const QString &name, QSizeF size, double ratio);

/// The name of a symbol's picture; empty for Symbol::None.
QString symbolName(PaperOverlay::Symbol symbol);
/// The name of the button's picture in a state; empty for Button::Hidden.
QString buttonName(PaperOverlay::Button button);

/// Where the symbol of \a overlay is painted, widget coordinates; null without one. Nothing outside of it is touched.
QRect symbolBounds(const PaperOverlay &overlay);
/// The same for the button.
QRect buttonBounds(const PaperOverlay &overlay);
/// The same for the lasso in progress.
QRect lassoBounds(const PaperOverlay &overlay);

} // namespace UI
