#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Link/BackgroundClient.h"
#include "Kestrio/Link/BusNames.h"
#include "Kestrio/Link/LocalOptimizer.h"
#include "Kestrio/Link/OptimizerService.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Tests/Optimizer/OptimizerBench.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

using tindra::AppTier;
using Bench = OptimizerBench;
using PIDs = std::vector<pid_t>;

/// An optimizer over a made-up machine on a bus, all in the work of one real queue.
class ServedOptimizer {
public:
    explicit ServedOptimizer(const std::string& address) {
        main_.sync([&] {
            bench_ = std::make_unique<Bench>();
            bench_->begin();
            local_.emplace(bench_->queue, *bench_->optimizer, bench_->machine);
            connection_ = BusConnection::open(main_, address);
            connection_->perform([this](sdbus::IConnection& connection) {
                service_ = std::make_unique<OptimizerService>(connection, *local_);
                connection.requestName(busNames::service);
            });
        });
    }
    ~ServedOptimizer() {
        main_.sync([this] {
            service_.reset();
            connection_.reset();
            bench_.reset();
        });
    }
    ServedOptimizer(const ServedOptimizer&) = delete;
    ServedOptimizer& operator=(const ServedOptimizer&) = delete;

    template <class Work>
    auto with(Work work) {
        return main_.sync([&] { return work(*bench_); });
    }

private:
    WorkerQueue main_{"main"};
    std::unique_ptr<Bench> bench_;
    std::optional<LocalOptimizer> local_;
    std::unique_ptr<BusConnection> connection_;
    std::unique_ptr<OptimizerService> service_;
};

TEST(OptimizerOnTheBus, answersAndActsAsItDoesAtHome) {
    const PrivateBus bus;
    ServedOptimizer served(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    auto& optimizer = *client->optimizer();
    EXPECT_TRUE(optimizer.status()->isEnabled);
    EXPECT_EQ(optimizer.plan()->size(), 3U);

    EXPECT_EQ(optimizer.freeze(Bench::chat), std::nullopt);
    EXPECT_EQ(served.with([](Bench& bench) { return bench.machine.stopped(); }), (PIDs{200, 201, 202}));
    EXPECT_EQ(optimizer.status()->held.at(0).frozen, 3);
    EXPECT_EQ(optimizer.resume(Bench::chat), std::nullopt);
    EXPECT_EQ(optimizer.slow(Bench::chat), std::nullopt);
    EXPECT_EQ(served.with([](Bench& bench) { return bench.machine.slowed(); }), (PIDs{200, 201, 202}));
    EXPECT_EQ(optimizer.resumeAll(), std::nullopt);
    EXPECT_EQ(optimizer.quit(Bench::mail), std::nullopt);
    EXPECT_EQ(served.with([](Bench& bench) { return bench.machine.terminated; }), (PIDs{300}));

    EXPECT_EQ(optimizer.setTier(Bench::chat, AppTier::canWait), std::nullopt);
    EXPECT_EQ(optimizer.status()->rules.tiers.at(Bench::chat), AppTier::canWait);
    EXPECT_EQ(optimizer.setTier(Bench::chat, std::nullopt), std::nullopt);
    EXPECT_EQ(optimizer.setOverride(Bench::chat, AppTier::checkPeriodically, 1.5), std::nullopt);
    EXPECT_EQ(optimizer.status()->rules.overrides.size(), 1U);
    EXPECT_EQ(optimizer.removeOverride(Bench::chat), std::nullopt);
    EXPECT_EQ(optimizer.setTuning({.wakeSeconds = 30}), std::nullopt);
    tindra::OptimizerRules rules;
    rules.neverTouch = {Bench::mail};
    EXPECT_EQ(optimizer.setRules(rules), std::nullopt);
    EXPECT_EQ(optimizer.status()->tuning.wakeSeconds, 30);
    EXPECT_EQ(optimizer.status()->rules, rules);
    EXPECT_EQ(optimizer.setEnabled(false), std::nullopt);
    EXPECT_FALSE(optimizer.status()->isEnabled);
}

TEST(OptimizerOnTheBus, saysInItsOwnWordsWhyNot) {
    const PrivateBus bus;
    ServedOptimizer served(bus.address());
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_EQ(client->optimizer()->freeze(Bench::editor), "editor is in front");
    EXPECT_EQ(client->optimizer()->freeze("\xFF"), "\uFFFD does not run, or has no window");
    EXPECT_EQ(client->optimizer()->setOverride(Bench::chat, AppTier::canWait, -1),
              "a rule for now lasts for more than 0 hours, and a year at most");
}

TEST(OptimizerOnTheBus, refusesWhatScriptsGetWrong) {
    const PrivateBus bus;
    ServedOptimizer served(bus.address());
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.address());
    const auto proxy = sdbus::createProxy(*connection, busNames::service, busNames::optimizerObject);
    const auto failure = [&](const char* method, auto... arguments) -> std::string {
        try {
            proxy->callMethod(method).onInterface(busNames::optimizerInterface).withArguments(arguments...);
            return "none";
        } catch (const sdbus::Error& error) {
            return error.getName() + ": " + error.getMessage();
        }
    };
    const std::string invalid = std::string(busNames::errorInvalid) + ": ";
    EXPECT_EQ(failure("SetTier", std::string("a"), std::string("often")),
              invalid + "that is no tier: alwaysOn, checkPeriodically or canWait");
    EXPECT_EQ(failure("SetOverride", std::string("a"), std::string(""), 1.0),
              invalid + "that is no tier: alwaysOn, checkPeriodically or canWait");
    EXPECT_EQ(failure("SetTuning", std::string("{}")), invalid + "that is no tuning");
    EXPECT_EQ(failure("SetRules", std::string("nonsense")), invalid + "that is no set of rules");
}

TEST(OptimizerOnTheBus, isAbsentWithoutAnAgentThatHasOne) {
    const PrivateBus bus;
    const auto connection = sdbus::createSessionBusConnectionWithAddress(bus.address());
    connection->requestName(busNames::service);
    connection->enterEventLoopAsync();
    const auto client = BackgroundClient::connect(bus.address());
    ASSERT_TRUE(client);
    EXPECT_EQ(client->optimizer()->status(), std::nullopt);
    EXPECT_EQ(client->optimizer()->plan(), std::nullopt);
    EXPECT_EQ(client->optimizer()->resumeAll(), "Kestrio does not answer");
}

} // namespace
} // namespace kestrio
