#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Monitor/SystemMonitor.h"
#include "Kestrio/Platform/Testing/ScriptedMachine.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"
#include "Kestrio/Platform/Testing/ScriptedSensors.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct Bench {
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue main{time, "main"};
    VirtualQueue worker{time, SystemMonitor::queueLabel};
    ScriptedKernelCounters kernel;
    ScriptedProcessTable table;
    ScriptedSensors sensors;
    SystemSampler sampler{kernel, table, sensors, time};
    bool isIconShown = true;
    int samples = 0; // that arrived
    std::optional<SystemMonitor> monitor;
    Subscription counting;

    Bench() {
        table.run(1, "/bin/painter", {.start = 1, .footprint = 5});
        sensors.temperatures = {50};
        monitor.emplace(main, worker, sampler,
                        SystemMonitor::Setup{"Chip 9000", Calendar("en_GB", "UTC"), [this] { return isIconShown; }});
        counting = monitor->observe([this](const auto&) { ++samples; });
    }

    /// Lets the machine work so much of the time until its next sample; every such sample is another state.
    void work(double share) {
        if (kernel.times.empty())
            kernel.times = {{0, 0}};
        kernel.times[0].busy += static_cast<std::uint64_t>(share * 1000);
        kernel.times[0].total += 1000;
    }
    void start() {
        monitor->start();
        time.runPending();
    }
    /// How many samples arrive while the machine is ever busier for so long.
    int samplesIn(Seconds span) {
        const auto before = samples;
        for (double passed = 0; passed < span.count() - 0.05; passed += 0.1) {
            work(0.5);
            time.advance(Seconds(0.1));
        }
        return samples - before;
    }
    void showPanel(bool isVisible) {
        monitor->setPanelVisible(isVisible);
        time.runPending();
    }
    const SystemSnapshot& snapshot() const { return monitor->state().snapshot.value(); }
};

TEST(SystemMonitor, refreshesOnceAtItsStart) {
    Bench bench;
    EXPECT_FALSE(bench.monitor->state().snapshot);
    EXPECT_TRUE(bench.monitor->state().insights.empty());
    bench.start();
    EXPECT_TRUE(bench.monitor->state().snapshot);
    EXPECT_EQ(bench.samples, 1);
    EXPECT_EQ(bench.monitor->state().insights.at(0).id, "ok");
    EXPECT_EQ(bench.monitor->chipName(), "Chip 9000");
}

TEST(SystemMonitor, samplesEveryThreeSecondsCheaplyWhileTheIconIsShown) {
    Bench bench;
    bench.start();
    EXPECT_EQ(bench.samplesIn(Seconds(31)), 10);
    EXPECT_EQ(bench.sensors.temperatureReads, 0);
    EXPECT_EQ(bench.table.lookUps, 0);
}

TEST(SystemMonitor, doesNothingWhileTheIconIsHidden) {
    Bench bench;
    bench.isIconShown = false;
    bench.start();
    EXPECT_EQ(bench.samplesIn(Seconds(61)), 0);
    bench.isIconShown = true;
    EXPECT_EQ(bench.samplesIn(Seconds(30)), 10) << "asked anew at each firing";
}

TEST(SystemMonitor, samplesEveryTwoSecondsInDetailWhileThePanelIsOpen) {
    Bench bench;
    bench.isIconShown = false;
    bench.start();
    bench.showPanel(true);
    EXPECT_EQ(bench.sensors.temperatureReads, 1) << "at once";
    EXPECT_FALSE(bench.snapshot().hasAppCPU);
    EXPECT_EQ(bench.samplesIn(Seconds(1.05)), 1) << "once more a second later";
    EXPECT_TRUE(bench.snapshot().hasAppCPU);
    EXPECT_EQ(bench.samplesIn(Seconds(20)), 10);
    bench.showPanel(false);
    EXPECT_EQ(bench.samplesIn(Seconds(60)), 0);
}

TEST(SystemMonitor, goesBackToItsSlowPaceWhenThePanelCloses) {
    Bench bench;
    bench.start();
    bench.showPanel(true);
    bench.samplesIn(Seconds(5));
    const auto reads = bench.sensors.temperatureReads;
    bench.showPanel(false);
    EXPECT_EQ(bench.samplesIn(Seconds(31)), 10);
    EXPECT_EQ(bench.sensors.temperatureReads, reads);
}

TEST(SystemMonitor, takesNoNoticeOfAPanelThatIsVisibleAlready) {
    Bench bench;
    bench.start();
    bench.showPanel(true);
    EXPECT_TRUE(bench.monitor->isPanelVisible());
    const auto history = bench.monitor->state().cpuHistory.size();
    bench.showPanel(true);
    EXPECT_EQ(bench.monitor->state().cpuHistory.size(), history);
    bench.showPanel(false);
    bench.showPanel(false);
    EXPECT_EQ(bench.monitor->state().cpuHistory.size(), history) << "closing takes no sample";
}

