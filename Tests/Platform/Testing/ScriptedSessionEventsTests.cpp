#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/ScriptedSessionEvents.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct ScriptedSessionEventsTest : testing::Test {
    VirtualTime time{Date(1'700'000'000)};
    VirtualQueue queue{time, "q"};
    ScriptedSessionEvents events{queue};
    std::vector<SessionEvent> heard;

    std::function<void(const SessionNotice&)> listener() {
        return [this](const SessionNotice& notice) { heard.push_back(notice.event); };
    }
};

TEST_F(ScriptedSessionEventsTest, tellsWhatHappensUntilTheTokenIsDropped) {
    auto token = events.observe(listener());
    events.happen(SessionEvent::willSleep);
    token.cancel();
    events.happen(SessionEvent::didWake);
    EXPECT_EQ(heard, std::vector{SessionEvent::willSleep});
}

TEST_F(ScriptedSessionEventsTest, announcesWhatIsInForceSoonAfterSubscribing) {
    events.setInForce({SessionEvent::screenIsLocked});
    const auto token = events.observe(listener());
    EXPECT_TRUE(heard.empty());
    time.runPending();
    EXPECT_EQ(heard, std::vector{SessionEvent::screenIsLocked});
}

TEST_F(ScriptedSessionEventsTest, announcesNothingToWhoLeftBefore) {
    events.setInForce({SessionEvent::screenIsLocked});
    auto token = events.observe(listener());
    token.cancel();
    time.runPending();
    EXPECT_TRUE(heard.empty());
}

TEST_F(ScriptedSessionEventsTest, isHeldBackWhileACopyOfTheHoldLives) {
    std::shared_ptr<void> kept;
    const auto token = events.observe([&](const SessionNotice& notice) { kept = notice.hold; });
    events.happen(SessionEvent::willSleep);
    EXPECT_TRUE(events.isHeldBack());
    kept.reset();
    EXPECT_FALSE(events.isHeldBack());
}

TEST_F(ScriptedSessionEventsTest, answersTheScriptedStartOfTheSession) {
    EXPECT_EQ(events.sessionStart(), std::nullopt);
    events.setSessionStart(Date(5));
    EXPECT_EQ(events.sessionStart(), Date(5));
}

} // namespace
} // namespace kestrio
