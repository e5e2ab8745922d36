#include "TindraCore/Decisions.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

namespace tindra {
namespace {

const Date now{1'750'000'000};

/// In the background, running, with nothing special about it, and used just now.
AppObservation observed() {
    AppObservation observation;
    observation.appID = "org.example.app";
    observation.lastActive = now;
    observation.launched = now - 86'400;
    return observation;
}

std::string decided(AppTier tier, const AppObservation& observation, const OptimizerTuning& tuning = {},
                    bool enabled = true) {
    return toString(decide(tier, observation, tuning, enabled, now));
}

TEST(OptimizerMode, hasItsTextsInOrder) {
    ASSERT_EQ(allOptimizerModes.size(), 2u);
    EXPECT_EQ(allOptimizerModes[0], OptimizerMode::balanced);
    EXPECT_EQ(allOptimizerModes[1], OptimizerMode::focus);
    EXPECT_EQ(rawValue(OptimizerMode::balanced), "balanced");
    EXPECT_EQ(rawValue(OptimizerMode::focus), "focus");
    EXPECT_EQ(label(OptimizerMode::balanced), "Balanced");
    EXPECT_EQ(label(OptimizerMode::focus), "Focus");
    for (const auto mode : allOptimizerModes)
        EXPECT_EQ(optimizerMode(rawValue(mode)), mode);
    for (const char* text : {"", "Balanced", "focus ", "fast"})
        EXPECT_EQ(optimizerMode(text), std::nullopt) << text;
}

TEST(Protection, hasItsRawValuesInOrder) {
    const char* const texts[] = {"frontmost",       "playingAudio",     "usingMicrophone", "showingVideo",
                                 "preventingSleep", "recentlyLaunched", "neverTouch",      "essential"};
    ASSERT_EQ(allProtections.size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(allProtections[i]), i);
        EXPECT_EQ(rawValue(allProtections[i]), texts[i]);
        EXPECT_EQ(protection(texts[i]), allProtections[i]);
    }
    EXPECT_EQ(protection("Frontmost"), std::nullopt);
    EXPECT_EQ(protection(""), std::nullopt);
}

TEST(ThawReason, hasItsRawValuesInOrder) {
    const char* const texts[] = {"opened", "alwaysOn", "protected", "optimizerOff"};
    ASSERT_EQ(allThawReasons.size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(allThawReasons[i]), i);
        EXPECT_EQ(rawValue(allThawReasons[i]), texts[i]);
        EXPECT_EQ(thawReason(texts[i]), allThawReasons[i]);
    }
    EXPECT_EQ(thawReason("protected_"), std::nullopt);
    EXPECT_EQ(thawReason(""), std::nullopt);
}

TEST(OptimizerTuning, hasItsDefaults) {
    const OptimizerTuning tuning;
    EXPECT_EQ(tuning, (OptimizerTuning{OptimizerMode::balanced, 10, 3, 15, 45, true, 0.1}));
}

TEST(OptimizerTuning, comparesAllSevenFields) {
    const OptimizerTuning tuning;
    std::vector<OptimizerTuning> others(7);
    others[0].mode = OptimizerMode::focus;
    others[1].idleMinutes = 11;
    others[2].focusIdleMinutes = 4;
    others[3].checkEveryMinutes = 16;
    others[4].wakeSeconds = 46;
    others[5].useEfficiencyCores = false;
    others[6].efficiencyThreshold = 0.2;
    for (std::size_t i = 0; i < others.size(); ++i)
        EXPECT_NE(tuning, others[i]) << "field " << i;
}

TEST(OptimizerTuning, itsModeSelectsIdleTimeAndThreshold) {
    OptimizerTuning tuning{OptimizerMode::balanced, 7.5, 2.5, 15, 45, true, 0.3};
    EXPECT_EQ(tuning.effectiveIdleMinutes(), 7.5);
    EXPECT_EQ(tuning.effectiveEfficiencyThreshold(), 0.3);
    tuning.mode = OptimizerMode::focus;
    EXPECT_EQ(tuning.effectiveIdleMinutes(), 2.5);
    EXPECT_EQ(tuning.effectiveEfficiencyThreshold(), 0.02);
}

TEST(OptimizerTuning, clampsNothing) {
    const OptimizerTuning tuning{OptimizerMode::balanced, -1, -2, -3, -4, false, -5};
    EXPECT_EQ(tuning.effectiveIdleMinutes(), -1);
    EXPECT_EQ(tuning.effectiveEfficiencyThreshold(), -5);
}

TEST(AppObservation, comparesAllEightFields) {
    const auto observation = observed();
    EXPECT_EQ(observation, observed());
    std::vector<AppObservation> others(8, observation);
    others[0].appID = "org.example.other";
    others[1].isFrontmost = true;
    others[2].lastActive.reset();
    others[3].launched.reset();
    others[4].protection = Protection::essential;
    others[5].control = control::Waking{now, now};
    others[6].isEfficient = true;
    others[7].cpu = 1;
    for (std::size_t i = 0; i < others.size(); ++i)
        EXPECT_NE(observation, others[i]) << "field " << i;
}

TEST(ControlState, onlyAFrozenOneIsFrozen) {
    EXPECT_TRUE(isFrozen(control::Frozen{now, std::nullopt}));
    EXPECT_TRUE(isFrozen(control::Frozen{now, now}));
    EXPECT_FALSE(isFrozen(control::Waking{now, now}));
    EXPECT_FALSE(isFrozen(control::Running{}));
}

TEST(ControlState, comparesItsDates) {
    EXPECT_EQ(ControlState(control::Frozen{now, now}), ControlState(control::Frozen{now, now}));
    EXPECT_NE(ControlState(control::Frozen{now, now}), ControlState(control::Frozen{now + 1, now}));
    EXPECT_NE(ControlState(control::Frozen{now, now}), ControlState(control::Frozen{now, std::nullopt}));
    EXPECT_NE(ControlState(control::Waking{now, now}), ControlState(control::Waking{now + 1, now}));
    EXPECT_NE(ControlState(control::Waking{now, now}), ControlState(control::Waking{now, now + 1}));
    EXPECT_NE(ControlState(control::Waking{now, now}), ControlState(control::Running{}));
}

TEST(DecisionText, namesEachDecisionAndState) {
    EXPECT_EQ(toString(std::vector<Decision>{}), "[]");
    EXPECT_EQ(toString({decision::Thaw{ThawReason::protected_}, decision::Wake{Date{1.5}}, decision::Freeze{},
                        decision::Refreeze{}, decision::MakeEfficient{}, decision::RestorePriority{}}),
              "[thaw(protected), wake(until: 1.5), freeze, refreeze, makeEfficient, restorePriority]");
    EXPECT_EQ(toString(ControlState(control::Frozen{Date{1}, std::nullopt})), "frozen(since: 1, lastWake: nil)");
    EXPECT_EQ(toString(ControlState(control::Frozen{Date{1}, Date{2}})), "frozen(since: 1, lastWake: 2)");
    EXPECT_EQ(toString(ControlState(control::Waking{Date{3}, Date{1}})), "waking(until: 3, frozenSince: 1)");
    EXPECT_EQ(toString(ControlState(control::Running{})), "running");
}

TEST(Decide, aFrontmostApplicationThatRunsIsLeftAlone) {
    auto observation = observed();
    observation.isFrontmost = true;
    observation.cpu = 8;
    EXPECT_EQ(decided(AppTier::canWait, observation), "[]");
}

TEST(Decide, aFrozenAndSlowedApplicationThatIsOpenedIsThawedAndThenGivenItsPriority) {
    auto observation = observed();
    observation.isFrontmost = true;
    observation.isEfficient = true;
    observation.control = control::Frozen{now - 100, std::nullopt};
    for (const auto tier : allAppTiers)
        EXPECT_EQ(decided(tier, observation), "[thaw(opened), restorePriority]") << rawValue(tier);
    observation.protection = Protection::playingAudio;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[thaw(opened), restorePriority]");
}

TEST(Decide, switchedOffItLeavesARunningApplicationAlone) {
    auto observation = observed();
    observation.cpu = 8;
    observation.lastActive.reset();
    observation.launched.reset();
    for (const bool front : {false, true}) {
        observation.isFrontmost = front;
        EXPECT_EQ(decided(AppTier::canWait, observation, {}, false), "[]");
    }
}

TEST(Decide, switchedOffItGivesBackEverything) {
    auto observation = observed();
    observation.isEfficient = true;
    EXPECT_EQ(decided(AppTier::canWait, observation, {}, false), "[restorePriority]");
    observation.control = control::Waking{now + 5, now - 50};
    EXPECT_EQ(decided(AppTier::canWait, observation, {}, false), "[thaw(optimizerOff), restorePriority]");
    observation.isFrontmost = true;
    EXPECT_EQ(decided(AppTier::canWait, observation, {}, false), "[thaw(optimizerOff), restorePriority]");
    observation.isEfficient = false;
    EXPECT_EQ(decided(AppTier::canWait, observation, {}, false), "[thaw(optimizerOff)]");
}

TEST(Decide, focusModeHasAThresholdOfItsOwn) {
    OptimizerTuning tuning;
    tuning.mode = OptimizerMode::focus;
    tuning.efficiencyThreshold = 0.5;
    auto observation = observed();
    observation.cpu = 0.02;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation, tuning), "[makeEfficient]");
    observation.cpu = std::nextafter(0.02, 0);
    EXPECT_EQ(decided(AppTier::alwaysOn, observation, tuning), "[]");
    tuning.mode = OptimizerMode::balanced;
    observation.cpu = 0.02;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation, tuning), "[]");
}

