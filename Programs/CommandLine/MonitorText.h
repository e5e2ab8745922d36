// A picture of the machine and what is worth saying about it, as lines for people or as data. Pure functions of their
// arguments.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Monitor/SystemInsight.h"
#include "Kestrio/Monitor/SystemSnapshot.h"
#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kestrio {

struct MonitorPicture {
    std::string chip; // may be empty
    std::size_t cores = 1;
    Seconds uptime{0};
    SystemSnapshot snapshot;
    std::vector<SystemInsight> insights;
    bool isLowPowerMode = false;
};

/// Ends with a line feed.
std::string monitorText(const MonitorPicture& picture, const Calendar& calendar, const TableStyle& style);

nlohmann::ordered_json toJSON(const MonitorPicture& picture);

} // namespace kestrio
