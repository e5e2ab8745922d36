// The resource log as lines for people or as data for scripts. Pure functions of their arguments.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Link/AgentCost.h"
#include "Kestrio/Resources/ResourceRecords.h"
#include "Programs/CommandLine/SessionTable.h"

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kestrio {

/// The log as a whole, with the settings that it is kept by.
struct LogStatus {
    std::filesystem::path file;
    std::int64_t fileSize = 0; // bytes
    LogContents contents;
    bool isOn = true;
    std::int64_t days = 0;               // for which minutes and events are kept
    std::int64_t detailDays = 0;         // for which seconds are kept
    std::int64_t pace = 0;               // seconds between detailed readings; 0 without any
    std::optional<AgentCost> agent = {}; // absent when none runs
};

/// Ends with a line feed, as all tables do.
std::string logStatusText(const LogStatus& status, const Calendar& calendar);
nlohmann::ordered_json toJSON(const LogStatus& status);

/// In the order that they are in, which is that of time.
std::string eventTable(const std::vector<ResourceEvent>& events, const Calendar& calendar, const TableStyle& style);
nlohmann::ordered_json toJSON(const ResourceEvent& event);

std::string secondsHeading(const TableStyle& style);
std::string secondsRow(const SystemSecond& second, const Calendar& calendar, const TableStyle& style);
nlohmann::ordered_json toJSON(const SystemSecond& second);

} // namespace kestrio
