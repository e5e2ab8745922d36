// The one table of the person's settings: the keys, their registered values, and what may be stored under each.
//
// Pure values and functions over a `KeyValueStore`; any thread. Reading code asks the store at the moment of need and
// caches nothing.
#pragma once

#include "Kestrio/Platform/KeyValueStore.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrio {

namespace settingKey {
// With a registered value.
inline constexpr const char* idleMinutes = "idleMinutes";
inline constexpr const char* showTimeInMenuBar = "showTimeInMenuBar";
inline constexpr const char* showActivityLight = "showActivityLight";
inline constexpr const char* appearanceMode = "appearanceMode";
inline constexpr const char* showYouTubeThumbnails = "showYouTubeThumbnails";
inline constexpr const char* showSystemMonitor = "showSystemMonitor";
inline constexpr const char* systemMenuStyle = "systemMenuStyle";
inline constexpr const char* resourceLogEnabled = "resourceLogEnabled";
inline constexpr const char* resourceLogDays = "resourceLogDays";
inline constexpr const char* resourceDetail = "resourceDetail";
inline constexpr const char* resourceDetailDays = "resourceDetailDays";
inline constexpr const char* optimizerEnabled = "optimizerEnabled";
inline constexpr const char* optimizerMemoryAlerts = "optimizerMemoryAlerts";
inline constexpr const char* optimizerRunawayAlerts = "optimizerRunawayAlerts";
// Without one.
inline constexpr const char* dismissedBrowserBanner = "dismissedBrowserBanner";
inline constexpr const char* hasOnboarded = "hasOnboarded";
inline constexpr const char* dashboardSection = "dashboardSection";
inline constexpr const char* settingsTab = "settingsTab";
inline constexpr const char* appCategoryOverrides = "appCategoryOverrides";
inline constexpr const char* domainCategoryOverrides = "domainCategoryOverrides";
inline constexpr const char* projectRules = "projectRules";
inline constexpr const char* optimizerRules = "optimizerRules";
inline constexpr const char* optimizerTuning = "optimizerTuning";
inline constexpr const char* ssdSpeedTest = "ssdSpeedTest";
inline constexpr const char* didConfigureLaunchAtLogin = "didConfigureLaunchAtLogin";
inline constexpr const char* didMigrateToKestrio = "didMigrateToKestrio";
inline constexpr const char* didMigrateFromTimeweft = "didMigrateFromTimeweft";
} // namespace settingKey

// The choices among texts. `allCases` is in the order of menus; each is stored as its `rawText`, and reading another
// text, or none, gives the first case.

enum class SystemMenuStyle { iconAndPercent, icon, percent, hidden };
enum class AppearanceMode { system, light, dark };
enum class SettingsTab { general, categories, projects, optimization, permissions, data, about };

template <class Choice>
struct ChoiceCase {
    Choice value;
    const char* rawText;
    const char* label;
};
template <class Choice>
ChoiceCase(Choice, const char*, const char*) -> ChoiceCase<Choice>;

/// Specialised for each choice: its cases, in order.
template <class Choice>
struct ChoiceCases;

template <>
struct ChoiceCases<SystemMenuStyle> {
    static constexpr auto cases = std::to_array<ChoiceCase<SystemMenuStyle>>({
        {SystemMenuStyle::iconAndPercent, "iconAndPercent", "Icon and CPU %"},
        {SystemMenuStyle::icon, "icon", "Icon only"},
        {SystemMenuStyle::percent, "percent", "CPU % only"},
        {SystemMenuStyle::hidden, "hidden", "Hidden"},
    });
};

template <>
struct ChoiceCases<AppearanceMode> {
    static constexpr auto cases = std::to_array<ChoiceCase<AppearanceMode>>({
        {AppearanceMode::system, "system", "Match System"},
        {AppearanceMode::light, "light", "Light"},
        {AppearanceMode::dark, "dark", "Dark"},
    });
};

