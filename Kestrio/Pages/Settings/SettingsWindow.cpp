#include "Kestrio/Pages/Settings/SettingsWindow.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <vector>

namespace kestrio {

std::string_view symbol(SettingsTab tab) {
    switch (tab) {
    case SettingsTab::general: return "gearshape";
    case SettingsTab::categories: return "tag";
    case SettingsTab::projects: return "folder";
    case SettingsTab::optimization: return "bolt";
    case SettingsTab::permissions: return "lock.shield";
    case SettingsTab::data: return "cylinder";
    case SettingsTab::about: return "info.circle";
    }
    return {};
}

std::optional<SettingsTab> settingsTab(std::string_view raw) {
    for (const auto tab : allCases<SettingsTab>())
        if (raw == rawText(tab))
            return tab;
    return std::nullopt;
}

std::optional<std::string> settingsTabError(std::string_view text) {
    if (settingsTab(text))
        return std::nullopt;
    std::vector<std::string_view> known;
    for (const auto tab : allCases<SettingsTab>())
        known.emplace_back(rawText(tab));
    return fmt::format("there is no tab \"{}\"; there are {}", text, fmt::join(known, ", "));
}

SettingsTab openingTab(const std::optional<std::string>& requested, const std::optional<std::string>& stored) {
    const auto asked = requested ? settingsTab(*requested) : std::nullopt;
    return asked.value_or(choiceOf<SettingsTab>(stored));
}

} // namespace kestrio
