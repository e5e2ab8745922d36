#include "Kestrio/Link/BackgroundClient.h"
#include "Kestrio/Link/BusNames.h"
#include "Tests/Link/TestAgent.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace kestrio {
namespace {

/// Somebody else on the bus: a script that reads properties and hears signals.
class Script {
public:
    explicit Script(const std::string& address) : bus(address) {
        proxy = sdbus::createProxy(bus.connection(), busNames::service, busNames::object);
        proxy->uponSignal("PropertiesChanged")
            .onInterface("org.freedesktop.DBus.Properties")
            .call([this](const std::string&, const std::map<std::string, sdbus::Variant>& values,
                         const std::vector<std::string>&) {
                ++propertyChanges;
                const std::lock_guard guard(mutex);
                for (const auto& [name, value] : values)
                    if (name == "State")
                        lastState = value.get<std::string>();
            });
        proxy->uponSignal("Changed").onInterface(busNames::interface).call([this](const std::string&) { ++changes; });
        proxy->finishRegistration();
        bus.serve("dev.test.Script");
    }
    ~Script() { bus.stop(); }

    std::string state() {
        const std::lock_guard guard(mutex);
        return lastState;
    }

    ServedBus bus;
    std::unique_ptr<sdbus::IProxy> proxy;
    std::atomic<int> propertyChanges = 0;
    std::atomic<int> changes = 0;
    std::mutex mutex;
    std::string lastState; // guarded by the mutex
};

template <class Value>
Value property(const std::string& address, const char* name) {
    const auto connection = sdbus::createSessionBusConnectionWithAddress(address);
    const auto proxy = sdbus::createProxy(*connection, busNames::service, busNames::object);
    return proxy->getProperty(name).onInterface(busNames::interface).template get<Value>();
}

TEST(BackgroundOnTheBus, everyMethodDoesItsWork) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    ASSERT_TRUE(agent.isOffered());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);

    EXPECT_EQ(client->status(), agent.with([](LinkBench& bench) { return bench.background->status(); }));
    EXPECT_EQ(client->status()->live->sample.title, "Draft");

    EXPECT_EQ(client->pause(Seconds(60)), std::nullopt);
    EXPECT_EQ(client->status()->state, TrackingState::paused);
    EXPECT_EQ(client->status()->pausedUntil,
              agent.with([](LinkBench& bench) { return bench.time.now(); }) + Seconds(60));
    EXPECT_EQ(client->pause(std::nullopt), std::nullopt);
    EXPECT_EQ(client->status()->pausedUntil, distantFuture);
    EXPECT_EQ(client->resume(), std::nullopt);
    agent.with([](LinkBench& bench) { bench.time.runPending(); });
    EXPECT_EQ(client->status()->state, TrackingState::tracking);
}

TEST(BackgroundOnTheBus, windowsAreAskedFor) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_EQ(client->openDashboard(std::nullopt), std::nullopt);
    EXPECT_EQ(client->openDashboard("timeline"), std::nullopt);
    EXPECT_EQ(client->openSettings(std::nullopt), std::nullopt);
    EXPECT_EQ(client->openSettings("data"), std::nullopt);
    EXPECT_EQ(agent.with([](LinkBench& bench) { return bench.windows; }),
              (std::vector<WindowRequest>{DashboardRequest{}, DashboardRequest{"timeline"}, SettingsRequest{},
                                          SettingsRequest{"data"}}));
    agent.with([](LinkBench& bench) { bench.windowFailure = "the dashboard is elsewhere"; });
    EXPECT_EQ(client->openDashboard(std::nullopt), "the dashboard is elsewhere");
    EXPECT_EQ(client->openDashboard("apps"), "the dashboard is elsewhere");
    EXPECT_EQ(client->openSettings(std::nullopt), "the dashboard is elsewhere");
}

