// Everything in the dashboard by keyboard alone: where the tabulator stops and in which order, what the keys do there,
// and where the keyboard goes when what had it goes.
#include "Kestrio/Views/Window/MasterDetailModel.h"
#include "Tests/Views/Window/DashboardScreen.h"
#include "Tests/Views/Window/KeyboardWalk.h"

namespace kestrio {
namespace {

using Stops = KeyboardWalk::Stops;

struct KeyboardScreen : DashboardScreen, KeyboardWalk {
    explicit KeyboardScreen(DashboardOptions options = {})
        : DashboardScreen(std::move(options)), KeyboardWalk(*static_cast<DashboardScreen*>(this)) {}
    explicit KeyboardScreen(const char* page) : KeyboardScreen(DashboardOptions{.page = page}) {}

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        DashboardScreen::press(key, modifiers);
        settle();
    }
    void select(const char* list) {
        go(std::string("list: ") + list);
        press(Qt::Key_Down);
    }
};

/// Each page's own stops; before them come those of the sidebar and the range, after them those of the foot.
struct PageStops {
    const char* page;
    const char* label;
    Stops own;
};
const std::vector<PageStops> pageStops{
    {"overview", "Overview", {"chart: Activity", "button: See all", "button: See all", "button: See all"}},
    {"timeline",
     "Timeline",
     {"field: Search titles, apps, URLs", "switch: Hide brief", "chart: When you were active", "row: quay, 30s"}},
    {"apps", "Apps", {"list: Apps"}},
    {"websites", "Websites", {"field: Filter", "list: Websites"}},
    {"youtube", "YouTube", {}},
    {"projects", "Projects", {"button: Group activity into projects by keyword", "list: Projects"}},
};

Stops allStops(const PageStops& page) {
    Stops all{std::string("row: ") + page.label,
              "button: Pause Tracking",
              "choice: Day",
              "button: Previous",
              "button: Today",
              "button: Date",
              "button: Refresh"};
    all.insert(all.end(), page.own.begin(), page.own.end());
    all.insert(all.end(), {"button: About Kestrio", "button: Made by Haldor Vinter"});
    return all;
}

TEST(Keyboard, theTabulatorStopsAtAllThatCanBeActedOnInTheOrderOfReading) {
    for (const auto& page : pageStops) {
        SCOPED_TRACE(page.page);
        KeyboardScreen screen(page.page);
        const auto all = allStops(page);
        EXPECT_EQ(screen.stops(), all);
    }
}

TEST(Keyboard, theTabulatorGoesBackTheSameWay) {
    for (const auto& page : pageStops) {
        SCOPED_TRACE(page.page);
        KeyboardScreen screen(page.page);
        auto all = allStops(page);
        std::ranges::reverse(all);
        EXPECT_EQ(screen.stops(Qt::Key_Backtab), all);
    }
}

void expectGoodStops(KeyboardScreen& screen) {
    screen.stops(Qt::Key_Tab, [&] {
        SCOPED_TRACE(screen.stop());
        EXPECT_TRUE(screen.isRinged());
        EXPECT_TRUE(screen.isInSight());
        EXPECT_TRUE(screen.isLargeEnough());
    });
}

TEST(Keyboard, everyStopIsSeenAndLargeEnough) {
    for (const auto& history : {noHistory, exampleWorkday(), exampleMonth(2'700)})
        for (const auto& page : pageStops) {
            SCOPED_TRACE(page.page + std::string(" over ") + std::to_string(history.size()));
            KeyboardScreen screen({.history = history, .page = page.page, .mode = RangeMode::month});
            expectGoodStops(screen);
        }
}

TEST(Keyboard, everyStopIsSeenInASmallWindow) {
    for (const auto& page : pageStops) {
        SCOPED_TRACE(page.page);
        KeyboardScreen screen({.history = exampleMonth(40), .page = page.page});
        screen.window().resize(screen.window().minimumSize());
        screen.settle();
        expectGoodStops(screen);
    }
}

TEST(Keyboard, everyStopIsSeenWithTextTwiceAsLarge) {
    for (const auto& page : pageStops) {
        SCOPED_TRACE(page.page);
        KeyboardScreen screen({.history = exampleMonth(40), .page = page.page});
        appearance(screen.engine()).setDesktop({.textScale = 2});

        screen.settle();
        expectGoodStops(screen);
    }
}

TEST(Keyboard, everyStopAboutWhatIsSelectedIsSeen) {
    struct Row {
        const char* page;
        const char* list;
    };
    for (const auto& row : {Row{"apps", "Apps"}, Row{"websites", "Websites"}, Row{"projects", "Projects"}}) {
        SCOPED_TRACE(row.page);
        KeyboardScreen screen({.history = exampleMonth(250), .page = row.page, .mode = RangeMode::month});
        screen.select(row.list);
        EXPECT_TRUE(screen.stop().starts_with("row: ")) << screen.stop();
        EXPECT_TRUE(screen.isRinged());
        const auto stops = [&] {
            Stops all;
            screen.stops(Qt::Key_Tab, [&] {
                EXPECT_TRUE(screen.isRinged()) << screen.stop();
                EXPECT_TRUE(screen.isInSight()) << screen.stop();
                all.push_back(screen.stop());
            });
            return all;
        }();
        EXPECT_NE(std::ranges::find(stops, "field: Filter"), stops.end());
    }
}

TEST(Keyboard, whoUsesThePointerSeesNoRing) {
    KeyboardScreen screen("apps");
    screen.click(screen.items([](auto& item) { return item.inherits("QQuickItemDelegate"); }).back());
    ASSERT_NE(screen.focused(), nullptr);
    EXPECT_FALSE(screen.isRinged());
    screen.press(Qt::Key_Shift);
    EXPECT_FALSE(screen.isRinged());
    screen.press(Qt::Key_Up);
    EXPECT_TRUE(screen.isRinged());
}

TEST(Keyboard, aDigitLeadsToThePageAtThatPlace) {
    KeyboardScreen screen;
    for (std::size_t place = pageStops.size(); place > 0; --place) {
        screen.press(Qt::Key(Qt::Key_0 + static_cast<int>(place)), Qt::ControlModifier);
        EXPECT_EQ(screen.model.section(), pageStops[place - 1].page);
    }
}

TEST(Keyboard, aFreshPageTakesTheKeyboardFromTheOneThatHadIt) {
    for (const auto& from : pageStops) {
        if (from.own.empty())
            continue;
        for (const auto& to : pageStops) {
            if (to.page == from.page)
                continue;
            SCOPED_TRACE(from.page + std::string(" to ") + to.page);
            KeyboardScreen screen(from.page);
            screen.go(from.own.front());
            screen.model.select(to.page);
            screen.settle();
            const auto wanted = to.own.empty() ? std::string("row: ") + to.label : to.own.front();
            EXPECT_TRUE(QTest::qWaitFor([&] { return screen.stop() == wanted; })) << screen.stop();
        }
    }
}

TEST(Keyboard, f5LoadsAnew) {
    KeyboardScreen screen;
    screen.sessions = noHistory;
    screen.press(Qt::Key_F5);
    EXPECT_TRUE(screen.shows("No activity yet"));
}

TEST(Keyboard, controlFLeadsToTheSearchOfThePage) {
    struct Row {
        const char* page;
        const char* stop;
    };
    const Row rows[]{
        {"overview", "nothing"}, {"timeline", "field: Search titles, apps, URLs"},
        {"apps", "nothing"},     {"websites", "field: Filter"},
        {"projects", "nothing"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.page);
        KeyboardScreen screen(row.page);
        screen.press(Qt::Key_F, Qt::ControlModifier);
        EXPECT_EQ(screen.stop(), row.stop);
    }
}

TEST(Keyboard, controlFLeadsFromOneSearchToTheNext) {
    KeyboardScreen screen("websites");
    screen.press(Qt::Key_F, Qt::ControlModifier);
    auto* const first = screen.focused();
    screen.select("Websites");
    screen.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(screen.focused(), first);
    screen.press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(screen.stop(), "field: Filter");
    EXPECT_NE(screen.focused(), first);
    EXPECT_TRUE(screen.isInSight());
}

TEST(Keyboard, theArrowsChooseTheUnitOfTheRange) {
    KeyboardScreen screen;
    screen.go("choice: Day");
    screen.press(Qt::Key_Left);
    EXPECT_EQ(screen.stop(), "choice: Day");
    screen.press(Qt::Key_Right);
    EXPECT_EQ(screen.stop(), "choice: Week");
    EXPECT_TRUE(screen.shows("This Week"));
    EXPECT_TRUE(screen.isRinged());
    screen.press(Qt::Key_Right);
    EXPECT_EQ(screen.stop(), "choice: Month");
    EXPECT_TRUE(screen.shows("This Month"));
}

TEST(Keyboard, theOverviewFollowsFromUnitToUnit) {
    for (const int sessions : {20, 60, 250}) {
        KeyboardScreen screen({.history = exampleMonth(sessions)});
        screen.go("choice: Day");
        for (int times = 0; times < 4; ++times)
            for (const auto key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_Left})
                screen.press(key);
        EXPECT_EQ(screen.stop(), "choice: Day");
    }
}

TEST(Keyboard, aButtonThatCannotBePressedAnyLongerHandsTheKeyboardOn) {
    KeyboardScreen screen;
    screen.press(Qt::Key_BracketLeft, Qt::ControlModifier);
    screen.go("button: Next");
    screen.press(Qt::Key_Space);
    EXPECT_TRUE(screen.shows("Friday, 20 November 2026"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return screen.stop() == "chart: Activity"; })) << screen.stop();
    EXPECT_TRUE(screen.isRinged());
}

TEST(Keyboard, thePickerOfDaysGivesTheKeyboardBack) {
    for (const auto key : {Qt::Key_Escape, Qt::Key_Return}) {
        SCOPED_TRACE(key);
        KeyboardScreen screen;
        screen.go("button: Date");
        screen.press(Qt::Key_Return);
        EXPECT_TRUE(screen.stop().starts_with("group: Friday")) << screen.stop();
        screen.press(Qt::Key_Left);
        EXPECT_TRUE(screen.stop().starts_with("group: Thursday")) << screen.stop();
        screen.press(key);
        EXPECT_TRUE(QTest::qWaitFor([&] { return screen.stop() == "button: Date"; })) << screen.stop();
        EXPECT_TRUE(screen.isRinged());
        EXPECT_EQ(screen.shows("Yesterday"), key == Qt::Key_Return);
    }
}

TEST(Keyboard, theMenuOfPausesGivesTheKeyboardBack) {
    KeyboardScreen screen;
    screen.go("button: Pause Tracking");
    screen.press(Qt::Key_Down);
    screen.press(Qt::Key_End);
    EXPECT_EQ(screen.stop(), "entry: Until I resume");
    screen.press(Qt::Key_Home);
    EXPECT_EQ(screen.stop(), "entry: 30 minutes");
    screen.press(Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return screen.stop() == "button: Pause Tracking"; })) << screen.stop();
    EXPECT_TRUE(screen.isRinged());
}

