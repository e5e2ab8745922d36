#include "Kestrio/Pages/OverviewPage.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

OverviewPage overview(const ActivityReport& report) {
    const PagesBench bench;
    return std::get<OverviewPage>(overviewPage(report, RangeMode::day, Thumbnails::off, bench.viewpoint()));
}

/// A report that is not empty.
ActivityReport someReport() {
    const PagesBench bench;
    auto report = ActivityReport::empty(bench.day, Granularity::hour);
    report.sessions.emplace_back();
    return report;
}

std::optional<std::string> detail(const ActivityReport& report, std::size_t card, RangeMode mode = RangeMode::week) {
    const PagesBench bench;
    return overviewStats(report, mode, bench.calendar)[card].detail;
}

TEST(OverviewPage, withoutSessionsSaysHowToBegin) {
    const PagesBench bench;
    auto report = ActivityReport::empty(bench.day, Granularity::hour);
    report.alongsideSessions.emplace_back();
    const auto page = overviewPage(report, RangeMode::day, Thumbnails::on, bench.viewpoint());
    EXPECT_EQ(std::get<EmptyActivity>(page),
              (EmptyActivity{"No activity yet", "chart.bar.xaxis",
                             "Use your Mac as usual — apps, websites and videos will show up here within a few "
                             "seconds."}));
}

TEST(OverviewPage, hasSixFiguresInOrder) {
    const PagesBench bench;
    auto report = someReport();
    report.total = Seconds(7200);
    report.productivity.add(Productivity::productive, Seconds(3600));
    report.productivity.add(Productivity::distracting, Seconds(720));
    report.watchingTime = Seconds(600);
    report.listeningTime = Seconds(1200);
    report.youtubeTime = Seconds(300);
    report.youtubeAlongsideTime = Seconds(600);
    report.videos = {watchedVideo("a", 300)};
    report.switches = 42;
    report.apps = {usedApp("A", 1), usedApp("B", 1), usedApp("C", 1)};
    report.domains = {usedSite("a.org", 1), usedSite("b.org", 1)};
    report.firstActivity = bench.at(9, 5);
    report.lastActivity = bench.at(17, 20);
    struct Row {
        const char* title;
        const char* symbol;
        const char* value;
        const char* detail;
    };
    const Row rows[] = {
        {"Active Time", "clock", "2h", "09:05 – 17:20"},
        {"Productive", "bolt.fill", "1h", "50% of active time"},
        {"Distracting", "flame.fill", "12m", "10% of active time"},
        {"Alongside", "rectangle.on.rectangle", "30m", "10m video · 20m audio"},
        {"YouTube", "play.rectangle.fill", "15m", "1 video"},
        {"App Switches", "arrow.left.arrow.right", "42", "3 apps · 2 sites"},
    };
    const auto stats = overviewStats(report, RangeMode::day, bench.calendar);
    ASSERT_EQ(stats.size(), std::size(rows));
    for (std::size_t i = 0; i < stats.size(); ++i) {
        EXPECT_EQ(stats[i].title, rows[i].title);
        EXPECT_EQ(stats[i].symbol, rows[i].symbol) << rows[i].title;
        EXPECT_EQ(stats[i].value, rows[i].value) << rows[i].title;
        EXPECT_EQ(stats[i].detail, rows[i].detail) << rows[i].title;
    }
    EXPECT_DOUBLE_EQ(StatCard::leastWidth, 148);
}

TEST(OverviewPage, everyFigureExplainsItself) {
    const PagesBench bench;
    struct Row {
        const char* title;
        const char* help;
    };
    const Row rows[] = {
        {"Active Time", "Time you were at the Mac using something. Time away, idle or paused is not part of it."},
        {"Productive", "Time in Development, Work & Docs, Learning & AI. You choose what counts as what under Apps and "
                       "Websites."},
        {"Distracting", "Time in Entertainment, Social Media. You choose what counts as what under Apps and Websites."},
        {"Alongside", "Video on another screen or audio in the background while you worked. Not part of active time."},
        {"YouTube", "Time on YouTube in front of you and alongside."},
        {"App Switches", "How often you went from one app to another."},
    };
    const auto stats = overviewStats(someReport(), RangeMode::day, bench.calendar);
    ASSERT_EQ(stats.size(), std::size(rows));
    for (std::size_t i = 0; i < stats.size(); ++i)
        EXPECT_EQ(stats[i].help, rows[i].help) << rows[i].title;
}

