#include "Kestrio/Resources/ResourceMinute.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kestrio {
namespace {

/// Cut to a whole number; what does not fit becomes the nearest that does.
std::uint64_t truncated(double value) {
    constexpr double bound = 0x1p64;
    if (!(value > 0))
        return 0;
    return value < bound ? static_cast<std::uint64_t>(value) : std::numeric_limits<std::uint64_t>::max();
}

/// Rounded, halves away from zero.
std::int64_t rounded(double value) {
    return std::llround(value);
}

/// The entry with the most time; the first of several.
template <class Entries, class Time>
auto longest(const Entries& entries, Time time) {
    return std::max_element(entries.begin(), entries.end(),
                            [&](const auto& a, const auto& b) { return time(a.second) < time(b.second); });
}

} // namespace

void ResourceMinute::add(const MinuteTick& tick) {
    const auto& context = tick.context;
    const auto& live = tick.live;
    if (tick.isComparable)
        addRates(tick);
    memoryUsed_.add(static_cast<double>(live.memoryUsed));
    compressed_.add(static_cast<double>(live.compressed));
    swapUsed_ = live.swapUsed;
    pressure_ = std::max(pressure_, pressureCode(live.pressure));
    thermal_ = std::max(thermal_, live.thermal);
    lag_ = std::max(lag_, context.lagMilliseconds);
    behaviour_.add(context.activity, tick.elapsed.count(), context.frontmost);
    appsOpen_ = std::max(appsOpen_, context.appsOpen);
    addConfig(context.config, tick.elapsed);
    frozenApps_.add(static_cast<double>(context.frozenApps));
    efficientApps_.add(static_cast<double>(context.efficientApps));
    frozenMemory_.add(static_cast<double>(context.frozenMemory));
    if (context.battery)
        battery_ = context.battery;
    if (context.onAC)
        onAC_ = context.onAC;
    lowPower_ = lowPower_ || context.lowPower;
    if (tick.temperature)
        temperature_.add(*tick.temperature);
    if (context.frontmost)
        inFront_[*context.frontmost] += tick.elapsed;
}

void ResourceMinute::addRates(const MinuteTick& tick) {
    const auto& live = tick.live;
    cpu_.add(live.cpu);
    cpuPerformance_.add(live.cpuPerformance);
    cpuEfficiency_.add(live.cpuEfficiency);
    swapIn_ += tick.swapIn;
    swapOut_ += tick.swapOut;
    if (live.ram) {
        ramRead_.add(live.ram->read);
        ramWrite_.add(live.ram->write);
        ramTotal_.add(live.ram->read + live.ram->write);
    }
    if (!live.ssd)
        return;
    ssdRead_.add(live.ssd->read);
    ssdWrite_.add(live.ssd->write);
    ssdTotal_.add(live.ssd->read + live.ssd->write);
    constexpr double fewestRequests = 1; // a second; less is too little to say how long one waits
    if (live.ssd->wait && live.ssd->requestsPerSecond >= fewestRequests)
        ssdWait_.add(*live.ssd->wait * 1e6);
}

void ResourceMinute::addConfig(const tindra::OptimizerConfig& config, Seconds elapsed) {
    constexpr Seconds least{0.001}; // a setup that was seen at a tick without length counts as seen
    const auto [entry, isNew] = configs_.try_emplace(config.key(), ConfigTime{config, Seconds(0)});
    entry->second.inForce += std::max(elapsed, least);
}

void ResourceMinute::addScan(const LiveResources& live, const std::map<std::string, Seconds>& frontSeconds,
                             const std::map<std::string, std::int64_t>& states) {
    const auto in = [](const auto& values, const std::string& key) {
        const auto found = values.find(key);
        return found == values.end() ? typename std::decay_t<decltype(values)>::mapped_type{} : found->second;
    };
    for (const auto& app : *live.apps) {
        const auto& key = applicationKey(app);
        apps_.try_emplace(key, app.name)
            .first->second.add({.cpu = live.hasCPU ? app.cpuCores : 0,
                                .memory = app.footprint,
                                .resident = app.resident,
                                .pcoreShare = app.pcoreShare,
                                .pageins = app.pageins,
                                .frontSeconds = in(frontSeconds, key).count(),
                                .state = in(states, key),
                                .processes = static_cast<std::int64_t>(app.processes.size()),
                                .diskRead = app.diskRead,
                                .diskWritten = app.diskWritten,
                                .energy = app.energy,
                                .wakeups = app.wakeups});
    }
}

