// Takes the pictures of the machine for the system monitor: a cheap one every few seconds, and a detailed one, with the
// applications and the temperature, while somebody looks.
//
// Not shared: it belongs to the one serial queue that it samples on. The seams and the clock must outlive it.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Monitor/SystemSnapshot.h"
#include "Kestrio/Resources/AppProcessScanner.h"
#include "Kestrio/Resources/TemperatureReader.h"

#include <optional>
#include <vector>

namespace kestrio {

enum class SampleDetail { cheap, detailed };

class SystemSampler {
public:
    /// Applications below this share of the machine are not among those with the most CPU.
    static constexpr double leastTopCPU = 0.002;
    static constexpr std::size_t mostTopApps = 6;

    SystemSampler(KernelCounters& kernel, ProcessTable& processes, Sensors& sensors, const Clock& clock);

    /// Cannot fail: what cannot be read is 0, absent or empty. Takes some hundred microseconds, a detailed sample the
    /// time of a scan of all processes on top.
    SystemSnapshot sample(SampleDetail detail);

    /// The level is cut to whole percents, and never above 100.
    static BatteryInfo batteryInfo(const BatteryReading& reading);

private:
    /// A value and when it was read.
    template <class Value>
    struct Cached {
        Value value;
        Uptime at;
    };

    double cpu();
    std::optional<DiskUsage> disk();
    std::optional<double> temperature();
    void addDetails(SystemSnapshot& snapshot);

    KernelCounters& kernel_;
    Sensors& sensors_;
    const Clock& clock_;
    AppProcessScanner scanner_; // its own, with baselines of its own
    TemperatureReader temperatures_;
    std::vector<CoreTime> previousTimes_; // empty before the first sample
    std::uint64_t memoryTotal_ = 0;       // as last read; it does not change
    std::optional<Cached<DiskUsage>> cachedDisk_;
    std::optional<Cached<std::optional<double>>> cachedTemperature_;
};

} // namespace kestrio
