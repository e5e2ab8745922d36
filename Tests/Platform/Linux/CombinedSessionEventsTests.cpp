#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/CombinedSessionEvents.h"
#include "Kestrio/Platform/Testing/ScriptedSessionEvents.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct CombinedSessionEventsTest : testing::Test {
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue queue{time, "q"};
    ScriptedSessionEvents first{queue};
    ScriptedSessionEvents second{queue};
    Signal<SessionEvent> displays;
    CombinedSessionEvents combined{{&first, &second}, {[this](std::function<void(SessionEvent)> receiver) {
                                       return displays.subscribe(std::move(receiver));
                                   }}};
    std::vector<SessionEvent> heard;
};

TEST_F(CombinedSessionEventsTest, forwardsEverySourceUntilTheTokenIsDropped) {
    auto token = combined.observe([this](const SessionNotice& notice) { heard.push_back(notice.event); });
    first.happen(SessionEvent::willSleep);
    displays.emit(SessionEvent::displaysDidSleep);
    second.happen(SessionEvent::screenIsLocked);
    token.cancel();
    first.happen(SessionEvent::didWake);
    second.happen(SessionEvent::screenIsUnlocked);
    displays.emit(SessionEvent::displaysDidWake);
    EXPECT_EQ(heard,
              (std::vector{SessionEvent::willSleep, SessionEvent::displaysDidSleep, SessionEvent::screenIsLocked}));
}

TEST_F(CombinedSessionEventsTest, passesTheHoldOn) {
    std::shared_ptr<void> kept;
    const auto token = combined.observe([&](const SessionNotice& notice) { kept = notice.hold; });
    first.happen(SessionEvent::willSleep);
    EXPECT_TRUE(first.isHeldBack());
    kept.reset();
    EXPECT_FALSE(first.isHeldBack());
}

TEST_F(CombinedSessionEventsTest, announcesWhatIsInForceAtEachSource) {
    second.setInForce({SessionEvent::screenIsLocked});
    const auto token = combined.observe([this](const SessionNotice& notice) { heard.push_back(notice.event); });
    time.runPending();
    EXPECT_EQ(heard, std::vector{SessionEvent::screenIsLocked});
}

TEST_F(CombinedSessionEventsTest, takesTheFirstStartThatASourceKnows) {
    EXPECT_EQ(combined.sessionStart(), std::nullopt);
    second.setSessionStart(Date(7));
    EXPECT_EQ(combined.sessionStart(), Date(7));
    first.setSessionStart(Date(5));
    EXPECT_EQ(combined.sessionStart(), Date(5));
}

} // namespace
} // namespace kestrio
