// What a panel of the system monitor shows, as the agent tells it: the monitor's state and the facts around it.
#pragma once

#include "Kestrio/Monitor/SystemMonitor.h"
#include "Kestrio/Monitor/SystemPanel.h"

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace kestrio {

struct MonitorReading {
    SystemMonitor::State state = {};
    std::string chipName = {}; // may be empty
    std::size_t cores = 1;
    Seconds uptime = Seconds(0);                   // of the machine, awake
    std::optional<OptimizerCounts> optimizer = {}; // absent while the optimizer is off

    friend bool operator==(const MonitorReading&, const MonitorReading&) = default;
};

nlohmann::ordered_json toJSON(const MonitorReading& reading);
/// Absent when a field is missing or of another type: the agent is of another version.
std::optional<MonitorReading> monitorReadingFromJSON(const nlohmann::ordered_json& json);

} // namespace kestrio
