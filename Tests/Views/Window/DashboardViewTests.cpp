#include "Kestrio/Pages/DashboardWords.h"
#include "Tests/Views/Window/DashboardScreen.h"

#include <QRegularExpression>

namespace kestrio {
namespace {

constexpr auto notRunning = "Kestrio is not running";

TEST(DashboardView, opensTheOverviewWhereNothingIsKnown) {
    const DashboardScreen screen;
    EXPECT_EQ(screen.model.section(), "overview");
    EXPECT_TRUE(screen.shows("Active Time"));
}

TEST(DashboardView, opensThePageThatWasOpenLastOrTheOneAskedFor) {
    struct Row {
        const char* stored;
        std::optional<std::string> asked;
        const char* opened;
    };
    const Row rows[]{
        {"timeline", std::nullopt, "timeline"},    {"timeline", "overview", "overview"},
        {"gone", std::nullopt, "overview"},        {"timeline", "gone", "timeline"},
        {"resourceLog", std::nullopt, "overview"}, // it has no page yet
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stored + std::string(" ") + row.asked.value_or("-"));
        const DashboardScreen screen({.page = row.asked, .prepare = [&](WindowStage& stage) {
                                          stage.settings.set(settingKey::dashboardSection, std::string(row.stored));
                                      }});
        EXPECT_EQ(screen.model.section(), row.opened);
    }
}

TEST(DashboardView, listsThePagesThatThereAre) {
    const DashboardScreen screen;
    EXPECT_TRUE(screen.shows("Insights"));
    for (const auto& group : listedGroups())
        for (const auto section : group.sections)
            EXPECT_NE(screen.named(QString::fromUtf8(label(section).data()), QAccessible::ListItem), nullptr)
                << label(section);
    EXPECT_FALSE(screen.shows("Resource Log"));
}

TEST(DashboardView, hasThePagesThatArePromised) {
    for (const auto section : allDashboardSections)
        EXPECT_EQ(pageEntry(section) != nullptr, hasPage(section)) << rawValue(section);
}

TEST(DashboardView, aClickOnAPageShowsItAndRemembersIt) {
    DashboardScreen screen;
    for (const auto* const name : {"timeline", "apps", "websites", "youtube", "projects", "overview"}) {
        SCOPED_TRACE(name);
        screen.click(screen.named(QString::fromUtf8(label(*dashboardSection(name)).data()), QAccessible::ListItem));
        screen.settle();
        EXPECT_EQ(screen.model.section(), name);
        EXPECT_EQ(screen.settings.get<std::string>(settingKey::dashboardSection), name);
    }
}

TEST(DashboardView, theArrowsLeadThroughThePages) {
    DashboardScreen screen;
    auto* const overview = screen.named("Overview", QAccessible::ListItem);
    ASSERT_NE(overview, nullptr);
    overview->forceActiveFocus(Qt::TabFocusReason);
    screen.press(Qt::Key_Down);
    EXPECT_EQ(screen.model.section(), "timeline");
    screen.press(Qt::Key_Down);
    EXPECT_EQ(screen.model.section(), "apps");
    screen.press(Qt::Key_Up);
    screen.press(Qt::Key_Up);
    screen.press(Qt::Key_Up);
    EXPECT_EQ(screen.model.section(), "overview");
    screen.press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(screen.model.section(), "timeline");
}

TEST(DashboardView, theRangeMovesByItsControlsAndByKeys) {
    DashboardScreen screen;
    EXPECT_TRUE(screen.shows("Friday, 20 November 2026"));
    screen.press(Qt::Key_BracketLeft, Qt::ControlModifier);
    EXPECT_TRUE(screen.shows("Yesterday"));
    EXPECT_TRUE(screen.shows("Thursday, 19 November 2026"));
    screen.press(Qt::Key_BracketRight, Qt::ControlModifier);
    EXPECT_TRUE(screen.shows("Friday, 20 November 2026"));
    screen.press(Qt::Key_BracketRight, Qt::ControlModifier);
    EXPECT_TRUE(screen.shows("Friday, 20 November 2026")) << "nothing lies after the present";
    screen.click("Week");
    EXPECT_TRUE(screen.shows("This Week"));
    screen.click(screen.named("Previous", QAccessible::PushButton));
    EXPECT_TRUE(screen.shows("Week of 9 Nov"));
    screen.click("Month");
    EXPECT_TRUE(screen.shows("This Month"));
    screen.press(Qt::Key_T, Qt::ControlModifier);
    screen.model.setMode("day");
    screen.settle();
    EXPECT_TRUE(screen.shows("Friday, 20 November 2026"));
}

TEST(DashboardView, aRefreshLoadsAnew) {
    DashboardScreen screen;
    screen.sessions = noHistory;
    screen.press(Qt::Key_R, Qt::ControlModifier);
    screen.settle();
    EXPECT_TRUE(screen.shows("No activity yet"));
}

TEST(DashboardView, seeAllLeadsToThePage) {
    DashboardScreen screen;
    const auto buttons = screen.items([](QQuickItem& item) { return item.property("text").toString() == "See all"; });
    ASSERT_FALSE(buttons.empty());
    screen.click(buttons.front());
    screen.settle();
    EXPECT_EQ(screen.model.section(), "apps");
}

TEST(DashboardView, saysWhatIsBeingRecorded) {
    struct Row {
        TrackingState state;
        const char* label;
    };
    const Row rows[]{{TrackingState::tracking, "Tracking"},
                     {TrackingState::idle, "Idle"},
                     {TrackingState::away, "Away (locked or asleep)"},
                     {TrackingState::paused, "Paused"}};
    DashboardScreen screen;
    for (const auto& row : rows) {
        screen.tell([&](AgentStatus& status) { status.state = row.state; });
        EXPECT_TRUE(screen.shows(row.label)) << row.label;
    }
}

TEST(DashboardView, pausesByTheEntriesOfItsMenu) {
    DashboardScreen screen;
    EXPECT_TRUE(screen.shows("Pause Tracking"));
    for (const int entry : {0, 1, 2, 3, 4, -1})
        screen.model.pause(entry);
    screen.settle();
    // Until tomorrow is half past six hours away.
    EXPECT_EQ(screen.script.done,
              (std::vector<std::string>{"pause for 1800", "pause for 3600", "pause for 23400", "pause"}));
}

TEST(DashboardView, itsMenuStandsStillWhileTimePasses) {
    DashboardScreen screen;
    int changes = 0;
    QObject::connect(&screen.model, &DashboardModel::pauseControlChanged, [&] { ++changes; });
    screen.time.advance(Seconds(120));
    screen.tell([](AgentStatus& status) { status.state = TrackingState::idle; });
    EXPECT_EQ(changes, 0) << "until tomorrow is closer now, and the state another";
    EXPECT_TRUE(screen.shows("Idle"));
    screen.tell([](AgentStatus& status) { status.state = TrackingState::paused; });
    EXPECT_EQ(changes, 1);
}

TEST(DashboardView, resumesWhileItIsPaused) {
    DashboardScreen screen;
    screen.tell([&](AgentStatus& status) {
        status.state = TrackingState::paused;
        status.pausedUntil = screen.calendar.date(2026, 11, 20, 18);
    });
    screen.click("Resume (paused until 18:00)");
    screen.settle();
    EXPECT_EQ(screen.script.done, std::vector<std::string>{"resume"});
    screen.tell([](AgentStatus& status) { status.pausedUntil = distantFuture; });
    EXPECT_TRUE(screen.shows("Resume Tracking"));
}

TEST(DashboardView, withoutAnAgentItShowsWhatIsStoredAndOffersToStartOne) {
    int starts = 0;
    DashboardScreen screen({.prepare = [&](WindowStage& stage) {
        stage.isAgentThere = false;
        stage.parts.host.startAgent = [&] { return ++starts > 0; };
    }});
    EXPECT_TRUE(screen.shows(notRunning));
    EXPECT_TRUE(screen.shows("Not running"));
    EXPECT_TRUE(screen.shows("Active Time"));
    EXPECT_FALSE(screen.shows("Pause Tracking"));
    screen.click("Start Kestrio");
    EXPECT_EQ(starts, 1);
    screen.isAgentThere = true;
    screen.time.advance(AgentLink::retryInterval);
    screen.settle();
    EXPECT_FALSE(screen.shows(notRunning));
    EXPECT_TRUE(screen.shows("Tracking"));
}

TEST(DashboardView, theAgentsDeathAndReturnLeavePageSelectionAndFilter) {
    DashboardScreen screen({.page = "apps"});
    screen.click("Editor");
    screen.enter("Filter");
    screen.type("notes");
    const auto before = screen.words();
    EXPECT_TRUE(screen.shows("notes.md"));
    EXPECT_FALSE(screen.shows("main.cpp"));
    screen.agentDies();
    screen.settle();
    EXPECT_TRUE(screen.shows(notRunning));
    EXPECT_TRUE(screen.shows("notes.md"));
    EXPECT_FALSE(screen.shows("main.cpp"));
    screen.agentReturns();
    screen.settle();
    EXPECT_EQ(screen.words(), before);
}

TEST(DashboardView, saysThatTitlesCannotBeReadEvenToWhoDismissedTheBandAboutBrowsers) {
    DashboardScreen screen(
        {.prepare = [](WindowStage& stage) { stage.settings.set(settingKey::dismissedBrowserBanner, true); }});
    constexpr auto title = "Allow Accessibility access to see window titles";
    EXPECT_FALSE(screen.shows(title));
    screen.tell([](AgentStatus& status) { status.isAccessibilityGranted = false; });
    EXPECT_TRUE(screen.shows(title));
    screen.parts.host.privacyAdvice = [](std::string_view place) {
        return std::optional("Do this about " + std::string(place) + ".");
    };
    screen.click("Grant Access");
    EXPECT_TRUE(screen.shows("Do this about Privacy_Accessibility."));
    EXPECT_FALSE(screen.shows("Grant Access")) << "nothing more comes of it";
}

/// Browsers as a test wants them, behind the access that the band is about.
struct ScriptedBrowsers {
    explicit ScriptedBrowsers(WindowStage& stage)
        : permissions({"org.chromium.Chromium"}, "en_GB", host()), access(stage.main, stage.agentQueue, permissions) {
        stage.parts.browserAccess = &access;
    }

