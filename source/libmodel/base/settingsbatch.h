#pragma once

class QSettings;

namespace Model {

/// While one lives, what is set in Settings goes to the store together, when the last one ends.
///
/// A write reaches the disk before it returns, which takes milliseconds; a structure of ten values should not take ten
/// times as long. Nests. GUI thread only.
class SettingsBatch
{
public:
    SettingsBatch();
    ~SettingsBatch();
    SettingsBatch(const SettingsBatch &) = delete;
    SettingsBatch &operator=(const SettingsBatch &) = delete;

    /// The store to write to; opened at first use.
    QSettings &store();
};

} // namespace Model
