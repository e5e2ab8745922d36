#include "Kestrio/Link/MonitorReading.h"

#include "Kestrio/Model/ModelsJSON.h"
#include "Kestrio/Monitor/MonitorJSON.h"

#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

JSON toJSON(const OptimizerCounts& counts) {
    return {{"frozen", counts.frozen},
            {"frozenMemory", counts.frozenMemory},
            {"efficient", counts.efficient},
            {"isManaging", counts.isManaging}};
}

/// Throws what the library throws.
OptimizerCounts countsOf(const JSON& json) {
    return {.frozen = json.at("frozen").get_ref<const JSON::number_unsigned_t&>(),
            .frozenMemory = json.at("frozenMemory").get_ref<const JSON::number_unsigned_t&>(),
            .efficient = json.at("efficient").get_ref<const JSON::number_unsigned_t&>(),
            .isManaging = json.at("isManaging").get<bool>()};
}

/// False when the state is of another version.
bool takeState(SystemMonitor::State& state, const JSON& json) {
    if (!json.at("snapshot").is_null() && !(state.snapshot = systemSnapshotFromJSON(json.at("snapshot"))))
        return false;
    for (const auto& share : json.at("cpuHistory").get_ref<const JSON::array_t&>())
        state.cpuHistory.push_back(share.get<double>());
    for (const auto& element : json.at("insights").get_ref<const JSON::array_t&>()) {
        auto insight = systemInsightFromJSON(element);
        if (!insight)
            return false;
        state.insights.push_back(std::move(*insight));
    }
    return true;
}

} // namespace

JSON toJSON(const MonitorReading& reading) {
    const auto& [snapshot, cpuHistory, insights] = reading.state;
    JSON json{{"snapshot", snapshot ? toJSON(*snapshot) : JSON()}, {"cpuHistory", cpuHistory}};
    json["insights"] = JSON::array();
    for (const auto& insight : insights)
        json["insights"].push_back(toJSON(insight));
    json["chipName"] = reading.chipName;
    json["cores"] = reading.cores;
    json["uptime"] = reading.uptime.count();
    json["optimizer"] = reading.optimizer ? toJSON(*reading.optimizer) : JSON();
    return json;
}

std::optional<MonitorReading> monitorReadingFromJSON(const JSON& json) {
    try {
        MonitorReading reading;
        if (!takeState(reading.state, json))
            return std::nullopt;
        reading.chipName = json.at("chipName").get<std::string>();
        reading.cores = json.at("cores").get_ref<const JSON::number_unsigned_t&>();
        reading.uptime = Seconds(json.at("uptime").get<double>());
        if (!json.at("optimizer").is_null())
            reading.optimizer = countsOf(json.at("optimizer"));
        return reading;
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace kestrio