    Permissions::Host host() {
        Permissions::Host host;
        host.applicationName = [](const auto&) { return std::optional<std::string>("Chromium"); };
        host.readiness = [this](const auto&) { return std::optional(readiness); };
        host.askForConsent = [this](const auto&) { asked.emplace_back("consent"); };
        host.openPrivacyPane = [this](const auto& anchor) { asked.push_back(anchor); };
        host.stepLeft = [this](const auto&) { return step; };
        host.openStep = [this](const auto&) { asked.emplace_back("step"); };
        return host;
    }

    BrowserReadiness readiness{.isRunning = true};
    std::optional<BrowserStep> step = BrowserStep{"Do this in Chromium.", "Show Folder"};
    std::vector<std::string> asked;
    Permissions permissions;
    BrowserAccess access;
};

struct BrowserBand : testing::Test {
    std::unique_ptr<ScriptedBrowsers> browsers;
    DashboardScreen screen{
        {.prepare = [this](WindowStage& stage) { browsers = std::make_unique<ScriptedBrowsers>(stage); }}};

    void press(const char* button) {
        screen.click(button);
        screen.settle();
    }

    /// The browser is otherwise, as the agent tells.
    void become(BrowserReadiness readiness) {
        browsers->readiness = readiness;
        browsers->access.refresh();
        screen.settle();
    }
};

constexpr auto bandTitle = "Track Chromium tabs";
constexpr auto bandText =
    "Allow Kestrio to read the active tab's title and address, so websites and YouTube videos are recorded.";

TEST_F(BrowserBand, offersToAllowAndThenSaysWhatIsLeft) {
    EXPECT_TRUE(screen.shows(bandTitle));
    EXPECT_TRUE(screen.shows(bandText));
    press("Allow");
    EXPECT_EQ(browsers->asked, std::vector<std::string>{"consent"});
    EXPECT_TRUE(screen.shows(bandTitle));
    EXPECT_TRUE(screen.shows("Do this in Chromium."));
    EXPECT_FALSE(screen.shows(bandText));
    EXPECT_FALSE(screen.shows("Allow"));
    press("Show Folder");
    EXPECT_EQ(browsers->asked, (std::vector<std::string>{"consent", "step"}));
    become({.isRunning = true, .isBridgeConnected = true});
    EXPECT_FALSE(screen.shows(bandTitle));
}

TEST_F(BrowserBand, isThereWhileTheBrowserCannotBeRead) {
    become({.isRunning = true, .isAccessibilityReadable = true});
    EXPECT_FALSE(screen.shows(bandTitle));
    become({.isRunning = true});
    EXPECT_TRUE(screen.shows(bandTitle));
}

TEST_F(BrowserBand, takesItsPlaceBelowTheRangeWheneverItComes) {
    const auto place = [this] {
        auto* const band = screen.named(bandTitle, QAccessible::AlertMessage);
        return band ? band->mapRectToScene(QRectF(0, 0, band->width(), band->height())) : QRectF();
    };
    const auto first = place();
    auto* const range = screen.withText("Week");
    ASSERT_NE(range, nullptr);
    EXPECT_GT(first.top(), range->mapToScene(QPointF(0, range->height())).y());
    become({.isRunning = true, .isBridgeConnected = true});
    EXPECT_EQ(place(), QRectF());
    become({.isRunning = true});
    EXPECT_EQ(place(), first);
}

TEST_F(BrowserBand, leadsToTheSettingsWhereTheAnswerWasNo) {
    browsers->step.reset();
    become({.isRunning = true, .isRefused = true});
    EXPECT_FALSE(screen.shows("Allow"));
    press("Open Settings");
    EXPECT_EQ(browsers->asked, std::vector<std::string>{"Privacy_Automation"});
    EXPECT_TRUE(screen.shows(bandText));
}

TEST_F(BrowserBand, staysAwayOnceItWasDismissed) {
    screen.click(screen.named("Dismiss", QAccessible::PushButton));
    EXPECT_FALSE(screen.shows(bandTitle));
    EXPECT_TRUE(screen.settings.boolean(settingKey::dismissedBrowserBanner));
    become({.isRunning = true, .isRefused = true});
    EXPECT_FALSE(screen.shows(bandTitle));
    screen.tell([](AgentStatus& status) { status.isAccessibilityGranted = false; });
    EXPECT_TRUE(screen.shows("Allow Accessibility access to see window titles"));
    screen.settings.set(settingKey::dismissedBrowserBanner, false);
    screen.tell([](AgentStatus& status) { status.isAccessibilityGranted = true; });
    EXPECT_TRUE(screen.shows(bandTitle)) << "as it was changed elsewhere";
}

TEST_F(BrowserBand, isLookedAtAnewWhenTheWindowComesBackOnScreen) {
    screen.model.setOnScreen(false);
    browsers->readiness.isBridgeConnected = true;
    screen.settle();
    EXPECT_TRUE(screen.shows(bandTitle));
    screen.model.setOnScreen(true);
    screen.settle();
    EXPECT_FALSE(screen.shows(bandTitle));
}

TEST_F(BrowserBand, saysNothingWhileNoAgentRuns) {
    EXPECT_TRUE(screen.shows(bandTitle));
    const DashboardScreen other({.prepare = [&](WindowStage& stage) {
        stage.isAgentThere = false;
        stage.parts.browserAccess = &browsers->access;
    }});
    EXPECT_FALSE(other.shows(bandTitle));
}

TEST(DashboardView, aChangeOfStoredSessionsElsewhereLoadsAnew) {
    DashboardScreen screen;
    screen.sessions = noHistory;
    screen.classification.categorizer().setAppCategory(ActivityCategory::social, "org.example.Editor");
    screen.settle();
    EXPECT_TRUE(screen.shows("No activity yet"));
}

TEST(DashboardView, doesNothingWhileNobodySeesIt) {
    DashboardScreen screen({.page = "overview"});
    screen.model.setOnScreen(false);
    screen.sessions = noHistory;
    screen.load();
    EXPECT_FALSE(screen.shows("No activity yet"));
    screen.model.setOnScreen(true);
    screen.settle();
    EXPECT_TRUE(screen.shows("No activity yet"));
}

TEST(DashboardView, remembersItsSize) {
    std::optional<WindowSize> stored = WindowSize{900, 700};
    {
        DashboardScreen screen({.prepare = [&](WindowStage& stage) {
            stage.parts.host.storedSize = [&] { return stored; };
            stage.parts.host.storeSize = [&](WindowSize size) { stored = size; };
        }});
        EXPECT_EQ(screen.window().size(), QSize(900, 700));
        screen.window().resize(1000, 750);
        screen.window().close();
    }
    EXPECT_EQ(stored, (WindowSize{1000, 750}));
}

TEST(DashboardView, noWordOfAnotherHostReachesTheScreen) {
    const QRegularExpression foreign("\\b(Mac|macOS|Finder|Dock|menu bar|Trash)\\b");
    for (const bool isEmpty : {true, false})
        for (const bool isAgentThere : {true, false})
            for (const auto& entry : pageTable()) {
                SCOPED_TRACE(entry.file);
                const DashboardScreen screen({.history = isEmpty ? noHistory : exampleMonth(40),
                                              .page = std::string(rawValue(entry.section)),
                                              .mode = RangeMode::month,
                                              .prepare = [&](WindowStage& stage) {
                                                  stage.isAgentThere = isAgentThere;
                                                  stage.script.status.state = TrackingState::away;
                                                  stage.script.status.isAccessibilityGranted = false;
                                              }});
                for (const auto& text : screen.words())
                    EXPECT_FALSE(foreign.match(text).hasMatch()) << text.toStdString();
            }
}

TEST(DashboardView, everyPageStandsFromRightToLeftAndWithTextTwiceAsLarge) {
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    for (const auto& entry : pageTable()) {
        SCOPED_TRACE(entry.file);
        DashboardScreen screen({.history = exampleMonth(40), .page = std::string(rawValue(entry.section))});
        appearance(screen.engine()).setDesktop({.textScale = 2});
        screen.settle();
        EXPECT_FALSE(screen.window().grabWindow().isNull());
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST(DashboardView, everyPageShowsAMonthOfSixtyThousandSessions) {
    DashboardScreen screen({.history = exampleMonth(2'700), .mode = RangeMode::month});
    EXPECT_GT(screen.sessions.size(), 55'000U);
    for (const auto& entry : pageTable()) {
        SCOPED_TRACE(entry.file);
        screen.model.select(QString::fromUtf8(rawValue(entry.section).data()));
        screen.settle();
        EXPECT_FALSE(screen.window().grabWindow().isNull());
    }
}

} // namespace
} // namespace kestrio
