#include "Kestrio/Reports/ReportBuilder.h"
#include "Tests/Reports/ReportBench.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum SessionKind;

constexpr double at9 = 9 * hour;

const AppUsage* app(const ActivityReport& report, const std::string& name) {
    for (const auto& app : report.apps)
        if (app.bundleID == "org.example." + name)
            return &app;
    return nullptr;
}

std::vector<std::string> headlines(const ActivityReport& report) {
    std::vector<std::string> all;
    for (const auto& block : report.blocks)
        all.push_back(block.headline);
    return all;
}

std::string watch(const char* id) {
    return std::string("https://www.youtube.com/watch?v=") + id;
}

TEST(ReportBuilder, nothingIsTheEmptyReportOfTheRange) {
    const ReportBench bench;
    const auto report = bench.report(Granularity::day);
    EXPECT_EQ(report, ActivityReport::empty(bench.day, Granularity::day));
    EXPECT_EQ(report.interval, bench.day);
    EXPECT_EQ(report.granularity, Granularity::day);
    EXPECT_FALSE(report.firstActivity);
    EXPECT_FALSE(report.lastActivity);
    EXPECT_EQ(report.activeDays, 0);
    EXPECT_EQ(report.switches, 0);
}

TEST(ReportBuilder, sessionsAreClippedToTheInterval) {
    struct Row {
        const char* what;
        double start, length;
        double counted;
    };
    const Row rows[] = {
        {"before", -100, 50, 0},
        {"touches the start", -100, 100, 0},
        {"across the start", -100, 150, 50},
        {"inside", 100, 50, 50},
        {"across the end", 24 * hour - 20, 100, 20},
        {"touches the end", 24 * hour, 100, 0},
        {"around the whole", -100, 24 * hour + 200, 24 * hour},
        {"of no length", 100, 0, 0},
        {"backwards", 100, -50, 0},
        {"not a number", 100, std::numeric_limits<double>::quiet_NaN(), 0},
        {"endless", 100, std::numeric_limits<double>::infinity(), 24 * hour - 100},
    };
    for (const auto kind : allSessionKinds)
        for (const auto& row : rows) {
            ReportBench bench;
            bench.add(row.start, row.length, {.kind = kind});
            const auto report = bench.report();
            EXPECT_EQ(report.total + report.watchingTime + report.listeningTime, Seconds(row.counted)) << row.what;
            EXPECT_EQ(report.sessions.size() + report.alongsideSessions.size(), row.counted > 0 ? 1u : 0u) << row.what;
            for (const auto& session : report.sessions) {
                EXPECT_GE(session.start, bench.day.start) << row.what;
                EXPECT_LE(session.end, bench.day.end) << row.what;
                EXPECT_EQ(session.duration(), Seconds(row.counted)) << row.what;
            }
        }
}

TEST(ReportBuilder, twoTitlesInOneAppAreOneVisitOneBlockTwoEntries) {
    ReportBench bench;
    bench.add(at9, 60, {.title = "One"}).add(at9 + 60, 30, {.title = "Two"});
    const auto report = bench.report();
    EXPECT_EQ(app(report, "Editor")->visits, 1);
    EXPECT_EQ(report.switches, 0);
    ASSERT_EQ(report.blocks.size(), 1u);
    EXPECT_EQ(report.blocks[0].entries.size(), 2u);
    EXPECT_EQ(report.blocks[0].headline, "One");
    EXPECT_EQ(report.blocks[0].searchText(), "Editor One  Two ");
}

TEST(ReportBuilder, aGlanceAtAnotherAppIsTwoSwitchesAndThreeBlocks) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "A"}).add(at9 + 60, 2, {.app = "B"}).add(at9 + 62, 60, {.app = "A"});
    const auto report = bench.report();
    EXPECT_EQ(app(report, "A")->visits, 2);
    EXPECT_EQ(app(report, "B")->visits, 1);
    EXPECT_EQ(report.switches, 2);
    EXPECT_EQ(report.blocks.size(), 3u);
}

TEST(ReportBuilder, aGapInTheSameAppBeginsNoVisit) {
    ReportBench bench;
    bench.add(at9, 60).add(at9 + 5 * hour, 60);
    const auto report = bench.report();
    EXPECT_EQ(report.apps[0].visits, 1);
    EXPECT_EQ(report.switches, 0);
    EXPECT_EQ(report.blocks.size(), 2u);
}

