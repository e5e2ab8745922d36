// Starting, being switched on and off, timers, notices and settings.
#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Optimizer/OptimizerBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using tindra::AppTier;
using tindra::OptimizerMode;
using Bench = OptimizerBench;
using Texts = std::vector<std::string>;
using PIDs = std::vector<pid_t>;

TEST(OptimizerLife, itIsOffUntilThePersonSwitchesItOn) {
    Bench bench;
    auto& optimizer = bench.make();
    optimizer.start();
    bench.time.advance(Seconds(3600));
    EXPECT_FALSE(optimizer.isEnabled().value());
    EXPECT_EQ(bench.machine.watchers, 0);
    EXPECT_EQ(bench.machine.recoveries, 1) << "what an earlier run left is given back all the same";
    EXPECT_EQ(bench.machine.records, 0);
}

TEST(OptimizerLife, startingRecoversEarlierRunsOnceAndTellsHowMany) {
    const std::pair<std::size_t, Texts> cases[] = {
        {0, {}},
        {1, {"recovered: Resumed 1 process an earlier run had left frozen or slowed."}},
        {7, {"recovered: Resumed 7 processes an earlier run had left frozen or slowed."}},
    };
    for (const auto& [left, events] : cases) {
        Bench bench;
        bench.machine.leftByEarlierRuns = left;
        auto& optimizer = bench.make();
        optimizer.start();
        optimizer.start();
        EXPECT_EQ(bench.events, events);
        EXPECT_EQ(bench.machine.recoveries, 1);
    }
}

TEST(OptimizerLife, switchingOnTellsTheModeStartsTheWatcherAndLooksAtOnce) {
    for (const auto& [mode, text] : {std::pair(OptimizerMode::balanced, "optimizerOn: Balanced mode."),
                                     std::pair(OptimizerMode::focus, "optimizerOn: Focus mode.")}) {
        Bench bench;
        auto& optimizer = bench.make();
        optimizer.setTuning({.mode = mode});
        optimizer.start();
        bench.use(Bench::chat, 1);
        optimizer.setEnabled(true);
        optimizer.setEnabled(true);
        EXPECT_EQ(bench.events, (Texts{text, "efficient chat: Using 1.0 cores in the background."}));
        EXPECT_EQ(bench.machine.watchers, 1);
        EXPECT_TRUE(bench.settings.boolean(Optimizer::enabledKey));
        EXPECT_TRUE(optimizer.isEnabled().value());
    }
}

TEST(OptimizerLife, switchingOffPutsEverythingBackEvenAmidAWake) {
    Bench bench;
    auto& optimizer = bench.beginFrozen(AppTier::checkPeriodically);
    bench.tickAfter(900);
    bench.forget();
    optimizer.setEnabled(false);
    optimizer.setEnabled(false);
    EXPECT_EQ(bench.events, (Texts{"thaw chat: Resumed: optimization was switched off or the app quit.",
                                   "optimizerOff: Everything was put back."}));
    EXPECT_FALSE(bench.settings.boolean(Optimizer::enabledKey));
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
    bench.forget();
    bench.time.advance(Seconds(7200));
    EXPECT_EQ(bench.machine.signals, Texts{}) << "both timers are gone";
}

TEST(OptimizerLife, whoeverFollowsTheSwitchFindsItDone) {
    Bench bench;
    auto& optimizer = bench.beginFrozen();
    std::vector<std::size_t> frozen;
    const auto token = optimizer.isEnabled().observe([&](bool) { frozen.push_back(optimizer.frozenCount()); });
    optimizer.setEnabled(false);
    EXPECT_EQ(frozen, std::vector<std::size_t>{0});
}

TEST(OptimizerLife, onAMachineThatHasRunForDaysNothingIsOverdueAtOnce) {
    Bench bench;
    bench.machine.applications[1].launched = Bench::origin - Seconds(1e6);
    auto& optimizer = bench.make();
    optimizer.start();
    optimizer.setTier(AppTier::canWait, Bench::chat);
    optimizer.setEnabled(true);
    bench.tickAfter(599);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    bench.tickAfter(1);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
}

TEST(OptimizerLife, anApplicationThatStartsLaterCountsFromItsLaunch) {
    Bench bench;
    bench.begin();
    bench.machine.launch("org.example.late", 500, 0, bench.time.now() + Seconds(100));
    bench.optimizer->setTier(AppTier::canWait, "org.example.late");
    bench.tickAfter(699);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    bench.tickAfter(1);
    EXPECT_EQ(bench.events, Texts{"freeze late: Idle for 10m. 1 process. (0)"});
}

TEST(OptimizerLife, anApplicationOfUnknownAgeThatWasNeverInFrontIsOverdueAtOnce) {
    Bench bench;
    bench.begin();
    bench.machine.launch("org.example.late", 500);
    bench.optimizer->setTier(AppTier::canWait, "org.example.late");
    EXPECT_EQ(bench.events, Texts{"freeze late: Idle for 0s. 1 process. (0)"});
}

