// The optimizer on a terminal: how it stands, what it would do, and what the person told it. Pure functions of their
// arguments; a table ends with a line feed.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Link/OptimizerLink.h"
#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

std::string optimizerStatusText(const OptimizerStatus& status, Date now, const Calendar& calendar,
                                const TableStyle& style);

/// A line for each application: how it stands, its tier, for how long nobody used it, and what a pass would do with it
/// or why not.
std::string optimizerPlanText(const OptimizerStatus& status, const std::vector<PlannedApp>& plan,
                              const Calendar& calendar, const TableStyle& style);

/// The last column of that table.
std::string outlook(const PlannedApp& app, const tindra::OptimizerTuning& tuning, const Calendar& calendar);

/// "can wait", "always on until 17:30", "can wait by Evening", "always on, not chosen".
std::string tierWords(tindra::AppTier tier, const tindra::OptimizerRules::Source& source, const Calendar& calendar);

std::string tierTable(const tindra::OptimizerRules& rules, Date now, const Calendar& calendar, const TableStyle& style);
std::string scheduleTable(const std::vector<tindra::Schedule>& schedules, const TableStyle& style);

nlohmann::ordered_json tiersJSON(const tindra::OptimizerRules& rules);
nlohmann::ordered_json schedulesJSON(const std::vector<tindra::Schedule>& schedules);

// What people type.

/// "always-on", "check" (or "check-periodically") and "can-wait", and the raw values. Absent for anything else.
std::optional<tindra::AppTier> typedTier(std::string_view typed);
inline constexpr auto tierForms = "always-on, check or can-wait";

/// "22:00-06:00". Absent for anything else.
struct TypedHours {
    int start = 0; // minutes since midnight
    int end = 0;

    friend bool operator==(const TypedHours&, const TypedHours&) = default;
};
std::optional<TypedHours> typedHours(std::string_view typed);

/// "mon,tue", "weekdays", "weekends" or "daily", as the calendar numbers days. Absent for anything else.
std::optional<std::set<int>> typedDays(std::string_view typed);
inline constexpr auto dayForms = "daily, weekdays, weekends, or some of mon,tue,wed,thu,fri,sat,sun";

} // namespace kestrio
