#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Pages/DateControls.h"
#include "Kestrio/Pages/HistoryNotice.h"
#include "Kestrio/Pages/PauseControl.h"
#include "Kestrio/Pages/PermissionBanner.h"
#include "Kestrio/Pages/StateWords.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(DashboardSection, hasItsWordsAndItsGroup) {
    struct Row {
        DashboardSection section;
        const char* rawText;
        const char* label;
        const char* symbol;
        bool isReportPage;
    };
    using enum DashboardSection;
    const Row rows[] = {
        {overview, "overview", "Overview", "square.grid.2x2", true},
        {timeline, "timeline", "Timeline", "chart.xyaxis.line", true},
        {apps, "apps", "Apps", "macwindow", true},
        {websites, "websites", "Websites", "globe", true},
        {youtube, "youtube", "YouTube", "play.rectangle", true},
        {projects, "projects", "Projects", "folder", true},
        {performance, "performance", "Performance", "gauge.with.dots.needle.67percent", false},
        {resourceLog, "resourceLog", "Resource Log", "list.bullet.rectangle", false},
    };
    ASSERT_EQ(std::size(rows), allDashboardSections.size());
    for (const auto& row : rows) {
        EXPECT_EQ(rawValue(row.section), row.rawText);
        EXPECT_EQ(dashboardSection(row.rawText), row.section);
        EXPECT_EQ(label(row.section), row.label);
        EXPECT_EQ(symbol(row.section), row.symbol);
        EXPECT_EQ(isReportPage(row.section), row.isReportPage) << row.label;
    }
    EXPECT_EQ(sidebarGroups(),
              (std::vector<SidebarGroup>{{"Insights", {overview, timeline, apps, websites, youtube, projects}},
                                         {"Mac", {performance, resourceLog}}}));
}

TEST(DashboardSection, anUnknownPageIsSaidWithThoseThatThereAre) {
    EXPECT_EQ(dashboardSectionError("resourceLog"), std::nullopt);
    for (const std::string text : {"", "Overview", "settings"})
        EXPECT_EQ(dashboardSectionError(text),
                  "there is no page \"" + text +
                      "\"; there are overview, timeline, apps, websites, youtube, projects, performance, resourceLog");
}

TEST(DashboardSection, aPageThatIsNotThereYetIsNotListed) {
    const std::string there = "; there are overview, timeline, apps, websites, youtube, projects";
    EXPECT_EQ(dashboardPageError("projects"), std::nullopt);
    EXPECT_EQ(dashboardPageError("performance"), "there is no page \"performance\" yet" + there);
    EXPECT_EQ(dashboardPageError("Overview"), "there is no page \"Overview\"" + there);
}

TEST(DashboardSection, anUnknownPageOpensTheOverview) {
    using enum DashboardSection;
    struct Row {
        std::optional<DashboardSection> requested;
        std::optional<std::string> stored;
        DashboardSection opens;
    };
    const Row rows[] = {
        {std::nullopt, std::nullopt, overview}, {std::nullopt, "", overview},
        {std::nullopt, "Apps", overview},       {std::nullopt, "performance", performance},
        {std::nullopt, "gone", overview},       {apps, "performance", apps},
        {overview, "apps", overview},
    };
    for (const auto& row : rows)
        EXPECT_EQ(openingSection(row.requested, row.stored), row.opens) << row.stored.value_or("-");
}

TEST(HistoryNotice, saysWhyTheHistoryCannotBeRead) {
    struct Row {
        DatabaseTrouble trouble;
        const char* text;
    };
    using enum DatabaseTrouble;
    const Row rows[] = {
        {missing, "The file /h/a.sqlite is gone. Once it is back, your history shows again."},
        {forbidden, "You have no permission to read /h/a.sqlite. Once you do, your history shows again."},
        {locked, "Another program is using /h/a.sqlite. Nothing is lost; once that program lets go of it, your history "
                 "shows again."},
        {damaged, "The file /h/a.sqlite is damaged. If you have a copy of it, put that in its place."},
        {unreadable, "The file /h/a.sqlite cannot be read."},
    };
    for (const auto& row : rows) {
        const auto notice = historyNotice(row.trouble, "/h/a.sqlite", HistoryShown::nothing);
        EXPECT_EQ(notice, (HistoryNotice{"exclamationmark.triangle.fill", SystemColor::orange,
                                         "Your history cannot be read", row.text}));
        EXPECT_EQ(historyNotice(row.trouble, "/h/a.sqlite", HistoryShown::earlier).text,
                  notice.text + " What you see was read before.");
    }
}

