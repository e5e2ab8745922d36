// A report is made anew every few seconds: what somebody typed, opened, selected or scrolled to stays as it was.
#include "Kestrio/Views/Window/AppsModel.h"
#include "Kestrio/Views/Window/OverviewModel.h"
#include "Kestrio/Views/Window/TimelineModel.h"
#include "Kestrio/Views/Window/WebsitesModel.h"
#include "Kestrio/Views/Window/YouTubeModel.h"
#include "Tests/Views/Window/DashboardScreen.h"
#include "Tests/Views/Window/PageScreen.h"

namespace kestrio {
namespace {

template <class Model>
struct ScrolledScreen : PageScreen<Model> {
    using PageScreen<Model>::PageScreen;

    /// What is scrolled: the list, or the pane beside it.
    QQuickItem* scrolled(bool isList) {
        const auto found = this->items([&](QQuickItem& item) {
            return item.inherits("QQuickFlickable") && item.inherits("QQuickListView") == isList;
        });
        return found.empty() ? nullptr : found.front();
    }
    double scrollTo(QQuickItem* flickable, double y) {
        flickable->setProperty("contentY", y);
        this->settle();
        return flickable->property("contentY").toDouble();
    }
    /// Scrolls until what shows these words can be clicked.
    void clickBelow(QQuickItem* flickable, const QString& text) {
        auto* const item = this->withText(text);
        ASSERT_NE(item, nullptr);
        scrollTo(flickable, flickable->property("contentY").toDouble() + item->mapToScene({0, -300}).y());
        this->click(item);
    }
};

using AppsScreen = ScrolledScreen<AppsModel>;
using TimelineScreen = ScrolledScreen<TimelineModel>;

/// So many applications, each used a little less than the one before.
ReportBench manyApps(int count) {
    ReportBench bench;
    for (int i = 0; i < count; ++i)
        bench.add(9 * hour + 100 * i, 100 - i, {.app = "App " + std::to_string(i), .title = "Window"});
    return bench;
}

/// An editor with so many windows.
ReportBench manyWindows(int count) {
    ReportBench bench;
    for (int i = 0; i < count; ++i)
        bench.add(9 * hour + 60 * i, 59 - 0.1 * i, {.title = "file" + std::to_string(i) + ".cpp"});
    return bench;
}

TEST(FreshReport, leavesAListWhereItWasScrolled) {
    auto bench = manyApps(60);
    AppsScreen screen("Apps", bench.sessions);
    screen.click("App 0");
    auto* const list = screen.scrolled(true);
    const auto before = screen.scrollTo(list, 1200);
    ASSERT_EQ(before, 1200);
    bench.add(16 * hour, 500, {.app = "App 1", .title = "Window"});
    screen.relive(bench.sessions);
    EXPECT_EQ(screen.model.selectedPlace(), 1) << "another one leads";
    EXPECT_EQ(list->property("contentY").toDouble(), before);
}

TEST(FreshReport, leavesThePaneWhereItWasScrolledAndAsLongAsItWas) {
    auto bench = manyWindows(130);
    AppsScreen screen("Apps", bench.sessions);
    screen.click("Editor");
    EXPECT_TRUE(screen.shows("Show 100 more"));
    auto* const pane = screen.scrolled(false);
    screen.clickBelow(pane, "Show 100 more");
    EXPECT_TRUE(screen.shows("Show 5 more"));
    const auto before = screen.scrollTo(pane, 2000);
    ASSERT_EQ(before, 2000);
    bench.add(16 * hour, 500, {.title = "file7.cpp"});
    screen.relive(bench.sessions);
    EXPECT_EQ(screen.scrolled(false), pane) << "the same pane";
    EXPECT_EQ(pane->property("contentY").toDouble(), before);
    EXPECT_TRUE(screen.shows("Show 5 more"));
    EXPECT_TRUE(screen.shows("9m")) << "the new time of what leads now";
}

TEST(FreshReport, leavesAFilterAndTheKeyboardWhereTheyWere) {
    auto bench = manyWindows(130);
    AppsScreen screen("Apps", bench.sessions);
    screen.click("Editor");
    screen.clickBelow(screen.scrolled(false), "Show 100 more");
    screen.enter("Filter");
    screen.type("FILE12");
    EXPECT_TRUE(screen.shows("file12.cpp"));
    EXPECT_TRUE(screen.shows("file129.cpp"));
    EXPECT_FALSE(screen.shows("file13.cpp"));
    bench.add(16 * hour, 500, {.title = "file123.cpp"});
    screen.relive(bench.sessions);
    auto* const field = screen.window().activeFocusItem();
    EXPECT_EQ(field->property("text").toString(), "FILE12");
    screen.type("9");
    EXPECT_TRUE(screen.shows("file129.cpp"));
    EXPECT_FALSE(screen.shows("file12.cpp"));
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.shows("Show 5 more")) << "as many as before the filter";
}

TEST(FreshReport, aFilterGoesWithThePaneThatItWasTypedInto) {
    AppsScreen screen("Apps", exampleWorkday());
    screen.click("Editor");
    screen.enter("Filter");
    screen.type("notes");
    auto without = exampleWorkday();
    std::erase_if(without, [](const ActivitySession& session) { return session.appName == "Editor"; });
    screen.relive(without);
    EXPECT_EQ(screen.model.filter(), "");
    screen.relive(exampleWorkday());
    EXPECT_TRUE(screen.shows("main.cpp")) << "what the empty field stands for";
}

TEST(FreshReport, leavesTheFilterOfAListWhereItWas) {
    ScrolledScreen<WebsitesModel> screen("Websites", exampleWorkday());
    screen.enter("Filter");
    screen.type("alpha");
    EXPECT_EQ(screen.model.rows()->count(), 1);
    screen.relive(exampleWorkday());
    EXPECT_EQ(screen.model.rows()->count(), 1);
    EXPECT_EQ(screen.window().activeFocusItem()->property("text").toString(), "alpha");
}

TEST(FreshReport, leavesAMenuThatIsOpenAsItIs) {
    auto history = exampleWorkday();
    AppsScreen screen("Apps", history);
    screen.click("Editor");
    screen.click("Other");
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_Down);
    const auto highlighted = [&] {
        const auto found = screen.items([](QQuickItem& item) { return item.property("highlighted").toBool(); });
        return found.empty() ? nullptr : found.back();
    };
    auto* const before = highlighted();
    ASSERT_NE(before, nullptr);
    history.back().end = history.back().end + Seconds(30);
    history[1].end = history[1].end + Seconds(30);
    screen.relive(history);
    EXPECT_EQ(highlighted(), before);
    const auto chosen = before->property("text").toString();
    screen.press(Qt::Key_Return);
    screen.settle();
    EXPECT_EQ(screen.model.detail().toMap()["header"].toMap()["title"], "Editor");
    EXPECT_TRUE(screen.shows(chosen));
    EXPECT_EQ(screen.settings.get<SettingDictionary>("appCategoryOverrides").value_or(SettingDictionary()).size(), 1u);
}

