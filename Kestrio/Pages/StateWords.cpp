#include "Kestrio/Pages/StateWords.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Pages/SessionWords.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr auto mark = "kestrio.mark";
constexpr auto pausedSymbol = "pause.circle";

std::string headline(TrackingState state) {
    switch (state) {
    case TrackingState::tracking: return "Active";
    case TrackingState::paused: return "Paused";
    case TrackingState::idle:
    case TrackingState::away: return "Away";
    }
    return {};
}

std::string trackingDetail(const std::optional<std::string>& appName) {
    if (!appName)
        return "Green: you're at the Mac. Your time is being recorded.";
    return fmt::format("Green: you're at the Mac and using {}. Your time is being recorded.", *appName);
}

std::string pausedDetail(const std::optional<Date>& end, const Calendar& calendar) {
    const auto until = end ? " until " + shortTime(*end, calendar) : std::string();
    return fmt::format("Red: tracking is paused{}. Nothing is being recorded until you resume.", until);
}

} // namespace

StateWords stateWords(TrackingState state) {
    switch (state) {
    case TrackingState::tracking: return {"Tracking", mark};
    case TrackingState::paused: return {"Paused", pausedSymbol};
    case TrackingState::idle: return {"Idle", "hourglass"};
    case TrackingState::away: return {"Away (locked or asleep)", "moon.zzz"};
    }
    return {};
}

std::optional<Date> pauseEnd(const std::optional<Date>& pausedUntil) {
    return pausedUntil && *pausedUntil < distantFuture ? pausedUntil : std::nullopt;
}

ActivityBanner activityBanner(TrackingState state, const std::optional<Date>& pausedUntil,
                              const std::optional<std::string>& appName, Seconds idleLimit, const Calendar& calendar) {
    ActivityBanner banner{headline(state), {}, state == TrackingState::tracking};
    switch (state) {
    case TrackingState::tracking: banner.detail = trackingDetail(appName); break;
    case TrackingState::paused: banner.detail = pausedDetail(pauseEnd(pausedUntil), calendar); break;
    case TrackingState::away:
        banner.detail = "Red: the screen is locked or the Mac is asleep. Nothing is being recorded.";
        break;
    case TrackingState::idle:
        banner.detail = fmt::format("Red: no keyboard or mouse for {}, so you count as away and nothing is being "
                                    "recorded. Touch the keyboard or mouse and it turns green again.",
                                    Fmt::duration(idleLimit));
        break;
    }
    return banner;
}

ActivityBanner notRunningBanner() {
    return {"Not running", "Red: Kestrio does not answer. Nothing is being recorded until it is started again.", false};
}

MenuBarLabel menuBarLabel(TrackingState state, Seconds activeToday, const MenuBarSettings& settings) {
    const bool isActive = state == TrackingState::tracking;
    MenuBarLabel label;
    label.symbol = state == TrackingState::paused ? pausedSymbol : mark;
    if (settings.showActivityLight)
        label.light = isActive;
    if (settings.showTime)
        label.time = Fmt::menuBar(activeToday);
    label.accessibilityLabel = isActive ? "Active: your time is being recorded" : "Away: nothing is being recorded";
    return label;
}

bool opensDashboardAtLaunch(bool launchedByUser, bool hasOnboarded) {
    return launchedByUser || !hasOnboarded;
}

} // namespace kestrio
