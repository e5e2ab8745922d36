// What the person does by hand.
#include "Tests/Optimizer/OptimizerBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using tindra::AppTier;
using Bench = OptimizerBench;
using Texts = std::vector<std::string>;
using PIDs = std::vector<pid_t>;

struct ActionBench : Bench {
    RunningApplication application(pid_t pid) const { return machine.application(pid); }
    void freezeChat() {
        optimizer->freezeNow(application(chatPID));
        forget();
    }
};

TEST(OptimizerActions, anApplicationFrozenByHandStaysSoWhateverTheRulesSay) {
    ActionBench bench;
    auto& optimizer = bench.begin();
    bench.use(Bench::chat, 0, 77);
    optimizer.freezeNow(bench.application(Bench::chatPID));
    EXPECT_EQ(bench.events, Texts{"freeze chat: Frozen by hand; it wakes up when you open it. (77)"});
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_TRUE(bench.held(Bench::chat)->isManual);
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 0, lastWake: nil)");
    EXPECT_EQ(bench.machine.journalFrozen.size(), 3U);
    optimizer.setTier(AppTier::alwaysOn, Bench::chat);
    optimizer.setTier(AppTier::checkPeriodically, Bench::chat);
    bench.media.playing = {Bench::chat};
    bench.tickAfter(1e6);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_EQ(bench.events.size(), 1U);
}

TEST(OptimizerActions, anApplicationFrozenByHandIsGivenBackWhenItIsOpened) {
    ActionBench bench;
    bench.begin();
    bench.freezeChat();
    bench.machine.activate(Bench::chatPID);
    bench.time.runPending();
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
    EXPECT_FALSE(bench.held(Bench::chat)->isManual);
    bench.tickAfter(5);
    EXPECT_EQ(bench.held(Bench::chat), nullptr);
}

TEST(OptimizerActions, aPassThatFindsItInFrontBeforeAnyNoticeEndsWhatWasDoneByHand) {
    ActionBench bench;
    bench.begin();
    bench.freezeChat();
    bench.machine.front = Bench::chatPID;
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: you opened it."});
    EXPECT_EQ(bench.held(Bench::chat), nullptr);
}

TEST(OptimizerActions, theHostGetsBackEvenWhatThePersonFroze) {
    ActionBench bench;
    bench.begin();
    bench.freezeChat();
    bench.refusals[Bench::chat] = "its window can be seen.";
    bench.tickAfter(5);
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: its window can be seen."});
    EXPECT_EQ(bench.held(Bench::chat), nullptr);
}

TEST(OptimizerActions, freezingIsRefusedInSilence) {
    const std::pair<const char*, std::function<RunningApplication(ActionBench&)>> cases[] = {
        {"in front", [](ActionBench& bench) { return bench.application(Bench::editorPID); }},
        {"essential",
         [](ActionBench& bench) {
             bench.machine.launch("com.apple.Terminal", 500);
             return bench.application(500);
         }},
        {"essential here",
         [](ActionBench& bench) {
             bench.machine.launch("org.example.panel", 500);
             return bench.application(500);
         }},
        {"this program",
         [](ActionBench& bench) {
             bench.machine.launch(Bench::own, 500);
             return bench.application(500);
         }},
        {"refused by the host",
         [](ActionBench& bench) {
             bench.refusals[Bench::chat] = "we were started by it.";
             return bench.application(Bench::chatPID);
         }},
        {"no identifier",
         [](ActionBench&) {
             return RunningApplication{std::nullopt, "x", 200};
         }},
        {"no process",
         [](ActionBench&) {
             return RunningApplication{Bench::chat, "x", std::nullopt};
         }},
        {"switched off",
         [](ActionBench& bench) {
             bench.optimizer->setEnabled(false);
             bench.forget();
             return bench.application(Bench::chatPID);
         }},
        {"cannot be stopped",
         [](ActionBench& bench) {
             bench.machine.unstoppable = {200, 201, 202};
             return bench.application(Bench::chatPID);
         }},
    };
    for (const auto& [what, prepare] : cases) {
        SCOPED_TRACE(what);
        ActionBench bench;
        bench.begin();
        const auto application = prepare(bench);
        bench.optimizer->freezeNow(application);
        EXPECT_EQ(bench.machine.signals, Texts{});
        EXPECT_EQ(bench.events, Texts{});
        EXPECT_TRUE(bench.optimizer->managed().value().empty());
    }
}

