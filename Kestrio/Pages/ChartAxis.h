// What stands along the axes of the charts over time. Pure functions.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"

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
    friend bool operator==(const TimeMark&, const TimeMark&) = default;
};

/// Marks along a chart of the interval. Hours stand every three hours. Days stand each when there are few buckets in a
/// short interval, otherwise every seventh.
std::vector<TimeMark> timeMarks(DateInterval interval, Granularity granularity, std::size_t bucketCount,
                                const Calendar& calendar);

/// The calendar's hour or day that contains the date.
DateInterval bucketInterval(Date date, Granularity granularity, const Calendar& calendar);

} // namespace kestrio
