#pragma once

namespace UI {

/// Makes the user-interface layer ready: its resources, the fonts, the application's font and palette. From now on the
/// application's font follows the scale of the interface.
///
/// Needs the QApplication. Does its work once; until shutDown() a further call does nothing. A font that can't be
/// loaded is not reported: text then shows in the platform's font.
void startUp();

/// Ends the user-interface layer: startUp() may run again. The font is as it was at scale 1 and follows the scale no
/// more; nothing else is released.
void shutDown();

} // namespace UI
