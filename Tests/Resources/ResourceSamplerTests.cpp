#include "Kestrio/Resources/ResourceSampler.h"
#include "Tests/Resources/MachineBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr std::uint64_t mebibyte = 1 << 20;
constexpr std::uint64_t worthKeeping = 100 * mebibyte;

ResourceContext inFront(const std::string& key) {
    return {.frontmost = key};
}

const AppMinute* find(const FinishedMinute& finished, const std::string& key) {
    const auto found = std::find_if(finished.apps.begin(), finished.apps.end(),
                                    [&](const AppMinute& app) { return app.appID == key; });
    return found == finished.apps.end() ? nullptr : &*found;
}

tindra::OptimizerConfig setup(bool enabled) {
    return {enabled, {}, {}};
}

// --- The first tick --------------------------------------------------------------------------------------------------

TEST(ResourceSampler, hasNothingToCompareAtItsFirstTick) {
    MachineBench bench;
    bench.run(10, "/usr/bin/daemon", 5);
    bench.kernel.times = {{50, 100}, {100, 100}};
    bench.kernel.statistics->swapIns = 4'096;
    bench.disks.drives = DiskCounters{1, 2, 3, 4};
    bench.memoryTraffic.moved = {{{"", 1, 1}}};
    const auto output = bench.sample();
    EXPECT_FALSE(output.isComparable);
    EXPECT_TRUE(output.scannedApps) << "without being asked";
    EXPECT_EQ(output.live.apps->size(), 1u);
    EXPECT_FALSE(output.live.hasCPU);
    EXPECT_EQ(output.finished, std::nullopt);
    EXPECT_EQ(output.live.ram, std::nullopt);
    EXPECT_EQ(output.live.ssd, std::nullopt);
    EXPECT_EQ(output.second, (SystemSecond{.at = MachineBench::minuteStart, .pressure = 1}));
}

