// What the optimizer says that it would do, which is what it then does; and what it does when told of the end, and of
// settings that somebody else changed.
#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Tests/Optimizer/OptimizerBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using tindra::AppTier;
using tindra::Protection;
using Bench = OptimizerBench;
using Texts = std::vector<std::string>;
using PIDs = std::vector<pid_t>;

PlannedApp planOf(Bench& bench, const std::string& id) {
    for (const auto& app : bench.optimizer->plan())
        if (app.id == id)
            return app;
    return {};
}

TEST(OptimizerPlan, tellsOfEachApplicationInTheWorkspacesOrder) {
    Bench bench;
    bench.begin();
    Texts names;
    for (const auto& app : bench.optimizer->plan())
        names.push_back(app.name);
    EXPECT_EQ(names, (Texts{"editor", "chat", "mail"}));
}

TEST(OptimizerPlan, saysWhatThePassThenDoes) {
    Bench bench;
    bench.begin(AppTier::canWait);
    bench.time.jumpWallClock(Seconds(600));
    const auto plan = planOf(bench, Bench::chat);
    EXPECT_EQ(tindra::toString(plan.decisions), "[freeze]");
    EXPECT_EQ(plan.tier, AppTier::canWait);
    EXPECT_EQ(tindra::toString(plan.source), "usual");
    EXPECT_EQ(plan.idle, Seconds(600));
    EXPECT_TRUE(bench.machine.stopped().empty()) << "it only says so";
    bench.optimizer->tick();
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_EQ(tindra::toString(planOf(bench, Bench::chat).decisions), "[]");
    EXPECT_TRUE(tindra::isFrozen(planOf(bench, Bench::chat).control));
}

TEST(OptimizerPlan, isToldWhileItIsOffToo) {
    Bench bench;
    auto& optimizer = bench.make();
    optimizer.start();
    optimizer.setTier(AppTier::canWait, Bench::chat);
    bench.time.jumpWallClock(Seconds(3600));
    EXPECT_EQ(tindra::toString(planOf(bench, Bench::chat).decisions), "[freeze]");
    EXPECT_EQ(planOf(bench, Bench::chat).idle, std::nullopt) << "nobody has looked yet";
}

TEST(OptimizerPlan, saysWhyNot) {
    Bench bench;
    bench.begin(AppTier::canWait);
    EXPECT_EQ(planOf(bench, Bench::editor).protection, Protection::frontmost);
    bench.media.playing = {Bench::chat};
    EXPECT_EQ(planOf(bench, Bench::chat).protection, Protection::playingAudio);
    bench.media = {};
    bench.refusals[Bench::chat] = "a debugger is attached to it.";
    EXPECT_EQ(planOf(bench, Bench::chat).refusal, std::nullopt) << "not asked before it would be frozen";
    bench.time.jumpWallClock(Seconds(600));
    EXPECT_EQ(planOf(bench, Bench::chat).refusal, "a debugger is attached to it.");
    EXPECT_EQ(tindra::toString(planOf(bench, Bench::mail).source), "unchosen");
}

TEST(OptimizerPlan, leavesToThePersonWhatTheyDidByHand) {
    Bench bench;
    bench.begin();
    bench.optimizer->freezeNow(bench.machine.application(Bench::chatPID));
    const auto plan = planOf(bench, Bench::chat);
    EXPECT_TRUE(plan.isManual);
    EXPECT_EQ(tindra::toString(plan.decisions), "[]") << "always on, it would be resumed otherwise";
}

TEST(OptimizerEnd, givesEverythingBackAndBeginsNothingAgain) {
    Bench bench;
    bench.beginFrozen();
    bench.optimizer->finish();
    EXPECT_TRUE(bench.machine.stopped().empty());
    EXPECT_EQ(bench.events, (Texts{"thaw chat: Resumed: optimization was switched off or the app quit."}));
    bench.time.advance(Seconds(3600));
    bench.machine.announce(WorkspaceNotice::activated);
    bench.time.advance(Seconds(3600));
    EXPECT_TRUE(bench.machine.stopped().empty());
    EXPECT_TRUE(bench.settings.boolean(Optimizer::enabledKey)) << "for the next start";
}

TEST(OptimizerStart, tellsOfAllThatWasRecovered) {
    Bench bench;
    bench.machine.leftByEarlierRuns = 1;
    bench.make().start(2);
    EXPECT_EQ(bench.events, (Texts{"recovered: Resumed 3 processes an earlier run had left frozen or slowed."}));
}

TEST(ChangedSettings, switchItOnAndOff) {
    Bench bench;
    auto& optimizer = bench.make();
    optimizer.start();
    bench.settings.set(Optimizer::enabledKey, true);
    optimizer.settingsChanged();
    EXPECT_TRUE(optimizer.isEnabled().value());
    EXPECT_EQ(bench.events, (Texts{"optimizerOn: Balanced mode."}));
    optimizer.freezeNow(bench.machine.application(Bench::chatPID));
    bench.forget();
    bench.settings.set(Optimizer::enabledKey, false);
    optimizer.settingsChanged();
    EXPECT_TRUE(bench.machine.stopped().empty());
    EXPECT_EQ(bench.events, (Texts{"thaw chat: Resumed: optimization was switched off or the app quit.",
                                   "optimizerOff: Everything was put back."}));
}

TEST(ChangedSettings, bringOtherRulesAndAnotherTuning) {
    Bench bench;
    auto& optimizer = bench.begin();
    tindra::OptimizerRules rules;
    rules.tiers[Bench::chat] = AppTier::canWait;
    const tindra::OptimizerTuning tuning{.idleMinutes = 1};
    bench.settings.set(Optimizer::rulesKey, SettingBytes{encoded(rules).value()});
    bench.settings.set(Optimizer::tuningKey, SettingBytes{encoded(tuning).value()});
    bench.time.jumpWallClock(Seconds(60));
    optimizer.settingsChanged();
    EXPECT_EQ(optimizer.rules().value(), rules);
    EXPECT_EQ(optimizer.tuning().value(), tuning);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202})) << "at once";
}

TEST(ChangedSettings, thatCannotBeReadCountAsNone) {
    Bench bench;
    auto& optimizer = bench.begin(AppTier::canWait);
    bench.settings.set(Optimizer::rulesKey, SettingBytes{"{"});
    optimizer.settingsChanged();
    EXPECT_EQ(optimizer.rules().value(), tindra::OptimizerRules());
}

} // namespace
} // namespace kestrio
