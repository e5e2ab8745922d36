#include "Kestrio/Base/Text.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Programs/CommandLine/ReportChart.h"
#include "Programs/CommandLine/ReportText.h"

#include <gtest/gtest.h>
#include <sstream>

namespace kestrio {
namespace {

const Calendar& calendar() {
    static const Calendar berlin("en_GB", "Europe/Berlin");
    return berlin;
}

Date at(double hours) {
    return calendar().date(2026, 11, 20) + Seconds(3600 * hours);
}

ActivitySession session(const char* app, std::string title, double start, double minutes,
                        SessionKind kind = SessionKind::focus) {
    ActivitySession made;
    made.start = at(start);
    made.end = made.start + Seconds(60 * minutes);
    made.bundleID = app;
    made.appName = app;
    made.title = std::move(title);
    made.kind = kind;
    return made;
}

ActivitySession page(std::string title, const char* domain, const char* path, double start, double minutes) {
    auto made = session("Browser", std::move(title), start, minutes);
    made.domain = domain;
    made.url = std::string("https://www.") + domain + path;
    return made;
}

std::vector<ActivitySession> ordinaryDay() {
    auto editor = session("Editor", "Parser.cpp — harbour", 9, 100);
    editor.bundleID = "com.microsoft.VSCode";
    editor.project = "harbour";
    auto header = session("Editor", "Parser.h — harbour", 14, 60);
    header.bundleID = "com.microsoft.VSCode";
    header.project = "harbour";
    return {editor,
            page("Issue 12", "github.com", "/issues/12", 11, 20),
            page("A history of tides - YouTube", "youtube.com", "/watch?v=tides", 12, 30),
            page("tides - YouTube", "youtube.com", "/results?search_query=tides", 12.5, 2),
            header,
            session("Player", "Slow Tram", 14.25, 4, SessionKind::listening)};
}

std::string text(ReportSection section, TableStyle style = {80, false},
                 std::vector<ActivitySession> sessions = ordinaryDay()) {
    const auto report =
        ReportBuilder::build(std::move(sessions), calendar().day(at(12)), Granularity::hour, calendar(), {});
    return "\n" + reportText(report, {"Today", "Friday, 20 November 2026"}, section, at(18), calendar(), style);
}

TEST(ReportText, theOverviewHasTheFiguresTheHoursAndTheTopOfEachList) {
    EXPECT_EQ(text(ReportSection::overview), R"(
  Today   Friday, 20 November 2026

  Active time    3h 32m   09:00 – 15:00
  Productive         3h   85% of active time
  Distracting       32m   15% of active time
  Alongside          4m   0s video · 4m audio
  YouTube           32m   1 video
  App switches        2   3 apps · 2 sites

       1h                    ██        ██
                             ██        ██
                             ████  ▂▂  ██
                             ████  ██  ██
                             ████████  ██
                             ████████  ██
           00    03    06    09    12    15    18    21

  Categories
  Development         █████████████████          3h  85%
  Entertainment       ███                       32m  15%

  Top apps
  Editor              ████████████████████   2h 40m  Parser.cpp — harbour
  Browser             ██████▌                   52m  A history of tides - YouTu…
  Player              ▌                          4m  4m alongside

  Top websites
  youtube.com         ████████████████████      32m  A history of tides - YouTu…
  github.com          ████████████▌             20m  Issue 12

  YouTube
  A history of tides  ████████████████████      30m  1× · last 12:30

  Watched & listened alongside
  Slow Tram           ████████████████████       4m  Listening · Player

  Projects
  harbour             ████████████████████   2h 40m  Editor
)");
}

TEST(ReportText, appsHaveTheirWindowsBelowThem) {
    EXPECT_EQ(text(ReportSection::apps), R"(
  Today   Friday, 20 November 2026

  Apps
  Editor        ██████████████████████   2h 40m  Development · 2 visits
    Parser.cpp — harbour                 1h 40m
    Parser.h — harbour                       1h
  Browser       ███████▏                    52m  Other · 1 visit
    A history of tides - YouTube            30m
    Issue 12                                20m
    tides - YouTube                          2m
  Player        ▌                            4m  Other · 4m alongside
    Slow Tram                                4m
)");
}

TEST(ReportText, websitesHaveTheirPagesBelowThem) {
    EXPECT_EQ(text(ReportSection::websites), R"(
  Today   Friday, 20 November 2026

  Websites
  youtube.com   ██████████████████████      32m  Entertainment · 1 visit
    A history of tides - YouTube            30m
    tides - YouTube                          2m
  github.com    █████████████▊              20m  Development · 1 visit
    Issue 12                                20m
)");
}

TEST(ReportText, theVideoSiteHasItsVideosAndSearches) {
    EXPECT_EQ(text(ReportSection::youtube), R"(
  Today   Friday, 20 November 2026

  On the site       32m

  Videos
  A history of tides  ████████████████████      30m  1× · last 12:30

  Searches
  tides               ████████████████████       2m  1×
)");
}

TEST(ReportText, projectsHaveTheirWorkBelowThem) {
    EXPECT_EQ(text(ReportSection::projects), R"(
  Today   Friday, 20 November 2026

  Projects
  harbour       ██████████████████████   2h 40m  Editor
    Parser.cpp — harbour                 1h 40m
    Parser.h — harbour                       1h
)");
}

TEST(ReportText, theTimelineHasALinePerBlockUnderItsDay) {
    EXPECT_EQ(text(ReportSection::timeline), R"(
  Today   Friday, 20 November 2026

  Today  3h 32m

  09:00–10:40   1h 40m  Editor            Parser.cpp — harbour
  11:00–11:20      20m  Browser           Issue 12
  12:00–12:32      32m  Browser           A history of tides - YouTube  +1
  14:00–15:00       1h  Editor            Parser.h — harbour
  14:15–14:19       4m  Player            Listening: Slow Tram
)");
}

TEST(ReportText, aNarrowTerminalGetsNoBars) {
    EXPECT_EQ(text(ReportSection::overview, {50, false}), R"(
  Today   Friday, 20 November 2026

  Active time    3h 32m   09:00 – 15:00
  Productive         3h   85% of active time
  Distracting       32m   15% of active time
  Alongside          4m   0s video · 4m audio
  YouTube           32m   1 video
  App switches        2   3 apps · 2 sites

       1h           █    █
                    █    █
                    ██ ▂ █
                    ██ █ █
                    ████ █
                    ████ █
           00 03 06 09 12 15 18 21

  Categories
  Development            3h  85%
  Entertainment         32m  15%

  Top apps
  Editor             2h 40m  Parser.cpp — harbour
  Browser               52m  A history of tides -…
  Player                 4m  4m alongside

  Top websites
  youtube.com           32m  A history of tides -…
  github.com            20m  Issue 12

  YouTube
  A history of ti…      30m  1× · last 12:30

  Watched & listened alongside
  Slow Tram              4m  Listening · Player

  Projects
  harbour            2h 40m  Editor
)");
}

TEST(ReportText, categoriesHaveTheirColours) {
    const auto painted = text(ReportSection::apps, {80, true});
    EXPECT_NE(painted.find("\x1B[1mToday\x1B[0m   \x1B[2mFriday"), std::string::npos) << painted;
    EXPECT_NE(painted.find("\x1B[38;5;33m█"), std::string::npos) << painted;  // development, blue
    EXPECT_NE(painted.find("\x1B[38;5;245m█"), std::string::npos) << painted; // other, grey
    const auto chart = text(ReportSection::overview, {80, true});
    EXPECT_NE(chart.find("\x1B[38;5;167m"), std::string::npos) << chart; // entertainment, red
    EXPECT_EQ(text(ReportSection::apps, {80, false}).find('\x1B'), std::string::npos);
}

TEST(ReportText, everyLineFitsTheTerminalWithNothingInItThatObeys) {
    auto sessions = ordinaryDay();
    sessions.push_back(session("An application with a very long name indeed", std::string(300, 'w'), 15.5, 5));
    sessions.push_back(
        page("写真の整理をしている写真の整理をしている\x1B[2J", "a-very-long-name-of-a-site.example.org", "/a", 16, 9));
    auto talk = session("Browser", "Talk \x1B]0;x\x07", 16, 30, SessionKind::watching);
    talk.domain = "youtube.com";
    talk.url = "https://www.youtube.com/watch?v=talk";
    sessions.push_back(talk);
    for (const std::size_t width : {0U, 40U, 59U, 60U, 80U, 120U, 200U})
        for (const auto section : allReportSections) {
            const auto shown = text(section, {width, false}, sessions);
            EXPECT_EQ(shown.find('\x1B'), std::string::npos);
            std::istringstream lines(shown);
            for (std::string line; std::getline(lines, line);) {
                EXPECT_LE(text::columns(line), std::max<std::size_t>(width, 40)) << width << " " << line;
                EXPECT_FALSE(line.ends_with(' ')) << line;
            }
        }
}

TEST(ReportText, sectionsHaveTheirNames) {
    for (const auto section : allReportSections)
        EXPECT_EQ(reportSection(rawValue(section)), section);
    EXPECT_EQ(rawValue(ReportSection::youtube), "youtube");
    EXPECT_FALSE(reportSection("Apps"));
}

TEST(ReportChart, drawsEveryDayOfAMonth) {
    std::vector<ActivitySession> sessions;
    for (int day = 0; day < 30; day += 2)
        sessions.push_back(session("Editor", "", 24.0 * (day - 19) + 9, 10.0 * (day + 1)));
    const auto month = calendar().month(at(12));
    const auto report = ReportBuilder::build(sessions, month, Granularity::day, calendar(), {});
    EXPECT_EQ("\n" + reportChart(report, calendar(), {80, false}), R"(
   4h 50m                                                  ▁▁  ▅▅  ██
                                                   ▃▃  ▆▆  ██  ██  ██
                                       ▁▁  ▄▄  ▇▇  ██  ██  ██  ██  ██
                               ▂▂  ▆▆  ██  ██  ██  ██  ██  ██  ██  ██
                       ▄▄  ▇▇  ██  ██  ██  ██  ██  ██  ██  ██  ██  ██
           ▂▂  ▅▅  ██  ██  ██  ██  ██  ██  ██  ██  ██  ██  ██  ██  ██
           1 2 3 4 5 6 7 8 9 10  12  14  16  18  20  22  24  26  28  30
)");
}

TEST(ReportChart, aDayWithTwentyFiveHoursHasAsManyColumns) {
    const auto day = calendar().day(calendar().date(2026, 10, 25, 12));
    auto all = session("Editor", "", 0, 0);
    all.start = day.start;
    all.end = day.end;
    const auto report = ReportBuilder::build({all}, day, Granularity::hour, calendar(), {});
    const auto chart = reportChart(report, calendar(), {80, false});
    const auto bottom = chart.substr(0, chart.rfind("\n  ", chart.size() - 2));
    EXPECT_EQ(text::columns(bottom.substr(bottom.rfind('\n') + 1)), 11u + 25 * 2) << chart;
}

TEST(ReportChart, aRangeOfMoreColumnsThanTheTerminalHasIsNotDrawn) {
    const DateInterval years{calendar().date(2020, 1, 1), calendar().date(2026, 12, 1)};
    const auto report = ReportBuilder::build(ordinaryDay(), years, Granularity::day, calendar(), {});
    EXPECT_EQ(reportChart(report, calendar(), {200, false}), "");
    EXPECT_EQ(reportChart(ActivityReport::empty(years, Granularity::day), calendar(), {200, false}), "");
}

} // namespace
} // namespace kestrio
