#include "Kestrio/Pages/TodayPanel.h"
#include "Kestrio/Views/Window/Panels/Panels.h"
#include "Kestrio/Views/Window/Panels/SystemPanelModel.h"
#include "Kestrio/Views/Window/Panels/TodayPanelModel.h"
#include "Tests/Views/Window/KeyboardWalk.h"
#include "Tests/Views/Window/WindowStage.h"

namespace kestrio {
namespace {

using Done = std::vector<std::string>;

LiveActivity live(SessionKind kind, const std::string& app, const std::string& title) {
    LiveActivity open;
    open.sample = {"org.example." + app, app, title, {}, {}, {}, kind};
    return open;
}

AgentStatus recording() {
    AgentStatus status;
    status.live = live(SessionKind::focus, "Editor", "harbour.cpp");
    status.alongside = {live(SessionKind::listening, "Player", "Song of the sea")};
    status.isAccessibilityGranted = true;
    return status;
}

MonitorReading reading() {
    SystemSnapshot snapshot;
    snapshot.cpu = 0.42;
    snapshot.memoryUsed = 4'000'000'000;
    snapshot.memoryTotal = 16'000'000'000;
    snapshot.topMemory = {{.id = "org.example.Editor", .name = "Editor", .memory = 2'000'000'000, .processes = 3}};
    snapshot.topCPU = {{.id = "org.example.Player", .name = "Player", .cpu = 0.2, .processes = 1}};
    snapshot.battery = BatteryInfo{.level = 80};
    return {.state = {snapshot,
                      {0.4, 0.42},
                      {{"ok", SystemInsight::Level::good, "checkmark.circle", "Everything looks healthy."}}},
            .chipName = "Chip 9000",
            .cores = 8,
            .uptime = Seconds(7'500),
            .optimizer = OptimizerCounts{.frozen = 2, .frozenMemory = 1'000'000'000, .isManaging = true}};
}

/// A panel as its window shows it.
template <class Model>
struct PanelScreen : WindowStage, Screen {
    explicit PanelScreen(const char* file, const AgentStatus& status = recording(), Agent presence = Agent::there)
        : WindowStage(exampleWorkday(), RangeMode::day, presence) {
        host();
        script.tell(status);
        WindowStage::settle();
        model = std::make_unique<Model>(panelParts);
        QObject::connect(model.get(), &PanelModel::closeRequested, [this] { ++closings; });
        model->setShown(true);
        WindowStage::settle();
        show(QStringLiteral("Panels/%1.qml").arg(QLatin1StringView(file)),
             {{"model", QVariant::fromValue(model.get())}, {"room", QSize(1904, 1000)}});
    }
    ~PanelScreen() { close(); }
    PanelScreen(const PanelScreen&) = delete;
    PanelScreen& operator=(const PanelScreen&) = delete;

    void host() {
        parts.host.privacyAdvice = [](auto) { return "Log in elsewhere."; };
        parts.host.openActivityMonitor = [this] { opened.push_back("monitor"); };
    }
    void settle() {
        WindowStage::settle();
        Screen::settle();
    }

    std::vector<std::string> opened;
    int closings = 0;
    PanelParts panelParts{
        .window = parts,
        .openDashboard = [this](const auto& page) { opened.push_back("dashboard " + page.value_or("-")); },
        .openSettings = [this](const auto& tab) { opened.push_back("settings " + tab.value_or("-")); }};
    std::unique_ptr<Model> model;
};

struct TodayScreen : PanelScreen<TodayPanelModel> {
    explicit TodayScreen(const AgentStatus& status = recording(), Agent presence = Agent::there)
        : PanelScreen("TodayPanel", status, presence) {}
};

struct SystemScreen : PanelScreen<SystemPanelModel> {
    explicit SystemScreen(Agent presence = Agent::there) : PanelScreen("SystemPanel", recording(), presence) {}
    void read(const MonitorReading& news) {
        script.readings.emit(news);
        settle();
    }
};

TEST(TodayPanelView, tellsOfTheDayAndOfThisMoment) {
    TodayScreen screen;
    for (const auto* const text :
         {"Today", "38m", "0% productive", "Active", "Editor", "harbour.cpp", "Song of the sea", "Listening",
          "Top Apps", "Browser", "Top Websites", "a.org", "Dashboard", "Pause tracking"})
        EXPECT_TRUE(screen.shows(text)) << text;
    EXPECT_TRUE(screen.shows("Green: you're at the computer and using Editor. Your time is being recorded."));
    EXPECT_FALSE(screen.shows("Allow"));
    EXPECT_TRUE(screen.model->isReady());
}

TEST(TodayPanelView, theAgentsDeathIsSaidWhileItIsOpen) {
    TodayScreen screen;
    screen.agentDies();
    screen.settle();
    EXPECT_TRUE(screen.shows("Not running"));
    EXPECT_FALSE(screen.shows("Song of the sea"));
    EXPECT_TRUE(screen.shows("38m"));
    screen.agentReturns();
    screen.settle();
    EXPECT_TRUE(screen.shows("Song of the sea"));
    EXPECT_FALSE(screen.shows("Not running"));
}

TEST(TodayPanelView, aHistoryThatCannotBeReadIsSaid) {
    constexpr auto gone =
        "Your history cannot be read. The file /home/me/activity.sqlite is gone. Once it is back, your "
        "history shows again.";
    TodayScreen screen;
    screen.parts.host.historyFile = "/home/me/activity.sqlite";
    screen.trouble = DatabaseTrouble::missing;
    screen.today.reload();
    screen.settle();
    EXPECT_TRUE(screen.shows(QString(gone) + " What you see was read before."));
    EXPECT_TRUE(screen.shows("38m"));
    screen.time.advance(Seconds(86'400));
    screen.settle();
    EXPECT_TRUE(screen.shows(gone)) << "of this day nothing was read";
    EXPECT_TRUE(screen.shows("–"));
    EXPECT_FALSE(screen.shows("0% productive"));
    screen.trouble.reset();
    screen.time.advance(ReportStore::retryInterval);
    screen.settle();
    EXPECT_FALSE(screen.shows(gone));
    EXPECT_TRUE(screen.shows("0% productive"));
}

TEST(TodayPanelView, whatIsTooLongForItsLineIsTheHelpOfThatLine) {
    const std::string title = "A title that goes on and on about how long it is, and then some more";
    auto status = recording();
    status.live->sample.title = title + " in front";
    status.alongside.front().sample.title = title + " beside it";
    const TodayScreen screen(status);
    for (const auto* const where : {" in front", " beside it"}) {
        const auto saying = screen.items(
            [&](QQuickItem& item) { return item.property("text").toString().toStdString() == title + where; });
        ASSERT_EQ(saying.size(), 2U) << where;
        EXPECT_TRUE(saying[0]->property("truncated").toBool()) << where;
        EXPECT_EQ(saying[1]->parentItem(), saying[0]) << "its help";
    }
}

TEST(TodayPanelView, followsTheAgent) {
    TodayScreen screen;
    auto later = recording();
    later.state = TrackingState::idle;
    later.live.reset();
    later.alongside.clear();
    screen.script.tell(later);
    screen.settle();
    EXPECT_TRUE(screen.shows("Away"));
    EXPECT_TRUE(screen.shows("Idle"));
    EXPECT_FALSE(screen.shows("Song of the sea"));
    screen.settings.set("idleMinutes", std::int64_t(7));
    screen.settle();
    EXPECT_TRUE(screen.shows("Red: no keyboard or mouse for 7m, so you count as away and nothing is being recorded. "
                             "Touch the keyboard or mouse and it turns green again."));
}

TEST(TodayPanelView, theDayIsKeptUpToDateWhileItShows) {
    TodayScreen screen;
    const auto active = [&] { return screen.model->panel().value(QStringLiteral("activeTime")).toString(); };
    const auto after = [&](const auto& what) {
        what();
        screen.settle();
        return active();
    };
    const auto aMinute = [&] { screen.time.advance(TodayPanelModel::refreshInterval * 6 / 5); };
    EXPECT_EQ(active(), "38m");
    screen.sessions.erase(screen.sessions.begin());
    EXPECT_EQ(after(aMinute), "28m");
    screen.sessions.clear();
    EXPECT_EQ(after([&] { screen.script.dataChanged.emit(); }), "0s") << "deleted";
    screen.sessions = exampleWorkday();
    EXPECT_EQ(after([&] {
                  screen.classification.categorizer().setAppCategory(ActivityCategory::social, "org.example.Editor");
              }),
              "38m");
    screen.model->setShown(false);
    screen.sessions.clear();
    EXPECT_EQ(after(aMinute), "38m") << "nobody looks";
}

TEST(TodayPanelView, pausesAndResumes) {
    TodayScreen screen;
    screen.click("Pause tracking");
    screen.settle();
    auto paused = recording();
    paused.state = TrackingState::paused;
    paused.pausedUntil = distantFuture;
    screen.script.tell(paused);
    screen.settle();
    screen.click("Resume tracking");
    screen.settle();
    EXPECT_EQ(screen.script.done, (Done{"pause", "resume"}));
    EXPECT_EQ(screen.closings, 0);
}

TEST(TodayPanelView, saysWhatTheAgentWouldNotDo) {
    TodayScreen screen;
    screen.script.failure = "It is not the time for that.";
    screen.click("Pause tracking");
    screen.settle();
    EXPECT_TRUE(screen.shows("It is not the time for that."));
    screen.script.failure.reset();
    screen.click("Pause tracking");
    screen.settle();
    EXPECT_FALSE(screen.shows("It is not the time for that."));
}

TEST(TodayPanelView, leadsOnByItsButtonsAndByKeys) {
    TodayScreen screen;
    screen.click("Dashboard");
    screen.click(screen.named("Settings", QAccessible::Button));
    screen.press(Qt::Key_D, Qt::ControlModifier);
    screen.press(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_EQ(screen.opened, (Done{"dashboard -", "settings -", "dashboard -", "settings -"}));
    EXPECT_EQ(screen.closings, 4);
}

TEST(TodayPanelView, quitsTheAgentByButtonAndByKey) {
    TodayScreen screen;
    screen.click(screen.named("Quit", QAccessible::Button));
    screen.settle();
    screen.press(Qt::Key_Q, Qt::ControlModifier);
    screen.settle();
    EXPECT_EQ(screen.script.done, (Done{"quit", "quit"}));
    EXPECT_EQ(screen.closings, 2);
    screen.script.failure = "not now";
    screen.press(Qt::Key_Q, Qt::ControlModifier);
    screen.settle();
    EXPECT_EQ(screen.closings, 2) << "what failed keeps the panel, which says so";
    EXPECT_TRUE(screen.shows("not now"));
}

TEST(TodayPanelView, saysWhatThisHostCanDoAboutTitles) {
    auto status = recording();
    status.isAccessibilityGranted = false;
    TodayScreen screen(status);
    EXPECT_TRUE(screen.shows("Allow Accessibility access to record window titles."));
    EXPECT_FALSE(screen.shows("Log in elsewhere."));
    screen.click("Allow");
    EXPECT_TRUE(screen.shows("Log in elsewhere."));
    EXPECT_FALSE(screen.shows("Allow"));
}

TEST(TodayPanelView, withoutAnAgentSaysSo) {
    TodayScreen screen(recording(), WindowStage::Agent::away);
    EXPECT_TRUE(screen.model->isReady());
    EXPECT_TRUE(screen.shows("Not running"));
    EXPECT_TRUE(screen.shows("38m")) << "what was recorded before";
    EXPECT_FALSE(screen.named("Quit", QAccessible::Button)->isEnabled());
    screen.press(Qt::Key_Q, Qt::ControlModifier);
    screen.click("Dashboard");
    EXPECT_EQ(screen.opened, Done{"dashboard -"});
    EXPECT_EQ(screen.script.done, Done{});
}

TEST(TodayPanelView, isReadByAssistiveTechnology) {
    TodayScreen screen;
    auto* const light = screen.named("Active", QAccessible::StaticText);
    ASSERT_NE(light, nullptr);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(light)->text(QAccessible::Description),
              "Green: you're at the computer and using Editor. Your time is being recorded.");
    EXPECT_NE(screen.named("Browser, 33m", QAccessible::ListItem), nullptr);
    EXPECT_NE(screen.named("Top Apps", QAccessible::List), nullptr);
    auto* const quit = screen.named("Quit", QAccessible::Button);
    ASSERT_NE(quit, nullptr);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(quit)->text(QAccessible::Description),
              "Quit Kestrio (stops tracking)");
}

TEST(TodayPanelView, everythingIsReachedByTab) {
    TodayScreen screen;
    std::vector<std::string> reached;
    for (int i = 0; i < 4; ++i) {
        screen.press(Qt::Key_Tab);
        auto* const focused = screen.window().activeFocusItem();
        ASSERT_NE(focused, nullptr);
        reached.push_back(Screen::accessibleName(*focused).toStdString());
    }
    EXPECT_EQ(reached, (Done{"Dashboard", "Pause tracking", "Settings", "Quit"}));
}

TEST(TodayPanelView, fitsItsTextAtAnySize) {
    TodayScreen screen;
    const auto small = screen.window().size();
    EXPECT_LT(small.height(), 700);
    appearance(screen.engine()).setDesktop({.textScale = 2});
    screen.settle();
    EXPECT_GT(screen.window().width(), small.width() * 3 / 2);
    EXPECT_LE(screen.window().height(), 1000) << "the room of the screen";
}

TEST(SystemPanelView, waitsForTheFirstReading) {
    SystemScreen screen;
    EXPECT_FALSE(screen.model->isReady());
    EXPECT_TRUE(screen.shows("Reading this computer…"));
    screen.read(reading());
    EXPECT_TRUE(screen.model->isReady());
    EXPECT_FALSE(screen.shows("Reading this computer…"));
}

TEST(SystemPanelView, withoutAnAgentSaysSoUntilThereIsOne) {
    constexpr auto notRunning = "Kestrio is not running, so nothing is being read.";
    SystemScreen screen(WindowStage::Agent::away);
    EXPECT_TRUE(screen.model->isReady());
    EXPECT_TRUE(screen.shows(notRunning));
    screen.isAgentThere = true;
    screen.time.advance(AgentLink::retryInterval);
    screen.settle();
    EXPECT_TRUE(screen.shows("Reading this computer…"));
    screen.read(reading());
    EXPECT_FALSE(screen.shows(notRunning));
    EXPECT_TRUE(screen.shows("42%"));
}

TEST(SystemPanelView, tellsHowTheMachineIs) {
    SystemScreen screen;
    screen.read(reading());
    for (const auto* const text : {"System",
                                   "Chip 9000 · 2h 5m",
                                   "All good",
                                   "CPU",
                                   "42%",
                                   "8 cores · recent trend",
                                   "Memory",
                                   "4 GB",
                                   "of 16 GB · normal",
                                   "Heat",
                                   "Storage",
                                   "Everything looks healthy.",
                                   "80% · On battery",
                                   "Top apps",
                                   "Editor",
                                   "2 GB",
                                   "Optimization is on",
                                   "2 frozen (1 GB)",
                                   "Resume All",
                                   "System Monitor",
                                   "Performance"})
        EXPECT_TRUE(screen.shows(text)) << text;
}

TEST(SystemPanelView, nothingOfWhatTheOptimizerHoldsIsCut) {
    SystemScreen screen;
    auto busy = reading();
    busy.optimizer = OptimizerCounts{12, 11'200'000'000, 14, true};
    screen.read(busy);
    auto* const details = screen.withText("12 frozen (11.2 GB) · 14 on efficiency cores");
    ASSERT_NE(details, nullptr);
    EXPECT_FALSE(details->property("truncated").toBool());
    EXPECT_GE(details->height(), details->implicitHeight());
}

TEST(SystemPanelView, ranksAsItsPickerSays) {
    SystemScreen screen;
    screen.read(reading());
    screen.click("Power");
    EXPECT_TRUE(screen.shows("Player"));
    EXPECT_TRUE(screen.shows("20%"));
    EXPECT_FALSE(screen.shows("Editor"));
    auto idle = reading();
    idle.state.snapshot->topCPU.clear();
    screen.read(idle);
    EXPECT_TRUE(screen.shows("Nothing is using much CPU right now."));
    screen.model->rankBy("energy");
    EXPECT_TRUE(screen.shows("Nothing is using much CPU right now."));
    screen.click("Memory");
}

TEST(SystemPanelView, leadsOn) {
    SystemScreen screen;
    auto calm = reading();
    calm.optimizer.reset();
    screen.read(calm);
    EXPECT_FALSE(screen.shows("Resume All"));
    screen.click("System Monitor");
    screen.click("Performance");
    screen.click(screen.named("Settings — you can hide this tray icon there", QAccessible::Button));
    screen.click("Optimization is off");
    EXPECT_EQ(screen.opened, (Done{"monitor", "dashboard performance", "settings -", "settings optimization"}));
    EXPECT_EQ(screen.closings, 4);
}

TEST(SystemPanelView, looksOnlyWhileItShows) {
    SystemScreen screen;
    EXPECT_TRUE(screen.script.readings.hasReceivers());
    screen.model->setShown(false);
    screen.settle();
    EXPECT_FALSE(screen.script.readings.hasReceivers());
}

/// The panels as the process has them.
struct PanelsScreen : WindowStage {
    PanelsScreen() : WindowStage(exampleWorkday()) {
        script.tell(recording());
        installDesign(engine, [](const auto&, int) { return std::nullopt; });
    }
    bool ask(PanelKind kind, std::optional<ScreenPoint> at = ScreenPoint{700, 5}) {
        panels.show({kind, at});
        settle();
        return panels.window() && QTest::qWaitForWindowActive(panels.window());
    }
    QString title() const { return panels.window() ? panels.window()->title() : QString(); }

    QQmlEngine engine;
    PanelParts panelParts{.window = parts};
    Panels panels{engine, panelParts};
};

TEST(Panels, theSamePanelAskedForAgainCloses) {
    PanelsScreen screen;
    ASSERT_TRUE(screen.ask(PanelKind::today));
    EXPECT_EQ(screen.title(), "Today");
    EXPECT_FALSE(screen.ask(PanelKind::today));
    EXPECT_EQ(screen.panels.window(), nullptr);
    EXPECT_TRUE(screen.ask(PanelKind::today)) << "and opens again";
}

TEST(Panels, anotherPanelTakesThePlaceOfTheFirst) {
    PanelsScreen screen;
    ASSERT_TRUE(screen.ask(PanelKind::today));
    ASSERT_TRUE(screen.ask(PanelKind::system));
    EXPECT_EQ(screen.title(), "System");
}

TEST(Panels, escapeClosesTheOpenOne) {
    PanelsScreen screen;
    ASSERT_TRUE(screen.ask(PanelKind::today));
    QTest::keyClick(screen.panels.window(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_EQ(screen.panels.window(), nullptr);
}

TEST(Panels, aClickElsewhereClosesTheOpenOne) {
    PanelsScreen screen;
    ASSERT_TRUE(screen.ask(PanelKind::today));
    QQuickWindow other;
    other.show();
    other.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_TRUE(QTest::qWaitFor([&] { return screen.panels.window() == nullptr; }));
    EXPECT_FALSE(screen.ask(PanelKind::today)) << "that click was on the icon";
    EXPECT_TRUE(screen.ask(PanelKind::today));
}

TEST(Panels, standBesideTheClickInsideTheScreen) {
    PanelsScreen screen;
    ASSERT_TRUE(screen.ask(PanelKind::today, ScreenPoint{790, 5}));
    const auto work = screen.panels.window()->screen()->availableGeometry();
    EXPECT_TRUE(work.contains(screen.panels.window()->geometry()));
    EXPECT_EQ(screen.panels.window()->y(), 5 + panelMargin);
    ASSERT_FALSE(screen.ask(PanelKind::today));
    ASSERT_TRUE(screen.ask(PanelKind::today, std::nullopt));
    EXPECT_TRUE(work.contains(screen.panels.window()->geometry()));
}

TEST(Panels, haveSquareCornersWhereNothingIsBlended) {
    PanelsScreen screen;
    for (const bool isBlended : {true, false}) {
        screen.parts.host.blendsWindows = [isBlended] { return isBlended; };
        ASSERT_TRUE(screen.ask(PanelKind::today));
        const auto picture = screen.panels.window()->grabWindow();
        EXPECT_EQ(screen.panels.window()->color().alpha() == 255, !isBlended);
        EXPECT_EQ(picture.pixelColor(0, 0) == picture.pixelColor(20, 0), !isBlended) << "the border goes around it";
        ASSERT_FALSE(screen.ask(PanelKind::today));
    }
}

TEST(Panels, areReadyWhenTheyAppear) {
    PanelsScreen screen;
    screen.panels.show({PanelKind::system, std::nullopt});
    ASSERT_NE(screen.panels.window(), nullptr);
    EXPECT_FALSE(screen.panels.window()->isVisible()) << "nothing was read yet";
    screen.settle();
    screen.script.readings.emit(reading());
    screen.settle();
    EXPECT_TRUE(screen.panels.window()->isVisible());
}

TEST(Panels, appearAllTheSameWhenNothingComes) {
    PanelsScreen screen;
    screen.panels.show({PanelKind::system, std::nullopt});
    EXPECT_TRUE(QTest::qWaitFor([&] { return screen.panels.window()->isVisible(); }));
}

TEST(TodayPanelView, isUsedByKeyboardAlone) {
    TodayScreen screen;
    KeyboardWalk walk(screen);
    const auto stops = walk.stops(Qt::Key_Tab, [&] {
        EXPECT_TRUE(walk.isRinged()) << walk.stop();
        EXPECT_TRUE(walk.isInSight()) << walk.stop();
        EXPECT_TRUE(walk.isLargeEnough()) << walk.stop();
    });
    EXPECT_EQ(stops,
              (KeyboardWalk::Stops{"button: Dashboard", "button: Pause tracking", "button: Settings", "button: Quit"}));
    walk.go("button: Pause tracking");
    screen.press(Qt::Key_Space);
    screen.settle();
    EXPECT_EQ(screen.script.done, std::vector<std::string>{"pause"});
    screen.press(Qt::Key_Escape);
    EXPECT_FALSE(screen.window().isVisible());
}

TEST(SystemPanelView, isUsedByKeyboardAlone) {
    SystemScreen screen;
    screen.read(reading());
    KeyboardWalk walk(screen);
    const auto stops = walk.stops(Qt::Key_Tab, [&] {
        EXPECT_TRUE(walk.isRinged()) << walk.stop();
        EXPECT_TRUE(walk.isInSight()) << walk.stop();
        EXPECT_TRUE(walk.isLargeEnough()) << walk.stop();
    });
    EXPECT_EQ(stops,
              (KeyboardWalk::Stops{"choice: Memory", "button: Resume All", "button: System Monitor",
                                   "button: Performance", "button: Settings — you can hide this tray icon there"}));
    walk.go("choice: Memory");
    screen.press(Qt::Key_Right);
    EXPECT_EQ(walk.stop(), "choice: Power");
    screen.press(Qt::Key_Escape);
    EXPECT_FALSE(screen.window().isVisible());
}

} // namespace
} // namespace kestrio
