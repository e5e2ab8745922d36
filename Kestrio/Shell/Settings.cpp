#include "Kestrio/Shell/Settings.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using Json = nlohmann::json;
using ParsedSetting = std::variant<SettingValue, SettingTextError>;

/// A day: whoever wants no idle limit at all.
constexpr IntegerRange minutesOfADay{1, 1440};
/// Ten years: more than the log is ever worth.
constexpr IntegerRange daysOfTenYears{1, 3650};

template <class Choice>
std::vector<std::string> rawTexts() {
    std::vector<std::string> texts;
    for (const auto& entry : ChoiceCases<Choice>::cases)
        texts.emplace_back(entry.rawText);
    return texts;
}

std::vector<KnownSetting> makeKnownSettings() {
    using namespace settingKey;
    using enum SettingType;
    const std::optional<SettingValue> none;
    const auto number = [](std::int64_t value) { return SettingValue(value); };
    return {
        {idleMinutes, integer, number(3), "Minutes without input after which you count as idle", minutesOfADay},
        {showTimeInMenuBar, boolean, true, "Show today's active time beside the icon", AnyValue{}},
        {showActivityLight, boolean, true, "Show the status light on the icon", AnyValue{}},
        {appearanceMode, text, rawText(AppearanceMode::system), "Colour scheme of every window",
         rawTexts<AppearanceMode>()},
        {showYouTubeThumbnails, boolean, false, "Load thumbnails of videos from the network", AnyValue{}},
        {showSystemMonitor, boolean, true, "Show the second icon, the system monitor", AnyValue{}},
        {systemMenuStyle, text, rawText(SystemMenuStyle::iconAndPercent), "What the second icon shows",
         rawTexts<SystemMenuStyle>()},
        {resourceLogEnabled, boolean, true, "Keep the resource log", AnyValue{}},
        {resourceLogDays, integer, number(90), "Days for which the log's minute summaries are kept", daysOfTenYears},
        {resourceDetail, integer, number(1),
         "Seconds between detailed readings of the log; 0 for minute summaries only",
         std::vector<std::int64_t>{0, 1, 5, 10}},
        {resourceDetailDays, integer, number(7),
         "Days for which the log's detailed readings are kept, never longer than the summaries", daysOfTenYears},
        {optimizerEnabled, boolean, false, "Let the optimizer pause and slow apps that you allow it to", AnyValue{}},
        {optimizerMemoryAlerts, boolean, true, "Warn when memory runs short", AnyValue{}},
        {optimizerRunawayAlerts, boolean, true, "Warn when an app stays busy in the background", AnyValue{}},
        {dismissedBrowserBanner, boolean, none, "You closed the banner about browser access", AnyValue{}},
        {hasOnboarded, boolean, none, "The dashboard has been shown by itself at the first run", AnyValue{}},
        {dashboardSection, text, none, "The page that the dashboard showed last", AnyValue{}},
        {settingsTab, text, none, "The tab that the settings window showed last", rawTexts<SettingsTab>()},
        {appCategoryOverrides, dictionary, none, "Your categories for apps: identifier to category", AnyValue{}},
        {domainCategoryOverrides, dictionary, none, "Your categories for websites: domain to category", AnyValue{}},
        {projectRules, json, none, "Your project rules", AnyValue{}},
        {optimizerRules, json, none, "What you told the optimizer about each app", AnyValue{}},
        {optimizerTuning, json, none, "How the optimizer goes about it", AnyValue{}},
        {ssdSpeedTest, json, none, "The latest result of the disk speed test", AnyValue{}},
        {didConfigureLaunchAtLogin, boolean, none, "Starting at login was set up once at the first install",
         AnyValue{}},
        {didMigrateToKestrio, boolean, none, "Settings were taken over from the earlier name", AnyValue{}},
        {didMigrateFromTimeweft, boolean, none, "Settings were taken over from the oldest name", AnyValue{}},
    };
}

SettingTextError wrong(std::string_view key, std::string_view text, const std::string& allowed) {
    return {fmt::format("\"{}\" is not a value for {}: {}", text, key, allowed)};
}

ParsedSetting parseBoolean(const KnownSetting& setting, std::string_view text) {
    for (const char* yes : {"true", "on", "yes", "1"})
        if (text == yes)
            return SettingValue(true);
    for (const char* no : {"false", "off", "no", "0"})
        if (text == no)
            return SettingValue(false);
    return wrong(setting.key, text, "it must be true or false (on, off, yes, no, 1 and 0 do too)");
}

ParsedSetting parseInteger(const KnownSetting& setting, std::string_view text) {
    const auto* range = std::get_if<IntegerRange>(&setting.allowed);
    const auto* list = std::get_if<std::vector<std::int64_t>>(&setting.allowed);
    const auto rule = range  ? fmt::format("it must be a whole number from {} to {}", range->least, range->most)
                      : list ? fmt::format("it must be one of {}", fmt::join(*list, ", "))
                             : std::string("it must be a whole number");
    std::int64_t number = 0;
    const auto* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool allowed = (!range || (number >= range->least && number <= range->most)) &&
                         (!list || std::find(list->begin(), list->end(), number) != list->end());
    if (error != std::errc() || stop != end || !allowed)
        return wrong(setting.key, text, rule);
    return SettingValue(number);
}