TEST(ReportBuilder, pausesBelowTheGapDoNotBreakABlock) {
    struct Row {
        SessionKind kind;
        double pause;
        std::size_t blocks;
    };
    const Row rows[] = {
        {focus, 0, 1},      {focus, 9.9, 1},    {focus, 10, 2},       {focus, 11, 2},
        {focus, -20, 1},    {watching, 29, 1},  {watching, 29.75, 1}, {watching, 30, 2},
        {watching, -20, 1}, {listening, 10, 1}, {listening, 30, 2},
    };
    for (const auto& row : rows) {
        ReportBench bench;
        bench.add(at9, 60, {.title = "x", .kind = row.kind})
            .add(at9 + 60 + row.pause, 60, {.title = "x", .kind = row.kind});
        const auto report = bench.report();
        EXPECT_EQ(report.blocks.size(), row.blocks) << rawValue(row.kind) << " " << row.pause;
        if (row.blocks == 1) {
            ASSERT_EQ(report.blocks[0].entries.size(), 1u);
            EXPECT_EQ(report.blocks[0].active, Seconds(120));
            EXPECT_EQ(report.blocks[0].entries[0].active, Seconds(120));
            EXPECT_NEAR((report.blocks[0].end - report.blocks[0].start).count(), 120 + row.pause, 1e-6);
            EXPECT_EQ(report.blocks[0].entries[0].end, report.blocks[0].end);
        }
    }
}

TEST(ReportBuilder, aBlockCanGoOnPastAnEntrysGap) {
    // The block's end is that of its longest session; the entry's is its own.
    ReportBench bench;
    bench.add(at9, 100, {.title = "Long"})
        .add(at9 + 10, 5, {.title = "Short"})
        .add(at9 + 40, 5, {.title = "Short"}) // more than ten seconds after the entry, within the block
        .add(at9 + 50, 5, {.title = "Short", .url = "https://example.org"});
    const auto report = bench.report();
    ASSERT_EQ(report.blocks.size(), 1u);
    EXPECT_EQ(report.blocks[0].entries.size(), 4u);
    EXPECT_EQ(report.blocks[0].end - report.blocks[0].start, Seconds(100));
}

TEST(ReportBuilder, aHeadlineIsTheEntryWithTheMostTime) {
    const std::string page = "https://example.org/page";
    struct Row {
        const char* what;
        std::vector<std::pair<Doing, double>> sessions;
        const char* headline;
    };
    const Row rows[] = {
        {"longest", {{{.title = "a"}, 10}, {{.title = "b"}, 20}, {{.title = "c"}, 5}}, "b"},
        {"earliest of equal ones", {{{.title = "b"}, 10}, {{.title = "a"}, 10}}, "b"},
        {"its site", {{{.title = "a"}, 10}, {{.title = "", .url = page}, 20}}, "example.org"},
        {"its application", {{{.title = "a"}, 10}, {{.title = ""}, 20}}, "Editor"},
    };
    for (const auto& row : rows) {
        ReportBench bench;
        double start = at9;
        for (const auto& [doing, length] : row.sessions) {
            bench.add(start, length, doing);
            start += length;
        }
        EXPECT_EQ(headlines(bench.report()), std::vector<std::string>{row.headline}) << row.what;
    }
}

TEST(ReportBuilder, aBlocksCategoryIsTheOneWithTheMostTime) {
    ReportBench bench;
    bench.add(at9, 30, {.title = "a", .url = "https://github.com/a"})
        .add(at9 + 30, 40, {.title = "b", .url = watch("b")})
        .add(at9 + 70, 20, {.title = "c", .url = "https://github.com/a"});
    const auto report = bench.report();
    ASSERT_EQ(report.blocks.size(), 1u);
    EXPECT_EQ(report.blocks[0].category, ActivityCategory::development);
    EXPECT_EQ(report.blocks[0].categoryTimes[ActivityCategory::development], Seconds(50));
    EXPECT_EQ(report.blocks[0].categoryTimes[ActivityCategory::entertainment], Seconds(40));
    EXPECT_EQ(report.blocks[0].categoryTimes[ActivityCategory::other], Seconds(0));
}

TEST(ReportBuilder, aFocusBlockStandsBeforeAnAlongsideBlockOfTheSameStart) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Player", .title = "Song", .kind = listening})
        .add(at9, 60, {.title = "Work"})
        .add(at9 - 1, 1, {.app = "Player", .title = "Talk", .kind = watching});
    EXPECT_EQ(headlines(bench.report()), (std::vector<std::string>{"Talk", "Work", "Song"}));
}

TEST(ReportBuilder, alongsideBlocksAreApartByKind) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Player", .title = "x", .kind = listening})
        .add(at9 + 10, 60, {.app = "Player", .title = "x", .kind = watching})
        .add(at9 + 20, 60, {.app = "Player", .title = "x", .kind = listening});
    const auto report = bench.report();
    ASSERT_EQ(report.blocks.size(), 3u);
    EXPECT_EQ(report.blocks[0].kind, listening);
    EXPECT_EQ(report.blocks[1].kind, watching);
}

