#pragma once

namespace UI {

/// The size of the interface as the user has chosen it, 1 being the normal one.
///
/// Everything that has a size of its own derives it from here, and again on Model::Settings::UIScaleChanged.
double uiScale();

/// \a value, in logical pixels at scale 1, at the present scale; the fraction is cut off.
int scaled(double value);

} // namespace UI
