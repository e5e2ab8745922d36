// What the panel of the system monitor shows and says, from top to bottom, as plain values: views draw them and add
// nothing. Pure functions; `calendar` writes the numbers.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Base/Date.h"
#include "Kestrio/Monitor/HeatLevel.h"
#include "Kestrio/Monitor/SystemInsight.h"
#include "Kestrio/Monitor/SystemSnapshot.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

/// What a colour is to say; the theme has the colours.
enum class SystemTone { good, neutral, cautious, alarming };

SystemTone tone(SystemInsight::Level level);
SystemTone tone(MemoryPressure pressure);
SystemTone tone(HeatLevel level);

struct SystemHeader {
    std::string title;
    std::string chip; // may be empty
    std::string uptime;
    std::string status; // how the machine is, in a word or two
    SystemTone tone = SystemTone::good;

    friend bool operator==(const SystemHeader&, const SystemHeader&) = default;
};

SystemHeader systemHeader(const std::string& chip, Seconds uptime, std::span<const SystemInsight> insights);

/// "2d 3h", "3h 5m", "5m".
std::string uptimeText(Seconds uptime);

/// "All good", "Needs attention", "Critical".
std::string_view statusWord(SystemInsight::Level highest);

struct SystemTile {
    std::string title;
    std::string symbol;
    std::string value;
    std::string detail;
    SystemTone tone = SystemTone::good;
    std::vector<double> trend = {}; // shares, 0 to 1, to be drawn small; the latest last

    friend bool operator==(const SystemTile&, const SystemTile&) = default;
};

/// CPU, memory, heat and storage.
std::array<SystemTile, 4> systemTiles(const SystemSnapshot& snapshot, std::span<const double> cpuHistory,
                                      std::size_t cores, const Calendar& calendar);

struct BatteryRow {
    std::string symbol;
    std::string figure;
    std::string words;
    SystemTone tone = SystemTone::neutral;

    friend bool operator==(const BatteryRow&, const BatteryRow&) = default;
};

BatteryRow batteryRow(const BatteryInfo& battery);

/// What the applications are ranked by.
enum class TopAppsMode { memory, power };
inline constexpr std::array allTopAppsModes{TopAppsMode::memory, TopAppsMode::power};
std::string_view label(TopAppsMode mode);

struct TopAppRow {
    std::string id;
    std::string name;
    std::optional<std::string> appPath = {};
    std::string figure;
    std::optional<std::string> tip = {}; // of an application of several processes

    friend bool operator==(const TopAppRow&, const TopAppRow&) = default;
};

struct TopApps {
    static constexpr const char* title = "Top apps";
    static constexpr const char* picker = "Rank by";
    static constexpr const char* help = "Each app includes all of its helper processes.";

    std::vector<TopAppRow> rows = {};
    std::optional<std::string> emptyText = {};  // in place of rows
    std::optional<std::string> pickerHelp = {}; // of this way of ranking

    friend bool operator==(const TopApps&, const TopApps&) = default;
};

TopApps topApps(const SystemSnapshot& snapshot, TopAppsMode mode, const Calendar& calendar);

/// What the optimizer holds back.
struct OptimizerCounts {
    std::size_t frozen = 0;
    std::uint64_t frozenMemory = 0; // bytes
    std::size_t efficient = 0;      // on efficiency cores
    bool isManaging = false;        // anything at all, what it is just letting go among it

    friend bool operator==(const OptimizerCounts&, const OptimizerCounts&) = default;
};

struct OptimizerLine {
    static constexpr const char* resumeAll = "Resume All";

    std::string text;
    std::vector<std::string> details = {};
    bool hasResumeAll = false;
    bool leadsToSettings = false;

    friend bool operator==(const OptimizerLine&, const OptimizerLine&) = default;
};

/// The counts are absent while the optimizer is off.
OptimizerLine optimizerLine(const std::optional<OptimizerCounts>& counts, const Calendar& calendar);

enum class SystemPanelAction { openActivityMonitor, openPerformance, openSettings };

struct SystemPanelButton {
    SystemPanelAction action;
    std::string_view title; // empty where the symbol stands alone
    std::string_view symbol;
    std::string_view tip;

    friend bool operator==(const SystemPanelButton&, const SystemPanelButton&) = default;
};

/// The application that `openActivityMonitor` opens.
inline constexpr const char* activityMonitorBundle = "com.apple.ActivityMonitor";

inline constexpr std::array systemPanelButtons{
    SystemPanelButton{SystemPanelAction::openActivityMonitor, "Activity Monitor", "",
                      "Open Activity Monitor for the full details"},
    SystemPanelButton{SystemPanelAction::openPerformance, "Performance", "",
                      "Every app's memory and CPU, the resource log, and optimization"},
    SystemPanelButton{SystemPanelAction::openSettings, "", "gearshape",
                      "Settings — you can hide this menu bar icon there"},
};

} // namespace kestrio