TEST(OverviewPage, theAverageIsThatOfActiveDays) {
    const PagesBench bench;
    struct Row {
        RangeMode mode;
        std::int64_t activeDays;
        bool hasSpan;
        const char* detail;
    };
    const Row rows[] = {
        {RangeMode::day, 1, true, "09:00 – 10:00"},        {RangeMode::day, 1, false, "avg 6h / active day"},
        {RangeMode::week, 0, true, "avg 6h / active day"}, {RangeMode::week, 1, true, "avg 6h / active day"},
        {RangeMode::week, 2, true, "avg 3h / active day"}, {RangeMode::month, 4, false, "avg 1h 30m / active day"},
    };
    for (const auto& row : rows) {
        auto report = someReport();
        report.total = Seconds(6 * hour);
        report.activeDays = row.activeDays;
        if (row.hasSpan) {
            report.firstActivity = bench.at(9);
            report.lastActivity = bench.at(10);
        }
        EXPECT_EQ(detail(report, 0, row.mode), row.detail) << row.activeDays;
    }
    auto halfKnown = someReport();
    halfKnown.firstActivity = bench.at(9);
    EXPECT_EQ(detail(halfKnown, 0, RangeMode::day), "avg 0s / active day");
}

TEST(OverviewPage, nothingAlongsideIsSaid) {
    EXPECT_EQ(detail(someReport(), 3), "Nothing played on the side");
    auto report = someReport();
    report.listeningTime = Seconds(0.5);
    EXPECT_EQ(detail(report, 3), "0s video · 1s audio");
}

TEST(OverviewPage, videosAndShortsAreCountedApart) {
    struct Row {
        int videos, shorts;
        const char* detail;
    };
    const Row rows[] = {{0, 0, "0 videos"},          {1, 0, "1 video"},          {2, 0, "2 videos"},
                        {0, 1, "0 videos, 1 short"}, {1, 1, "1 video, 1 short"}, {3, 2, "3 videos, 2 shorts"}};
    for (const auto& row : rows) {
        auto report = someReport();
        for (int i = 0; i < row.videos; ++i)
            report.videos.push_back(watchedVideo("v", 1));
        for (int i = 0; i < row.shorts; ++i)
            report.videos.push_back(watchedVideo("s", 1, 0, true));
        EXPECT_EQ(detail(report, 4), row.detail);
    }
}

TEST(OverviewPage, itsCardsHaveTheirTitlesAndLeadOn) {
    auto report = someReport();
    report.alongsideItems.emplace_back();
    report.projects.emplace_back();
    const auto page = overview(report);
    EXPECT_EQ(page.activity.head, (CardHead{"Activity", "chart.bar.xaxis"}));
    EXPECT_EQ(page.categories.head, (CardHead{"Categories", "circle.hexagongrid"}));
    EXPECT_EQ(page.apps.head, (CardHead{"Top Apps", "macwindow"}));
    EXPECT_EQ(page.apps.seeAll, DashboardSection::apps);
    EXPECT_EQ(page.websites.head, (CardHead{"Top Websites", "globe"}));
    EXPECT_EQ(page.websites.seeAll, DashboardSection::websites);
    EXPECT_EQ(page.youtube.head, (CardHead{"YouTube", "play.rectangle"}));
    EXPECT_EQ(page.youtube.seeAll, std::nullopt);
    ASSERT_TRUE(page.alongside);
    EXPECT_EQ(page.alongside->head, (CardHead{"Watched & listened alongside", "rectangle.on.rectangle"}));
    EXPECT_EQ(page.alongside->note, "Second screen & background audio — not counted in active time");
    EXPECT_EQ(page.alongside->seeAll, std::nullopt);
    ASSERT_TRUE(page.projects);
    EXPECT_EQ(page.projects->head, (CardHead{"Projects", "folder"}));
    EXPECT_EQ(page.projects->seeAll, DashboardSection::projects);
    EXPECT_STREQ(SeeAllButton::title, "See all");
    EXPECT_STREQ(SeeAllButton::symbol, "chevron.right");
    EXPECT_FALSE(overview(someReport()).alongside);
    EXPECT_FALSE(overview(someReport()).projects);
}