TEST(ReportBuilder, aWindowWithoutATitleIsUntitledUnderAnEmptyKey) {
    ReportBench bench;
    bench.add(at9, 60).add(at9 + 60, 30, {.title = "Letter"}).add(at9 + 90, 10);
    const auto report = bench.report();
    const auto& items = report.apps[0].items;
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0],
              (UsageItem{"", "Untitled window", {}, {}, Seconds(70), 2, bench.day.start + Seconds(at9 + 100)}));
    EXPECT_EQ(items[1].title, "Letter");
}

TEST(ReportBuilder, anItemKeepsTheLatestTextsThatThereWere) {
    ReportBench bench;
    bench.add(at9, 60, {.title = "Page", .url = "https://example.org/a"})
        .add(at9 + 60, 30, {.title = "Page", .url = "https://example.com/b"})
        .add(at9 + 90, 10, {.title = "Page"});
    const auto item = bench.report().apps[0].items.at(0);
    EXPECT_EQ(item.subtitle, "example.com");
    EXPECT_EQ(item.url, "https://example.com/b");
    EXPECT_EQ(item.count, 3);
    EXPECT_EQ(item.duration, Seconds(100));
}

TEST(ReportBuilder, theLatestEndDecidesWhoseTextsAnItemHas) {
    ReportBench bench;
    bench.add(at9, 600, {.title = "Page", .url = "https://example.org/long"})
        .add(at9 + 60, 30, {.title = "Page", .url = "https://example.com/inside"});
    const auto item = bench.report().apps[0].items.at(0);
    EXPECT_EQ(item.url, "https://example.org/long");
    EXPECT_EQ(item.lastSeen, bench.day.start + Seconds(at9 + 600));
    EXPECT_EQ(item.count, 2);
    // At the same end the later one counts.
    bench.add(at9 + 500, 100, {.title = "Page", .url = "https://example.net/last"});
    EXPECT_EQ(bench.report().apps[0].items.at(0).url, "https://example.net/last");
}

TEST(ReportBuilder, anAppHasTheNameOfItsLatestSessionInFront) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Old", .bundleID = "org.example.app"})
        .add(at9 + 60, 60, {.app = "New", .bundleID = "org.example.app"})
        .add(at9 + 120, 60, {.app = "Beside", .kind = listening, .bundleID = "org.example.app"});
    EXPECT_EQ(bench.report().apps.at(0).name, "New");
}

TEST(ReportBuilder, anAppThatOnlyRanAlongsideHasARowWithoutVisits) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Player", .title = "Song", .kind = listening})
        .add(at9 + 60, 60, {.app = "Gramophone", .title = "Song", .kind = listening, .bundleID = "org.example.Player"});
    const auto report = bench.report();
    ASSERT_EQ(report.apps.size(), 1u);
    const auto& player = report.apps[0];
    EXPECT_EQ(player.name, "Player"); // at first sight
    EXPECT_EQ(player.duration, Seconds(0));
    EXPECT_EQ(player.alongside, Seconds(120));
    EXPECT_EQ(player.visits, 0);
    EXPECT_TRUE(player.items.empty());
    ASSERT_EQ(player.alongsideItems.size(), 1u);
    EXPECT_EQ(player.alongsideItems[0].id, "2|Song");
    EXPECT_EQ(player.alongsideItems[0].subtitle, "Listening");
}

TEST(ReportBuilder, alongsideTimeIsNoActiveTime) {
    ReportBench bench;
    bench.add(at9, 600, {.app = "Player", .title = "Song", .project = "Tune", .kind = listening})
        .add(at9, 300, {.app = "Browser", .title = "Talk", .url = watch("t"), .kind = watching});
    const auto report = bench.report();
    EXPECT_EQ(report.total, Seconds(0));
    EXPECT_EQ(report.listeningTime, Seconds(600));
    EXPECT_EQ(report.watchingTime, Seconds(300));
    EXPECT_TRUE(report.categories.empty());
    EXPECT_EQ(report.productivity, ProductivityTimes());
    EXPECT_TRUE(report.buckets.empty());
    EXPECT_TRUE(report.projects.empty());
    EXPECT_EQ(report.activeDays, 0);
    EXPECT_EQ(report.switches, 0);
    EXPECT_FALSE(report.firstActivity || report.lastActivity);
    for (const auto& session : report.alongsideSessions)
        EXPECT_FALSE(session.project);
    EXPECT_EQ(report.domains.at(0).alongside, Seconds(300));
    EXPECT_EQ(report.domains.at(0).visits, 0);
    EXPECT_TRUE(report.domains.at(0).pages.empty());
}

