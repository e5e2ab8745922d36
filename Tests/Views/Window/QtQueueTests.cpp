#include "Kestrio/Base/Clock.h"
#include "Kestrio/Views/Window/QtQueue.h"

#include <QCoreApplication>
#include <QTest>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace kestrio {
namespace {

using namespace std::chrono_literals;

bool served(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 5000);
}

TEST(QtQueue, runsWorkInTheOrderItWasHandedOver) {
    QtQueue queue;
    std::string order;
    queue.async([&] {
        order += 'a';
        queue.async([&] { order += 'c'; });
    });
    queue.async([&] { order += 'b'; });
    EXPECT_EQ(order, "");
    ASSERT_TRUE(served([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
}

TEST(QtQueue, takesWorkFromAnyThread) {
    QtQueue queue;
    int count = 0;
    std::thread other([&] {
        for (int i = 0; i < 1000; ++i)
            queue.async([&] { ++count; });
    });
    ASSERT_TRUE(served([&] { return count == 1000; }));
    other.join();
}

TEST(QtQueue, syncWaitsForTheResultOfWorkOnTheMainThread) {
    QtQueue queue;
    const auto mainThread = std::this_thread::get_id();
    std::atomic<bool> wasThere = false;
    std::atomic<int> result = 0;
    std::thread other([&] {
        result = queue.sync([&] {
            wasThere = std::this_thread::get_id() == mainThread;
            return 42;
        });
    });
    ASSERT_TRUE(served([&] { return result == 42; }));
    other.join();
    EXPECT_TRUE(wasThere);
}

TEST(QtQueue, isCurrentOnTheMainThreadAlone) {
    QtQueue queue;
    EXPECT_TRUE(queue.isCurrent());
    bool isCurrentElsewhere = true;
    std::thread([&] { isCurrentElsewhere = queue.isCurrent(); }).join();
    EXPECT_FALSE(isCurrentElsewhere);
}

TEST(QtQueue, aTimerNeverFiresBeforeItsTime) {
    QtQueue queue;
    const SystemClock clock;
    const auto begun = clock.uptime();
    std::optional<Uptime> fired;
    const auto timer = queue.after(30ms, [&] { fired = clock.uptime(); });
    ASSERT_TRUE(served([&] { return fired.has_value(); }));
    EXPECT_GE(*fired - begun, Seconds(0.03));
}

TEST(QtQueue, aRepeatingTimerFiresUntilItsTokenIsDropped) {
    QtQueue queue;
    int count = 0;
    Subscription timer = queue.every({.interval = 1ms}, [&] {
        if (++count == 3)
            timer.cancel();
    });
    ASSERT_TRUE(served([&] { return count == 3; }));
    bool hasPassed = false;
    const auto later = queue.after(20ms, [&] { hasPassed = true; });
    ASSERT_TRUE(served([&] { return hasPassed; }));
    EXPECT_EQ(count, 3);
}

TEST(QtQueue, aTimerOfALongTimeDoesNotHoldUpAShortOne) {
    QtQueue queue;
    const auto distant = queue.after(Seconds(1e9), [] { FAIL(); });
    bool fired = false;
    const auto near = queue.after(1ms, [&] { fired = true; });
    ASSERT_TRUE(served([&] { return fired; }));
}

TEST(QtQueue, aTimerMayOutliveItsQueue) {
    Subscription timer;
    {
        QtQueue queue;
        timer = queue.every({.interval = 1ms}, [] { FAIL(); });
        queue.async([] { FAIL(); });
    }
    QCoreApplication::processEvents();
    timer.cancel();
}

} // namespace
} // namespace kestrio
