#include "Kestrio/Reports/RangeMode.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(RangeMode, hasItsRawValuesInOrder) {
    std::vector<std::string_view> all;
    for (const auto mode : allRangeModes) {
        all.push_back(rawValue(mode));
        EXPECT_EQ(rangeMode(rawValue(mode)), mode);
    }
    EXPECT_EQ(all, (std::vector<std::string_view>{"day", "week", "month"}));
    EXPECT_FALSE(rangeMode("Day"));
    EXPECT_FALSE(rangeMode(""));
}

TEST(RangeMode, isTheCalendarsRangeAroundADate) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto date = calendar.date(2026, 11, 20, 15);
    EXPECT_EQ(interval(RangeMode::day, date, calendar), calendar.day(date));
    EXPECT_EQ(interval(RangeMode::week, date, calendar), calendar.weekOfYear(date));
    EXPECT_EQ(interval(RangeMode::month, date, calendar), calendar.month(date));
}

TEST(RangeMode, movesByItsUnit) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto date = calendar.date(2026, 3, 31, 15);
    const auto shown = [&](RangeMode mode, int count) {
        return calendar.formatted(adding(mode, count, date, calendar), "yyyy-MM-dd HH:mm");
    };
    EXPECT_EQ(shown(RangeMode::day, -2), "2026-03-29 15:00"); // over a day of 23 hours
    EXPECT_EQ(shown(RangeMode::week, 1), "2026-04-07 15:00");
    EXPECT_EQ(shown(RangeMode::month, -1), "2026-02-28 15:00");
    EXPECT_EQ(shown(RangeMode::month, 0), "2026-03-31 15:00");
}

TEST(RangeMode, drawsHoursForADayAndDaysForTheRest) {
    EXPECT_EQ(granularity(RangeMode::day), Granularity::hour);
    EXPECT_EQ(granularity(RangeMode::week), Granularity::day);
    EXPECT_EQ(granularity(RangeMode::month), Granularity::day);
}

TEST(RangeMode, isSaidInTheWordsOfTheLocale) {
    struct Row {
        const char* locale;
        RangeMode mode;
        int month, day;
        const char* title;
        const char* subtitle;
    };
    using enum RangeMode;
    const Row rows[] = {
        {"en_GB", day, 11, 20, "Today", "Friday, 20 November 2026"},
        {"en_GB", day, 11, 19, "Yesterday", "Thursday, 19 November 2026"},
        {"en_GB", day, 11, 18, "Wednesday, 18 November", "Wednesday, 18 November 2026"},
        {"en_GB", day, 11, 21, "Saturday, 21 November", "Saturday, 21 November 2026"},
        {"en_US", day, 11, 18, "Wednesday, November 18", "Wednesday, November 18, 2026"},
        {"de_DE", day, 11, 18, "Mittwoch, 18. November", "Mittwoch, 18. November 2026"},
        {"ja_JP", day, 11, 18, "11月18日水曜日", "2026年11月18日水曜日"},
        {"en_GB", week, 11, 16, "This Week", "16 Nov – 22 Nov 2026"},
        {"en_US", week, 11, 15, "This Week", "Nov 15 – Nov 21, 2026"}, // begins on Sunday
        {"en_GB", week, 11, 15, "Week of 9 Nov", "9 Nov – 15 Nov 2026"},
        {"de_DE", week, 11, 15, "Week of 9. Nov.", "9. Nov. – 15. Nov. 2026"},
        {"en_GB", week, 1, 1, "Week of 29 Dec", "29 Dec – 4 Jan 2026"},
        {"en_GB", month, 11, 1, "This Month", "1 Nov – 30 Nov 2026"},
        {"en_GB", month, 10, 31, "October 2026", "1 Oct – 31 Oct 2026"},
        {"de_DE", month, 10, 31, "Oktober 2026", "1. Okt. – 31. Okt. 2026"},
        {"en_US", month, 2, 1, "February 2026", "Feb 1 – Feb 28, 2026"},
    };
    for (const auto& row : rows) {
        const Calendar calendar(row.locale, "Europe/Berlin");
        const auto now = calendar.date(2026, 11, 20, 15);
        const auto anchor = calendar.date(2026, row.month, row.day, 12);
        EXPECT_EQ(rangeTitle(row.mode, anchor, now, calendar), row.title) << row.locale << " " << row.day;
        EXPECT_EQ(rangeSubtitle(row.mode, anchor, calendar), row.subtitle) << row.locale << " " << row.day;
    }
}

} // namespace
} // namespace kestrio