TEST(Keyboard, pauseAndResumeStandWhereTheKeyboardIs) {
    KeyboardScreen screen;
    screen.go("button: Pause Tracking");
    screen.tell([](AgentStatus& status) {
        status.state = TrackingState::paused;
        status.pausedUntil = distantFuture;
    });
    EXPECT_EQ(screen.stop(), "button: Resume Tracking");
    EXPECT_TRUE(screen.isRinged());
    screen.tell([](AgentStatus& status) { status.state = TrackingState::tracking; });
    EXPECT_EQ(screen.stop(), "button: Pause Tracking");
}

TEST(Keyboard, aBandThatGoesHandsTheKeyboardToThePage) {
    KeyboardScreen screen({.prepare = [](WindowStage& stage) { stage.script.status.isAccessibilityGranted = false; }});
    screen.go("button: Grant Access");
    screen.tell([](AgentStatus& status) { status.isAccessibilityGranted = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return screen.stop() == "chart: Activity"; })) << screen.stop();
}

TEST(Keyboard, theKeyboardStaysThroughARefresh) {
    for (const auto* const page : {"overview", "timeline", "apps", "websites", "projects"}) {
        KeyboardScreen screen({.history = exampleMonth(60), .page = page});
        for (std::size_t count = screen.stops().size(), place = 0; place < count; ++place) {
            screen.DashboardScreen::press(Qt::Key_Tab);
            const auto before = screen.stop();
            screen.sessions = exampleMonth(61);
            screen.load();
            screen.settle();
            EXPECT_EQ(screen.stop(), before) << page;
        }
    }
}

