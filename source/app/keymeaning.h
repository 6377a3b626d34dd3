#pragma once

class QKeyEvent;

/// What a key means to the hand that holds it down.
enum class KeyGesture {
    None,
    Escape,
    Flip,
    View, ///< hand, zoom and rotate in one
    Draw,
    Erase,
    StepBack,
    StepForward,
    SpeedDial,
    Zoom,
    Pan,
    Rotate,
    Palette,
};

/// The gesture of the key and the modifiers of \a event; None for all that is left to shortcuts and widgets.
///
/// On a keyboard whose letters are not Latin ones a key counts for the Latin letter that is printed on it elsewhere, as
/// it does for shortcuts. The number pad's keys are those of the main field.
[[nodiscard]] KeyGesture gestureOf(const QKeyEvent &event);

/// Whether the stepping keys are to go from key drawing to key drawing: with Shift or with Caps Lock, but not with
/// both.
[[nodiscard]] bool stepsByKeyDrawings(const QKeyEvent &event);
