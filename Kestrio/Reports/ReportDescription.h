// A report in words for tests, so that a whole one compares as text: a line per record, its lists indented below it,
// times in the calendar's zone. What is absent, empty or zero is left out.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"

namespace kestrio {

/// Ends with a line feed.
std::string described(const ActivityReport& report, const Calendar& calendar);

} // namespace kestrio
