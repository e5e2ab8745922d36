// A range of sessions as a table for a terminal: one line per session under the day's name, with bars for the time, a
// quiet line where nothing was recorded, and a sum at the end. A pure function of its arguments.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Model/Models.h"

#include <string>
#include <vector>

namespace kestrio {

struct TableStyle {
    std::size_t width = 80; // columns of the terminal, at least 40
    bool hasColour = false;
};

/// Ends with a line feed. The sessions may come in any order.
std::string sessionTable(std::vector<ActivitySession> sessions, const Calendar& calendar, const TableStyle& style);

} // namespace kestrio
