#include "Kestrio/Pages/MonthGrid.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Calendar german("de_DE", "Europe/Berlin");
const Calendar american("en_US", "America/New_York");

MonthGrid november(const Calendar& calendar) {
    return monthGrid(calendar.date(2026, 11, 5), calendar.date(2026, 11, 18, 12), calendar.date(2026, 11, 21, 8),
                     calendar);
}

const MonthGrid::Day* dayOf(const MonthGrid& grid, Date start) {
    for (const auto& day : grid.days)
        if (day.start == start)
            return &day;
    return nullptr;
}

TEST(MonthGrid, beginsWithTheWeekOfTheFirstInThePersonsCalendar) {
    const auto monday = november(german);
    EXPECT_EQ(monday.title, "November 2026");
    EXPECT_EQ(monday.weekdays, (std::vector<std::string>{"Mo.", "Di.", "Mi.", "Do.", "Fr.", "Sa.", "So."}));
    EXPECT_EQ(monday.days.front().start, german.date(2026, 10, 26));
    EXPECT_EQ(monday.days.front().label, "26");
    EXPECT_FALSE(monday.days.front().isInMonth);
    const auto sunday = november(american);
    EXPECT_EQ(sunday.weekdays.front(), "Su");
    EXPECT_EQ(sunday.days.front().start, american.date(2026, 11, 1));
    EXPECT_EQ(sunday.days.front().fullName, "Sunday, November 1, 2026");
}

TEST(MonthGrid, alwaysHasSixWeeks) {
    for (int month = 1; month <= 12; ++month) {
        const auto first = german.date(2026, month, 1);
        const auto grid = monthGrid(first, first, german.date(2027, 6, 1), german);
        EXPECT_EQ(grid.days.size(), 42U) << month;
        EXPECT_NE(dayOf(grid, first), nullptr) << month;
    }
}

TEST(MonthGrid, marksTodayTheChosenDayAndWhatIsYetToCome) {
    const auto grid = november(german);
    EXPECT_TRUE(dayOf(grid, german.date(2026, 11, 18))->isSelected);
    EXPECT_FALSE(dayOf(grid, german.date(2026, 11, 17))->isSelected);
    EXPECT_TRUE(dayOf(grid, german.date(2026, 11, 21))->isToday);
    EXPECT_TRUE(dayOf(grid, german.date(2026, 11, 21))->isEnabled);
    EXPECT_FALSE(dayOf(grid, german.date(2026, 11, 22))->isEnabled);
}

TEST(MonthGrid, hasNoNextMonthInThePresentOne) {
    EXPECT_FALSE(november(german).hasNext);
    const auto now = german.date(2026, 11, 1);
    EXPECT_TRUE(monthGrid(german.date(2026, 10, 31), now, now, german).hasNext);
    EXPECT_FALSE(monthGrid(german.date(2026, 11, 30), now, now, german).hasNext);
}

TEST(MonthGrid, hasEachDayOnceWhereTheClocksChange) {
    for (const int month : {3, 10}) {
        const auto grid = monthGrid(german.date(2026, month, 15), Date(0), german.date(2027, 1, 1), german);
        for (int date = 1; date <= 31; ++date) {
            const auto* day = dayOf(grid, german.date(2026, month, date));
            ASSERT_NE(day, nullptr) << month << " " << date;
            EXPECT_EQ(day->label, std::to_string(date));
        }
    }
}

} // namespace
} // namespace kestrio
