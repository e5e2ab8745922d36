// What is told of the optimizer over the bus, and what the person's actions answer.
#include "Kestrio/Link/LocalOptimizer.h"
#include "Tests/Optimizer/OptimizerBench.h"

#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using tindra::AppTier;
using Bench = OptimizerBench;
using JSON = nlohmann::ordered_json;
using PIDs = std::vector<pid_t>;
namespace control = tindra::control;
namespace decision = tindra::decision;
namespace source = tindra::source;

OptimizerStatus fullStatus() {
    OptimizerStatus status{.isEnabled = true, .tuning = {.mode = tindra::OptimizerMode::focus, .idleMinutes = 2.5}};
    status.rules.tiers["org.example.chat"] = AppTier::canWait;
    status.rules.neverTouch = {"org.example.bank"};
    status.rules.setOverride("org.example.mail", AppTier::checkPeriodically, {1'700'000'000});
    status.held = {{"org.example.chat", "Chat", 200, control::Frozen{{1}, std::nullopt}, 3, 0, 4096, true},
                   {"org.example.mail", "Mail", 300, control::Frozen{{1}, tindra::Date{2}}, 1, 2, 0, false},
                   {"org.example.news", "News", 400, control::Waking{{5}, {6}}, 0, 0, 0, false},
                   {"org.example.radio", "Radio", 500, control::Running{}, 0, 1, 0, true}};
    return status;
}

std::vector<PlannedApp> fullPlan() {
    return {{.id = "a",
             .name = "A",
             .tier = AppTier::canWait,
             .source = source::Override{{7}},
             .protection = tindra::Protection::playingAudio,
             .refusal = "it holds what you copied or selected.",
             .control = control::Frozen{{1}, tindra::Date{2}},
             .isSlowed = true,
             .isManual = true,
             .idle = Seconds(90.5),
             .cpu = 0.25,
             .footprint = std::numeric_limits<std::uint64_t>::max(),
             .decisions = {decision::Thaw{tindra::ThawReason::protected_}, decision::RestorePriority{}}},
            {.id = "b", .name = "B", .source = source::Schedule{"Evening"}, .decisions = {decision::Wake{{9}}}},
            {.id = "c", .name = "C", .source = source::Usual{}, .decisions = {decision::Freeze{}}},
            {.id = "d", .name = "D", .source = source::Unchosen{}, .decisions = {decision::Refreeze{}}},
            {.id = "e", .name = "E", .decisions = {decision::MakeEfficient{}}}};
}

TEST(OptimizerOnTheWire, arrivesAsItWasSent) {
    EXPECT_EQ(optimizerStatusFromJSON(toJSON(OptimizerStatus())), OptimizerStatus());
    EXPECT_EQ(optimizerStatusFromJSON(JSON::parse(toJSON(fullStatus()).dump())), fullStatus());
    EXPECT_EQ(optimizerPlanFromJSON(JSON::parse(toJSON(fullPlan()).dump())), fullPlan());
    EXPECT_EQ(optimizerPlanFromJSON(JSON::array()), std::vector<PlannedApp>());
}

TEST(OptimizerOnTheWire, isAbsentWhereAnyFieldIsMissing) {
    const auto status = toJSON(fullStatus());
    for (const auto& [key, value] : status.items()) {
        auto less = status;
        less.erase(key);
        EXPECT_EQ(optimizerStatusFromJSON(less), std::nullopt) << key;
    }
    const auto plan = toJSON(fullPlan());
    for (const auto& [key, value] : plan[0].items()) {
        auto less = plan;
        less[0].erase(key);
        EXPECT_EQ(optimizerPlanFromJSON(less), std::nullopt) << key;
    }
}

TEST(OptimizerOnTheWire, isAbsentForWordsOfAnotherVersion) {
    const auto plan = toJSON(fullPlan());
    const std::pair<const char*, JSON> changes[] = {
        {"/0/tier", "sometimes"},
        {"/0/source/kind", "dice"},
        {"/0/protection", "luck"},
        {"/0/control/state", "molten"},
        {"/0/decisions/0/action", "sing"},
        {"/0/decisions/0/reason", "whim"},
        {"/0/footprint", -1},
        {"/0/isSlowed", 1},
        {"/0/decisions", 5},
    };
    for (const auto& [place, value] : changes) {
        auto changed = plan;
        changed[JSON::json_pointer(place)] = value;
        EXPECT_EQ(optimizerPlanFromJSON(changed), std::nullopt) << place;
    }
    EXPECT_EQ(optimizerPlanFromJSON(JSON::object()), std::nullopt);
    EXPECT_EQ(optimizerStatusFromJSON(JSON::array()), std::nullopt);
    EXPECT_EQ(optimizerStatusFromJSON(JSON()), std::nullopt);
}

/// The agent's side over a made-up machine. The optimizer has a queue of its own, as in the agent.
struct LocalBench : Bench {
    LocalOptimizer& begin() {
        Bench::begin();
        local.emplace(queue, *optimizer, machine);
        return *local;
    }
    std::optional<LocalOptimizer> local;
};

TEST(OptimizerActions, areDoneOrSayWhyNot) {
    LocalBench bench;
    auto& local = bench.begin();
    EXPECT_EQ(local.freeze(Bench::chat), std::nullopt);
    EXPECT_EQ(bench.machine.stopped(), (PIDs{200, 201, 202}));
    EXPECT_EQ(local.resume(Bench::chat), std::nullopt);
    EXPECT_TRUE(bench.machine.stopped().empty());
    EXPECT_EQ(local.slow(Bench::mail), std::nullopt);
    EXPECT_EQ(bench.machine.slowed(), (PIDs{300}));
    EXPECT_EQ(local.resumeAll(), std::nullopt);
    EXPECT_TRUE(bench.machine.slowed().empty());
    EXPECT_EQ(local.quit(Bench::mail), std::nullopt);
    EXPECT_EQ(bench.machine.terminated, (PIDs{300}));

    const auto none = "org.example.none does not run, or has no window";
    EXPECT_EQ(local.freeze("org.example.none"), none);
    EXPECT_EQ(local.slow("org.example.none"), none);
    EXPECT_EQ(local.quit("org.example.none"), none);
    EXPECT_EQ(local.resume(Bench::chat), "org.example.chat is neither frozen nor slowed");
    EXPECT_EQ(local.freeze(Bench::editor), "editor is in front");
    bench.machine.launch("org.example.panel", 400);
    EXPECT_EQ(local.freeze("org.example.panel"), "panel is never frozen: the desktop or a long job may need it");
    bench.refusals[Bench::chat] = "a terminal waits for it.";
    EXPECT_EQ(local.freeze(Bench::chat), "chat is left alone: a terminal waits for it.");
    bench.refusals.clear();
    bench.machine.unstoppable = {200, 201, 202};
    EXPECT_EQ(local.freeze(Bench::chat), "nothing of chat could be stopped");
    bench.machine.unslowable = {200, 201, 202};
    EXPECT_EQ(local.slow(Bench::chat), "nothing of chat could be slowed");
    EXPECT_EQ(local.setEnabled(false), std::nullopt);
    EXPECT_EQ(local.freeze(Bench::chat), "the optimizer is off");
    EXPECT_EQ(local.slow(Bench::chat), "the optimizer is off");
}

TEST(OptimizerActions, changeWhatThePersonSaid) {
    LocalBench bench;
    auto& local = bench.begin();
    EXPECT_EQ(local.setTier(Bench::chat, AppTier::canWait), std::nullopt);
    EXPECT_EQ(bench.optimizer->rules().value().tiers.at(Bench::chat), AppTier::canWait);
    EXPECT_EQ(local.setTier(Bench::chat, std::nullopt), std::nullopt);
    EXPECT_TRUE(bench.optimizer->rules().value().tiers.empty());
    EXPECT_EQ(local.setOverride(Bench::chat, AppTier::canWait, 2), std::nullopt);
    EXPECT_EQ(bench.optimizer->rules().value().overrides.size(), 1U);
    EXPECT_EQ(bench.events.back(), "override chat: Can wait until 00:13.");
    EXPECT_EQ(local.removeOverride(Bench::chat), std::nullopt);
    EXPECT_TRUE(bench.optimizer->rules().value().overrides.empty());
    tindra::OptimizerRules rules;
    rules.neverTouch = {Bench::mail};
    EXPECT_EQ(local.setRules(rules), std::nullopt);
    EXPECT_EQ(local.setTuning({.idleMinutes = 1}), std::nullopt);
    const auto status = local.status().value();
    EXPECT_EQ(status.rules, rules);
    EXPECT_EQ(status.tuning.idleMinutes, 1);
    EXPECT_TRUE(status.isEnabled);
    EXPECT_EQ(local.plan()->size(), 3U);
}

TEST(OptimizerActions, refuseNumbersThatAreNone) {
    LocalBench bench;
    auto& local = bench.begin();
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    const auto infinity = std::numeric_limits<double>::infinity();
    for (const double hours : {0.0, -1.0, nan, infinity, 24.0 * 367})
        EXPECT_EQ(local.setOverride(Bench::chat, AppTier::canWait, hours),
                  "a rule for now lasts for more than 0 hours, and a year at most")
            << hours;
    EXPECT_EQ(local.setTuning({.idleMinutes = nan}), "a number of the tuning is none");
    EXPECT_TRUE(bench.optimizer->rules().value().overrides.empty());
}

TEST(OptimizerStatus, countsTheProcessesThatAreHeld) {
    LocalBench bench;
    auto& local = bench.begin();
    local.slow(Bench::chat);
    bench.use(Bench::chat, 0, 512);
    local.freeze(Bench::chat);
    const auto held = local.status()->held;
    ASSERT_EQ(held.size(), 1U);
    EXPECT_EQ(held[0].name, "chat");
    EXPECT_EQ(held[0].pid, Bench::chatPID);
    EXPECT_EQ(held[0].frozen, 3);
    EXPECT_EQ(held[0].slowed, 3);
    EXPECT_EQ(held[0].footprint, 512U);
    EXPECT_TRUE(held[0].isManual);
}

} // namespace
} // namespace kestrio