TEST(OptimizerLife, aPassComesEveryFiveSecondsOrUpToOneLater) {
    Bench bench;
    bench.begin();
    bench.machine.records = 0;
    bench.time.advance(Seconds(60));
    EXPECT_GE(bench.machine.records, 10);
    EXPECT_LE(bench.machine.records, 12);
}

// The front watch.

TEST(OptimizerLife, aFrozenApplicationThatComesToTheFrontWithoutANoticeWaitsASecondAtMost) {
    Bench bench;
    bench.beginFrozen();
    bench.time.advance(Seconds(12));
    bench.machine.front = Bench::chatPID;
    bench.time.advance(Seconds(1.2));
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
}

TEST(OptimizerLife, aSlowedApplicationInFrontIsCaughtTooAndOneThatIsNotHeldIsNot) {
    Bench bench;
    bench.begin();
    bench.optimizer->moveToEfficiencyCores(bench.machine.application(Bench::chatPID));
    bench.forget();
    bench.machine.front = Bench::mailPID;
    bench.time.advance(Seconds(2));
    EXPECT_EQ(bench.machine.signals, Texts{});
    bench.machine.front = Bench::chatPID;
    bench.time.advance(Seconds(1.2));
    EXPECT_EQ(bench.machine.slowed(), PIDs{});
    EXPECT_EQ(bench.events, Texts{});
}

TEST(OptimizerLife, theWatchRestsWhileNothingIsHeld) {
    struct CountingMachine final : Workspace {
        explicit CountingMachine(Workspace& real_) : real(real_) {}
        std::optional<RunningApplication> frontmostApplication() override {
            ++asked;
            return real.frontmostApplication();
        }
        std::vector<RunningApplication> runningApplications() override { return real.runningApplications(); }
        Subscription observe(std::function<void(WorkspaceNotice)> receiver) override {
            return real.observe(std::move(receiver));
        }
        std::optional<std::string> applicationName(const std::string&) override { return {}; }
        std::optional<std::string> applicationIcon(const std::string&) override { return {}; }
        bool open(const std::string&) override { return false; }
        bool terminate(const RunningApplication&) override { return false; }
        Workspace& real;
        int asked = 0;
    };
    Bench bench;
    CountingMachine machine{bench.machine};
    bench.settings.set(Optimizer::enabledKey, true);
    Optimizer optimizer({bench.time, bench.queue, bench.calendar, machine, bench.settings, bench.machine},
                        {.ownBundleID = Bench::own});
    optimizer.start();
    machine.asked = 0;
    bench.time.advance(Seconds(60));
    EXPECT_LE(machine.asked, 12);
    optimizer.moveToEfficiencyCores(bench.machine.application(Bench::chatPID));
    machine.asked = 0;
    bench.time.advance(Seconds(60));
    EXPECT_GE(machine.asked, 60);
}

// Notices.

TEST(OptimizerLife, theNoticeOfAnActivationGivesBackAtOnce) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.activate(Bench::chatPID);
    bench.time.runPending();
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
    EXPECT_EQ(bench.machine.signals, (Texts{"continue 202", "continue 201", "continue 200"}));
    EXPECT_EQ(bench.control(Bench::chat), "running");
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
}

TEST(OptimizerLife, leavingAnApplicationIsTheBeginningOfItsIdleTime) {
    Bench bench;
    bench.begin();
    bench.machine.activate(Bench::chatPID);
    bench.time.runPending();
    EXPECT_EQ(bench.optimizer->lastActive(Bench::chat), Bench::origin);
    bench.time.jumpWallClock(Seconds(42));
    bench.machine.activate(Bench::mailPID);
    bench.time.runPending();
    EXPECT_EQ(bench.optimizer->lastActive(Bench::chat), Bench::origin + Seconds(42));
    bench.time.jumpWallClock(Seconds(8));
    bench.machine.front.reset();
    bench.machine.announce(WorkspaceNotice::activated);
    bench.time.runPending();
    EXPECT_EQ(bench.optimizer->lastActive(Bench::mail), Bench::origin + Seconds(50));
}

TEST(OptimizerLife, leavingAnApplicationWithoutANoticeIsSeenByTheNextPass) {
    Bench bench;
    bench.begin();
    bench.machine.front = Bench::chatPID;
    bench.tickAfter(5);
    bench.machine.front = Bench::mailPID;
    bench.tickAfter(5);
    EXPECT_EQ(bench.optimizer->lastActive(Bench::chat), Bench::origin + Seconds(10));
}

TEST(OptimizerLife, activatingAnotherProcessOfTheApplicationLeavesTheHeldOneToTheNextPass) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.launch(Bench::chat, 400);
    bench.machine.activate(400);
    bench.time.runPending();
    EXPECT_EQ(bench.events, Texts{});
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
}

