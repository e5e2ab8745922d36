#include "Kestrio/Resources/ResourceReport.h"
#include "Tests/Resources/ExampleSnapshot.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using namespace ResourceExporter;

/// The locale may set a narrow no-break space before "pm".
std::string plainSpaces(std::string text) {
    for (std::size_t at; (at = text.find("\u202f")) != std::string::npos;)
        text.replace(at, std::string("\u202f").size(), " ");
    return text;
}

std::string reportOf(const Snapshot& snapshot, const Surroundings& surroundings = exampleSurroundings()) {
    return plainSpaces(report(snapshot, surroundings));
}

Snapshot exampleSnapshot(int minutes) {
    Snapshot snapshot;
    snapshot.title = "Tuesday";
    snapshot.interval = {exampleStart, exampleStart + Seconds(60.0 * minutes)};
    for (int i = 0; i < minutes; ++i)
        snapshot.system.push_back(exampleMinute(i));
    return snapshot;
}

ConfigGroup setup(std::string key, std::string label, tindra::ConfigStats stats) {
    return {.key = std::move(key),
            .label = std::move(label),
            .firstUsed = exampleStart,
            .stats = stats,
            .cpu = 0.25,
            .memoryUsed = 8192 * exampleMebibyte,
            .frozenApps = 1.5};
}

TEST(ResourceReport, anEmptyRangeSaysSo) {
    Snapshot snapshot;
    snapshot.title = "Today";
    EXPECT_EQ(reportOf(snapshot), "# Kestrio resource report — Today\n"
                                  "\n"
                                  "Example 9, 16 GB RAM, 8 performance + 4 efficiency cores, Debian GNU/Linux 12\n"
                                  "\n"
                                  "Nothing was logged in this range.\n");
}