bool isUtf8(std::string_view text) {
    try {
        return !Json(text).dump().empty();
    } catch (const Json::exception&) {
        return false;
    }
}

ParsedSetting parseText(const KnownSetting& setting, std::string_view text) {
    const auto* list = std::get_if<std::vector<std::string>>(&setting.allowed);
    if (list && std::find(list->begin(), list->end(), text) == list->end())
        return wrong(setting.key, text, fmt::format("it must be one of {}", fmt::join(*list, ", ")));
    return SettingValue(std::string(text));
}

/// The parser's own words say where the text goes wrong; its prefix in brackets is for programmers.
std::string withoutPrefix(const std::string& message) {
    const auto end = message.find("] ");
    return message.starts_with('[') && end != std::string::npos ? message.substr(end + 2) : message;
}

std::variant<Json, SettingTextError> parseJson(const KnownSetting& setting, std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        return SettingTextError{
            fmt::format("the value for {} is not valid JSON: {}", setting.key, withoutPrefix(error.what()))};
    }
}

ParsedSetting parseDictionary(const KnownSetting& setting, std::string_view text) {
    const auto parsed = parseJson(setting, text);
    if (const auto* error = std::get_if<SettingTextError>(&parsed))
        return *error;
    const auto& object = std::get<Json>(parsed);
    const bool texts = object.is_object() &&
                       std::all_of(object.begin(), object.end(), [](const Json& value) { return value.is_string(); });
    if (!texts)
        return SettingTextError{fmt::format("the value for {} must be a JSON object whose values are all texts, "
                                            R"(such as {{"org.example.app": "work"}})",
                                            setting.key)};
    return SettingValue(object.get<SettingDictionary>());
}

ParsedSetting parseBytes(const KnownSetting& setting, std::string_view text) {
    const auto parsed = parseJson(setting, text);
    if (const auto* error = std::get_if<SettingTextError>(&parsed))
        return *error;
    return SettingValue(SettingBytes{std::string(text)});
}

} // namespace

namespace AppSettings {

void registerDefaults(KeyValueStore& store, const KeyValueStore* oldStore, std::string_view runningIdentifier) {
    migrateFromTimeweft(store, oldStore, runningIdentifier);
    std::map<std::string, SettingValue> defaults;
    for (const auto& setting : knownSettings())
        if (setting.registered)
            defaults.emplace(setting.key, *setting.registered);
    store.registerDefaults(std::move(defaults));
}

void migrateFromTimeweft(KeyValueStore& store, const KeyValueStore* oldStore, std::string_view runningIdentifier) {
    if (store.boolean(settingKey::didMigrateFromTimeweft))
        return;
    // At once, before anything can fail, so that it is tried a single time. Where even this cannot be kept, nothing
    // can.
    if (!store.set(settingKey::didMigrateFromTimeweft, true))
        return;
    if (runningIdentifier == timeweftIdentifier || !oldStore)
        return;
    const auto present = store.storedKeys();
    for (const auto& key : oldStore->storedKeys()) {
        if (key == settingKey::didConfigureLaunchAtLogin || key == settingKey::didMigrateToKestrio ||
            key == settingKey::didMigrateFromTimeweft)
            continue;
        // What the person set here wins, even where this version cannot read it.
        if (store.value(key) || std::binary_search(present.begin(), present.end(), key))
            continue;
        if (auto value = oldStore->value(key))
            store.set(key, std::move(value));
    }
}

} // namespace AppSettings

const std::vector<KnownSetting>& knownSettings() {
    static const std::vector<KnownSetting> settings = makeKnownSettings();
    return settings;
}

const KnownSetting* knownSetting(std::string_view key) {
    for (const auto& setting : knownSettings())
        if (setting.key == key)
            return &setting;
    return nullptr;
}

std::variant<SettingValue, SettingTextError> parseSettingValue(std::string_view key, std::string_view text) {
    const auto* setting = knownSetting(key);
    if (!setting)
        return SettingTextError{fmt::format("there is no setting named \"{}\"", key)};
    if (!isUtf8(text))
        return SettingTextError{fmt::format("the value for {} is not valid UTF-8 text", key)};
    switch (setting->type) {
    case SettingType::boolean: return parseBoolean(*setting, text);
    case SettingType::integer: return parseInteger(*setting, text);
    case SettingType::text: return parseText(*setting, text);
    case SettingType::dictionary: return parseDictionary(*setting, text);
    case SettingType::json: return parseBytes(*setting, text);
    }
    return SettingTextError{};
}

std::string settingText(const SettingValue& value) {
    struct Text {
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const SettingBytes& bytes) const {
            return isUtf8(bytes.bytes) ? bytes.bytes : fmt::format("({} bytes that are not text)", bytes.bytes.size());
        }
        std::string operator()(const SettingDictionary& dictionary) const {
            return Json(dictionary).dump(-1, ' ', false, Json::error_handler_t::replace);
        }
    };
    return std::visit(Text{}, value);
}

} // namespace kestrio