TEST(Decide, focusModeHasAnIdleTimeOfItsOwn) {
    OptimizerTuning tuning;
    auto observation = observed();
    observation.lastActive = now - 3 * 60;
    EXPECT_EQ(decided(AppTier::canWait, observation, tuning), "[]");
    tuning.mode = OptimizerMode::focus;
    EXPECT_EQ(decided(AppTier::canWait, observation, tuning), "[freeze]");
}

TEST(Decide, anApplicationOfWhichNothingIsKnownIsOverdueAtOnce) {
    auto observation = observed();
    observation.lastActive.reset();
    observation.launched.reset();
    EXPECT_EQ(decided(AppTier::canWait, observation), "[freeze]");
    EXPECT_EQ(decided(AppTier::checkPeriodically, observation), "[freeze]");
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[]");
}

TEST(Decide, aProtectionOutranksTheTiersWishToStayFrozen) {
    auto observation = observed();
    observation.control = control::Frozen{now - 10, std::nullopt};
    EXPECT_EQ(decided(AppTier::canWait, observation), "[]");
    for (const auto protection : allProtections) {
        observation.protection = protection;
        EXPECT_EQ(decided(AppTier::canWait, observation), "[thaw(protected)]") << rawValue(protection);
        EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[thaw(alwaysOn)]") << rawValue(protection);
    }
}