TEST(ResourceReport, aRangeIsToldWhole) {
    auto snapshot = exampleSnapshot(60);
    snapshot.system[5].pressure = 4; // a slowdown
    snapshot.system[6].pressure = 2;
    snapshot.system[7].lagMilliseconds = 1500; // a slowdown
    snapshot.system[8].thermal = 2;
    snapshot.system[8].temperature = 96;
    snapshot.system[9].onAC = false;
    snapshot.system[9].lowPower = true;
    snapshot.hours = {{.hour = 9,
                       .activeSeconds = 600,
                       .idleSeconds = 60,
                       .awaySeconds = 60,
                       .switches = 12,
                       .memoryUsed = 8192 * exampleMebibyte,
                       .swapIn = exampleMebibyte,
                       .pressureMinutes = 3,
                       .cpu = 0.25,
                       .minutes = 12,
                       .lagMilliseconds = 1500},
                      {.hour = 10, .activeSeconds = 1800, .minutes = 30},
                      {.hour = 11, .activeSeconds = 0, .minutes = 18}};
    snapshot.summaries = {{.id = "org.example.app",
                           .name = "App | Two",
                           .minutes = 10,
                           .cpu = 0.5,
                           .cpuPeak = 2,
                           .memory = 300 * exampleMebibyte,
                           .memoryPeak = 1536 * exampleMebibyte,
                           .outOfRAM = 0,
                           .pageins = 17,
                           .frontSeconds = 90,
                           .frozenMinutes = 3,
                           .efficientMinutes = 4,
                           .diskRead = exampleMebibyte,
                           .diskWritten = 0,
                           .energyMillijoules = 60'000}, // 0.1 W
                          {.id = "b", .name = "B", .minutes = 10, .energyMillijoules = 29'999}};
    snapshot.events = {{.at = exampleStart, .kind = ResourceEventKind::thaw},
                       {.at = exampleStart, .kind = ResourceEventKind::freeze},
                       {.at = exampleStart, .kind = ResourceEventKind::thaw}};
    snapshot.secondsLogged = 3600;
    snapshot.worstStalls = {exampleSecond(3)};
    snapshot.worstSSD = {exampleSecond(4)};
    snapshot.worstRAM = {SystemSecond{.at = exampleStart}};
    auto surroundings = exampleSurroundings();
    surroundings.topRAMSpeed = 100e9;
    surroundings.driveTest = SSDSpeedTest::Result{3e9, 2.5e9, exampleStart};
    EXPECT_EQ(
        reportOf(snapshot, surroundings),
        "# Kestrio resource report — Tuesday\n"
        "\n"
        "Example 9, 16 GB RAM, 8 performance + 4 efficiency cores, Debian GNU/Linux 12\n"
        "\n"
        "Logged: 1h between 14 Nov 2023, 23:13 and 15 Nov 2023, 00:12\n"
        "\n"
        "## Memory pressure and slowdowns\n"
        "\n"
        "- Under pressure: 2m (3%), critical 1m\n"
        "- 120 MB written out to the SSD, 180 MB read back.\n"
        "- Slowdown moments: 2 (2.0 per hour)\n"
        "\n"
        "## How you used the Mac\n"
        "\n"
        "- At the Mac (active): 40m. Idle: 10m. Away (locked or asleep): 6m.\n"
        "- App switches: 180 (about 270 per active hour)\n"
        "- Apps open at once: 7 on average, 7 at most. Processes running: up to 300.\n"
        "- Busiest hours: 10:00, 09:00\n"
        "- On battery for 1m of the 1h logged; Low Power Mode was on at times\n"
        "- Chip temperature: 52°C on average, 96°C at most; throttling for 1m\n"
        "\n"
        "## RAM and SSD speed\n"
        "\n"
        "- RAM traffic: 2 GB/s on average, 3 GB/s at the fastest moment (the chip's top speed is 100 GB/s)\n"
        "- SSD: 10 MB/s read and 5 MB/s written on average, 90 MB/s at the fastest moment; an average request waited "
        "350 "
        "µs\n"
        "- SSD tested at 3 GB/s read and 2.5 GB/s write (14 Nov 2023).\n"
        "\n"
        "## By hour of day\n"
        "\n"
        "| Hour | At the Mac | Idle or away | Switches | Minutes logged | Memory used | Swap read back | Under "
        "pressure | "
        "CPU | Stall peak |\n"
        "|---|---|---|---|---|---|---|---|---|---|\n"
        "| 09:00 | 10m | 2m | 12 | 12 | 8 GB | 1 MB | 25% | 25% | 1.5 s |\n"
        "| 10:00 | 30m | 0s | 0 | 30 | 0 bytes | 0 bytes | 0% | 0% | 0.0 s |\n"
        "| 11:00 | 0s | 0s | 0 | 18 | 0 bytes | 0 bytes | 0% | 0% | 0.0 s |\n"
        "\n"
        "## Apps (by average memory)\n"
        "\n"
        "| App | Avg memory | Peak | Out of RAM (avg) | Avg CPU | Peak CPU | In front | Frozen | Efficiency cores | "
        "Page-ins | Disk read | Disk written | Avg power |\n"
        "|---|---|---|---|---|---|---|---|---|---|---|---|---|\n"
        "| App \\| Two | 300 MB | 1.5 GB | 0 bytes | 50% of a core | 2.0 cores | 1m | 3m | 4m | 17 | 1 MB | 0 bytes | "
        "0.1 W |\n"
        "| B | 0 bytes | 0 bytes | 0 bytes | 0% of a core | 0% of a core | 0s | 0s | 0s | 0 | 0 bytes | 0 bytes |  |\n"
        "\n"
        "## Worst moments, second by second (3600 seconds logged)\n"
        "\n"
        "Longest stalls:\n"
        "\n"
        "- **14 Nov, 23:13:03** CPU 97%, RAM 3 GB/s, SSD 500 MB/s, swap back in 1.5 MB/s, stall 903 ms, memory "
        "pressure "
        "critical, in front: App | Two\n"
        "\n"
        "Fastest SSD traffic:\n"
        "\n"
        "- **14 Nov, 23:13:04** CPU 97%, RAM 3 GB/s, SSD 500 MB/s, swap back in 1.5 MB/s, stall 904 ms, memory "
        "pressure "
        "critical, in front: App | Two\n"
        "\n"
        "## What the optimizer did\n"
        "\n"
        "- Frozen: 1\n"
        "- Resumed: 2\n"
        "\n"
        "## Settings when this was exported\n"
        "\n"
        "```json\n"
        "{\n"
        "  \"optimization_on\": false,\n"
        "  \"log_days\": 90\n"
        "}\n"
        "```\n"
        "\n"
        "Generated by Kestrio 1.2\n");
}

TEST(ResourceReport, setupsAreComparedWithTheOffOne) {
    auto snapshot = exampleSnapshot(1);
    const tindra::ConfigStats off{.minutes = 60,
                                  .pressureMinutes = 6,
                                  .criticalMinutes = 0,
                                  .swapReadBytes = 100 * exampleMebibyte,
                                  .slowdownMinutes = 2,
                                  .stallMinutes = 0};
    auto on = off;
    on.pressureMinutes = 3;
    on.swapReadBytes = 102 * exampleMebibyte;
    on.slowdownMinutes = 4;
    snapshot.configs = {setup("off", "Optimization off", off), setup("on|1", "Balanced", on),
                        setup("on|2", "Focus", {.minutes = 29})};
    const auto text = reportOf(snapshot);
    EXPECT_NE(
        text.find(
            "## Optimization: off versus on\n"
            "\n"
            "Only minutes you were at the Mac are counted; under 30 minutes is too little to judge. Each combination "
            "of mode, freeze time, efficiency cores and app rules is its own setup.\n"
            "\n"
            "| Setup | Counted | Under pressure | Read back / hr | Slowdowns / hr | Freezes / hr | Avg CPU | Avg "
            "memory | Apps frozen (avg) |\n"
            "|---|---|---|---|---|---|---|---|---|\n"
            "| Optimization off | 1h | 10% | 100 MB | 2.0 | 0.0 | 25% | 8 GB | 1.5 |\n"
            "| Balanced | 1h | 5% | 102 MB | 4.0 | 0.0 | 25% | 8 GB | 1.5 |\n"
            "| Focus (too little data) | 29m | 0% | 0 bytes | 0.0 | 0.0 | 25% | 8 GB | 1.5 |\n"
            "\n"
            "Compared with optimization off, **Balanced**:\n"
            "\n"
            "- Time under memory pressure: 5.0%, 50% less than 10.0%\n"
            "- Memory read back from the SSD: about the same (102 MB per hour)\n"
            "- Slowdowns per hour: 4.0, up from 2.0\n"
            "- Freezes of half a second or more per hour: about the same (0.0)\n"
            "\n"
            "## Memory pressure"),
        std::string::npos)
        << text;
    EXPECT_EQ(text.find("**Focus**"), std::string::npos);
}

TEST(ResourceReport, nothingIsComparedWithoutEnoughOfTheOffSetup) {
    const tindra::ConfigStats enough{.minutes = 30};
    for (const auto& configs :
         {std::vector{setup("off", "Optimization off", enough)}, std::vector{setup("on|1", "Balanced", enough)},
          std::vector{setup("off", "Optimization off", {.minutes = 29}), setup("on|1", "Balanced", enough)}}) {
        auto snapshot = exampleSnapshot(1);
        snapshot.configs = configs;
        const auto text = reportOf(snapshot);
        EXPECT_NE(text.find("| Setup |"), std::string::npos);
        EXPECT_EQ(text.find("Compared with"), std::string::npos) << text;
    }
}

TEST(ResourceReport, whatIsNotKnownIsLeftOut) {
    Snapshot snapshot;
    snapshot.system = {{.minute = exampleStart, .activeSeconds = 359, .switches = 4}};
    const auto text = reportOf(snapshot);
    for (const char* absent : {"per active hour", "Chip temperature", "On battery", "## RAM and SSD speed", "Busiest",
                               "Worst moments", "## By hour", "## Apps", "## Optimization"})
        EXPECT_EQ(text.find(absent), std::string::npos) << absent;
    EXPECT_NE(text.find("- App switches: 4\n"), std::string::npos);
    snapshot.system[0].activeSeconds = 360; // a tenth of an hour
    EXPECT_NE(reportOf(snapshot).find("- App switches: 4 (about 40 per active hour)\n"), std::string::npos);
}

TEST(ResourceReport, aRangeWithoutEventsSaysWhetherTheOptimizerWasOff) {
    auto snapshot = exampleSnapshot(2);
    EXPECT_NE(reportOf(snapshot).find("\nNothing in this range (optimization was off)\n"), std::string::npos);
    snapshot.system[1].configLabel = "Balanced";
    EXPECT_NE(reportOf(snapshot).find("\nNothing in this range\n"), std::string::npos);
}

TEST(ResourceReport, thePowerOfAnApplicationIsToldFromAFewHundredthsOn) {
    auto snapshot = exampleSnapshot(1);
    snapshot.summaries = {{.id = "a", .name = "A", .minutes = 1, .energyMillijoules = 3000}}; // 0.05 W
    EXPECT_NE(reportOf(snapshot).find("| 0.1 W |"), std::string::npos);
    snapshot.summaries[0].energyMillijoules = 2999;
    EXPECT_NE(reportOf(snapshot).find("|  |\n"), std::string::npos);
}

TEST(ResourceReport, namesAndLabelsStayAsTheyAre) {
    auto surroundings = exampleSurroundings();
    surroundings.hostWords = [](const auto& text, auto) {
        EXPECT_EQ(text.find("Mac Cleaner"), std::string::npos) << text;
        return text;
    };
    auto snapshot = exampleSnapshot(2);
    snapshot.title = "Mac Cleaner";
    snapshot.summaries = {{.id = "cleaner", .name = "Mac Cleaner", .minutes = 2}};
    snapshot.configs = {{.key = "on", .label = "Mac Cleaner", .stats = {.minutes = 40}}};
    snapshot.secondsLogged = 1;
    snapshot.worstStalls = {exampleSecond(0)};
    snapshot.worstStalls[0].frontApp = "cleaner";
    snapshot.hours = {{.hour = 9, .minutes = 2}};
    EXPECT_NE(reportOf(snapshot, surroundings).find("in front: Mac Cleaner"), std::string::npos);
}

TEST(ResourceReport, theHostsWordsReplaceOthers) {
    auto surroundings = exampleSurroundings();
    surroundings.hostWords = [](const auto& text, auto) { return "<" + text + ">"; };
    const auto report = reportOf(exampleSnapshot(1), surroundings);
    EXPECT_NE(report.find("## <How you used the Mac>\n"), std::string::npos);
    EXPECT_NE(report.find("- <At the Mac (active)>: "), std::string::npos);
    EXPECT_TRUE(readme(exampleSnapshot(1), surroundings, 0).starts_with("<Kestrio resource log export\n"));
}

} // namespace
} // namespace kestrio
