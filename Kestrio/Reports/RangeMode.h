// The ranges that a person looks at: a day, a week, a month of the calendar. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"

namespace kestrio {

enum class RangeMode { day, week, month };
inline constexpr std::array allRangeModes{RangeMode::day, RangeMode::week, RangeMode::month};

std::string_view rawValue(RangeMode mode);
std::optional<RangeMode> rangeMode(std::string_view rawValue);

/// The calendar's range that contains the date.
DateInterval interval(RangeMode mode, Date date, const Calendar& calendar);

/// The date so many days, weeks or months on, or back.
Date adding(RangeMode mode, int count, Date date, const Calendar& calendar);

/// The width of a bucket in a chart of such a range.
Granularity granularity(RangeMode mode);

/// The range around `anchor` in the words of the calendar's locale: "Today", "Friday 20 November", "This Week",
/// "Week of 16 Nov", "October 2026".
std::string rangeTitle(RangeMode mode, Date anchor, Date now, const Calendar& calendar);

/// The same in full: "Friday 20 November 2026", "16 Nov – 22 Nov 2026".
std::string rangeSubtitle(RangeMode mode, Date anchor, const Calendar& calendar);

} // namespace kestrio