TEST(StateWords, nameTheState) {
    EXPECT_EQ(stateWords(TrackingState::tracking).label, "Tracking");
    EXPECT_EQ(stateWords(TrackingState::paused), (StateWords{"Paused", "pause.circle"}));
    EXPECT_EQ(stateWords(TrackingState::idle), (StateWords{"Idle", "hourglass"}));
    EXPECT_EQ(stateWords(TrackingState::away), (StateWords{"Away (locked or asleep)", "moon.zzz"}));
}

TEST(ActivityBanner, explainsTheLight) {
    const PagesBench bench;
    struct Row {
        TrackingState state;
        std::optional<Date> pausedUntil;
        std::optional<std::string> appName;
        const char* headline;
        const char* detail;
    };
    using enum TrackingState;
    const Row rows[] = {
        {tracking, std::nullopt, "Editor", "Active",
         "Green: you're at the Mac and using Editor. Your time is being recorded."},
        {tracking, std::nullopt, std::nullopt, "Active", "Green: you're at the Mac. Your time is being recorded."},
        {away, std::nullopt, "Editor", "Away",
         "Red: the screen is locked or the Mac is asleep. Nothing is being recorded."},
        {paused, bench.at(18, 15), "Editor", "Paused",
         "Red: tracking is paused until 18:15. Nothing is being recorded until you resume."},
        {paused, distantFuture, std::nullopt, "Paused",
         "Red: tracking is paused. Nothing is being recorded until you resume."},
        {paused, std::nullopt, std::nullopt, "Paused",
         "Red: tracking is paused. Nothing is being recorded until you resume."},
        {idle, std::nullopt, "Editor", "Away",
         "Red: no keyboard or mouse for 3m, so you count as away and nothing is being recorded. Touch the keyboard or "
         "mouse and it turns green again."},
    };
    for (const auto& row : rows) {
        const auto banner = activityBanner(row.state, row.pausedUntil, row.appName, Seconds(180), bench.calendar);
        EXPECT_EQ(banner.headline, row.headline) << rawValue(row.state);
        EXPECT_EQ(banner.detail, row.detail) << rawValue(row.state);
        EXPECT_EQ(banner.isActive, row.state == tracking) << rawValue(row.state);
    }
}

