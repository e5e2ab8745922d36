#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Monitor/SystemSampler.h"
#include "Kestrio/Platform/Testing/ScriptedMachine.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"
#include "Kestrio/Platform/Testing/ScriptedSensors.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum SampleDetail;

struct Bench {
    VirtualTime time{Date(1'700'000'000)};
    ScriptedKernelCounters kernel;
    ScriptedProcessTable table;
    ScriptedSensors sensors;
    SystemSampler sampler{kernel, table, sensors, time};

    SystemSnapshot sampleAfter(Seconds span, SampleDetail detail = cheap) {
        time.advance(span);
        return sampler.sample(detail);
    }
    double cpuWith(std::vector<CoreTime> times) {
        kernel.times = std::move(times);
        return sampler.sample(cheap).cpu;
    }
};

TEST(SystemSampler, answersWithNothingOnAMachineThatTellsNothing) {
    Bench bench;
    EXPECT_EQ(bench.sampler.sample(cheap), SystemSnapshot());
    EXPECT_EQ(bench.sampler.sample(detailed), SystemSnapshot());
}

TEST(SystemSampler, comparesCPUWithTheSampleBefore) {
    Bench bench;
    EXPECT_EQ(bench.cpuWith({{50, 100}, {10, 100}}), 0) << "the first sample has nothing to compare with";
    EXPECT_DOUBLE_EQ(bench.cpuWith({{60, 120}, {20, 120}}), 0.5);
    EXPECT_EQ(bench.cpuWith({{60, 120}, {20, 120}}), 0) << "no tick passed";
    EXPECT_EQ(bench.cpuWith({}), 0) << "the counters cannot be read";
    EXPECT_DOUBLE_EQ(bench.cpuWith({{70, 130}, {30, 130}}), 1) << "since the last that could";
    EXPECT_EQ(bench.cpuWith({{70, 230}, {30, 230}}), 0);
}

TEST(SystemSampler, takesCountersThatGoOnBeyondThirtyTwoBits) {
    Bench bench;
    constexpr std::uint64_t wrap = 1ULL << 32U;
    bench.cpuWith({{wrap - 10, wrap - 10}});
    EXPECT_DOUBLE_EQ(bench.cpuWith({{wrap + 20, wrap + 50}}), 0.5);
}

TEST(SystemSampler, takesACounterThatFellForNoIncrease) {
    Bench bench;
    bench.cpuWith({{100, 1000}, {100, 1000}});
    EXPECT_DOUBLE_EQ(bench.cpuWith({{90, 990}, {150, 1100}}), 0.5);
}

TEST(SystemSampler, comparesNothingWithOtherCores) {
    Bench bench;
    bench.cpuWith({{100, 1000}});
    EXPECT_DOUBLE_EQ(bench.cpuWith({{150, 1100}, {9000, 9000}}), 0.5);
}

TEST(SystemSampler, countsAsUsedWhatIsNotFilesOrFree) {
    Bench bench;
    bench.kernel.statistics = MemoryStatistics{
        .total = 1000, .internal = 300, .purgeable = 50, .wired = 100, .compressor = 20, .external = 400};
    bench.kernel.swapUse = SwapUse{7, 9};
    bench.kernel.pressure = MemoryPressure::warning;
    const auto snapshot = bench.sampler.sample(cheap);
    EXPECT_EQ(snapshot.memoryUsed, 370u);
    EXPECT_EQ(snapshot.memoryTotal, 1000u);
    EXPECT_EQ(snapshot.swapUsed, 7u);
    EXPECT_EQ(snapshot.pressure, MemoryPressure::warning);

    bench.kernel.statistics->purgeable = 301;
    EXPECT_EQ(bench.sampler.sample(cheap).memoryUsed, 120u) << "more is purgeable than there is";

    bench.kernel.statistics.reset();
    bench.kernel.swapUse.reset();
    const auto failed = bench.sampler.sample(cheap);
    EXPECT_EQ(failed.memoryUsed, 0u);
    EXPECT_EQ(failed.memoryTotal, 1000u) << "the machine has not lost its memory";
    EXPECT_EQ(failed.swapUsed, 0u);
}

TEST(SystemSampler, asksForTheDriveOnceAMinute) {
    Bench bench;
    bench.sensors.disk = DiskUsage{1, 10};
    EXPECT_EQ(bench.sampler.sample(cheap).disk, (DiskUsage{1, 10}));
    bench.sensors.disk = DiskUsage{2, 10};
    EXPECT_EQ(bench.sampleAfter(Seconds(59.9)).disk, (DiskUsage{1, 10}));
    EXPECT_EQ(bench.sensors.diskReads, 1);
    EXPECT_EQ(bench.sampleAfter(Seconds(0.2)).disk, (DiskUsage{2, 10}));
    EXPECT_EQ(bench.sensors.diskReads, 2);
}

TEST(SystemSampler, asksForTheDriveAgainAfterAFailure) {
    Bench bench;
    EXPECT_EQ(bench.sampler.sample(cheap).disk, std::nullopt);
    bench.sensors.disk = DiskUsage{1, 10};
    EXPECT_EQ(bench.sampleAfter(Seconds(1)).disk, (DiskUsage{1, 10}));
    bench.sensors.disk.reset();
    EXPECT_EQ(bench.sampleAfter(Seconds(60)).disk, std::nullopt);
    bench.sensors.disk = DiskUsage{3, 10};
    EXPECT_EQ(bench.sampleAfter(Seconds(1)).disk, (DiskUsage{3, 10})) << "the failure was not kept";
}

TEST(SystemSampler, asksForTheTemperatureInDetailAndEverySixSecondsAtMost) {
    Bench bench;
    bench.sensors.temperatures = {50};
    EXPECT_EQ(bench.sampler.sample(cheap).temperature, std::nullopt);
    EXPECT_EQ(bench.sensors.temperatureReads, 0);
    EXPECT_EQ(bench.sampler.sample(detailed).temperature, 50);
    bench.sensors.temperatures = {60};
    EXPECT_EQ(bench.sampleAfter(Seconds(5.9), detailed).temperature, 50);
    EXPECT_EQ(bench.sampleAfter(Seconds(0), cheap).temperature, std::nullopt);
    EXPECT_EQ(bench.sampleAfter(Seconds(0.2), detailed).temperature, 60);
    EXPECT_EQ(bench.sensors.temperatureReads, 2);
}

TEST(SystemSampler, keepsAnAbsentTemperatureToo) {
    Bench bench;
    EXPECT_EQ(bench.sampler.sample(detailed).temperature, std::nullopt);
    bench.sensors.temperatures = {131, 9.5};
    EXPECT_EQ(bench.sampleAfter(Seconds(3), detailed).temperature, std::nullopt);
    EXPECT_EQ(bench.sensors.temperatureReads, 1);
    EXPECT_EQ(bench.sampleAfter(Seconds(3), detailed).temperature, std::nullopt);
    EXPECT_EQ(bench.sensors.temperatureReads, 2);
}

TEST(SystemSampler, tellsTheThermalStateInEverySample) {
    Bench bench;
    bench.sensors.thermal = ThermalState::serious;
    EXPECT_EQ(bench.sampler.sample(cheap).thermalState, ThermalState::serious);
    EXPECT_EQ(bench.sampler.sample(detailed).thermalState, ThermalState::serious);
}

TEST(SystemSampler, makesABatterysLevelOfWhatItHolds) {
    const struct {
        BatteryReading reading;
        BatteryInfo info;
    } rows[] = {
        {{}, {}},
        {{.current = 50, .full = 100}, {.level = 50}},
        {{.current = 120, .full = 100}, {.level = 100}},
        {{.current = 2'999, .full = 4'000}, {.level = 74}}, // cut, not rounded
        {{.current = 0, .full = 100}, {.level = 0}},
        {{.current = 42, .full = 0}, {.level = 42}},
        {{.current = -5, .full = 100}, {.level = 0}},
        {{.current = INT64_MAX, .full = INT64_MAX}, {.level = 100}},
        {{.current = 29, .full = 100}, {.level = 29}},
        {{.current = 1, .full = 1, .isCharging = true, .isPluggedIn = true, .minutesToFull = 5},
         {.level = 100, .isCharging = true, .isPluggedIn = true, .minutesToFull = 5}},
        {{.current = 1, .full = 2, .minutesToEmpty = 90, .minutesToFull = 0}, {.level = 50, .minutesRemaining = 90}},
        {{.current = 1, .full = 2, .minutesToEmpty = 0}, {.level = 50}},
        {{.current = 1, .full = 2, .minutesToEmpty = -1, .minutesToFull = -1}, {.level = 50}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(SystemSampler::batteryInfo(row.reading), row.info) << &row - rows;
    Bench bench;
    EXPECT_EQ(bench.sampler.sample(cheap).battery, std::nullopt);
    bench.sensors.charge = BatteryReading{.current = 3, .full = 4};
    EXPECT_EQ(bench.sampler.sample(cheap).battery, BatteryInfo{.level = 75});
}

/// Eight programs; the number of each is its memory, and the share of the machine that it takes per thousand.
struct Crowd : Bench {
    Crowd() {
        for (const pid_t process : {1, 2, 3, 4, 5, 6, 7, 8})
            table.run(process, "/bin/p" + std::to_string(process),
                      {.start = 1, .footprint = static_cast<std::uint64_t>(process)});
    }
    void work() {
        constexpr std::uint64_t second = 1'000'000'000;
        for (auto& [process, counters] : table.readings)
            counters.cpu += static_cast<std::uint64_t>(process) * second * table.processors / 1000;
    }
    static std::vector<std::string> names(const std::vector<AppResource>& apps) {
        std::vector<std::string> names;
        for (const auto& app : apps)
            names.push_back(app.name);
        return names;
    }
};

TEST(SystemSampler, ranksTheApplicationsInDetailAlone) {
    Crowd crowd;
    auto snapshot = crowd.sampler.sample(detailed);
    EXPECT_FALSE(snapshot.hasAppCPU) << "the first scan";
    EXPECT_TRUE(snapshot.topCPU.empty());
    EXPECT_EQ(Crowd::names(snapshot.topMemory), (std::vector<std::string>{"p8", "p7", "p6", "p5", "p4", "p3"}));
    crowd.work();
    snapshot = crowd.sampleAfter(Seconds(1), detailed);
    EXPECT_TRUE(snapshot.hasAppCPU);
    EXPECT_EQ(Crowd::names(snapshot.topCPU), (std::vector<std::string>{"p8", "p7", "p6", "p5", "p4", "p3"}));
    EXPECT_EQ(snapshot.topMemory[0], (AppResource{"/bin/p8", "p8", std::nullopt, 0.008, 8, 1}));
    snapshot = crowd.sampleAfter(Seconds(1), cheap);
    EXPECT_FALSE(snapshot.hasAppCPU);
    EXPECT_TRUE(snapshot.topCPU.empty());
    EXPECT_TRUE(snapshot.topMemory.empty());
}

TEST(SystemSampler, leavesOutOfTheBusiestWhoDoesNextToNothing) {
    Crowd crowd;
    for (const pid_t process : {4, 5, 6, 7, 8})
        crowd.table.end(process);
    crowd.sampler.sample(detailed);
    crowd.work();
    EXPECT_EQ(Crowd::names(crowd.sampleAfter(Seconds(1), detailed).topCPU), (std::vector<std::string>{"p3", "p2"}))
        << "two thousandths are the least";
}

TEST(SystemSampler, throwsAwayABaselineOfMoreThanTenSeconds) {
    Crowd crowd;
    crowd.sampler.sample(detailed);
    crowd.work();
    EXPECT_TRUE(crowd.sampleAfter(Seconds(9.9), detailed).hasAppCPU);
    crowd.work();
    EXPECT_FALSE(crowd.sampleAfter(Seconds(10.1), detailed).hasAppCPU);
}

} // namespace
} // namespace kestrio
