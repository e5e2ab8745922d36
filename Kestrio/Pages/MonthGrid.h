// One month as a calendar on the wall has it, from which a day is picked. Plain values.
#pragma once

#include "Kestrio/Base/Calendar.h"

#include <string>
#include <vector>

namespace kestrio {

struct MonthGrid {
    static constexpr std::size_t daysInWeek = 7;
    static constexpr std::size_t weeks = 6; // always, so that months are equally tall
    static constexpr auto previousTitle = "Previous month";
    static constexpr auto previousSymbol = "chevron.left";
    static constexpr auto nextTitle = "Next month";
    static constexpr auto nextSymbol = "chevron.right";

    struct Day {
        std::string label;    // its number
        std::string fullName; // for those who hear it
        Date start;
        bool isInMonth = true;
        bool isToday = false;
        bool isSelected = false;
        bool isEnabled = true; // nothing lies after today
        friend bool operator==(const Day&, const Day&) = default;
    };
    std::string title; // "November 2026"
    std::vector<std::string> weekdays;
    std::vector<Day> days; // from the first of a week on
    bool hasNext = true;
    friend bool operator==(const MonthGrid&, const MonthGrid&) = default;
};

/// The month that contains `shown`.
MonthGrid monthGrid(Date shown, Date selected, Date now, const Calendar& calendar);

} // namespace kestrio
