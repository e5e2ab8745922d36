// The passes of the optimizer: what it finds, decides and does, and the words in which it tells of it.
#include "Tests/Optimizer/OptimizerBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using tindra::AppTier;
using tindra::OptimizerMode;
using tindra::OptimizerTuning;
using Bench = OptimizerBench;
using Texts = std::vector<std::string>;
using PIDs = std::vector<pid_t>;

TEST(Optimizer, anIdleApplicationThatCanWaitIsFrozenWithAllItsProcesses) {
    Bench bench;
    auto& optimizer = bench.begin(AppTier::canWait);
    bench.use(Bench::chat, 0, 512);
    bench.tickAfter(599);
    EXPECT_EQ(bench.machine.signals, Texts{});
    bench.tickAfter(1);
    EXPECT_EQ(bench.machine.signals, (Texts{"stop 200", "stop 201", "stop 202"}));
    EXPECT_EQ(bench.events, Texts{"freeze chat: Idle for 10m. 3 processes. (512)"});
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 600, lastWake: nil)");
    EXPECT_EQ(bench.held(Bench::chat)->name, "chat");
    EXPECT_EQ(bench.held(Bench::chat)->pid, Bench::chatPID);
    EXPECT_EQ(bench.machine.journalFrozen, bench.held(Bench::chat)->frozen);
    EXPECT_EQ(optimizer.frozenCount(), 1U);
    EXPECT_EQ(optimizer.frozenMemory(), 512U);
    EXPECT_EQ(optimizer.logStates(), (std::map<std::string, std::int64_t>{{Bench::chat, 2}}));
}

TEST(Optimizer, oneStoppedProcessIsNotCalledProcesses) {
    Bench bench;
    bench.begin().setTier(AppTier::canWait, Bench::mail);
    bench.tickAfter(600);
    EXPECT_EQ(bench.events, Texts{"freeze mail: Idle for 10m. 1 process. (0)"});
}

TEST(Optimizer, anApplicationThatNobodyClassifiedIsNeverFrozen) {
    Bench bench;
    bench.begin();
    bench.tickAfter(1e6);
    EXPECT_EQ(bench.machine.signals, Texts{});
    EXPECT_TRUE(bench.optimizer->managed().value().empty());
}

TEST(Optimizer, nothingIsTouchedWhileItIsSwitchedOff) {
    Bench bench;
    auto& optimizer = bench.make();
    optimizer.start();
    optimizer.setTier(AppTier::canWait, Bench::chat);
    bench.use(Bench::chat, 4);
    bench.tickAfter(1e6);
    optimizer.freezeNow(bench.machine.application(Bench::chatPID));
    optimizer.moveToEfficiencyCores(bench.machine.application(Bench::chatPID));
    bench.time.advance(Seconds(60));
    EXPECT_EQ(bench.machine.signals, Texts{});
    EXPECT_EQ(bench.events, Texts{});
    EXPECT_TRUE(bench.alertChecks.empty());
}

TEST(Optimizer, theApplicationInFrontIsNeverFrozenHoweverLongTheNoticeOfTheSwitchIsOverdue) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.machine.front = Bench::chatPID; // no notice
    bench.tickAfter(1e6);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

TEST(Optimizer, nothingIsFrozenOnAHostThatNeverTellsWhichApplicationIsInFront) {
    Bench bench;
    bench.machine.front.reset();
    bench.begin(AppTier::canWait);
    bench.tickAfter(1e6);
    bench.optimizer->freezeNow(bench.machine.application(Bench::chatPID));
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

TEST(Optimizer, anApplicationThatComesToTheFrontBetweenDecisionAndStopIsNotFrozen) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.time.jumpWallClock(Seconds(600));
    // Asked for the media between the look at the front and the stops.
    bench.optimizer.reset();
    Optimizer optimizer(
        Optimizer::Host{bench.time, bench.queue, bench.calendar, bench.machine, bench.settings, bench.machine},
        Optimizer::Collaborators{.ownBundleID = Bench::own, .mediaUse = [&] {
                                     bench.machine.front = Bench::chatPID;
                                     return MediaUse{};
                                 }});
    optimizer.start();
    bench.machine.front = Bench::editorPID;
    bench.time.jumpWallClock(Seconds(600));
    optimizer.tick();
    EXPECT_EQ(bench.machine.signals, Texts{});
    EXPECT_TRUE(optimizer.managed().value().empty());
}