TEST(SystemMonitor, hasOneSampleUnderWayAtMost) {
    Bench bench;
    bench.monitor->refresh();
    bench.monitor->refresh();
    bench.monitor->setPanelVisible(true);
    bench.time.runPending();
    EXPECT_EQ(bench.monitor->state().cpuHistory.size(), 1u);
    EXPECT_EQ(bench.sensors.temperatureReads, 0) << "the panel opened after the sample was asked for";
    bench.monitor->refresh();
    bench.time.runPending();
    EXPECT_EQ(bench.monitor->state().cpuHistory.size(), 2u) << "the next one is let in again";
    EXPECT_EQ(bench.sensors.temperatureReads, 1);
}

TEST(SystemMonitor, keepsTheDetailsThroughCheapSamples) {
    Bench bench;
    bench.start();
    bench.showPanel(true);
    bench.samplesIn(Seconds(1));
    bench.table.readings[1].cpu += 4'000'000'000;
    bench.samplesIn(Seconds(2));
    bench.showPanel(false);
    const auto detailed = bench.snapshot();
    ASSERT_EQ(detailed.topMemory.size(), 1u);
    ASSERT_EQ(detailed.topCPU.size(), 1u);
    EXPECT_TRUE(detailed.hasAppCPU);
    EXPECT_EQ(detailed.temperature, 50);
    bench.kernel.swapUse = SwapUse{3, 9};
    bench.samplesIn(Seconds(6));
    EXPECT_EQ(bench.snapshot().swapUsed, 3u);
    EXPECT_EQ(bench.snapshot().topMemory, detailed.topMemory);
    EXPECT_EQ(bench.snapshot().topCPU, detailed.topCPU);
    EXPECT_TRUE(bench.snapshot().hasAppCPU);
    EXPECT_EQ(bench.snapshot().temperature, 50);
}

TEST(SystemMonitor, takesTheListsOfADetailedSampleAsTheyAre) {
    Bench bench;
    bench.start();
    bench.showPanel(true);
    bench.samplesIn(Seconds(1));
    bench.table.readings[1].cpu += 4'000'000'000;
    bench.samplesIn(Seconds(2));
    EXPECT_EQ(bench.snapshot().topCPU.size(), 1u);
    bench.samplesIn(Seconds(4));
    EXPECT_TRUE(bench.snapshot().topCPU.empty()) << "nobody works any more";
    EXPECT_EQ(bench.snapshot().topMemory.size(), 1u);
}

TEST(SystemMonitor, keepsATemperatureThatSensorsNoLongerTell) {
    Bench bench;
    bench.start();
    bench.showPanel(true);
    bench.sensors.temperatures.clear();
    bench.samplesIn(Seconds(20));
    EXPECT_GT(bench.sensors.temperatureReads, 1);
    EXPECT_EQ(bench.snapshot().temperature, 50);
}

TEST(SystemMonitor, remembersSixtySharesOfCPU) {
    Bench bench;
    bench.work(0);
    bench.start();
    for (int sample = 1; sample <= 61; ++sample) {
        bench.work(sample <= 2 ? 0.25 : 0.75);
        bench.monitor->refresh();
        bench.time.runPending();
        if (sample == 59) {
            EXPECT_EQ(bench.monitor->state().cpuHistory.front(), 0) << "sixty with the first";
        }
    }
    const auto& history = bench.monitor->state().cpuHistory;
    ASSERT_EQ(history.size(), SystemMonitor::longestHistory);
    EXPECT_DOUBLE_EQ(history.front(), 0.25) << "of two such shares the older one has gone";
    EXPECT_DOUBLE_EQ(history[1], 0.75);
    EXPECT_DOUBLE_EQ(history.back(), 0.75);
}

TEST(SystemMonitor, makesItsInsightsOfTheSnapshotAndTheHistory) {
    Bench bench;
    bench.start();
    bench.work(0);
    bench.samplesIn(Seconds(3));
    for (int sample = 0; sample < 30; ++sample) {
        bench.work(1);
        bench.monitor->refresh();
        bench.time.runPending();
    }
    bench.sensors.disk = DiskUsage{1, 1};
    bench.monitor->refresh();
    bench.time.runPending();
    const auto& insights = bench.monitor->state().insights;
    ASSERT_EQ(insights.size(), 2u);
    EXPECT_EQ(insights[0].text, "Storage is almost full — only 1 bytes left.");
    EXPECT_EQ(insights[1].id, "cpu");
}

TEST(SystemMonitor, forgetsASampleThatComesBackAfterItsEnd) {
    Bench bench;
    bench.monitor->refresh();
    bench.monitor.reset();
    bench.time.advance(Seconds(60));
    EXPECT_EQ(bench.samples, 0);
}

} // namespace
} // namespace kestrio