TEST(OverviewPage, showsTheFirstFewOfEachList) {
    auto report = someReport();
    for (int i = 0; i < 9; ++i) {
        const auto name = std::to_string(i);
        report.apps.push_back(usedApp(name, 10));
        report.domains.push_back(usedSite(name + ".org", 10));
        report.videos.push_back(watchedVideo(name, 10));
        report.alongsideItems.emplace_back().title = name;
        report.projects.emplace_back().name = name;
    }
    const auto page = overview(report);
    EXPECT_EQ(titles(page.apps.rows), (Texts{"0", "1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(page.websites.rows.size(), 7u);
    EXPECT_EQ(page.youtube.rows.size(), 6u);
    EXPECT_EQ(page.alongside->rows.size(), 6u);
    EXPECT_EQ(page.projects->rows.size(), 6u);
}

TEST(OverviewPage, rowsCompareWithTheFirstAndHoldWhatWasAlongside) {
    const PagesBench bench;
    auto report = someReport();
    report.apps = {usedApp("A", 3000, 1000), usedApp("B", 1000), usedApp("C", 0, 500), usedApp("D", 10)};
    report.apps[1].items = {item("Letter", 900, bench.at(9)), item("Other", 100, bench.at(9))};
    report.apps[0].category = ActivityCategory::development;
    const auto rows = overview(report).apps.rows;
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].subtitle, "50m focused · 16m alongside");
    EXPECT_EQ(rows[0].duration, "1h 6m");
    EXPECT_DOUBLE_EQ(rows[0].fraction, 1);
    EXPECT_EQ(rows[0].tint, SystemColor::blue);
    EXPECT_EQ(rows[0].key, "org.example.A");
    EXPECT_EQ(rows[0].icon, RowIcon(AppIcon{"org.example.A"}));
    EXPECT_EQ(rows[1].subtitle, "Letter");
    EXPECT_DOUBLE_EQ(rows[1].fraction, 0.25);
    EXPECT_EQ(rows[2].subtitle, "8m alongside");
    EXPECT_DOUBLE_EQ(rows[2].fraction, 0.125);
    EXPECT_EQ(rows[3].subtitle, std::nullopt);
}

TEST(OverviewPage, sitesHaveTheirFirstPageAsSecondLine) {
    const PagesBench bench;
    auto report = someReport();
    report.domains = {usedSite("a.org", 100), usedSite("b.org", 0, 50)};
    report.domains[0].pages = {item("A page", 100, bench.at(9))};
    const auto card = overview(report).websites;
    EXPECT_EQ(card.message, std::nullopt);
    EXPECT_EQ(card.rows[0].subtitle, "A page");
    EXPECT_EQ(card.rows[1].subtitle, "50s alongside");
    EXPECT_DOUBLE_EQ(card.rows[1].fraction, 0.5);
}

TEST(OverviewPage, saysWhyAListIsEmpty) {
    const auto page = overview(someReport());
    EXPECT_EQ(page.websites.message, "No websites yet. Allow browser access in Settings › Permissions to track tabs.");
    EXPECT_EQ(page.youtube.message, "No YouTube videos watched.");
    auto report = someReport();
    report.youtubeAlongsideTime = Seconds(90);
    EXPECT_EQ(overview(report).youtube.message, "1m on YouTube, but no videos opened.");
    report.youtubeAlongsideTime = Seconds(0);
    report.youtubeTime = Seconds(600);
    EXPECT_EQ(overview(report).youtube.message, "10m on YouTube, but no videos opened.");
    report.videos = {watchedVideo("a", 600)};
    EXPECT_EQ(overview(report).youtube.message, std::nullopt);
}

TEST(OverviewPage, aProjectNamesItsFirstThreeApps) {
    const PagesBench bench;
    auto report = someReport();
    for (const int apps : {0, 1, 4}) {
        auto& project = report.projects.emplace_back();
        project.name = "P";
        for (int i = 0; i < apps; ++i)
            project.apps.push_back(item("App " + std::to_string(i), 1, bench.at(9)));
    }
    const auto rows = overview(report).projects->rows;
    EXPECT_EQ(rows[0].subtitle, std::nullopt);
    EXPECT_EQ(rows[1].subtitle, "App 0");
    EXPECT_EQ(rows[2].subtitle, "App 0, App 1, App 2");
    EXPECT_EQ(rows[0].icon, RowIcon(SymbolIcon{"folder.fill"}));
}

} // namespace
} // namespace kestrio