TEST(ReportBuilder, twoTitlesOfOneAddressAreOneThingAlongside) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Browser", .title = "First", .url = watch("a"), .kind = watching})
        .add(at9 + 60, 30,
             {.app = "Renamed",
              .title = "Second",
              .url = watch("a"),
              .kind = watching,
              .bundleID = "org.example.Browser"})
        .add(at9 + 90, 30, {.app = "Browser", .title = "", .url = watch("a"), .kind = watching})
        .add(at9 + 90, 10, {.app = "Browser", .title = "Too early", .url = watch("a"), .kind = watching})
        .add(at9, 10, {.app = "Browser", .title = "Second", .kind = listening});
    const auto report = bench.report();
    ASSERT_EQ(report.alongsideItems.size(), 2u);
    EXPECT_EQ(report.alongsideItems[0],
              (AlongsideItem{"1|org.example.Browser|" + watch("a"), watching, "org.example.Browser", "Browser",
                             "Second", watch("a"), "youtube.com", Seconds(130), bench.day.start + Seconds(at9 + 120)}));
    EXPECT_EQ(report.alongsideItems[1].id, "2|org.example.Browser|Second");
}

TEST(ReportBuilder, somethingAlongsideWithoutATitleShowsAsItsApp) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Player", .kind = listening});
    const auto item = bench.report().apps.at(0).alongsideItems.at(0);
    EXPECT_EQ(item.id, "2|");
    EXPECT_EQ(item.title, "Player");
}

TEST(ReportBuilder, aSiteVisitEndsWhenThePersonLeavesTheSite) {
    const Doing a{.app = "Browser", .title = "a", .url = "https://a.example/"};
    const Doing a2{.app = "Browser", .title = "a2", .url = "https://a.example/2"};
    const Doing b{.app = "Browser", .title = "b", .url = "https://b.example/"};
    const Doing other{.app = "Editor"};
    ReportBench bench;
    double start = at9;
    for (const auto& doing : {a, a2, b, a, other, a, a})
        bench.add(std::exchange(start, start + 60), 60, doing);
    const auto report = bench.report();
    ASSERT_EQ(report.domains.size(), 2u);
    EXPECT_EQ(report.domains[0].domain, "a.example");
    EXPECT_EQ(report.domains[0].visits, 3);
    EXPECT_EQ(report.domains[0].duration, Seconds(300));
    EXPECT_EQ(report.domains[1].visits, 1);
}

TEST(ReportBuilder, aPageIsKeyedByTitleThenAddressThenSite) {
    ReportBench bench;
    bench.add(at9, 60, {.title = "Titled", .url = "https://a.example/1"})
        .add(at9 + 60, 30, {.title = "Titled", .url = "https://a.example/2"})
        .add(at9 + 90, 20, {.title = "", .url = "https://a.example/3"})
        .add(at9 + 110, 10, {.title = ""});
    bench.sessions.back().domain = "a.example";
    const auto report = bench.report();
    const auto& pages = report.domains.at(0).pages;
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages[0].id, "Titled");
    EXPECT_EQ(pages[0].title, "Titled");
    EXPECT_EQ(pages[0].url, "https://a.example/2");
    EXPECT_EQ(pages[0].subtitle, pages[0].url);
    EXPECT_EQ(pages[1].id, "https://a.example/3");
    EXPECT_EQ(pages[1].title, "https://a.example/3");
    EXPECT_EQ(pages[2].id, "a.example");
    EXPECT_EQ(pages[2].title, "a.example");
    EXPECT_FALSE(pages[2].subtitle);
}

TEST(ReportBuilder, aDomainHasTheCategoryOfItsFirstSessionAndAnAppItsOwn) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "Code", .url = "https://unknown.example", .bundleID = "com.microsoft.VSCode"})
        .add(at9 + 60, 60, {.app = "Browser", .url = "https://unknown.example"})
        .add(at9 + 120, 60, {.app = "Code", .url = watch("x"), .bundleID = "com.microsoft.VSCode"});
    const auto report = bench.report();
    ASSERT_EQ(report.domains.size(), 2u);
    EXPECT_EQ(report.domains[0].domain, "unknown.example");
    EXPECT_EQ(report.domains[0].category, ActivityCategory::development);
    EXPECT_EQ(report.domains[1].category, ActivityCategory::entertainment);
    EXPECT_EQ(report.apps[0].category, ActivityCategory::development);
    EXPECT_EQ(report.apps[1].category, ActivityCategory::other);
    EXPECT_EQ(report.sessions[1].category, ActivityCategory::other);
    EXPECT_EQ(report.productivity[Productivity::productive], Seconds(60));
    EXPECT_EQ(report.productivity[Productivity::neutral], Seconds(60));
    EXPECT_EQ(report.productivity[Productivity::distracting], Seconds(60));
}

