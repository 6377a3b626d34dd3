#pragma once

class QPainter;
class QStyleOption;

namespace UI {

// The marks of menu entries. They fill their rectangles, which grow with the menu's font, in the colour of the entry's
// text: what is not checked is as plain to see as what is.

/// The arrow of an entry that opens a menu, to the right, or to the left if \a isToLeft.
void paintMenuArrow(QPainter &painter, const QStyleOption &option, bool isToLeft);

/// The box of an entry that can be checked; it is, if the option's state has State_On.
void paintMenuCheckBox(QPainter &painter, const QStyleOption &option);

} // namespace UI
