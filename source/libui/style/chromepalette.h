#pragma once

#include <QPalette>

namespace UI {

/// The palette of the whole window: light text on warm greys. \return a palette with every role set in every group, so
/// that no colour of the desktop shows through.
QPalette chromePalette();

} // namespace UI