TEST(Decide, beforeTheFirstWakeThePeriodRunsFromTheFreeze) {
    auto observation = observed();
    observation.control = control::Frozen{now - 15 * 60, std::nullopt};
    EXPECT_EQ(decided(AppTier::checkPeriodically, observation), "[wake(until: 1750000045)]");
    observation.control = control::Frozen{now - 15 * 60 + 0.001, std::nullopt};
    EXPECT_EQ(decided(AppTier::checkPeriodically, observation), "[]");
    observation.control = control::Frozen{now - 15 * 60, now - 1};
    EXPECT_EQ(decided(AppTier::checkPeriodically, observation), "[]");
}

TEST(Decide, aWakeEndsAlsoForATierThatWasChangedMeanwhile) {
    auto observation = observed();
    observation.control = control::Waking{now, now - 1000};
    EXPECT_EQ(decided(AppTier::checkPeriodically, observation), "[refreeze]");
    EXPECT_EQ(decided(AppTier::canWait, observation), "[refreeze]");
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[thaw(alwaysOn)]");
}

TEST(Decide, anApplicationThatIsAlwaysOnIsSlowedWhenBusyUnlessItIsKeptOnPerformanceCores) {
    auto observation = observed();
    observation.cpu = 0.5;
    observation.protection = Protection::preventingSleep;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[makeEfficient]");
    observation.protection = Protection::playingAudio;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[]");
    observation.isEfficient = true;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[restorePriority]");
}

TEST(Decide, freezingNeitherLooksAtTheLoadNorGivesPriorityBack) {
    auto observation = observed();
    observation.lastActive = now - 600;
    observation.cpu = 16;
    for (const bool efficient : {false, true}) {
        observation.isEfficient = efficient;
        EXPECT_EQ(decided(AppTier::canWait, observation), "[freeze]");
        EXPECT_EQ(decided(AppTier::checkPeriodically, observation), "[freeze]");
    }
}

