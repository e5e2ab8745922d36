#include "Kestrio/Monitor/MonitorJSON.h"

#include "Kestrio/Model/ModelsJSON.h"

#include <array>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;
using Level = SystemInsight::Level;

template <class Value>
JSON orNull(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON();
}

JSON appsJSON(const std::vector<AppResource>& apps) {
    auto json = JSON::array();
    for (const auto& app : apps)
        json.push_back({{"id", app.id},
                        {"name", app.name},
                        {"appPath", orNull(app.appPath)},
                        {"cpu", app.cpu},
                        {"memory", app.memory},
                        {"processes", app.processes}});
    return json;
}

JSON batteryJSON(const BatteryInfo& battery) {
    return {{"level", battery.level},
            {"isCharging", battery.isCharging},
            {"isPluggedIn", battery.isPluggedIn},
            {"minutesRemaining", orNull(battery.minutesRemaining)},
            {"minutesToFull", orNull(battery.minutesToFull)}};
}

// The readers below throw what the library throws for a missing field and for one of another type, numbers that do not
// fit among them; the functions of the header end it.

[[noreturn]] void refuse(const JSON& json) {
    throw JSON::type_error::create(302, "not what it should be", &json);
}

std::int64_t integer(const JSON& json) {
    const auto number = integerFromJSON(json);
    return number ? *number : (refuse(json), 0);
}

std::uint64_t natural(const JSON& json) {
    if (!json.is_number_unsigned())
        refuse(json);
    return json.get<std::uint64_t>();
}

/// The value under the key by a reader of its own; absent where it is null.
template <class Read>
auto optionalAt(const JSON& json, const char* key, Read read) {
    const auto& value = json.at(key);
    return value.is_null() ? std::nullopt : std::optional(read(value));
}

/// The case that has this raw value.
template <class Enumeration, std::size_t count>
Enumeration caseOf(const JSON& json, const std::array<Enumeration, count>& cases) {
    const auto& text = json.get_ref<const std::string&>();
    for (const auto value : cases)
        if (rawValue(value) == text)
            return value;
    refuse(json);
}

std::string textOf(const JSON& json) {
    return json.get<std::string>();
}

double realOf(const JSON& json) {
    return json.get<double>();
}

std::vector<AppResource> appsOf(const JSON& json) {
    std::vector<AppResource> apps;
    for (const auto& app : json.get_ref<const JSON::array_t&>())
        apps.push_back({.id = textOf(app.at("id")),
                        .name = textOf(app.at("name")),
                        .appPath = optionalAt(app, "appPath", textOf),
                        .cpu = realOf(app.at("cpu")),
                        .memory = natural(app.at("memory")),
                        .processes = integer(app.at("processes"))});
    return apps;
}

DiskUsage diskOf(const JSON& json) {
    return {integer(json.at("free")), integer(json.at("total"))};
}

BatteryInfo batteryOf(const JSON& json) {
    return {.level = integer(json.at("level")),
            .isCharging = json.at("isCharging").get<bool>(),
            .isPluggedIn = json.at("isPluggedIn").get<bool>(),
            .minutesRemaining = optionalAt(json, "minutesRemaining", integer),
            .minutesToFull = optionalAt(json, "minutesToFull", integer)};
}

} // namespace

std::string_view rawValue(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal: return "normal";
    case MemoryPressure::warning: return "warning";
    case MemoryPressure::critical: return "critical";
    }
    return {};
}

std::string_view rawValue(ThermalState state) {
    switch (state) {
    case ThermalState::nominal: return "nominal";
    case ThermalState::fair: return "fair";
    case ThermalState::serious: return "serious";
    case ThermalState::critical: return "critical";
    }
    return {};
}

std::string_view rawValue(Level level) {
    switch (level) {
    case Level::good: return "good";
    case Level::info: return "info";
    case Level::warning: return "warning";
    case Level::critical: return "critical";
    }
    return {};
}

JSON toJSON(const SystemSnapshot& snapshot) {
    return {{"cpu", snapshot.cpu},
            {"memoryUsed", snapshot.memoryUsed},
            {"memoryTotal", snapshot.memoryTotal},
            {"swapUsed", snapshot.swapUsed},
            {"pressure", rawValue(snapshot.pressure)},
            {"thermalState", rawValue(snapshot.thermalState)},
            {"temperature", orNull(snapshot.temperature)},
            {"disk", snapshot.disk ? JSON{{"free", snapshot.disk->free}, {"total", snapshot.disk->total}} : JSON()},
            {"battery", snapshot.battery ? batteryJSON(*snapshot.battery) : JSON()},
            {"hasAppCPU", snapshot.hasAppCPU},
            {"topCPU", appsJSON(snapshot.topCPU)},
            {"topMemory", appsJSON(snapshot.topMemory)}};
}

JSON toJSON(const SystemInsight& insight) {
    return {{"id", insight.id}, {"level", rawValue(insight.level)}, {"symbol", insight.symbol}, {"text", insight.text}};
}

std::optional<SystemSnapshot> systemSnapshotFromJSON(const JSON& json) {
    constexpr std::array pressures{MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical};
    constexpr std::array states{ThermalState::nominal, ThermalState::fair, ThermalState::serious,
                                ThermalState::critical};
    try {
        return SystemSnapshot{.cpu = realOf(json.at("cpu")),
                              .memoryUsed = natural(json.at("memoryUsed")),
                              .memoryTotal = natural(json.at("memoryTotal")),
                              .swapUsed = natural(json.at("swapUsed")),
                              .pressure = caseOf(json.at("pressure"), pressures),
                              .thermalState = caseOf(json.at("thermalState"), states),
                              .temperature = optionalAt(json, "temperature", realOf),
                              .disk = optionalAt(json, "disk", diskOf),
                              .battery = optionalAt(json, "battery", batteryOf),
                              .topCPU = appsOf(json.at("topCPU")),
                              .topMemory = appsOf(json.at("topMemory")),
                              .hasAppCPU = json.at("hasAppCPU").get<bool>()};
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

std::optional<SystemInsight> systemInsightFromJSON(const JSON& json) {
    constexpr std::array levels{Level::good, Level::info, Level::warning, Level::critical};
    try {
        return SystemInsight{textOf(json.at("id")), caseOf(json.at("level"), levels), textOf(json.at("symbol")),
                             textOf(json.at("text"))};
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace kestrio
