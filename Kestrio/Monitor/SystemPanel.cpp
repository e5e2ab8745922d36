#include "Kestrio/Monitor/SystemPanel.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Monitor/WholeNumbers.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

SystemTone cpuTone(double cpu) {
    if (cpu >= 0.8)
        return SystemTone::alarming;
    return cpu >= 0.5 ? SystemTone::cautious : SystemTone::good;
}

std::string_view pressureWord(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal: return "normal";
    case MemoryPressure::warning: return "high";
    case MemoryPressure::critical: return "critical";
    }
    return {};
}

SystemTile cpuTile(const SystemSnapshot& snapshot, std::span<const double> history, std::size_t cores) {
    return {.title = "CPU",
            .symbol = "cpu",
            .value = fmt::format("{}%", roundedToWhole(snapshot.cpu * 100)),
            .detail = fmt::format("{} cores · recent trend", cores),
            .tone = cpuTone(snapshot.cpu),
            .trend = {history.begin(), history.end()}};
}

SystemTile memoryTile(const SystemSnapshot& snapshot, const Calendar& calendar) {
    return {.title = "Memory",
            .symbol = "memorychip",
            .value = Fmt::fileSize(snapshot.memoryUsed, calendar),
            .detail = fmt::format("of {} · {}", Fmt::fileSize(snapshot.memoryTotal, calendar),
                                  pressureWord(snapshot.pressure)),
            .tone = tone(snapshot.pressure)};
}

SystemTile heatTile(const SystemSnapshot& snapshot) {
    const auto level = heatLevel(snapshot.temperature, snapshot.thermalState);
    return {.title = "Heat",
            .symbol = "thermometer.medium",
            .value = std::string(label(level)),
            .detail = snapshot.temperature ? fmt::format("{}° · chip temperature", cutToWhole(*snapshot.temperature))
                                           : "thermal state",
            .tone = tone(level)};
}

SystemTile storageTile(const SystemSnapshot& snapshot, const Calendar& calendar) {
    SystemTile tile{.title = "Storage", .symbol = "internaldrive", .value = "–", .detail = ""};
    if (!snapshot.disk)
        return tile;
    tile.value = Fmt::fileSize(notNegative(snapshot.disk->free), calendar) + " free";
    tile.detail = "of " + Fmt::fileSize(notNegative(snapshot.disk->total), calendar);
    if (isGettingFull(*snapshot.disk))
        tile.tone = isAlmostFull(*snapshot.disk) ? SystemTone::alarming : SystemTone::cautious;
    return tile;
}

std::string_view batterySymbol(const BatteryInfo& battery) {
    if (battery.isCharging || battery.isPluggedIn)
        return "battery.100.bolt";
    if (battery.level > 87)
        return "battery.100";
    if (battery.level > 62)
        return "battery.75";
    if (battery.level > 37)
        return "battery.50";
    return battery.level > 13 ? "battery.25" : "battery.0";
}

std::string minutesText(std::int64_t minutes) {
    return Fmt::duration(Seconds(static_cast<double>(minutes) * 60));
}

std::string batteryWords(const BatteryInfo& battery) {
    if (battery.isCharging)
        return battery.minutesToFull ? "Charging · full in " + minutesText(*battery.minutesToFull) : "Charging";
    if (battery.isPluggedIn)
        return battery.level > 99 ? "Fully charged" : "Plugged in";
    return battery.minutesRemaining ? minutesText(*battery.minutesRemaining) + " left" : "On battery";
}

std::string cpuFigure(double cpu) {
    const auto percent = cpu * 100;
    return percent < 1 ? "<1%" : fmt::format("{}%", roundedToWhole(percent));
}

TopAppRow topAppRow(const AppResource& app, std::string figure) {
    TopAppRow row{app.id, app.name, app.appPath, std::move(figure)};
    if (app.processes > 1)
        row.tip = fmt::format("{} and its helpers ({} processes)", app.name, app.processes);
    return row;
}

} // namespace

SystemTone tone(SystemInsight::Level level) {
    switch (level) {
    case SystemInsight::Level::good: return SystemTone::good;
    case SystemInsight::Level::info: return SystemTone::neutral;
    case SystemInsight::Level::warning: return SystemTone::cautious;
    case SystemInsight::Level::critical: return SystemTone::alarming;
    }
    return SystemTone::neutral;
}