TEST(Decide, anApplicationOnceMovedStaysMovedHoweverQuiet) {
    auto observation = observed();
    observation.isEfficient = true;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation), "[]");
    OptimizerTuning withoutEfficiency;
    withoutEfficiency.useEfficiencyCores = false;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation, withoutEfficiency), "[restorePriority]");
}

TEST(Decide, aLimitOfZeroOrLessIsReachedAtOnce) {
    OptimizerTuning tuning;
    auto observation = observed();
    for (const double minutes : {0.0, -5.0}) {
        tuning.idleMinutes = minutes;
        EXPECT_EQ(decided(AppTier::canWait, observation, tuning), "[freeze]") << minutes;
    }
    tuning = {};
    tuning.efficiencyThreshold = 0;
    EXPECT_EQ(decided(AppTier::alwaysOn, observation, tuning), "[makeEfficient]");
}

TEST(ControlAfter, followsTheTransitions) {
    const Date since = now - 500;
    const ControlState running = control::Running{};
    const ControlState frozen = control::Frozen{since, now - 100};
    const ControlState waking = control::Waking{now - 1, since};
    struct Row {
        Decision decision;
        ControlState from;
        ControlState to;
    };
    std::vector<Row> rows{
        {decision::Freeze{}, running, control::Frozen{now, std::nullopt}},
        {decision::Wake{now + 45}, frozen, control::Waking{now + 45, since}},
        {decision::Refreeze{}, waking, control::Frozen{since, now}},
        // What does not concern a state leaves it.
        {decision::Freeze{}, frozen, frozen},
        {decision::Freeze{}, waking, waking},
        {decision::Wake{now + 45}, running, running},
        {decision::Wake{now + 45}, waking, waking},
        {decision::Refreeze{}, running, running},
        {decision::Refreeze{}, frozen, frozen},
    };
    for (const auto reason : allThawReasons)
        for (const auto& state : {running, frozen, waking})
            rows.push_back({decision::Thaw{reason}, state, running});
    for (const auto& state : {running, frozen, waking}) {
        rows.push_back({decision::MakeEfficient{}, state, state});
        rows.push_back({decision::RestorePriority{}, state, state});
    }
    for (const auto& row : rows)
        EXPECT_EQ(toString(controlAfter(row.decision, row.from, now)), toString(row.to))
            << toString(row.decision) << " of " << toString(row.from);
}

// --- Properties ---------------------------------------------------------------------------------------------------

rc::Gen<double> anyDouble() {
    using Limits = std::numeric_limits<double>;
    return rc::gen::oneOf(rc::gen::arbitrary<double>(),
                          rc::gen::element(0.0, -0.0, Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                           Limits::max(), Limits::lowest(), Limits::denorm_min()));
}

rc::Gen<Date> anyDate() {
    return rc::gen::map(rc::gen::oneOf(anyDouble(), rc::gen::map(rc::gen::inRange(-4000, 4000),
                                                                 [](int offset) { return now.seconds + offset; })),
                        [](double seconds) { return Date{seconds}; });
}

template <class Value>
std::optional<Value> maybe(const rc::Gen<Value>& generator) {
    return *rc::gen::arbitrary<bool>() ? std::optional<Value>(*generator) : std::nullopt;
}

ControlState anyControl() {
    switch (*rc::gen::inRange(0, 3)) {
    case 0: return control::Running{};
    case 1: return control::Frozen{*anyDate(), maybe(anyDate())};
    default: return control::Waking{*anyDate(), *anyDate()};
    }
}

OptimizerTuning anyTuning() {
    return {*rc::gen::elementOf(allOptimizerModes),
            *anyDouble(),
            *anyDouble(),
            *anyDouble(),
            *anyDouble(),
            *rc::gen::arbitrary<bool>(),
            *anyDouble()};
}

AppObservation anyObservation() {
    return {*rc::gen::arbitrary<std::string>(),
            *rc::gen::arbitrary<bool>(),
            maybe(anyDate()),
            maybe(anyDate()),
            maybe(rc::gen::elementOf(allProtections)),
            anyControl(),
            *rc::gen::arbitrary<bool>(),
            *anyDouble()};
}