TEST(Keyboard, aListIsWalkedThroughByKeys) {
    struct Row {
        Qt::Key key;
        int place;
    };
    KeyboardScreen screen({.history = exampleMonth(250), .page = "websites", .mode = RangeMode::month});
    const auto& page = *qobject_cast<MasterDetailModel*>(screen.model.page());
    const int last = qobject_cast<MasterDetailModel*>(screen.model.page())->rows()->count() - 1;
    ASSERT_GT(last, 3);
    screen.go("list: Websites");
    EXPECT_TRUE(screen.isRinged());
    for (const auto& [key, place] :
         {Row{Qt::Key_Up, 0}, Row{Qt::Key_Down, 1}, Row{Qt::Key_Down, 2}, Row{Qt::Key_End, last},
          Row{Qt::Key_Down, last}, Row{Qt::Key_Home, 0}, Row{Qt::Key_Up, 0}}) {
        screen.press(key);
        EXPECT_EQ(page.selectedPlace(), place);
        EXPECT_TRUE(screen.stop().starts_with("row: ")) << screen.stop();
        EXPECT_TRUE(screen.isRinged());
        EXPECT_TRUE(screen.isInSight());
    }
    screen.press(Qt::Key_PageDown);
    EXPECT_GT(page.selectedPlace(), 1);
    screen.press(Qt::Key_PageUp);
    EXPECT_EQ(page.selectedPlace(), 0);
}

