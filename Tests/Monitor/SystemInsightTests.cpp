#include "Kestrio/Monitor/SystemInsight.h"

#include <gtest/gtest.h>
#include <ostream>

namespace kestrio {

void PrintTo(const SystemInsight& insight, std::ostream* out) {
    *out << insight.id << "/" << static_cast<int>(insight.level) << "/" << insight.symbol << "/" << insight.text;
}

namespace {

using Level = SystemInsight::Level;
using Insights = std::vector<SystemInsight>;

const SystemInsight ok{"ok", Level::good, "checkmark.circle", "Everything looks healthy."};

Insights make(const SystemSnapshot& snapshot, const std::vector<double>& history = {}) {
    return SystemInsight::make(snapshot, history, Calendar("en_GB", "UTC"));
}

const AppResource painter{.id = "a", .name = "Painter", .cpu = 0.5, .memory = 2'500'000'000, .processes = 3};
const AppResource browser{.id = "b", .name = "Browser", .cpu = 0.2, .memory = 900'000'000, .processes = 9};

TEST(SystemInsight, saysThatAllIsWellOfAMachineWithoutAnything) {
    EXPECT_EQ(make({}), Insights{ok});
}

TEST(SystemInsight, ofHeat) {
    const SystemInsight hot{"heat", Level::critical, "thermometer.high",
                            "Your Mac is hot and slowing itself down to cool off."};
    const SystemInsight warm{"heat", Level::warning, "thermometer.medium", "Your Mac is getting warm."};
    const SystemInsight warmBy{"heat", Level::warning, "thermometer.medium",
                               "Your Mac is getting warm — Painter is working it hardest."};
    const auto chip = [](const char* text) { return SystemInsight{"heat", Level::warning, "thermometer.high", text}; };
    const struct {
        ThermalState state;
        std::optional<double> temperature;
        bool hasAppCPU;
        SystemInsight insight;
    } rows[] = {
        {ThermalState::critical, {}, false, hot},
        {ThermalState::serious, {}, true, hot},
        {ThermalState::serious, 95, true, hot},
        {ThermalState::fair, {}, false, warm},
        {ThermalState::fair, {}, true, warmBy},
        {ThermalState::fair, 95, false, warm}, // the rule of the temperature is not reached
        {ThermalState::fair, 95, true, warmBy},
        {ThermalState::nominal, 90, true, chip("The chip is at 90°C.")},
        {ThermalState::nominal, 99.99, false, chip("The chip is at 99°C.")},
        {ThermalState::nominal, 89.99, true, ok},
        {ThermalState::nominal, {}, true, ok},
    };
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.thermalState = row.state;
        snapshot.temperature = row.temperature;
        snapshot.topCPU = {painter, browser};
        snapshot.hasAppCPU = row.hasAppCPU;
        EXPECT_EQ(make(snapshot), Insights{row.insight})
            << static_cast<int>(row.state) << " " << row.temperature.value_or(-1) << " " << row.hasAppCPU;
    }
    SystemSnapshot nobody;
    nobody.thermalState = ThermalState::fair;
    nobody.hasAppCPU = true;
    EXPECT_EQ(make(nobody), Insights{warm});
}

TEST(SystemInsight, ofMemory) {
    constexpr std::uint64_t gibibyte = 1'073'741'824;
    const auto critical = [](const char* text) { return SystemInsight{"memory", Level::critical, "memorychip", text}; };
    const auto warning = [](const char* text) { return SystemInsight{"memory", Level::warning, "memorychip", text}; };
    const struct {
        MemoryPressure pressure;
        std::uint64_t swapUsed;
        bool hasApps;
        SystemInsight insight;
    } rows[] = {
        {MemoryPressure::normal, 9 * gibibyte, true, ok},
        {MemoryPressure::critical, 0, false, critical("Memory is nearly full, so apps will feel slow.")},
        {MemoryPressure::critical, 9 * gibibyte, true,
         critical("Memory is nearly full, so apps will feel slow. Painter is using the most (2.5 GB).")},
        {MemoryPressure::warning, 0, false, warning("Memory is under pressure.")},
        {MemoryPressure::warning, gibibyte, false, warning("Memory is under pressure.")},
        {MemoryPressure::warning, gibibyte + 1, false,
         warning("Memory is under pressure and 1.07 GB of swap is in use.")},
        {MemoryPressure::warning, 0, true, warning("Memory is under pressure. Painter is using the most (2.5 GB).")},
        {MemoryPressure::warning, 4'000'000'000, true,
         warning("Memory is under pressure and 4 GB of swap is in use. Painter is using the most (2.5 GB).")},
    };
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.pressure = row.pressure;
        snapshot.swapUsed = row.swapUsed;
        if (row.hasApps)
            snapshot.topMemory = {painter, browser};
        EXPECT_EQ(make(snapshot), Insights{row.insight})
            << static_cast<int>(row.pressure) << " " << row.swapUsed << " " << row.hasApps;
    }
}

TEST(SystemInsight, ofABusyProcessor) {
    const auto busy = [](const char* text) { return SystemInsight{"cpu", Level::warning, "cpu", text}; };
    const struct {
        std::vector<double> history;
        bool hasAppCPU;
        SystemInsight insight;
    } rows[] = {
        {{}, true, ok},
        {{1, 1, 1, 1}, true, ok},
        {{1, 1, 1, 1, 1}, true, busy("CPU has been busy (100%), mostly Painter.")},
        {{1, 1, 1, 1, 1}, false, busy("CPU has been busy (100%).")},
        {{0.75, 0.75, 0.75, 0.75, 0.75}, false, busy("CPU has been busy (75%).")},
        {{0.7, 0.7, 0.7, 0.7, 0.7}, false, busy("CPU has been busy (70%).")},
        {{0.69, 0.7, 0.7, 0.7, 0.7}, false, ok},
        {{0.999, 0.999, 0.999, 0.999, 0.999}, false, busy("CPU has been busy (99%).")},
        // The last ten alone.
        {{1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, true, ok},
        {{0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, false, busy("CPU has been busy (100%).")},
        {{1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 1}, true, busy("CPU has been busy (70%), mostly Painter.")},
    };
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.topCPU = {painter, browser};
        snapshot.hasAppCPU = row.hasAppCPU;
        EXPECT_EQ(make(snapshot, row.history), Insights{row.insight}) << testing::PrintToString(row.history);
    }
    SystemSnapshot nobody;
    nobody.hasAppCPU = true;
    EXPECT_EQ(make(nobody, {1, 1, 1, 1, 1}), Insights{busy("CPU has been busy (100%).")});
}

TEST(SystemInsight, ofStorage) {
    const auto critical = [](const char* text) {
        return SystemInsight{"disk", Level::critical, "internaldrive", text};
    };
    const auto warning = [](const char* text) { return SystemInsight{"disk", Level::warning, "internaldrive", text}; };
    const struct {
        std::optional<DiskUsage> disk;
        SystemInsight insight;
    } rows[] = {
        {{}, ok},
        {DiskUsage{4'999'999'999, 500'000'000'000}, critical("Storage is almost full — only 5 GB left.")},
        {DiskUsage{0, 500'000'000'000}, critical("Storage is almost full — only 0 bytes left.")},
        {DiskUsage{5'000'000'000, 500'000'000'000}, warning("Storage is getting full: 5 GB free of 500 GB.")},
        {DiskUsage{19'999'999'999, 30'000'000'000}, warning("Storage is getting full: 20 GB free of 30 GB.")},
        {DiskUsage{20'000'000'000, 30'000'000'000}, ok},
        {DiskUsage{99'999'999'999, 1'000'000'000'000}, warning("Storage is getting full: 100 GB free of 1 TB.")},
        {DiskUsage{100'000'000'000, 1'000'000'000'000}, ok},
        {DiskUsage{50'000'000'000, 500'000'000'000}, ok},
        {DiskUsage{30'000'000'000, 0}, ok},
        {DiskUsage{0, 0}, critical("Storage is almost full — only 0 bytes left.")},
    };
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.disk = row.disk;
        EXPECT_EQ(make(snapshot), Insights{row.insight}) << (row.disk ? row.disk->free : -1);
    }
}

TEST(SystemInsight, ofALowBattery) {
    const auto low = [](const char* text) { return SystemInsight{"battery-low", Level::warning, "battery.25", text}; };
    const struct {
        std::optional<BatteryInfo> battery;
        SystemInsight insight;
    } rows[] = {
        {{}, ok},
        {BatteryInfo{.level = 21}, ok},
        {BatteryInfo{.level = 20}, low("Battery is low (20%).")},
        {BatteryInfo{.level = 0}, low("Battery is low (0%).")},
        {BatteryInfo{.level = 20, .isPluggedIn = true}, ok},
    };
    for (const auto& row : rows) {
        SystemSnapshot snapshot;
        snapshot.battery = row.battery;
        EXPECT_EQ(make(snapshot), Insights{row.insight}) << (row.battery ? row.battery->level : -1);
    }
}

TEST(SystemInsight, putsTheWorstFirstAndKeepsTheOrderOfEquals) {
    SystemSnapshot snapshot;
    snapshot.thermalState = ThermalState::fair;
    snapshot.pressure = MemoryPressure::critical;
    snapshot.disk = DiskUsage{1, 1'000'000'000'000};
    snapshot.battery = BatteryInfo{.level = 5};
    std::vector<std::string> ids;
    for (const auto& insight : make(snapshot, {1, 1, 1, 1, 1}))
        ids.push_back(insight.id);
    EXPECT_EQ(ids, (std::vector<std::string>{"memory", "disk", "heat", "cpu", "battery-low"}));
}

TEST(SystemInsight, hasAHighestLevelAmongMany) {
    EXPECT_EQ(highestLevel({}), Level::good);
    const auto highest = [](std::vector<Level> levels) {
        Insights insights;
        for (const auto level : levels)
            insights.push_back({"x", level, "", ""});
        return highestLevel(insights);
    };
    EXPECT_EQ(highest({Level::good, Level::info}), Level::info);
    EXPECT_EQ(highest({Level::warning, Level::critical, Level::good}), Level::critical);
    EXPECT_LT(Level::good, Level::info);
    EXPECT_LT(Level::info, Level::warning);
    EXPECT_LT(Level::warning, Level::critical);
}

} // namespace
} // namespace kestrio
