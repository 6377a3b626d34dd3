#pragma once

class QKeyEvent;
class QWidget;

/// Whether keys have a meaning of their own to \a widget (may be null): text goes into it, or it is a menu that is
/// walked by keys.
[[nodiscard]] bool takesKeys(const QWidget *widget);

/// Whether the focus is on a button or a box, which was reached by key then, and is pressed or opened by key.
[[nodiscard]] bool isButtonFocused();

/// Whether \a event, which would be somebody's shortcut, means something to the widget that gets it: single keys go
/// into text, choose entries of menus, press buttons.
[[nodiscard]] bool belongsToWidget(const QKeyEvent &event);
