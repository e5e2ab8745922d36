// A machine whose counters a test moves, with a sampler on it.
#pragma once

#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Testing/ScriptedMachine.h"
#include "Kestrio/Platform/Testing/ScriptedProcessTable.h"
#include "Kestrio/Resources/ResourceSampler.h"

#include <optional>
#include <string>

namespace kestrio {

struct MachineBench {
    static constexpr Date minuteStart{1'699'999'980};

    explicit MachineBench(Date start = minuteStart) : time(start) {
        kernel.counts = {1, 1};
        kernel.times = {{0, 0}, {0, 0}};
        kernel.statistics = MemoryStatistics{.total = 1'000};
    }

    /// Moves the time and both cores' counters on; the shares are those of the cores' time that they worked.
    void pass(Seconds span, double efficiencyLoad = 0, double performanceLoad = 0) {
        time.advance(span);
        work(span, efficiencyLoad, performanceLoad);
    }
    void work(Seconds span, double efficiencyLoad, double performanceLoad) {
        constexpr double ticksPerSecond = 1'000;
        const double loads[] = {efficiencyLoad, performanceLoad};
        for (std::size_t core = 0; core < kernel.times.size(); ++core) {
            kernel.times[core].busy += static_cast<std::uint64_t>(span.count() * ticksPerSecond * loads[core % 2]);
            kernel.times[core].total += static_cast<std::uint64_t>(span.count() * ticksPerSecond);
        }
    }

    ResourceSampler::Output sample(const ResourceContext& context = {}) { return sampler.sample(context, time.now()); }
    ResourceSampler::Output sampleAfter(Seconds span, const ResourceContext& context = {}) {
        time.advance(span);
        return sample(context);
    }
    /// Goes to the next minute and takes what the one before has become.
    FinishedMinute finish(const ResourceContext& context = {}) {
        const double into = time.now().seconds() - minuteStart.seconds();
        const double left = 60 - (into - 60 * static_cast<double>(static_cast<std::int64_t>(into / 60)));
        return sampleAfter(Seconds(left), context).finished.value();
    }

    /// A program with so much memory, of an application when it has an identifier.
    void run(pid_t process, const std::string& path, std::uint64_t footprint,
             const std::optional<std::string>& bundleID = {}) {
        processes.run(process, path, {.start = 1, .footprint = footprint, .resident = footprint});
        if (bundleID)
            processes.applications[process] = {.bundleIdentifier = *bundleID, .localizedName = path, .path = path};
    }

    VirtualTime time;
    ScriptedProcessTable processes;
    ScriptedKernelCounters kernel;
    ScriptedMemoryTraffic memoryTraffic;
    ScriptedDisks disks;
    std::optional<double> temperature;
    int temperatureReads = 0;
    ResourceSampler sampler{{.clock = time,
                             .processes = processes,
                             .kernel = kernel,
                             .disks = disks,
                             .memoryTraffic = memoryTraffic,
                             .temperature = [this] {
                                 ++temperatureReads;
                                 return temperature;
                             }}};
};

} // namespace kestrio
