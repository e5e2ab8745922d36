#include "Tests/Support/AllocationCounter.h"
#include "TindraCore/Decisions.h"
#include "TindraCore/Rules.h"

#include <gtest/gtest.h>

namespace tindra {
namespace {

using kestrio::allocationsOf;

TEST(Allocations, areCountedHere) {
    EXPECT_EQ(allocationsOf([] { ::operator delete(::operator new(1)); }), 1u);
}

TEST(Allocations, anAnswerOfNothingAllocatesNothing) {
    const Date now{1'000'000};
    const OptimizerTuning tuning;
    const control::Frozen frozen{now, std::nullopt};
    const control::Waking waking{now + 10, now};
    struct Row {
        const char* name;
        AppTier tier;
        AppObservation observation;
        bool enabled;
    };
    AppObservation recent;
    recent.appID = "org.example.an-application-with-a-long-identifier";
    recent.lastActive = now;
    auto front = recent;
    front.isFrontmost = true;
    auto held = recent;
    held.control = frozen;
    auto woken = recent;
    woken.control = waking;
    const Row rows[] = {
        {"off", AppTier::canWait, recent, false},
        {"in front", AppTier::canWait, front, true},
        {"running", AppTier::canWait, recent, true},
        {"always on", AppTier::alwaysOn, recent, true},
        {"frozen until opened", AppTier::canWait, held, true},
        {"frozen until its period ends", AppTier::checkPeriodically, held, true},
        {"in a wake", AppTier::checkPeriodically, woken, true},
    };
    for (const auto& row : rows) {
        std::size_t answered = 1;
        EXPECT_EQ(allocationsOf([&] { answered = decide(row.tier, row.observation, tuning, row.enabled, now).size(); }),
                  0u)
            << row.name;
        EXPECT_EQ(answered, 0u) << row.name;
    }
}

TEST(Allocations, lookingUpAUsualTierAllocatesNothing) {
    OptimizerRules rules;
    rules.tiers.emplace("org.example.an-application-with-a-long-identifier", AppTier::canWait);
    rules.schedules.push_back({{}, "Evening", true, {0, 0, {1}}, {{"org.example.other", AppTier::canWait}}});
    const auto lookUp = [&](std::string_view appID) { (void)rules.tier(appID, Date{0}, LocalTime{1, 12, 0}); };
    EXPECT_EQ(allocationsOf([&] { lookUp("org.example.an-application-with-a-long-identifier"); }), 0u);
    EXPECT_EQ(allocationsOf([&] { lookUp("org.example.nobody-said-anything-about-this-one"); }), 0u);
}

} // namespace
} // namespace tindra
