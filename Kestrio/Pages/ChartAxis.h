// What stands along the axes of the charts over time. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"

#include <optional>
#include <span>

namespace kestrio {

/// The unit in which a chart counts time: minutes within hours, hours within days.
struct TimeUnit {
    std::string title;
    Seconds length;
    double count(Seconds time) const { return time / length; }
    friend bool operator==(const TimeUnit&, const TimeUnit&) = default;
};

TimeUnit timeUnit(Granularity granularity);

struct ValueMark {
    double value = 0;
    std::string label; // the whole number
    friend bool operator==(const ValueMark&, const ValueMark&) = default;
};

/// Marks at whole numbers from 0 up to the first one that is not below `highest`; few enough to be read.
std::vector<ValueMark> valueMarks(double highest);

struct TimeMark {
    Date at;
    std::string label;
    Date labelAt; // where the label's middle stands: at the beginning of an hour, in the middle of a day
    friend bool operator==(const TimeMark&, const TimeMark&) = default;
};

/// Marks along a chart of the interval. Hours stand every three hours. Days stand each when there are few buckets in a
/// short interval, otherwise every seventh.
std::vector<TimeMark> timeMarks(DateInterval interval, Granularity granularity, std::size_t bucketCount,
                                const Calendar& calendar);

/// How an hour or a day of a chart is named: "09:00 – 10:00" or "Fri, 20 Nov".
std::string bucketTitle(Date start, Granularity granularity, const Calendar& calendar);

/// Ways through the hours or days of a chart, one key each.
enum class ChartStep { earlier, later, first, last };

/// The hour or day that a step leads to, with activity or without, never out of the interval. From nowhere a step leads
/// to the first or the last hour or day that `active` names, which ascend; absent when there is none.
std::optional<DateInterval> steppedBucket(std::span<const DateInterval> active, std::optional<DateInterval> from,
                                          ChartStep step, DateInterval interval, Granularity granularity,
                                          const Calendar& calendar);

/// The calendar's hour or day that contains the date.
DateInterval bucketInterval(Date date, Granularity granularity, const Calendar& calendar);

} // namespace kestrio
