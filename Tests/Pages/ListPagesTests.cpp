#include "Kestrio/Pages/AppsPage.h"
#include "Kestrio/Pages/ProjectsPage.h"
#include "Kestrio/Pages/WebsitesPage.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum SessionKind;
constexpr double at9 = 9 * hour;

/// A browser on two sites, an editor, a player that only played.
PagesBench workday() {
    PagesBench bench;
    bench.add(at9, 600, {.app = "Browser", .title = "Alpha", .url = "https://a.org/1"})
        .add(at9 + 600, 300, {.app = "Editor", .title = "main.cpp", .project = "harbour"})
        .add(at9 + 900, 1200, {.app = "Browser", .title = "Beta", .url = "https://b.org/"})
        .add(at9 + 2100, 100, {.app = "Browser", .title = "Alpha again", .url = "https://a.org/2"})
        .add(at9 + 2200, 60, {.app = "Editor", .title = "notes.md", .project = "harbour"})
        .add(at9, 1000, {.app = "Player", .title = "Song", .kind = listening})
        .add(at9, 120, {.app = "Browser", .title = "Film", .url = "https://a.org/film", .kind = watching})
        .add(at9 + 300, 120, {.app = "Browser", .title = "Talk", .url = "https://c.org/talk", .kind = watching});
    return bench;
}

AppDetail app(const PagesBench& bench, const std::string& name, const char* filter = "",
              AppSort sort = AppSort::other) {
    const AppSelection selection{.bundleID = "org.example." + name, .sort = sort, .filter = ItemFilter(filter)};
    return appDetail(bench.report(), selection, bench.viewpoint()).value();
}

DomainDetail site(const PagesBench& bench, const char* domain, const char* filter = "") {
    const DomainSelection selection{.domain = domain, .filter = ItemFilter(filter)};
    return domainDetail(bench.report(), selection, bench.viewpoint()).value();
}

TEST(AppsPage, withoutAppsIsTheEmptyPage) {
    EXPECT_EQ(std::get<EmptyActivity>(appsPage(PagesBench().report())), noActivityYet());
    EXPECT_EQ(AppsPage::placeholder(), (Placeholder{"Select an app", "macwindow"}));
}

TEST(AppsPage, listsAllInTheReportsOrder) {
    const auto page = std::get<AppsPage>(appsPage(workday().report()));
    EXPECT_EQ(titles(page.rows), (Texts{"Browser", "Player", "Editor"}));
    EXPECT_EQ(page.rows[0].subtitle, "31m focused · 4m alongside");
    EXPECT_EQ(page.rows[1].subtitle, "16m alongside");
    EXPECT_EQ(page.rows[2].subtitle, std::nullopt);
    EXPECT_DOUBLE_EQ(page.rows[0].fraction, 1);
}

TEST(AppDetail, tellsSessionsAndIdentity) {
    const auto detail = app(workday(), "Browser");
    EXPECT_EQ(detail.header.title, "Browser");
    EXPECT_EQ(detail.header.duration, "31m");
    EXPECT_EQ(detail.header.share, "84% of active time");
    EXPECT_EQ(detail.header.stats, (Texts{"3 sessions", "org.example.Browser"}));
    EXPECT_EQ(detail.header.note, "31m focused · 4m alongside");
    EXPECT_EQ(app(workday(), "Player").header.stats[0], "0 sessions");
    EXPECT_EQ(app(workday(), "Editor").header.note, std::nullopt);
    PagesBench once;
    once.add(at9, 60);
    EXPECT_EQ(app(once, "Editor").header.stats[0], "1 sessions");
}

TEST(AppDetail, aBrowserListsItsSitesLongestFirst) {
    const auto detail = app(workday(), "Browser", "", AppSort::browser);
    ASSERT_TRUE(detail.websites);
    EXPECT_EQ(detail.websites->head.title, "Websites in Browser");
    EXPECT_EQ(titles(detail.websites->rows), (Texts{"b.org", "a.org"}));
    EXPECT_EQ(detail.websites->rows[1].duration, "11m");
    EXPECT_EQ(detail.websites->rows[1].tint, SystemColor::gray);
    EXPECT_EQ(detail.windows.head, (CardHead{"Pages", "list.bullet"}));
    EXPECT_FALSE(app(workday(), "Browser").websites);
    EXPECT_FALSE(app(workday(), "Editor", "", AppSort::browser).websites);
    PagesBench wide;
    for (int i = 0; i < 12; ++i)
        wide.add(at9 + 100 * i, 10 + i, {.app = "Browser", .url = "https://s" + std::to_string(i) + ".org/"});
    const auto rows = app(wide, "Browser", "", AppSort::browser).websites->rows;
    ASSERT_EQ(rows.size(), 10u);
    EXPECT_EQ(rows.front().title, "s11.org");
}

