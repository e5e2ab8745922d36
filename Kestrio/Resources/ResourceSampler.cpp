#include "Kestrio/Resources/ResourceSampler.h"

#include "Kestrio/Resources/TimeAgain.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrio {
namespace {

Date minuteOf(Date date) {
    constexpr double length = 60;
    return Date(std::floor(date.seconds() / length) * length);
}

std::uint64_t memoryInUse(const MemoryStatistics& statistics) {
    const auto apps = statistics.internal - std::min(statistics.purgeable, statistics.internal);
    return statistics.wired + apps + statistics.compressor;
}

} // namespace

ResourceSampler::ResourceSampler(Sources sources)
    : sources_(std::move(sources)),
      kernel_(sources_.kernel),
      scanner_(sources_.processes, sources_.clock, maxScanBaselineAge),
      ramMeter_(sources_.memoryTraffic) {}

ResourceSampler::Output ResourceSampler::sample(const Context& context, Date now) {
    Output output;
    output.isComparable = previousCores_.has_value();
    const auto load = loads();
    const auto statistics = sources_.kernel.memory();
    const auto swap = swapped(statistics, now);
    const auto length = elapsed(now);
    if (context.frontmost)
        frontSinceScan_[*context.frontmost] += length;
    output.scannedApps = context.scanApps || !lastScan_;
    if (output.scannedApps)
        scan();
    output.live = live(context, now, statistics, load, swap);
    output.finished = passInto(minuteOf(now));
    minute_.add({.context = context,
                 .live = output.live,
                 .isComparable = output.isComparable,
                 .elapsed = length,
                 .swapIn = swap.in,
                 .swapOut = swap.out,
                 .temperature = temperature(now)});
    if (output.scannedApps)
        minute_.addScan(output.live, std::exchange(frontSinceScan_, {}), context.states);
    output.second = second(context, output.live);
    return output;
}

ResourceSampler::Loads ResourceSampler::loads() {
    auto cores = kernel_.coreTicks();
    Loads loads;
    if (previousCores_ && previousCores_->size() == cores.size()) {
        const auto byClass = tindra::coreLoad(*previousCores_, cores, kernel_.efficiencyCores());
        // All cores as one class.
        const auto together = tindra::coreLoad(*previousCores_, cores, static_cast<std::int64_t>(cores.size()));
        loads = {together.efficiency, byClass.performance, byClass.efficiency};
    }
    previousCores_ = std::move(cores);
    return loads;
}

ResourceSampler::Swapped ResourceSampler::swapped(const std::optional<MemoryStatistics>& statistics, Date now) {
    if (!statistics)
        return {};
    const SwapReading reading{statistics->swapIns, statistics->swapOuts, now};
    const auto previous = std::exchange(previousSwap_, reading);
    if (!previous || reading.ins < previous->ins || reading.outs < previous->outs)
        return {};
    constexpr Seconds shortest{0.5}; // two ticks close together would make a rate out of a few pages
    const double seconds = std::max(now - previous->at, shortest).count();
    const auto in = reading.ins - previous->ins;
    const auto out = reading.outs - previous->outs;
    return {in, out, static_cast<double>(in) / seconds, static_cast<double>(out) / seconds};
}

Seconds ResourceSampler::elapsed(Date now) {
    const auto previous = std::exchange(previousSample_, now);
    return previous ? std::clamp(now - *previous, Seconds(0), longestTick) : Seconds(0);
}

void ResourceSampler::scan() {
    auto found = scanner_.scan();
    std::stable_sort(found.apps.begin(), found.apps.end(),
                     [](const AppProcesses& a, const AppProcesses& b) { return a.footprint > b.footprint; });
    lastScan_ = {std::make_shared<const std::vector<AppProcesses>>(std::move(found.apps)), found.hasCPU};
    minute_.noteProcesses(static_cast<std::int64_t>(scanner_.processCount()));
}

std::optional<SSDTraffic> ResourceSampler::diskTraffic() {
    const auto counters = sources_.disks.internalDrives();
    if (!counters)
        return std::nullopt;
    const DiskReading reading{*counters, sources_.clock.uptime()};
    const auto previous = std::exchange(previousDisk_, reading);
    return previous ? rates(reading.counters, previous->counters, (reading.at - previous->at).count()) : std::nullopt;
}

std::optional<double> ResourceSampler::temperature(Date now) {
    if (!isTimeAgain(lastTemperatureRead_, temperatureInterval, now))
        return std::nullopt;
    lastTemperatureRead_ = now;
    return sources_.temperature();
}

LiveResources ResourceSampler::live(const Context& context, Date now, const std::optional<MemoryStatistics>& statistics,
                                    const Loads& loads, const Swapped& swapped) {
    LiveResources live{.at = now,
                       .cpu = loads.all,
                       .cpuPerformance = loads.performance,
                       .cpuEfficiency = loads.efficiency,
                       .swapInRate = swapped.inRate,
                       .swapOutRate = swapped.outRate,
                       .pressure = kernel_.pressure(),
                       .thermal = context.thermal,
                       .apps = lastScan_->apps,
                       .hasCPU = lastScan_->hasCPU,
                       .ram = ramMeter_.sample(sources_.clock.uptime()),
                       .ssd = diskTraffic()};
    if (statistics) {
        memoryTotal_ = statistics->total;
        live.memoryUsed = memoryInUse(*statistics);
        live.compressed = statistics->compressor;
        live.breakdown = KernelStats::breakdown(*statistics, memoryTotal_);
    }
    live.memoryTotal = memoryTotal_;
    if (const auto swap = sources_.kernel.swap())
        live.swapUsed = swap->used;
    return live;
}

std::optional<FinishedMinute> ResourceSampler::passInto(Date minute) {
    const auto previous = std::exchange(minuteStart_, minute);
    if (!previous || *previous == minute)
        return std::nullopt;
    return minute_.finish(*previous, memoryTotal_);
}

SystemSecond ResourceSampler::second(const Context& context, const LiveResources& live) {
    const auto ram = live.ram.value_or(RAMTraffic{});
    const auto ssd = live.ssd.value_or(SSDTraffic{});
    return {.at = live.at,
            .cpu = live.cpu,
            .cpuPerformance = live.cpuPerformance,
            .cpuEfficiency = live.cpuEfficiency,
            .memoryUsed = live.memoryUsed,
            .compressed = live.compressed,
            .swapUsed = live.swapUsed,
            .pressure = pressureCode(live.pressure),
            .thermal = live.thermal,
            .ramRead = ram.read,
            .ramWrite = ram.write,
            .ssdRead = ssd.read,
            .ssdWrite = ssd.write,
            .swapInRate = live.swapInRate,
            .swapOutRate = live.swapOutRate,
            .lagMilliseconds = context.lagMilliseconds,
            .idleSeconds = static_cast<std::int64_t>(context.inputIdleSeconds),
            .state = context.activity,
            .frontApp = context.frontmost};
}

} // namespace kestrio
