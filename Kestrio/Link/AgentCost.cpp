#include "Kestrio/Link/AgentCost.h"

#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

// Both throw what the library throws.

OwnCost costOf(const JSON& json) {
    return {.span = Seconds(json.at("span").get<double>()),
            .cores = json.at("cores").get<double>(),
            .memory = json.at("memory").get_ref<const JSON::number_unsigned_t&>(),
            .wakeupsPerSecond = json.at("wakeupsPerSecond").get<double>(),
            .bytesWrittenPerSecond = json.at("bytesWrittenPerSecond").get<double>()};
}

LoweredPace loweredOf(const JSON& json) {
    return {.since = Date(json.at("since").get<double>()),
            .until = Date(json.at("until").get<double>()),
            .cost = costOf(json.at("cost"))};
}

} // namespace

JSON toJSON(const OwnCost& cost) {
    return {{"span", cost.span.count()},
            {"cores", cost.cores},
            {"memory", cost.memory},
            {"wakeupsPerSecond", cost.wakeupsPerSecond},
            {"bytesWrittenPerSecond", cost.bytesWrittenPerSecond}};
}

JSON toJSON(const LoweredPace& lowered) {
    return {{"since", lowered.since.seconds()}, {"until", lowered.until.seconds()}, {"cost", toJSON(lowered.cost)}};
}

JSON toJSON(const AgentCost& cost) {
    return {{"cost", cost.cost ? toJSON(*cost.cost) : JSON()},
            {"lowered", cost.lowered ? toJSON(*cost.lowered) : JSON()}};
}

std::optional<AgentCost> agentCostFromJSON(const JSON& json) {
    try {
        AgentCost cost;
        if (!json.at("cost").is_null())
            cost.cost = costOf(json.at("cost"));
        if (!json.at("lowered").is_null())
            cost.lowered = loweredOf(json.at("lowered"));
        return cost;
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace kestrio
