// The panel below the bar: today at a glance, what is being recorded right now, and the ways on from there. Plain
// values.
#pragma once

#include "Kestrio/Pages/DateControls.h"
#include "Kestrio/Pages/HistoryNotice.h"
#include "Kestrio/Pages/Rows.h"
#include "Kestrio/Pages/StateWords.h"

namespace kestrio {

/// What is open at this moment, or the state where nothing is.
struct LiveActivityRow {
    struct Line {
        std::string bundleID;
        std::string appName;
        std::string title;
        std::optional<AlongsideBadge> badge;     // of what is not in front
        std::optional<VideoThumbnail> thumbnail; // of a video in front, where pictures are wanted
        friend bool operator==(const Line&, const Line&) = default;
    };
    std::variant<StateWords, Line> focus;
    std::vector<Line> alongside;
    friend bool operator==(const LiveActivityRow&, const LiveActivityRow&) = default;
};

LiveActivityRow liveActivityRow(const std::optional<LiveActivity>& live, TrackingState state,
                                const std::vector<LiveActivity>& alongside, Thumbnails thumbnails);

struct PanelWarning {
    std::string symbol;
    std::string text;
    std::string button;
    std::optional<std::string> advice = {}; // what the host says, once somebody asked
    friend bool operator==(const PanelWarning&, const PanelWarning&) = default;
};

struct TodayPanel {
    static constexpr auto title = "Today";
    static constexpr auto topAppsTitle = "Top Apps";
    static constexpr auto topWebsitesTitle = "Top Websites";
    static constexpr auto noAnswer = "Kestrio does not answer"; // to what a button asked for
    static constexpr std::size_t topLimit = 5;

    std::string activeTime;
    std::string productive; // "{percent} productive"
    std::string switches;   // "{count} app switches"
    ActivityBanner banner;
    LiveActivityRow live;
    std::optional<std::string> historyNotice; // why the figures are old, or none
    std::optional<PanelWarning> accessibilityHint;
    std::vector<UsageRow> topApps;
    std::vector<UsageRow> topWebsites;
    // The foot.
    ControlButton dashboard;
    ControlButton pauseOrResume;
    ControlButton settings;
    ControlButton quit;
    friend bool operator==(const TodayPanel&, const TodayPanel&) = default;
};

/// What the panel shows besides the report.
struct PanelState {
    bool isAgentRunning = true; // without it, nothing is recorded and nothing can be done about that here
    TrackingState state = TrackingState::tracking;
    std::optional<Date> pausedUntil = {};
    std::optional<LiveActivity> live = {};
    std::vector<LiveActivity> alongside = {};
    std::optional<std::string> appName = {};         // of the application in front
    std::optional<HistoryNotice> historyNotice = {}; // while the recorded history cannot be read
    bool isAccessibilityGranted = true;
    std::optional<std::string> accessibilityAdvice = {}; // what a person can do on this host, once they asked
    Seconds idleLimit{};
    Thumbnails thumbnails = Thumbnails::off;
};

TodayPanel todayPanel(const ActivityReport& today, const PanelState& state, const Calendar& calendar);

} // namespace kestrio