TEST(BackgroundOnTheBus, howBrowsersAreReadIsTold) {
    const std::vector<BrowserReading> readings{{"org.chromium.Chromium", "Chromium", true, false},
                                               {"org.mozilla.firefox", "Firefox — “новый”", false, true},
                                               {"com.brave.Browser", "", false, false}};
    const PrivateBus bus;
    TestAgent agent(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_EQ(client->browsers(), std::vector<BrowserReading>());
    agent.with([&](LinkBench& bench) { bench.browsers = readings; });
    EXPECT_EQ(client->browsers(), readings);
    agent.end();
    EXPECT_EQ(client->browsers(), std::nullopt);
}

bool servedUntil(BackgroundClient& client, const std::function<bool()>& condition) {
    return eventually([&] {
        client.serve(Seconds(0.05));
        return condition();
    });
}

TEST(BackgroundOnTheBus, aChangeOfHowBrowsersAreReadIsHeardUntilTheTokenGoes) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    int heard = 0;
    std::optional<std::vector<BrowserReading>> asked;
    auto first = client->observeBrowsers([&] { ++heard; });
    const auto second = client->observeBrowsers([&] { asked = client->browsers(); });
    agent.with([](LinkBench& bench) {
        bench.browsers = {{"org.chromium.Chromium", "Chromium", true, false}};
        bench.browserChanges.emit();
    });
    EXPECT_TRUE(servedUntil(*client, [&] { return heard == 1 && asked && asked->size() == 1; }));
    first.cancel();
    asked.reset();
    agent.with([](LinkBench& bench) { bench.browserChanges.emit(); });
    EXPECT_TRUE(servedUntil(*client, [&] { return asked.has_value(); }));
    EXPECT_EQ(heard, 1);
}

/// An agent of another version: it answers in its own way.
template <class... Told>
std::optional<std::vector<BrowserReading>> browsersAsToldBy(std::vector<Told...> answer) {
    const PrivateBus bus;
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.address());
    const auto object = sdbus::createObject(*connection, busNames::object);
    object->registerMethod("Browsers").onInterface(busNames::interface).implementedAs([&] { return answer; });
    object->finishRegistration();
    connection->requestName(busNames::service);
    connection->enterEventLoopAsync();
    const auto client = BackgroundClient::connect(bus.address());
    auto browsers = client->browsers();
    connection->leaveEventLoop();
    return browsers;
}

TEST(BackgroundOnTheBus, ofAnAgentThatTellsOfBrowsersOtherwiseNothingIsKnown) {
    using Older = sdbus::Struct<std::string, bool, bool>;
    EXPECT_EQ(browsersAsToldBy(std::vector<Older>{Older{"org.chromium.Chromium", true, false}}), std::nullopt);
    EXPECT_EQ(browsersAsToldBy(std::vector<std::string>{"org.chromium.Chromium"}), std::nullopt);
    EXPECT_EQ(browsersAsToldBy(std::vector<std::int32_t>{1, 2}), std::nullopt);
    using Same = sdbus::Struct<std::string, std::string, bool, bool>;
    EXPECT_EQ(browsersAsToldBy(std::vector<Same>{Same{"a", "A", true, false}}),
              (std::vector<BrowserReading>{{"a", "A", true, false}}));
}

TEST(BackgroundOnTheBus, whatTheAgentCostsIsTold) {
    const OwnCost cost{.span = Seconds(600),
                       .cores = 0.00625,
                       .memory = 14'000'000,
                       .wakeupsPerSecond = 3.5,
                       .bytesWrittenPerSecond = 7};
    const AgentCost told{cost, LoweredPace{Date(1'700'000'000), Date(1'700'003'600), cost}};
    const PrivateBus bus;
    TestAgent agent(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_EQ(client->ownCost(), AgentCost()) << "answered, but not measured";
    agent.with([&](LinkBench& bench) { bench.ownCost = told; });
    EXPECT_EQ(client->ownCost(), told);
    agent.end();
    EXPECT_EQ(client->ownCost(), std::nullopt);
}

TEST(BackgroundOnTheBus, aRefusedPauseSaysWhy) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    for (const double seconds :
         {0.0, -5.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300})
        EXPECT_EQ(client->pause(Seconds(seconds)),
                  "a pause must last longer than 0 seconds, and end before the year 4001");
    EXPECT_EQ(client->status()->state, TrackingState::tracking);
}

TEST(BackgroundOnTheBus, everyPropertyCanBeRead) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    EXPECT_EQ(property<std::string>(bus.address(), "State"), "tracking");
    EXPECT_EQ(property<double>(bus.address(), "PausedUntil"), 0);
    EXPECT_EQ(property<std::string>(bus.address(), "Version"), "1.2.3");
    agent.with([](LinkBench& bench) { bench.background->pause(std::nullopt); });
    EXPECT_EQ(property<std::string>(bus.address(), "State"), "paused");
    EXPECT_EQ(property<double>(bus.address(), "PausedUntil"), distantFuture.seconds());
}

