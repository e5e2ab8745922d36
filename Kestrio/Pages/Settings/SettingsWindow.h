// The frame of the settings window: its title, its tabs, and which of them opens. Plain values.
#pragma once

#include "Kestrio/Shell/Settings.h"

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

struct SettingsWindow {
    static constexpr auto title = "Settings";
    static constexpr auto tabsName = "Tabs"; // for those who do not see them
};

std::string_view symbol(SettingsTab tab);

/// Absent for a text that is not exactly one of the raw texts.
std::optional<SettingsTab> settingsTab(std::string_view rawText);
/// What is wrong with a text that somebody gave for a tab's raw text, and which there are. Absent when it is one.
std::optional<std::string> settingsTabError(std::string_view text);

/// The tab that opens: the one that was asked for, else the one stored, else the first.
SettingsTab openingTab(const std::optional<std::string>& requested, const std::optional<std::string>& stored);

} // namespace kestrio
