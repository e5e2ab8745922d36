// The calendar's hours or days around moments that mostly follow one another: asks the calendar, which is slow, only
// where a new interval begins.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Reports/Report.h"

#include <algorithm>

namespace kestrio {

class IntervalWalk {
public:
    /// The calendar must outlive the walk.
    IntervalWalk(const Calendar& calendar, Granularity granularity) : calendar_(calendar), granularity_(granularity) {}

    /// The interval that contains the date.
    const DateInterval& around(Date date) {
        if (!current_.contains(date))
            current_ = granularity_ == Granularity::hour ? calendar_.hour(date) : calendar_.day(date);
        return current_;
    }

    /// Cuts a span at the borders of the intervals: calls `visit(interval start, seconds)` for each piece, in order.
    template <class Visitor>
    void cut(Date start, Date end, Visitor&& visit) {
        for (auto cursor = start; cursor < end;) {
            const auto& interval = around(cursor);
            if (interval.end <= cursor)
                return;
            const auto next = std::min(interval.end, end);
            visit(interval.start, next - cursor);
            cursor = next;
        }
    }

private:
    const Calendar& calendar_;
    const Granularity granularity_;
    DateInterval current_{}; // empty at first: contains nothing
};

} // namespace kestrio
