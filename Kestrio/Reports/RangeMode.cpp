#include "Kestrio/Reports/RangeMode.h"

#include <algorithm>

namespace kestrio {

std::string_view rawValue(RangeMode mode) {
    switch (mode) {
    case RangeMode::day: return "day";
    case RangeMode::week: return "week";
    case RangeMode::month: return "month";
    }
    return {};
}

std::optional<RangeMode> rangeMode(std::string_view raw) {
    for (const auto mode : allRangeModes)
        if (rawValue(mode) == raw)
            return mode;
    return std::nullopt;
}

DateInterval interval(RangeMode mode, Date date, const Calendar& calendar) {
    switch (mode) {
    case RangeMode::day: return calendar.day(date);
    case RangeMode::week: return calendar.weekOfYear(date);
    case RangeMode::month: return calendar.month(date);
    }
    return {};
}

Date adding(RangeMode mode, int count, Date date, const Calendar& calendar) {
    switch (mode) {
    case RangeMode::day: return calendar.addingDays(date, count);
    case RangeMode::week: return calendar.addingWeeks(date, count);
    case RangeMode::month: return calendar.addingMonths(date, count);
    }
    return date;
}

Granularity granularity(RangeMode mode) {
    return mode == RangeMode::day ? Granularity::hour : Granularity::day;
}

namespace {

std::string dayTitle(Date anchor, Date now, const Calendar& calendar) {
    const auto today = calendar.day(now);
    if (today.contains(anchor))
        return "Today";
    if (calendar.day(today.start - Seconds(1)).contains(anchor))
        return "Yesterday";
    return calendar.localized(anchor, "EEEEdMMMM");
}

} // namespace

std::string rangeTitle(RangeMode mode, Date anchor, Date now, const Calendar& calendar) {
    const auto range = interval(mode, anchor, calendar);
    switch (mode) {
    case RangeMode::day: return dayTitle(anchor, now, calendar);
    case RangeMode::week:
        return range.contains(now) ? "This Week" : "Week of " + calendar.localized(range.start, "dMMM");
    case RangeMode::month: return range.contains(now) ? "This Month" : calendar.localized(anchor, "MMMMy");
    }
    return {};
}

std::string rangeSubtitle(RangeMode mode, Date anchor, const Calendar& calendar) {
    if (mode == RangeMode::day)
        return calendar.localized(anchor, "EEEEdMMMMy");
    const auto range = interval(mode, anchor, calendar);
    return calendar.localized(range.start, "dMMM") + " – " + calendar.localized(range.end - Seconds(1), "dMMMy");
}

} // namespace kestrio