TEST(FreshReport, leavesTheOverviewAndTheVideosWhereTheyWereScrolled) {
    ScrolledScreen<OverviewModel> overview("Overview", exampleWorkday());
    ASSERT_EQ(overview.scrollTo(overview.scrolled(false), 300), 300);
    auto longer = exampleWorkday();
    longer[0].end = longer[0].end + Seconds(10);
    overview.relive(longer);
    EXPECT_EQ(overview.scrolled(false)->property("contentY").toDouble(), 300);

    ReportBench bench;
    for (int i = 0; i < 40; ++i)
        bench.add(9 * hour + 100 * i, 99 - i,
                  {.app = "Browser",
                   .title = "Video " + std::to_string(i),
                   .url = "https://www.youtube.com/watch?v=" + std::to_string(10'000'000'000 + i)});
    ScrolledScreen<YouTubeModel> videos("YouTube", bench.sessions);
    ASSERT_EQ(videos.scrollTo(videos.scrolled(false), 900), 900);
    bench.add(16 * hour, 100, {.app = "Browser", .title = "Video 20", .url = bench.sessions[20].url});
    videos.relive(bench.sessions);
    EXPECT_EQ(videos.scrolled(false)->property("contentY").toDouble(), 900);
}

int openBlocks(TimelineModel& model) {
    int count = 0;
    for (int row = 0; row < model.rows()->rowCount(); ++row)
        count += model.rows()->index(row).data(TimelineRows::isOpenRole).toBool() ? 1 : 0;
    return count;
}

TEST(FreshReport, whatGoesOnNowStaysOpenWhenItIsStored) {
    ReportBench bench;
    bench.add(9 * hour, 600, {.app = "Browser"}).add(10 * hour, 60, {.title = "main.cpp"});
    bench.sessions.back().id = -1; // not stored yet
    TimelineScreen screen("Timeline", bench.sessions);
    screen.model.rows()->toggle(1);
    const auto rows = screen.model.rows()->rowCount();
    bench.sessions.back().id = 77;
    bench.sessions.back().end = bench.sessions.back().end + Seconds(15);
    screen.relive(bench.sessions);
    EXPECT_EQ(screen.model.rows()->rowCount(), rows);
    EXPECT_EQ(openBlocks(screen.model), 1);
    bench.add(11 * hour, 5, {.app = "Terminal"});
    bench.sessions.back().id = -1; // the next one has the number that this one had
    screen.relive(bench.sessions);
    EXPECT_EQ(screen.model.rows()->rowCount(), rows + 1);
    EXPECT_EQ(openBlocks(screen.model), 1);
}

TEST(FreshReport, leavesTheTimelineWhereItWasScrolled) {
    auto history = exampleMonth(60);
    TimelineScreen screen("Timeline", history, RangeMode::month);
    auto* const list = screen.scrolled(true);
    list->forceActiveFocus(Qt::TabFocusReason);
    screen.press(Qt::Key_Down); // the keyboard is on a row near the top
    screen.scrollTo(list, 3000);
    // The first headline below the upper edge, and where it stands in the window.
    const auto firstBelow = [&]() -> std::pair<QString, double> {
        const auto blocks = screen.items([](QQuickItem& item) { return item.property("isOpen").isValid(); });
        std::pair<QString, double> first{"none", 1e9};
        for (auto* const block : blocks) {
            const auto y = block->mapToScene({0, 0}).y();
            if (y > 200 && y < first.second)
                first = {block->property("text").toString() + block->property("value").toMap()["times"].toString(), y};
        }
        return first;
    };
    const auto before = firstBelow();
    ASSERT_LT(before.second, 700);
    for (int i = 0; i < 3; ++i) {
        auto session = history.back();
        session.id = 1'000'000 + i;
        session.bundleID += std::to_string(i);
        session.start = history.back().end + Seconds(10);
        session.end = session.start + Seconds(10);
        history.push_back(session);
        screen.relive(history);
        EXPECT_EQ(firstBelow(), before);
    }
}

} // namespace
} // namespace kestrio
