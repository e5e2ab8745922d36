// Whole reports over hand-made days, compared as text. The expected texts stand in Tests/Fixtures/Reports; each was
// read line by line before it was put there. What came out instead is written beside the test program.
#include "Kestrio/Reports/RangeMode.h"
#include "Kestrio/Reports/ReportDescription.h"
#include "Tests/Reports/ReportBench.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum SessionKind;

void expectGolden(const std::string& name, const std::string& text) {
    const auto expected = fileText(std::filesystem::path(KESTRIO_FIXTURES) / "Reports" / (name + ".txt"));
    if (text == expected)
        return;
    writeFile(name + ".actual.txt", text);
    EXPECT_EQ(text, expected);
}

constexpr double at(double hours, double minutes = 0) {
    return hours * hour + minutes * minute;
}

const Doing letter{.app = "Writer", .title = "Letter to Ada", .bundleID = "com.microsoft.Word"};
const Doing code{
    .app = "Code", .title = "Parser.cpp — harbour", .project = "harbour", .bundleID = "com.microsoft.VSCode"};
const Doing header{
    .app = "Code", .title = "Parser.h — harbour", .project = "harbour", .bundleID = "com.microsoft.VSCode"};
const Doing shell{.app = "kitty", .title = "ninja ~/harbour", .project = "harbour", .bundleID = "net.kovidgoyal.kitty"};
const Doing issue{.app = "Google Chrome",
                  .title = "Issue 12 · harbour",
                  .url = "https://github.com/team/harbour/issues/12",
                  .bundleID = "com.google.Chrome"};
const Doing talk{.app = "Google Chrome",
                 .title = "A history of tidal power - YouTube",
                 .url = "https://www.youtube.com/watch?v=tides",
                 .bundleID = "com.google.Chrome"};
const Doing loading{.app = "Google Chrome",
                    .title = "YouTube",
                    .url = "https://www.youtube.com/watch?v=tides",
                    .bundleID = "com.google.Chrome"};
const Doing results{.app = "Google Chrome",
                    .title = "tidal power - YouTube",
                    .url = "https://www.youtube.com/results?search_query=tidal+power",
                    .bundleID = "com.google.Chrome"};
const Doing brief{.app = "Google Chrome",
                  .title = "#shorts waves - YouTube",
                  .url = "https://www.youtube.com/shorts/waves",
                  .bundleID = "com.google.Chrome"};
const Doing chat{.app = "Slack", .title = "general (Channel)", .bundleID = "com.tinyspeck.slackmacgap"};
const Doing feed{
    .app = "Google Chrome", .title = "", .url = "https://old.reddit.com/r/trains", .bundleID = "com.google.Chrome"};

Doing beside(Doing doing, SessionKind kind) {
    doing.kind = kind;
    return doing;
}

Doing song(const char* title) {
    return {.app = "Spotify", .title = title, .kind = listening, .bundleID = "com.spotify.client"};
}

TEST(ReportGolden, anOrdinaryWorkingDay) {
    ReportBench bench;
    bench
        .add(at(0) - 600, 1500, talk) // from the evening before
        .add(at(8, 55), 300, letter)
        .add(at(9), 2400, code)
        .add(at(9, 40), 90, issue)
        .add(at(9, 41.5), 1710, header)
        .add(at(10, 10), 45, shell)
        .add(at(10, 11), 540, code)
        .add(at(10, 25), 900, chat)
        .add(at(12, 58), 240, letter) // across one o'clock
        .add(at(13, 2), 60, results)
        .add(at(13, 3), 5, loading)
        .add(at(13, 3) + 5, 595, talk)
        .add(at(13, 13), 20, brief)
        .add(at(13, 15), 100, feed)
        .add(at(16), 1800, code)
        .add(at(23, 50), 1200, letter) // into the next day
        .add(at(9, 5), 200, song("Slow Tram"))
        .add(at(9, 8) + 25, 190, song("Kites"))
        .add(at(16, 5), 1200, beside(talk, watching));
    bench.rule("letter to ada", "Ada");
    expectGolden("working-day", described(bench.report(), bench.calendar));
}

TEST(ReportGolden, aDayThatLosesAnHour) {
    ReportBench bench(Calendar("de_DE", "Europe/Berlin"), 2026, 3, 29);
    bench
        .add(at(0, 30), 3 * hour, code) // the clocks go from two to three under way
        .add(at(22), hour - 60, letter) // an hour before midnight by the day's own length
        .add(at(22, 59), 600, letter);
    expectGolden("spring-day", described(bench.report(), bench.calendar));
}

TEST(ReportGolden, aDayThatGainsAnHour) {
    ReportBench bench(Calendar("de_DE", "Europe/Berlin"), 2026, 10, 25);
    bench
        .add(at(1, 30), 2 * hour, code) // from half past one to half past two, the second one
        .add(at(24), 3 * hour, letter); // the day's last hour, and on
    expectGolden("autumn-day", described(bench.report(), bench.calendar));
}

TEST(ReportGolden, aDayWithNothingButThingsAlongside) {
    ReportBench bench;
    bench.add(at(20), 200, song("Slow Tram"))
        .add(at(20, 3) + 20, 180, song("Kites"))
        .add(at(20, 7), 200, song("Slow Tram"))
        .add(at(20, 1), 3000, beside(talk, watching))
        .add(at(21), 300, beside(feed, watching));
    expectGolden("alongside-day", described(bench.report(), bench.calendar));
}

TEST(ReportGolden, theWeekOfNewYearWhereverWeeksBegin) {
    std::string text;
    for (const char* locale : {"de_DE", "en_US", "ar_EG", "dv_MV"}) { // Monday, Sunday, Saturday, Friday
        ReportBench bench(Calendar(locale, "Europe/Berlin"), 2025, 12, 24);
        for (int day = 0; day < 14; ++day)
            bench.add(at(24.0 * day + 9), 100 + day, day % 2 == 0 ? code : letter);
        const Calendar plain("en_GB", "Europe/Berlin");
        const auto week = interval(RangeMode::week, bench.calendar.date(2026, 1, 1, 15), bench.calendar);
        text += fmt::format("{}\n{}\n", locale, described(bench.report(week, granularity(RangeMode::week)), plain));
    }
    expectGolden("new-year-weeks", text);
}

TEST(ReportGolden, anEmptyRange) {
    const ReportBench bench;
    EXPECT_EQ(described(bench.report(), bench.calendar),
              "interval: 2026-11-20 00:00:00 to 2026-11-21 00:00:00\ngranularity: hour\n");
}

} // namespace
} // namespace kestrio