TEST(OptimizerLife, anApplicationThatEndedIsForgotten) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.quit(Bench::chatPID);
    bench.machine.announce(WorkspaceNotice::terminated);
    bench.time.runPending();
    EXPECT_EQ(bench.held(Bench::chat), nullptr);
    EXPECT_EQ(bench.optimizer->lastActive(Bench::chat), std::nullopt);
    EXPECT_NE(bench.optimizer->lastActive(Bench::mail), std::nullopt);
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
    EXPECT_EQ(bench.events, Texts{});
    EXPECT_EQ(bench.machine.signals, Texts{});
}

TEST(OptimizerLife, aWindowSystemThatNamesNoApplicationAtAllEndsNone) {
    Bench bench;
    bench.beginFrozen();
    const auto applications = std::exchange(bench.machine.applications, {});
    bench.machine.announce(WorkspaceNotice::terminated);
    bench.time.runPending();
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_NE(bench.optimizer->lastActive(Bench::chat), std::nullopt);
}

TEST(OptimizerLife, aNoticeThatArrivesAfterItWasDroppedReachesNobody) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.activate(Bench::chatPID);
    bench.optimizer.reset();
    bench.time.runPending();
    bench.machine.activate(Bench::editorPID);
    bench.time.advance(Seconds(10));
    EXPECT_EQ(bench.machine.stopped(), PIDs{}) << "dropping it gives everything back";
}

// Samples.

TEST(OptimizerLife, samplesGoToTheAlertsWithTheFrontWhileSwitchedOn) {
    Bench bench;
    auto& optimizer = bench.begin();
    bench.use(Bench::chat, 1);
    bench.machine.front.reset();
    bench.use(Bench::chat, 1);
    optimizer.setEnabled(false);
    bench.use(Bench::chat, 1);
    EXPECT_EQ(bench.alertChecks, (std::vector<std::optional<std::string>>{Bench::editor, std::nullopt}));
}

// Settings.

TEST(OptimizerLife, rulesAndTuningAreStoredWhenTheyChangeAndReadAtTheNextStart) {
    Bench bench;
    auto& optimizer = bench.begin(AppTier::checkPeriodically);
    optimizer.setTuning({.idleMinutes = 25});
    Bench other;
    for (const auto& key : bench.settings.storedKeys())
        other.settings.set(key, bench.settings.value(key));
    EXPECT_EQ(other.make().rules().value(), optimizer.rules().value());
    EXPECT_EQ(other.optimizer->tuning().value(), optimizer.tuning().value());
    EXPECT_TRUE(other.optimizer->isEnabled().value());
}

TEST(OptimizerLife, whatCannotBeReadIsReplacedByTheDefaults) {
    const SettingValue cases[] = {SettingBytes{"{}"}, SettingBytes{""}, SettingBytes{"\xff"}, true, std::string("{}")};
    for (const auto& stored : cases) {
        Bench bench;
        bench.settings.set(Optimizer::rulesKey, stored);
        bench.settings.set(Optimizer::tuningKey, stored);
        bench.make();
        EXPECT_EQ(bench.optimizer->rules().value(), tindra::OptimizerRules{});
        EXPECT_EQ(bench.optimizer->tuning().value(), tindra::OptimizerTuning{});
    }
}

TEST(OptimizerLife, whatCannotBeEncodedLeavesTheStoredValue) {
    Bench bench;
    auto& optimizer = bench.begin();
    optimizer.setTuning({.idleMinutes = 25});
    const auto stored = bench.settings.value(Optimizer::tuningKey);
    optimizer.setTuning({.idleMinutes = std::numeric_limits<double>::infinity()});
    EXPECT_EQ(bench.settings.value(Optimizer::tuningKey), stored);
}

TEST(OptimizerLife, anEqualValueIsNeitherStoredNorLookedAtAgain) {
    Bench bench;
    auto& optimizer = bench.begin();
    int told = 0;
    const auto token = bench.settings.observe([&](const std::string&) { ++told; });
    const int records = bench.machine.records;
    optimizer.setTuning(optimizer.tuning().value());
    optimizer.setRules(optimizer.rules().value());
    EXPECT_EQ(told, 0);
    EXPECT_EQ(bench.machine.records, records);
}

TEST(OptimizerLife, changedTuningIsActedUponAtOnce) {
    Bench bench;
    auto& optimizer = bench.begin(AppTier::canWait);
    bench.tickAfter(200);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    optimizer.setTuning({.mode = OptimizerMode::focus});
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
}

TEST(OptimizerLife, settingsThatCannotBeWrittenDoNotHinderIt) {
    Bench bench;
    auto& optimizer = bench.begin();
    bench.settings.refuseWrites(true);
    const ExpectedLog log;
    optimizer.setTier(AppTier::canWait, Bench::chat);
    bench.tickAfter(600);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    optimizer.setEnabled(false);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

} // namespace
} // namespace kestrio
