// What the agent itself costs the machine, as it tells faces.
#pragma once

#include "Kestrio/Resources/OwnCost.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>

namespace kestrio {

struct AgentCost {
    std::optional<OwnCost> cost = {};        // absent while nothing is logged, and in the first minute
    std::optional<LoweredPace> lowered = {}; // while minutes alone are recorded because it was too much

    friend bool operator==(const AgentCost&, const AgentCost&) = default;
};

nlohmann::ordered_json toJSON(const OwnCost& cost);
nlohmann::ordered_json toJSON(const LoweredPace& lowered);
nlohmann::ordered_json toJSON(const AgentCost& cost);
/// Absent when a field is missing or of another type: the agent is of another version.
std::optional<AgentCost> agentCostFromJSON(const nlohmann::ordered_json& json);

} // namespace kestrio
