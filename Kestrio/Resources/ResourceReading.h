// One reading of the whole machine: what the sampler is told for it and what the pages see of it. Plain values, usable
// from any thread.
//
// An application's key is its bundle identifier, else the `id` of its `AppProcesses`.
#pragma once

#include "Kestrio/Base/Date.h"
#include "Kestrio/Resources/AppProcessScanner.h"
#include "Kestrio/Resources/DataSpeeds.h"
#include "Kestrio/Resources/KernelStats.h"
#include "TindraCore/Config.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// The key under which the log keeps an application.
inline const std::string& applicationKey(const AppProcesses& app) {
    return app.bundleID ? *app.bundleID : app.id;
}

/// What a tick cannot read from the machine's counters: what the person and the optimizer are doing, and the power.
struct ResourceContext {
    std::optional<std::string> frontmost = {}; // an application's key
    /// The optimizer's state by application's key: 1 slowed, 2 frozen. Those without one are left alone.
    std::map<std::string, std::int64_t> states = {};
    std::int64_t lagMilliseconds = 0; // the worst stall since the last tick
    bool scanApps = false;            // whether this tick looks at every process
    std::int64_t activity = 0;        // as `tindra::BehaviourAccumulator` codes it
    double inputIdleSeconds = 0;
    std::optional<std::int64_t> battery = {}; // percent
    std::optional<bool> onAC = {};
    bool lowPower = false;
    std::int64_t thermal = 0; // 0 nominal, 1 fair, 2 serious, 3 critical
    std::int64_t appsOpen = 0;
    tindra::OptimizerConfig config = tindra::OptimizerConfig::off();
    std::int64_t frozenApps = 0;
    std::int64_t efficientApps = 0;
    std::uint64_t frozenMemory = 0; // bytes
};

/// The present state of the machine. Loads are from 0 to 1, memory in bytes, rates in bytes per second.
struct LiveResources {
    /// One scan, shared by all the readings up to the next one; never null.
    using Apps = std::shared_ptr<const std::vector<AppProcesses>>;

    Date at = {};
    double cpu = 0;
    double cpuPerformance = 0;
    double cpuEfficiency = 0;
    std::uint64_t memoryUsed = 0;
    std::uint64_t memoryTotal = 0;
    std::uint64_t compressed = 0;
    KernelStats::MemoryBreakdown breakdown = {};
    std::uint64_t swapUsed = 0;
    double swapInRate = 0;
    double swapOutRate = 0;
    MemoryPressure pressure = MemoryPressure::normal;
    std::int64_t thermal = 0;                                        // as in the context
    Apps apps = std::make_shared<const std::vector<AppProcesses>>(); // the largest by memory first
    bool hasCPU = false;                                             // whether the figures of `apps` hold CPU time
    std::optional<RAMTraffic> ram = {};
    std::optional<SSDTraffic> ssd = {};
};

} // namespace kestrio