TEST(Optimizer, anApplicationThatComesToTheFrontAmidTheStopIsGivenBackRightAfterThePass) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.machine.beforeStop = [&] { bench.machine.activate(Bench::chatPID); };
    bench.tickAfter(600);
    bench.machine.beforeStop = [] {};
    bench.time.runPending();
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_EQ(bench.events,
              (Texts{"freeze chat: Idle for 10m. 3 processes. (0)", "thaw chat: Resumed: you opened it."}));
}

TEST(Optimizer, whatCannotBeStoppedIsLeftOutAndDoesNotStopTheOthers) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.machine.unstoppable = {200, 202};
    bench.tickAfter(600);
    EXPECT_EQ(bench.machine.signals, Texts{"stop 201"});
    EXPECT_EQ(bench.held(Bench::chat)->frozen.size(), 1U);
    EXPECT_EQ(bench.events, Texts{"freeze chat: Idle for 10m. 1 process. (0)"});
}

TEST(Optimizer, whereNothingCouldBeStoppedTheNextPassTriesAgain) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.machine.unstoppable = {200, 201, 202};
    bench.tickAfter(600);
    EXPECT_TRUE(bench.optimizer->managed().value().empty());
    EXPECT_EQ(bench.events, Texts{});
    bench.machine.unstoppable.clear();
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"freeze chat: Idle for 10m. 3 processes. (0)"});
}

TEST(Optimizer, nothingIsHeldThatTheJournalCannotTell) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.machine.isJournalWritable = false;
    bench.use(Bench::mail, 2);
    bench.tickAfter(600);
    EXPECT_EQ(bench.machine.signals, Texts{});
    EXPECT_TRUE(bench.optimizer->managed().value().empty());
}

struct ThawCase {
    const char* what;
    std::function<void(Bench&)> happens;
    Texts events;
};

