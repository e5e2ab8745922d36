#include "TindraCore/ResourceMath.h"

#include "TindraCore/Hash.h"

#include <algorithm>

namespace tindra {
namespace {

constexpr std::uint64_t mebibyte = 1024 * 1024;

// From where on an application's minute is worth a row. Each is about the least that somebody who looks for the cause
// of a slow machine would want to see.
constexpr double keptMemoryPeak = 100 * mebibyte;
constexpr double keptCores = 0.05;
constexpr std::uint64_t keptDiskBytes = 50 * mebibyte;
constexpr double keptWatts = 0.3;

/// Nanojoules per watt over a minute: 10^9 a second, sixty seconds.
constexpr double nanojoulesPerWattMinute = 60'000'000'000;

// From where on a person has waited for the machine.
constexpr std::int64_t slowLagMilliseconds = 500; // half a second is felt as a hang
constexpr std::int64_t slowPressure = 4;          // the log's code of critical pressure
constexpr std::uint64_t slowSwapInBytes = 256 * mebibyte;

/// A tick comes every second or few; what is longer was a sleep or a stalled timer.
constexpr double longestTickSeconds = 30;

/// The share of busy ticks in all ticks of the cores, from 0 to 1.
double share(std::span<const CoreTicks> previous, std::span<const CoreTicks> current) {
    double busy = 0;
    double total = 0;
    for (std::size_t core = 0; core < current.size(); ++core) {
        busy += static_cast<double>(current[core].busy - previous[core].busy);
        total += static_cast<double>(current[core].total - previous[core].total);
    }
    return total <= 0 ? 0 : std::clamp(busy / total, 0.0, 1.0);
}

/// 0 for a span that is negative or not a number.
double countedSeconds(double seconds) {
    return seconds > 0 ? std::min(seconds, longestTickSeconds) : 0;
}

} // namespace

CoreLoad coreLoad(std::span<const CoreTicks> previous, std::span<const CoreTicks> current,
                  std::int64_t efficiencyCores) {
    if (previous.size() != current.size() || current.empty())
        return {};
    const auto split = std::min(static_cast<std::size_t>(std::max<std::int64_t>(efficiencyCores, 0)), current.size());
    return {share(previous.first(split), current.first(split)), share(previous.subspan(split), current.subspan(split))};
}

void Running::add(double value) {
    sum += value;
    if (count == 0 || peak <= value)
        peak = value;
    ++count;
}

double Running::average() const {
    return count > 0 ? sum / static_cast<double>(count) : 0;
}

void AppMinuteAccumulator::add(const AppReading& reading) {
    diskRead += reading.diskRead;
    diskWritten += reading.diskWritten;
    energy += reading.energy;
    wakeups += reading.wakeups;
    cpu.add(reading.cpu);
    memory.add(static_cast<double>(reading.memory));
    resident.add(static_cast<double>(reading.resident));
    if (reading.pcoreShare)
        pcoreShare.add(*reading.pcoreShare);
    pageins += reading.pageins;
    frontSeconds += reading.frontSeconds;
    state = std::max(state, reading.state);
    processes = std::max(processes, reading.processes);
}

double AppMinuteAccumulator::watts() const {
    return static_cast<double>(energy) / nanojoulesPerWattMinute;
}

bool AppMinuteAccumulator::isWorthKeeping() const {
    // Written so that the sum of two counters near their end does not wrap to something small.
    const bool movedMuchData = diskRead >= keptDiskBytes || diskWritten >= keptDiskBytes - diskRead;
    return memory.peak >= keptMemoryPeak || cpu.average() >= keptCores || frontSeconds > 0 || state > 0 ||
           movedMuchData || watts() >= keptWatts;
}

std::uint64_t outOfRAM(std::uint64_t footprint, std::uint64_t resident) {
    return footprint >= resident ? footprint - resident : 0;
}

bool MinuteHealth::isSlowdown() const {
    return lagMilliseconds >= slowLagMilliseconds || pressure >= slowPressure || swapInBytes >= slowSwapInBytes;
}

void BehaviourAccumulator::add(std::int64_t state, double seconds, const std::optional<std::string>& front) {
    const double counted = countedSeconds(seconds);
    switch (state) {
    case active: activeSeconds += counted; break;
    case idle: idleSeconds += counted; break;
    case away: awaySeconds += counted; break;
    default: pausedSeconds += counted; break;
    }
    if (state != active || !front)
        return;
    if (lastFront && *lastFront != *front)
        ++switches;
    lastFront = front;
}

void BehaviourAccumulator::startNewMinute() {
    activeSeconds = idleSeconds = awaySeconds = pausedSeconds = 0;
    switches = 0;
}

} // namespace tindra

std::size_t std::hash<tindra::CoreTicks>::operator()(const tindra::CoreTicks& ticks) const noexcept {
    return tindra::hashOf(ticks.busy, ticks.total);
}

std::size_t std::hash<tindra::Running>::operator()(const tindra::Running& running) const noexcept {
    return tindra::hashOf(running.sum, running.peak, running.count);
}

std::size_t
std::hash<tindra::AppMinuteAccumulator>::operator()(const tindra::AppMinuteAccumulator& minute) const noexcept {
    return tindra::hashOf(minute.name, minute.cpu, minute.memory, minute.resident, minute.pcoreShare, minute.pageins,
                          minute.frontSeconds, minute.state, minute.processes, minute.diskRead, minute.diskWritten,
                          minute.energy, minute.wakeups);
}

std::size_t std::hash<tindra::MinuteHealth>::operator()(const tindra::MinuteHealth& health) const noexcept {
    return tindra::hashOf(health.pressure, health.swapInBytes, health.swapOutBytes, health.lagMilliseconds);
}

std::size_t
std::hash<tindra::BehaviourAccumulator>::operator()(const tindra::BehaviourAccumulator& behaviour) const noexcept {
    return tindra::hashOf(behaviour.activeSeconds, behaviour.idleSeconds, behaviour.awaySeconds,
                          behaviour.pausedSeconds, behaviour.switches, behaviour.lastFront);
}
