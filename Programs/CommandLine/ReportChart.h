// Time per hour or day as columns in a terminal, each stacked of its categories in their colours. A pure function.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"
#include "Programs/CommandLine/SessionTable.h"

namespace kestrio {

/// A few lines, each with a line feed; empty when the range has more columns than the terminal, or no time at all.
std::string reportChart(const ActivityReport& report, const Calendar& calendar, const TableStyle& style);

} // namespace kestrio