TEST(ReportBuilder, overridesHoldForTheWholePast) {
    ReportBench bench;
    bench.add(at9, 60);
    bench.classification.categories.appOverrides["org.example.Editor"] = ActivityCategory::work;
    const auto report = bench.report();
    EXPECT_EQ(report.sessions[0].category, ActivityCategory::work);
    EXPECT_EQ(report.apps[0].category, ActivityCategory::work);
    EXPECT_EQ(report.categories, (std::vector<CategoryUsage>{{ActivityCategory::work, Seconds(60)}}));
}

TEST(ReportBuilder, aPageOfTheVideoSiteThatIsNoVideoIsTimeOnTheSiteAlone) {
    ReportBench bench;
    bench.add(at9, 60, {.title = "YouTube", .url = "https://www.youtube.com/"}).add(at9 + 60, 30, {.title = "x"});
    bench.sessions.back().domain = "youtube.com"; // without an address
    const auto report = bench.report();
    EXPECT_EQ(report.youtubeTime, Seconds(90));
    EXPECT_TRUE(report.videos.empty());
}

TEST(ReportBuilder, eachReturnToAVideoIsAView) {
    const Doing video{.title = "V", .url = watch("v")};
    const Doing renamed{.title = "V (paused)", .url = watch("v")};
    const Doing other{.title = "W", .url = watch("w")};
    const Doing home{.title = "YouTube", .url = "https://www.youtube.com/"};
    const Doing music{.title = "V", .url = "https://music.youtube.com/watch?v=v"}; // another site, the same video
    const Doing editor{.title = "notes"};
    struct Row {
        const char* what;
        std::vector<Doing> sessions;
        std::int64_t views;
    };
    const Row rows[] = {
        {"once", {video}, 1},
        {"a change of title", {video, renamed, video}, 1},
        {"an editor between", {video, editor, video}, 2},
        {"the home page between", {video, home, video}, 2},
        {"another video between", {video, other, video, other}, 2},
        {"the same on another site before", {music, video}, 1},
        {"the same on another site between", {video, music, video}, 1},
    };
    for (const auto kind : {focus, watching})
        for (const auto& row : rows) {
            ReportBench bench;
            double start = at9;
            for (auto doing : row.sessions) {
                doing.kind = kind;
                bench.add(std::exchange(start, start + 60), 60, doing);
            }
            const auto report = bench.report();
            ASSERT_FALSE(report.videos.empty()) << row.what;
            EXPECT_EQ(report.videos[0].videoID, "v") << row.what;
            EXPECT_EQ(report.videos[0].views, row.views) << row.what << " " << rawValue(kind);
        }
}

TEST(ReportBuilder, aVideoInFrontAndAlongsideHasAllItsSecondsInOneRow) {
    ReportBench bench;
    bench.add(at9 + 100, 60, {.title = "Talk - YouTube", .url = watch("v")})
        .add(at9, 40, {.title = "Talk", .url = watch("v"), .kind = watching})
        .add(at9 + 500, 30, {.title = "", .url = watch("v"), .kind = listening});
    const auto report = bench.report();
    ASSERT_EQ(report.videos.size(), 1u);
    EXPECT_EQ(report.videos[0], (VideoUsage{"v", "Talk", watch("v"), Seconds(130), Seconds(70), 2, false,
                                            bench.day.start + Seconds(at9), bench.day.start + Seconds(at9 + 530)}));
    EXPECT_EQ(report.youtubeTime, Seconds(60));
    EXPECT_EQ(report.youtubeAlongsideTime, Seconds(70));
}

TEST(ReportBuilder, aVideosTitleIsTheLatestThatSaysAnything) {
    const std::string shorts = "https://www.youtube.com/shorts/v";
    struct Row {
        std::string url;
        std::vector<const char*> titles;
        const char* title;
    };
    const Row rows[] = {
        {watch("v"), {"YouTube"}, "YouTube video"},          {watch("v"), {""}, "YouTube video"},
        {watch("v"), {"Shorts - YouTube"}, "YouTube video"}, {shorts, {"Shorts"}, "YouTube Short"},
        {watch("v"), {"YouTube", "Real - YouTube"}, "Real"}, {watch("v"), {"Real", "YouTube"}, "Real"},
        {watch("v"), {"Real", " - YouTube"}, "Real"},        {watch("v"), {"Real", "Newer — YouTube"}, "Newer"},
        {watch("v"), {"YouTube Music"}, "YouTube Music"},
    };
    for (const auto& row : rows) {
        ReportBench bench;
        double start = at9;
        for (const auto* title : row.titles)
            bench.add(std::exchange(start, start + 60), 60, {.title = title, .url = row.url});
        const auto video = bench.report().videos.at(0);
        EXPECT_EQ(video.title, row.title) << row.url << " " << row.titles.back();
        EXPECT_EQ(video.isShort, row.url == shorts);
        EXPECT_EQ(video.url, row.url);
    }
}

