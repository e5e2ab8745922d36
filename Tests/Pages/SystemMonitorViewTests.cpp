#include "Kestrio/Pages/SystemMonitorView.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const Calendar calendar("en_GB", "UTC");

SystemMonitorReading reading() {
    SystemSnapshot snapshot;
    snapshot.cpu = 0.42;
    snapshot.topMemory = {{.id = "org.example.editor", .name = "Editor", .memory = 2'000'000'000, .processes = 3}};
    snapshot.topCPU = {{.id = "org.example.player", .name = "Player", .cpu = 0.2, .processes = 1}};
    snapshot.battery = BatteryInfo{.level = 80};
    return {
        .state = {snapshot, {0.4, 0.42}, {{"cpu", SystemInsight::Level::warning, "cpu", "CPU has been busy (90%)."}}},
        .chipName = "Chip 9000",
        .cores = 8,
        .uptime = Seconds(7'500)};
}

SystemMonitorView view(const std::optional<SystemMonitorReading>& reading, TopAppsMode mode = TopAppsMode::memory,
                       ActivityMonitorApp app = ActivityMonitorApp::installed) {
    return systemMonitorView(reading, MonitorSource::running, mode, app, calendar);
}

TEST(SystemMonitorView, putsTheReadingTogether) {
    const auto shown = view(reading());
    EXPECT_EQ(shown.header, systemHeader("Chip 9000", Seconds(7'500), reading().state.insights));
    ASSERT_EQ(shown.tiles.size(), 4u);
    EXPECT_EQ(shown.tiles[0].value, "42%");
    EXPECT_EQ(shown.tiles[0].trend, (std::vector<double>{0.4, 0.42}));
    EXPECT_EQ(shown.insights, (std::vector<SystemMonitorView::Insight>{
                                  {"cpu", "cpu", "CPU has been busy (90%).", SystemTone::cautious}}));
    EXPECT_EQ(shown.battery, batteryRow({.level = 80}));
    EXPECT_EQ(shown.optimizer.text, "Optimization is off");
    EXPECT_FALSE(shown.message);
}

TEST(SystemMonitorView, ranksAsItsPickerSays) {
    EXPECT_EQ(view(reading()).topApps.rows.at(0).name, "Editor");
    EXPECT_EQ(view(reading(), TopAppsMode::power).topApps.rows.at(0).name, "Player");
    EXPECT_EQ(view(reading(), TopAppsMode::power).modes,
              (std::vector<SystemMonitorView::Mode>{{TopAppsMode::memory, "Memory", false},
                                                    {TopAppsMode::power, "Power", true}}));
}

TEST(SystemMonitorView, aMachineWithoutABatteryHasNoRowForIt) {
    auto desktop = reading();
    desktop.state.snapshot->battery.reset();
    EXPECT_FALSE(view(desktop).battery);
}

TEST(SystemMonitorView, beforeTheFirstReadingHasItsHeadItsFootAndAWord) {
    auto early = reading();
    early.state = {};
    const auto none = view(std::nullopt);
    EXPECT_EQ(none.header.title, "System");
    EXPECT_EQ(none.message, "Reading this Mac…");
    EXPECT_TRUE(none.tiles.empty());
    EXPECT_EQ(none.buttons.size(), 3u);
    EXPECT_EQ(view(early).header.chip, "Chip 9000");
    EXPECT_EQ(view(early).message, none.message);
}

TEST(SystemMonitorView, figuresThatNobodyKeepsFreshAreNotShown) {
    for (const auto& last : {std::optional(reading()), std::optional<SystemMonitorReading>()}) {
        const auto shown = systemMonitorView(last, MonitorSource::missing, TopAppsMode::memory,
                                             ActivityMonitorApp::installed, calendar);
        EXPECT_EQ(shown.header.title, "System");
        EXPECT_EQ(shown.message, "Kestrio is not running, so nothing is being read.");
        EXPECT_TRUE(shown.tiles.empty());
        EXPECT_EQ(shown.buttons.size(), 3u);
    }
}

TEST(SystemMonitorView, leadsToTheHostsMonitorWhereThereIsOne) {
    const auto actions = [](const SystemMonitorView& shown) {
        std::vector<std::string_view> names;
        for (const auto& button : shown.buttons)
            names.push_back(rawValue(button.action));
        return names;
    };
    using Names = std::vector<std::string_view>;
    EXPECT_EQ(actions(view(reading())), (Names{"openActivityMonitor", "openPerformance", "openSettings"}));
    EXPECT_EQ(actions(view(reading(), TopAppsMode::memory, ActivityMonitorApp::missing)),
              (Names{"openPerformance", "openSettings"}));
}

TEST(SystemMonitorView, namesItsChoicesForTheViews) {
    for (const auto mode : allTopAppsModes)
        EXPECT_EQ(topAppsMode(rawValue(mode)), mode);
    EXPECT_EQ(topAppsMode("energy"), std::nullopt);
    const std::pair<SystemTone, const char*> rows[] = {{SystemTone::good, "good"},
                                                       {SystemTone::neutral, "neutral"},
                                                       {SystemTone::cautious, "cautious"},
                                                       {SystemTone::alarming, "alarming"}};
    for (const auto& [tone, name] : rows)
        EXPECT_EQ(rawValue(tone), name);
}

} // namespace
} // namespace kestrio
