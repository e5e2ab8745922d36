// Takes one reading of the whole machine per tick and rolls the readings up into minutes.
//
// Not synchronised: belongs to the recorder's queue "Kestrio.resources", with at most one call under way. It has no
// timer and no database: the recorder decides when to sample and what to store. Every source may fail on its own, and
// the reading goes on without it.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Resources/ResourceMinute.h"
#include "Kestrio/Resources/ResourceReading.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class ResourceSampler {
public:
    using Context = ResourceContext;

    /// An older scan is no baseline for CPU time: the machine slept.
    static constexpr Seconds maxScanBaselineAge{40};
    /// The most that one tick adds to anything counted in seconds, however long the machine slept before it.
    static constexpr Seconds longestTick{30};
    /// Reading the temperature is slow.
    static constexpr Seconds temperatureInterval{10};

    /// The host's side. All must outlive the sampler and are used on its queue alone.
    struct Sources {
        const Clock& clock;
        ProcessTable& processes;
        KernelCounters& kernel;
        Disks& disks;
        MemoryTraffic& memoryTraffic;
        /// The processor's, in degrees Celsius.
        std::function<std::optional<double>()> temperature = [] { return std::nullopt; };
    };

    struct Output {
        LiveResources live;
        SystemSecond second;
        /// There was a reading of the cores to compare with, so that loads and rates are those of an interval.
        bool isComparable = false;
        bool scannedApps = false;
        /// The minute before, at the first tick after its end.
        std::optional<FinishedMinute> finished = {};
    };

    explicit ResourceSampler(Sources sources);

    /// A `now` before the last one is a tick of no length.
    Output sample(const Context& context, Date now);

private:
    struct Loads {
        double all = 0;
        double performance = 0;
        double efficiency = 0;
    };
    struct Swapped {
        std::uint64_t in = 0; // bytes since the last tick
        std::uint64_t out = 0;
        double inRate = 0;
        double outRate = 0;
    };

    Loads loads();
    Swapped swapped(const std::optional<MemoryStatistics>& statistics, Date now);
    Seconds elapsed(Date now);
    void scan();
    std::optional<SSDTraffic> diskTraffic();
    std::optional<double> temperature(Date now);
    LiveResources live(const Context& context, Date now, const std::optional<MemoryStatistics>& statistics,
                       const Loads& loads, const Swapped& swapped);
    std::optional<FinishedMinute> passInto(Date minute);
    static SystemSecond second(const Context& context, const LiveResources& live);

    const Sources sources_;
    KernelStats kernel_;
    AppProcessScanner scanner_;
    RAMTrafficMeter ramMeter_;

    struct LastScan {
        LiveResources::Apps apps;
        bool hasCPU;
    };
    std::optional<LastScan> lastScan_;
    std::optional<std::vector<tindra::CoreTicks>> previousCores_;
    struct SwapReading {
        std::uint64_t ins; // bytes since the machine started
        std::uint64_t outs;
        Date at;
    };
    std::optional<SwapReading> previousSwap_;
    std::optional<Date> previousSample_;
    struct DiskReading {
        DiskCounters counters;
        Uptime at;
    };
    std::optional<DiskReading> previousDisk_;
    std::optional<Date> lastTemperatureRead_;
    std::uint64_t memoryTotal_ = 0; // as last read: it does not change

    std::optional<Date> minuteStart_;
    ResourceMinute minute_;
    std::map<std::string, Seconds> frontSinceScan_; // by application's key
};

} // namespace kestrio