TEST(ReportBuilder, searchesThatDifferInCaseAreOneRowInTheFormTypedLast) {
    const std::string results = "https://www.youtube.com/results?search_query=";
    ReportBench bench;
    bench.add(at9, 10, {.url = results + "night+train"})
        .add(at9 + 10, 10, {.url = results + "Night+Train"})
        .add(at9 + 20, 10, {.title = "(2)", .url = results + "Night+Train"}) // paging: the same address as before
        .add(at9 + 30, 10, {.title = "notes"})
        .add(at9 + 40, 10, {.url = results + "Night+Train"});
    const auto report = bench.report();
    ASSERT_EQ(report.youtubeSearches.size(), 1u);
    EXPECT_EQ(report.youtubeSearches[0], (UsageItem{"night train",
                                                    "Night Train",
                                                    {},
                                                    results + "Night+Train",
                                                    Seconds(40),
                                                    3,
                                                    bench.day.start + Seconds(at9 + 50)}));
    EXPECT_EQ(report.youtubeTime, Seconds(40));
}

TEST(ReportBuilder, aSearchIsOfTheSiteAlone) {
    ReportBench bench;
    bench.add(at9, 10, {.url = "https://example.org/results?search_query=x"})
        .add(at9 + 10, 10, {.url = "https://www.youtube.com/results?search_query=x", .kind = watching});
    EXPECT_TRUE(bench.report().youtubeSearches.empty());
}

TEST(ReportBuilder, rulesDecideTheProject) {
    ReportBench bench;
    bench.add(at9, 10, {.title = "harbour plans"})
        .add(at9 + 10, 20, {.title = "x", .project = "detected"})
        .add(at9 + 30, 40, {.title = "private diary", .project = "detected"})
        .add(at9 + 70, 80, {.title = "x", .url = "https://HARBOUR.example"})
        .add(at9 + 150, 5, {.title = "harbour", .kind = listening});
    bench.rule("HARBOUR", "Harbour").rule("diary", " ");
    const auto report = bench.report();
    ASSERT_EQ(report.projects.size(), 2u);
    EXPECT_EQ(report.projects[0].name, "Harbour");
    EXPECT_EQ(report.projects[0].duration, Seconds(90));
    EXPECT_EQ(report.projects[0].firstSeen, bench.day.start + Seconds(at9));
    EXPECT_EQ(report.projects[0].lastSeen, bench.day.start + Seconds(at9 + 150));
    EXPECT_EQ(report.projects[1].name, "detected");
    EXPECT_EQ(report.sessions[0].project, "Harbour");
    EXPECT_EQ(report.sessions[1].project, "detected");
    EXPECT_FALSE(report.sessions[2].project);
    EXPECT_EQ(report.sessions[3].project, "Harbour");
    EXPECT_EQ(bench.sessions[2].project, "detected"); // what is stored stays
    bench.classification.rules.clear();
    EXPECT_EQ(bench.report().projects.at(0).duration, Seconds(60));
}

TEST(ReportBuilder, aProjectListsItsAppsAndItsWork) {
    ReportBench bench;
    bench.add(at9, 10, {.app = "Code", .title = "a.cpp", .project = "p"})
        .add(at9 + 10, 20, {.app = "Code", .title = "", .project = "p"})
        .add(at9 + 30, 5, {.app = "Shell", .title = "a.cpp", .url = "https://x.example", .project = "p"});
    const auto report = bench.report();
    const auto& project = report.projects.at(0);
    const auto at = [&](double seconds) { return bench.day.start + Seconds(seconds); };
    EXPECT_EQ(project.apps,
              (std::vector<UsageItem>{{"org.example.Code", "Code", {}, {}, Seconds(30), 2, at(at9 + 30)},
                                      {"org.example.Shell", "Shell", {}, {}, Seconds(5), 1, at(at9 + 35)}}));
    EXPECT_EQ(project.items,
              (std::vector<UsageItem>{
                  {"org.example.Code|", "Code", "Code", {}, Seconds(20), 1, at(at9 + 30)},
                  {"org.example.Code|a.cpp", "a.cpp", "Code", {}, Seconds(10), 1, at(at9 + 10)},
                  {"org.example.Shell|a.cpp", "a.cpp", "Shell", "https://x.example", Seconds(5), 1, at(at9 + 35)}}));
}

