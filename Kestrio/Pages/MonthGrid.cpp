#include "Kestrio/Pages/MonthGrid.h"

namespace kestrio {

MonthGrid monthGrid(Date shown, Date selected, Date now, const Calendar& calendar) {
    const auto month = calendar.month(shown);
    MonthGrid grid{.title = calendar.localized(month.start, "yMMMM"), .weekdays = {}, .days = {}};
    grid.hasNext = month.end <= now;
    Date day = calendar.weekOfYear(month.start).start;
    for (std::size_t i = 0; i < MonthGrid::weeks * MonthGrid::daysInWeek; ++i) {
        if (i < MonthGrid::daysInWeek)
            grid.weekdays.push_back(calendar.formatted(day, "cccccc"));
        const auto whole = calendar.day(day);
        grid.days.push_back({.label = calendar.localized(day, "d"),
                             .fullName = calendar.localized(day, "EEEEdMMMMy"),
                             .start = day,
                             .isInMonth = month.contains(day),
                             .isToday = whole.contains(now),
                             .isSelected = whole.contains(selected),
                             .isEnabled = whole.start <= now});
        day = whole.end;
    }
    return grid;
}

} // namespace kestrio
