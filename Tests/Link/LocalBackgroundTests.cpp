#include "Tests/Link/LinkBench.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace kestrio {
namespace {

TEST(LocalBackground, saysEverythingThatLivesInMemory) {
    LinkBench bench;
    const auto status = bench.background->status();
    ASSERT_TRUE(status);
    EXPECT_EQ(status->state, TrackingState::tracking);
    EXPECT_EQ(status->pausedUntil, std::nullopt);
    ASSERT_TRUE(status->live) << "what is open at this moment, though nobody looked before";
    EXPECT_EQ(status->live->sample.title, "Draft");
    EXPECT_TRUE(status->alongside.empty());
    EXPECT_EQ(status->unsaved, 0);
    EXPECT_TRUE(status->isAccessibilityGranted);
    EXPECT_EQ(status->version, "1.2.3");
    EXPECT_EQ(status->processIdentifier, 4711);
    EXPECT_EQ(status->dataFolder, "/home/ada/data/Kestrio");
    EXPECT_EQ(status->startedAt, origin);
}

TEST(LocalBackground, refusesPausesThatAreNoLength) {
    LinkBench bench;
    const double infinity = std::numeric_limits<double>::infinity();
    const double untilTheEnd = (distantFuture - bench.time.now()).count();
    for (const double seconds : {0.0, -0.0, -1.0, std::nan(""), infinity, -infinity, 1e300, untilTheEnd + 1}) {
        EXPECT_EQ(bench.background->pause(Seconds(seconds)),
                  "a pause must last longer than 0 seconds, and end before the year 4001")
            << seconds;
        EXPECT_EQ(bench.background->status()->state, TrackingState::tracking) << seconds;
    }
    for (const double seconds : {1e-3, 1.0, 86'400.0, untilTheEnd}) {
        EXPECT_EQ(bench.background->pause(Seconds(seconds)), std::nullopt) << seconds;
        EXPECT_EQ(bench.background->status()->state, TrackingState::paused) << seconds;
    }
}

TEST(LocalBackground, pausesAndResumes) {
    LinkBench bench;
    EXPECT_EQ(bench.background->pause(std::nullopt), std::nullopt);
    EXPECT_EQ(bench.background->status()->pausedUntil, distantFuture);
    bench.time.runPending();
    EXPECT_EQ(bench.background->status()->live, std::nullopt);
    EXPECT_EQ(bench.background->resume(), std::nullopt);
    bench.time.runPending();
    EXPECT_EQ(bench.background->status()->state, TrackingState::tracking);
    EXPECT_EQ(bench.background->status()->pausedUntil, std::nullopt);
}

TEST(LocalBackground, quitsAfterItAnswered) {
    LinkBench bench;
    EXPECT_EQ(bench.background->quit(), std::nullopt);
    EXPECT_EQ(bench.quits, 0);
    bench.pass(0);
    EXPECT_EQ(bench.quits, 1);
    LocalBackground other(*bench.model, {}, {});
    EXPECT_EQ(other.quit(), "This is not a program that can be ended.");
}

TEST(LocalBackground, opensTheDashboardAndTheSettingsWhereTheyWereLeftOrWhereItIsTold) {
    LinkBench bench;
    EXPECT_EQ(bench.background->openDashboard(std::nullopt), std::nullopt);
    EXPECT_EQ(bench.background->openDashboard("timeline"), std::nullopt);
    EXPECT_EQ(bench.background->openSettings(std::nullopt), std::nullopt);
    EXPECT_EQ(bench.background->openSettings("data"), std::nullopt);
    EXPECT_EQ(bench.windows, (std::vector<WindowRequest>{DashboardRequest{}, DashboardRequest{"timeline"},
                                                         SettingsRequest{}, SettingsRequest{"data"}}));
}

TEST(LocalBackground, saysWhyThereIsNoDashboard) {
    LinkBench bench;
    bench.windowFailure = "it is not there";
    EXPECT_EQ(bench.background->openDashboard(std::nullopt), "it is not there");
    EXPECT_EQ(bench.background->openSettings(std::nullopt), "it is not there");
}

TEST(LocalBackground, saysHowBrowsersAreRead) {
    LinkBench bench;
    EXPECT_EQ(bench.background->browsers(), std::vector<BrowserReading>());
    bench.browsers = {{"org.chromium.Chromium", "Chromium", true, false},
                      {"org.mozilla.firefox", "Firefox", false, true}};
    EXPECT_EQ(bench.background->browsers(), bench.browsers);
    int changes = 0;
    auto token = bench.background->observeBrowsers([&] { ++changes; });
    bench.browserChanges.emit();
    token.cancel();
    bench.browserChanges.emit();
    EXPECT_EQ(changes, 1);
    LocalBackground without(*bench.model, {}, {});
    EXPECT_EQ(without.browsers(), std::vector<BrowserReading>());
    const auto none = without.observeBrowsers([] {});
    EXPECT_EQ(without.openDashboard(std::nullopt), "There are no windows here.");
}

TEST(LocalBackground, handsOnWhatTheSystemMonitorSees) {
    LinkBench bench;
    std::function<void(const MonitorReading&)> told;
    bench.observeMonitor = [&](auto receiver) {
        told = std::move(receiver);
        return Subscription([&] { told = nullptr; });
    };
    std::size_t cores = 0;
    auto token = bench.background->observeMonitor([&](const MonitorReading& reading) { cores = reading.cores; });
    MonitorReading reading;
    reading.cores = 12;
    told(reading);
    EXPECT_EQ(cores, 12u);
    token.cancel();
    EXPECT_FALSE(told);
    LocalBackground without(*bench.model, {}, {});
    EXPECT_FALSE(without.observeMonitor([](const auto&) {}).isActive());
}

TEST(LocalBackground, saysWhatItCosts) {
    LinkBench bench;
    EXPECT_EQ(bench.background->ownCost(), AgentCost());
    const OwnCost cost{.span = Seconds(600), .cores = 0.006, .memory = 1, .wakeupsPerSecond = 2};
    bench.ownCost = AgentCost{cost, LoweredPace{origin, origin + Seconds(3600), cost}};
    EXPECT_EQ(bench.background->ownCost(), bench.ownCost);
    LocalBackground without(*bench.model, {}, {});
    EXPECT_EQ(without.ownCost(), AgentCost());
}

TEST(LocalBackground, changesOfOneMomentAreToldTogetherAndOnlyWhenThereAreAny) {
    LinkBench bench;
    std::vector<AgentStatus> told;
    auto token = bench.background->observe([&](const AgentStatus& status) { told.push_back(status); });
    bench.pass(1);
    told.clear();
    bench.background->pause(Seconds(100)); // the state and its end
    bench.time.runPending();
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front().state, TrackingState::paused);
    EXPECT_EQ(told.front().pausedUntil, bench.time.now() + Seconds(100));
    for (const auto& status : told)
        EXPECT_EQ(status.state, TrackingState::paused) << "never back in between";
    bench.pass(10);
    told.clear();
    bench.pass(60);
    EXPECT_TRUE(told.empty());
    token.cancel();
    bench.background->resume();
    bench.pass(10);
    EXPECT_TRUE(told.empty());
}

TEST(LocalBackground, theStateIsToldToWhoAskedForThatAlone) {
    LinkBench bench;
    int count = 0;
    auto token = bench.background->observeState([&] { ++count; });
    bench.show("org.example.editor", "Another");
    bench.pass(10);
    EXPECT_EQ(count, 0);
    bench.background->pause(std::nullopt);
    EXPECT_EQ(count, 2) << "the state and the end of the pause";
    token.cancel();
    bench.background->resume();
    bench.pass(10);
    EXPECT_EQ(count, 2);
}

TEST(LocalBackground, openSessionsAreFollowedOnlyWhileSomebodyObserves) {
    LinkBench bench;
    bench.pass(20);
    EXPECT_EQ(bench.model->live().value(), std::nullopt);
    auto token = bench.background->observe([](const AgentStatus&) {});
    bench.show("org.example.editor", "Letter");
    bench.pass(5);
    ASSERT_TRUE(bench.model->live().value());
    EXPECT_EQ(bench.model->live().value()->sample.title, "Letter");
    token.cancel();
    bench.show("org.example.editor", "Diary");
    bench.pass(5);
    EXPECT_EQ(bench.model->live().value()->sample.title, "Letter");
}

TEST(LocalBackground, deletesActivityOfThePastAndTellsWhenItIsDone) {
    LinkBench bench;
    int told = 0;
    const auto token = bench.background->observeData([&] { ++told; });
    EXPECT_EQ(bench.background->deleteActivity(std::nullopt), std::nullopt);
    EXPECT_EQ(bench.background->deleteActivity(origin), std::nullopt);
    EXPECT_EQ(bench.deletions, (std::vector<std::optional<Date>>{std::nullopt, origin}));
    EXPECT_EQ(told, 2);
    for (const double seconds : {std::nan(""), 1e300})
        EXPECT_EQ(bench.background->deleteActivity(Date(seconds)), "what is deleted must lie in the past") << seconds;
    EXPECT_EQ(bench.deletions.size(), 2U);
    EXPECT_EQ(bench.background->deleteResourceLog(), std::nullopt);
    EXPECT_EQ(bench.logDeletions, 1);
}

} // namespace
} // namespace kestrio