TEST(ReportBuilder, listsOfDetailsAreLimited) {
    ReportBench bench;
    const std::string results = "https://www.youtube.com/results?search_query=";
    double start = 0;
    for (int i = 0; i < 310; ++i) {
        const auto length = 10 + i / 1000.0;
        const auto title = fmt::format("t{}", i);
        bench.add(std::exchange(start, start + 20), length,
                  {.app = "One", .title = title, .url = "https://one.example/" + title});
        bench.add(start, length, {.app = "One", .title = title, .kind = listening});
        bench.add(std::exchange(start, start + 20), length,
                  {.app = fmt::format("App {}", i), .title = title, .project = "p"});
        bench.add(std::exchange(start, start + 20), length, {.app = "One", .title = title, .url = results + title});
    }
    const auto report = bench.report();
    EXPECT_EQ(app(report, "One")->items.size(), 300u);
    EXPECT_EQ(app(report, "One")->items.front().title, "t309");
    EXPECT_EQ(app(report, "One")->alongsideItems.size(), 300u);
    EXPECT_EQ(report.domains.at(0).pages.size(), 300u);
    EXPECT_EQ(report.projects.at(0).apps.size(), 50u);
    EXPECT_EQ(report.projects.at(0).apps.back().title, "App 260");
    EXPECT_EQ(report.projects.at(0).items.size(), 300u);
    EXPECT_EQ(report.youtubeSearches.size(), 100u);
    EXPECT_EQ(report.youtubeSearches.back().title, "t210");
    EXPECT_EQ(report.apps.size(), 311u);
    EXPECT_EQ(report.alongsideItems.size(), 310u);
}

TEST(ReportBuilder, listsAreLongestFirstAndEqualOnesInTheOrderOfTheirKeys) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "B", .title = "y"})
        .add(at9 + 60, 60, {.app = "A", .title = "x"})
        .add(at9 + 120, 30, {.app = "C", .title = "z"})
        .add(at9 + 120, 61, {.app = "C", .title = "beside", .kind = listening})
        .add(at9 + 200, 60, {.app = "A", .title = "w"});
    const auto report = bench.report();
    std::vector<std::string> names;
    for (const auto& one : report.apps)
        names.push_back(one.name);
    EXPECT_EQ(names, (std::vector<std::string>{"A", "C", "B"})); // 120, 30 + 61, 60
    EXPECT_EQ(report.apps[0].items[0].title, "w");
    EXPECT_EQ(report.apps[0].items[1].title, "x");
}

TEST(ReportBuilder, theOrderOfTheInputDoesNotMatter) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "A"}).add(at9 + 60, 60, {.app = "B"}).add(at9 + 120, 60, {.app = "A"});
    const auto sorted = bench.report();
    std::reverse(bench.sessions.begin(), bench.sessions.end());
    EXPECT_EQ(bench.report(), sorted);
}

TEST(ReportBuilder, sessionsOfEqualStartKeepTheirOrder) {
    ReportBench bench;
    bench.add(at9 + 60, 60, {.app = "C"}).add(at9, 60, {.app = "B"}).add(at9, 30, {.app = "A"});
    const auto report = bench.report();
    EXPECT_EQ(report.sessions[0].appName, "B");
    EXPECT_EQ(report.sessions[1].appName, "A");
    // Clipping makes starts equal too.
    const auto later = bench.report({bench.day.start + Seconds(at9 + 10), bench.day.end}, Granularity::hour);
    EXPECT_EQ(later.sessions[0].appName, "B");
    EXPECT_EQ(later.sessions[1].appName, "A");
    EXPECT_EQ(later.sessions[1].duration(), Seconds(20));
}

TEST(ReportBuilder, aSessionAcrossMidnightIsInTwoBucketsAndOnOneDay) {
    ReportBench bench;
    bench.add(24 * hour - 600, 1500);
    const DateInterval twoDays{bench.day.start, bench.calendar.day(bench.day.end).end};
    const auto report = bench.report(twoDays, Granularity::day);
    EXPECT_EQ(report.buckets, (std::vector<TimeBucket>{{bench.day.start, ActivityCategory::other, Seconds(600)},
                                                       {bench.day.end, ActivityCategory::other, Seconds(900)}}));
    EXPECT_EQ(report.activeDays, 1);
}

TEST(ReportBuilder, bucketsStandInOrderOfStartAndThenOfTheCategorysText) {
    ReportBench bench;
    bench.add(at9, 60, {.app = "x"})
        .add(at9 + 60, 7200, {.app = "Code", .bundleID = "com.microsoft.VSCode"})
        .add(at9 + 120, 60, {.app = "x", .url = watch("v")});
    std::string shown;
    for (const auto& bucket : bench.report().buckets)
        shown += fmt::format("{} {} {}\n", bench.calendar.formatted(bucket.start, "HH"), rawValue(bucket.category),
                             bucket.duration.count());
    EXPECT_EQ(shown, "09 development 3540\n09 entertainment 60\n09 other 60\n10 development 3600\n11 development 60\n");
}

