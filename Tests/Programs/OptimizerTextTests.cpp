#include "Programs/CommandLine/OptimizerText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using tindra::AppTier;
using tindra::Protection;
using tindra::ThawReason;
namespace control = tindra::control;
namespace decision = tindra::decision;
namespace source = tindra::source;

/// 2023-11-14 22:13:20 UTC.
constexpr Date now{1'700'000'000};
const tindra::Date coreNow{1'700'000'000};

const Calendar& calendar() {
    static const Calendar british{"en_GB", "UTC"};
    return british;
}

PlannedApp planned(std::vector<tindra::Decision> decisions) {
    PlannedApp app{.id = "a", .name = "A", .tier = AppTier::canWait};
    app.decisions = std::move(decisions);
    return app;
}

TEST(Outlook, saysWhatIsDone) {
    auto resumed = planned({decision::Thaw{ThawReason::protected_}});
    resumed.protection = Protection::playingAudio;
    auto busy = planned({decision::MakeEfficient{}});
    busy.cpu = 1.5;
    const std::pair<PlannedApp, const char*> rows[] = {
        {planned({decision::Freeze{}}), "freeze"},
        {planned({decision::Refreeze{}}), "freeze again"},
        {planned({decision::Wake{coreNow}}), "wake for 45 s"},
        {busy, "slow down: uses 1.5 cores"},
        {planned({decision::RestorePriority{}}), "give back its speed"},
        {planned({decision::Thaw{ThawReason::opened}, decision::RestorePriority{}}),
         "resume: in front; give back its speed"},
        {planned({decision::Thaw{ThawReason::alwaysOn}}), "resume: always on now"},
        {planned({decision::Thaw{ThawReason::optimizerOff}}), "resume: the optimizer is off"},
        {planned({decision::Thaw{ThawReason::protected_}}), "resume"},
        {resumed, "resume: plays sound"},
    };
    for (const auto& [app, words] : rows)
        EXPECT_EQ(outlook(app, {}, calendar()), words);
}

TEST(Outlook, saysWhyNothingIsDone) {
    const std::pair<Protection, const char*> rows[] = {
        {Protection::frontmost, "in front"},
        {Protection::playingAudio, "plays sound"},
        {Protection::usingMicrophone, "uses the microphone"},
        {Protection::showingVideo, "keeps the display awake"},
        {Protection::preventingSleep, "keeps the machine awake"},
        {Protection::recentlyLaunched, "opened less than two minutes ago"},
        {Protection::neverTouch, "on your never-touch list"},
        {Protection::essential, "essential: the desktop or a long job may need it"},
    };
    ASSERT_EQ(std::size(rows), tindra::allProtections.size());
    for (const auto& [protection, words] : rows) {
        auto app = planned({});
        app.protection = protection;
        EXPECT_EQ(outlook(app, {}, calendar()), words);
    }
    auto app = planned({});
    app.idle = Seconds(240);
    EXPECT_EQ(outlook(app, {}, calendar()), "freezes in 6m");
    EXPECT_EQ(outlook(app, {.mode = tindra::OptimizerMode::focus}, calendar()), "freezes in 0s");
    app.tier = AppTier::alwaysOn;
    EXPECT_EQ(outlook(app, {}, calendar()), "left running");
}

TEST(Outlook, saysHowItStands) {
    auto app = planned({});
    app.control = control::Frozen{coreNow, std::nullopt};
    EXPECT_EQ(outlook(app, {}, calendar()), "frozen until you open it");
    app.tier = AppTier::checkPeriodically;
    EXPECT_EQ(outlook(app, {}, calendar()), "frozen; wakes every 15m");
    app.isManual = true;
    EXPECT_EQ(outlook(app, {}, calendar()), "frozen by hand, until you open it");
    app.refusal = "a debugger is attached to it.";
    EXPECT_EQ(outlook(app, {}, calendar()), "resume: a debugger is attached to it");
    app.control = control::Waking{coreNow, coreNow};
    app.isManual = false;
    EXPECT_EQ(outlook(app, {}, calendar()), "checks for messages until 22:13");
    app.control = control::Running{};
    app.isManual = app.isSlowed = true;
    EXPECT_EQ(outlook(app, {}, calendar()), "slowed by hand, until you open it");
    auto refused = planned({decision::Freeze{}});
    refused.refusal = "a terminal waits for it.";
    EXPECT_EQ(outlook(refused, {}, calendar()), "let alone: a terminal waits for it");
}

TEST(TierWords, sayWhereTheTierComesFrom) {
    EXPECT_EQ(tierWords(AppTier::canWait, source::Usual{}, calendar()), "can wait");
    EXPECT_EQ(tierWords(AppTier::alwaysOn, source::Unchosen{}, calendar()), "always on, not chosen");
    EXPECT_EQ(tierWords(AppTier::alwaysOn, source::Override{coreNow}, calendar()), "always on until 22:13");
    EXPECT_EQ(tierWords(AppTier::checkPeriodically, source::Schedule{"Evening"}, calendar()),
              "check every few minutes by Evening");
}

TEST(OptimizerPlanText, hasALineForEachApplication) {
    auto frozen = planned({});
    frozen.name = "Chat";
    frozen.control = control::Frozen{coreNow, std::nullopt};
    frozen.source = source::Usual{};
    frozen.idle = Seconds(720);
    PlannedApp front{.id = "e", .name = "Editor", .protection = Protection::frontmost, .idle = Seconds(0)};
    EXPECT_EQ(optimizerPlanText({.isEnabled = true}, {frozen, front}, calendar(), {.width = 100}),
              "  Chat    frozen   can wait               idle 12m  frozen until you open it\n"
              "  Editor  running  always on, not chosen            in front\n");
    EXPECT_EQ(optimizerPlanText({}, {}, calendar(), {.width = 100}),
              "  No application has a window.\n\n  The optimizer is off; switched on, it would do this.\n");
}

TEST(OptimizerStatusText, saysWhatIsHeld) {
    OptimizerStatus status{.isEnabled = true};
    EXPECT_EQ(optimizerStatusText(status, now, calendar(), {.width = 100}),
              "  The optimizer is on.\n"
              "  Balanced mode: freezes what may wait after 10m in the background; wakes what is to be checked every "
              "15m for 45 s\n"
              "  Slows what uses 10% of a core or more in the background\n");
    status.held = {{"c", "Chat", 2, control::Frozen{coreNow - 90, std::nullopt}, 3, 1, 1 << 20, true},
                   {"m", "Mail", 3, control::Running{}, 0, 2, 0, false},
                   {"n", "News", 4, control::Running{}, 0, 0, 0, false}};
    status.isEnabled = false;
    status.tuning.useEfficiencyCores = false;
    EXPECT_EQ(optimizerStatusText(status, now, calendar(), {.width = 100}),
              "  The optimizer is off.\n"
              "  Balanced mode: freezes what may wait after 10m in the background; wakes what is to be checked every "
              "15m for 45 s\n"
              "\n  Chat: frozen for 1m, 3 processes, 1 MB, 1 process slowed, by hand"
              "\n  Mail: 2 processes slowed\n");
}

TEST(TierTable, listsAllThatWasSaid) {
    tindra::OptimizerRules rules;
    EXPECT_EQ(tierTable(rules, now, calendar(), {}), "");
    rules.tiers = {{"chat", AppTier::canWait}, {"mailbox", AppTier::checkPeriodically}};
    rules.setOverride("chat", AppTier::alwaysOn, coreNow + 3600);
    rules.setOverride("gone", AppTier::alwaysOn, coreNow);
    rules.neverTouch = {"bank"};
    EXPECT_EQ(tierTable(rules, now, calendar(), {}), "  chat     can wait\n"
                                                     "  mailbox  check every few minutes\n"
                                                     "  chat     always on for now, until 23:13\n"
                                                     "  bank     never touched\n");
    EXPECT_EQ(tiersJSON(rules).dump(),
              R"({"tiers":{"chat":"canWait","mailbox":"checkPeriodically"},"overrides":[)"
              R"({"app":"chat","tier":"alwaysOn","until":1700003600.0},)"
              R"({"app":"gone","tier":"alwaysOn","until":1700000000.0}],"neverTouch":["bank"]})");
}

TEST(ScheduleTable, numbersThem) {
    std::vector<tindra::Schedule> schedules(2);
    schedules[0].name = "Night";
    schedules[0].window = {22 * 60, 6 * 60, {2, 3, 4, 5, 6}};
    schedules[0].tiers = {{"chat", AppTier::canWait}};
    schedules[1].name = "Sunday";
    schedules[1].isEnabled = false;
    schedules[1].window = {540, 540, {1}};
    EXPECT_EQ(scheduleTable(schedules, {}), "  1  Night  weekdays 22:00–06:00\n"
                                            "       chat  can wait\n"
                                            "  2  Sunday  sun all day  switched off\n");
    EXPECT_EQ(
        schedulesJSON(schedules)[0].dump(),
        R"({"name":"Night","isEnabled":true,"start":1320,"end":360,"weekdays":[2,3,4,5,6],"tiers":{"chat":"canWait"}})");
}

TEST(TypedWords, becomeTiers) {
    const std::pair<const char*, std::optional<AppTier>> rows[] = {
        {"always-on", AppTier::alwaysOn},
        {"Can-Wait", AppTier::canWait},
        {"check", AppTier::checkPeriodically},
        {"check-periodically", AppTier::checkPeriodically},
        {"canWait", AppTier::canWait},
        {"", std::nullopt},
        {"wait", std::nullopt},
    };
    for (const auto& [typed, tier] : rows)
        EXPECT_EQ(typedTier(typed), tier) << typed;
}

TEST(TypedWords, becomeHours) {
    const std::pair<const char*, std::optional<TypedHours>> rows[] = {
        {"22:00-06:00", TypedHours{1320, 360}},
        {"9:05-17:30", TypedHours{545, 1050}},
        {"00:00-00:00", TypedHours{0, 0}},
        {"24:00-06:00", std::nullopt},
        {"22:60-06:00", std::nullopt},
        {"22:0-06:00", std::nullopt},
        {"22-06", std::nullopt},
        {"", std::nullopt},
        {"-1:00-06:00", std::nullopt},
        {"22:00-06:00 ", std::nullopt},
        {":00-06:00", std::nullopt},
        {"22:00", std::nullopt},
    };
    for (const auto& [typed, hours] : rows)
        EXPECT_EQ(typedHours(typed), hours) << typed;
}

TEST(TypedWords, becomeDays) {
    const std::pair<const char*, std::optional<std::set<int>>> rows[] = {
        {"daily", std::set{1, 2, 3, 4, 5, 6, 7}},
        {"weekdays", std::set{2, 3, 4, 5, 6}},
        {"weekends", std::set{1, 7}},
        {"mon", std::set{2}},
        {"Sun,sat", std::set{1, 7}},
        {"", std::nullopt},
        {"mon,", std::set{2}},
        {"mon,someday", std::nullopt},
        {"mon;tue", std::nullopt},
    };
    for (const auto& [typed, days] : rows)
        EXPECT_EQ(typedDays(typed), days) << typed;
}

} // namespace
} // namespace kestrio
