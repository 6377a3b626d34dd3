#pragma once

/// Defaults that others than the settings go back to.
namespace Model::SettingsDefaults {

/// Percent.
constexpr int uiScalePercent = 100;
/// Minutes.
constexpr int autoSaveIntervalMins = 15;
constexpr int autoSaveNumFiles = 3;

} // namespace Model::SettingsDefaults
