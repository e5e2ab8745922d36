#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Kestrio/Pages/Settings/OptimizationSettings.h"
#include "Kestrio/Pages/Settings/ScheduleEditor.h"
#include "Tests/Pages/Settings/SettingsBench.h"

namespace kestrio {
namespace {

using namespace OptimizationSettings;

const Calendar calendar("en_GB", "Europe/Berlin");
constexpr tindra::UUID first{{1}};
constexpr tindra::UUID second{{2}};
const std::string firstID = "01000000-0000-0000-0000-000000000000";

const std::vector<KnownApp> someApps{{"org.example.chat", "Chat"}, {"org.example.mail", "Mail"}};

const SettingRow& row(const SettingsSection& section, std::string_view id) {
    for (const auto& one : section.rows)
        if (one.id == id)
            return one;
    ADD_FAILURE() << "no row " << id;
    return section.rows.front();
}

TEST(OptimizationSettings, readsWhatIsStoredAndTakesTheDefaultsForWhatCannotBeRead) {
    SettingsBench bench;
    EXPECT_EQ(storedOptimizerChoices(bench.settings), OptimizerChoices{});
    OptimizerChoices choices{.isEnabled = true, .tuning = {.mode = tindra::OptimizerMode::focus}};
    choices.rules.neverTouch = {"org.example.chat"};
    bench.settings.set(settingKey::optimizerEnabled, true);
    bench.settings.set(settingKey::optimizerTuning, SettingBytes{*encoded(choices.tuning)});
    bench.settings.set(settingKey::optimizerRules, SettingBytes{*encoded(choices.rules)});
    EXPECT_EQ(storedOptimizerChoices(bench.settings), choices);
    bench.settings.set(settingKey::optimizerTuning, SettingBytes{"{"});
    EXPECT_EQ(storedOptimizerChoices(bench.settings).tuning, tindra::OptimizerTuning{});
    EXPECT_EQ(storedOptimizerChoices(bench.settings).rules, choices.rules);
}

TEST(OptimizationSettings, theSwitchIsExplained) {
    const auto section = mainSwitch({.isEnabled = true});
    EXPECT_EQ(titles(section), Titles{"Optimize my Mac"});
    EXPECT_TRUE(isOn(section.rows.front()));
    EXPECT_EQ(section.note, "Off until you turn it on. Tap ? next to anything to see what it does.");
    EXPECT_FALSE(isOn(mainSwitch({}).rows.front()));
}

TEST(OptimizationSettings, offersHowItBehaves) {
    const auto section = behaviour({});
    const struct {
        const char* id;
        const char* title;
        Titles choices;
        const char* current;
    } rows[] = {
        {mode, "Mode", {"Balanced", "Focus"}, "Balanced"},
        {freezeAfter,
         "Freeze after",
         {"5 minutes unused", "10 minutes unused", "15 minutes unused", "30 minutes unused", "60 minutes unused"},
         "10 minutes unused"},
        {freezeAfterInFocus,
         "Freeze after (Focus)",
         {"1 minute unused", "2 minutes unused", "3 minutes unused", "5 minutes unused"},
         "3 minutes unused"},
        {checkEvery, "Wake to check every", {"5 minutes", "10 minutes", "15 minutes", "30 minutes"}, "15 minutes"},
        {stayAwake, "Stay awake for", {"30 seconds", "45 seconds", "60 seconds", "90 seconds"}, "45 seconds"},
        {efficiencyCores, "Use efficiency cores", {}, ""},
    };
    ASSERT_EQ(section.rows.size(), std::size(rows));
    for (const auto& expected : rows) {
        const auto& found = row(section, expected.id);
        EXPECT_EQ(found.title, expected.title);
        EXPECT_EQ(choiceTitles(found), expected.choices) << expected.title;
        EXPECT_EQ(current(found), expected.current) << expected.title;
        EXPECT_TRUE(found.help) << expected.title;
    }
    EXPECT_TRUE(isOn(row(section, efficiencyCores)));
}

TEST(OptimizationSettings, aValueThatIsNotAmongTheChoicesShowsNoneAndStays) {
    const tindra::OptimizerTuning odd{.idleMinutes = 7, .focusIdleMinutes = 2.5, .checkEveryMinutes = 1e300};
    const auto section = behaviour(odd);
    for (const auto* const id : {freezeAfter, freezeAfterInFocus, checkEvery})
        EXPECT_EQ(current(row(section, id)), "") << id;
    EXPECT_EQ(changed(odd, stayAwake, std::int64_t(30)).idleMinutes, 7);
}

TEST(OptimizationSettings, eachRowChangesItsOwnPartOfTheTuning) {
    const tindra::OptimizerTuning usual;
    EXPECT_EQ(changed(usual, mode, std::string("focus")).mode, tindra::OptimizerMode::focus);
    EXPECT_EQ(changed(usual, freezeAfter, std::int64_t(30)).idleMinutes, 30);
    EXPECT_EQ(changed(usual, freezeAfterInFocus, std::int64_t(1)).focusIdleMinutes, 1);
    EXPECT_EQ(changed(usual, checkEvery, std::int64_t(5)).checkEveryMinutes, 5);
    EXPECT_EQ(changed(usual, stayAwake, std::int64_t(90)).wakeSeconds, 90);
    EXPECT_FALSE(changed(usual, efficiencyCores, false).useEfficiencyCores);
    const std::pair<const char*, SettingValue> vain[] = {
        {mode, std::string("other")}, {mode, std::int64_t(1)}, {freezeAfter, true}, {"other", std::int64_t(1)}};
    for (const auto& [id, value] : vain)
        EXPECT_EQ(changed(usual, id, value), usual) << id;
}

TEST(OptimizationSettings, knowsTheAppsThatRunAndThoseThatRulesSpeakOf) {
    tindra::OptimizerRules rules;
    rules.tiers["org.example.zebra"] = tindra::AppTier::canWait;
    rules.neverTouch = {"org.example.chat", "org.example.never"};
    rules.schedules = {
        {.id = first, .name = "", .window = {}, .tiers = {{"org.example.night", tindra::AppTier::canWait}}}};
    const auto apps = knownApps({{"org.example.mail", "mail"}, {"org.example.chat", "Chat"}}, rules,
                                {{"org.example.zebra", "Album"}, {"org.example.mail", "Other"}}, "en_GB");
    EXPECT_EQ(apps, (std::vector<KnownApp>{{"org.example.zebra", "Album"},
                                           {"org.example.chat", "Chat"},
                                           {"org.example.mail", "mail"},
                                           {"org.example.never", "org.example.never"},
                                           {"org.example.night", "org.example.night"}}));
}

TEST(OptimizationSettings, anAppThatNobodyChoseForIsAlwaysOn) {
    tindra::OptimizerRules rules;
    rules.tiers["org.example.mail"] = tindra::AppTier::checkPeriodically;
    const auto section = eachApp(someApps, rules);
    EXPECT_EQ(titles(section), (Titles{"Chat", "Mail"}));
    EXPECT_EQ(choiceTitles(section.rows[0]), (Titles{"Always on", "Check every few minutes", "Can wait"}));
    EXPECT_EQ(current(section.rows[0]), "Always on");
    EXPECT_EQ(current(section.rows[1]), "Check every few minutes");
    EXPECT_EQ(section.note, std::nullopt);
    EXPECT_EQ(eachApp({}, {}).note, noApps);
}

TEST(OptimizationSettings, listsWhatIsNeverTouchedAndOffersTheRest) {
    tindra::OptimizerRules rules;
    rules.neverTouch = {"org.example.mail"};
    const auto section = neverTouch(someApps, rules);
    EXPECT_EQ(titles(section), (Titles{"Mail", ""}));
    EXPECT_EQ(said(section.rows[0]), "Never touched");
    EXPECT_EQ(buttonTitles(section.rows[0]), Titles{"Remove"});
    EXPECT_EQ(choiceTitles(section.rows[1]), Titles{"Chat"});
    EXPECT_EQ(current(section.rows[1]), "");
    EXPECT_EQ(chosenValue(section.rows[1], 0), SettingValue(std::string("org.example.chat")));
    EXPECT_TRUE(neverTouch({}, rules).rows.back().isDisabled) << "nothing is left to add";
}

TEST(OptimizationSettings, alertsAndLogAreBoundToTheirKeys) {
    SettingsBench bench;
    const auto shownAlerts = alerts(bench.settings);
    EXPECT_EQ(titles(shownAlerts), (Titles{"Memory warning", "Busy app warning"}));
    for (const auto& one : shownAlerts.rows)
        EXPECT_TRUE(isOn(one)) << one.title;
    const auto shownLog = log(bench.settings, 1'500'000, calendar);
    EXPECT_EQ(titles(shownLog), (Titles{"Keep a log", "Check how often", "Keep details for", "Keep summaries for",
                                        "Log size", "Log file"}));
    EXPECT_TRUE(isOn(row(shownLog, settingKey::resourceLogEnabled)));
    EXPECT_EQ(choiceTitles(row(shownLog, settingKey::resourceDetail)),
              (Titles{"Every second", "Every 5 seconds", "Every 10 seconds", "Minute by minute only"}));
    EXPECT_EQ(current(row(shownLog, settingKey::resourceDetail)), "Every second");
    EXPECT_EQ(choiceTitles(row(shownLog, settingKey::resourceDetailDays)),
              (Titles{"1 day", "3 days", "7 days", "14 days", "30 days"}));
    EXPECT_EQ(current(row(shownLog, settingKey::resourceDetailDays)), "7 days");
    EXPECT_EQ(choiceTitles(row(shownLog, settingKey::resourceLogDays)),
              (Titles{"30 days", "90 days", "180 days", "365 days"}));
    EXPECT_EQ(current(row(shownLog, settingKey::resourceLogDays)), "90 days");
    EXPECT_EQ(said(row(shownLog, logSize)), "1.5 MB");
    EXPECT_EQ(buttonTitles(row(shownLog, logFile)), (Titles{"Show in Finder", "Delete"}));
    bench.settings.set(settingKey::resourceDetail, std::int64_t(0));
    EXPECT_EQ(current(row(log(bench.settings, 1, calendar), settingKey::resourceDetail)), "Minute by minute only");
}

TEST(OptimizationSettings, aLogThatIsNotThereCannotBeShownOrDeleted) {
    const SettingsBench bench;
    const auto section = log(bench.settings, std::nullopt, calendar);
    for (const auto& button : std::get<SettingButtons>(row(section, logFile).control).buttons)
        EXPECT_FALSE(button.isEnabled) << button.title;
    EXPECT_EQ(deleteLogQuestion(),
              (SettingsQuestion{"Delete the whole resource log?",
                                "Your activity history isn't affected. This can't be undone.", "Delete"}));
}

TEST(ScheduleEditor, theFirstIsForOfficeHoursAndTheOthersAreNumbered) {
    auto rules = addingSchedule({}, first);
    EXPECT_EQ(rules.schedules,
              (std::vector<tindra::Schedule>{{first, "Office hours", true, {540, 1080, {2, 3, 4, 5, 6}}, {}}}));
    rules = addingSchedule(rules, second);
    EXPECT_EQ(rules.schedules.back().name, "Schedule 2");
    EXPECT_EQ(removingSchedule(rules, firstID).schedules.front().id, second);
    EXPECT_EQ(removingSchedule(rules, "none"), rules);
}

TEST(ScheduleEditor, showsTheWeekFromMondayOn) {
    const auto editors = scheduleEditors(addingSchedule({}, first), someApps, calendar);
    ASSERT_EQ(editors.size(), 1U);
    const auto& editor = editors.front();
    EXPECT_EQ(editor.id, firstID);
    EXPECT_EQ(editor.start, "09:00");
    EXPECT_EQ(editor.end, "18:00");
    std::string initials;
    Titles on;
    for (const auto& day : editor.weekdays) {
        initials += day.initial;
        if (day.isOn)
            on.push_back(day.name);
    }
    EXPECT_EQ(initials, "MTWTFSS");
    EXPECT_EQ(on, (Titles{"Monday", "Tuesday", "Wednesday", "Thursday", "Friday"}));
    EXPECT_EQ(editor.addable, someApps);
}

TEST(ScheduleEditor, listsTheAppsThatItSpeaksOfAndOffersTheRest) {
    const auto rules = changingSchedule(addingSchedule({}, first), firstID, [](tindra::Schedule& schedule) {
        schedule.tiers["org.example.mail"] = tindra::AppTier::canWait;
    });
    const auto editor = scheduleEditors(rules, someApps, calendar).front();
    ASSERT_EQ(editor.apps.size(), 1U);
    EXPECT_EQ(editor.apps.front().title, "Mail");
    EXPECT_EQ(current(editor.apps.front()), "Can wait");
    EXPECT_EQ(editor.addable, std::vector<KnownApp>{someApps[0]});
    EXPECT_EQ(changingSchedule(rules, "none", [](auto& schedule) { schedule.name = "x"; }), rules);
}

TEST(ScheduleEditor, readsTimesAsPeopleTypeThem) {
    const std::pair<const char*, std::optional<int>> rows[] = {
        {"9", 540},    {"09:00", 540},    {" 17.30 ", 1050}, {"5:30 pm", 1050}, {"5:30PM", 1050},
        {"12 am", 0},  {"12:15 pm", 735}, {"0:00", 0},       {"23:59", 1439},   {"5:30\u202fp.m.", 1050},
        {"24:00", {}}, {"9:5", {}},       {"9:60", {}},      {"", {}},          {"nine", {}},
        {"-1", {}},    {"13 pm", {}},     {"0 am", {}},      {"9:00 x", {}},    {"100", {}},
        {"9:", {}},    {"+9", {}},
    };
    for (const auto& [typed, minutes] : rows)
        EXPECT_EQ(minutesOfDay(typed), minutes) << typed;
}

TEST(ScheduleEditor, readsTheTimesThatItWrites) {
    for (const auto* const locale : {"en_GB", "en_US", "de_DE", "fr_FR", "sv_SE"}) {
        const Calendar written(locale, "Europe/Berlin");
        for (const int minutes : {0, 60, 545, 720, 725, 1439})
            EXPECT_EQ(minutesOfDay(timeOfDay(minutes, written)), minutes)
                << locale << ' ' << timeOfDay(minutes, written);
    }
}

TEST(ScheduleEditor, timesMoveAroundTheClock) {
    EXPECT_EQ(movedTime(540, 15), 555);
    EXPECT_EQ(movedTime(0, -15), 1425);
    EXPECT_EQ(movedTime(1430, 15), 5);
}

} // namespace
} // namespace kestrio
