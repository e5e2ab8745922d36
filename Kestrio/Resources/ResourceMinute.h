// A minute of the resource log in the making: ticks and scans go in, rows come out.
//
// Belongs to the queue of the sampler that owns it. Nothing here reads a clock or a counter, and nothing fails.
#pragma once

#include "Kestrio/Resources/ResourceReading.h"
#include "Kestrio/Resources/ResourceRecords.h"
#include "TindraCore/ResourceMath.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrio {

/// One tick as it goes into the minute.
struct MinuteTick {
    const ResourceContext& context;
    const LiveResources& live;
    bool isComparable = false;    // the loads and rates are those of an interval
    Seconds elapsed = Seconds(0); // since the tick before; at least 0
    std::uint64_t swapIn = 0;     // bytes in that time
    std::uint64_t swapOut = 0;
    std::optional<double> temperature = {}; // degrees Celsius; absent at most ticks
};

/// What a minute leaves: its row, and a row for each application that is worth one.
struct FinishedMinute {
    SystemMinute minute;
    std::vector<AppMinute> apps;

    friend bool operator==(const FinishedMinute&, const FinishedMinute&) = default;
};

class ResourceMinute {
public:
    void add(const MinuteTick& tick);

    /// The applications of one scan, with the seconds that each was in front since the scan before.
    void addScan(const LiveResources& live, const std::map<std::string, Seconds>& frontSeconds,
                 const std::map<std::string, std::int64_t>& states);

    /// How many processes a scan found; the row has the largest number.
    void noteProcesses(std::int64_t count);

    /// Makes the rows of the minute that began at `start` and begins a new one. What is a level rather than an event
    /// (swap in use, battery, mains) carries over into it.
    FinishedMinute finish(Date start, std::uint64_t memoryTotal);

private:
    void addRates(const MinuteTick& tick);
    void addConfig(const tindra::OptimizerConfig& config, Seconds elapsed);
    void beginAnew();

    SystemMinute row(Date start, std::uint64_t memoryTotal) const;
    std::vector<AppMinute> appRows(Date start) const;
    std::optional<std::string> longestInFront() const;
    std::optional<tindra::OptimizerConfig> longestConfig() const;

    tindra::Running cpu_;
    tindra::Running cpuPerformance_;
    tindra::Running cpuEfficiency_;
    tindra::Running memoryUsed_;
    tindra::Running compressed_;
    std::uint64_t swapUsed_ = 0; // the latest
    std::uint64_t swapIn_ = 0;   // bytes within the minute
    std::uint64_t swapOut_ = 0;
    std::int64_t pressure_ = pressureCode(MemoryPressure::normal); // the worst, like the two below
    std::int64_t thermal_ = 0;
    std::int64_t lag_ = 0;
    tindra::Running ramRead_;
    tindra::Running ramWrite_;
    tindra::Running ramTotal_;
    tindra::Running ssdRead_;
    tindra::Running ssdWrite_;
    tindra::Running ssdTotal_;
    tindra::Running ssdWait_; // microseconds
    tindra::BehaviourAccumulator behaviour_;
    std::int64_t appsOpen_ = 0;  // the most
    std::int64_t processes_ = 0; // the most
    std::optional<std::int64_t> battery_;
    std::optional<bool> onAC_;
    bool lowPower_ = false; // at any time
    tindra::Running temperature_;
    tindra::Running frozenApps_;
    tindra::Running efficientApps_;
    tindra::Running frozenMemory_;

    struct ConfigTime {
        tindra::OptimizerConfig config;
        Seconds inForce;
    };
    std::map<std::string, ConfigTime> configs_;                  // by the setup's key
    std::map<std::string, Seconds> inFront_;                     // by application's key
    std::map<std::string, tindra::AppMinuteAccumulator> apps_{}; // by application's key
};

} // namespace kestrio
