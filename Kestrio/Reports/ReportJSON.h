// Reports as JSON for scripts: the field names of the records, dates as seconds since 1970, durations in seconds,
// enumerations by their raw value, and null for what is absent.
#pragma once

#include "Kestrio/Reports/Report.h"

#include <nlohmann/json_fwd.hpp>

namespace kestrio {

nlohmann::ordered_json toJSON(const ActivityReport& report);

} // namespace kestrio