TEST(ResourceSampler, addsNoLoadAndNoTrafficOfItsFirstTickToTheMinute) {
    MachineBench bench;
    bench.kernel.statistics = MemoryStatistics{.total = 1'000, .wired = 100, .swapIns = 4'096};
    bench.sample();
    const auto minute = bench.finish().minute;
    EXPECT_EQ(minute.minute, MachineBench::minuteStart);
    EXPECT_EQ(minute.cpu, 0);
    EXPECT_EQ(minute.swapIn, 0u);
    EXPECT_EQ(minute.memoryUsed, 100u);
    EXPECT_EQ(minute.memoryTotal, 1'000u);
    EXPECT_EQ(minute.pressure, 1);
    EXPECT_EQ(minute.temperature, std::nullopt);
    EXPECT_EQ(minute.frontApp, std::nullopt);
}

// --- Cores -----------------------------------------------------------------------------------------------------------

TEST(ResourceSampler, tellsTheLoadOfEachClassAndOfAllCores) {
    MachineBench bench;
    bench.sample();
    bench.pass(Seconds(1), 0.25, 0.75);
    const auto output = bench.sample();
    EXPECT_TRUE(output.isComparable);
    EXPECT_DOUBLE_EQ(output.live.cpu, 0.5);
    EXPECT_DOUBLE_EQ(output.live.cpuEfficiency, 0.25);
    EXPECT_DOUBLE_EQ(output.live.cpuPerformance, 0.75);
    EXPECT_DOUBLE_EQ(output.second.cpu, 0.5);
    EXPECT_DOUBLE_EQ(output.second.cpuEfficiency, 0.25);
    EXPECT_DOUBLE_EQ(output.second.cpuPerformance, 0.75);
}

TEST(ResourceSampler, beginsAnewAfterCoresThatCouldNotBeRead) {
    MachineBench bench;
    bench.sample();
    const auto times = std::exchange(bench.kernel.times, {});
    EXPECT_EQ(bench.sampleAfter(Seconds(1)).live.cpu, 0);
    bench.kernel.times = times;
    EXPECT_EQ(bench.sampleAfter(Seconds(1)).live.cpu, 0) << "nothing to compare with";
    bench.pass(Seconds(1), 1, 1);
    EXPECT_DOUBLE_EQ(bench.sample().live.cpu, 1);
}

TEST(ResourceSampler, averagesTheLoadsOfAMinuteAndKeepsTheHighest) {
    MachineBench bench;
    bench.sample();
    bench.pass(Seconds(10), 0, 1);
    bench.sample();
    bench.pass(Seconds(10), 0, 0.5);
    bench.sample();
    const auto minute = bench.finish().minute;
    EXPECT_DOUBLE_EQ(minute.cpu, 0.375);
    EXPECT_DOUBLE_EQ(minute.cpuPeak, 0.5);
    EXPECT_DOUBLE_EQ(minute.cpuPerformance, 0.75);
    EXPECT_DOUBLE_EQ(minute.cpuEfficiency, 0);
}

// --- Memory and swap -------------------------------------------------------------------------------------------------

TEST(ResourceSampler, countsMemoryInUseWithoutWhatCanBePurged) {
    const struct {
        MemoryStatistics statistics;
        std::uint64_t used;
    } rows[] = {
        {{.total = 900, .internal = 50, .purgeable = 20, .wired = 100, .compressor = 7, .external = 500}, 137},
        {{.total = 900, .internal = 50, .purgeable = 60, .wired = 100, .compressor = 7}, 107},
    };
    for (const auto& row : rows) {
        MachineBench bench;
        bench.kernel.statistics = row.statistics;
        const auto output = bench.sample();
        EXPECT_EQ(output.live.memoryUsed, row.used);
        EXPECT_EQ(output.second.memoryUsed, row.used);
        EXPECT_EQ(output.live.compressed, 7u);
        EXPECT_EQ(output.live.memoryTotal, 900u);
        EXPECT_EQ(output.live.breakdown, KernelStats::breakdown(row.statistics, 900));
    }
}

TEST(ResourceSampler, goesOnWithoutMemoryStatistics) {
    MachineBench bench;
    bench.kernel.statistics = MemoryStatistics{.total = 900, .wired = 5, .swapIns = 100, .swapOuts = 100};
    bench.sample();
    bench.kernel.statistics.reset();
    auto live = bench.sampleAfter(Seconds(1)).live;
    EXPECT_EQ(live.memoryUsed, 0u);
    EXPECT_EQ(live.compressed, 0u);
    EXPECT_EQ(live.breakdown, KernelStats::MemoryBreakdown{});
    EXPECT_EQ(live.swapInRate, 0);
    EXPECT_EQ(live.memoryTotal, 900u) << "it does not change";
    bench.kernel.statistics = MemoryStatistics{.total = 900, .swapIns = 300, .swapOuts = 140};
    live = bench.sampleAfter(Seconds(1)).live;
    EXPECT_DOUBLE_EQ(live.swapInRate, 100) << "over both seconds";
    EXPECT_DOUBLE_EQ(live.swapOutRate, 20);
}

TEST(ResourceSampler, tellsTheTrafficOfSwap) {
    const struct {
        const char* about;
        MemoryStatistics older, newer;
        double seconds;
        double inRate, outRate;
        std::uint64_t in, out;
    } rows[] = {
        {"usual", {.swapIns = 100, .swapOuts = 10}, {.swapIns = 300, .swapOuts = 50}, 2, 100, 20, 200, 40},
        {"a quick tick counts as half a second", {}, {.swapIns = 100, .swapOuts = 50}, 0.1, 200, 100, 100, 50},
        {"reads fell", {.swapIns = 100}, {.swapIns = 99, .swapOuts = 50}, 1, 0, 0, 0, 0},
        {"writes fell", {.swapOuts = 100}, {.swapIns = 50, .swapOuts = 99}, 1, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        MachineBench bench;
        bench.kernel.statistics = row.older;
        bench.sample();
        bench.kernel.statistics = row.newer;
        const auto output = bench.sampleAfter(Seconds(row.seconds));
        EXPECT_DOUBLE_EQ(output.live.swapInRate, row.inRate) << row.about;
        EXPECT_DOUBLE_EQ(output.second.swapOutRate, row.outRate) << row.about;
        const auto minute = bench.finish().minute;
        EXPECT_EQ(minute.swapIn, row.in) << row.about;
        EXPECT_EQ(minute.swapOut, row.out) << row.about;
    }
}

TEST(ResourceSampler, keepsTheLastUseOfSwapAndNoAverage) {
    MachineBench bench;
    for (const std::uint64_t used : {500u, 900u, 200u}) {
        bench.kernel.swapUse = SwapUse{used, 1'000};
        EXPECT_EQ(bench.sampleAfter(Seconds(1)).live.swapUsed, used);
    }
    bench.kernel.swapUse.reset();
    EXPECT_EQ(bench.finish().minute.swapUsed, 200u);
    bench.kernel.swapUse = SwapUse{0, 1'000};
    EXPECT_EQ(bench.finish().minute.swapUsed, 0u) << "absent counts as none";
}

TEST(ResourceSampler, averagesMemoryOverEveryTick) {
    MachineBench bench;
    for (const std::uint64_t wired : {100u, 101u}) {
        bench.kernel.statistics->wired = wired;
        bench.kernel.statistics->compressor = wired;
        bench.sampleAfter(Seconds(1));
    }
    const auto minute = bench.finish().minute;
    EXPECT_EQ(minute.memoryUsed, 201u);
    EXPECT_EQ(minute.compressed, 100u) << "cut, not rounded";
}

// --- Time ------------------------------------------------------------------------------------------------------------

TEST(ResourceSampler, countsAtMostThirtySecondsOfATick) {
    const struct {
        double seconds;
        double counted;
    } rows[] = {{0, 0}, {1, 1}, {29.5, 29.5}, {30, 30}, {30.5, 30}, {45, 30}};
    for (const auto& row : rows) {
        MachineBench bench;
        bench.run(10, "/app", worthKeeping, "front");
        bench.sample(inFront("front"));
        bench.time.advance(Seconds(row.seconds));
        auto context = inFront("front");
        context.scanApps = true;
        bench.sample(context);
        const auto finished = bench.finish();
        EXPECT_EQ(finished.minute.activeSeconds, static_cast<std::int64_t>(row.counted + 0.5)) << row.seconds;
        EXPECT_DOUBLE_EQ(find(finished, "front")->frontSeconds, row.counted) << row.seconds;
    }
}

TEST(ResourceSampler, countsNoTimeWhenTheClockWasPutBack) {
    MachineBench bench;
    bench.time.advance(Seconds(30));
    bench.sample(inFront("a"));
    bench.time.jumpWallClock(Seconds(-10));
    bench.sample(inFront("a"));
    bench.sampleAfter(Seconds(5), inFront("a"));
    EXPECT_EQ(bench.finish().minute.activeSeconds, 5);
}

TEST(ResourceSampler, leavesNoRowsForAnHourOfSleep) {
    MachineBench bench;
    bench.sampleAfter(Seconds(5));
    bench.time.sleepMachine(Seconds(3'600));
    const auto atWaking = bench.sample();
    ASSERT_TRUE(atWaking.finished);
    EXPECT_EQ(atWaking.finished->minute.minute, MachineBench::minuteStart);
    const auto next = bench.finish().minute;
    EXPECT_EQ(next.minute, MachineBench::minuteStart + Seconds(3'600));
    EXPECT_EQ(next.activeSeconds, 30) << "the sleep's most";
}

TEST(ResourceSampler, spreadsSwapOverASleepAndDiskOverTimeAwake) {
    MachineBench bench;
    bench.kernel.statistics = MemoryStatistics{};
    bench.disks.drives = DiskCounters{};
    bench.sample();
    bench.time.sleepMachine(Seconds(99));
    bench.kernel.statistics->swapIns = 1'000;
    bench.disks.drives->bytesRead = 1'000;
    const auto live = bench.sampleAfter(Seconds(1)).live;
    EXPECT_DOUBLE_EQ(live.swapInRate, 10);
    EXPECT_DOUBLE_EQ(live.ssd->read, 1'000);
}

TEST(ResourceSampler, closesAMinuteThatHadOneTick) {
    MachineBench bench;
    bench.sample();
    bench.pass(Seconds(60), 1, 1);
    bench.sample(); // in the second minute
    bench.pass(Seconds(60), 0, 0);
    const auto finished = bench.sample().finished;
    ASSERT_TRUE(finished);
    EXPECT_DOUBLE_EQ(finished->minute.cpu, 1) << "the average of one";
    EXPECT_DOUBLE_EQ(finished->minute.cpuPeak, 1);
}

TEST(ResourceSampler, floorsMinutesBefore1970Too) {
    MachineBench bench(Date(-30));
    bench.sample();
    EXPECT_EQ(bench.sampleAfter(Seconds(30)).finished.value().minute.minute, Date(-60));
}

// --- Pressure, heat, stalls ------------------------------------------------------------------------------------------

TEST(ResourceSampler, keepsTheWorstOfPressureHeatAndStalls) {
    MachineBench bench;
    bench.kernel.pressure = MemoryPressure::critical;
    const auto output = bench.sample({.lagMilliseconds = 70, .thermal = 1});
    EXPECT_EQ(output.second.pressure, 4);
    EXPECT_EQ(output.second.thermal, 1);
    EXPECT_EQ(output.second.lagMilliseconds, 70);
    EXPECT_EQ(output.live.pressure, MemoryPressure::critical);
    EXPECT_EQ(output.live.thermal, 1);
    bench.kernel.pressure = MemoryPressure::normal;
    bench.sampleAfter(Seconds(1), {.lagMilliseconds = 60, .thermal = 2});
    auto minute = bench.finish().minute;
    EXPECT_EQ(minute.pressure, 4);
    EXPECT_EQ(minute.thermal, 2);
    EXPECT_EQ(minute.lagMilliseconds, 70);
    minute = bench.finish().minute;
    EXPECT_EQ(minute.pressure, 1) << "normal is not 0";
    EXPECT_EQ(minute.thermal, 0);
    EXPECT_EQ(minute.lagMilliseconds, 0);
}

// --- Traffic ---------------------------------------------------------------------------------------------------------

TEST(ResourceSampler, tellsAndAveragesTheTrafficOfMemoryAndDrives) {
    MachineBench bench;
    bench.memoryTraffic.moved = {{{"", 0, 0}}};
    bench.disks.drives = DiskCounters{};
    bench.sample();
    bench.memoryTraffic.moved = {{{"", 100, 50}}};
    bench.disks.drives = DiskCounters{.bytesRead = 10, .bytesWritten = 20, .operations = 2, .nanosBusy = 3'000};
    auto output = bench.sampleAfter(Seconds(1));
    EXPECT_EQ(output.second.ramRead, 100);
    EXPECT_EQ(output.second.ramWrite, 50);
    EXPECT_EQ(output.second.ssdRead, 10);
    EXPECT_EQ(output.second.ssdWrite, 20);
    bench.memoryTraffic.moved = {{{"", 400, 100}}};
    bench.disks.drives = DiskCounters{.bytesRead = 40, .bytesWritten = 30, .operations = 4, .nanosBusy = 7'000};
    bench.sampleAfter(Seconds(1));
    const auto row = bench.finish().minute;
    // The tick that closes a minute belongs to the next one.
    EXPECT_DOUBLE_EQ(row.ramRead, 200);
    EXPECT_DOUBLE_EQ(row.ramWrite, 50);
    EXPECT_DOUBLE_EQ(row.ramPeak, 350);
    EXPECT_DOUBLE_EQ(row.ssdRead, 20);
    EXPECT_DOUBLE_EQ(row.ssdWrite, 15);
    EXPECT_DOUBLE_EQ(row.ssdPeak, 40);
    EXPECT_EQ(row.ssdWaitMicroseconds, 2) << "1.75, rounded";
}

TEST(ResourceSampler, averagesOnlyOverSecondsThatHadTraffic) {
    MachineBench bench;
    bench.disks.drives = DiskCounters{};
    bench.sample();
    bench.disks.drives = DiskCounters{.bytesRead = 100, .operations = 1};
    bench.sampleAfter(Seconds(1));
    bench.disks.drives.reset();
    const auto output = bench.sampleAfter(Seconds(1));
    EXPECT_EQ(output.live.ssd, std::nullopt);
    EXPECT_EQ(output.second.ssdRead, 0);
    EXPECT_DOUBLE_EQ(bench.finish().minute.ssdRead, 100);
}

TEST(ResourceSampler, keepsTheDiskBaselineOverAReadingThatFails) {
    MachineBench bench;
    bench.disks.drives = DiskCounters{};
    bench.sample();
    bench.disks.drives.reset();
    bench.sampleAfter(Seconds(1));
    bench.disks.drives = DiskCounters{.bytesRead = 100};
    EXPECT_DOUBLE_EQ(bench.sampleAfter(Seconds(1)).live.ssd->read, 50);
}

TEST(ResourceSampler, hasNoDiskTrafficWhereNoTimeAwakePassedOrACounterFell) {
    MachineBench bench;
    bench.disks.drives = DiskCounters{.bytesRead = 100};
    bench.sample();
    EXPECT_EQ(bench.sample().live.ssd, std::nullopt);
    bench.disks.drives->bytesRead = 50;
    EXPECT_EQ(bench.sampleAfter(Seconds(1)).live.ssd, std::nullopt);
    bench.disks.drives->bytesRead = 60;
    EXPECT_DOUBLE_EQ(bench.sampleAfter(Seconds(1)).live.ssd->read, 10);
}

TEST(ResourceSampler, countsAWaitOnlyFromOneRequestPerSecondOn) {
    for (const bool enough : {false, true}) {
        MachineBench bench;
        bench.disks.drives = DiskCounters{};
        bench.sample();
        bench.disks.drives = DiskCounters{.operations = 1, .nanosBusy = 8'000};
        const auto live = bench.sampleAfter(enough ? Seconds(1) : Seconds(2)).live;
        EXPECT_DOUBLE_EQ(live.ssd->wait.value(), 8e-6);
        EXPECT_EQ(bench.finish().minute.ssdWaitMicroseconds, enough ? 8 : 0);
    }
}

// --- Scans -----------------------------------------------------------------------------------------------------------

TEST(ResourceSampler, scansWhenAskedAndReusesTheScanOtherwise) {
    MachineBench bench;
    bench.run(10, "/small", 10);
    bench.run(11, "/large", 30);
    bench.run(12, "/medium", 20);
    const auto first = bench.sample();
    ASSERT_EQ(first.live.apps->size(), 3u);
    EXPECT_EQ((*first.live.apps)[0].id, "/large");
    EXPECT_EQ((*first.live.apps)[1].id, "/medium");
    EXPECT_EQ((*first.live.apps)[2].id, "/small");
    bench.processes.end(11);
    const auto second = bench.sampleAfter(Seconds(1));
    EXPECT_FALSE(second.scannedApps);
    EXPECT_EQ(second.live.apps, first.live.apps) << "the very same";
    EXPECT_FALSE(second.live.hasCPU);
    const auto third = bench.sampleAfter(Seconds(1), {.scanApps = true});
    EXPECT_TRUE(third.scannedApps);
    EXPECT_EQ(third.live.apps->size(), 2u);
    EXPECT_TRUE(third.live.hasCPU);
    EXPECT_TRUE(bench.sampleAfter(Seconds(1)).live.hasCPU) << "of the scan that is shown";
}

TEST(ResourceSampler, hasNoCPUTimeFromAScanBeforeALongGap) {
    for (const double gap : {39.0, 40.5}) {
        MachineBench bench;
        bench.run(10, "/app", 10);
        bench.sample({.scanApps = true});
        EXPECT_EQ(bench.sampleAfter(Seconds(gap), {.scanApps = true}).live.hasCPU, gap <= 40) << gap;
    }
}

TEST(ResourceSampler, creditsSecondsInFrontAtTheNextScan) {
    MachineBench bench;
    bench.run(10, "/a", worthKeeping, "a");
    bench.run(11, "/b", worthKeeping, "b");
    bench.sample();
    bench.sampleAfter(Seconds(3), inFront("a"));
    auto scanning = inFront("b");
    scanning.scanApps = true;
    bench.sampleAfter(Seconds(4), scanning);
    bench.sampleAfter(Seconds(1), {.scanApps = true}); // nothing is credited twice
    const auto finished = bench.finish();
    ASSERT_TRUE(find(finished, "a") && find(finished, "b"));
    EXPECT_DOUBLE_EQ(find(finished, "a")->frontSeconds, 3);
    EXPECT_DOUBLE_EQ(find(finished, "b")->frontSeconds, 4);
}

TEST(ResourceSampler, knowsAnApplicationByItsIdentifierElseByItsID) {
    MachineBench bench;
    bench.run(10, "/opt/bundled", worthKeeping, "bundled");
    bench.run(11, "/opt/plain", worthKeeping);
    bench.sample({.states = {{"bundled", 1}, {"/opt/plain", 2}, {"/opt/bundled", 9}}});
    const auto finished = bench.finish();
    ASSERT_TRUE(find(finished, "bundled") && find(finished, "/opt/plain"));
    EXPECT_EQ(find(finished, "bundled")->state, 1);
    EXPECT_EQ(find(finished, "/opt/plain")->state, 2);
}

TEST(ResourceSampler, makesARowOfWhatTheScansFound) {
    MachineBench bench;
    constexpr std::uint64_t second = 1'000'000'000;
    bench.run(10, "/app", 0);
    bench.run(11, "/app", 0);
    auto& main = bench.processes.readings[10];
    bench.sample({.scanApps = true});
    main = {.start = 1,
            .cpu = 5 * second,
            .performanceCPU = 4 * second,
            .footprint = worthKeeping,
            .resident = 50 * mebibyte + 1,
            .pageins = 3,
            .diskRead = 0,
            .diskWritten = 0,
            .energy = 0,
            .wakeups = 7};
    bench.sampleAfter(Seconds(10), {.scanApps = true});
    main.cpu += 15 * second;
    main.footprint += 1;
    main.diskRead = 5;
    main.diskWritten = 6;
    main.energy = 2'999'999;
    main.pageins = 5;
    main.wakeups = 8;
    bench.processes.end(11);
    bench.sampleAfter(Seconds(10), {.scanApps = true});
    const auto finished = bench.finish();
    ASSERT_EQ(finished.apps.size(), 1u);
    const auto& row = finished.apps[0];
    EXPECT_EQ(row.minute, MachineBench::minuteStart);
    EXPECT_EQ(row.appID, "/app");
    EXPECT_EQ(row.name, "app");
    EXPECT_DOUBLE_EQ(row.cpu, (0 + 0.5 + 1.5) / 3);
    EXPECT_DOUBLE_EQ(row.cpuPeak, 1.5);
    EXPECT_DOUBLE_EQ(row.pcoreShare.value(), (0.8 + 0) / 2) << "of the two scans that could tell";
    EXPECT_EQ(row.memory, (2 * worthKeeping + 1) / 3);
    EXPECT_EQ(row.memoryPeak, worthKeeping + 1);
    EXPECT_EQ(row.resident, (2 * (50 * mebibyte + 1)) / 3);
    EXPECT_EQ(row.pageins, 5u);
    EXPECT_EQ(row.diskRead, 5u);
    EXPECT_EQ(row.diskWritten, 6u);
    EXPECT_EQ(row.energyMillijoules, 2u) << "cut";
    EXPECT_EQ(row.wakeups, 8u);
    EXPECT_EQ(row.processes, 2);
    EXPECT_EQ(row.state, 0);
}

TEST(ResourceSampler, leavesOutApplicationsThatAreNotWorthARow) {
    MachineBench bench;
    bench.run(10, "/small", worthKeeping - 1);
    bench.run(11, "/large", worthKeeping);
    bench.sample();
    const auto finished = bench.finish();
    ASSERT_EQ(finished.apps.size(), 1u);
    EXPECT_EQ(finished.apps[0].appID, "/large");
    EXPECT_EQ(finished.apps[0].pcoreShare, std::nullopt);
    EXPECT_TRUE(bench.finish().apps.empty()) << "no scan, no rows";
}

TEST(ResourceSampler, keepsTheMostProcessesAndOpenApplications) {
    MachineBench bench;
    bench.run(10, "/a", 1);
    bench.run(11, "/b", 1);
    bench.sample({.appsOpen = 5});
    bench.processes.end(11);
    bench.sampleAfter(Seconds(1), {.scanApps = true, .appsOpen = 3});
    auto minute = bench.finish({.appsOpen = 4}).minute;
    EXPECT_EQ(minute.processes, 2);
    EXPECT_EQ(minute.appsOpen, 5);
    minute = bench.finish().minute;
    EXPECT_EQ(minute.processes, 0) << "no scan in that minute";
    EXPECT_EQ(minute.appsOpen, 4);
}

// --- Behaviour, setup, power -----------------------------------------------------------------------------------------

TEST(ResourceSampler, tellsTheSecondsOfEachActivityAndTheSwitches) {
    MachineBench bench;
    const auto tick = [&](double seconds, std::int64_t activity, const char* front) {
        bench.sampleAfter(Seconds(seconds), {.frontmost = front, .activity = activity});
    };
    tick(0, 0, "a");
    tick(3.5, 0, "a");
    tick(4.4, 1, "b");
    tick(5, 2, "b");
    tick(6, 3, "b");
    tick(2, 0, "b");
    auto minute = bench.finish({.frontmost = "c"}).minute;
    EXPECT_EQ(minute.activeSeconds, 6) << "5.5, rounded away from zero";
    EXPECT_EQ(minute.idleSeconds, 4);
    EXPECT_EQ(minute.awaySeconds, 5);
    EXPECT_EQ(minute.pausedSeconds, 6);
    EXPECT_EQ(minute.switches, 1);
    EXPECT_EQ(minute.frontApp, "b");
    minute = bench.finish().minute;
    EXPECT_EQ(minute.switches, 1) << "across the boundary";
    EXPECT_EQ(minute.frontApp, "c");
}

TEST(ResourceSampler, keepsTheFirstOfTwoThatWereInFrontEquallyLong) {
    MachineBench bench;
    bench.sample(inFront("a"));
    bench.sampleAfter(Seconds(2), inFront("a"));
    bench.sampleAfter(Seconds(2), inFront("b"));
    EXPECT_EQ(bench.finish().minute.frontApp, "a");
}

TEST(ResourceSampler, keepsTheSetupWithTheMostSeconds) {
    MachineBench bench;
    bench.sample({.config = setup(false)});
    bench.sampleAfter(Seconds(5), {.config = setup(false)});
    bench.sampleAfter(Seconds(6), {.config = setup(true)});
    bench.sampleAfter(Seconds(0.5), {.config = setup(false)});
    EXPECT_EQ(bench.finish({.config = setup(true)}).minute.config, setup(true));
}

TEST(ResourceSampler, countsASetupSeenAtATickWithoutLength) {
    MachineBench bench;
    bench.sample({.config = setup(true)});
    const auto minute = bench.finish().minute;
    EXPECT_EQ(minute.config, setup(true));
    EXPECT_EQ(minute.configLabel, std::nullopt);
}

TEST(ResourceSampler, averagesWhatTheOptimizerHolds) {
    MachineBench bench;
    bench.sample({.frozenApps = 1, .efficientApps = 2, .frozenMemory = 5});
    bench.sampleAfter(Seconds(1), {.frozenApps = 2, .efficientApps = 5, .frozenMemory = 10});
    const auto minute = bench.finish().minute;
    EXPECT_DOUBLE_EQ(minute.frozenApps, 1.5);
    EXPECT_DOUBLE_EQ(minute.efficientApps, 3.5);
    EXPECT_EQ(minute.frozenMemory, 7u) << "7.5, cut";
}

TEST(ResourceSampler, keepsThePowerThatWasLastKnown) {
    MachineBench bench;
    bench.sample({.battery = 80, .onAC = true, .lowPower = true});
    bench.sampleAfter(Seconds(1), {.battery = 79, .onAC = false});
    bench.sampleAfter(Seconds(1));
    auto minute = bench.finish().minute;
    EXPECT_EQ(minute.battery, 79);
    EXPECT_EQ(minute.onAC, false);
    EXPECT_TRUE(minute.lowPower);
    minute = bench.finish().minute;
    EXPECT_EQ(minute.battery, 79) << "carries over";
    EXPECT_EQ(minute.onAC, false);
    EXPECT_FALSE(minute.lowPower);
}

TEST(ResourceSampler, readsTheTemperatureEveryTenSecondsAtMost) {
    MachineBench bench;
    bench.temperature = 40;
    bench.sample();
    bench.sampleAfter(Seconds(9.9));
    EXPECT_EQ(bench.temperatureReads, 1);
    bench.temperature = 50;
    bench.sampleAfter(Seconds(0.1));
    EXPECT_EQ(bench.temperatureReads, 2);
    bench.temperature.reset();
    bench.sampleAfter(Seconds(10));
    EXPECT_EQ(bench.temperatureReads, 3);
    EXPECT_DOUBLE_EQ(bench.finish().minute.temperature.value(), 45) << "of those that there were";
    bench.time.jumpWallClock(Seconds(-3'600));
    bench.sampleAfter(Seconds(1));
    EXPECT_EQ(bench.temperatureReads, 5) << "the clock was put back";
}

TEST(ResourceSampler, makesASecondOfEveryTick) {
    MachineBench bench;
    bench.kernel.swapUse = SwapUse{77, 100};
    EXPECT_EQ(
        bench.sample({.frontmost = "a", .lagMilliseconds = 3, .activity = 2, .inputIdleSeconds = 12.9, .thermal = 3})
            .second,
        (SystemSecond{.at = MachineBench::minuteStart,
                      .swapUsed = 77,
                      .pressure = 1,
                      .thermal = 3,
                      .lagMilliseconds = 3,
                      .idleSeconds = 12,
                      .state = 2,
                      .frontApp = "a"}));
}

} // namespace
} // namespace kestrio
