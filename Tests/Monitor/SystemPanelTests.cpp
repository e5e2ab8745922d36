#include "Kestrio/Monitor/SystemPanel.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum SystemTone;

const Calendar calendar("en_GB", "UTC");

std::array<SystemTile, 4> tilesOf(const SystemSnapshot& snapshot) {
    return systemTiles(snapshot, {}, 8, calendar);
}

TEST(SystemPanel, headsWithTheChipTheUptimeAndAWord) {
    const std::vector<SystemInsight> insights{{"memory", SystemInsight::Level::warning, "", ""}};
    EXPECT_EQ(systemHeader("Chip 9000", Seconds(7'500), insights),
              (SystemHeader{"System", "Chip 9000", "2h 5m", "Needs attention", cautious}));
    EXPECT_EQ(systemHeader("", Seconds(0), {}), (SystemHeader{"System", "", "0m", "All good", good}));
}

TEST(SystemPanel, hasAWordForEachLevel) {
    using Level = SystemInsight::Level;
    const struct {
        Level level;
        const char* word;
        SystemTone ofHeader;
        SystemTone ofInsight;
    } rows[] = {{Level::good, "All good", good, good},
                {Level::info, "All good", good, neutral},
                {Level::warning, "Needs attention", cautious, cautious},
                {Level::critical, "Critical", alarming, alarming}};
    for (const auto& row : rows) {
        const std::vector<SystemInsight> insights{{"x", row.level, "", ""}};
        EXPECT_EQ(statusWord(row.level), row.word);
        EXPECT_EQ(systemHeader("", Seconds(0), insights).tone, row.ofHeader) << row.word;
        EXPECT_EQ(tone(row.level), row.ofInsight) << row.word;
    }
}

TEST(SystemPanel, writesTheUptimeInTwoUnits) {
    const std::pair<double, const char*> rows[] = {{0, "0m"},         {59.9, "0m"},      {60, "1m"},
                                                   {3'599, "59m"},    {3'600, "1h 0m"},  {86'399, "23h 59m"},
                                                   {86'400, "1d 0h"}, {90'000, "1d 1h"}, {864'000, "10d 0h"}};
    for (const auto& [seconds, text] : rows)
        EXPECT_EQ(uptimeText(Seconds(seconds)), text) << seconds;
}

TEST(SystemPanel, hasATileForCPU) {
    const std::vector<double> history{0.1, 0.2};
    SystemSnapshot snapshot;
    snapshot.cpu = 0.425;
    EXPECT_EQ(systemTiles(snapshot, history, 8, calendar)[0],
              (SystemTile{"CPU", "cpu", "43%", "8 cores · recent trend", good, {0.1, 0.2}}));
    const std::pair<double, SystemTone> rows[] = {{0, good},         {0.499, good},   {0.5, cautious},
                                                  {0.799, cautious}, {0.8, alarming}, {1, alarming}};
    for (const auto& [cpu, expected] : rows) {
        snapshot.cpu = cpu;
        EXPECT_EQ(tilesOf(snapshot)[0].tone, expected) << cpu;
    }
}

TEST(SystemPanel, hasATileForMemory) {
    const struct {
        MemoryPressure pressure;
        const char* detail;
        SystemTone tone;
    } rows[] = {{MemoryPressure::normal, "of 16 GB · normal", good},
                {MemoryPressure::warning, "of 16 GB · high", cautious},
                {MemoryPressure::critical, "of 16 GB · critical", alarming}};
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.memoryUsed = 9'500'000'000;
        snapshot.memoryTotal = 16'000'000'000;
        snapshot.pressure = row.pressure;
        EXPECT_EQ(tilesOf(snapshot)[1], (SystemTile{"Memory", "memorychip", "9.5 GB", row.detail, row.tone}));
    }
}

TEST(SystemPanel, hasATileForHeat) {
    const struct {
        std::optional<double> temperature;
        ThermalState state;
        const char* value;
        const char* detail;
        SystemTone tone;
    } rows[] = {{44.9, ThermalState::nominal, "Cool", "44° · chip temperature", good},
                {69.9, ThermalState::fair, "Normal", "69° · chip temperature", good},
                {84, ThermalState::nominal, "Warm", "84° · chip temperature", cautious},
                {85, ThermalState::nominal, "Hot", "85° · chip temperature", alarming},
                {50, ThermalState::serious, "Slowing down", "50° · chip temperature", alarming},
                {{}, ThermalState::nominal, "Normal", "thermal state", good},
                {{}, ThermalState::fair, "Warm", "thermal state", cautious}};
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.temperature = row.temperature;
        snapshot.thermalState = row.state;
        EXPECT_EQ(tilesOf(snapshot)[2], (SystemTile{"Heat", "thermometer.medium", row.value, row.detail, row.tone}));
    }
}

TEST(SystemPanel, hasATileForStorage) {
    const struct {
        std::optional<DiskUsage> disk;
        const char* value;
        const char* detail;
        SystemTone tone;
    } rows[] = {{DiskUsage{250'000'000'000, 500'000'000'000}, "250 GB free", "of 500 GB", good},
                {DiskUsage{19'000'000'000, 500'000'000'000}, "19 GB free", "of 500 GB", cautious},
                {DiskUsage{5'000'000'000, 500'000'000'000}, "5 GB free", "of 500 GB", cautious},
                {DiskUsage{4'000'000'000, 500'000'000'000}, "4 GB free", "of 500 GB", alarming},
                {{}, "–", "", good}};
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.disk = row.disk;
        EXPECT_EQ(tilesOf(snapshot)[3], (SystemTile{"Storage", "internaldrive", row.value, row.detail, row.tone}));
    }
}

TEST(SystemPanel, hasABatteryRow) {
    const struct {
        BatteryInfo battery;
        BatteryRow row;
    } rows[] = {
        {{.level = 50, .isCharging = true, .isPluggedIn = true, .minutesToFull = 75},
         {"battery.100.bolt", "50%", "Charging · full in 1h 15m", neutral}},
        {{.level = 50, .isCharging = true, .isPluggedIn = true}, {"battery.100.bolt", "50%", "Charging", neutral}},
        {{.level = 50, .isCharging = true}, {"battery.100.bolt", "50%", "Charging", neutral}},
        {{.level = 100, .isPluggedIn = true}, {"battery.100.bolt", "100%", "Fully charged", neutral}},
        {{.level = 99, .isPluggedIn = true}, {"battery.100.bolt", "99%", "Plugged in", neutral}},
        {{.level = 10, .isPluggedIn = true, .minutesRemaining = 9}, {"battery.100.bolt", "10%", "Plugged in", neutral}},
        {{.level = 100}, {"battery.100", "100%", "On battery", neutral}},
        {{.level = 88, .minutesRemaining = 180}, {"battery.100", "88%", "3h left", neutral}},
        {{.level = 87, .minutesRemaining = 59}, {"battery.75", "87%", "59m left", neutral}},
        {{.level = 63}, {"battery.75", "63%", "On battery", neutral}},
        {{.level = 62}, {"battery.50", "62%", "On battery", neutral}},
        {{.level = 38}, {"battery.50", "38%", "On battery", neutral}},
        {{.level = 37}, {"battery.25", "37%", "On battery", neutral}},
        {{.level = 21}, {"battery.25", "21%", "On battery", neutral}},
        {{.level = 20}, {"battery.25", "20%", "On battery", alarming}},
        {{.level = 14}, {"battery.25", "14%", "On battery", alarming}},
        {{.level = 13}, {"battery.0", "13%", "On battery", alarming}},
        {{.level = 0}, {"battery.0", "0%", "On battery", alarming}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(batteryRow(row.battery), row.row) << row.battery.level << " " << row.row.words;
}

const SystemSnapshot busy{.topCPU = {{"a", "Painter", "/apps/painter", 0.425, 1, 3},
                                     {"b", "Browser", {}, 0.01, 1, 1},
                                     {"c", "Clock", {}, 0.0099, 1, 1}},
                          .topMemory = {{"b", "Browser", {}, 0, 2'500'000'000, 12}, {"c", "Clock", {}, 0, 900, 1}}};

TEST(SystemPanel, ranksByMemory) {
    EXPECT_EQ(topApps(busy, TopAppsMode::memory, calendar),
              (TopApps{.rows = {{"b", "Browser", {}, "2.5 GB", "Browser and its helpers (12 processes)"},
                                {"c", "Clock", {}, "900 bytes", {}}}}));
    EXPECT_EQ(topApps({}, TopAppsMode::memory, calendar), TopApps());
}

TEST(SystemPanel, ranksByPower) {
    const std::string help = "Ranked by CPU use, the biggest driver of battery drain and heat.";
    EXPECT_EQ(topApps(busy, TopAppsMode::power, calendar),
              (TopApps{.rows = {{"a", "Painter", "/apps/painter", "43%", "Painter and its helpers (3 processes)"},
                                {"b", "Browser", {}, "1%", {}},
                                {"c", "Clock", {}, "<1%", {}}},
                       .pickerHelp = help}));
    EXPECT_EQ(topApps({}, TopAppsMode::power, calendar),
              (TopApps{.emptyText = "Nothing is using much CPU right now.", .pickerHelp = help}));
}

TEST(SystemPanel, namesTheWaysOfRanking) {
    EXPECT_EQ(label(allTopAppsModes[0]), "Memory");
    EXPECT_EQ(label(allTopAppsModes[1]), "Power");
    EXPECT_STREQ(TopApps::title, "Top apps");
    EXPECT_STREQ(TopApps::picker, "Rank by");
    EXPECT_STREQ(TopApps::help, "Each app includes all of its helper processes.");
}

TEST(SystemPanel, hasALineForTheOptimizer) {
    const struct {
        std::optional<OptimizerCounts> counts;
        OptimizerLine line;
    } rows[] = {
        {{}, {.text = "Optimization is off", .leadsToSettings = true}},
        {OptimizerCounts{}, {.text = "Optimization on — nothing needs holding back."}},
        {OptimizerCounts{.isManaging = true},
         {.text = "Optimization on — nothing needs holding back.", .hasResumeAll = true}},
        {OptimizerCounts{2, 1'500'000'000, 3, true},
         {.text = "Optimization is on",
          .details = {"2 frozen (1.5 GB)", "3 on efficiency cores"},
          .hasResumeAll = true}},
        {OptimizerCounts{1, 0, 0, true},
         {.text = "Optimization is on", .details = {"1 frozen (0 bytes)"}, .hasResumeAll = true}},
        {OptimizerCounts{0, 0, 1, true},
         {.text = "Optimization is on", .details = {"1 on efficiency cores"}, .hasResumeAll = true}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(optimizerLine(row.counts, calendar), row.line) << row.line.text;
    EXPECT_STREQ(OptimizerLine::resumeAll, "Resume All");
}

TEST(SystemPanel, endsWithThreeButtons) {
    EXPECT_EQ(systemPanelButtons[0].title, "Activity Monitor");
    EXPECT_EQ(systemPanelButtons[0].tip, "Open Activity Monitor for the full details");
    EXPECT_EQ(systemPanelButtons[1].title, "Performance");
    EXPECT_EQ(systemPanelButtons[1].tip, "Every app's memory and CPU, the resource log, and optimization");
    EXPECT_EQ(systemPanelButtons[2].title, "");
    EXPECT_EQ(systemPanelButtons[2].tip, "Settings — you can hide this menu bar icon there");
    EXPECT_STREQ(activityMonitorBundle, "com.apple.ActivityMonitor");
}

} // namespace
} // namespace kestrio