template <>
struct ChoiceCases<SettingsTab> {
    static constexpr auto cases = std::to_array<ChoiceCase<SettingsTab>>({
        {SettingsTab::general, "general", "General"},
        {SettingsTab::categories, "categories", "Categories"},
        {SettingsTab::projects, "projects", "Projects"},
        {SettingsTab::optimization, "optimization", "Optimization"},
        {SettingsTab::permissions, "permissions", "Permissions"},
        {SettingsTab::data, "data", "Data"},
        {SettingsTab::about, "about", "About"},
    });
};

/// All cases, in order.
template <class Choice>
constexpr auto allCases() {
    std::array<Choice, ChoiceCases<Choice>::cases.size()> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = ChoiceCases<Choice>::cases[i].value;
    return values;
}

template <class Choice>
constexpr const char* rawText(Choice choice) {
    return ChoiceCases<Choice>::cases[static_cast<std::size_t>(choice)].rawText;
}

template <class Choice>
constexpr const char* label(Choice choice) {
    return ChoiceCases<Choice>::cases[static_cast<std::size_t>(choice)].label;
}

/// The case of this raw text; the first one for any other text or none.
template <class Choice>
Choice choiceOf(const std::optional<std::string>& text) {
    for (const auto& entry : ChoiceCases<Choice>::cases)
        if (text == entry.rawText)
            return entry.value;
    return ChoiceCases<Choice>::cases.front().value;
}

/// What is stored under the key, read as a choice.
template <class Choice>
Choice choice(const KeyValueStore& store, const std::string& key) {
    return choiceOf<Choice>(store.get<std::string>(key));
}

namespace AppSettings {

/// The domain of the program's oldest name.
inline constexpr const char* timeweftIdentifier = "com.personal.Timeweft";

/// Takes over the oldest settings, then registers the values beneath the person's own. Once at every launch, before
/// anything else reads a setting. `oldStore` holds what the oldest name stored, null when there is nothing.
void registerDefaults(KeyValueStore& store, const KeyValueStore* oldStore, std::string_view runningIdentifier);

/// Copies every value of the old store that the person has not set here; once per person, ever. Nothing is reported,
/// and the old store stays as it is.
void migrateFromTimeweft(KeyValueStore& store, const KeyValueStore* oldStore, std::string_view runningIdentifier);

} // namespace AppSettings

/// What a setting holds, as the command line names it.
enum class SettingType { boolean, integer, text, dictionary, json };

/// Whole numbers from `least` to `most`.
struct IntegerRange {
    std::int64_t least;
    std::int64_t most;
    friend bool operator==(const IntegerRange&, const IntegerRange&) = default;
};
struct AnyValue {
    friend bool operator==(const AnyValue&, const AnyValue&) = default;
};
using AllowedValues = std::variant<AnyValue, IntegerRange, std::vector<std::int64_t>, std::vector<std::string>>;

struct KnownSetting {
    std::string key;
    SettingType type;
    /// Registered beneath the person's value; absent for those that are simply absent until written.
    std::optional<SettingValue> registered;
    /// One line, in plain words.
    std::string meaning;
    /// What may be set by hand. What is stored otherwise is the reader's to bound.
    AllowedValues allowed;
};

/// Every setting, those with a registered value first.
const std::vector<KnownSetting>& knownSettings();

/// Null for a key that is none.
const KnownSetting* knownSetting(std::string_view key);

/// What is wrong with a text that a person typed, and what is allowed, in one line.
struct SettingTextError {
    std::string message;
    friend bool operator==(const SettingTextError&, const SettingTextError&) = default;
};

/// The value that a person means by this text for this key. Booleans are `true`/`false`, `on`/`off`, `yes`/`no` or
/// `1`/`0`; dictionaries and byte values are JSON.
std::variant<SettingValue, SettingTextError> parseSettingValue(std::string_view key, std::string_view text);

/// The value as `parseSettingValue` would read it again. Bytes that are not text are shown in a word.
std::string settingText(const SettingValue& value);

} // namespace kestrio
