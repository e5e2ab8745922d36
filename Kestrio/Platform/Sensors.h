// Seam: how hot the machine is, what feeds it, and how much room its system drive has.
//
// Called on the queue of the sampler that owns it, every few seconds. Each question reads some small files; finding the
// sensors takes longer and happens at the first question that needs them. Nothing waits for other programs. Most hosts
// lack some of it, a virtual machine all: empty answers are valid, and readers go on without.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace kestrio {

/// How the machine copes with its heat: well; warm enough that it takes measures; slowing itself down; about to fail.
enum class ThermalState { nominal, fair, serious, critical };

/// The machine's own batteries as one.
struct BatteryReading {
    std::int64_t current = 0; // in a unit of the battery's own; percent when `full` is 0
    std::int64_t full = 0;
    bool isCharging = false;
    bool isPluggedIn = false;
    std::optional<std::int64_t> minutesToEmpty = {}; // absent, or 0, when unknown
    std::optional<std::int64_t> minutesToFull = {};

    friend bool operator==(const BatteryReading&, const BatteryReading&) = default;
};

/// The room of a drive in bytes. `free` is what programs of this person may still fill.
struct DiskUsage {
    std::int64_t free = 0;
    std::int64_t total = 0;

    friend bool operator==(const DiskUsage&, const DiskUsage&) = default;
};

class Sensors {
public:
    virtual ~Sensors() = default;

    /// Nominal where nothing tells.
    virtual ThermalState thermalState() = 0;

    /// What the sensors on the processor say, in degrees Celsius; at most six of them, as they are: a broken sensor
    /// gives any number. Empty where there is none.
    virtual std::vector<double> chipTemperatures() = 0;

    /// Absent on a machine without a battery of its own. Those of mice and the like do not count.
    virtual std::optional<BatteryReading> battery() = 0;

    /// Whether the person, or the desktop for them, chose to save power. False where nothing tells.
    virtual bool isLowPowerModeEnabled() = 0;

    /// The room of the drive that the system is on. Absent when it cannot be told.
    virtual std::optional<DiskUsage> systemDisk() = 0;
};

} // namespace kestrio
