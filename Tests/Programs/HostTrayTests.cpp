#include "Kestrio/Drawing/TrayIcons.h"
#include "Kestrio/Platform/Testing/ScriptedTray.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/HostTray.h"
#include "Programs/Agent/TodaysTime.h"
#include "Tests/Link/LinkBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

/// The model over a real monitor in virtual time, with the tray on top. It is 22:13 in UTC.
struct HostTrayTest : testing::Test {
    LinkBench bench;
    ScriptedTray bar;
    std::optional<HostTray> tray;
    Seconds today{3 * 3600 + 12 * 60};
    std::vector<DateInterval> daysAsked;
    std::vector<std::pair<WindowRequest, std::string>> opened;
    int quits = 0;

    void SetUp() override {
        AppSettings::registerDefaults(bench.settings, nullptr, "test");
        start();
    }
    void start() {
        tray.emplace(HostTray::Parts{
            .model = *bench.model,
            .settings = bench.settings,
            .tray = bar,
            .calendar = Calendar("en_GB", "UTC"),
            .timeInFront =
                [this](DateInterval day, auto receiver) {
                    daysAsked.push_back(day);
                    bench.mainQueue.async([this, receiver] { receiver(today); });
                },
            .open = [this](const auto& request, const auto& token) { opened.emplace_back(request, token); },
            .quit = [this] { ++quits; },
        });
        bench.time.runPending();
    }

    const TrayItem& status() { return bar.items.at(HostTray::statusItem); }
    const TrayItem& system() { return bar.items.at(HostTray::systemItem); }
    std::vector<std::string> menuOf(const TrayItem& item) {
        std::vector<std::string> texts;
        for (const auto& entry : item.menu)
            texts.push_back(entry.kind == TrayMenuEntry::Kind::separator ? "-" : entry.text);
        return texts;
    }
    static SystemMonitor::State state(double cpu, std::vector<SystemInsight> insights = {}) {
        SystemMonitor::State state;
        state.snapshot = SystemSnapshot{.cpu = cpu};
        state.insights = std::move(insights);
        return state;
    }
    void choose(const char* item, const std::string& entry) { bar.tell(TrayChoice{item, entry, "token"}); }
};

TEST_F(HostTrayTest, theFirstIconIsThereAtOnceWithItsWords) {
    EXPECT_EQ(status().title, "Kestrio");
    EXPECT_EQ(status().tip, (TrayItem::Tip{"Today: 3h 12m", "Active: your time is being recorded"}));
    EXPECT_EQ(status().accessibleText, "Active: your time is being recorded");
    EXPECT_EQ(status().icon, trayIcon(menuBarLabel(TrackingState::tracking, today, {})));
    EXPECT_EQ(menuOf(status()), (std::vector<std::string>{"Tracking", "-", "Show Today", "Open Dashboard",
                                                          "Pause Tracking", "-", "Settings", "-", "Quit Kestrio"}));
    EXPECT_EQ(status().menu[0].kind, TrayMenuEntry::Kind::words);
    EXPECT_EQ(status().menu[4].kind, TrayMenuEntry::Kind::submenu);
    EXPECT_EQ(status().menu[4].entries.size(), 4U);
    EXPECT_FALSE(bar.items.contains(HostTray::systemItem)) << "nothing is known of the machine yet";
}

TEST_F(HostTrayTest, theIconFollowsTheSettings) {
    for (const auto& [time, light] : {std::pair(true, false), std::pair(false, true), std::pair(false, false)}) {
        bench.settings.set(settingKey::showTimeInMenuBar, time);
        bench.settings.set(settingKey::showActivityLight, light);
        EXPECT_EQ(status().icon, trayIcon(menuBarLabel(TrackingState::tracking, today, {time, light})))
            << time << light;
    }
}

TEST_F(HostTrayTest, theIconFollowsTheState) {
    bench.model->pause(Seconds(3600));
    EXPECT_EQ(status().icon, trayIcon(menuBarLabel(TrackingState::paused, today, {})));
    EXPECT_EQ(status().accessibleText, "Away: nothing is being recorded");
    EXPECT_EQ(menuOf(status())[0], "Paused");
    EXPECT_EQ(menuOf(status())[4], "Resume (paused until 23:13)");
    bench.model->resume();
    bench.pass(3);
    EXPECT_EQ(menuOf(status())[0], "Tracking");
}

