#include "Kestrio/Pages/TodayPanel.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Classification/TextTools.h"
#include "Kestrio/Pages/DashboardWords.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

/// Of a video on the one site whose pictures are known.
std::optional<VideoThumbnail> thumbnailOf(const ActivitySample& sample, Thumbnails thumbnails) {
    if (thumbnails == Thumbnails::off || !sample.url || !YouTube::isYouTube(sample.domain))
        return std::nullopt;
    auto id = YouTube::videoID(*sample.url);
    return id ? std::optional(videoThumbnail(std::move(*id), thumbnails)) : std::nullopt;
}

LiveActivityRow::Line line(const LiveActivity& live) {
    const auto& sample = live.sample;
    LiveActivityRow::Line line{sample.bundleID, sample.appName, sample.title, {}, {}};
    if (sample.kind != SessionKind::focus)
        line.badge = alongsideBadge(sample.kind);
    return line;
}

ControlButton pauseOrResume(const PanelState& state) {
    if (state.state == TrackingState::paused)
        return {.title = "Resume tracking", .symbol = "play.fill", .isEnabled = state.isAgentRunning};
    return {.title = "Pause tracking", .symbol = "pause.fill", .isEnabled = state.isAgentRunning};
}

ControlButton quit(const PanelState& state) {
    return {.title = "Quit",
            .symbol = "power",
            .help = "Quit Kestrio (stops tracking)",
            .key = 'q',
            .isEnabled = state.isAgentRunning};
}

std::optional<PanelWarning> accessibilityHint(const PanelState& state) {
    if (state.isAccessibilityGranted || !state.isAgentRunning)
        return std::nullopt;
    return PanelWarning{"exclamationmark.triangle.fill", "Allow Accessibility access to record window titles.", "Allow",
                        state.accessibilityAdvice};
}

ActivityBanner banner(const PanelState& state, const Calendar& calendar) {
    if (!state.isAgentRunning)
        return notRunningBanner();
    return activityBanner(state.state, state.pausedUntil, state.appName, state.idleLimit, calendar);
}

LiveActivityRow liveRow(const PanelState& state) {
    if (!state.isAgentRunning)
        return {agentAbsentWords(), {}};
    return liveActivityRow(state.live, state.state, state.alongside, state.thumbnails);
}

/// Figures that nobody knows are not those of an empty day.
void hideFigures(TodayPanel& panel) {
    panel.activeTime = "–";
    panel.productive.clear();
    panel.switches.clear();
}

} // namespace

LiveActivityRow liveActivityRow(const std::optional<LiveActivity>& live, TrackingState state,
                                const std::vector<LiveActivity>& alongside, Thumbnails thumbnails) {
    LiveActivityRow row{stateWords(state), {}};
    if (live) {
        auto focus = line(*live);
        focus.thumbnail = thumbnailOf(live->sample, thumbnails);
        row.focus = std::move(focus);
    }
    for (const auto& one : alongside)
        row.alongside.push_back(line(one));
    return row;
}

TodayPanel todayPanel(const ActivityReport& today, const PanelState& state, const Calendar& calendar) {
    const auto productive = today.productivity[Productivity::productive];
    TodayPanel panel{
        .activeTime = Fmt::duration(today.total),
        .productive = Fmt::percent(productive.count(), today.total.count()) + " productive",
        .switches = fmt::format("{} app switches", today.switches),
        .banner = banner(state, calendar),
        .live = liveRow(state),
        .historyNotice = std::nullopt,
        .accessibilityHint = accessibilityHint(state),
        .topApps = appRows(today.apps, TodayPanel::topLimit),
        .topWebsites = domainRows(today.domains, TodayPanel::topLimit),
        .dashboard = {.title = "Dashboard", .symbol = "rectangle.grid.2x2", .help = "Open the dashboard", .key = 'd'},
        .pauseOrResume = pauseOrResume(state),
        .settings = {.title = "Settings", .symbol = "gearshape", .key = ','},
        .quit = quit(state),
    };
    if (const auto& notice = state.historyNotice) {
        panel.historyNotice = notice->title + ". " + notice->text;
        if (today.sessions.empty())
            hideFigures(panel);
    }
    return panel;
}

} // namespace kestrio