TEST(BackgroundOnTheBus, aChangeOfStateIsToldToEverybodyAndReadingsOnlyToThoseWhoWatch) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    Script script(bus.address());
    agent.with([](LinkBench& bench) { bench.background->pause(std::nullopt); });
    EXPECT_TRUE(eventually([&] { return script.propertyChanges == 2 && script.state() == "paused"; }));
    agent.with([](LinkBench& bench) {
        bench.background->resume();
        bench.time.runPending();
        bench.model->pollStatus();
    });
    EXPECT_TRUE(eventually([&] { return script.state() == "tracking"; }));
    EXPECT_EQ(script.changes, 0) << "nobody watches";

    const auto watcher = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(watcher);
    const auto token = watcher->observe([](const AgentStatus&) {});
    agent.with([](LinkBench& bench) { bench.background->pause(std::nullopt); });
    EXPECT_TRUE(eventually([&] { return script.changes >= 1; }));
}

/// Whether the agent's model still follows the open sessions: it then sees a new title.
bool followsOpenSessions(TestAgent& agent, const std::string& newTitle) {
    return agent.with([&](LinkBench& bench) {
        bench.show("org.example.editor", newTitle);
        bench.pass(2);
        bench.model->pollStatus();
        const auto& live = bench.model->live().value();
        return live && live->sample.title == newTitle;
    });
}

TEST(BackgroundOnTheBus, aWatcherWhoLeavesWithoutAWordIsForgotten) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    EXPECT_FALSE(followsOpenSessions(agent, "One"));
    auto watcher = BackgroundClient::connect(bus.address());
    auto second = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(watcher && second);
    auto token = watcher->observe([](const AgentStatus&) {});
    auto again = watcher->observe([](const AgentStatus&) {});
    auto other = second->observe([](const AgentStatus&) {});
    EXPECT_TRUE(followsOpenSessions(agent, "Two"));
    watcher.reset(); // its connection drops, as that of a killed process does
    EXPECT_TRUE(followsOpenSessions(agent, "Three")) << "one still watches";
    second.reset();
    int title = 0;
    EXPECT_TRUE(eventually([&] { return !followsOpenSessions(agent, "Title " + std::to_string(++title)); }));
}

TEST(BackgroundOnTheBus, anAgentMayEndWhileSomebodyWatches) {
    const PrivateBus bus;
    auto agent = std::make_unique<TestAgent>(bus.address());
    auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    std::atomic<int> heard = 0;
    std::atomic<bool> ended = false;
    std::thread face([&] {
        const auto token = client->observe([&](const AgentStatus&) { ++heard; });
        ended = client->run();
    });
    int title = 0;
    EXPECT_TRUE(eventually([&] { // whenever it has begun to watch
        followsOpenSessions(*agent, "Title " + std::to_string(++title));
        return heard > 0;
    }));
    agent.reset();
    face.join();
    EXPECT_TRUE(ended);
    EXPECT_EQ(client->status(), std::nullopt);
    EXPECT_EQ(client->resume(), "Kestrio does not answer");
}

