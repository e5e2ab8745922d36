// How the state of the recording is said. Pure functions.
#pragma once

#include "Kestrio/Model/Models.h"
#include "Kestrio/Pages/Viewpoint.h"

namespace kestrio {

struct StateWords {
    std::string label;
    std::string symbol;
    friend bool operator==(const StateWords&, const StateWords&) = default;
};

/// As in "Away (locked or asleep)".
StateWords stateWords(TrackingState state);

/// The end of a pause; absent for one that lasts until somebody resumes.
std::optional<Date> pauseEnd(const std::optional<Date>& pausedUntil);

/// What explains the light.
struct ActivityBanner {
    std::string headline;
    std::string detail;
    bool isActive = false; // green, else red
    friend bool operator==(const ActivityBanner&, const ActivityBanner&) = default;
};

/// `idleLimit` is after how long without input the person counts as away.
ActivityBanner activityBanner(TrackingState state, const std::optional<Date>& pausedUntil,
                              const std::optional<std::string>& appName, Seconds idleLimit, const Calendar& calendar);

/// The same where the agent that records does not answer.
ActivityBanner notRunningBanner();

/// What stands in the bar.
struct MenuBarLabel {
    std::string symbol;
    std::optional<bool> light; // green or red; absent when the person does not want one
    std::optional<std::string> time;
    std::string accessibilityLabel;
    friend bool operator==(const MenuBarLabel&, const MenuBarLabel&) = default;
};

struct MenuBarSettings {
    bool showTime = true;
    bool showActivityLight = true;
};

/// `activeToday` is today's active time.
MenuBarLabel menuBarLabel(TrackingState state, Seconds activeToday, const MenuBarSettings& settings);

/// Whether the dashboard opens by itself: for a person who started the program, and at the first run ever.
bool opensDashboardAtLaunch(bool launchedByUser, bool hasOnboarded);

} // namespace kestrio