TEST(MenuBarLabel, showsWhatThePersonWants) {
    using enum TrackingState;
    struct Row {
        TrackingState state;
        bool time, light;
        MenuBarLabel label;
    };
    const std::string active = "Active: your time is being recorded";
    const std::string inactive = "Away: nothing is being recorded";
    const Row rows[] = {
        {tracking, true, true, {"kestrio.mark", true, "2h 0m", active}},
        {tracking, false, true, {"kestrio.mark", true, std::nullopt, active}},
        {tracking, true, false, {"kestrio.mark", std::nullopt, "2h 0m", active}},
        {tracking, false, false, {"kestrio.mark", std::nullopt, std::nullopt, active}},
        {idle, true, true, {"kestrio.mark", false, "2h 0m", inactive}},
        {away, true, true, {"kestrio.mark", false, "2h 0m", inactive}},
        {paused, true, true, {"pause.circle", false, "2h 0m", inactive}},
        {paused, false, false, {"pause.circle", std::nullopt, std::nullopt, inactive}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(menuBarLabel(row.state, Seconds(7200), {.showTime = row.time, .showActivityLight = row.light}),
                  row.label)
            << rawValue(row.state) << row.time << row.light;
}

TEST(MenuBarLabel, onlyALoginLaterOnStaysQuiet) {
    EXPECT_TRUE(opensDashboardAtLaunch(true, true));
    EXPECT_TRUE(opensDashboardAtLaunch(true, false));
    EXPECT_TRUE(opensDashboardAtLaunch(false, false));
    EXPECT_FALSE(opensDashboardAtLaunch(false, true));
}

TEST(PauseControl, offersFourPauses) {
    const PagesBench bench;
    for (const auto state : {TrackingState::tracking, TrackingState::idle, TrackingState::away}) {
        const auto menu = std::get<PauseMenu>(pauseControl(state, std::nullopt, bench.viewpoint()));
        EXPECT_EQ(menu, (PauseMenu{"Pause Tracking",
                                   "pause.fill",
                                   {{"30 minutes", Seconds(1800)},
                                    {"1 hour", Seconds(3600)},
                                    {"Until tomorrow", Seconds(6.5 * hour)},
                                    {"Until I resume", std::nullopt}}}))
            << rawValue(state);
    }
}

TEST(PauseControl, untilTomorrowIsAnHourOffWhereTheClocksChange) {
    const Calendar berlin("en_GB", "Europe/Berlin");
    struct Row {
        int month, day;
        Date end;
    };
    const Row rows[] = {{3, 29, berlin.date(2026, 3, 30, 1)}, {10, 25, berlin.date(2026, 10, 25, 23)}};
    for (const auto& row : rows) {
        const auto now = berlin.date(2026, row.month, row.day, 12);
        const auto menu = std::get<PauseMenu>(pauseControl(TrackingState::tracking, std::nullopt, {now, berlin}));
        EXPECT_EQ(now + *menu.entries[2].length, row.end) << row.month;
    }
}

TEST(PauseControl, resumingNamesTheEndOfThePause) {
    const PagesBench bench;
    struct Row {
        std::optional<Date> until;
        const char* title;
    };
    const Row rows[] = {{bench.at(18, 5), "Resume (paused until 18:05)"},
                        {distantFuture, "Resume Tracking"},
                        {std::nullopt, "Resume Tracking"}};
    for (const auto& row : rows) {
        EXPECT_EQ(resumeTitle(row.until, bench.calendar), row.title);
        EXPECT_EQ(std::get<ResumeButton>(pauseControl(TrackingState::paused, row.until, bench.viewpoint())),
                  (ResumeButton{row.title, "play.fill"}));
    }
}

TEST(DateControls, moveTheRange) {
    const PagesBench bench;
    const auto now = bench.at(17, 30);
    const auto controls = dateControls(RangeMode::day, now, now, bench.calendar);
    EXPECT_EQ(titles(controls.units), (Texts{"Day", "Week", "Month"}));
    EXPECT_TRUE(controls.units[0].isCurrent);
    EXPECT_FALSE(controls.units[1].isCurrent);
    EXPECT_EQ(controls.previous, (ControlButton{"Previous", "chevron.left", "Previous / next day", '[', true}));
    EXPECT_EQ(controls.next, (ControlButton{"Next", "chevron.right", "Previous / next day", ']', false}));
    EXPECT_EQ(controls.today, (ControlButton{"Today", std::nullopt, std::nullopt, 't', true}));
    EXPECT_EQ(controls.refresh, (ControlButton{"Refresh", "arrow.clockwise", std::nullopt, 'r', true}));
    EXPECT_TRUE(controls.hasDatePicker);
    EXPECT_EQ(controls.title, "Today");
    EXPECT_EQ(controls.subtitle, "Friday, 20 November 2026");
    EXPECT_STREQ(DateControls::rangeLabel, "Range");
    EXPECT_STREQ(DateControls::dateLabel, "Date");
    const auto week = dateControls(RangeMode::week, bench.calendar.date(2026, 11, 11), now, bench.calendar);
    EXPECT_EQ(week.next.help, "Previous / next week");
    EXPECT_TRUE(week.next.isEnabled);
    EXPECT_FALSE(week.hasDatePicker);
    EXPECT_EQ(week.title, "Week of 9 Nov");
    const auto month = dateControls(RangeMode::month, now, now, bench.calendar);
    EXPECT_EQ(month.previous.help, "Previous / next month");
    EXPECT_EQ(month.title, "This Month");
}

TEST(PermissionBanner, titlesComeBeforeBrowsers) {
    const std::vector<BrowserPermission> missing{{{"org.chromium.Chromium", "Chromium"}, AutomationStatus::denied}};
    for (const bool dismissed : {false, true}) {
        const auto banner = permissionBanner(false, dismissed, missing);
        ASSERT_TRUE(banner);
        EXPECT_EQ(banner->symbol, "lock.shield");
        EXPECT_EQ(banner->title, "Allow Accessibility access to see window titles");
        EXPECT_EQ(banner->text, "Without it only app names are recorded — not which file, document or page you were "
                                "on. After allowing, it takes effect within a few seconds.");
        EXPECT_EQ(banner->buttons,
                  (std::vector<BannerButton>{{"Grant Access", std::nullopt, BannerAction::grantAccessibility}}));
        EXPECT_FALSE(banner->browser);
    }
}

TEST(PermissionBanner, asksForTheFirstBrowserThatCannotBeRead) {
    struct Row {
        AutomationStatus status;
        const char* button; // null: no banner
    };
    const Row rows[] = {{AutomationStatus::granted, nullptr},
                        {AutomationStatus::denied, "Open Settings"},
                        {AutomationStatus::notDetermined, "Allow"},
                        {AutomationStatus::notRunning, "Allow"},
                        {AutomationStatus::unknown, "Allow"}};
    for (const auto& row : rows) {
        const std::vector<BrowserPermission> permissions{{{"a", "Firefox"}, AutomationStatus::granted},
                                                         {{"b", "Chromium"}, row.status}};
        const auto banner = permissionBanner(true, false, permissions);
        EXPECT_EQ(banner.has_value(), row.button != nullptr);
        EXPECT_FALSE(permissionBanner(true, true, permissions));
        if (!banner)
            continue;
        EXPECT_EQ(banner->symbol, "safari");
        EXPECT_EQ(banner->title, "Track Chromium tabs");
        EXPECT_EQ(banner->text, "Allow Kestrio to read the active tab's title and address, so websites and YouTube "
                                "videos are recorded.");
        EXPECT_EQ(banner->buttons,
                  (std::vector<BannerButton>{{row.button, std::nullopt, BannerAction::requestBrowserAccess},
                                             {"Dismiss", "xmark", BannerAction::dismiss}}));
        EXPECT_EQ(banner->browser->bundleID, "b");
    }
    EXPECT_FALSE(permissionBanner(true, false, {}));
}

TEST(PermissionBanner, aBrowserThatRunsComesBeforeOneThatDoesNot) {
    const std::vector<BrowserPermission> permissions{{{"a", "A"}, AutomationStatus::notRunning},
                                                     {{"b", "B"}, AutomationStatus::granted},
                                                     {{"c", "C"}, AutomationStatus::notDetermined},
                                                     {{"d", "D"}, AutomationStatus::denied}};
    EXPECT_EQ(permissionBanner(true, false, permissions)->browser->bundleID, "c");
    EXPECT_EQ(permissionBanner(true, false, {permissions[0], permissions[1]})->browser->bundleID, "a");
}

TEST(PermissionBanner, whatTheHostAdvisesTakesThePlaceOfWhatTheBandOffered) {
    const BannerAdvice advice{"Choose another session.",
                              {{"b", {"Do this in Chromium.", "Show Folder"}}, {"c", {"Do that.", std::nullopt}}}};
    const BannerButton dismiss{"Dismiss", "xmark", BannerAction::dismiss};
    const auto titles = permissionBanner(false, false, {}, advice);
    EXPECT_EQ(titles->text, "Choose another session.");
    EXPECT_TRUE(titles->buttons.empty());
    const auto banner = [&](const std::string& id, AutomationStatus status) {
        return *permissionBanner(true, false, {{{id, "Chromium"}, status}}, advice);
    };
    const auto withButton = banner("b", AutomationStatus::notDetermined);
    EXPECT_EQ(withButton.title, "Track Chromium tabs");
    EXPECT_EQ(withButton.text, "Do this in Chromium.");
    EXPECT_EQ(withButton.buttons,
              (std::vector<BannerButton>{{"Show Folder", std::nullopt, BannerAction::openBrowserStep}, dismiss}));
    EXPECT_EQ(withButton.browser->bundleID, "b");
    const auto without = banner("c", AutomationStatus::denied);
    EXPECT_EQ(without.text, "Do that.");
    EXPECT_EQ(without.buttons, std::vector<BannerButton>{dismiss});
    EXPECT_EQ(banner("d", AutomationStatus::denied).buttons.front().title, "Open Settings") << "of another browser";
}

} // namespace
} // namespace kestrio