TEST(ReportBuilder, aLongSessionBeforeManyShortOnesKeepsTheBucketsInOrder) {
    ReportBench bench;
    bench.add(0, 5 * hour).add(10 * hour, hour).add(20 * minute, 60).add(2 * hour, 60);
    std::vector<double> hours;
    for (const auto& bucket : bench.report().buckets)
        hours.push_back((bucket.start - bench.day.start).count() / hour);
    EXPECT_EQ(hours, (std::vector<double>{0, 1, 2, 3, 4, 10}));
}

TEST(ReportBuilder, simpleBucketsTellNoCategories) {
    ReportBench bench;
    bench.add(at9 + 30 * minute, hour, {.app = "x"})
        .add(at9, 10 * minute, {.app = "Code", .bundleID = "com.microsoft.VSCode"})
        .add(20 * hour, 0);
    auto sessions = bench.report().sessions;
    std::reverse(sessions.begin(), sessions.end());
    ClassifiedSession none;
    none.start = none.end = bench.day.start + Seconds(20 * hour);
    sessions.push_back(none);
    const auto at = [&](double seconds) { return bench.day.start + Seconds(seconds); };
    EXPECT_EQ(ReportBuilder::buckets(sessions, Granularity::hour, bench.calendar),
              (std::vector<SimpleBucket>{{at(at9), Seconds(40 * minute)}, {at(at9 + hour), Seconds(30 * minute)}}));
    EXPECT_EQ(ReportBuilder::buckets(sessions, Granularity::day, bench.calendar),
              (std::vector<SimpleBucket>{{bench.day.start, Seconds(70 * minute)}}));
    EXPECT_TRUE(ReportBuilder::buckets({}, Granularity::day, bench.calendar).empty());
}

TEST(ReportBuilder, differentEncodingsOfOneTextAreOneThing) {
    ReportBench bench;
    bench
        .add(
            at9, 60,
            {.app = "Caf\u00e9", .title = "\u00c5ngstr\u00f6m", .url = "https://x.example/\u00e9", .project = "\u00e9"})
        .add(at9 + 60, 60,
             {.app = "Cafe\u0301",
              .title = "A\u030angstro\u0308m",
              .url = "https://x.example/e\u0301",
              .project = "e\u0301"});
    const auto report = bench.report();
    ASSERT_EQ(report.apps.size(), 1u);
    EXPECT_EQ(report.apps[0].visits, 1);
    EXPECT_EQ(report.apps[0].bundleID, "org.example.Caf\u00e9");
    ASSERT_EQ(report.apps[0].items.size(), 1u);
    EXPECT_EQ(report.apps[0].items[0].count, 2);
    EXPECT_EQ(report.projects.size(), 1u);
    ASSERT_EQ(report.blocks.size(), 1u);
    EXPECT_EQ(report.blocks[0].entries.size(), 1u);
}

TEST(ReportBuilder, firstAndLastActivityAreOfTheFocusAlone) {
    ReportBench bench;
    bench.add(at9, 600)
        .add(at9 + 60, 60)
        .add(at9 - 600, 60, {.kind = listening})
        .add(at9 + hour, 60, {.kind = listening});
    const auto report = bench.report();
    EXPECT_EQ(report.firstActivity, bench.day.start + Seconds(at9));
    EXPECT_EQ(report.lastActivity, bench.day.start + Seconds(at9 + 600));
}

TEST(ReportBuilder, thousandsOfShortSwitchesAreCountedEach) {
    ReportBench bench;
    constexpr int count = 20'000;
    for (int i = 0; i < count; ++i)
        bench.add(2.0 * i, 2, {.app = i % 2 == 0 ? "A" : "B", .title = fmt::format("{}", i % 7)});
    const auto report = bench.report();
    EXPECT_EQ(report.switches, count - 1);
    EXPECT_EQ(app(report, "A")->visits, count / 2);
    EXPECT_EQ(report.total, Seconds(2.0 * count));
    EXPECT_EQ(report.blocks.size(), std::size_t{count});
    EXPECT_EQ(report.buckets.size(), 12u);
    EXPECT_EQ(app(report, "A")->items.size(), 7u);
}

TEST(ReportBuilder, theCallersSessionsAreTheirOwn) {
    ReportBench bench;
    bench.add(at9, 60, {.title = "A title that is longer than what fits into a small text"});
    const auto before = bench.sessions;
    (void)bench.report();
    EXPECT_EQ(bench.sessions, before);
}

} // namespace
} // namespace kestrio