RC_GTEST_PROP(DecideProperties, answersAnythingTheSameWayTwiceAndInAtMostTwoSteps, ()) {
    const auto tier = *rc::gen::elementOf(allAppTiers);
    const auto observation = anyObservation();
    const auto tuning = anyTuning();
    const auto enabled = *rc::gen::arbitrary<bool>();
    const auto date = *anyDate();
    const auto first = decide(tier, observation, tuning, enabled, date);
    RC_ASSERT(first.size() <= 2u);
    RC_ASSERT(toString(decide(tier, observation, tuning, enabled, date)) == toString(first));
    // Two steps are a thaw and then a restored priority, and nothing else.
    if (first.size() == 2) {
        RC_ASSERT(std::holds_alternative<decision::Thaw>(first[0]));
        RC_ASSERT(std::holds_alternative<decision::RestorePriority>(first[1]));
    }
}

RC_GTEST_PROP(DecideProperties, theNameOfAnApplicationDoesNotMatter, ()) {
    const auto tier = *rc::gen::elementOf(allAppTiers);
    auto observation = anyObservation();
    const auto tuning = anyTuning();
    const auto first = toString(decide(tier, observation, tuning, true, now));
    observation.appID += "x";
    RC_ASSERT(toString(decide(tier, observation, tuning, true, now)) == first);
}

RC_GTEST_PROP(DecideProperties, everyDecisionConcernsTheStateThatItIsMadeIn, ()) {
    const auto observation = anyObservation();
    for (const auto& decision :
         decide(*rc::gen::elementOf(allAppTiers), observation, anyTuning(), *rc::gen::arbitrary<bool>(), now)) {
        if (std::holds_alternative<decision::MakeEfficient>(decision))
            RC_ASSERT(!observation.isEfficient);
        else if (std::holds_alternative<decision::RestorePriority>(decision))
            RC_ASSERT(observation.isEfficient);
        else
            RC_ASSERT(controlAfter(decision, observation.control, now).index() != observation.control.index());
    }
}

RC_GTEST_PROP(DecideProperties, switchedOffOrOpenedAnApplicationIsItsOwnAgainAfterOneTick, ()) {
    auto observation = anyObservation();
    const bool enabled = *rc::gen::arbitrary<bool>();
    observation.isFrontmost = enabled || *rc::gen::arbitrary<bool>();
    auto control = observation.control;
    bool efficient = observation.isEfficient;
    for (const auto& decision : decide(*rc::gen::elementOf(allAppTiers), observation, anyTuning(), enabled, now)) {
        control = controlAfter(decision, control, now);
        efficient = efficient && !std::holds_alternative<decision::RestorePriority>(decision);
    }
    RC_ASSERT(std::holds_alternative<control::Running>(control));
    RC_ASSERT(!efficient);
}

RC_GTEST_PROP(DecideProperties, throughAnyNumberOfWakesTheFreezeKeepsItsBeginningAndThePeriodItsLength, ()) {
    OptimizerTuning tuning;
    tuning.checkEveryMinutes = *rc::gen::inRange(1, 60);
    tuning.wakeSeconds = *rc::gen::inRange(1, 120);
    auto observation = observed();
    observation.control = control::Frozen{now, std::nullopt};
    Date stoppedAt = now;
    Date date = now;
    for (int tick = 0; tick < 300; ++tick) {
        date = date + *rc::gen::inRange(1, 300);
        for (const auto& decision : decide(AppTier::checkPeriodically, observation, tuning, true, date)) {
            observation.control = controlAfter(decision, observation.control, date);
            if (std::holds_alternative<decision::Wake>(decision)) {
                RC_ASSERT(date - stoppedAt >= tuning.checkEveryMinutes * 60);
                RC_ASSERT(std::get<control::Waking>(observation.control).frozenSince == now);
                RC_ASSERT(std::get<control::Waking>(observation.control).until == date + tuning.wakeSeconds);
            } else {
                RC_ASSERT(std::holds_alternative<decision::Refreeze>(decision));
                RC_ASSERT(observation.control == ControlState(control::Frozen{now, date}));
                stoppedAt = date;
            }
        }
    }
}

} // namespace
} // namespace tindra