TEST(AppDetail, filtersItsWindows) {
    const auto bench = workday();
    const auto all = app(bench, "Editor");
    EXPECT_EQ(all.windows.head, (CardHead{"Windows & Activity", "list.bullet"}));
    EXPECT_TRUE(all.windows.hasFilter);
    EXPECT_EQ(titles(all.windows.rows), (Texts{"main.cpp", "notes.md"}));
    EXPECT_EQ(all.windows.rows[0].detail, "1 times · last 09:15");
    EXPECT_EQ(titles(app(bench, "Editor", " NOTES ").windows.rows), Texts{"notes.md"});
    const auto none = app(bench, "Editor", "nowhere").windows;
    EXPECT_TRUE(none.rows.empty());
    EXPECT_EQ(none.message, "No matches.");
    EXPECT_TRUE(none.hasFilter) << "so that the filter can be taken back";
}

TEST(AppDetail, saysWhyItHasNoWindows) {
    const auto played = app(workday(), "Player").windows;
    EXPECT_EQ(played.message, "Only played alongside — never the focused window.");
    EXPECT_FALSE(played.hasFilter);
    ActivityReport report;
    report.apps = {usedApp("Bare", 10)};
    const PagesBench bench;
    const auto bare = appDetail(report, {.bundleID = "org.example.Bare"}, bench.viewpoint());
    EXPECT_EQ(bare->windows.message, "No window titles recorded. Grant Accessibility access to see them.");
    EXPECT_FALSE(bare->alongside);
}

TEST(AppDetail, theSitesOfABrowserHaveTheirOwnColours) {
    PagesBench bench;
    bench.add(at9, 600, {.app = "Browser", .url = "https://github.com/a"})
        .add(at9 + 600, 300, {.app = "Browser", .url = "https://reddit.com/b"});
    const auto rows = app(bench, "Browser", "", AppSort::browser).websites->rows;
    EXPECT_EQ(rows[0].tint, color(ActivityCategory::development));
    EXPECT_EQ(rows[1].tint, color(ActivityCategory::social));
}

TEST(AppDetail, listsWhatPlayedAlongside) {
    const auto detail = app(workday(), "Browser");
    ASSERT_TRUE(detail.alongside);
    EXPECT_EQ(detail.alongside->head, (CardHead{"Played alongside", "rectangle.on.rectangle"}));
    EXPECT_EQ(detail.alongside->rows.size(), 2u);
    EXPECT_DOUBLE_EQ(detail.alongside->rows[0].fraction, 0.5);
    EXPECT_FALSE(app(workday(), "Editor").alongside);
}

TEST(AppDetail, itsTrendCountsItsOwnSessionsInFront) {
    const auto trend = app(workday(), "Editor").trend;
    ASSERT_EQ(trend.columns.size(), 1u);
    EXPECT_DOUBLE_EQ(trend.columns[0].value, 6);
    EXPECT_TRUE(app(workday(), "Player").trend.columns.empty());
}

TEST(AppDetail, aSelectionThatIsGoneShowsThePlaceholder) {
    const auto bench = workday();
    EXPECT_FALSE(appDetail(bench.report(), {.bundleID = "org.example.Gone"}, bench.viewpoint()));
    EXPECT_FALSE(domainDetail(bench.report(), {.domain = "gone.org"}, bench.viewpoint()));
    EXPECT_FALSE(projectDetail(bench.report(), "gone", {}, bench.viewpoint()));
}

TEST(WebsitesPage, withoutSitesSaysWhereTheyComeFrom) {
    EXPECT_EQ(std::get<EmptyActivity>(websitesPage(PagesBench().report(), {})),
              (EmptyActivity{"No websites yet", "globe",
                             "Websites are read from the active tab in Chrome, Safari, Brave, Edge, Arc, Vivaldi and "
                             "Opera. If you use one of these, allow access in Settings › Permissions."}));
    EXPECT_EQ(WebsitesPage::placeholder(), (Placeholder{"Select a website", "globe"}));
}

TEST(WebsitesPage, itsFilterLooksIntoPagesToo) {
    const auto report = workday().report();
    struct Row {
        const char* filter;
        Texts domains;
        std::optional<std::string> message;
    };
    const Row rows[] = {
        {"", {"b.org", "a.org", "c.org"}, std::nullopt},
        {" B.ORG ", {"b.org"}, std::nullopt},
        {"again", {"a.org"}, std::nullopt},
        {"beta", {"b.org"}, std::nullopt},
        {"nothing such", {}, "No matches."},
    };
    for (const auto& row : rows) {
        const auto page = std::get<WebsitesPage>(websitesPage(report, ItemFilter(row.filter)));
        EXPECT_EQ(titles(page.rows), row.domains) << row.filter;
        EXPECT_EQ(page.message, row.message) << row.filter;
    }
}

