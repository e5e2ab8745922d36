#include "TindraCore/Rules.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>
#include <unordered_set>

namespace tindra {
namespace {

const Date now{1'750'000'000};
enum : int { sunday = 1, monday, tuesday, wednesday, thursday, friday, saturday };
const std::set<int> everyDay{1, 2, 3, 4, 5, 6, 7};

constexpr int clock(int hour, int minute = 0) {
    return hour * 60 + minute;
}

Schedule schedule(std::string name, DailyWindow window, AppTiers tiers) {
    return {UUID{}, std::move(name), true, std::move(window), std::move(tiers)};
}

std::string found(const OptimizerRules& rules, std::string_view appID, Date date = now,
                  const LocalTime& time = {wednesday, 12, 0}) {
    const auto effective = rules.tier(appID, date, time);
    return std::string(rawValue(effective.tier)) + " by " + toString(effective.source);
}

TEST(AppTier, hasItsTextsInOrder) {
    struct Row {
        AppTier tier;
        const char* raw;
        const char* label;
    };
    const Row rows[] = {{AppTier::alwaysOn, "alwaysOn", "Always on"},
                        {AppTier::checkPeriodically, "checkPeriodically", "Check every few minutes"},
                        {AppTier::canWait, "canWait", "Can wait"}};
    ASSERT_EQ(allAppTiers.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allAppTiers[i], rows[i].tier);
        EXPECT_EQ(rawValue(rows[i].tier), rows[i].raw);
        EXPECT_EQ(appTier(rows[i].raw), rows[i].tier);
        EXPECT_EQ(label(rows[i].tier), rows[i].label);
    }
    for (const char* text : {"", "AlwaysOn", "canWait ", "Can wait", "never"})
        EXPECT_EQ(appTier(text), std::nullopt) << text;
}

TEST(DailyWindow, crossesMidnightWhenItEndsBeforeItsStart) {
    EXPECT_TRUE((DailyWindow{clock(22), clock(6), {}}).crossesMidnight());
    EXPECT_TRUE((DailyWindow{1, 0, {}}).crossesMidnight());
    EXPECT_FALSE((DailyWindow{clock(9), clock(9), {}}).crossesMidnight());
    EXPECT_FALSE((DailyWindow{clock(9), clock(17), {}}).crossesMidnight());
}

TEST(DailyWindow, containsWhatItSays) {
    const DailyWindow night{clock(22), clock(6), {friday}};
    const DailyWindow office{clock(9), clock(17), {monday, friday}};
    const DailyWindow wholeDays{clock(9), clock(9), {tuesday, saturday}};
    const DailyWindow saturdayNight{clock(23), clock(2), {saturday}};
    const DailyWindow never{clock(9), clock(17), {}};
    struct Row {
        const char* name;
        DailyWindow window;
        LocalTime time;
        bool isContained;
    };
    const Row rows[] = {
        {"Friday 23:00", night, {friday, 23, 0}, true},
        {"the start", night, {friday, 22, 0}, true},
        {"the minute before the start", night, {friday, 21, 59}, false},
        {"Friday's last minute", night, {friday, 23, 59}, true},
        {"midnight", night, {saturday, 0, 0}, true},
        {"Saturday 05:59", night, {saturday, 5, 59}, true},
        {"Saturday 06:00", night, {saturday, 6, 0}, false},
        {"Friday 05:00", night, {friday, 5, 0}, false},
        {"Saturday 23:00", night, {saturday, 23, 0}, false},

        {"the night after Saturday", saturdayNight, {sunday, 1, 0}, true},
        {"the night after Saturday, its end", saturdayNight, {sunday, 2, 0}, false},
        {"Sunday's own night", saturdayNight, {sunday, 23, 30}, false},
        {"the night after Sunday", saturdayNight, {monday, 1, 0}, false},
        {"before Saturday", saturdayNight, {saturday, 1, 0}, false},

        {"before the office opens", office, {monday, 8, 59}, false},
        {"the office opens", office, {monday, 9, 0}, true},
        {"the office's last minute", office, {friday, 16, 59}, true},
        {"the office closes", office, {friday, 17, 0}, false},
        {"a day that is not named", office, {tuesday, 12, 0}, false},

        {"a whole day, its first minute", wholeDays, {tuesday, 0, 0}, true},
        {"a whole day, its hour", wholeDays, {tuesday, 9, 0}, true},
        {"a whole day, the minute before", wholeDays, {saturday, 8, 59}, true},
        {"a whole day, its last minute", wholeDays, {saturday, 23, 59}, true},
        {"the day after", wholeDays, {sunday, 0, 0}, false},

        {"no weekdays", never, {monday, 12, 0}, false},
        {"no weekdays, the whole day", {0, 0, {}}, {monday, 12, 0}, false},
        {"no weekdays, over midnight", {clock(22), clock(6), {}}, {monday, 23, 0}, false},

        {"no weekday known", {0, 0, everyDay}, {std::nullopt, 12, 0}, false},
        {"no hour known, inside", {0, clock(1), everyDay}, {monday, std::nullopt, 59}, true},
        {"no hour known, outside", office, {monday, std::nullopt, 59}, false},
        {"no minute known", {clock(9), clock(9, 1), everyDay}, {monday, 9, std::nullopt}, true},
        {"no minute known, outside", {clock(9, 1), clock(10), everyDay}, {monday, 9, std::nullopt}, false},
        {"only the weekday known", {0, 1, everyDay}, {monday, std::nullopt, std::nullopt}, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.window.contains(row.time), row.isContained) << row.name;
}

TEST(OptimizerRules, thatAreEmptyLeaveEverythingOn) {
    EXPECT_EQ(found({}, "org.example.app"), "alwaysOn by unchosen");
    EXPECT_EQ(OptimizerRules{}, OptimizerRules{});
}

TEST(OptimizerRules, anEntryInTheTiersIsTheUsualRule) {
    OptimizerRules rules;
    rules.tiers = {{"org.example.app", AppTier::canWait}, {"org.example.on", AppTier::alwaysOn}};
    EXPECT_EQ(found(rules, "org.example.app"), "canWait by usual");
    EXPECT_EQ(found(rules, "org.example.on"), "alwaysOn by usual");
    EXPECT_EQ(found(rules, "org.example.APP"), "alwaysOn by unchosen");
}

TEST(OptimizerRules, anOverrideOutranksAScheduleAndThatTheUsualRule) {
    OptimizerRules rules;
    rules.tiers = {{"a", AppTier::canWait}};
    rules.schedules = {schedule("Day", {0, 0, everyDay}, {{"a", AppTier::checkPeriodically}})};
    rules.overrides = {{"a", AppTier::alwaysOn, now + 10}};
    EXPECT_EQ(found(rules, "a"), "alwaysOn by override(until: 1750000010)");
    rules.overrides.clear();
    EXPECT_EQ(found(rules, "a"), "checkPeriodically by schedule(Day)");
    rules.schedules.clear();
    EXPECT_EQ(found(rules, "a"), "canWait by usual");
}

TEST(OptimizerRules, anOverrideNoLongerAppliesAtItsEnd) {
    OptimizerRules rules;
    rules.overrides = {{"a", AppTier::canWait, now}};
    EXPECT_EQ(found(rules, "a", now - 0.001), "canWait by override(until: 1.75e+09)");
    EXPECT_EQ(found(rules, "a", now), "alwaysOn by unchosen");
    EXPECT_EQ(found(rules, "a", now + 1), "alwaysOn by unchosen");
    EXPECT_FALSE(rules.pruneOverrides(now - 0.001));
    EXPECT_EQ(rules.overrides.size(), 1u);
    EXPECT_TRUE(rules.pruneOverrides(now));
    EXPECT_TRUE(rules.overrides.empty());
    EXPECT_FALSE(rules.pruneOverrides(now));
}

TEST(OptimizerRules, ofSeveralOverridesTheLastThatStillAppliesCounts) {
    OptimizerRules rules;
    rules.overrides = {{"a", AppTier::canWait, now + 5},
                       {"a", AppTier::checkPeriodically, now + 3},
                       {"b", AppTier::alwaysOn, now + 9},
                       {"a", AppTier::alwaysOn, now}};
    EXPECT_EQ(found(rules, "a", now - 1), "alwaysOn by override(until: 1.75e+09)");
    EXPECT_EQ(found(rules, "a", now), "checkPeriodically by override(until: 1750000003)");
    EXPECT_EQ(found(rules, "a", now + 3), "canWait by override(until: 1750000005)");
    EXPECT_EQ(found(rules, "a", now + 5), "alwaysOn by unchosen");
}

TEST(OptimizerRules, aScheduleThatIsSwitchedOffIsIgnoredThoughItsWindowIsOpen) {
    OptimizerRules rules;
    rules.schedules = {schedule("Day", {0, 0, everyDay}, {{"a", AppTier::canWait}})};
    EXPECT_EQ(found(rules, "a"), "canWait by schedule(Day)");
    rules.schedules[0].isEnabled = false;
    EXPECT_EQ(found(rules, "a"), "alwaysOn by unchosen");
}

TEST(OptimizerRules, aScheduleWhoseWindowIsClosedIsPassedOver) {
    OptimizerRules rules;
    rules.tiers = {{"a", AppTier::canWait}};
    rules.schedules = {schedule("Morning", {clock(6), clock(12), everyDay}, {{"a", AppTier::checkPeriodically}}),
                       schedule("Noon", {clock(12), clock(13), everyDay}, {{"a", AppTier::alwaysOn}})};
    EXPECT_EQ(found(rules, "a", now, {monday, 11, 59}), "checkPeriodically by schedule(Morning)");
    EXPECT_EQ(found(rules, "a", now, {monday, 12, 0}), "alwaysOn by schedule(Noon)");
    EXPECT_EQ(found(rules, "a", now, {monday, 13, 0}), "canWait by usual");
    EXPECT_EQ(found(rules, "a", now, {std::nullopt, 12, 0}), "canWait by usual");
}

TEST(OptimizerRules, ofTwoOpenSchedulesTheFirstThatNamesTheApplicationAnswers) {
    OptimizerRules rules;
    rules.schedules = {schedule("First", {0, 0, everyDay}, {{"b", AppTier::canWait}}),
                       schedule("Second", {0, 0, everyDay}, {{"a", AppTier::canWait}, {"b", AppTier::alwaysOn}})};
    EXPECT_EQ(found(rules, "a"), "canWait by schedule(Second)");
    EXPECT_EQ(found(rules, "b"), "canWait by schedule(First)");
    std::swap(rules.schedules[0], rules.schedules[1]);
    EXPECT_EQ(found(rules, "b"), "alwaysOn by schedule(Second)");
}

TEST(OptimizerRules, theNeverTouchListIsNoTier) {
    OptimizerRules rules;
    rules.neverTouch = {"a"};
    EXPECT_EQ(found(rules, "a"), "alwaysOn by unchosen");
}

TEST(OptimizerRules, aSecondOverrideReplacesTheFirstAndStandsLast) {
    OptimizerRules rules;
    rules.setOverride("a", AppTier::canWait, now + 1);
    rules.setOverride("b", AppTier::canWait, now + 2);
    rules.setOverride("a", AppTier::checkPeriodically, now + 3);
    EXPECT_EQ(rules.overrides, (std::vector<TierOverride>{{"b", AppTier::canWait, now + 2},
                                                          {"a", AppTier::checkPeriodically, now + 3}}));
}

TEST(OptimizerRules, setOverrideRemovesEveryEarlierEntryAndKeepsTheOrderOfTheOthers) {
    OptimizerRules rules;
    for (const char* app : {"a", "b", "a", "c", "a"})
        rules.overrides.push_back({app, AppTier::canWait, now});
    rules.setOverride("a", AppTier::alwaysOn, now + 1);
    EXPECT_EQ(rules.overrides,
              (std::vector<TierOverride>{
                  {"b", AppTier::canWait, now}, {"c", AppTier::canWait, now}, {"a", AppTier::alwaysOn, now + 1}}));
    // Its own entry's text as the argument, which goes away meanwhile.
    rules.setOverride(rules.overrides[2].appID, AppTier::canWait, now + 2);
    EXPECT_EQ(rules.overrides.back(), (TierOverride{"a", AppTier::canWait, now + 2}));
    EXPECT_EQ(rules.overrides.size(), 3u);
}

TEST(OptimizerRules, removeOverrideRemovesEveryEntryOfTheApplication) {
    OptimizerRules rules;
    for (const char* app : {"a", "b", "a", "c"})
        rules.overrides.push_back({app, AppTier::canWait, now});
    rules.removeOverride(rules.overrides[0].appID);
    EXPECT_EQ(rules.overrides, (std::vector<TierOverride>{{"b", AppTier::canWait, now}, {"c", AppTier::canWait, now}}));
    rules.removeOverride("nobody");
    EXPECT_EQ(rules.overrides.size(), 2u);
}

TEST(OptimizerRules, pruningKeepsTheOrderOfWhatStays) {
    OptimizerRules rules;
    rules.overrides = {{"a", AppTier::canWait, now + 9},
                       {"b", AppTier::canWait, now - 1},
                       {"c", AppTier::canWait, now + 1},
                       {"d", AppTier::canWait, now}};
    EXPECT_TRUE(rules.pruneOverrides(now));
    EXPECT_EQ(rules.overrides,
              (std::vector<TierOverride>{{"a", AppTier::canWait, now + 9}, {"c", AppTier::canWait, now + 1}}));
}

TEST(OptimizerRules, compareEveryFieldOfEveryRecord) {
    OptimizerRules rules;
    rules.tiers = {{"a", AppTier::canWait}};
    rules.schedules = {schedule("Night", {1, 2, {3}}, {{"a", AppTier::canWait}})};
    rules.overrides = {{"a", AppTier::canWait, now}};
    rules.neverTouch = {"a"};
    std::vector<OptimizerRules> others(13, rules);
    others[0].tiers["a"] = AppTier::alwaysOn;
    others[1].schedules.clear();
    others[2].overrides.clear();
    others[3].neverTouch = {"b"};
    others[4].schedules[0].id.bytes[0] = 1;
    others[5].schedules[0].name = "Day";
    others[6].schedules[0].isEnabled = false;
    others[7].schedules[0].window.start = 0;
    others[8].schedules[0].window.end = 0;
    others[9].schedules[0].window.weekdays = {4};
    others[10].schedules[0].tiers.clear();
    others[11].overrides[0].tier = AppTier::alwaysOn;
    others[12].overrides[0].until = now + 1;
    for (std::size_t i = 0; i < others.size(); ++i)
        EXPECT_NE(rules, others[i]) << i;
    EXPECT_EQ(rules, OptimizerRules(rules));
}

TEST(Source, isEqualAndHashedByWhatItSays) {
    using Source = OptimizerRules::Source;
    const std::unordered_set<Source> sources{source::Override{now}, source::Override{now + 1}, source::Override{now},
                                             source::Schedule{"a"}, source::Schedule{"b"},     source::Schedule{"a"},
                                             source::Usual{},       source::Usual{},           source::Unchosen{},
                                             source::Unchosen{}};
    EXPECT_EQ(sources.size(), 6u);
    EXPECT_TRUE(sources.contains(source::Schedule{"b"}));
    EXPECT_FALSE(sources.contains(source::Schedule{"c"}));
    EXPECT_EQ(std::hash<Source>()(source::Override{Date{0.0}}), std::hash<Source>()(source::Override{Date{-0.0}}));
}

// --- Properties ---------------------------------------------------------------------------------------------------

DailyWindow anyWindow() {
    // Often the same minute, the borders of a day, and neighbours.
    const auto minute = rc::gen::oneOf(rc::gen::inRange(0, 1440), rc::gen::element(0, 1, 719, 720, 721, 1439));
    return {*minute, *minute, *rc::gen::container<std::set<int>>(rc::gen::inRange(1, 8))};
}

/// The minutes of the week, counted from Sunday's midnight, that a window covers when one walks along it from the start
/// of each of its days.
std::set<int> walked(const DailyWindow& window) {
    constexpr int day = 1440;
    std::set<int> minutes;
    for (const int weekday : window.weekdays) {
        const bool isWhole = window.start == window.end;
        const int first = (weekday - 1) * day + (isWhole ? 0 : window.start);
        const int length = isWhole ? day : (window.end - window.start + day) % day;
        for (int minute = first; minute < first + length; ++minute)
            minutes.insert(minute % (7 * day));
    }
    return minutes;
}

RC_GTEST_PROP(DailyWindowProperties, containsTheMinutesThatOneWalksThrough, ()) {
    const auto window = anyWindow();
    const auto minutes = walked(window);
    for (int minute = 0; minute < 7 * 1440; ++minute)
        RC_ASSERT(window.contains({minute / 1440 + 1, minute / 60 % 24, minute % 60}) == minutes.contains(minute));
}

RC_GTEST_PROP(OverrideProperties, anApplicationHasAtMostOneAndTheNewestStandsLast, ()) {
    OptimizerRules rules;
    std::map<std::string, TierOverride> told;
    Date date = now;
    for (int step = *rc::gen::inRange(0, 60); step > 0; --step) {
        const std::string app(1, *rc::gen::inRange('a', 'e'));
        date = date + *rc::gen::inRange(0, 20);
        switch (*rc::gen::inRange(0, 3)) {
        case 0: {
            const TierOverride rule{app, *rc::gen::elementOf(allAppTiers), date + *rc::gen::inRange(-5, 60)};
            rules.setOverride(rule.appID, rule.tier, rule.until);
            told.insert_or_assign(app, rule);
            RC_ASSERT(rules.overrides.back() == rule);
            break;
        }
        case 1:
            rules.removeOverride(app);
            told.erase(app);
            break;
        default: {
            const auto ended = std::erase_if(told, [&](const auto& entry) { return entry.second.until <= date; });
            RC_ASSERT(rules.pruneOverrides(date) == (ended > 0));
        }
        }
        RC_ASSERT(rules.overrides.size() == told.size());
        for (const auto& rule : rules.overrides)
            RC_ASSERT(told.at(rule.appID) == rule);
    }
}

RC_GTEST_PROP(OverrideProperties, pruningChangesNoTier, ()) {
    OptimizerRules rules;
    for (int count = *rc::gen::inRange(0, 12); count > 0; --count)
        rules.overrides.push_back({std::string(1, *rc::gen::inRange('a', 'd')), *rc::gen::elementOf(allAppTiers),
                                   now + *rc::gen::inRange(-5, 5)});
    auto pruned = rules;
    pruned.pruneOverrides(now);
    for (const char* app : {"a", "b", "c"})
        RC_ASSERT(pruned.tier(app, now, {}) == rules.tier(app, now, {}));
}

} // namespace
} // namespace tindra
