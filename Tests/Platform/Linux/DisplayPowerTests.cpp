#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/DisplayPower.h"

#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

class ScriptedIdle : public InputIdle {
public:
    std::optional<Seconds> sinceLastInput() override { return idle; }
    std::optional<Seconds> idle = Seconds(0);
};

class DisplayPowerNotices : public testing::Test {
protected:
    DisplayPower::Reader reader() {
        return [this] {
            ++reads;
            return on;
        };
    }
    Subscription listen() {
        return power.observe([this](SessionEvent event) { events.push_back(event); });
    }

    VirtualTime time{Date(0)};
    VirtualQueue queue{time, "test"};
    ScriptedIdle idle;
    std::optional<bool> on = true;
    int reads = 0;
    std::vector<SessionEvent> events;
    DisplayPower power{queue, idle, reader()};
};

TEST_F(DisplayPowerNotices, nobodyAsksForTheDisplaysWhileThePersonIsThere) {
    const auto token = listen();
    time.advance(Seconds(3600));
    EXPECT_EQ(reads, 0);
}

TEST_F(DisplayPowerNotices, aChangeIsToldOnce) {
    const auto token = listen();
    idle.idle = Seconds(600);
    time.advance(Seconds(120));
    EXPECT_TRUE(events.empty());
    on = false;
    time.advance(Seconds(15));
    EXPECT_EQ(events, std::vector{SessionEvent::displaysDidSleep});
    time.advance(Seconds(600));
    idle.idle = Seconds(1);
    on = true;
    time.advance(Seconds(15));
    EXPECT_EQ(events, (std::vector{SessionEvent::displaysDidSleep, SessionEvent::displaysDidWake}));
    reads = 0;
    time.advance(Seconds(600));
    EXPECT_EQ(reads, 0);
}

TEST_F(DisplayPowerNotices, displaysThatNobodyKnowsAreOn) {
    const auto token = listen();
    idle.idle = Seconds(600);
    on = false;
    time.advance(Seconds(120));
    on.reset();
    time.advance(Seconds(60));
    EXPECT_EQ(events, (std::vector{SessionEvent::displaysDidSleep, SessionEvent::displaysDidWake}));
}

TEST_F(DisplayPowerNotices, restWhenNobodyListensAnyMore) {
    idle.idle = Seconds(600);
    {
        const auto token = listen();
        time.advance(Seconds(120));
    }
    time.advance(Seconds(60));
    reads = 0;
    time.advance(Seconds(600));
    EXPECT_EQ(reads, 0);
    const auto token = listen();
    time.advance(Seconds(90));
    EXPECT_GT(reads, 0);
}

} // namespace
} // namespace kestrio
