#include "Kestrio/Pages/HistoryNotice.h"
#include "Kestrio/Pages/Settings/CategorySettings.h"
#include "Kestrio/Pages/Settings/DataSettings.h"
#include "Kestrio/Pages/Settings/PermissionsSettings.h"
#include "Tests/Pages/Settings/SettingsBench.h"

namespace kestrio {
namespace {

const Calendar calendar("en_GB", "Europe/Berlin");

bool canPress(const SettingRow& row) {
    for (const auto& button : std::get<SettingButtons>(row.control).buttons)
        if (!button.isEnabled)
            return false;
    return true;
}

TEST(DataSettings, tellsWhereTheHistoryIsAndHowMuchOfItThereIs) {
    const auto sections = DataSettings::sections(
        {.stored = DataSettings::Stored{"activity.sqlite", 2'300'000, 12'345, calendar.date(2026, 11, 2)}}, calendar);
    EXPECT_EQ(titles(sections[0]), (Titles{"Location", "Size", "Recorded sessions", "Tracking since"}));
    EXPECT_EQ(said(*rowOf(sections, DataSettings::location)), "activity.sqlite");
    EXPECT_EQ(buttonTitles(*rowOf(sections, DataSettings::location)), Titles{"Show in Finder"});
    EXPECT_EQ(said(*rowOf(sections, DataSettings::size)), "2.3 MB");
    EXPECT_EQ(said(*rowOf(sections, DataSettings::sessionCount)), "12,345");
    EXPECT_EQ(said(*rowOf(sections, DataSettings::since)), "2 November 2026");
}

TEST(DataSettings, withoutAHistoryThereIsNothingToShow) {
    const auto sections = DataSettings::sections({.stored = DataSettings::Stored{"activity.sqlite"}}, calendar);
    EXPECT_FALSE(canPress(*rowOf(sections, DataSettings::location)));
    EXPECT_EQ(said(*rowOf(sections, DataSettings::since)), "–");
}

TEST(DataSettings, aHistoryThatCannotBeReadDoesNotLookEmpty) {
    const struct {
        DatabaseTrouble trouble;
        bool isThere;
    } rows[] = {{DatabaseTrouble::missing, false},
                {DatabaseTrouble::forbidden, true},
                {DatabaseTrouble::locked, true},
                {DatabaseTrouble::damaged, true},
                {DatabaseTrouble::unreadable, true}};
    for (const auto& [trouble, isThere] : rows) {
        const auto sections = DataSettings::sections(
            {.stored = DataSettings::Stored{.fileName = "a.sqlite", .trouble = trouble}}, calendar);
        for (const auto* const row : {DataSettings::size, DataSettings::sessionCount, DataSettings::since})
            EXPECT_EQ(said(*rowOf(sections, row)), "–") << row;
        EXPECT_EQ(canPress(*rowOf(sections, DataSettings::location)), isThere);
        const auto why = historyNotice(trouble, "a.sqlite", HistoryShown::nothing).text;
        EXPECT_EQ(sections[0].note, isThere ? std::optional(why) : std::nullopt);
    }
}

TEST(DataSettings, exportsAChosenRange) {
    DataSettings::State state;
    state.range = ExportRange::week;
    auto sections = DataSettings::sections(state, calendar);
    EXPECT_EQ(choiceTitles(*rowOf(sections, DataSettings::range)),
              (Titles{"Today", "Last 7 days", "Last 30 days", "All time"}));
    EXPECT_EQ(current(*rowOf(sections, DataSettings::range)), "Last 7 days");
    EXPECT_EQ(sections[1].note, std::nullopt);
    state.isExporting = true;
    sections = DataSettings::sections(state, calendar);
    EXPECT_FALSE(canPress(*rowOf(sections, DataSettings::exportFile)));
    EXPECT_EQ(sections[1].note, "Exporting…");
    state.isExporting = false;
    state.exportResult = "Exported 3 sessions to a.csv.";
    EXPECT_EQ(DataSettings::sections(state, calendar)[1].note, state.exportResult);
}

TEST(DataSettings, whatTheAgentAloneCanDoWaitsForIt) {
    DataSettings::State state;
    for (const bool isThere : {true, false}) {
        state.isAgentThere = isThere;
        const auto sections = DataSettings::sections(state, calendar);
        EXPECT_EQ(canPress(*rowOf(sections, DataSettings::importFiles)), isThere);
        EXPECT_EQ(canPress(*rowOf(sections, DataSettings::deleting)), isThere);
        EXPECT_TRUE(canPress(*rowOf(sections, DataSettings::exportFile)));
    }
}

TEST(DataSettings, explainsImportsAndTellsHowTheyEnd) {
    DataSettings::State state;
    auto sections = DataSettings::sections(state, calendar);
    EXPECT_EQ(sections[2].help,
              "Restore activity from files you exported, e.g. after reinstalling. You can pick several files at once. "
              "Anything already in your history is skipped, so importing the same file again — or exports with "
              "overlapping dates — never creates duplicates.");
    state.isImporting = true;
    sections = DataSettings::sections(state, calendar);
    EXPECT_FALSE(canPress(*rowOf(sections, DataSettings::importFiles)));
    EXPECT_EQ(sections[2].note, "Importing…");
}

TEST(DataSettings, asksBeforeItDeletes) {
    const auto sections = DataSettings::sections({.deleteAfterDays = 90}, calendar);
    EXPECT_EQ(current(*rowOf(sections, DataSettings::olderThan)), "90 days");
    EXPECT_EQ(buttonTitles(*rowOf(sections, DataSettings::deleting)),
              (Titles{"Delete Old Activity…", "Delete All Activity…"}));
    EXPECT_EQ(DataSettings::deleteOldQuestion(90),
              (SettingsQuestion{"Delete activity older than 90 days?", "This can't be undone.", "Delete"}));
    EXPECT_EQ(DataSettings::deleteAllQuestion(),
              (SettingsQuestion{"Delete all recorded activity?",
                                "Your whole history will be erased. This can't be undone.", "Delete Everything"}));
}

TEST(PermissionsSettings, sayWhetherTitlesCanBeRead) {
    const struct {
        std::optional<bool> isGranted;
        const char* status;
        Titles buttons;
    } rows[] = {{true, "Allowed", {}}, {false, "Not yet allowed", {"Grant Access"}}, {std::nullopt, "Not running", {}}};
    for (const auto& row : rows) {
        const auto sections = PermissionsSettings::sections({.isAccessibilityGranted = row.isGranted});
        EXPECT_EQ(said(*rowOf(sections, PermissionsSettings::accessibility)), row.status);
        EXPECT_EQ(buttonTitles(*rowOf(sections, PermissionsSettings::accessibility)), row.buttons) << row.status;
        EXPECT_EQ(said(*rowOf(sections, PermissionsSettings::windowTitles)), row.status);
        EXPECT_EQ(buttonTitles(*rowOf(sections, PermissionsSettings::windowTitles)), Titles{"Refresh"});
    }
}

TEST(PermissionsSettings, sayOfEachBrowserHowItStandsAndOfferTheWayIn) {
    const struct {
        AutomationStatus status;
        const char* words;
        Titles buttons;
    } rows[] = {
        {AutomationStatus::granted, "Allowed", {}},
        {AutomationStatus::denied, "Denied", {"Open Settings"}},
        {AutomationStatus::notDetermined, "Not yet allowed", {"Allow"}},
        {AutomationStatus::notRunning, "Open the browser to check", {"Allow"}},
        {AutomationStatus::unknown, "Not yet allowed", {"Allow"}},
    };
    for (const auto& row : rows) {
        const auto sections =
            PermissionsSettings::sections({.browsers = {{{"org.example.Browser", "Browser"}, row.status}}});
        const auto* const browser = rowOf(sections, "org.example.Browser");
        ASSERT_NE(browser, nullptr);
        EXPECT_EQ(browser->title, "Browser");
        EXPECT_EQ(said(*browser), row.words);
        EXPECT_EQ(buttonTitles(*browser), row.buttons) << row.words;
        EXPECT_EQ(sections[1].note, std::nullopt);
    }
}

TEST(PermissionsSettings, sayThatThereIsNoBrowserOnceTheyLooked) {
    constexpr auto none = "No supported browsers found (Chrome, Safari, Brave, Edge, Arc, Vivaldi, Opera).";
    EXPECT_EQ(PermissionsSettings::sections({})[1].note, none);
    EXPECT_EQ(PermissionsSettings::sections({.areBrowsersKnown = false})[1].note, std::nullopt);
}

TEST(PermissionsSettings, theAdviceShowsForAsLongAsItIsNeeded) {
    PermissionsSettings::State state{.isAccessibilityGranted = false, .advice = "Log in elsewhere."};
    EXPECT_EQ(PermissionsSettings::sections(state)[0].note, "Log in elsewhere.");
    state.isAccessibilityGranted = true;
    EXPECT_EQ(PermissionsSettings::sections(state)[0].note, std::nullopt);
}

using Kind = CategorySettings::Kind;

const std::vector<CategorySettings::Known> someApps{{"com.example.Chat", "Chat", Seconds(7200)},
                                                    {"com.jetbrains.clion", "CLion", Seconds(60)}};

TEST(CategorySettings, listsWhatWasRecordedWithItsTimeAndItsCategory) {
    const auto rows = categoryRows(Kind::apps, someApps, {}, {});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].title, "Chat");
    EXPECT_EQ(rows[0].time, "2h");
    EXPECT_EQ(rows[0].menu.current, categoryPill(ActivityCategory::other));
    EXPECT_EQ(rows[1].menu.current, categoryPill(ActivityCategory::development));
}

TEST(CategorySettings, whatThePersonChoseCanBeTakenBack) {
    Categorizer::Snapshot categories;
    categories.appOverrides["com.example.Chat"] = ActivityCategory::work;
    const auto rows = categoryRows(Kind::apps, someApps, categories, {});
    EXPECT_EQ(rows[0].menu.current, categoryPill(ActivityCategory::work));
    EXPECT_EQ(rows[0].menu.entries.back().title, "Reset to Default");
    EXPECT_NE(rows[1].menu.entries.back().title, "Reset to Default");
}

TEST(CategorySettings, whatThePersonAloneHasNamedIsListedToo) {
    Categorizer::Snapshot categories;
    categories.domainOverrides["b.example.org"] = ActivityCategory::work;
    categories.domainOverrides["a.example.org"] = ActivityCategory::social;
    const auto rows = categoryRows(Kind::websites, {{"b.example.org", "b.example.org", Seconds(60)}}, categories, {});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].title, "a.example.org");
    EXPECT_EQ(rows[1].time, "");
    EXPECT_EQ(rows[1].menu.current, categoryPill(ActivityCategory::social));
}

TEST(CategorySettings, theFilterFindsNamesAndIdentifiers) {
    EXPECT_EQ(categoryRows(Kind::apps, someApps, {}, ItemFilter("clion")).size(), 1U);
    EXPECT_EQ(categoryRows(Kind::apps, someApps, {}, ItemFilter("example")).size(), 1U);
    EXPECT_TRUE(categoryRows(Kind::apps, someApps, {}, ItemFilter("none")).empty());
    EXPECT_EQ(emptyText(Kind::apps, ItemFilter("none")), "No matches.");
    EXPECT_EQ(emptyText(Kind::apps, {}), "No apps recorded yet.");
    EXPECT_EQ(emptyText(Kind::websites, {}), "No websites recorded yet.");
}

TEST(CategorySettings, takesADomainOrAWholeAddress) {
    const std::pair<const char*, std::optional<std::string>> rows[] = {{" Example.ORG ", "example.org"},
                                                                       {"https://www.example.org/a?b", "example.org"},
                                                                       {"example.org/path", "example.org"},
                                                                       {"localhost:8080", "localhost:8080"},
                                                                       {"", std::nullopt},
                                                                       {"   ", std::nullopt},
                                                                       {"/", std::nullopt}};
    for (const auto& [typed, domain] : rows)
        EXPECT_EQ(typedDomain(typed), domain) << typed;
}

} // namespace
} // namespace kestrio