TEST(Optimizer, aFrozenApplicationIsGivenBackWithTheReason) {
    const ThawCase cases[] = {
        {"opened, without a notice",
         [](Bench& bench) { bench.machine.front = Bench::chatPID; },
         {"thaw chat: Resumed: you opened it."}},
        {"always on",
         [](Bench& bench) { bench.optimizer->setTier(AppTier::alwaysOn, Bench::chat); },
         {"thaw chat: Resumed: it's always on now."}},
        {"no tier any more",
         [](Bench& bench) { bench.optimizer->setTier(std::nullopt, Bench::chat); },
         {"thaw chat: Resumed: it's always on now."}},
        {"records",
         [](Bench& bench) { bench.media.recording = {Bench::chat}; },
         {"thaw chat: Resumed: it started playing, recording or downloading."}},
        {"plays",
         [](Bench& bench) { bench.media.playing = {Bench::chat}; },
         {"thaw chat: Resumed: it started playing, recording or downloading."}},
        {"shows video",
         [](Bench& bench) { bench.media.keepDisplayAwake = {Bench::chat}; },
         {"thaw chat: Resumed: it started playing, recording or downloading."}},
        {"downloads",
         [](Bench& bench) { bench.media.keepAwake = {Bench::chat}; },
         {"thaw chat: Resumed: it started playing, recording or downloading."}},
        {"never touch",
         [](Bench& bench) {
             auto rules = bench.optimizer->rules().value();
             rules.neverTouch = {Bench::chat};
             bench.optimizer->setRules(rules);
         },
         {"thaw chat: Resumed: it started playing, recording or downloading."}},
        {"refused by the host",
         [](Bench& bench) { bench.refusals[Bench::chat] = "a debugger holds it."; },
         {"thaw chat: Resumed: a debugger holds it."}},
        {"nothing", [](Bench&) {}, {}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        Bench bench;
        bench.beginFrozen();
        row.happens(bench);
        bench.tickAfter(5);
        EXPECT_EQ(bench.events, row.events);
        EXPECT_EQ(bench.machine.stopped().empty(), !row.events.empty());
        EXPECT_EQ(bench.optimizer->managed().value().empty(), !row.events.empty());
        if (!row.events.empty()) {
            // Helpers before the main process.
            EXPECT_EQ(bench.machine.signals, (Texts{"continue 202", "continue 201", "continue 200"}));
        }
        EXPECT_EQ(bench.machine.journalFrozen.empty(), !row.events.empty());
    }
}

struct ProtectionCase {
    const char* what;
    std::function<void(Bench&)> set;
    bool isSlowed; // when busy in the background; what is protected from that keeps its performance cores
};

TEST(Optimizer, whatIsProtectedIsNotFrozenAndSomeOfItIsNotSlowedEither) {
    const ProtectionCase cases[] = {
        {"in front", [](Bench& bench) { bench.machine.front = Bench::chatPID; }, false},
        {"never touch",
         [](Bench& bench) {
             auto rules = bench.optimizer->rules().value();
             rules.neverTouch = {Bench::chat};
             bench.optimizer->setRules(rules);
         },
         false},
        {"records", [](Bench& bench) { bench.media.recording = {Bench::chat}; }, false},
        {"plays", [](Bench& bench) { bench.media.playing = {Bench::chat}; }, false},
        {"shows video", [](Bench& bench) { bench.media.keepDisplayAwake = {Bench::chat}; }, false},
        {"downloads", [](Bench& bench) { bench.media.keepAwake = {Bench::chat}; }, true},
        {"just launched",
         [](Bench& bench) { bench.machine.applications[1].launched = bench.time.now() + Seconds(480.5); }, true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        Bench bench;
        bench.begin(AppTier::canWait);
        bench.use(Bench::chat, 1);
        row.set(bench);
        bench.tickAfter(600);
        EXPECT_EQ(bench.machine.stopped(), PIDs{});
        EXPECT_EQ(bench.machine.slowed(), row.isSlowed ? (PIDs{200, 201, 202}) : PIDs{});
    }
}

TEST(Optimizer, essentialApplicationsAndItselfAreNeitherFrozenNorSlowed) {
    auto essentials = builtInEssentials();
    EXPECT_EQ(essentials.size(), 19U);
    essentials.insert("org.example.panel"); // the host's
    essentials.insert(Bench::own);
    Bench bench;
    pid_t pid = 1000;
    for (const auto& id : essentials)
        bench.machine.launch(id, ++pid);
    auto& optimizer = bench.begin();
    tindra::OptimizerRules rules;
    for (const auto& id : essentials) {
        rules.tiers[id] = AppTier::canWait;
        EXPECT_TRUE(optimizer.isLocked(id)) << id;
    }
    optimizer.setRules(rules);
    std::vector<AppProcesses> busy;
    for (const auto& id : essentials)
        busy.push_back({.id = id, .name = id, .appPath = {}, .bundleID = id, .cpuCores = 1, .processes = {}});
    bench.sample(busy);
    bench.tickAfter(1e6);
    EXPECT_EQ(bench.machine.signals, Texts{});
    EXPECT_FALSE(optimizer.isLocked(Bench::chat));
}

// Wakes.

TEST(Optimizer, aWakeCycleRunsFromFreezeToRefreezeAndCountsAnewFromThere) {
    Bench bench;
    auto& optimizer = bench.beginFrozen(AppTier::checkPeriodically);
    bench.tickAfter(899.5);
    EXPECT_EQ(bench.events, Texts{});
    bench.tickAfter(0.5); // 1500
    EXPECT_EQ(bench.events, Texts{"wake chat: Checking for new messages for 45 s."});
    EXPECT_EQ(bench.control(Bench::chat), "waking(until: 1545, frozenSince: 600)");
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
    EXPECT_EQ(optimizer.frozenCount(), 0U);
    EXPECT_EQ(optimizer.frozenMemory(), 0U);
    EXPECT_TRUE(optimizer.logStates().empty());
    bench.tickAfter(44.5);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    bench.tickAfter(3.5); // 1548
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 600, lastWake: 1548)");
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_EQ(bench.events.size(), 1U) << "a refreeze is not told";
    bench.tickAfter(899.5);
    EXPECT_EQ(bench.events.size(), 1U);
    bench.tickAfter(0.5);
    EXPECT_EQ(bench.control(Bench::chat), "waking(until: 2493, frozenSince: 600)");
}

TEST(Optimizer, theSecondsOfAWakeAreToldCutToWholeOnes) {
    Bench bench;
    auto& optimizer = bench.beginFrozen(AppTier::checkPeriodically);
    optimizer.setTuning({.wakeSeconds = 59.9});
    bench.tickAfter(900);
    EXPECT_EQ(bench.events, Texts{"wake chat: Checking for new messages for 59 s."});
}

TEST(Optimizer, aRefreezeThatStopsNothingEndsTheCycle) {
    Bench bench;
    bench.beginFrozen(AppTier::checkPeriodically);
    bench.tickAfter(900);
    bench.machine.unstoppable = {200, 201, 202};
    bench.tickAfter(45);
    EXPECT_EQ(bench.control(Bench::chat), "nothing");
    bench.machine.unstoppable.clear();
    bench.forget();
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"freeze chat: Idle for 25m. 3 processes. (0)"});
}