void ResourceMinute::noteProcesses(std::int64_t count) {
    processes_ = std::max(processes_, count);
}

FinishedMinute ResourceMinute::finish(Date start, std::uint64_t memoryTotal) {
    FinishedMinute finished{row(start, memoryTotal), appRows(start)};
    beginAnew();
    return finished;
}

SystemMinute ResourceMinute::row(Date start, std::uint64_t memoryTotal) const {
    return {.minute = start,
            .cpu = cpu_.average(),
            .cpuPeak = cpu_.peak,
            .cpuPerformance = cpuPerformance_.average(),
            .cpuEfficiency = cpuEfficiency_.average(),
            .memoryUsed = truncated(memoryUsed_.average()),
            .memoryTotal = memoryTotal,
            .compressed = truncated(compressed_.average()),
            .swapUsed = swapUsed_,
            .swapIn = swapIn_,
            .swapOut = swapOut_,
            .pressure = pressure_,
            .thermal = thermal_,
            .lagMilliseconds = lag_,
            .frontApp = longestInFront(),
            .ramRead = ramRead_.average(),
            .ramWrite = ramWrite_.average(),
            .ramPeak = ramTotal_.peak,
            .ssdRead = ssdRead_.average(),
            .ssdWrite = ssdWrite_.average(),
            .ssdPeak = ssdTotal_.peak,
            .ssdWaitMicroseconds = rounded(ssdWait_.average()),
            .activeSeconds = rounded(behaviour_.activeSeconds),
            .idleSeconds = rounded(behaviour_.idleSeconds),
            .awaySeconds = rounded(behaviour_.awaySeconds),
            .pausedSeconds = rounded(behaviour_.pausedSeconds),
            .switches = behaviour_.switches,
            .appsOpen = appsOpen_,
            .processes = processes_,
            .battery = battery_,
            .onAC = onAC_,
            .lowPower = lowPower_,
            .temperature = temperature_.count > 0 ? std::optional(temperature_.average()) : std::nullopt,
            .config = longestConfig(),
            .frozenApps = frozenApps_.average(),
            .efficientApps = efficientApps_.average(),
            .frozenMemory = truncated(frozenMemory_.average())};
}

std::optional<std::string> ResourceMinute::longestInFront() const {
    const auto found = longest(inFront_, [](Seconds time) { return time; });
    return found == inFront_.end() ? std::nullopt : std::optional(found->first);
}

std::optional<tindra::OptimizerConfig> ResourceMinute::longestConfig() const {
    const auto found = longest(configs_, [](const ConfigTime& entry) { return entry.inForce; });
    return found == configs_.end() ? std::nullopt : std::optional(found->second.config);
}

std::vector<AppMinute> ResourceMinute::appRows(Date start) const {
    constexpr std::uint64_t nanojoules = 1'000'000; // in a millijoule
    std::vector<AppMinute> rows;
    for (const auto& [key, app] : apps_) {
        if (!app.isWorthKeeping())
            continue;
        rows.push_back({.minute = start,
                        .appID = key,
                        .name = app.name,
                        .cpu = app.cpu.average(),
                        .cpuPeak = app.cpu.peak,
                        .pcoreShare = app.pcoreShare.count > 0 ? std::optional(app.pcoreShare.average()) : std::nullopt,
                        .memory = truncated(app.memory.average()),
                        .memoryPeak = truncated(app.memory.peak),
                        .resident = truncated(app.resident.average()),
                        .pageins = app.pageins,
                        .frontSeconds = app.frontSeconds,
                        .state = app.state,
                        .processes = app.processes,
                        .diskRead = app.diskRead,
                        .diskWritten = app.diskWritten,
                        .energyMillijoules = app.energy / nanojoules,
                        .wakeups = app.wakeups});
    }
    return rows;
}

void ResourceMinute::beginAnew() {
    ResourceMinute next;
    next.swapUsed_ = swapUsed_;
    next.battery_ = battery_;
    next.onAC_ = onAC_;
    next.behaviour_ = behaviour_;
    next.behaviour_.startNewMinute();
    *this = std::move(next);
}

} // namespace kestrio
