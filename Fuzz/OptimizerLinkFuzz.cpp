#include "Fuzz/Fuzz.h"
#include "Kestrio/Link/OptimizerLink.h"

#include <nlohmann/json.hpp>

/// What an agent of any version sends is a reading or none; a plan survives the way there and back, and a status stays
/// one.
void kestrio::fuzz(std::string_view input) {
    const auto json = nlohmann::ordered_json::parse(input, nullptr, false);
    if (const auto plan = optimizerPlanFromJSON(json))
        require(optimizerPlanFromJSON(nlohmann::ordered_json::parse(toJSON(*plan).dump())) == plan);
    if (const auto status = optimizerStatusFromJSON(json))
        require(optimizerStatusFromJSON(nlohmann::ordered_json::parse(toJSON(*status).dump())).has_value());
}
