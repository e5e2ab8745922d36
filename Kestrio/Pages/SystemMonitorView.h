// The panel of the system monitor, from top to bottom, at one moment. Plain values.
#pragma once

#include "Kestrio/Monitor/SystemMonitor.h"
#include "Kestrio/Monitor/SystemPanel.h"
#include "Kestrio/Pages/Rows.h"

namespace kestrio {

struct SystemMonitorView {
    struct Insight {
        std::string id;
        std::string symbol;
        std::string text;
        SystemTone tone = SystemTone::neutral;
        friend bool operator==(const Insight&, const Insight&) = default;
    };
    /// A way of ranking the applications, as the picker lists it.
    struct Mode {
        TopAppsMode mode = TopAppsMode::memory;
        std::string title;
        bool isCurrent = false;
        friend bool operator==(const Mode&, const Mode&) = default;
    };
    static constexpr auto resumeAllHelp = "Let every app run again that is being held back";
    static constexpr auto waiting = "Reading this Mac…"; // before the first reading
    static constexpr auto notRunning = "Kestrio is not running, so nothing is being read.";

    SystemHeader header;
    std::vector<SystemTile> tiles;
    std::vector<Insight> insights;
    std::optional<BatteryRow> battery;
    std::vector<Mode> modes;
    TopApps topApps;
    OptimizerLine optimizer;
    std::vector<SystemPanelButton> buttons;
    std::optional<std::string> message; // in place of everything that comes of a reading
    friend bool operator==(const SystemMonitorView&, const SystemMonitorView&) = default;
};

/// What the panel is made of.
struct SystemMonitorReading {
    SystemMonitor::State state = {};
    std::string chipName = {}; // may be empty
    std::size_t cores = 0;
    Seconds uptime{};
    std::optional<OptimizerCounts> optimizer = {}; // absent while it is off
};

/// Who takes the readings.
enum class MonitorSource { running, missing };

/// What the host can open from the panel.
enum class ActivityMonitorApp { missing, installed };

/// Without a reading, or anybody who takes one, the view has its foot and the words that there is none.
SystemMonitorView systemMonitorView(const std::optional<SystemMonitorReading>& reading, MonitorSource source,
                                    TopAppsMode mode, ActivityMonitorApp activityMonitor, const Calendar& calendar);

/// The text by which the views name a way of ranking, a tone or what a button does.
std::string_view rawValue(TopAppsMode mode);
/// Absent for a text that is not exactly one of the raw texts.
std::optional<TopAppsMode> topAppsMode(std::string_view rawValue);
std::string_view rawValue(SystemTone tone);
std::string_view rawValue(SystemPanelAction action);

} // namespace kestrio
