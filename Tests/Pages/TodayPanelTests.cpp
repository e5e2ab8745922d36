#include "Kestrio/Pages/TodayPanel.h"
#include "Tests/Pages/PagesBench.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

LiveActivity live(SessionKind kind, std::string app, std::string title, std::optional<std::string> url = {}) {
    LiveActivity open;
    open.sample = {"org.example." + app, app, std::move(title), url, url ? URLTools::domain(*url) : std::nullopt,
                   std::nullopt,         kind};
    return open;
}

constexpr auto video = "https://www.youtube.com/watch?v=abc";

TEST(LiveActivityRow, showsWhatIsOpenAndWhatPlaysBesideIt) {
    const auto row = liveActivityRow(
        live(SessionKind::focus, "Editor", "main.cpp"), TrackingState::tracking,
        {live(SessionKind::watching, "Browser", "Film", video), live(SessionKind::listening, "Player", "Song")},
        Thumbnails::on);
    EXPECT_EQ(std::get<LiveActivityRow::Line>(row.focus),
              (LiveActivityRow::Line{"org.example.Editor", "Editor", "main.cpp", std::nullopt, std::nullopt}));
    ASSERT_EQ(row.alongside.size(), 2u);
    EXPECT_EQ(row.alongside[0].title, "Film");
    EXPECT_EQ(row.alongside[0].badge->title, "Watching");
    EXPECT_EQ(row.alongside[0].badge->symbol, "play.rectangle.fill");
    EXPECT_EQ(row.alongside[0].thumbnail, std::nullopt);
    EXPECT_EQ(row.alongside[1].badge->title, "Listening");
    EXPECT_EQ(row.alongside[1].badge->symbol, "headphones");
}

TEST(LiveActivityRow, withoutASessionSaysTheState) {
    for (const auto state : allTrackingStates) {
        const auto row = liveActivityRow(std::nullopt, state, {}, Thumbnails::on);
        EXPECT_EQ(std::get<StateWords>(row.focus), stateWords(state)) << rawValue(state);
    }
}

TEST(LiveActivityRow, aVideoInFrontHasItsPictureWhereWanted) {
    struct Row {
        const char* url;
        Thumbnails thumbnails;
        bool hasPicture;
    };
    const Row rows[] = {{video, Thumbnails::on, true},
                        {video, Thumbnails::off, false},
                        {"https://www.youtube.com/", Thumbnails::on, false},
                        {"https://example.org/watch?v=abc", Thumbnails::on, false}};
    for (const auto& row : rows) {
        const auto shown = liveActivityRow(live(SessionKind::focus, "Browser", "A", row.url), TrackingState::tracking,
                                           {}, row.thumbnails);
        EXPECT_EQ(std::get<LiveActivityRow::Line>(shown.focus).thumbnail.has_value(), row.hasPicture) << row.url;
    }
}

TEST(TodayPanel, sumsUpTheDay) {
    PagesBench bench;
    auto report = ActivityReport::empty(bench.day, Granularity::hour);
    report.total = Seconds(7200);
    report.productivity.add(Productivity::productive, Seconds(5400));
    report.switches = 17;
    for (int i = 0; i < 9; ++i) {
        report.apps.push_back(usedApp(std::to_string(i), 10));
        report.domains.push_back(usedSite(std::to_string(i) + ".org", 10));
    }
    const auto panel = todayPanel(report, {.appName = "Editor"}, bench.calendar);
    EXPECT_STREQ(TodayPanel::title, "Today");
    EXPECT_EQ(panel.activeTime, "2h");
    EXPECT_EQ(panel.productive, "75% productive");
    EXPECT_EQ(panel.switches, "17 app switches");
    EXPECT_EQ(panel.banner.detail, "Green: you're at the Mac and using Editor. Your time is being recorded.");
    EXPECT_STREQ(TodayPanel::topAppsTitle, "Top Apps");
    EXPECT_STREQ(TodayPanel::topWebsitesTitle, "Top Websites");
    EXPECT_EQ(panel.topApps.size(), TodayPanel::topLimit);
    EXPECT_EQ(panel.topWebsites.size(), TodayPanel::topLimit);
    EXPECT_FALSE(panel.accessibilityHint);
}