TEST(Optimizer, aRefreezeWaitsWhileTheHostRefusesIt) {
    Bench bench;
    bench.beginFrozen(AppTier::checkPeriodically);
    bench.tickAfter(900);
    bench.refusals[Bench::chat] = "it holds the clipboard.";
    bench.tickAfter(50);
    EXPECT_EQ(bench.control(Bench::chat), "waking(until: 1545, frozenSince: 600)");
    bench.refusals.clear();
    bench.tickAfter(5);
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 600, lastWake: 1555)");
}

TEST(Optimizer, openingAnApplicationInItsWakeEndsTheCycle) {
    Bench bench;
    bench.beginFrozen(AppTier::checkPeriodically);
    bench.tickAfter(900);
    bench.forget();
    bench.machine.activate(Bench::chatPID);
    bench.time.runPending();
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
    bench.machine.activate(Bench::editorPID);
    bench.time.runPending();
    bench.tickAfter(599);
    EXPECT_EQ(bench.machine.stopped(), PIDs{}) << "the full idle time has to pass again";
    bench.tickAfter(1);
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 2100, lastWake: nil)");
}

TEST(Optimizer, aTierChangedToCanWaitInAWakeStillEndsInAFreeze) {
    Bench bench;
    bench.beginFrozen(AppTier::checkPeriodically);
    bench.tickAfter(900);
    bench.optimizer->setTier(AppTier::canWait, Bench::chat);
    bench.tickAfter(45);
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 600, lastWake: 1545)");
    bench.tickAfter(1e5);
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 600, lastWake: 1545)");
}

// Efficiency cores.

TEST(Optimizer, aBusyApplicationInTheBackgroundMovesToTheEfficiencyCores) {
    Bench bench;
    auto& optimizer = bench.begin();
    bench.use(Bench::chat, 0.099);
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.signals, Texts{});
    bench.use(Bench::chat, 0.1);
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.signals, (Texts{"slow 200", "slow 201", "slow 202"}));
    EXPECT_EQ(bench.events, Texts{"efficient chat: Using 10% of a core in the background."});
    EXPECT_EQ(bench.control(Bench::chat), "running");
    EXPECT_EQ(bench.machine.journalSlowed, bench.held(Bench::chat)->slowed);
    EXPECT_EQ(optimizer.efficientCount(), 1U);
    EXPECT_EQ(optimizer.frozenCount(), 0U);
    EXPECT_EQ(optimizer.logStates(), (std::map<std::string, std::int64_t>{{Bench::chat, 1}}));
    bench.use(Bench::chat, 0);
    bench.forget();
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.signals, Texts{}) << "once moved it stays moved, however quiet";
}

TEST(Optimizer, severalGroupsOfOneApplicationAddUp) {
    Bench bench;
    bench.begin(AppTier::canWait);
    const auto group = [](double cores, std::uint64_t bytes) {
        return AppProcesses{.id = "x",
                            .name = "x",
                            .appPath = {},
                            .bundleID = Bench::chat,
                            .cpuCores = cores,
                            .footprint = bytes,
                            .processes = {}};
    };
    bench.sample({group(1, 5), group(0.5, 7)});
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"efficient chat: Using 1.5 cores in the background."});
    bench.tickAfter(595);
    EXPECT_EQ(bench.events.back(), "freeze chat: Idle for 10m. 3 processes. (12)");
}

TEST(Optimizer, aSampleWithoutCPUFiguresLeavesTheSharesAndBringsTheFootprints) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.use(Bench::chat, 2, 1);
    bench.sample({}, false);
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"efficient chat: Using 2.0 cores in the background."});
    bench.tickAfter(595);
    EXPECT_EQ(bench.events.back(), "freeze chat: Idle for 10m. 3 processes. (0)");
}

