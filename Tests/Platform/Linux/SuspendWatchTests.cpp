#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/SuspendWatch.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(SleepGauge, tellsASleepOnceAndIgnoresTheClocksGrain) {
    struct Row {
        double asleep;
        bool slept;
    };
    const Row rows[] = {{100.0, false}, {100.4, false}, {100.8, false}, {101.3, true},
                        {101.3, false}, {101.2, false}, {4000, true},   {4000, false}};
    SleepGauge gauge(Seconds(100));
    for (const auto& row : rows)
        EXPECT_EQ(gauge.slept(Seconds(row.asleep)), row.slept) << row.asleep;
}

TEST(SuspendWatch, timeAsleepIsNeverNegative) {
    EXPECT_GE(timeAsleep().count(), -0.001);
}

TEST(SuspendWatch, isQuietWhileTheClockRuns) {
    WorkerQueue queue("clock");
    std::unique_ptr<SuspendWatch> watch;
    queue.sync([&] { watch = std::make_unique<SuspendWatch>(queue, [] { ADD_FAILURE() << "nobody slept"; }); });
    queue.sync([&] { watch.reset(); });
}

} // namespace
} // namespace kestrio
