// The tab "General": starting at login, when somebody counts as away, the icons in the bar, how the windows look. Pure.
#pragma once

#include "Kestrio/Pages/Settings/SettingRow.h"

namespace kestrio::GeneralSettings {

/// The one row that stands for no stored value: whether the program starts when its person logs in.
inline constexpr auto launchAtLogin = "launchAtLogin";

/// Each other row's identifier is the key of what it sets. `startsAtLogin` is absent where that cannot be told, and
/// the row then left out.
std::vector<SettingsSection> sections(const KeyValueStore& settings, std::optional<bool> startsAtLogin);

} // namespace kestrio::GeneralSettings
