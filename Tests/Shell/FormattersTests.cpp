#include "Kestrio/Shell/Formatters.h"

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

} // namespace
} // namespace kestrio
