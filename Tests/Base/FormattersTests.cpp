#include "Kestrio/Base/Formatters.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(Fmt, durationsHaveTheirTwoLargestUnits) {
    struct Row {
        double seconds;
        const char* text;
    };
    const Row rows[] = {
        {0, "0s"},          {0.4, "0s"},       {0.5, "1s"},     {1, "1s"},        {59, "59s"},     {59.4, "59s"},
        {59.5, "1m"},       {60, "1m"},        {119, "1m"},     {120, "2m"},      {3599.4, "59m"}, {3599.5, "1h"},
        {3600, "1h"},       {3659, "1h"},      {3660, "1h 1m"}, {7199, "1h 59m"}, {7200, "2h"},    {86'400, "24h"},
        {90'061, "25h 1m"}, {360'000, "100h"}, {-5, "-5s"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Fmt::duration(Seconds(row.seconds)), row.text) << row.seconds;
}

std::string plainSpaces(std::string text) {
    for (auto at = text.find("\u202F"); at != std::string::npos; at = text.find("\u202F"))
        text.replace(at, 3, " "); // newer locale data has a narrow space before AM and PM
    return text;
}

TEST(Fmt, theMenuBarKeepsTheMinutesOfAFullHour) {
    struct Row {
        double seconds;
        const char* text;
    };
    const Row rows[] = {{0, "0m"},       {59.9, "0m"},    {60, "1m"},       {3599.9, "59m"},
                        {3600, "1h 0m"}, {3660, "1h 1m"}, {7199, "1h 59m"}, {90'000, "25h 0m"}};
    for (const auto& row : rows)
        EXPECT_EQ(Fmt::menuBar(Seconds(row.seconds)), row.text) << row.seconds;
}

TEST(Fmt, aShareOfNothingIsNothing) {
    EXPECT_EQ(Fmt::percent(5, 0), "0%");
    EXPECT_EQ(Fmt::percent(5, -1), "0%");
    EXPECT_EQ(Fmt::percent(1, 3), "33%");
    EXPECT_EQ(Fmt::percent(2, 3), "67%");
    EXPECT_EQ(Fmt::percent(1, 200), "1%");
    EXPECT_EQ(Fmt::percent(3, 3), "100%");
    EXPECT_EQ(Fmt::percent(6, 3), "200%");
}

TEST(Fmt, whatIsAlongsideIsToldApartOnlyWhereThereIsAny) {
    EXPECT_EQ(Fmt::split(Seconds(3900), Seconds(0.9)), std::nullopt);
    EXPECT_EQ(Fmt::split(Seconds(0.9), Seconds(1200)), "20m alongside");
    EXPECT_EQ(Fmt::split(Seconds(1), Seconds(1)), "1s focused · 1s alongside");
    EXPECT_EQ(Fmt::split(Seconds(3900), Seconds(1200)), "1h 5m focused · 20m alongside");
}

TEST(Fmt, timesAndDaysFollowTheLocale) {
    const Calendar american("en_US", "America/New_York");
    const Calendar german("de_DE", "Europe/Berlin");
    const auto morning = american.date(2026, 11, 21, 9, 5);
    const auto evening = american.date(2026, 11, 21, 17, 30);
    EXPECT_EQ(plainSpaces(Fmt::timeRange(morning, evening, american)), "9:05 AM – 5:30 PM");
    EXPECT_EQ(Fmt::timeRange(german.date(2026, 11, 21, 9, 5), german.date(2026, 11, 21, 17, 30), german),
              "09:05 – 17:30");
    EXPECT_EQ(Fmt::relativeDay(morning, evening, american), "Today");
    EXPECT_EQ(Fmt::relativeDay(american.date(2026, 11, 20, 23, 59), evening, american), "Yesterday");
    EXPECT_EQ(Fmt::relativeDay(american.date(2026, 11, 19), evening, american), "Thursday, Nov 19");
    EXPECT_EQ(Fmt::relativeDay(american.date(2026, 11, 22), evening, american), "Sunday, Nov 22");
    EXPECT_EQ(Fmt::relativeDay(german.date(2026, 11, 19, 12), german.date(2026, 11, 21, 12), german),
              "Donnerstag, 19. Nov.");
    EXPECT_EQ(plainSpaces(Fmt::lastSeen(morning, evening, american)), "9:05 AM");
    EXPECT_EQ(plainSpaces(Fmt::lastSeen(american.date(2026, 11, 20, 9, 5), evening, american)), "Nov 20, 9:05 AM");
    EXPECT_EQ(Fmt::lastSeen(german.date(2026, 11, 20, 9, 5), german.date(2026, 11, 21), german), "20. Nov., 09:05");
}

TEST(Fmt, yesterdayIsTheDayBeforeAlsoWhereTheClocksChange) {
    const Calendar berlin("en_GB", "Europe/Berlin");
    EXPECT_EQ(Fmt::relativeDay(berlin.date(2026, 10, 25, 0, 30), berlin.date(2026, 10, 26, 12), berlin), "Yesterday");
    EXPECT_EQ(Fmt::relativeDay(berlin.date(2026, 3, 28, 23, 30), berlin.date(2026, 3, 29, 23), berlin), "Yesterday");
}

TEST(Fmt, aLoadBelowOneCoreIsAShareOfIt) {
    const Calendar english("en_US", "UTC");
    const Calendar german("de_DE", "UTC");
    EXPECT_EQ(Fmt::cores(0, english), "0% of a core");
    EXPECT_EQ(Fmt::cores(0.5, english), "50% of a core");
    EXPECT_EQ(Fmt::cores(0.125, english), "13% of a core");
    EXPECT_EQ(Fmt::cores(0.999, english), "100% of a core");
    EXPECT_EQ(Fmt::cores(1.0, english), "1.0 cores");
    EXPECT_EQ(Fmt::cores(12.34, english), "12.3 cores");
    EXPECT_EQ(Fmt::cores(1.5, german), "1,5 cores");
}

TEST(Fmt, millisecondsAreSecondsWithADecimalUpToTen) {
    const Calendar english("en_US", "UTC");
    EXPECT_EQ(Fmt::seconds(0, english), "0.0 s");
    EXPECT_EQ(Fmt::seconds(340, english), "0.3 s");
    EXPECT_EQ(Fmt::seconds(9999, english), "10.0 s");
    EXPECT_EQ(Fmt::seconds(10'000, english), "10 s");
    EXPECT_EQ(Fmt::seconds(12'999, english), "12 s");
    EXPECT_EQ(Fmt::seconds(1500, Calendar("de_DE", "UTC")), "1,5 s");
}

TEST(Fmt, sizesAreInTheLargestUnitThatFits) {
    struct Row {
        std::uint64_t bytes;
        const char* memory;
        const char* fileSize;
    };
    const Row table[] = {
        {0, "0 bytes", "0 bytes"},
        {1, "1 bytes", "1 bytes"},
        {999, "999 bytes", "999 bytes"},
        {1000, "1,000 bytes", "1 KB"},
        {1023, "1,023 bytes", "1 KB"},
        {1024, "1 KB", "1 KB"},
        {1500, "1 KB", "2 KB"},
        {1'048'576, "1 MB", "1 MB"},
        {1'572'864, "1.5 MB", "1.6 MB"},
        {537'919'488, "513 MB", "537.9 MB"},
        {1'073'741'823, "1 GB", "1.07 GB"}, // rounds up to the next unit
        {1'610'612'736, "1.5 GB", "1.61 GB"},
        {1'181'116'006, "1.1 GB", "1.18 GB"},
        {20'000'000'000, "18.63 GB", "20 GB"},
        {5'497'558'138'880, "5 TB", "5.5 TB"},
        {18'446'744'073'709'551'615u, "16 EB", "18.45 EB"},
    };
    const Calendar english("en_US", "UTC");
    for (const auto& row : table) {
        EXPECT_EQ(Fmt::memory(row.bytes, english), row.memory) << row.bytes;
        EXPECT_EQ(Fmt::fileSize(row.bytes, english), row.fileSize) << row.bytes;
    }
    EXPECT_EQ(Fmt::memory(1'610'612'736, Calendar("de_DE", "UTC")), "1,5 GB");
}

TEST(Fmt, speedsAreInTheUnitsOfDrives) {
    const Calendar english("en_US", "UTC");
    EXPECT_EQ(Fmt::speed(0, english), "0 bytes/s");
    EXPECT_EQ(Fmt::speed(-5, english), "0 bytes/s");
    EXPECT_EQ(Fmt::speed(std::nan(""), english), "0 bytes/s");
    EXPECT_EQ(Fmt::speed(1.5e9, english), "1.5 GB/s");
    EXPECT_EQ(Fmt::speed(2'345'678, english), "2.3 MB/s");
}

} // namespace
} // namespace kestrio
