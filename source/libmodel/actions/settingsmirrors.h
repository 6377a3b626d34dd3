#pragma once

namespace Model {

class ActionManager;

/// Ties the actions of \a catalogue that stand for settings to them: they are checked as the settings are, follow their
/// changes, and write them back when toggled. Those that step a setting on do so when triggered.
void mirrorSettings(ActionManager &catalogue);

} // namespace Model
