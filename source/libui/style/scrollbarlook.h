#pragma once

#include <QStyle>

class QStyleOptionSlider;

namespace UI {

/// The scroll bars that the program draws itself. None has arrow buttons: the groove is the whole bar. The functions
/// below that take a look are for these, not for Base.
enum class ScrollBarLook {
    Base,  ///< left to the base style
    Sheet, ///< thick and flat, with the sheet's shadow going on in the vertical one
    Slim,  ///< a rounded handle on a clear groove
};

/// The look that \a widget is tagged for; Base for null.
ScrollBarLook scrollBarLook(const QWidget *widget);

/// The place of \a part in \a bar; empty for what such a bar doesn't have.
QRect scrollBarPart(const QStyleOptionSlider &bar, ScrollBarLook look, QStyle::SubControl part);

/// The part at \a position, SC_None outside. The handle reaches from edge to edge here.
QStyle::SubControl scrollBarPartAt(const QStyleOptionSlider &bar, ScrollBarLook look, QPoint position);

/// Width of a vertical bar, height of a horizontal one, in logical pixels.
int scrollBarExtent(ScrollBarLook look);

/// The least length of a handle, in logical pixels.
int shortestScrollBarHandle();

/// Paints \a bar with groove and handle; the handle only if there is anything to scroll.
void paintScrollBar(QPainter &painter, const QStyleOptionSlider &bar, ScrollBarLook look);

} // namespace UI
