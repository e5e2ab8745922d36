// All pages over a made-up person's history: nothing, a day, a month of sixty thousand sessions.
#include "Kestrio/Pages/AppsPage.h"
#include "Kestrio/Pages/DayStrips.h"
#include "Kestrio/Pages/ProjectsPage.h"
#include "Kestrio/Pages/TimelinePage.h"
#include "Kestrio/Pages/TodayPanel.h"
#include "Kestrio/Pages/WebsitesPage.h"
#include "Kestrio/Pages/YouTubePage.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Tests/Examples/ExampleHistory.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Calendar& calendar() {
    static const Calendar one("en_GB", "Europe/Berlin");
    return one;
}

Viewpoint evening() {
    return {calendar().date(2026, 10, 31, 20), calendar()};
}

ActivityReport exampleReport(int days, int sessionsPerWorkday, RangeMode mode) {
    const auto now = evening().now;
    std::vector<ActivitySession> sessions;
    if (days > 0)
        sessions = exampleHistory(now, calendar(), {.days = days, .sessionsPerWorkday = sessionsPerWorkday});
    return ReportBuilder::build(std::move(sessions), interval(mode, now, calendar()), granularity(mode), calendar(),
                                {});
}

const ActivityReport& heavyMonth() {
    static const auto report = exampleReport(31, 2600, RangeMode::month);
    return report;
}

void expectSound(const std::vector<UsageRow>& rows) {
    for (const auto& row : rows) {
        EXPECT_FALSE(row.title.empty());
        EXPECT_GE(row.fraction, 0);
        EXPECT_LE(row.fraction, 1);
    }
}

TEST(ExamplePages, areAllEmptyBeforeAnythingHappened) {
    const auto report = exampleReport(0, 0, RangeMode::day);
    EXPECT_TRUE(std::holds_alternative<EmptyActivity>(overviewPage(report, RangeMode::day, Thumbnails::on, evening())));
    EXPECT_TRUE(std::holds_alternative<EmptyActivity>(appsPage(report)));
    EXPECT_TRUE(std::holds_alternative<EmptyActivity>(websitesPage(report, {})));
    EXPECT_TRUE(std::holds_alternative<EmptyActivity>(youtubePage(report, {}, evening())));
    EXPECT_TRUE(std::holds_alternative<EmptyActivity>(projectsPage(report)));
    EXPECT_TRUE(std::holds_alternative<EmptyActivity>(timelinePage(report, {}, evening())));
    const auto strips = dayStrips(report, evening());
    EXPECT_TRUE(strips.days.empty());
    EXPECT_EQ(strips.hours, HourRange{});
    EXPECT_EQ(todayPanel(report, {}, calendar()).activeTime, "0s");
}

TEST(ExamplePages, aDayFillsThemAll) {
    // A working day: the history's last one may be a quiet Saturday.
    const auto now = calendar().date(2026, 10, 30, 20);
    const auto sessions = exampleHistory(now, calendar(), {.days = 1, .sessionsPerWorkday = 250});
    const auto report = ReportBuilder::build(sessions, calendar().day(now), Granularity::hour, calendar(), {});
    const Viewpoint viewpoint{now, calendar()};
    const auto overview = std::get<OverviewPage>(overviewPage(report, RangeMode::day, Thumbnails::on, viewpoint));
    EXPECT_EQ(overview.stats.size(), 6u);
    expectSound(overview.apps.rows);
    expectSound(overview.websites.rows);
    const auto strips = dayStrips(report, viewpoint);
    ASSERT_EQ(strips.days.size(), 1u);
    EXPECT_FALSE(strips.layout.manyDays);
    EXPECT_EQ(strips.days[0].active(), report.total);
    EXPECT_EQ(std::get<TimelinePage>(timelinePage(report, {}, viewpoint)).sections.size(), 1u);
}

TEST(ExamplePages, aMonthOfSixtyThousandSessionsFillsThemAll) {
    const auto& report = heavyMonth();
    EXPECT_GT(report.sessions.size() + report.alongsideSessions.size(), 60'000u);
    const auto overview = std::get<OverviewPage>(overviewPage(report, RangeMode::month, Thumbnails::off, evening()));
    EXPECT_EQ(overview.apps.rows.size(), OverviewPage::topLimit);
    for (const auto* rows : {&overview.apps.rows, &overview.websites.rows, &overview.youtube.rows})
        expectSound(*rows);
    const auto strips = dayStrips(report, evening());
    EXPECT_TRUE(strips.layout.isDense);
    std::size_t sessions = 0;
    for (const auto& day : strips.days)
        sessions += day.sessions.size();
    EXPECT_EQ(sessions, report.sessions.size());
}

TEST(ExamplePages, theTimelineHasEveryBlockOnce) {
    const auto& report = heavyMonth();
    const auto page = std::get<TimelinePage>(timelinePage(report, {}, evening()));
    std::vector<bool> seen(report.blocks.size());
    Date newest = distantFuture;
    for (const auto& section : page.sections) {
        EXPECT_LT(section.day, newest);
        newest = section.day;
        for (const auto place : section.blocks) {
            EXPECT_FALSE(seen[place]);
            seen[place] = true;
            EXPECT_EQ(calendar().startOfDay(report.blocks[place].start), section.day);
        }
    }
    EXPECT_TRUE(std::ranges::all_of(seen, [](bool one) { return one; }));
}

TEST(ExamplePages, everyRowLeadsToItsDetail) {
    const auto report = exampleReport(31, 120, RangeMode::month);
    const auto apps = std::get<AppsPage>(appsPage(report));
    for (const auto& row : apps.rows) {
        const auto detail = appDetail(report, {.bundleID = row.key, .sort = AppSort::browser}, evening());
        ASSERT_TRUE(detail) << row.key;
        EXPECT_LE(detail->windows.rows.size(), ReportBuilder::itemLimit);
        if (detail->websites)
            expectSound(detail->websites->rows);
    }
    const auto sites = std::get<WebsitesPage>(websitesPage(report, {}));
    for (const auto& row : sites.rows)
        EXPECT_TRUE(domainDetail(report, {.domain = row.key}, evening())) << row.key;
    const auto projects = std::get<ProjectsPage>(projectsPage(report));
    for (const auto& row : projects.rows) {
        const auto detail = projectDetail(report, row.key, {}, evening());
        ASSERT_TRUE(detail) << row.key;
        expectSound(detail->apps.rows);
        EXPECT_FALSE(detail->trend.columns.empty());
    }
}

} // namespace
} // namespace kestrio
