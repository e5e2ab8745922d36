#include "Kestrio/Pages/Settings/GeneralSettings.h"

#include "Kestrio/Shell/Settings.h"

namespace kestrio::GeneralSettings {
namespace {

/// All cases of a choice that is stored as its raw text.
template <class Choice>
SettingPicker casePicker(const KeyValueStore& settings, const char* key) {
    const auto current = choice<Choice>(settings, key);
    SettingPicker picker;
    for (const auto value : allCases<Choice>())
        picker.choices.push_back({label(value), std::string(rawText(value)), value == current});
    return picker;
}

SettingsSection startup(bool startsAtLogin) {
    return {.title = "Startup",
            .rows = {{.id = launchAtLogin, .title = "Launch at login", .control = SettingSwitch{startsAtLogin}}}};
}

SettingsSection tracking(const KeyValueStore& settings) {
    std::vector<NumberChoice> choices;
    for (const std::int64_t minutes : {1, 2, 3, 5, 10, 15, 30})
        choices.push_back({minutes, countOf(minutes, "minute", "minutes")});
    return {.title = "Tracking",
            .rows = {{.id = settingKey::idleMinutes,
                      .title = "Count me as idle after",
                      .help = "How long without keyboard or mouse until you count as idle and recording stops. A video "
                              "that plays in front of you doesn't count as idle.",
                      .control = numberPicker(choices, settings.get<std::int64_t>(settingKey::idleMinutes))}}};
}

SettingsSection menuBar(const KeyValueStore& settings) {
    return {.title = "In the menu bar",
            .rows = {switchRow(settings, settingKey::showTimeInMenuBar, "Show today's time"),
                     switchRow(settings, settingKey::showActivityLight, "Show the activity light",
                               "A dot on the icon: green while your activity is being recorded, red while it isn't.")}};
}

SettingsSection appearance(const KeyValueStore& settings) {
    auto mode = casePicker<AppearanceMode>(settings, settingKey::appearanceMode);
    mode.shape = SettingPicker::Shape::segments;
    return {.title = "Appearance",
            .rows = {{.id = settingKey::appearanceMode, .title = "Appearance", .control = std::move(mode)},
                     switchRow(settings, settingKey::showYouTubeThumbnails, "Show YouTube thumbnails",
                               "Pictures of the videos you watched are loaded from YouTube, which then sees that they "
                               "were asked for. While this is off, nothing is loaded from the network.")}};
}

SettingsSection systemMonitor(const KeyValueStore& settings) {
    return {
        .title = "System Monitor",
        .rows = {switchRow(settings, settingKey::showSystemMonitor, "Show the system monitor",
                           "A second icon that shows how busy your Mac is. Click it for memory, CPU, disk and heat."),
                 {.id = settingKey::systemMenuStyle,
                  .title = "Icon",
                  .control = casePicker<SystemMenuStyle>(settings, settingKey::systemMenuStyle),
                  .isDisabled = !settings.boolean(settingKey::showSystemMonitor)}}};
}

} // namespace

std::vector<SettingsSection> sections(const KeyValueStore& settings, std::optional<bool> startsAtLogin) {
    std::vector<SettingsSection> all;
    if (startsAtLogin)
        all.push_back(startup(*startsAtLogin));
    all.push_back(tracking(settings));
    all.push_back(menuBar(settings));
    all.push_back(appearance(settings));
    all.push_back(systemMonitor(settings));
    return all;
}

} // namespace kestrio::GeneralSettings
