// The tab "Permissions": what the desktop and the browsers let the program read, and the ways to be let in. Pure.
#pragma once

#include "Kestrio/Pages/Settings/SettingRow.h"
#include "Kestrio/Shell/BrowserAccess.h"

namespace kestrio::PermissionsSettings {

inline constexpr auto accessibility = "accessibility";
inline constexpr auto windowTitles = "windowTitles";
inline constexpr auto refresh = "refresh"; // the row below the browsers

struct State {
    std::optional<bool> isAccessibilityGranted = {}; // absent while no agent tells
    std::vector<BrowserPermission> browsers = {};
    bool areBrowsersKnown = true;           // false until they were looked at once
    std::optional<std::string> advice = {}; // what can be done about titles, once the person asked
};

/// A browser's row goes by its bundle identifier. The first button of a row is the way in.
std::vector<SettingsSection> sections(const State& state);

} // namespace kestrio::PermissionsSettings
