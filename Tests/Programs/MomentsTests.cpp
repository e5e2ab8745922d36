#include "Programs/CommandLine/Moments.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(Moments, areReadAsPeopleTypeThem) {
    const Calendar berlin("en_GB", "Europe/Berlin");
    const auto now = berlin.date(2026, 11, 21, 10, 31, 5);
    const auto at = [&](int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
        return berlin.date(year, month, day, hour, minute, second);
    };
    struct Row {
        const char* text;
        std::optional<Date> expected;
    };
    const Row rows[] = {
        {"now", now},
        {"today", at(2026, 11, 21)},
        {"yesterday", at(2026, 11, 20)},
        {"tomorrow", at(2026, 11, 22)},
        {"  today\t", at(2026, 11, 21)},
        {"\u00a0today", at(2026, 11, 21)},
        {"Today", {}},
        {"", {}},
        {" ", {}},
        {"soon", {}},

        {"14:30", at(2026, 11, 21, 14, 30)},
        {"9:05", at(2026, 11, 21, 9, 5)},
        {"09:05:59", at(2026, 11, 21, 9, 5, 59)},
        {"00:00", at(2026, 11, 21)},
        {"23:59:59", at(2026, 11, 21, 23, 59, 59)},
        {"24:00", {}},
        {"12:60", {}},
        {"12:00:60", {}},
        {"12", {}},
        {"12:3", {}},
        {"123:00", {}},
        {"-1:00", {}},

        {"2026-11-20", at(2026, 11, 20)},
        {"2026-11-20 14:30", at(2026, 11, 20, 14, 30)},
        {"2026-11-20T14:30:05", at(2026, 11, 20, 14, 30, 5)},
        {"2026-11-20 9:00", at(2026, 11, 20, 9)},
        {"2024-02-29", at(2024, 2, 29)},
        {"2026-02-29", {}},
        {"2026-04-31", {}},
        {"2026-13-01", {}},
        {"2026-00-10", {}},
        {"2026-11-00", {}},
        {"2026-11-20 24:00", {}},
        {"2026-11-20  14:30", {}},
        {"2026-1-2", {}},
        {"26-11-20", {}},
        {"2026-11-20x", {}},
        {"0000-01-01", {}},
        {"4052-11-21T14:30:05", {}}, // after everything that is ever recorded

        {"2h ago", now - Seconds(7200)},
        {"1h30m ago", now - Seconds(5400)},
        {"2h  ago", now - Seconds(7200)},
        {"-90m", now - Seconds(5400)},
        {"90m", {}},
        {"0s ago", {}},
        {" ago", {}},
        {"ago", {}},
        {"-", {}},
        {"--5m", {}},
        {"-2h ago", {}},

        {"@0", Date(0)},
        {"@1700000000.5", Date(1'700'000'000.5)},
        {"@-5", Date(-5)},
        {"@1e3", Date(1000)},
        {"@", {}},
        {"@nan", {}},
        {"@inf", {}},
        {"@-inf", {}},
        {"@1e999", {}},
        {"@1e300", {}},
        {"@99999999999999999999", {}},
        {"@ 5", {}},
        {"@5x", {}},
        {"@0x10", {}},
        {"@64092211200", distantFuture},
        {"@64092211201", {}},
        {"\xff\xfe", {}},
    };
    for (const auto& row : rows) {
        const auto found = parseMoment(row.text, now, berlin);
        EXPECT_EQ(found.has_value(), row.expected.has_value()) << "\"" << row.text << "\"";
        if (found && row.expected) {
            EXPECT_EQ(*found - *row.expected, Seconds(0)) << "\"" << row.text << "\"";
        }
    }
}

TEST(Moments, holdWhereTheClocksChange) {
    const Calendar berlin("en_GB", "Europe/Berlin");
    // 2026-03-29 01:59:59 CET is followed by 03:00:00 CEST; 2026-10-25 02:59:59 CEST by 02:00:00 CET.
    const Date spring(1'774'746'000);
    const auto springNoon = berlin.date(2026, 3, 29, 12);
    EXPECT_EQ(parseMoment("03:00", springNoon, berlin), spring);
    EXPECT_EQ(parseMoment("01:59:59", springNoon, berlin), spring - Seconds(1));
    EXPECT_EQ(parseMoment("2026-03-29 02:30", springNoon, berlin), spring)
        << "a time that was skipped is the next that exists";
    EXPECT_EQ(parseMoment("today", springNoon, berlin), spring - Seconds(7200));
    EXPECT_EQ(parseMoment("tomorrow", springNoon, berlin), spring + Seconds(21 * 3600));

    const Date autumn(1'792'890'000);
    const auto autumnNoon = berlin.date(2026, 10, 25, 12);
    EXPECT_EQ(parseMoment("02:30", autumnNoon, berlin), autumn - Seconds(1800)) << "the first of the two";
    EXPECT_EQ(*parseMoment("tomorrow", autumnNoon, berlin) - *parseMoment("today", autumnNoon, berlin),
              Seconds(25 * 3600));
    EXPECT_EQ(parseMoment("yesterday", berlin.date(2026, 10, 26, 0, 30), berlin), berlin.date(2026, 10, 25));
}

TEST(Lengths, areReadAsPeopleTypeThem) {
    struct Row {
        const char* text;
        std::optional<double> expected;
    };
    const Row rows[] = {
        {"90s", 90},
        {"30m", 1800},
        {"30min", 1800},
        {"1h", 3600},
        {"1h30m", 5400},
        {"2d", 172'800},
        {"1d1h1m1s", 90'061},
        {"0h30m", 1800},
        {"99999d", 8'639'913'600},
        {"", {}},
        {"0", {}},
        {"0s", {}},
        {"0d0h0m0s", {}},
        {"30", {}},
        {"m", {}},
        {"-30m", {}},
        {"30m1h", {}},
        {"30 m", {}},
        {" 30m", {}},
        {"1.5h", {}},
        {"30M", {}},
        {"1h1h", {}},
        {"100000d", {}},
        {"99999999999999999999s", {}},
        {"infs", {}},
        {"until-tomorrow", {}},
    };
    for (const auto& row : rows) {
        const auto found = parseLength(row.text);
        EXPECT_EQ(found.has_value(), row.expected.has_value()) << "\"" << row.text << "\"";
        if (found && row.expected) {
            EXPECT_EQ(found->count(), *row.expected) << row.text;
        }
    }
    EXPECT_FALSE(parseLength(std::string(100'000, '9')));
    EXPECT_FALSE(parseLength(std::string("30m\0", 4)));
}

} // namespace
} // namespace kestrio
