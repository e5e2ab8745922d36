// How the end of an import travels on the bus.
#pragma once

#include "Kestrio/Reports/SessionImport.h"

#include <nlohmann/json_fwd.hpp>

namespace kestrio {

/// {"added", "extended", "duplicates", "skipped"}, {"error"}, or {"stopped": true}.
nlohmann::ordered_json toJSON(const ImportOutcome& outcome);
/// Absent when it is none of these: the agent is of another version.
std::optional<ImportOutcome> importOutcomeFromJSON(const nlohmann::ordered_json& json);

} // namespace kestrio
