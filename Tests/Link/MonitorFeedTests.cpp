#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Link/MonitorFeed.h"
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
    std::optional<OptimizerCounts> counts;
    SystemMonitor monitor{main, worker, sampler, {"Chip 9000", Calendar("en_GB", "UTC"), [] { return false; }}};
    std::optional<MonitorFeed> feed;
    std::vector<MonitorReading> heard;

    Bench() {
        table.run(1, "/bin/painter", {.start = 1, .footprint = 5});
        feed.emplace(main, time, monitor, MonitorFeed::Setup{.cores = 8, .optimizer = [this] { return counts; }});
        monitor.start();
        time.advance(Seconds(10));
    }

    MonitorFeed::Receiver receiver() {
        return [this](const MonitorReading& reading) { heard.push_back(reading); };
    }
    /// Time passes on a machine that never stands twice the same.
    void pass(Seconds span) {
        for (double passed = 0; passed < span.count() - 0.05; passed += 0.1) {
            if (kernel.times.empty())
                kernel.times = {{0, 0}};
            kernel.times[0].busy += 10 + static_cast<std::uint64_t>(passed * 10) % 7;
            kernel.times[0].total += 100;
            time.advance(Seconds(0.1));
        }
    }
};

TEST(MonitorFeed, looksCloselyOnlyWhileSomebodyObserves) {
    Bench bench;
    EXPECT_FALSE(bench.monitor.isPanelVisible());
    auto first = bench.feed->observe(bench.receiver());
    EXPECT_TRUE(bench.monitor.isPanelVisible());
    EXPECT_TRUE(bench.heard.empty()) << "never within the call";
    bench.time.runPending();
    ASSERT_EQ(bench.heard.size(), 1u) << "within moments";
    EXPECT_EQ(bench.heard.back().state.snapshot->topMemory.size(), 1u);
    EXPECT_FALSE(bench.heard.back().state.snapshot->hasAppCPU);
    bench.pass(Seconds(1.05));
    EXPECT_TRUE(bench.heard.back().state.snapshot->hasAppCPU);
    auto second = bench.feed->observe(bench.receiver());
    first.cancel();
    EXPECT_TRUE(bench.monitor.isPanelVisible());
    second.cancel();
    EXPECT_FALSE(bench.monitor.isPanelVisible());
    bench.heard.clear();
    bench.pass(Seconds(30));
    EXPECT_TRUE(bench.heard.empty());
}

TEST(MonitorFeed, tellsANewcomerWhatOthersSeeAlready) {
    Bench bench;
    const auto first = bench.feed->observe([](const auto&) {});
    bench.pass(Seconds(1.5));
    auto second = bench.feed->observe(bench.receiver());
    EXPECT_TRUE(bench.heard.empty());
    bench.time.runPending();
    ASSERT_EQ(bench.heard.size(), 1u);
    EXPECT_EQ(bench.heard[0].state, bench.monitor.state());
    auto third = bench.feed->observe(bench.receiver());
    third.cancel();
    bench.time.runPending();
    EXPECT_EQ(bench.heard.size(), 1u) << "gone before it could be told";
}

TEST(MonitorFeed, tellsTheFactsAroundTheState) {
    Bench bench;
    const auto token = bench.feed->observe(bench.receiver());
    bench.time.runPending();
    ASSERT_FALSE(bench.heard.empty());
    EXPECT_EQ(bench.heard.back().chipName, "Chip 9000");
    EXPECT_EQ(bench.heard.back().cores, 8u);
    EXPECT_EQ(bench.heard.back().uptime, bench.time.uptime() - Uptime(0));
    EXPECT_EQ(bench.heard.back().optimizer, std::nullopt) << "it is off";
    bench.counts = OptimizerCounts{1, 2, 3, true};
    bench.pass(Seconds(4));
    EXPECT_EQ(bench.heard.back().optimizer, bench.counts);
}

TEST(MonitorFeed, isSurvivedByItsTokens) {
    Bench bench;
    auto token = bench.feed->observe(bench.receiver());
    const auto other = bench.feed->observe(bench.receiver());
    bench.feed.reset();
    token.cancel();
    bench.pass(Seconds(4));
    EXPECT_TRUE(bench.heard.empty());
}

TEST(MonitorFeed, letsAReceiverLeaveWhileItIsTold) {
    Bench bench;
    Subscription token;
    int told = 0;
    token = bench.feed->observe([&](const auto&) {
        ++told;
        token.cancel();
    });
    bench.pass(Seconds(5));
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(bench.monitor.isPanelVisible());
}

} // namespace
} // namespace kestrio