TEST(OptimizerActions, freezingByHandTakesOverWhatTheRulesFroze) {
    ActionBench bench;
    bench.beginFrozen(AppTier::checkPeriodically);
    bench.time.jumpWallClock(Seconds(60));
    bench.optimizer->freezeNow(bench.application(Bench::chatPID));
    EXPECT_EQ(bench.control(Bench::chat), "frozen(since: 660, lastWake: nil)");
    EXPECT_EQ(bench.held(Bench::chat)->frozen.size(), 3U);
    bench.tickAfter(1e6);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202})) << "no wakes any more";
}

TEST(OptimizerActions, anApplicationMovedByHandKeepsItsNewHelpersThereToo) {
    ActionBench bench;
    auto& optimizer = bench.begin();
    optimizer.moveToEfficiencyCores(bench.application(Bench::chatPID));
    EXPECT_EQ(bench.events, Texts{"efficient chat: Moved by hand; it gets full speed back when you open it."});
    EXPECT_TRUE(bench.held(Bench::chat)->isManual);
    EXPECT_EQ(bench.machine.journalSlowed.size(), 3U);
    bench.media.playing = {Bench::chat};
    bench.machine.start(203, Bench::chatPID);
    bench.tickAfter(5);
    EXPECT_EQ(bench.machine.slowed(), (PIDs{200, 201, 202, 203}));
    EXPECT_EQ(bench.machine.journalSlowed.size(), 4U);
    bench.machine.activate(Bench::chatPID);
    bench.time.runPending();
    EXPECT_EQ(bench.machine.slowed(), PIDs{});
    EXPECT_EQ(bench.events.size(), 1U) << "what was not stopped is not told to be resumed";
}

TEST(OptimizerActions, anEssentialApplicationCanBeMovedByHandButThisProgramCannot) {
    ActionBench bench;
    auto& optimizer = bench.begin();
    bench.machine.launch("com.apple.Terminal", 500);
    bench.machine.launch(Bench::own, 600);
    optimizer.moveToEfficiencyCores(bench.application(500));
    optimizer.moveToEfficiencyCores(bench.application(600));
    optimizer.moveToEfficiencyCores({std::nullopt, "x", 200});
    EXPECT_EQ(bench.machine.slowed(), PIDs{500});
}

TEST(OptimizerActions, aMoveThatMovesNothingChangesNothing) {
    ActionBench bench;
    bench.begin();
    bench.machine.unslowable = {200, 201, 202};
    bench.optimizer->moveToEfficiencyCores(bench.application(Bench::chatPID));
    EXPECT_EQ(bench.events, Texts{});
    EXPECT_EQ(bench.held(Bench::chat), nullptr);
}

TEST(OptimizerActions, resumingGivesBackAndStartsTheIdleTimeAnew) {
    ActionBench bench;
    auto& optimizer = bench.beginFrozen();
    bench.time.jumpWallClock(Seconds(100));
    optimizer.resume(Bench::chat);
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed by hand."});
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_TRUE(bench.machine.journalFrozen.empty());
    bench.tickAfter(599);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    bench.tickAfter(1);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
}

TEST(OptimizerActions, resumingWhatIsOnlySlowedIsNotToldAndWhatIsNotHeldIsNothing) {
    ActionBench bench;
    auto& optimizer = bench.begin();
    optimizer.moveToEfficiencyCores(bench.application(Bench::chatPID));
    bench.forget();
    optimizer.resume(Bench::chat);
    optimizer.resume(Bench::mail);
    optimizer.resume("org.example.unknown");
    EXPECT_EQ(bench.machine.slowed(), PIDs{});
    EXPECT_EQ(bench.events, Texts{});
    EXPECT_EQ(optimizer.lastActive("org.example.unknown"), std::nullopt);
}

