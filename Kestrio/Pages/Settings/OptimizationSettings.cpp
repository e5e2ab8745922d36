#include "Kestrio/Pages/Settings/OptimizationSettings.h"

#include "Kestrio/Base/Collation.h"
#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace kestrio {

OptimizerChoices storedOptimizerChoices(const KeyValueStore& settings) {
    OptimizerChoices choices{.isEnabled = settings.boolean(settingKey::optimizerEnabled)};
    if (const auto stored = settings.get<SettingBytes>(settingKey::optimizerTuning))
        choices.tuning = decodedTuning(stored->bytes).value_or(choices.tuning);
    if (const auto stored = settings.get<SettingBytes>(settingKey::optimizerRules))
        choices.rules = decodedRules(stored->bytes).value_or(choices.rules);
    return choices;
}

namespace OptimizationSettings {
namespace {

/// The number where it is a whole one.
std::optional<std::int64_t> whole(double number) {
    constexpr double most = 1e9;
    return std::abs(number) < most && number == std::floor(number) ? std::optional(static_cast<std::int64_t>(number))
                                                                   : std::nullopt;
}

SettingPicker picker(std::initializer_list<std::int64_t> numbers, double current, std::string_view one,
                     std::string_view several) {
    std::vector<NumberChoice> choices;
    for (const auto number : numbers)
        choices.push_back({number, countOf(number, one, several)});
    return numberPicker(choices, whole(current));
}

SettingPicker modePicker(tindra::OptimizerMode current) {
    SettingPicker modes{.choices = {}, .shape = SettingPicker::Shape::segments};
    for (const auto value : tindra::allOptimizerModes)
        modes.choices.push_back(
            {std::string(tindra::label(value)), std::string(tindra::rawValue(value)), value == current});
    return modes;
}

SettingPicker daysPicker(const KeyValueStore& settings, const char* key, std::initializer_list<std::int64_t> days) {
    std::vector<NumberChoice> choices;
    for (const auto count : days)
        choices.push_back({count, countOf(count, "day", "days")});
    return numberPicker(choices, settings.get<std::int64_t>(key));
}

SettingPicker detailPicker(const KeyValueStore& settings) {
    return numberPicker(
        {{1, "Every second"}, {5, "Every 5 seconds"}, {10, "Every 10 seconds"}, {0, "Minute by minute only"}},
        settings.get<std::int64_t>(settingKey::resourceDetail));
}

void addUnknown(std::vector<KnownApp>& apps, const std::string& id, const std::map<std::string, std::string>& names) {
    if (std::ranges::find(apps, id, &KnownApp::id) != apps.end())
        return;
    const auto named = names.find(id);
    apps.push_back({id, named == names.end() ? id : named->second});
}

SettingButtons neverTouched() {
    return {.buttons = {{.title = "Remove", .symbol = "minus.circle"}}, .text = "Never touched"};
}

SettingRow appRow(const KnownApp& app, SettingControl control) {
    return {.id = app.id,
            .title = app.name,
            .control = std::move(control),
            .icon = AppIcon{app.id},
            .titleKind = SettingTitle::name};
}

} // namespace

std::vector<KnownApp> knownApps(std::vector<KnownApp> running, const tindra::OptimizerRules& rules,
                                const std::map<std::string, std::string>& names, const std::string& locale) {
    auto& apps = running;
    for (const auto& [id, tier] : rules.tiers)
        addUnknown(apps, id, names);
    for (const auto& schedule : rules.schedules)
        for (const auto& [id, tier] : schedule.tiers)
            addUnknown(apps, id, names);
    for (const auto& id : rules.neverTouch)
        addUnknown(apps, id, names);
    const Collation collation(locale);
    std::ranges::stable_sort(apps, [&](const auto& a, const auto& b) { return collation.isBefore(a.name, b.name); });
    return std::move(apps);
}

SettingsSection mainSwitch(const OptimizerChoices& choices) {
    return {.title = "",
            .rows = {{.id = settingKey::optimizerEnabled,
                      .title = "Optimize my Mac",
                      .help = "The main switch. When it's on, apps you've allowed are paused (\"frozen\") while you "
                              "aren't using them. A frozen app uses almost no memory or power, and it wakes the moment "
                              "you open it. The app you're using, calls, music, downloads and terminals are never "
                              "touched. Turn it off and everything is put back at once.",
                      .control = SettingSwitch{choices.isEnabled},
                      .titleKind = SettingTitle::mainWords}},
            .note = "Off until you turn it on. Tap ? next to anything to see what it does."};
}

SettingsSection behaviour(const tindra::OptimizerTuning& tuning) {
    return {
        .title = "How it behaves",
        .rows = {
            {.id = mode,
             .title = "Mode",
             .help = "Balanced waits a while before pausing an app you haven't used. Focus pauses sooner and also "
                     "slows every busy background app, for when you need your Mac as fast as possible right now.",
             .control = modePicker(tuning.mode)},
            {.id = freezeAfter,
             .title = "Freeze after",
             .help = "How long an allowed app must go unused before it is paused. Shorter saves more memory and power. "
                     "The app wakes the moment you open it.",
             .control = picker({5, 10, 15, 30, 60}, tuning.idleMinutes, "minute unused", "minutes unused")},
            {.id = freezeAfterInFocus,
             .title = "Freeze after (Focus)",
             .help = "The same, but used only when Mode is set to Focus. It's shorter, so apps are paused sooner.",
             .control = picker({1, 2, 3, 5}, tuning.focusIdleMinutes, "minute unused", "minutes unused")},
            {.id = checkEvery,
             .title = "Wake to check every",
             .help = "Apps you set to \"Check every few minutes\" are paused, but woken briefly this often so they can "
                     "fetch messages. Shorter means notifications arrive sooner; longer saves more.",
             .control = picker({5, 10, 15, 30}, tuning.checkEveryMinutes, "minute", "minutes")},
            {.id = stayAwake,
             .title = "Stay awake for",
             .help = "How long each quick wake-up lasts. It needs to be long enough for an app like WhatsApp or Slack "
                     "to connect and fetch messages. 45 seconds suits most apps.",
             .control = picker({30, 45, 60, 90}, tuning.wakeSeconds, "second", "seconds")},
            {.id = efficiencyCores,
             .title = "Use efficiency cores",
             .help = "Your Mac has fast cores, and slower cores that use very little power (efficiency cores). When "
                     "this is on, busy apps in the background are moved to the efficiency cores so the fast ones stay "
                     "free for what you're doing. Nothing is paused and nothing is lost.",
             .control = SettingSwitch{tuning.useEfficiencyCores}},
        }};
}

SettingsSection eachApp(const std::vector<KnownApp>& apps, const tindra::OptimizerRules& rules) {
    SettingsSection section{
        .title = "Each app",
        .help = "Choose what happens to each app while you aren't using it. Always on: never paused, notifications "
                "arrive right away. Check every few minutes: paused, but woken briefly to fetch messages. Can wait: "
                "paused until you open it, then it catches up. Apps you don't choose for stay Always on. Finder, "
                "terminals and other essential apps can't be changed.",
        .rows = {}};
    for (const auto& app : apps) {
        const auto chosen = rules.tiers.find(app.id);
        section.rows.push_back(
            appRow(app, tierPicker(chosen == rules.tiers.end() ? tindra::AppTier::alwaysOn : chosen->second)));
    }
    if (apps.empty())
        section.note = noApps;
    return section;
}

SettingsSection schedules() {
    return {.title = "Schedules",
            .help = "Change an app's rule at certain times. For example: Teams \"Always on\" 9 to 6 on weekdays, "
                    "WhatsApp \"Always on\" at night. Each schedule has its own switch, so you can turn it off without "
                    "deleting it. For a one-time need, like \"Teams always on for the next 3 hours\", use that app's "
                    "Options menu on the Performance page.",
            .rows = {}};
}

SettingsSection neverTouch(const std::vector<KnownApp>& apps, const tindra::OptimizerRules& rules) {
    SettingsSection section{
        .title = "Never touch",
        .help = "Apps here are never paused or slowed, whatever else you set. Finder, the Dock, terminals, Xcode, "
                "Docker and Activity Monitor are always protected, even if they aren't listed.",
        .rows = {}};
    SettingPicker others{.choices = {}, .prompt = "Add App…", .areNames = true};
    for (const auto& app : apps) {
        if (rules.neverTouch.contains(app.id))
            section.rows.push_back(appRow(app, neverTouched()));
        else
            others.choices.push_back({app.name, app.id});
    }
    const bool isEmpty = others.choices.empty();
    section.rows.push_back({.id = addNeverTouch, .title = "", .control = std::move(others), .isDisabled = isEmpty});
    return section;
}

SettingsSection alerts(const KeyValueStore& settings) {
    return {.title = "Alerts",
            .rows = {
                switchRow(settings, settingKey::optimizerMemoryAlerts, "Memory warning",
                          "Shows a notification when your Mac has been short of memory for a minute, and tells you "
                          "which apps hold the most. At most one every 30 minutes. Only while optimization is on."),
                switchRow(settings, settingKey::optimizerRunawayAlerts, "Busy app warning",
                          "Shows a notification when an app in the background keeps a processor core busy for 5 "
                          "minutes, which can mean it is stuck. At most once an hour per app. Only while optimization "
                          "is on."),
            }};
}

SettingsSection log(const KeyValueStore& settings, std::optional<std::uint64_t> logBytes, const Calendar& calendar) {
    const bool isThere = logBytes.has_value();
    return {
        .title = "Log",
        .help = "The log is a record of how your Mac performs and how you use it. Every reading of the Mac (CPU, "
                "memory, how fast data moves through RAM and the SSD) is saved at the pace you choose. Every minute "
                "gets a summary together with how you used the Mac: active, idle or away, app switches, open apps, "
                "battery and heat. Each app that mattered is recorded too: CPU, memory, disk, power and time in front. "
                "Plus the moments that matter: slowdowns, memory pressure, apps opening and closing, sleep, and going "
                "idle or away. It stays on this Mac and never records window titles or content.",
        .rows = {
            switchRow(settings, settingKey::resourceLogEnabled, "Keep a log",
                      "Records how your Mac performs and how you use it, all on this Mac: CPU, memory, speeds, which "
                      "apps used what, when you were active or away, and the moments the Mac slowed down. No window "
                      "titles or content. It works even when optimization is off. Turning it off stops recording; "
                      "what's already saved stays until you delete it."),
            {.id = settingKey::resourceDetail,
             .title = "Check how often",
             .help = "How often the log reads your Mac's numbers. Every second is the most detailed and uses about 1% "
                     "of one core. \"Minute by minute only\" records just the summaries.",
             .control = detailPicker(settings)},
            {.id = settingKey::resourceDetailDays,
             .title = "Keep details for",
             .help = "The every-second readings take the most space, so they are deleted after this many days. The "
                     "per-minute summaries are kept longer.",
             .control = daysPicker(settings, settingKey::resourceDetailDays, {1, 3, 7, 14, 30})},
            {.id = settingKey::resourceLogDays,
             .title = "Keep summaries for",
             .help = "How long the per-minute summaries, the numbers for each app, and the list of events are kept.",
             .control = daysPicker(settings, settingKey::resourceLogDays, {30, 90, 180, 365})},
            {.id = logSize,
             .title = "Log size",
             .help = "How much disk space the log uses right now.",
             .control = SettingFact{Fmt::fileSize(logBytes.value_or(0), calendar)}},
            {.id = logFile,
             .title = "Log file",
             .help = "Show in Finder reveals the log file. Delete erases only this log. Your activity history (the "
                     "apps and websites you used) isn't touched. It can't be undone.",
             .control = SettingButtons{.buttons = {{"Show in Finder", isThere}, {"Delete", isThere}}}},
        }};
}

SettingsQuestion deleteLogQuestion() {
    return {.title = "Delete the whole resource log?",
            .text = "Your activity history isn't affected. This can't be undone.",
            .confirm = "Delete"};
}

SettingPicker tierPicker(tindra::AppTier current) {
    SettingPicker tiers;
    for (const auto tier : tindra::allAppTiers)
        tiers.choices.push_back(
            {std::string(tindra::label(tier)), std::string(tindra::rawValue(tier)), tier == current});
    return tiers;
}

tindra::OptimizerTuning changed(tindra::OptimizerTuning tuning, std::string_view row, const SettingValue& value) {
    if (const auto* const number = std::get_if<std::int64_t>(&value)) {
        const auto amount = static_cast<double>(*number);
        if (row == freezeAfter)
            tuning.idleMinutes = amount;
        else if (row == freezeAfterInFocus)
            tuning.focusIdleMinutes = amount;
        else if (row == checkEvery)
            tuning.checkEveryMinutes = amount;
        else if (row == stayAwake)
            tuning.wakeSeconds = amount;
    } else if (const auto* const isOn = std::get_if<bool>(&value)) {
        if (row == efficiencyCores)
            tuning.useEfficiencyCores = *isOn;
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
        if (row == mode)
            tuning.mode = tindra::optimizerMode(*text).value_or(tuning.mode);
    }
    return tuning;
}

} // namespace OptimizationSettings
} // namespace kestrio
