#include "Kestrio/Monitor/SystemInsight.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Monitor/WholeNumbers.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>

namespace kestrio {
namespace {

using Level = SystemInsight::Level;

constexpr double hotChip = 90;                           // degrees Celsius
constexpr std::uint64_t mentionedSwap = 1'073'741'824;   // bytes; up to there a system swaps for tidiness
constexpr std::size_t longestBusySpan = 10;              // samples
constexpr std::size_t leastBusySpan = 5;                 // fewer say nothing
constexpr double busyCPU = 0.7;                          // of all cores
constexpr std::int64_t almostFullBytes = 5'000'000'000;  // free
constexpr std::int64_t littleLeftBytes = 20'000'000'000; // free
constexpr double littleLeftShare = 0.1;

class Maker {
public:
    Maker(const SystemSnapshot& snapshot, std::span<const double> cpuHistory, const Calendar& calendar)
        : snapshot_(snapshot), cpuHistory_(cpuHistory), calendar_(calendar) {}

    std::vector<SystemInsight> insights() {
        addHeat();
        addMemory();
        addCPU();
        addDisk();
        addBattery();
        if (highestLevel(insights_) <= Level::info)
            insights_.insert(insights_.begin(), {"ok", Level::good, "checkmark.circle", "Everything looks healthy."});
        std::stable_sort(insights_.begin(), insights_.end(),
                         [](const auto& a, const auto& b) { return a.level > b.level; });
        return std::move(insights_);
    }

private:
    void add(const char* id, Level level, const char* symbol, std::string text) {
        insights_.push_back({id, level, symbol, std::move(text)});
    }

    void addHeat() {
        if (snapshot_.thermalState >= ThermalState::serious)
            add("heat", Level::critical, "thermometer.high", "Your Mac is hot and slowing itself down to cool off.");
        else if (snapshot_.thermalState == ThermalState::fair)
            add("heat", Level::warning, "thermometer.medium",
                topCPU() ? fmt::format("Your Mac is getting warm — {} is working it hardest.", topCPU()->name)
                         : "Your Mac is getting warm.");
        else if (snapshot_.temperature && *snapshot_.temperature >= hotChip)
            add("heat", Level::warning, "thermometer.high",
                fmt::format("The chip is at {}°C.", cutToWhole(*snapshot_.temperature)));
    }

    void addMemory() {
        if (snapshot_.pressure == MemoryPressure::normal)
            return;
        const bool isCritical = snapshot_.pressure == MemoryPressure::critical;
        std::string text;
        if (isCritical)
            text = "Memory is nearly full, so apps will feel slow.";
        else if (snapshot_.swapUsed > mentionedSwap)
            text = fmt::format("Memory is under pressure and {} of swap is in use.", bytes(snapshot_.swapUsed));
        else
            text = "Memory is under pressure.";
        if (!snapshot_.topMemory.empty()) {
            const auto& app = snapshot_.topMemory.front();
            text += fmt::format(" {} is using the most ({}).", app.name, bytes(app.memory));
        }
        add("memory", isCritical ? Level::critical : Level::warning, "memorychip", std::move(text));
    }

    void addCPU() {
        const auto recent = cpuHistory_.last(std::min(cpuHistory_.size(), longestBusySpan));
        if (recent.size() < leastBusySpan)
            return;
        const auto mean = std::accumulate(recent.begin(), recent.end(), 0.0) / static_cast<double>(recent.size());
        if (!(mean >= busyCPU))
            return;
        const auto percent = cutToWhole(mean * 100);
        add("cpu", Level::warning, "cpu",
            topCPU() ? fmt::format("CPU has been busy ({}%), mostly {}.", percent, topCPU()->name)
                     : fmt::format("CPU has been busy ({}%).", percent));
    }

    void addDisk() {
        if (!snapshot_.disk || !isGettingFull(*snapshot_.disk))
            return;
        const auto& disk = *snapshot_.disk;
        if (isAlmostFull(disk))
            add("disk", Level::critical, "internaldrive",
                fmt::format("Storage is almost full — only {} left.", bytes(notNegative(disk.free))));
        else
            add("disk", Level::warning, "internaldrive",
                fmt::format("Storage is getting full: {} free of {}.", bytes(notNegative(disk.free)),
                            bytes(notNegative(disk.total))));
    }

    void addBattery() {
        const auto& battery = snapshot_.battery;
        if (battery && battery->level <= lowBattery && !battery->isPluggedIn)
            add("battery-low", Level::warning, "battery.25", fmt::format("Battery is low ({}%).", battery->level));
    }

    const AppResource* topCPU() const {
        return snapshot_.hasAppCPU && !snapshot_.topCPU.empty() ? &snapshot_.topCPU.front() : nullptr;
    }

    std::string bytes(std::uint64_t count) const { return Fmt::fileSize(count, calendar_); }

    const SystemSnapshot& snapshot_;
    const std::span<const double> cpuHistory_;
    const Calendar& calendar_;
    std::vector<SystemInsight> insights_;
};

} // namespace

std::vector<SystemInsight> SystemInsight::make(const SystemSnapshot& from, std::span<const double> cpuHistory,
                                               const Calendar& calendar) {
    return Maker(from, cpuHistory, calendar).insights();
}

SystemInsight::Level highestLevel(std::span<const SystemInsight> insights) {
    auto highest = Level::good;
    for (const auto& insight : insights)
        highest = std::max(highest, insight.level);
    return highest;
}

bool isAlmostFull(const DiskUsage& disk) {
    return disk.free < almostFullBytes;
}

bool isGettingFull(const DiskUsage& disk) {
    const auto total = static_cast<double>(std::max<std::int64_t>(disk.total, 1));
    return disk.free < littleLeftBytes || static_cast<double>(disk.free) / total < littleLeftShare;
}

} // namespace kestrio