SystemTone tone(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal: return SystemTone::good;
    case MemoryPressure::warning: return SystemTone::cautious;
    case MemoryPressure::critical: return SystemTone::alarming;
    }
    return SystemTone::neutral;
}

SystemTone tone(HeatLevel level) {
    switch (level) {
    case HeatLevel::cool:
    case HeatLevel::normal: return SystemTone::good;
    case HeatLevel::warm: return SystemTone::cautious;
    case HeatLevel::hot:
    case HeatLevel::throttling: return SystemTone::alarming;
    }
    return SystemTone::neutral;
}

std::string uptimeText(Seconds uptime) {
    const auto minutes = cutToWhole(uptime.count() / 60);
    const auto hours = minutes / 60;
    if (hours >= 24)
        return fmt::format("{}d {}h", hours / 24, hours % 24);
    return hours >= 1 ? fmt::format("{}h {}m", hours, minutes % 60) : fmt::format("{}m", minutes);
}

std::string_view statusWord(SystemInsight::Level highest) {
    switch (highest) {
    case SystemInsight::Level::good:
    case SystemInsight::Level::info: return "All good";
    case SystemInsight::Level::warning: return "Needs attention";
    case SystemInsight::Level::critical: return "Critical";
    }
    return {};
}

SystemHeader systemHeader(const std::string& chip, Seconds uptime, std::span<const SystemInsight> insights) {
    const auto highest = highestLevel(insights);
    return {.title = "System",
            .chip = chip,
            .uptime = uptimeText(uptime),
            .status = std::string(statusWord(highest)),
            .tone = highest == SystemInsight::Level::info ? SystemTone::good : tone(highest)};
}

std::array<SystemTile, 4> systemTiles(const SystemSnapshot& snapshot, std::span<const double> cpuHistory,
                                      std::size_t cores, const Calendar& calendar) {
    return {cpuTile(snapshot, cpuHistory, cores), memoryTile(snapshot, calendar), heatTile(snapshot),
            storageTile(snapshot, calendar)};
}

BatteryRow batteryRow(const BatteryInfo& battery) {
    const bool isLow = battery.level <= lowBattery && !battery.isPluggedIn;
    return {.symbol = std::string(batterySymbol(battery)),
            .figure = fmt::format("{}%", battery.level),
            .words = batteryWords(battery),
            .tone = isLow ? SystemTone::alarming : SystemTone::neutral};
}

std::string_view label(TopAppsMode mode) {
    switch (mode) {
    case TopAppsMode::memory: return "Memory";
    case TopAppsMode::power: return "Power";
    }
    return {};
}

TopApps topApps(const SystemSnapshot& snapshot, TopAppsMode mode, const Calendar& calendar) {
    TopApps apps;
    switch (mode) {
    case TopAppsMode::memory:
        for (const auto& app : snapshot.topMemory)
            apps.rows.push_back(topAppRow(app, Fmt::fileSize(app.memory, calendar)));
        break;
    case TopAppsMode::power:
        apps.pickerHelp = "Ranked by CPU use, the biggest driver of battery drain and heat.";
        for (const auto& app : snapshot.topCPU)
            apps.rows.push_back(topAppRow(app, cpuFigure(app.cpu)));
        if (apps.rows.empty())
            apps.emptyText = "Nothing is using much CPU right now.";
        break;
    }
    return apps;
}

OptimizerLine optimizerLine(const std::optional<OptimizerCounts>& counts, const Calendar& calendar) {
    if (!counts)
        return {.text = "Optimization is off", .leadsToSettings = true};
    OptimizerLine line{.text = "Optimization is on", .hasResumeAll = counts->isManaging};
    if (counts->frozen == 0 && counts->efficient == 0) {
        line.text = "Optimization on — nothing needs holding back.";
        return line;
    }
    if (counts->frozen > 0)
        line.details.push_back(
            fmt::format("{} frozen ({})", counts->frozen, Fmt::fileSize(counts->frozenMemory, calendar)));
    if (counts->efficient > 0)
        line.details.push_back(fmt::format("{} on efficiency cores", counts->efficient));
    return line;
}

} // namespace kestrio
