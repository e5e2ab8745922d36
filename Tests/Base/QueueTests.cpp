#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/VirtualQueue.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

using namespace std::chrono_literals;

constexpr Date noon{1'700'000'000};

TEST(VirtualQueue, runsWorkInTheOrderItWasHandedOver) {
    VirtualTime time(noon);
    VirtualQueue queue(time, "q");
    std::string order;
    queue.async([&] {
        order += 'a';
        queue.async([&] { order += 'c'; });
    });
    queue.async([&] { order += 'b'; });
    EXPECT_EQ(order, "");
    time.runPending();
    EXPECT_EQ(order, "abc");
}

TEST(VirtualQueue, stepsFromDeadlineToDeadlineOverAllQueues) {
    VirtualTime time(noon);
    VirtualQueue a(time, "a");
    VirtualQueue b(time, "b");
    std::vector<std::string> seen;
    auto note = [&](const char* who) {
        seen.push_back(who + std::to_string(static_cast<int>((time.now() - noon).count())));
    };
    const auto first = a.every({.interval = 2s, .first = 1s}, [&] { note("a"); });
    const auto second = b.every({.interval = 3s}, [&] { note("b"); });
    const auto once = b.after(4s, [&] { note("once"); });
    time.advance(6s);
    EXPECT_EQ(seen, (std::vector<std::string>{"a1", "a3", "b3", "once4", "a5", "b6"}));
    EXPECT_EQ(time.now(), noon + Seconds(6));
}

TEST(VirtualQueue, aDroppedTokenCallsTheTimerOff) {
    VirtualTime time(noon);
    VirtualQueue queue(time, "q");
    int count = 0;
    Subscription timer = queue.every({.interval = 1s}, [&] {
        if (++count == 3)
            timer.cancel();
    });
    time.advance(10s);
    EXPECT_EQ(count, 3);
}

TEST(VirtualQueue, aTimerMayOutliveItsQueue) {
    VirtualTime time(noon);
    Subscription timer;
    {
        VirtualQueue queue(time, "q");
        timer = queue.every({.interval = 1s}, [] { FAIL(); });
    }
    time.advance(2s);
    timer.cancel();
}

TEST(VirtualQueue, timersThatTolerateWaitingComeAlongWithOthers) {
    VirtualTime time(noon);
    VirtualQueue queue(time, "q");
    std::vector<double> tolerant;
    std::vector<double> strict;
    const auto a =
        queue.every({.interval = 2s, .tolerance = 1s}, [&] { tolerant.push_back((time.now() - noon).count()); });
    const auto b = queue.every({.interval = 2.5s}, [&] { strict.push_back((time.now() - noon).count()); });
    time.advance(10s);
    EXPECT_EQ(strict, (std::vector<double>{2.5, 5, 7.5, 10}));
    // Due at 2, 4, 6, 8, 10; never later than one second after that, and on its own grid again afterwards.
    EXPECT_EQ(tolerant, (std::vector<double>{2.5, 5, 7, 9, 10}));
}

TEST(VirtualQueue, syncRunsEarlierWorkFirstAndReturnsTheResult) {
    VirtualTime time(noon);
    VirtualQueue queue(time, "q");
    int value = 1;
    queue.async([&] { value = 2; });
    EXPECT_EQ(queue.sync([&] { return value * 10; }), 20);
}

TEST(VirtualTime, aSetClockMovesWallTimeOnly) {
    VirtualTime time(noon);
    VirtualQueue queue(time, "q");
    int count = 0;
    const auto timer = queue.every({.interval = 1s}, [&] { ++count; });
    const auto uptime = time.uptime();
    time.jumpWallClock(-1h);
    time.sleepMachine(2h);
    EXPECT_EQ(time.uptime(), uptime);
    EXPECT_EQ(time.now(), noon + Seconds(3600));
    time.advance(3s);
    EXPECT_EQ(count, 3);
}

TEST(TimerSchedule, missedFiringsAreNotMadeUpFor) {
    TimerSchedule timers;
    timers.addRepeating(Uptime(0), {.interval = 2s}, [] {});
    EXPECT_TRUE(timers.takeDue(Uptime(9.5)));
    EXPECT_FALSE(timers.takeDue(Uptime(9.5)));
    EXPECT_EQ(timers.nextWake(), Uptime(10)); // on the grid again
}

TEST(WorkerQueue, runsWorkOnItsOwnThreadInOrder) {
    WorkerQueue queue("Kestrio.test");
    std::string order;
    for (const char c : {'a', 'b', 'c'})
        queue.async([&order, c] { order += c; });
    EXPECT_EQ(queue.sync([&] { return order; }), "abc");
    EXPECT_TRUE(queue.sync([&] { return queue.isCurrent(); }));
    EXPECT_FALSE(queue.isCurrent());
}

TEST(WorkerQueue, finishesTheWorkHandedOverBeforeItGoes) {
    std::atomic<int> count = 0;
    {
        WorkerQueue queue("Kestrio.test");
        for (int i = 0; i < 100; ++i)
            queue.async([&] { ++count; });
    }
    EXPECT_EQ(count, 100);
}

TEST(WorkerQueue, firesTimersUntilTheTokenIsDropped) {
    std::atomic<int> once = 0;
    std::promise<void> thrice;
    int count = 0;
    WorkerQueue queue("Kestrio.test");
    const auto single = queue.after(1ms, [&] { ++once; });
    auto repeating = queue.every({.interval = 1ms}, [&] {
        if (++count == 3)
            thrice.set_value();
    });
    thrice.get_future().wait();
    repeating.cancel();
    const int seen = queue.sync([&] { return count; });
    EXPECT_GE(seen, 3);
    EXPECT_EQ(once, 1);
    EXPECT_EQ(queue.sync([&] { return count; }), seen);
}

TEST(WorkerQueue, tellsWhenADescriptorCanBeRead) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    WorkerQueue queue("Kestrio.test");
    std::promise<char> received;
    auto watch = queue.watch(ends[0], [&] {
        char c = 0;
        if (read(ends[0], &c, 1) == 1)
            received.set_value(c);
    });
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    EXPECT_EQ(received.get_future().get(), 'x');
    watch.cancel();
    close(ends[0]);
    close(ends[1]);
}

TEST(MainQueue, runsUntilStopped) {
    MainQueue queue;
    int count = 0;
    const auto timer = queue.every({.interval = 1ms}, [&] {
        if (++count == 2)
            queue.stop();
    });
    queue.run();
    EXPECT_GE(count, 2);
}

using QueueDeathTest = testing::Test;

TEST(QueueDeathTest, syncFromTheQueuesOwnWorkIsCaught) {
    EXPECT_DEATH(
        {
            VirtualTime time(noon);
            VirtualQueue queue(time, "Kestrio.monitor");
            queue.sync([&] { queue.sync([] {}); });
        },
        "programmer's mistake: sync on the queue \"Kestrio.monitor\" from its own work");
    EXPECT_DEATH(
        {
            WorkerQueue queue("Kestrio.database");
            queue.sync([&] { queue.sync([] {}); });
        },
        "sync on the queue \"Kestrio.database\" from its own work");
}

TEST(QueueDeathTest, twoQueuesThatWaitForEachOtherAreCaught) {
    EXPECT_DEATH(
        {
            VirtualTime time(noon);
            VirtualQueue a(time, "a");
            VirtualQueue b(time, "b");
            a.sync([&] { b.sync([&] { a.sync([] {}); }); });
        },
        "sync on the queue \"a\"");
}

} // namespace
} // namespace kestrio
