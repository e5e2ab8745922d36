#include "Fuzz/Fuzz.h"
#include "Kestrio/Link/Background.h"

#include <nlohmann/json.hpp>

/// What an agent of any version sends is a status, or a cost, or none; each survives the way there and back.
void kestrio::fuzz(std::string_view input) {
    using JSON = nlohmann::ordered_json;
    const auto json = JSON::parse(input, nullptr, false);
    if (const auto status = agentStatusFromJSON(json))
        require(agentStatusFromJSON(JSON::parse(toJSON(*status).dump())) == status);
    if (const auto cost = agentCostFromJSON(json))
        require(agentCostFromJSON(JSON::parse(toJSON(*cost).dump())) == cost);
}