TEST(Optimizer, helpersThatStartAfterTheMoveAreMovedAtTheNextPass) {
    Bench bench;
    bench.begin();
    bench.use(Bench::chat, 1);
    bench.tickAfter(5);
    bench.forget();
    bench.machine.start(203, Bench::chatPID);
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.signals, Texts{"slow 203"});
    EXPECT_EQ(bench.events, Texts{});
    EXPECT_EQ(bench.held(Bench::chat)->slowed.size(), 4U);
}

TEST(Optimizer, whatCannotBeSlowedIsTriedAgainWithTheNextPass) {
    Bench bench;
    bench.begin();
    bench.use(Bench::chat, 1);
    bench.machine.unslowable = {200, 201, 202};
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{});
    EXPECT_EQ(bench.control(Bench::chat), "nothing");
    bench.machine.unslowable = {202};
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.slowed(), (PIDs{200, 201}));
    bench.machine.unslowable.clear();
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.slowed(), (PIDs{200, 201, 202}));
    EXPECT_EQ(bench.events.size(), 1U);
}

TEST(Optimizer, fullSpeedComesBackWithTheFrontWithSoundAndWithTheSwitchAndIsNotTold) {
    const std::pair<const char*, std::function<void(Bench&)>> cases[] = {
        {"front", [](Bench& bench) { bench.machine.front = Bench::chatPID; }},
        {"plays", [](Bench& bench) { bench.media.playing = {Bench::chat}; }},
        {"not wanted", [](Bench& bench) { bench.optimizer->setTuning({.useEfficiencyCores = false}); }},
    };
    for (const auto& [what, happens] : cases) {
        SCOPED_TRACE(what);
        Bench bench;
        bench.begin();
        bench.use(Bench::chat, 1);
        bench.tickAfter(5);
        bench.forget();
        happens(bench);
        bench.tickAfter(5);
        EXPECT_EQ(bench.machine.signals, (Texts{"restore 200", "restore 201", "restore 202"}));
        EXPECT_EQ(bench.events, Texts{});
        EXPECT_EQ(bench.control(Bench::chat), "nothing");
        EXPECT_TRUE(bench.machine.journalSlowed.empty());
    }
}

TEST(Optimizer, aFrozenApplicationKeepsItsEfficiencyUntilItIsOpened) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.use(Bench::chat, 1);
    bench.tickAfter(5);
    bench.tickAfter(595);
    EXPECT_EQ(bench.optimizer->logStates(), (std::map<std::string, std::int64_t>{{Bench::chat, 2}}));
    EXPECT_EQ(bench.machine.journalFrozen.size() + bench.machine.journalSlowed.size(), 6U);
    bench.forget();
    bench.machine.front = Bench::chatPID;
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
    EXPECT_EQ(bench.machine.slowed(), PIDs{});
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

// Applications that come and go.

TEST(Optimizer, anApplicationThatWasRelaunchedStartsOverAndItsOldKeysGetNoSignal) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.quit(Bench::chatPID);
    bench.machine.launch(Bench::chat, 400, 0, bench.time.now());
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.signals, Texts{});
    EXPECT_EQ(bench.control(Bench::chat), "nothing");
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
    bench.tickAfter(594);
    EXPECT_EQ(bench.machine.stopped(), PIDs{}) << "its idle time counts from its own start";
    bench.tickAfter(1);
    EXPECT_EQ(bench.machine.stopped(), PIDs{400});
}

TEST(Optimizer, aProcessNumberThatWasUsedAgainGetsNoSignal) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.quit(Bench::chatPID);
    bench.machine.start(201, 201); // somebody else's now
    bench.optimizer->releaseAll();
    EXPECT_EQ(bench.machine.signals, Texts{});
}

TEST(Optimizer, helpersThatOutliveARelaunchGoOn) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.endProcess(200);
    bench.machine.loseWindow(200);
    bench.machine.launch(Bench::chat, 400, 0, bench.time.now());
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

TEST(Optimizer, anApplicationThatLosesItsWindowWhileFrozenGoesOn) {
    Bench bench;
    bench.beginFrozen();
    bench.machine.loseWindow(Bench::chatPID);
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_EQ(bench.control(Bench::chat), "nothing");
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
}

TEST(Optimizer, ofAnApplicationThatRunsTwiceTheOneThatIsHeldIsLookedAt) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.machine.launch(Bench::chat, 400);
    bench.tickAfter(600);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    std::ranges::reverse(bench.machine.applications);
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    bench.machine.front = 400;
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