TEST(DomainDetail, tellsVisitsPagesAndApps) {
    const auto detail = site(workday(), "a.org");
    EXPECT_EQ(detail.header.title, "a.org");
    EXPECT_EQ(detail.header.stats, (Texts{"2 visits", "2 pages", "Browser"}));
    EXPECT_EQ(detail.header.note, "11m focused · 2m alongside");
    EXPECT_EQ(detail.pages.head, (CardHead{"Pages", "doc.richtext"}));
    EXPECT_EQ(titles(detail.pages.rows), (Texts{"Alpha", "Alpha again"}));
    EXPECT_EQ(detail.pages.rows[0].detail, "1 visits · last 09:10");
    EXPECT_EQ(detail.pages.rows[0].link, "https://a.org/1");
    EXPECT_EQ(titles(site(workday(), "a.org", "again").pages.rows), Texts{"Alpha again"});
    EXPECT_EQ(site(workday(), "a.org", "zzz").pages.message, "No matches.");
    ASSERT_TRUE(detail.alongside);
    EXPECT_EQ(titles(detail.alongside->rows), Texts{"Film"});
    EXPECT_FALSE(site(workday(), "b.org").alongside);
    ASSERT_EQ(detail.trend.columns.size(), 1u);
    EXPECT_NEAR(detail.trend.columns[0].value, 700 / 60.0, 1e-9);
}

TEST(DomainDetail, saysWhenASiteOnlyPlayed) {
    const auto detail = site(workday(), "c.org");
    EXPECT_EQ(detail.pages.message, "Only played alongside — never the focused tab.");
    EXPECT_EQ(detail.header.stats, (Texts{"0 visits", "0 pages", "Browser"}));
    EXPECT_EQ(detail.header.note, "2m alongside");
}

TEST(DomainDetail, namesAllAppsThatShowedIt) {
    PagesBench bench;
    bench.add(at9, 60, {.app = "Small", .url = "https://a.org/"})
        .add(at9 + 60, 600, {.app = "Large", .url = "https://a.org/"})
        .add(at9 + 700, 60, {.app = "Elsewhere", .url = "https://b.org/"});
    EXPECT_EQ(site(bench, "a.org").header.stats[2], "Large, Small");
}

TEST(ProjectsPage, withoutProjectsSaysWhereTheyComeFrom) {
    EXPECT_EQ(std::get<EmptyActivity>(projectsPage(PagesBench().report())),
              (EmptyActivity{"No projects detected", "folder",
                             "Projects are detected from VS Code, Cursor, Windsurf, Xcode, JetBrains IDEs, Zed, "
                             "Sublime Text and terminal folders. Add rules to put anything else — Figma files, docs, "
                             "websites — into a project."}));
    EXPECT_EQ(ProjectsPage::placeholder().title, "Select a project");
    EXPECT_STREQ(ProjectsPage::addRulesTitle, "Add Project Rules…");
    EXPECT_STREQ(ProjectsPage::rulesSymbol, "slider.horizontal.3");
    EXPECT_STREQ(ProjectsPage::rulesHelp, "Group activity into projects by keyword");
    EXPECT_STREQ(ProjectsPage::sheetTitle, "Project Rules");
    EXPECT_STREQ(ProjectsPage::sheetDone, "Done");
}

TEST(ProjectDetail, tellsAppsAndWork) {
    const auto bench = workday();
    const auto page = std::get<ProjectsPage>(projectsPage(bench.report()));
    ASSERT_EQ(page.rows.size(), 1u);
    EXPECT_EQ(page.rows[0].subtitle, "Editor");
    const auto detail = projectDetail(bench.report(), "harbour", {}, bench.viewpoint());
    ASSERT_TRUE(detail);
    EXPECT_EQ(detail->header.icon, RowIcon(SymbolIcon{"folder.fill"}));
    EXPECT_EQ(detail->header.title, "harbour");
    EXPECT_EQ(detail->header.note, "First seen 09:10 · last 09:37");
    EXPECT_EQ(detail->apps.head, (CardHead{"Apps used", "macwindow"}));
    EXPECT_EQ(titles(detail->apps.rows), Texts{"Editor"});
    EXPECT_EQ(detail->apps.rows[0].icon, RowIcon(AppIcon{"org.example.Editor"}));
    EXPECT_EQ(detail->items.head, (CardHead{"What you worked on", "doc.text"}));
    EXPECT_EQ(titles(detail->items.rows), (Texts{"main.cpp", "notes.md"}));
    EXPECT_EQ(detail->trend.columns.size(), 1u);
    const auto none = projectDetail(bench.report(), "harbour", ItemFilter("zzz"), bench.viewpoint());
    EXPECT_EQ(none->items.message, "No matches.");
}

} // namespace
} // namespace kestrio
