#include "Kestrio/Resources/ResourceNotes.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr std::uint64_t gibibyte = 1 << 30;

const Calendar& english() {
    static const Calendar calendar("en_US", "UTC");
    return calendar;
}

LiveResources live(MemoryPressure pressure, std::uint64_t swapUsed, std::vector<AppProcesses> apps) {
    return {.swapUsed = swapUsed,
            .pressure = pressure,
            .apps = std::make_shared<const std::vector<AppProcesses>>(std::move(apps))};
}

AppProcesses holding(std::string name, std::uint64_t footprint) {
    AppProcesses app;
    app.name = std::move(name);
    app.footprint = footprint;
    return app;
}

TEST(ResourceNotes, tellEveryChangeOfActivity) {
    using enum TrackingState;
    const struct {
        TrackingState from, to;
        std::int64_t idleMinutes;
        const char* text;
    } rows[] = {
        {tracking, idle, 3, "Active → Idle. No keyboard or mouse for 3 minutes."},
        {tracking, idle, 0, "Active → Idle. No keyboard or mouse for 1 minutes."},
        {away, idle, -5, "Away → Idle. No keyboard or mouse for 1 minutes."},
        {idle, tracking, 3, "Idle → Active."},
        {tracking, away, 3, "Active → Away."},
        {away, paused, 3, "Away → Paused."},
        {paused, tracking, 3, "Paused → Active."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(resourceNotes::activityChanged(row.from, row.to, row.idleMinutes), row.text);
}

TEST(ResourceNotes, nameTheTwoThatHoldTheMostMemoryUnderPressure) {
    const auto browser = holding("Browser", 3 * gibibyte);
    const auto editor = holding("Editor", gibibyte / 2);
    const auto mail = holding("Mail", 10 * gibibyte); // not in the first two
    EXPECT_EQ(
        resourceNotes::pressureRose(live(MemoryPressure::warning, 2 * gibibyte, {browser, editor, mail}), english()),
        "Memory pressure high, 2 GB of swap in use. Most memory: Browser 3 GB, Editor 512 MB.");
    EXPECT_EQ(resourceNotes::pressureRose(live(MemoryPressure::critical, 0, {editor}), english()),
              "Memory pressure critical, 0 bytes of swap in use. Most memory: Editor 512 MB.");
    EXPECT_EQ(resourceNotes::pressureRose(live(MemoryPressure::normal, 0, {}), english()),
              "Memory pressure normal, 0 bytes of swap in use.");
}

TEST(ResourceNotes, tellWhetherTheHeatRoseOrEased) {
    const struct {
        std::int64_t from, to;
        const char* text;
    } rows[] = {{0, 1, "Heat rose to Fair."},     {1, 2, "Heat rose to Serious."}, {0, 3, "Heat rose to Critical."},
                {3, 0, "Heat eased to Nominal."}, {2, 1, "Heat eased to Fair."},   {3, 4, "Heat rose to Critical."},
                {9, 4, "Heat eased to Critical."}};
    for (const auto& row : rows)
        EXPECT_EQ(resourceNotes::thermalChanged(row.from, row.to), row.text);
}

TEST(ResourceNotes, tellWhereThePowerComesFrom) {
    EXPECT_EQ(resourceNotes::powerChanged(true, 80), "Plugged in.");
    EXPECT_EQ(resourceNotes::powerChanged(true, std::nullopt), "Plugged in.");
    EXPECT_EQ(resourceNotes::powerChanged(false, 80), "Running on battery (80%).");
    EXPECT_EQ(resourceNotes::powerChanged(false, std::nullopt), "Running on battery");
    EXPECT_EQ(resourceNotes::lowPowerChanged(true), "Low Power Mode on.");
    EXPECT_EQ(resourceNotes::lowPowerChanged(false), "Low Power Mode off.");
}

TEST(ResourceNotes, giveTheReasonsOfASlowdownInOrder) {
    const struct {
        std::int64_t lag;
        std::uint64_t swapIn;
        std::int64_t pressure;
        const char* text;
    } rows[] = {
        {500, 0, 1, "The Mac stalled for 0.5 s."},
        {9'999, 0, 1, "The Mac stalled for 10.0 s."},
        {10'000, 0, 1, "The Mac stalled for 10 s."},
        {75'900, 0, 1, "The Mac stalled for 75 s."},
        {499, 268'435'456, 2, "256 MB read back from the SSD."},
        {499, 268'435'455, 4, "Memory was critical."},
        {1'200, 268'435'456, 4, "The Mac stalled for 1.2 s, 256 MB read back from the SSD, memory was critical."},
        {1'200, 0, 4, "The Mac stalled for 1.2 s, memory was critical."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(resourceNotes::slowdown({.swapIn = row.swapIn, .pressure = row.pressure, .lagMilliseconds = row.lag},
                                          {}, english()),
                  row.text);
}

TEST(ResourceNotes, nameTheLargestAndTheBusiestOfASlowdown) {
    const auto app = [](const char* name, std::uint64_t memory, double cpu) {
        return AppMinute{.name = name, .cpu = cpu, .memory = memory};
    };
    const SystemMinute minute{.pressure = 4};
    EXPECT_EQ(resourceNotes::slowdown(minute,
                                      {app("A", gibibyte, 0.25), app("B", 4 * gibibyte, 0.1), app("C", 2 * gibibyte, 2),
                                       app("D", 3 * gibibyte, 0.5)},
                                      english()),
              "Memory was critical. Most memory: B 4 GB, D 3 GB, C 2 GB. Busiest: C 2.0 cores, D 50% of a core.");
    EXPECT_EQ(resourceNotes::slowdown(minute, {app("A", gibibyte, 0.249)}, english()),
              "Memory was critical. Most memory: A 1 GB.");
    EXPECT_EQ(resourceNotes::slowdown(minute, {app("A", gibibyte, 0.25)}, english()),
              "Memory was critical. Most memory: A 1 GB. Busiest: A 25% of a core.");
}

TEST(ResourceNotes, tellHowLongTheMachineSlept) {
    EXPECT_EQ(resourceNotes::woke(std::nullopt), "The Mac woke up.");
    EXPECT_EQ(resourceNotes::woke(Seconds(8 * 3600 + 300)), "Woke after 8h 5m asleep.");
    EXPECT_EQ(resourceNotes::woke(Seconds(45)), "Woke after 45s asleep.");
}

} // namespace
} // namespace kestrio
