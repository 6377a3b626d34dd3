#pragma once

namespace UI {

/// Makes the user-interface layer ready: its resources, the fonts, the application's font and palette.
///
/// Needs the QApplication. Does its work once; until shutDown() a further call does nothing. A font that can't be
/// loaded is not reported: text then shows in the platform's font.
void startUp();

/// Ends the user-interface layer: startUp() may run again. Nothing is released.
void shutDown();

} // namespace UI
