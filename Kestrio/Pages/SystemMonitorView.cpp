#include "Kestrio/Pages/SystemMonitorView.h"

#include <algorithm>

namespace kestrio {
namespace {

std::vector<SystemMonitorView::Mode> modes(TopAppsMode current) {
    std::vector<SystemMonitorView::Mode> all;
    for (const auto mode : allTopAppsModes)
        all.push_back({mode, std::string(label(mode)), mode == current});
    return all;
}

std::vector<SystemPanelButton> buttons(ActivityMonitorApp activityMonitor) {
    std::vector<SystemPanelButton> all(systemPanelButtons.begin(), systemPanelButtons.end());
    if (activityMonitor == ActivityMonitorApp::missing)
        std::erase_if(all, [](const SystemPanelButton& button) {
            return button.action == SystemPanelAction::openActivityMonitor;
        });
    return all;
}

std::vector<SystemMonitorView::Insight> insights(std::span<const SystemInsight> all) {
    std::vector<SystemMonitorView::Insight> shown;
    for (const auto& insight : all)
        shown.push_back({insight.id, insight.symbol, insight.text, tone(insight.level)});
    return shown;
}

} // namespace

SystemMonitorView systemMonitorView(const std::optional<SystemMonitorReading>& reading, MonitorSource source,
                                    TopAppsMode mode, ActivityMonitorApp activityMonitor, const Calendar& calendar) {
    SystemMonitorView view;
    view.buttons = buttons(activityMonitor);
    view.modes = modes(mode);
    if (source == MonitorSource::missing || !reading || !reading->state.snapshot) {
        view.header.title = "System";
        view.header.chip = reading ? reading->chipName : std::string();
        view.message = source == MonitorSource::missing ? SystemMonitorView::notRunning : SystemMonitorView::waiting;
        return view;
    }
    const auto& snapshot = *reading->state.snapshot;
    view.header = systemHeader(reading->chipName, reading->uptime, reading->state.insights);
    const auto tiles = systemTiles(snapshot, reading->state.cpuHistory, reading->cores, calendar);
    view.tiles.assign(tiles.begin(), tiles.end());
    view.insights = insights(reading->state.insights);
    if (snapshot.battery)
        view.battery = batteryRow(*snapshot.battery);
    view.topApps = topApps(snapshot, mode, calendar);
    view.optimizer = optimizerLine(reading->optimizer, calendar);
    return view;
}

std::string_view rawValue(TopAppsMode mode) {
    switch (mode) {
    case TopAppsMode::memory: return "memory";
    case TopAppsMode::power: return "power";
    }
    return {};
}

std::optional<TopAppsMode> topAppsMode(std::string_view text) {
    for (const auto mode : allTopAppsModes)
        if (rawValue(mode) == text)
            return mode;
    return std::nullopt;
}

std::string_view rawValue(SystemTone tone) {
    switch (tone) {
    case SystemTone::good: return "good";
    case SystemTone::neutral: return "neutral";
    case SystemTone::cautious: return "cautious";
    case SystemTone::alarming: return "alarming";
    }
    return {};
}

std::string_view rawValue(SystemPanelAction action) {
    switch (action) {
    case SystemPanelAction::openActivityMonitor: return "openActivityMonitor";
    case SystemPanelAction::openPerformance: return "openPerformance";
    case SystemPanelAction::openSettings: return "openSettings";
    }
    return {};
}

} // namespace kestrio
