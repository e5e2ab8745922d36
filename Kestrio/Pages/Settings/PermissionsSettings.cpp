#include "Kestrio/Pages/Settings/PermissionsSettings.h"

#include "Kestrio/Pages/StateWords.h"

namespace kestrio::PermissionsSettings {
namespace {

constexpr auto allowed = "Allowed";
constexpr auto notYet = "Not yet allowed";

std::string titleStatus(std::optional<bool> isGranted) {
    if (!isGranted)
        return notRunningBanner().headline;
    return *isGranted ? allowed : notYet;
}

SettingRow accessibilityRow(const State& state) {
    SettingButtons control{.buttons = {}, .text = titleStatus(state.isAccessibilityGranted)};
    if (state.isAccessibilityGranted == false)
        control.buttons.push_back({"Grant Access"});
    return {.id = accessibility,
            .title = "Accessibility",
            .help = "Reads window titles, so you can see which file, document or chat you were in.",
            .control = std::move(control)};
}

SettingRow windowTitlesRow(const State& state) {
    return {.id = windowTitles,
            .title = "Window Titles",
            .help = "If you rebuild the app and titles stop appearing, remove Kestrio from the Accessibility list with "
                    "“–” and add it again.",
            .control = SettingButtons{.buttons = {{"Refresh"}}, .text = titleStatus(state.isAccessibilityGranted)}};
}

SettingButtons browserControl(AutomationStatus status) {
    switch (status) {
    case AutomationStatus::granted: return {.buttons = {}, .text = allowed};
    case AutomationStatus::denied: return {.buttons = {{"Open Settings"}}, .text = "Denied"};
    case AutomationStatus::notRunning: return {.buttons = {{"Allow"}}, .text = "Open the browser to check"};
    case AutomationStatus::notDetermined:
    case AutomationStatus::unknown: break;
    }
    return {.buttons = {{"Allow"}}, .text = notYet};
}

SettingRow browserRow(const BrowserPermission& permission) {
    return {.id = permission.browser.bundleID,
            .title = permission.browser.name,
            .control = browserControl(permission.status),
            .icon = AppIcon{permission.browser.bundleID},
            .titleKind = SettingTitle::name};
}

SettingsSection browserTabs(const State& state) {
    SettingsSection section{
        .title = "Browser Tabs",
        .help = "Lets Kestrio read the address and title of the active tab (not its contents). Firefox and Zen don't "
                "support this, so only their window titles are recorded. Nothing ever leaves your Mac.",
        .rows = {}};
    for (const auto& permission : state.browsers)
        section.rows.push_back(browserRow(permission));
    if (state.browsers.empty() && state.areBrowsersKnown)
        section.note = "No supported browsers found (Chrome, Safari, Brave, Edge, Arc, Vivaldi, Opera).";
    section.rows.push_back({.id = refresh, .title = "", .control = SettingButtons{.buttons = {{"Refresh"}}}});
    return section;
}

} // namespace

std::vector<SettingsSection> sections(const State& state) {
    return {{.title = "Window Titles",
             .rows = {accessibilityRow(state), windowTitlesRow(state)},
             .note = state.isAccessibilityGranted == false ? state.advice : std::nullopt},
            browserTabs(state)};
}

} // namespace kestrio::PermissionsSettings