TEST(TodayPanel, warnsWithoutAccessToTitles) {
    const PagesBench bench;
    const auto panel = todayPanel(ActivityReport(), {.isAccessibilityGranted = false}, bench.calendar);
    EXPECT_EQ(panel.accessibilityHint,
              (PanelWarning{"exclamationmark.triangle.fill", "Allow Accessibility access to record window titles.",
                            "Allow", std::nullopt}));
    EXPECT_EQ(panel.productive, "0% productive");
    EXPECT_TRUE(panel.topApps.empty());
}

TEST(TodayPanel, saysWhatThisHostCanDoOnceAsked) {
    const PagesBench bench;
    const auto hint = [&](const PanelState& state) {
        return todayPanel(ActivityReport(), state, bench.calendar).accessibilityHint;
    };
    EXPECT_EQ(hint({.isAccessibilityGranted = false})->advice, std::nullopt);
    EXPECT_EQ(hint({.isAccessibilityGranted = false, .accessibilityAdvice = "Log in elsewhere."})->advice,
              "Log in elsewhere.");
    EXPECT_FALSE(hint({.accessibilityAdvice = "Log in elsewhere."})) << "granted meanwhile";
}

TEST(TodayPanel, withoutTheAgentSaysSoAndOffersNothingThatNeedsIt) {
    const PagesBench bench;
    const auto panel =
        todayPanel(ActivityReport(), {.isAgentRunning = false, .isAccessibilityGranted = false}, bench.calendar);
    EXPECT_EQ(
        panel.banner,
        (ActivityBanner{"Not running",
                        "Red: Kestrio does not answer. Nothing is being recorded until it is started again.", false}));
    EXPECT_EQ(std::get<StateWords>(panel.live.focus), (StateWords{"Not running", "power"}));
    EXPECT_FALSE(panel.accessibilityHint) << "nobody knows";
    EXPECT_FALSE(panel.pauseOrResume.isEnabled);
    EXPECT_FALSE(panel.quit.isEnabled);
    EXPECT_TRUE(panel.dashboard.isEnabled);
    EXPECT_TRUE(panel.settings.isEnabled);
}

TEST(TodayPanel, leadsOnFromItsFoot) {
    const PagesBench bench;
    const auto foot = [&](TrackingState state) {
        return todayPanel(ActivityReport(), {.state = state}, bench.calendar);
    };
    const auto panel = foot(TrackingState::tracking);
    EXPECT_EQ(panel.dashboard, (ControlButton{"Dashboard", "rectangle.grid.2x2", "Open the dashboard", 'd', true}));
    EXPECT_EQ(panel.settings, (ControlButton{"Settings", "gearshape", std::nullopt, ',', true}));
    EXPECT_EQ(panel.quit, (ControlButton{"Quit", "power", "Quit Kestrio (stops tracking)", 'q', true}));
    for (const auto state : allTrackingStates)
        EXPECT_EQ(foot(state).pauseOrResume.title,
                  state == TrackingState::paused ? "Resume tracking" : "Pause tracking")
            << rawValue(state);
}

TEST(TodayPanel, saysNothingAboutADayThatCannotBeRead) {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto noon = calendar.date(2026, 11, 20, 12);
    const PanelState state{.historyNotice = HistoryNotice{{}, SystemColor::orange, "Trouble", "It is gone."}};
    const auto empty = todayPanel(ActivityReport::empty(calendar.day(noon), Granularity::hour), state, calendar);
    EXPECT_EQ(empty.activeTime, "–");
    EXPECT_EQ(empty.productive, "");
    EXPECT_EQ(empty.switches, "");
    EXPECT_EQ(empty.historyNotice, "Trouble. It is gone.");
    auto report = ActivityReport::empty(calendar.day(noon), Granularity::hour);
    report.sessions.emplace_back();
    report.total = Seconds(60);
    const auto earlier = todayPanel(report, state, calendar);
    EXPECT_EQ(earlier.activeTime, "1m");
    EXPECT_EQ(earlier.historyNotice, "Trouble. It is gone.");
}

} // namespace
} // namespace kestrio
