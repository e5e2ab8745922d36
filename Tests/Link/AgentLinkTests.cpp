#include "Kestrio/Link/AgentLink.h"
#include "Tests/Link/TestAgent.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Presence = AgentLink::Presence;

/// A face with its link, each queue a thread of its own.
class LinkedFace {
public:
    explicit LinkedFace(std::string address) : address_(std::move(address)) {
        face_.sync([this] {
            link_.emplace(face_, worker_,
                          [this](auto gone) { return connectToAgent(address_, worker_, std::move(gone)); });
            link_->start();
        });
    }
    ~LinkedFace() {
        face_.sync([this] { link_.reset(); });
    }
    LinkedFace(const LinkedFace&) = delete;
    LinkedFace& operator=(const LinkedFace&) = delete;

    template <class Work>
    auto with(Work work) {
        return face_.sync([&] { return work(*link_); });
    }
    Presence presence() {
        return with([](AgentLink& link) { return link.presence().value(); });
    }
    std::optional<TrackingState> state() {
        return with([](AgentLink& link) {
            const auto& status = link.status().value();
            return status ? std::optional(status->state) : std::nullopt;
        });
    }
    AgentLink& link() { return *link_; }

private:
    const std::string address_;
    WorkerQueue face_{"face"}; // outlives what the worker still has to tell
    WorkerQueue worker_{"worker"};
    std::optional<AgentLink> link_;
};

TEST(AgentLink, knowsAnAgentThatRunsAndHearsOfItsChanges) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    LinkedFace face(bus.address());
    EXPECT_TRUE(eventually([&] { return face.presence() == Presence::present; }));
    EXPECT_EQ(face.state(), TrackingState::tracking);
    EXPECT_EQ(face.link().known(Seconds(5))->version, "1.2.3");
    face.with([](AgentLink& link) {
        link.ask([](Background& background) { return background.pause(std::nullopt); }, [](const auto&) {});
    });
    EXPECT_TRUE(eventually([&] {
        agent.with([](LinkBench& bench) { bench.pass(2); });
        return face.state() == TrackingState::paused;
    }));
}

TEST(AgentLink, seesAnAgentGoAndFindsTheNextOne) {
    const PrivateBus bus;
    LinkedFace face(bus.address());
    EXPECT_TRUE(eventually([&] { return face.presence() == Presence::absent; }));
    {
        TestAgent agent(bus.address());
        EXPECT_TRUE(eventually([&] { return face.presence() == Presence::present; }));
        agent.end();
        EXPECT_TRUE(eventually([&] { return face.presence() == Presence::absent; }));
        EXPECT_FALSE(face.link().known(Seconds(5)));
    }
    TestAgent next(bus.address());
    EXPECT_TRUE(eventually([&] { return face.presence() == Presence::present; }));
}

TEST(AgentLink, answersWithNothingWhileTheAgentIsAway) {
    LinkedFace face("unix:path=/nowhere");
    EXPECT_FALSE(face.link().known(Seconds(5)));
    std::atomic<int> answered = 0;
    face.with([&](AgentLink& link) {
        link.ask([](Background& background) { return background.status().has_value(); },
                 [&](const std::optional<bool>& answer) { answered = answer ? 1 : 2; });
    });
    EXPECT_TRUE(eventually([&] { return answered == 2; }));
}

TEST(AgentLink, keepsASubscriptionOverAgents) {
    const PrivateBus bus;
    std::atomic<int> subscribed = 0;
    LinkedFace face(bus.address());
    auto token = face.with([&](AgentLink& link) {
        return link.keep([&](Background& background) {
            ++subscribed;
            return background.observeData([] {});
        });
    });
    for (const int times : {1, 2}) {
        TestAgent agent(bus.address());
        EXPECT_TRUE(eventually([&] { return subscribed == times; }));
        agent.end();
        EXPECT_TRUE(eventually([&] { return face.presence() == Presence::absent; }));
    }
    face.with([&](AgentLink&) { token.cancel(); });
}

} // namespace
} // namespace kestrio
