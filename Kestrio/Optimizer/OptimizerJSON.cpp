#include "Kestrio/Optimizer/OptimizerJSON.h"

#include "Kestrio/Base/StoredDates.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

// Writing keeps the order of the keys, reading finds them fast.
using Written = nlohmann::ordered_json;
using JSON = nlohmann::json;

/// Thrown and caught in this file: leads from any depth to the one answer that there is then.
struct Unusable {};

double finite(double number) {
    if (!std::isfinite(number))
        throw Unusable();
    return number;
}

const JSON& member(const JSON& object, const char* key) {
    if (!object.is_object())
        throw Unusable();
    const auto found = object.find(key);
    if (found == object.end())
        throw Unusable();
    return *found;
}

// Asked for an integer, nlohmann-json takes a boolean too and cuts a fraction off. These take only what is meant.

double number(const JSON& json) {
    return json.is_number() ? finite(json.get<double>()) : throw Unusable();
}

/// JSON knows one kind of number: 540.0 is the integer 540.
int integer(const JSON& json) {
    const double value = number(json);
    if (value != std::trunc(value) || std::abs(value) > std::numeric_limits<int>::max())
        throw Unusable();
    return static_cast<int>(value);
}

bool boolean(const JSON& json) {
    return json.is_boolean() ? json.get<bool>() : throw Unusable();
}

const std::string& text(const JSON& json) {
    return json.is_string() ? json.get_ref<const std::string&>() : throw Unusable();
}

tindra::Date date(const JSON& json) {
    return tindra::Date{number(json) + originOfStoredDates.seconds()};
}

Written stored(tindra::Date date) {
    return finite(date.seconds - originOfStoredDates.seconds());
}

const JSON& list(const JSON& json) {
    return json.is_array() ? json : throw Unusable();
}

template <class Value>
Value required(const std::optional<Value>& value) {
    return value ? *value : throw Unusable();
}

tindra::AppTier tier(const JSON& json) {
    return required(tindra::appTier(text(json)));
}

Written toJSON(const tindra::OptimizerTuning& tuning) {
    return {{"mode", tindra::rawValue(tuning.mode)},
            {"idleMinutes", finite(tuning.idleMinutes)},
            {"focusIdleMinutes", finite(tuning.focusIdleMinutes)},
            {"checkEveryMinutes", finite(tuning.checkEveryMinutes)},
            {"wakeSeconds", finite(tuning.wakeSeconds)},
            {"useEfficiencyCores", tuning.useEfficiencyCores},
            {"efficiencyThreshold", finite(tuning.efficiencyThreshold)}};
}

tindra::OptimizerTuning tuning(const JSON& json) {
    return {.mode = required(tindra::optimizerMode(text(member(json, "mode")))),
            .idleMinutes = number(member(json, "idleMinutes")),
            .focusIdleMinutes = number(member(json, "focusIdleMinutes")),
            .checkEveryMinutes = number(member(json, "checkEveryMinutes")),
            .wakeSeconds = number(member(json, "wakeSeconds")),
            .useEfficiencyCores = boolean(member(json, "useEfficiencyCores")),
            .efficiencyThreshold = number(member(json, "efficiencyThreshold"))};
}

Written toJSON(const tindra::AppTiers& tiers) {
    auto json = Written::object();
    for (const auto& [appID, tier] : tiers)
        json[appID] = tindra::rawValue(tier);
    return json;
}

tindra::AppTiers tiers(const JSON& json) {
    if (!json.is_object())
        throw Unusable();
    tindra::AppTiers tiers;
    for (const auto& [appID, value] : json.items())
        tiers.insert_or_assign(appID, tier(value));
    return tiers;
}

Written toJSON(const tindra::DailyWindow& window) {
    return {{"start", window.start}, {"end", window.end}, {"weekdays", window.weekdays}};
}

tindra::DailyWindow window(const JSON& json) {
    tindra::DailyWindow window{integer(member(json, "start")), integer(member(json, "end")), {}};
    for (const auto& weekday : list(member(json, "weekdays")))
        window.weekdays.insert(integer(weekday));
    return window;
}

Written toJSON(const tindra::Schedule& schedule) {
    return {{"id", tindra::text(schedule.id)},
            {"name", schedule.name},
            {"isEnabled", schedule.isEnabled},
            {"window", toJSON(schedule.window)},
            {"tiers", toJSON(schedule.tiers)}};
}

tindra::Schedule schedule(const JSON& json) {
    return {.id = required(tindra::uuid(text(member(json, "id")))),
            .name = text(member(json, "name")),
            .isEnabled = boolean(member(json, "isEnabled")),
            .window = window(member(json, "window")),
            .tiers = tiers(member(json, "tiers"))};
}

Written toJSON(const tindra::TierOverride& rule) {
    return {{"appID", rule.appID}, {"tier", tindra::rawValue(rule.tier)}, {"until", stored(rule.until)}};
}

tindra::TierOverride tierOverride(const JSON& json) {
    return {
        .appID = text(member(json, "appID")), .tier = tier(member(json, "tier")), .until = date(member(json, "until"))};
}

Written toJSON(const tindra::OptimizerRules& rules) {
    auto schedules = Written::array();
    for (const auto& schedule : rules.schedules)
        schedules.push_back(toJSON(schedule));
    auto overrides = Written::array();
    for (const auto& rule : rules.overrides)
        overrides.push_back(toJSON(rule));
    return {{"tiers", toJSON(rules.tiers)},
            {"schedules", std::move(schedules)},
            {"overrides", std::move(overrides)},
            {"neverTouch", rules.neverTouch}};
}

tindra::OptimizerRules rules(const JSON& json) {
    tindra::OptimizerRules rules;
    rules.tiers = tiers(member(json, "tiers"));
    for (const auto& one : list(member(json, "schedules")))
        rules.schedules.push_back(schedule(one));
    for (const auto& one : list(member(json, "overrides")))
        rules.overrides.push_back(tierOverride(one));
    for (const auto& appID : list(member(json, "neverTouch")))
        rules.neverTouch.insert(text(appID));
    return rules;
}

template <class Record>
std::optional<std::string> encodedRecord(const Record& record) {
    try {
        return toJSON(record).dump();
    } catch (const Unusable&) {
        return std::nullopt;
    } catch (const Written::exception&) {
        return std::nullopt;
    }
}

template <class Record>
std::optional<Record> decodedRecord(std::string_view json, Record (*read)(const JSON&)) {
    try {
        return read(JSON::parse(json));
    } catch (const Unusable&) {
        return std::nullopt;
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<std::string> encoded(const tindra::OptimizerTuning& tuning) {
    return encodedRecord(tuning);
}

std::optional<std::string> encoded(const tindra::OptimizerRules& rules) {
    return encodedRecord(rules);
}

std::optional<tindra::OptimizerTuning> decodedTuning(std::string_view json) {
    return decodedRecord(json, tuning);
}

std::optional<tindra::OptimizerRules> decodedRules(std::string_view json) {
    return decodedRecord(json, rules);
}

} // namespace kestrio
