#include "Fuzz/Fuzz.h"
#include "Kestrio/Link/Background.h"

#include <nlohmann/json.hpp>

/// What an agent of any version sends is a status or none; a status survives the way there and back.
void kestrio::fuzz(std::string_view input) {
    const auto status = agentStatusFromJSON(nlohmann::ordered_json::parse(input, nullptr, false));
    if (status)
        require(agentStatusFromJSON(nlohmann::ordered_json::parse(toJSON(*status).dump())) == status);
}
