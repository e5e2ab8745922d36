#include "Kestrio/Link/BackgroundClient.h"
#include "Tests/Link/TestAgent.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

MonitorReading readingNumber(std::size_t number) {
    MonitorReading reading;
    reading.cores = number;
    reading.state.snapshot.emplace().cpu = 0.5;
    reading.state.insights = {{"ok", SystemInsight::Level::good, "checkmark.circle", "Everything looks healthy."}};
    return reading;
}

/// A monitor that tells what the test says, and counts who looks.
struct ScriptedFeed {
    Signal<MonitorReading> readings;
    int looking = 0;
    int everLooked = 0;

    auto observe() {
        return [this](std::function<void(const MonitorReading&)> receiver) {
            ++looking;
            ++everLooked;
            auto token = std::make_shared<Subscription>(readings.subscribe(std::move(receiver)));
            return Subscription([this, token] {
                token->cancel();
                --looking;
            });
        };
    }
};

class MonitorOnTheBus : public testing::Test {
protected:
    MonitorOnTheBus() {
        agent->with([this](LinkBench& bench) { bench.observeMonitor = feed.observe(); });
    }
    ~MonitorOnTheBus() override { agent.reset(); }

    void tell(std::size_t number) {
        agent->with([&](LinkBench&) { feed.readings.emit(readingNumber(number)); });
    }
    int looking() {
        return agent->with([&](LinkBench&) { return feed.looking; });
    }
    /// Serves the client until so many readings were heard.
    bool hears(BackgroundClient& listening, std::size_t count) {
        for (int i = 0; i < 300 && heard.size() < count; ++i)
            listening.serve(Seconds(0.1));
        return heard.size() == count;
    }
    std::function<void(const MonitorReading&)> receiver() {
        return [this](const MonitorReading& reading) { heard.push_back(reading); };
    }

    PrivateBus bus;
    ScriptedFeed feed; // on the agent's queue
    std::unique_ptr<TestAgent> agent = std::make_unique<TestAgent>(bus.address());
    std::unique_ptr<BackgroundClient> client = BackgroundClient::connect(bus.address());
    std::vector<MonitorReading> heard;
};

TEST_F(MonitorOnTheBus, isToldToWhoLooksAsItIs) {
    ASSERT_TRUE(client);
    EXPECT_EQ(looking(), 0);
    auto token = client->observeMonitor(receiver());
    EXPECT_TRUE(token.isActive());
    EXPECT_EQ(looking(), 1);
    tell(1);
    tell(2);
    ASSERT_TRUE(hears(*client, 2));
    EXPECT_EQ(heard, (std::vector{readingNumber(1), readingNumber(2)}));
    token.cancel();
    EXPECT_TRUE(eventually([&] { return looking() == 0; }));
}

TEST_F(MonitorOnTheBus, isToldToNobodyElse) {
    const auto other = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client && other);
    std::vector<MonitorReading> overheard;
    auto past = other->observeMonitor([&](const auto& reading) { overheard.push_back(reading); });
    const auto token = client->observeMonitor(receiver());
    EXPECT_EQ(looking(), 2);
    past.cancel();
    EXPECT_TRUE(eventually([&] { return looking() == 1; }));
    tell(1);
    EXPECT_TRUE(hears(*client, 1));
    EXPECT_TRUE(other->status()) << "what was sent before has come";
    other->serve(Seconds(0));
    EXPECT_TRUE(overheard.empty());
}

TEST_F(MonitorOnTheBus, hasOneWatchForAllThatAClientObserves) {
    ASSERT_TRUE(client);
    int others = 0;
    auto first = client->observeMonitor([&](const auto&) { ++others; });
    auto second = client->observeMonitor(receiver());
    EXPECT_EQ(looking(), 1);
    tell(1);
    EXPECT_TRUE(hears(*client, 1));
    EXPECT_EQ(others, 1);
    first.cancel();
    tell(2);
    EXPECT_TRUE(hears(*client, 2));
    EXPECT_EQ(others, 1);
    EXPECT_EQ(looking(), 1);
    second.cancel();
    EXPECT_TRUE(eventually([&] { return looking() == 0; }));
    const auto again = client->observeMonitor(receiver());
    EXPECT_EQ(looking(), 1);
    tell(3);
    EXPECT_TRUE(hears(*client, 3));
}

TEST_F(MonitorOnTheBus, forgetsAWatcherWhoLeavesWithoutAWord) {
    ASSERT_TRUE(client);
    auto token = client->observeMonitor(receiver());
    EXPECT_EQ(looking(), 1);
    client.reset(); // its connection drops, as that of a killed process does
    EXPECT_TRUE(eventually([&] { return looking() == 0; }));
    token.cancel(); // of a client that is gone
    tell(1);
    EXPECT_TRUE(heard.empty());
}

TEST_F(MonitorOnTheBus, isObservedInVainWhereNobodyAnswers) {
    ASSERT_TRUE(client);
    auto token = client->observeMonitor(receiver());
    agent.reset();
    token.cancel(); // told to nobody
    EXPECT_FALSE(client->observeMonitor(receiver()).isActive());
}

} // namespace
} // namespace kestrio
