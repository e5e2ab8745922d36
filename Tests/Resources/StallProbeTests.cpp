#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Resources/StallProbe.h"
#include "Tests/Resources/LateClock.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct Bench {
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue queue{time, StallProbe::queueLabel};
    LateClock clock{time};
    StallProbe probe{clock, queue};
};

TEST(StallProbe, countsWholeMillisecondsFromOneOn) {
    const struct {
        double milliseconds;
        std::int64_t worst;
    } rows[] = {{-5, 0}, {0, 0}, {0.9, 0}, {1, 1}, {1.5, 1}, {2, 2}, {700.99, 700}, {12'345, 12'345}};
    for (const auto& row : rows) {
        Bench bench;
        bench.probe.start();
        bench.time.advance(Seconds(1));
        bench.clock.late += Seconds(row.milliseconds / 1000);
        bench.time.advance(Seconds(1));
        EXPECT_EQ(bench.probe.takeWorstMilliseconds(), row.worst) << row.milliseconds;
    }
}

TEST(StallProbe, keepsTheWorstUntilItIsTaken) {
    Bench bench;
    bench.probe.start();
    for (const double late : {0.02, 0.5, 0.1}) {
        bench.clock.late += Seconds(late);
        bench.time.advance(Seconds(1));
    }
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 500);
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 0);
    bench.time.advance(Seconds(10));
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 0);
}

TEST(StallProbe, takesNoSleepForAStall) {
    Bench bench;
    bench.probe.start();
    bench.time.sleepMachine(Seconds(3'600));
    bench.time.jumpWallClock(Seconds(-7'200));
    bench.time.advance(Seconds(1));
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 0);
}

TEST(StallProbe, forgetsEverythingWhenItStops) {
    Bench bench;
    bench.probe.start();
    bench.clock.late = Seconds(1);
    bench.time.advance(Seconds(1));
    bench.probe.stop();
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 0);
    bench.clock.late = Seconds(9); // while nobody looks
    bench.time.advance(Seconds(5));
    bench.probe.start();
    bench.time.advance(Seconds(2));
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 0);
}

TEST(StallProbe, beatsOnceHoweverOftenItIsStarted) {
    Bench bench;
    bench.probe.start();
    bench.time.advance(Seconds(0.5));
    bench.probe.start();
    bench.time.advance(Seconds(0.5));
    EXPECT_EQ(bench.probe.takeWorstMilliseconds(), 0) << "the beat's second began at the first start";
}

} // namespace
} // namespace kestrio