TEST(OptimizerActions, aStoppedApplicationGoesOnBeforeItIsAskedToQuit) {
    ActionBench bench;
    auto& optimizer = bench.beginFrozen();
    bench.use(Bench::chat, 0, 99);
    optimizer.quit(bench.application(Bench::chatPID));
    EXPECT_EQ(bench.machine.signals, (Texts{"continue 202", "continue 201", "continue 200", "terminate 200"}));
    EXPECT_EQ(bench.events, (Texts{"thaw chat: Resumed by hand.", "quit chat: Quit from Kestrio. (99)"}));
}

TEST(OptimizerActions, quittingWorksWhileSwitchedOffAndNeedsAnIdentifier) {
    ActionBench bench;
    auto& optimizer = bench.make();
    optimizer.quit(bench.application(Bench::mailPID));
    optimizer.quit({std::nullopt, "x", 200});
    EXPECT_EQ(bench.machine.terminated, PIDs{Bench::mailPID});
    EXPECT_EQ(bench.events, Texts{"quit mail: Quit from Kestrio."});
}

TEST(OptimizerActions, aTemporaryRuleIsToldWithItsTierAndTheTimeOfItsEnd) {
    const std::pair<AppTier, const char*> cases[] = {
        {AppTier::alwaysOn, "override Chat: Always on until 01:43."},
        {AppTier::checkPeriodically, "override Chat: Check every few minutes until 01:43."},
        {AppTier::canWait, "override Chat: Can wait until 01:43."},
    };
    for (const auto& [tier, text] : cases) {
        ActionBench bench;
        auto& optimizer = bench.begin();
        optimizer.setOverride(tier, Bench::chat, "Chat", 3.5);
        EXPECT_EQ(bench.events, Texts{text});
        ASSERT_EQ(optimizer.rules().value().overrides.size(), 1U);
        EXPECT_EQ(optimizer.rules().value().overrides[0].until.seconds, Bench::origin.seconds() + 12'600);
    }
}

TEST(OptimizerActions, rulesTakeEffectAtOnce) {
    ActionBench bench;
    auto& optimizer = bench.begin();
    bench.tickAfter(600);
    optimizer.setOverride(AppTier::canWait, Bench::chat, "Chat", 1);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    optimizer.removeOverride(Bench::chat);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    optimizer.setTier(AppTier::canWait, Bench::mail);
    EXPECT_EQ(bench.machine.stopped(), PIDs{300});
    optimizer.setTier(std::nullopt, Bench::mail);
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_TRUE(optimizer.rules().value().tiers.empty());
}

TEST(OptimizerActions, releasingEverythingTellsWhatWasStoppedAndEmptiesTheJournal) {
    ActionBench bench;
    auto& optimizer = bench.beginFrozen(AppTier::checkPeriodically);
    optimizer.moveToEfficiencyCores(bench.application(Bench::mailPID));
    bench.forget();
    optimizer.releaseAll();
    EXPECT_EQ(bench.events, Texts{"thaw chat: Resumed: optimization was switched off or the app quit."});
    EXPECT_EQ(bench.machine.stopped(), PIDs{});
    EXPECT_EQ(bench.machine.slowed(), PIDs{});
    EXPECT_TRUE(bench.machine.journalFrozen.empty() && bench.machine.journalSlowed.empty());
    EXPECT_EQ(bench.control(Bench::chat), "running") << "they stay in the list until the next pass";
    EXPECT_TRUE(bench.held(Bench::mail)->isManual);
    EXPECT_EQ(optimizer.frozenCount() + optimizer.efficientCount(), 0U);
    bench.forget();
    const int records = bench.machine.records;
    optimizer.releaseAll();
    EXPECT_EQ(bench.events, Texts{}) << "with nothing held nothing is told";
    EXPECT_GT(bench.machine.records, records);
}

} // namespace
} // namespace kestrio