TEST(Optimizer, anApplicationWithoutIdentityOrProcessIsNoCandidate) {
    Bench bench;
    bench.begin();
    bench.machine.launch("", 500);
    bench.machine.applications.push_back({"org.example.remote", "remote", 0, {}});
    tindra::OptimizerRules rules;
    rules.tiers["org.example.remote"] = AppTier::canWait;
    bench.optimizer->setRules(rules);
    bench.tickAfter(1e6);
    EXPECT_EQ(bench.machine.signals, Texts{});
}

// Time and rules.

TEST(Optimizer, focusModeHasAnIdleTimeAndAThresholdOfItsOwn) {
    Bench bench;
    auto& optimizer = bench.begin(AppTier::canWait);
    optimizer.setTuning({.mode = OptimizerMode::focus, .efficiencyThreshold = 0.5});
    bench.use(Bench::mail, 0.02);
    bench.tickAfter(179);
    EXPECT_EQ(bench.events, Texts{"efficient mail: Using 2% of a core in the background."});
    bench.tickAfter(1);
    EXPECT_EQ(bench.events.back(), "freeze chat: Idle for 3m. 3 processes. (0)");
}

TEST(Optimizer, anOverrideThatEndsIsPrunedStoredAndWithoutEffectAtTheSamePass) {
    Bench bench;
    auto& optimizer = bench.begin(AppTier::canWait);
    optimizer.setOverride(AppTier::alwaysOn, Bench::chat, "Chat", 1);
    EXPECT_EQ(bench.events, Texts{"override Chat: Always on until 23:13."});
    bench.tickAfter(3599);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    bench.tickAfter(1);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_TRUE(optimizer.rules().value().overrides.empty());
    EXPECT_EQ(Optimizer(Optimizer::Host{bench.time, bench.queue, bench.calendar, bench.machine, bench.settings,
                                        bench.machine},
                        {.ownBundleID = Bench::own})
                  .rules()
                  .value(),
              optimizer.rules().value());
}

TEST(Optimizer, aScheduleCountsInTheHoursOfThePersonsCalendar) {
    Bench bench;
    bench.calendar = Calendar("en_GB", "Asia/Tokyo"); // Wednesday 07:13:20
    auto& optimizer = bench.begin();
    tindra::OptimizerRules rules;
    rules.schedules.push_back({.id = {},
                               .name = "Morning",
                               .isEnabled = true,
                               .window = {.start = 7 * 60 + 30, .end = 8 * 60, .weekdays = {4}},
                               .tiers = {{Bench::chat, AppTier::canWait}}});
    optimizer.setRules(rules);
    bench.tickAfter(999); // 07:29:59
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    bench.tickAfter(1);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    bench.tickAfter(1800);
    EXPECT_EQ(bench.events.back(), "thaw chat: Resumed: it's always on now.");
}

TEST(Optimizer, aClockThatIsSetBackFreezesNothingAndLosesNothing) {
    Bench bench;
    bench.beginFrozen();
    bench.tickAfter(-1e6);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_EQ(bench.events, Texts{});
    bench.machine.activate(Bench::chatPID);
    bench.time.runPending();
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
}

TEST(Optimizer, aPassAsksForTheMediaOnceAndSweepsOnceForWhatIsSlowed) {
    Bench bench;
    bench.settings.set(Optimizer::enabledKey, true);
    int asked = 0;
    for (pid_t pid = 1000; pid < 1050; ++pid)
        bench.machine.launch("org.example.app" + std::to_string(pid), pid);
    Optimizer optimizer(
        Optimizer::Host{bench.time, bench.queue, bench.calendar, bench.machine, bench.settings, bench.machine},
        Optimizer::Collaborators{.ownBundleID = Bench::own, .mediaUse = [&] {
                                     ++asked;
                                     return MediaUse{};
                                 }});
    optimizer.start();
    asked = 0;
    bench.machine.sweeps = 0;
    optimizer.tick();
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(bench.machine.sweeps, 0);
    for (const pid_t pid : {1000, 1001, 1002})
        optimizer.moveToEfficiencyCores(bench.machine.application(pid));
    bench.machine.sweeps = 0;
    optimizer.tick();
    EXPECT_EQ(bench.machine.sweeps, 1) << "for all slowed applications together";
}

} // namespace
} // namespace kestrio
