// What the system monitor knows as JSON, for other processes and for scripts: the field names of the values,
// enumerations by their raw value, and null for what is absent.
#pragma once

#include "Kestrio/Monitor/SystemInsight.h"
#include "Kestrio/Monitor/SystemSnapshot.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>

namespace kestrio {

std::string_view rawValue(MemoryPressure pressure);
std::string_view rawValue(ThermalState state);
std::string_view rawValue(SystemInsight::Level level);

nlohmann::ordered_json toJSON(const SystemSnapshot& snapshot);
nlohmann::ordered_json toJSON(const SystemInsight& insight);

// Absent when a field is missing or of another type: it comes from another version. Unknown fields are passed over.
std::optional<SystemSnapshot> systemSnapshotFromJSON(const nlohmann::ordered_json& json);
std::optional<SystemInsight> systemInsightFromJSON(const nlohmann::ordered_json& json);

} // namespace kestrio