TEST(BackgroundOnTheBus, aClientOfAnAgentThatIsGoneDoesNotWaitForIt) {
    const PrivateBus bus;
    auto agent = std::make_unique<TestAgent>(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    agent.reset();
    EXPECT_TRUE(client->run()) << "it ended";
}

TEST(BackgroundOnTheBus, aBusThatDiesEndsTheWatching) {
    PrivateBus bus;
    const auto agent = std::make_unique<TestAgent>(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    std::atomic<int> heard = 0;
    std::atomic<bool> ended = true;
    std::thread face([&] {
        const auto token = client->observe([&](const AgentStatus&) { ++heard; });
        ended = client->run();
    });
    int title = 0;
    EXPECT_TRUE(eventually([&] {
        followsOpenSessions(*agent, "Title " + std::to_string(++title));
        return heard > 0;
    }));
    bus.kill();
    face.join();
    EXPECT_FALSE(ended);
    EXPECT_EQ(client->status(), std::nullopt);
}

TEST(BackgroundOnTheBus, aSecondAgentIsRefused) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    TestAgent second(bus.address());
    EXPECT_TRUE(agent.isOffered());
    EXPECT_FALSE(second.isOffered());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_TRUE(client->status()) << "the first still answers";
    agent.end();
    TestAgent third(bus.address());
    EXPECT_TRUE(third.isOffered()) << "the name is free again";
}

TEST(BackgroundClient, isAbsentWithoutABusOrAnAgent) {
    const PrivateBus bus;
    EXPECT_FALSE(BackgroundClient::connect(bus.address()));
    EXPECT_FALSE(BackgroundClient::connect(""));
    EXPECT_FALSE(BackgroundClient::connect("nonsense"));
    EXPECT_FALSE(BackgroundClient::connect("unix:path=/nonexistent/bus"));
}

/// Something under the agent's name that answers `Status` with a text, or, without one, never answers anything.
class OtherAgent {
public:
    OtherAgent(const std::string& address, std::optional<std::string> status) : bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), busNames::object);
        if (status)
            object_->registerMethod("Status").onInterface(busNames::interface).implementedAs([status] {
                return *status;
            });
        else
            object_->registerMethod("Status")
                .onInterface(busNames::interface)
                .implementedAs([this](sdbus::Result<std::string>&& result) { texts_.push_back(std::move(result)); });
        for (const char* name : {"Watch", "Resume", "PauseIndefinitely", "OpenDashboard", "Browsers"})
            object_->registerMethod(name)
                .onInterface(busNames::interface)
                .implementedAs([this](sdbus::Result<>&& result) { unanswered_.push_back(std::move(result)); });
        object_->finishRegistration();
        bus_.serve(busNames::service);
    }
    ~OtherAgent() {
        bus_.stop();
        texts_.clear();
        unanswered_.clear();
        object_.reset();
    }

private:
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
    std::vector<sdbus::Result<std::string>> texts_;
    std::vector<sdbus::Result<>> unanswered_;
};

TEST(BackgroundClient, anAgentOfAnotherVersionHasNoStatus) {
    for (const char* text : {"", "null", "{}", "{\"state\":\"tracking\"}", "[1,2", "\xff", "\"tracking\""}) {
        const PrivateBus bus;
        const OtherAgent agent(bus.address(), text);
        const auto client = BackgroundClient::connect(bus.address());
        ASSERT_TRUE(client);
        EXPECT_EQ(client->status(), std::nullopt) << text;
    }
}

TEST(BackgroundClient, anAgentThatHangsHoldsNobodyUpForLong) {
    const PrivateBus bus;
    const OtherAgent agent(bus.address(), std::nullopt);
    std::vector<std::thread> faces; // all wait at the same time
    std::atomic<int> failures = 0;
    const auto face = [&](auto ask) {
        faces.emplace_back([&, ask] {
            const auto client = BackgroundClient::connect(bus.address());
            failures += client && ask(*client) ? 1 : 0;
        });
    };
    face([](BackgroundClient& client) { return client.status() == std::nullopt; });
    face([](BackgroundClient& client) { return client.resume() == "Kestrio does not answer"; });
    face([](BackgroundClient& client) { return client.pause(std::nullopt) == "Kestrio does not answer"; });
    face([](BackgroundClient& client) { return client.openDashboard(std::nullopt) == "Kestrio does not answer"; });
    face([](BackgroundClient& client) { return client.browsers() == std::nullopt; });
    face([](BackgroundClient& client) {
        const auto token = client.observe([](const AgentStatus&) {});
        return true;
    });
    for (auto& thread : faces)
        thread.join();
    EXPECT_EQ(failures, 6);
}

TEST(BackgroundClient, aTokenMayOutliveTheClient) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    const auto token = client->observe([](const AgentStatus&) {});
    client.reset();
}

TEST(BackgroundOnTheBus, whatIsDeletedIsAskedFor) {
    const PrivateBus bus;
    TestAgent agent(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_EQ(client->deleteActivity(origin), std::nullopt);
    EXPECT_EQ(client->deleteActivity(std::nullopt), std::nullopt);
    EXPECT_EQ(client->deleteActivity(distantFuture), "what is deleted must lie in the past");
    EXPECT_EQ(client->deleteResourceLog(), std::nullopt);
    EXPECT_EQ(agent.with([](LinkBench& bench) { return bench.deletions; }),
              (std::vector<std::optional<Date>>{origin, std::nullopt}));
    EXPECT_EQ(agent.with([](LinkBench& bench) { return bench.logDeletions; }), 1);
}

} // namespace
} // namespace kestrio
