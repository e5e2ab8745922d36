// One quick picture of the whole machine, as the system monitor shows it. Plain values.
#pragma once

#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Platform/Sensors.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

struct BatteryInfo {
    std::int64_t level = 0; // percent, 0 to 100
    bool isCharging = false;
    bool isPluggedIn = false;
    std::optional<std::int64_t> minutesRemaining = {}; // above 0
    std::optional<std::int64_t> minutesToFull = {};    // above 0

    friend bool operator==(const BatteryInfo&, const BatteryInfo&) = default;
};

/// One application's use, with all its processes.
struct AppResource {
    std::string id;
    std::string name;
    std::optional<std::string> appPath = {};
    double cpu = 0;           // 1 is the whole machine
    std::uint64_t memory = 0; // bytes
    std::int64_t processes = 0;

    friend bool operator==(const AppResource&, const AppResource&) = default;
};

struct SystemSnapshot {
    double cpu = 0;                // share of all cores that was busy since the sample before, 0 to 1
    std::uint64_t memoryUsed = 0;  // bytes
    std::uint64_t memoryTotal = 0; // bytes
    std::uint64_t swapUsed = 0;    // bytes
    MemoryPressure pressure = MemoryPressure::normal;
    ThermalState thermalState = ThermalState::nominal;
    std::optional<double> temperature = {}; // of the chip, in degrees Celsius
    std::optional<DiskUsage> disk = {};
    std::optional<BatteryInfo> battery = {}; // absent on a machine without one of its own
    std::vector<AppResource> topCPU = {};    // at most six, the greatest first
    std::vector<AppResource> topMemory = {}; // the same
    /// Whether the applications' CPU figures are usable; a first scan has nothing to compare with.
    bool hasAppCPU = false;

    friend bool operator==(const SystemSnapshot&, const SystemSnapshot&) = default;
};

} // namespace kestrio
