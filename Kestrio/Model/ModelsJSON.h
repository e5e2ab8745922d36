// The records as JSON for scripts: the field names of the records, dates as seconds since 1970, enumerations by their
// raw value, and null for what is absent.
#pragma once

#include "Kestrio/Model/Models.h"

#include <nlohmann/json_fwd.hpp>

namespace kestrio {

nlohmann::ordered_json toJSON(const ActivitySample& sample);
nlohmann::ordered_json toJSON(const LiveActivity& live);
nlohmann::ordered_json toJSON(const ActivitySession& session);

/// The number when it is a whole one that fits; absent for anything else. (The library's own reading turns a fraction
/// into a whole number, and a large one into any.)
std::optional<std::int64_t> integerFromJSON(const nlohmann::ordered_json& json);

/// Absent when a required field is missing or of another type. Unknown fields are passed over.
std::optional<LiveActivity> liveActivityFromJSON(const nlohmann::ordered_json& json);

} // namespace kestrio