TEST_F(HostTrayTest, todaysTimeIsLookedAtOnceAMinuteWhileSomethingIsRecorded) {
    EXPECT_EQ(daysAsked.size(), 1U);
    today += Seconds(60);
    bench.pass(59);
    EXPECT_EQ(status().tip.title, "Today: 3h 12m");
    bench.pass(20);
    EXPECT_EQ(status().tip.title, "Today: 3h 13m");
    EXPECT_EQ(daysAsked.size(), 2U);
    bench.model->pause(std::nullopt);
    bench.pass(1);
    EXPECT_EQ(daysAsked.size(), 3U) << "the last session has its end now";
    bench.pass(600);
    EXPECT_EQ(daysAsked.size(), 3U) << "time stands still";
    bench.model->resume();
    bench.pass(3);
    EXPECT_EQ(daysAsked.size(), 4U);
}

TEST_F(HostTrayTest, aMinuteThatChangesNothingTellsTheBarNothing) {
    const int before = bar.changes;
    bench.pass(20 * 60);
    EXPECT_EQ(bar.changes, before);
}

TEST_F(HostTrayTest, aNewDayBeginsAtNothing) {
    bench.model->pause(std::nullopt);
    bench.pass(1);
    today = Seconds(0);
    bench.pass(2 * 3600); // past midnight
    EXPECT_EQ(status().tip.title, "Today: 0m");
    EXPECT_EQ(daysAsked.back().start - daysAsked.front().start, Seconds(86'400));
}

TEST_F(HostTrayTest, anAnswerThatComesAfterItsEndIsNobodysTrouble) {
    std::function<void(Seconds)> late;
    tray.emplace(HostTray::Parts{.model = *bench.model,
                                 .settings = bench.settings,
                                 .tray = bar,
                                 .calendar = Calendar("en_GB", "UTC"),
                                 .timeInFront = [&](DateInterval, auto receiver) { late = receiver; },
                                 .open = [](const auto&, const auto&) {},
                                 .quit = [] {}});
    tray.reset();
    late(Seconds(60));
}

TEST_F(HostTrayTest, theSecondIconFollowsTheMachine) {
    tray->showSystem(state(0.42, {{"ok", SystemInsight::Level::good, "", "Everything looks healthy on this Mac."}}));
    EXPECT_EQ(system().icon, trayIcon(SystemMenuLabel{"cpu", "42%"}));
    EXPECT_EQ(system().tip, (TrayItem::Tip{"CPU 42%", "Everything looks healthy on this computer."}));
    EXPECT_EQ(menuOf(system()), (std::vector<std::string>{"Everything looks healthy on this computer.", "-",
                                                          "Show System", "Performance", "Settings"}));
    tray->showSystem(state(0.07, {{"heat", SystemInsight::Level::warning, "", "The chip is at 95°C."}}));
    EXPECT_EQ(system().icon, trayIcon(SystemMenuLabel{"exclamationmark.triangle.fill", " 7%"}));
    EXPECT_EQ(menuOf(system())[0], "The chip is at 95°C.");
}

TEST_F(HostTrayTest, theSecondIconIsThereOnlyWhileItIsWanted) {
    tray->showSystem(state(0.42));
    EXPECT_TRUE(tray->isSystemIconShown());
    bench.settings.set(settingKey::systemMenuStyle, std::string("hidden"));
    EXPECT_FALSE(bar.items.contains(HostTray::systemItem));
    EXPECT_FALSE(tray->isSystemIconShown());
    const std::pair<const char*, SystemMenuLabel> styles[] = {
        {"percent", {std::nullopt, "42%"}}, {"icon", {"cpu", std::nullopt}}, {"iconAndPercent", {"cpu", "42%"}}};
    for (const auto& [style, label] : styles) {
        bench.settings.set(settingKey::systemMenuStyle, std::string(style));
        EXPECT_EQ(system().icon, trayIcon(label)) << style;
    }
    bench.settings.set(settingKey::showSystemMonitor, false);
    EXPECT_FALSE(bar.items.contains(HostTray::systemItem));
    tray->showSystem(state(0.5));
    EXPECT_FALSE(bar.items.contains(HostTray::systemItem));
    bench.settings.set(settingKey::showSystemMonitor, true);
    EXPECT_EQ(system().tip.title, "CPU 50%");
}

TEST_F(HostTrayTest, withoutABarNobodyNeedsTheMachinesFigures) {
    bar.hasBar = false;
    EXPECT_FALSE(tray->isSystemIconShown());
    bar.hasBar = true;
    EXPECT_TRUE(tray->isSystemIconShown());
}

TEST_F(HostTrayTest, figuresWithinTheInsightsAreForTheOpeningOfTheMenu) {
    const auto busy = [](const char* text) {
        return std::vector<SystemInsight>{{"cpu", SystemInsight::Level::warning, "cpu", text}};
    };
    tray->showSystem(state(0.8, busy("CPU has been busy (80%).")));
    tray->showSystem(state(0.81, busy("CPU has been busy (81%).")));
    EXPECT_EQ(menuOf(system())[0], "CPU has been busy (80%).");
    EXPECT_EQ(system().tip.text, "CPU has been busy (81%).");
    bar.tell(TrayMenuOpening{HostTray::systemItem});
    EXPECT_EQ(menuOf(system())[0], "CPU has been busy (81%).");
    tray->showSystem(state(0.81, {}));
    EXPECT_EQ(menuOf(system())[0], "Show System") << "another list is told at once";
}

TEST_F(HostTrayTest, clicksOpenThePanelsWhereTheyWere) {
    tray->showSystem(state(0.42));
    using Button = TrayClick::Button;
    const struct {
        TrayClick click;
        WindowRequest request;
    } rows[] = {
        {{"kestrio", Button::primary, 1250, 12, "a"}, PanelRequest{PanelKind::today, ScreenPoint{1250, 12}}},
        {{"kestrio", Button::menu, 5, 900, ""}, PanelRequest{PanelKind::today, ScreenPoint{5, 900}}},
        {{"kestrio", Button::primary, 0, 0, ""}, PanelRequest{PanelKind::today, std::nullopt}},
        {{"kestrio", Button::secondary, 1, 1, ""}, DashboardRequest{}},
        {{"kestrio-system", Button::primary, 1200, 0, "b"}, PanelRequest{PanelKind::system, ScreenPoint{1200, 0}}},
        {{"kestrio-system", Button::secondary, 1, 1, ""}, DashboardRequest{"performance"}},
    };
    for (const auto& row : rows) {
        opened.clear();
        bar.tell(row.click);
        ASSERT_EQ(opened.size(), 1U);
        EXPECT_EQ(opened[0].first, row.request) << row.click.x;
        EXPECT_EQ(opened[0].second, row.click.activationToken);
    }
}

TEST_F(HostTrayTest, choicesOfTheMenusAreDone) {
    tray->showSystem(state(0.42));
    choose("kestrio", "Show Today");
    choose("kestrio", "Open Dashboard");
    choose("kestrio", "Settings");
    choose("kestrio-system", "Show System");
    choose("kestrio-system", "Performance");
    choose("kestrio-system", "Settings");
    const std::vector<std::pair<WindowRequest, std::string>> expected{{PanelRequest{PanelKind::today}, "token"},
                                                                      {DashboardRequest{}, "token"},
                                                                      {SettingsRequest{}, "token"},
                                                                      {PanelRequest{PanelKind::system}, "token"},
                                                                      {DashboardRequest{"performance"}, "token"},
                                                                      {SettingsRequest{}, "token"}};
    EXPECT_EQ(opened, expected);

    choose("kestrio", "1 hour");
    EXPECT_EQ(bench.model->pausedUntil().value(), bench.time.now() + Seconds(3600));
    choose("kestrio", "30 minutes");
    EXPECT_EQ(bench.model->pausedUntil().value(), bench.time.now() + Seconds(3600)) << "no longer in the menu";
    choose("kestrio", "Resume (paused until 23:13)");
    EXPECT_EQ(bench.model->pausedUntil().value(), std::nullopt);
    bench.pass(3);
    choose("kestrio", "Until tomorrow");
    EXPECT_EQ(bench.model->pausedUntil().value(), Calendar("en_GB", "UTC").day(bench.time.now()).end);
    choose("kestrio", "Quit Kestrio");
    EXPECT_EQ(quits, 1);
    choose("kestrio", "Paused");
    choose("nobody", "Nothing");
}

TEST(TodaysTime, isWhatTheSessionsOfTheDayAddUpTo) {
    MonitorBench bench;
    bench.start();
    const DateInterval day{origin - Seconds(100), origin + Seconds(100'000)};
    const auto time = [&] { return timeInFront(bench.database, *bench.monitor, day); };
    EXPECT_EQ(time(), Seconds(0));
    bench.show("org.example.editor", "Draft");
    bench.pass(1); // between two ticks
    EXPECT_EQ(time(), Seconds(0));
    bench.pass(5);
    EXPECT_EQ(time(), Seconds(4)) << "from its first tick on";
    bench.pass(60);
    EXPECT_EQ(time(), Seconds(64)) << "beyond the last write of its row";
    bench.show("org.example.editor", "Another");
    bench.pass(20);
    EXPECT_EQ(time(), Seconds(84));
    EXPECT_EQ(timeInFront(bench.database, *bench.monitor, {origin + Seconds(10), origin + Seconds(30)}), Seconds(20));
    bench.monitor->pause(distantFuture);
    bench.pass(50);
    EXPECT_EQ(time(), Seconds(84));
}

} // namespace
} // namespace kestrio
