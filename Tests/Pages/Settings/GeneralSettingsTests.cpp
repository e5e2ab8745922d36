#include "Kestrio/Pages/Settings/AboutSettings.h"
#include "Kestrio/Pages/Settings/GeneralSettings.h"
#include "Kestrio/Pages/Settings/SettingsWindow.h"
#include "Tests/Pages/Settings/SettingsBench.h"

namespace kestrio {
namespace {

TEST(SettingsWindow, opensTheTabThatIsAskedForOrTheOneStored) {
    const struct {
        std::optional<std::string> requested;
        std::optional<std::string> stored;
        SettingsTab opens;
    } rows[] = {
        {std::nullopt, std::nullopt, SettingsTab::general},
        {std::nullopt, "data", SettingsTab::data},
        {std::nullopt, "Data", SettingsTab::general},
        {"about", "data", SettingsTab::about},
        {"nowhere", "data", SettingsTab::data},
        {"general", "data", SettingsTab::general},
    };
    for (const auto& row : rows)
        EXPECT_EQ(openingTab(row.requested, row.stored), row.opens)
            << row.requested.value_or("-") << ' ' << row.stored.value_or("-");
}

TEST(SettingsWindow, saysWhichTabsThereAre) {
    EXPECT_EQ(settingsTabError("data"), std::nullopt);
    EXPECT_EQ(settingsTabError("Data"), "there is no tab \"Data\"; there are general, categories, projects, "
                                        "optimization, permissions, data, about");
    for (const auto tab : allCases<SettingsTab>())
        EXPECT_FALSE(symbol(tab).empty()) << label(tab);
}

TEST(GeneralSettings, hasARowForEachOfItsSettings) {
    const SettingsBench bench;
    const auto sections = GeneralSettings::sections(bench.settings, true);
    ASSERT_EQ(sections.size(), 5U);
    EXPECT_EQ(titles(sections[0]), Titles{"Launch at login"});
    EXPECT_EQ(titles(sections[1]), Titles{"Count me as idle after"});
    EXPECT_EQ(titles(sections[2]), (Titles{"Show today's time", "Show the activity light"}));
    EXPECT_EQ(titles(sections[3]), (Titles{"Appearance", "Show YouTube thumbnails"}));
    EXPECT_EQ(titles(sections[4]), (Titles{"Show the system monitor", "Icon"}));
    for (const auto& section : sections)
        for (const auto& row : section.rows)
            EXPECT_TRUE(row.id == GeneralSettings::launchAtLogin || knownSetting(row.id)) << row.id;
}

TEST(GeneralSettings, showsTheRegisteredValuesToWhomNeverTouchedThem) {
    const SettingsBench bench;
    const auto sections = GeneralSettings::sections(bench.settings, false);
    EXPECT_FALSE(isOn(*rowOf(sections, GeneralSettings::launchAtLogin)));
    EXPECT_EQ(current(*rowOf(sections, settingKey::idleMinutes)), "3 minutes");
    EXPECT_TRUE(isOn(*rowOf(sections, settingKey::showTimeInMenuBar)));
    EXPECT_TRUE(isOn(*rowOf(sections, settingKey::showActivityLight)));
    EXPECT_EQ(current(*rowOf(sections, settingKey::appearanceMode)), "Match System");
    EXPECT_FALSE(isOn(*rowOf(sections, settingKey::showYouTubeThumbnails)));
    EXPECT_TRUE(isOn(*rowOf(sections, settingKey::showSystemMonitor)));
    EXPECT_EQ(current(*rowOf(sections, settingKey::systemMenuStyle)), "Icon and CPU %");
}

TEST(GeneralSettings, offersTheChoicesOfEachPicker) {
    const SettingsBench bench;
    const auto sections = GeneralSettings::sections(bench.settings, true);
    EXPECT_EQ(choiceTitles(*rowOf(sections, settingKey::idleMinutes)),
              (Titles{"1 minute", "2 minutes", "3 minutes", "5 minutes", "10 minutes", "15 minutes", "30 minutes"}));
    EXPECT_EQ(choiceTitles(*rowOf(sections, settingKey::appearanceMode)), (Titles{"Match System", "Light", "Dark"}));
    EXPECT_EQ(choiceTitles(*rowOf(sections, settingKey::systemMenuStyle)),
              (Titles{"Icon and CPU %", "Icon only", "CPU % only", "Hidden"}));
}

TEST(GeneralSettings, anIdleTimeThatIsNotAmongTheChoicesShowsNone) {
    SettingsBench bench;
    bench.settings.set(settingKey::idleMinutes, std::int64_t(7));
    const auto sections = GeneralSettings::sections(bench.settings, true);
    EXPECT_EQ(current(*rowOf(sections, settingKey::idleMinutes)), "");
}

TEST(GeneralSettings, theFormOfAnIconThatIsNotThereCannotBeChosen) {
    SettingsBench bench;
    bench.settings.set(settingKey::showSystemMonitor, false);
    EXPECT_TRUE(rowOf(GeneralSettings::sections(bench.settings, true), settingKey::systemMenuStyle)->isDisabled);
}

TEST(GeneralSettings, withoutALoginItemThereIsNoRowForIt) {
    const SettingsBench bench;
    EXPECT_EQ(rowOf(GeneralSettings::sections(bench.settings, std::nullopt), GeneralSettings::launchAtLogin), nullptr);
}

TEST(AboutSettings, saysTheVersionAndThePromises) {
    EXPECT_EQ(versionLine("1.2.3"), "Version 1.2.3");
    Titles promises;
    for (const auto& point : AboutSettings::points)
        promises.emplace_back(point.text);
    EXPECT_EQ(promises, (Titles{"Everything stays on this Mac", "No account, no servers, no analytics",
                                "Private windows stay private", "Remove everything anytime"}));
}

} // namespace
} // namespace kestrio
