#include "Kestrio/Monitor/SystemSampler.h"

#include "Kestrio/Resources/KernelStats.h"

#include <algorithm>

namespace kestrio {
namespace {

/// Longer than any pause between two detailed samples of an open panel.
constexpr Seconds maxBaselineAge{10};
constexpr Seconds diskLifetime{60};
constexpr Seconds temperatureLifetime{6};

std::uint64_t increase(std::uint64_t now, std::uint64_t before) {
    return now > before ? now - before : 0; // some kernels' waiting time goes back a little
}

double busyShare(const std::vector<CoreTime>& now, const std::vector<CoreTime>& before) {
    double busy = 0;
    double total = 0;
    for (std::size_t core = 0; core < std::min(now.size(), before.size()); ++core) {
        busy += static_cast<double>(increase(now[core].busy, before[core].busy));
        total += static_cast<double>(increase(now[core].total, before[core].total));
    }
    return total > 0 ? std::min(busy / total, 1.0) : 0;
}

AppResource resource(const AppProcesses& app) {
    return {app.id, app.name, app.appPath, app.cpu, app.footprint, static_cast<std::int64_t>(app.processes.size())};
}

/// The first by what `figure` says, the greatest first. Equal ones keep an order of their own, so that rows do not
/// change places for nothing.
template <class Figure>
std::vector<AppResource> top(std::vector<AppResource> apps, Figure AppResource::*figure) {
    const auto count = std::min(apps.size(), SystemSampler::mostTopApps);
    const auto end = apps.begin() + static_cast<std::ptrdiff_t>(count);
    std::partial_sort(apps.begin(), end, apps.end(), [figure](const AppResource& a, const AppResource& b) {
        return a.*figure != b.*figure ? a.*figure > b.*figure : a.id < b.id;
    });
    apps.erase(end, apps.end());
    return apps;
}

/// In floating point, so that no figure of a broken battery overflows.
std::int64_t percentCut(std::int64_t part, std::int64_t whole) {
    const auto percent = static_cast<double>(part) * 100 / static_cast<double>(whole);
    return static_cast<std::int64_t>(std::clamp(percent, 0.0, 100.0));
}

std::optional<std::int64_t> aboveZero(std::optional<std::int64_t> minutes) {
    return minutes && *minutes > 0 ? minutes : std::nullopt;
}

} // namespace

SystemSampler::SystemSampler(KernelCounters& kernel, ProcessTable& processes, Sensors& sensors, const Clock& clock)
    : kernel_(kernel),
      sensors_(sensors),
      clock_(clock),
      scanner_(processes, clock, maxBaselineAge),
      temperatures_(sensors) {}

SystemSnapshot SystemSampler::sample(SampleDetail detail) {
    SystemSnapshot snapshot;
    snapshot.cpu = cpu();
    if (const auto statistics = kernel_.memory()) {
        const auto memory = KernelStats::breakdown(*statistics, statistics->total);
        snapshot.memoryUsed = memory.apps + memory.wired + memory.compressed;
        memoryTotal_ = statistics->total;
    }
    snapshot.memoryTotal = memoryTotal_;
    snapshot.swapUsed = kernel_.swap().value_or(SwapUse()).used;
    snapshot.pressure = kernel_.memoryPressure();
    snapshot.thermalState = sensors_.thermalState();
    snapshot.disk = disk();
    if (const auto reading = sensors_.battery())
        snapshot.battery = batteryInfo(*reading);
    if (detail == SampleDetail::detailed)
        addDetails(snapshot);
    return snapshot;
}

void SystemSampler::addDetails(SystemSnapshot& snapshot) {
    snapshot.temperature = temperature();
    const auto scan = scanner_.scan();
    snapshot.hasAppCPU = scan.hasCPU;
    std::vector<AppResource> apps;
    apps.reserve(scan.apps.size());
    std::transform(scan.apps.begin(), scan.apps.end(), std::back_inserter(apps), resource);
    snapshot.topMemory = top(apps, &AppResource::memory);
    std::erase_if(apps, [](const AppResource& app) { return !(app.cpu >= leastTopCPU); });
    snapshot.topCPU = top(std::move(apps), &AppResource::cpu);
}

double SystemSampler::cpu() {
    auto times = kernel_.coreTimes();
    if (times.empty())
        return 0;
    const auto share = busyShare(times, previousTimes_);
    previousTimes_ = std::move(times);
    return share;
}

std::optional<DiskUsage> SystemSampler::disk() {
    const auto now = clock_.uptime();
    if (cachedDisk_ && now - cachedDisk_->at < diskLifetime)
        return cachedDisk_->value;
    const auto usage = sensors_.systemDisk();
    if (usage)
        cachedDisk_ = {*usage, now};
    return usage;
}

std::optional<double> SystemSampler::temperature() {
    const auto now = clock_.uptime();
    if (!cachedTemperature_ || now - cachedTemperature_->at >= temperatureLifetime)
        cachedTemperature_ = {temperatures_.cpuTemperature(), now};
    return cachedTemperature_->value;
}

BatteryInfo SystemSampler::batteryInfo(const BatteryReading& reading) {
    return {.level = reading.full > 0 ? percentCut(reading.current, reading.full) : reading.current,
            .isCharging = reading.isCharging,
            .isPluggedIn = reading.isPluggedIn,
            .minutesRemaining = aboveZero(reading.minutesToEmpty),
            .minutesToFull = aboveZero(reading.minutesToFull)};
}

} // namespace kestrio
