#include "TindraCore/Config.h"

#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

namespace tindra {
namespace {

const Date now{1'750'000'000};

/// Rules with something in every place.
OptimizerRules fullRules() {
    OptimizerRules rules;
    rules.tiers = {{"com.example.chat", AppTier::checkPeriodically},
                   {"com.example.notes", AppTier::canWait},
                   {"com.example.on", AppTier::alwaysOn}};
    rules.schedules = {
        {UUID{{1}}, "Office", true, {540, 1020, {2, 3, 4, 5, 6}}, {{"com.example.mail", AppTier::canWait}}},
        {UUID{{2}},
         "Night",
         true,
         {1320, 360, {7, 6}},
         {{"com.example.game", AppTier::alwaysOn}, {"com.example.chat", AppTier::canWait}}},
        {UUID{{3}}, "Kept", false, {0, 0, {1}}, {{"com.example.kept", AppTier::canWait}}}};
    rules.neverTouch = {"com.example.player", "com.example.editor"};
    return rules;
}

OptimizerConfig config(const OptimizerRules& rules, const OptimizerTuning& tuning = {}) {
    return {true, tuning, rules};
}

TEST(OptimizerConfig, takesItsFieldsFromSwitchTuningAndRules) {
    const OptimizerTuning tuning{OptimizerMode::balanced, 7, 2, 20, 30, false, 0.1};
    const OptimizerConfig setup(true, tuning, fullRules());
    EXPECT_TRUE(setup.enabled);
    EXPECT_EQ(setup.mode, OptimizerMode::balanced);
    EXPECT_EQ(setup.freezeAfterMinutes, 7);
    EXPECT_EQ(setup.checkEveryMinutes, 20);
    EXPECT_EQ(setup.wakeSeconds, 30);
    EXPECT_FALSE(setup.efficiencyCores);
    EXPECT_EQ(setup.appRules, 4); // chat, notes, mail, game
    EXPECT_EQ(setup.schedules, 2);
    EXPECT_EQ(setup.fingerprint, "47fe1a0862464c42");
    EXPECT_EQ(setup.key(), "on|balanced|7|20|30|-|47fe1a0862464c42");
    EXPECT_EQ(setup.label(), "Balanced, freeze after 7 min, efficiency cores off, 4 app rules, 2 schedules");
}

TEST(OptimizerConfig, inFocusModeItsIdleTimeIsThatOfFocus) {
    OptimizerTuning tuning;
    tuning.mode = OptimizerMode::focus;
    const auto setup = config({}, tuning);
    EXPECT_EQ(setup.freezeAfterMinutes, 3);
    EXPECT_EQ(setup.key(), "on|focus|3|15|45|e|cbf29ce484222325");
    EXPECT_EQ(setup.label(), "Focus, freeze after 3 min, efficiency cores on, no app rules");
}

TEST(OptimizerConfig, offIsTheDefaultsSwitchedOff) {
    const auto off = OptimizerConfig::off();
    EXPECT_EQ(off, OptimizerConfig(false, {}, {}));
    EXPECT_FALSE(off.enabled);
    EXPECT_EQ(off.mode, OptimizerMode::balanced);
    EXPECT_EQ(off.freezeAfterMinutes, 10);
    EXPECT_EQ(off.checkEveryMinutes, 15);
    EXPECT_EQ(off.wakeSeconds, 45);
    EXPECT_TRUE(off.efficiencyCores);
    EXPECT_EQ(off.appRules, 0);
    EXPECT_EQ(off.schedules, 0);
    EXPECT_EQ(off.fingerprint, "cbf29ce484222325");
    EXPECT_EQ(off.key(), "off");
    EXPECT_EQ(off.label(), "Optimization off");
}

TEST(OptimizerConfig, switchedOffItIsOffWhateverItsRules) {
    const OptimizerConfig setup(false, {OptimizerMode::focus, 1, 1, 1, 1, false, 1}, fullRules());
    EXPECT_EQ(setup.key(), "off");
    EXPECT_EQ(setup.label(), "Optimization off");
    EXPECT_EQ(setup.fingerprint, "47fe1a0862464c42");
    EXPECT_NE(setup, OptimizerConfig::off());
}

TEST(OptimizerConfig, theKeyOfMinutesFromBeforeSetupsWereStored) {
    EXPECT_EQ(OptimizerConfig::unrecordedOn, "on-unrecorded");
}

TEST(OptimizerConfig, roundsHalvesAwayFromZero) {
    struct Row {
        double value;
        std::int64_t rounded;
    };
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    const Row rows[] = {
        {0, 0},
        {0.49, 0},
        {0.49999999999999994, 0}, // the last double below a half
        {0.5, 1},
        {1.5, 2},
        {2.5, 3},
        {2.4999999999999996, 2},
        {-0.49, 0},
        {-0.5, -1},
        {-2.5, -3},
        {4503599627370497.5, 4503599627370498},       // 2^52 + 1.5
        {9223372036854774784.0, 9223372036854774784}, // the last double below 2^63
        {9223372036854775808.0, INT64_MAX},
        {-9223372036854775808.0, INT64_MIN},
        {-9223372036854777856.0, INT64_MIN},
        {infinity, INT64_MAX},
        {-infinity, INT64_MIN},
        {std::numeric_limits<double>::quiet_NaN(), 0},
    };
    for (const auto& row : rows) {
        const OptimizerTuning balanced{OptimizerMode::balanced, row.value, 1, row.value, row.value, true, 0.1};
        const OptimizerTuning focus{OptimizerMode::focus, 1, row.value, row.value, row.value, true, 0.1};
        for (const auto& tuning : {balanced, focus}) {
            const auto setup = config({}, tuning);
            EXPECT_EQ(setup.freezeAfterMinutes, row.rounded) << row.value;
            EXPECT_EQ(setup.checkEveryMinutes, row.rounded) << row.value;
            EXPECT_EQ(setup.wakeSeconds, row.rounded) << row.value;
        }
    }
}

TEST(OptimizerConfig, itsFingerprintIsThatOfThePublishedHash) {
    struct Row {
        const char* text; // what is hashed
        OptimizerRules rules;
        const char* fingerprint;
    };
    const auto tiers = [](AppTiers all) { return OptimizerRules{std::move(all), {}, {}, {}}; };
    const auto windows = [](std::vector<DailyWindow> all, const AppTiers& entries) {
        OptimizerRules rules;
        for (auto& window : all)
            rules.schedules.push_back({UUID{}, "", true, std::move(window), entries});
        return rules;
    };
    const Row rows[] = {
        {"", {}, "cbf29ce484222325"},
        {"a=canWait", tiers({{"a", AppTier::canWait}}), "df264e658c7c437e"},
        {"without padding: app262=canWait", tiers({{"app262", AppTier::canWait}}), "8eca619f50dff8"},
        {"bytes of UTF-8: café=canWait", tiers({{"caf\u00E9", AppTier::canWait}}), "7029333146a51773"},
        {"lines sorted as lines: a-b=canWait, a=canWait", tiers({{"a", AppTier::canWait}, {"a-b", AppTier::canWait}}),
         "df55a3ad356b8f2"},
        {"N:a", {{}, {}, {}, {"a"}}, "37fcef19c3c9ac90"},
        {"S[0-0||]", windows({{0, 0, {}}}, {}), "54c98b8d9acf05db"},
        {"entries sorted as entries: S[0-0|1|a-b=canWait;a=canWait]",
         windows({{0, 0, {1}}}, {{"a", AppTier::canWait}, {"a-b", AppTier::canWait}}), "cffa0c9f6c63a6d6"},
        {"schedules sorted as lines: S[10-0||], S[9-0||]", windows({{9, 0, {}}, {10, 0, {}}}, {}), "84f7ebad58eaa393"},
        {"all of it", fullRules(), "47fe1a0862464c42"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(config(row.rules).fingerprint, row.fingerprint) << row.text;
}

TEST(OptimizerConfig, setupsThatDifferOnlyInAnOverrideAreOne) {
    auto rules = fullRules();
    rules.setOverride("com.example.chat", AppTier::alwaysOn, now);
    EXPECT_EQ(config(rules).key(), config(fullRules()).key());
    EXPECT_EQ(config(rules), config(fullRules()));
}

TEST(OptimizerConfig, theOrderTheNameAndTheIdentityOfSchedulesDoNotMatter) {
    auto rules = fullRules();
    std::swap(rules.schedules[0], rules.schedules[1]);
    rules.schedules[0].name = "Renamed";
    rules.schedules[1].id = UUID{{9}};
    EXPECT_EQ(config(rules), config(fullRules()));
}

TEST(OptimizerConfig, switchingAScheduleOffChangesTheFingerprint) {
    auto rules = fullRules();
    rules.schedules[0].isEnabled = false;
    EXPECT_NE(config(rules).fingerprint, config(fullRules()).fingerprint);
    EXPECT_EQ(config(rules).schedules, 1);
    EXPECT_EQ(config(rules).appRules, 3);
}

TEST(OptimizerConfig, whatIsAlwaysOnIsAsIfItHadNeverBeenClassified) {
    auto rules = fullRules();
    rules.tiers["com.example.notes"] = AppTier::alwaysOn;
    auto without = fullRules();
    without.tiers.erase("com.example.notes");
    without.tiers.erase("com.example.on");
    EXPECT_EQ(config(rules), config(without));
    EXPECT_EQ(config(rules).appRules, 3);
    EXPECT_NE(config(rules).fingerprint, config(fullRules()).fingerprint);
}

TEST(OptimizerConfig, theEfficiencyThresholdIsNoPartOfIt) {
    OptimizerTuning tuning;
    tuning.efficiencyThreshold = 0.9;
    EXPECT_EQ(config({}, tuning), config({}));
}

TEST(OptimizerConfig, eachPartOfTheTuningChangesTheKey) {
    std::vector<OptimizerTuning> others(5);
    others[0].mode = OptimizerMode::focus;
    others[1].idleMinutes = 11;
    others[2].checkEveryMinutes = 16;
    others[3].wakeSeconds = 46;
    others[4].useEfficiencyCores = false;
    for (std::size_t i = 0; i < others.size(); ++i) {
        EXPECT_NE(config({}, others[i]).key(), config({}).key()) << i;
        EXPECT_NE(config({}, others[i]), config({})) << i;
    }
}

TEST(OptimizerConfig, itsLabelCountsInWords) {
    struct Row {
        std::int64_t apps;
        std::int64_t schedules;
        const char* rules;
    };
    const Row rows[] = {
        {0, 0, "no app rules"},
        {0, 1, "no app rules"},
        {0, 3, "no app rules"},
        {1, 0, "1 app rule"},
        {1, 1, "1 app rule, 1 schedule"},
        {2, 1, "2 app rules, 1 schedule"},
        {1, 2, "1 app rule, 2 schedules"},
        {11, 0, "11 app rules"},
    };
    for (const auto& row : rows) {
        OptimizerRules rules;
        for (std::int64_t i = 0; i < row.apps; ++i)
            rules.tiers.emplace("app" + std::to_string(i), AppTier::canWait);
        for (std::int64_t i = 0; i < row.schedules; ++i)
            rules.schedules.push_back({});
        EXPECT_EQ(config(rules).label(),
                  std::string("Balanced, freeze after 10 min, efficiency cores on, ") + row.rules);
    }
}

TEST(ConfigStats, isEmptyByItself) {
    EXPECT_EQ(ConfigStats{}, (ConfigStats{0, 0, 0, 0, 0, 0}));
    EXPECT_NE(ConfigStats{}, (ConfigStats{0, 0, 1, 0, 0, 0}));
}

TEST(ConfigStats, isReliableFromThirtyMinutesOn) {
    EXPECT_EQ(ConfigStats::reliableMinutes, 30);
    EXPECT_FALSE((ConfigStats{29, 0, 0, 0, 0, 0}).isReliable());
    EXPECT_TRUE((ConfigStats{30, 0, 0, 0, 0, 0}).isReliable());
    EXPECT_TRUE((ConfigStats{31, 0, 0, 0, 0, 0}).isReliable());
    EXPECT_FALSE(ConfigStats{}.isReliable());
}

TEST(ConfigStats, derivesItsRates) {
    const ConfigStats stats{90, 9, 4, 3'000'000'000, 6, 12};
    EXPECT_EQ(stats.hours(), 1.5);
    EXPECT_EQ(stats.pressureShare(), 0.1);
    EXPECT_EQ(stats.readBackPerHour(), 2e9);
    EXPECT_EQ(stats.slowdownsPerHour(), 4);
    EXPECT_EQ(stats.stallsPerHour(), 8);
}

TEST(ConfigStats, withoutMinutesHasNoRates) {
    for (const std::int64_t minutes : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
        const ConfigStats stats{minutes, 5, 5, 5, 5, 5};
        EXPECT_EQ(stats.pressureShare(), 0) << minutes;
        EXPECT_EQ(stats.readBackPerHour(), 0) << minutes;
        EXPECT_EQ(stats.slowdownsPerHour(), 0) << minutes;
        EXPECT_EQ(stats.stallsPerHour(), 0) << minutes;
    }
    const ConfigStats one{1, 1, 1, 1, 1, 1};
    EXPECT_EQ(one.pressureShare(), 1);
    EXPECT_DOUBLE_EQ(one.readBackPerHour(), 60);
}

TEST(ConfigChange, hasItsPercentAndVerdict) {
    using enum ConfigChange::Verdict;
    struct Row {
        double before;
        double after;
        double percent;
        ConfigChange::Verdict verdict;
    };
    constexpr auto nan = std::numeric_limits<double>::quiet_NaN();
    const Row rows[] = {
        {0, 0, 0, same},         {0, 0.1, 0, worse},   {0, -1, 0, same},      {-1, 0, 0, same},
        {-1, 0.1, 0, worse},     {nan, 1, 0, worse},   {nan, nan, 0, same},   {10, 10, 0, same},
        {10, 9.5, -5, better},   {10, 10.5, 5, worse}, {100, 96, -4, same},   {100, 104, 4, same},
        {100, 95, -5, better},   {100, 105, 5, worse}, {10, 0, -100, better}, {10, 30, 200, worse},
        {10, -10, -200, better},
    };
    for (const auto& row : rows) {
        const ConfigChange change{"", row.before, row.after};
        EXPECT_EQ(change.percent(), row.percent) << row.before << " to " << row.after;
        EXPECT_EQ(change.verdict(), row.verdict) << row.before << " to " << row.after;
    }
    EXPECT_EQ((ConfigChange{"", 100, 95.001}).verdict(), same);
    EXPECT_EQ((ConfigChange{"", 100, 104.999}).verdict(), same);
    EXPECT_EQ((ConfigChange{"", 10, nan}).verdict(), same);
}

TEST(Compare, answersTheFourMeasuresInOrder) {
    const ConfigStats baseline{60, 6, 1, 1000, 3, 2};
    const ConfigStats candidate{120, 6, 1, 1000, 12, 4};
    const std::array<ConfigChange, 4> expected{{
        {"Time under memory pressure", 0.1, 0.05},
        {"Memory read back from the SSD", 1000, 500},
        {"Slowdowns per hour", 3, 6},
        {"Freezes of half a second or more per hour", 2, 2},
    }};
    const auto changes = compare(baseline, candidate);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(changes[i], expected[i]) << changes[i].name;
    }
    EXPECT_EQ(changes[0].verdict(), ConfigChange::Verdict::better);
    EXPECT_EQ(changes[1].verdict(), ConfigChange::Verdict::better);
    EXPECT_EQ(changes[2].verdict(), ConfigChange::Verdict::worse);
    EXPECT_EQ(changes[3].verdict(), ConfigChange::Verdict::same);
}

TEST(Compare, ofNothingWithNothingIsTheSame) {
    for (const auto& change : compare({}, {})) {
        EXPECT_EQ(change.before, 0) << change.name;
        EXPECT_EQ(change.after, 0) << change.name;
        EXPECT_EQ(change.verdict(), ConfigChange::Verdict::same) << change.name;
    }
}

// --- Properties ---------------------------------------------------------------------------------------------------

std::string anyApp() {
    return *rc::gen::element<std::string>("a", "b", "a.b");
}

AppTiers anyTiers() {
    AppTiers tiers;
    for (int count = *rc::gen::inRange(0, 3); count > 0; --count)
        tiers.insert_or_assign(anyApp(), *rc::gen::elementOf(allAppTiers));
    return tiers;
}

/// From so few possibilities that equal rules come up often.
OptimizerRules anyRules() {
    OptimizerRules rules;
    rules.tiers = anyTiers();
    for (int count = *rc::gen::inRange(0, 3); count > 0; --count)
        rules.schedules.push_back({UUID{{*rc::gen::arbitrary<std::uint8_t>()}},
                                   anyApp(),
                                   *rc::gen::arbitrary<bool>(),
                                   {*rc::gen::inRange(0, 2), *rc::gen::inRange(0, 2), {*rc::gen::inRange(1, 3)}},
                                   anyTiers()});
    if (*rc::gen::arbitrary<bool>())
        rules.overrides.push_back({anyApp(), *rc::gen::elementOf(allAppTiers), now});
    if (*rc::gen::arbitrary<bool>())
        rules.neverTouch.insert(anyApp());
    return rules;
}

/// What changes behaviour, as values.
auto behaviourOf(const OptimizerRules& rules) {
    AppTiers tiers;
    for (const auto& [app, tier] : rules.tiers)
        if (tier != AppTier::alwaysOn)
            tiers.emplace(app, tier);
    std::multiset<std::tuple<int, int, std::set<int>, AppTiers>> schedules;
    for (const auto& one : rules.schedules)
        if (one.isEnabled)
            schedules.emplace(one.window.start, one.window.end, one.window.weekdays, one.tiers);
    return std::tuple(tiers, schedules, rules.neverTouch);
}

RC_GTEST_PROP(FingerprintProperties, areEqualExactlyWhenTheRulesBehaveAlike, ()) {
    const auto one = anyRules();
    const auto other = anyRules();
    RC_ASSERT((config(one).fingerprint == config(other).fingerprint) == (behaviourOf(one) == behaviourOf(other)));
}

RC_GTEST_PROP(FingerprintProperties, stayWhenSchedulesAreShuffledRenamedAndOverridesComeAndGo, ()) {
    const auto rules = anyRules();
    auto other = rules;
    std::reverse(other.schedules.begin(), other.schedules.end());
    for (auto& one : other.schedules)
        one.name += "x";
    other.overrides.push_back({anyApp(), AppTier::canWait, now});
    other.tiers.emplace("unheard-of", AppTier::alwaysOn);
    RC_ASSERT(config(other) == config(rules));
}

RC_GTEST_PROP(FingerprintProperties, areOneToSixteenDigitsInLowerCase, ()) {
    const auto fingerprint = config(anyRules()).fingerprint;
    RC_ASSERT(!fingerprint.empty() && fingerprint.size() <= 16u);
    RC_ASSERT(fingerprint.find_first_not_of("0123456789abcdef") == std::string::npos);
    RC_ASSERT(fingerprint.front() != '0');
}

} // namespace
} // namespace tindra