TEST(Keyboard, typedLettersLeadToTheRowThatBeginsWithThem) {
    KeyboardScreen screen("apps"); // Browser, Editor, Terminal, Player
    screen.go("list: Apps");
    screen.type("e");
    EXPECT_EQ(screen.stop(), "row: Editor");
    screen.type("x");
    EXPECT_EQ(screen.stop(), "row: Editor") << "nothing begins so";
    screen.press(Qt::Key_Home);
    EXPECT_EQ(screen.stop(), "row: Browser");
}

TEST(Keyboard, theTimelineIsWalkedThroughByKeys) {
    KeyboardScreen screen("timeline");
    const std::string first = "row: quay, 30s";
    screen.go(first);
    EXPECT_TRUE(screen.isRinged());
    screen.press(Qt::Key_Right);
    screen.press(Qt::Key_Down);
    EXPECT_TRUE(screen.stop().starts_with("row: ")) << screen.stop();
    EXPECT_NE(screen.stop(), first);
    EXPECT_TRUE(screen.isRinged());
    screen.press(Qt::Key_Up);
    EXPECT_EQ(screen.stop(), first);
    screen.press(Qt::Key_Up);
    EXPECT_EQ(screen.stop(), first) << "the head of a day is no stop";
    screen.press(Qt::Key_Left);
    screen.press(Qt::Key_End);
    EXPECT_NE(screen.stop(), first);
    EXPECT_TRUE(screen.isInSight());
    screen.press(Qt::Key_Home);
    EXPECT_EQ(screen.stop(), first);
}

TEST(Keyboard, theSheetOfRulesGivesTheKeyboardBack) {
    KeyboardScreen screen("projects");
    screen.go("button: Group activity into projects by keyword");
    screen.press(Qt::Key_Return);
    const auto opened = screen.stop();
    EXPECT_TRUE(opened.starts_with("field: ")) << opened;
    Stops stops;
    screen.stops(Qt::Key_Tab, [&] {
        stops.push_back(screen.stop());
        EXPECT_TRUE(screen.isRinged()) << screen.stop();
    });
    EXPECT_EQ(stops.size(), 3U) << "two fields and the way out: nothing behind the sheet";
    screen.press(Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return screen.stop() == "button: Group activity into projects by keyword"; }))
        << screen.stop();
    EXPECT_TRUE(screen.isRinged());
}

} // namespace
} // namespace kestrio
