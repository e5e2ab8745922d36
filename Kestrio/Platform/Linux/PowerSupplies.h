// What feeds the machine, from `/sys/class/power_supply`: its batteries taken together, and whether the mains are on.
// Free functions; any thread. A reading takes two small files per supply.
#pragma once

#include "Kestrio/Platform/Sensors.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrio {

struct PowerSupply {
    enum class Kind { battery, mains, other };
    /// As the driver says; a battery that neither charges nor discharges, full or held back, is resting.
    enum class Status { unknown, charging, discharging, resting };

    Kind kind = Kind::other;
    bool isOfDevice = false; // of a mouse, a headset and the like
    bool isPresent = true;   // a bay may be empty
    bool isOnline = false;   // of mains: feeds the machine
    Status status = Status::unknown;
    /// In one unit and its rate per hour: microwatt-hours, or microampere-hours where the voltage is not told either.
    struct Charge {
        double now = 0;
        double full = 0; // above 0
        double rate = 0; // not negative; 0 when unknown

        friend bool operator==(const Charge&, const Charge&) = default;
    };
    std::optional<Charge> charge = {};
    std::optional<std::int64_t> percent = {}; // by the battery's own count, 0 to 100
    std::optional<std::int64_t> secondsToEmpty = {};
    std::optional<std::int64_t> secondsToFull = {};

    friend bool operator==(const PowerSupply&, const PowerSupply&) = default;
};

/// By the text of a supply's `type` and of its `uevent`.
PowerSupply parsePowerSupply(std::string_view type, std::string_view properties);

/// Absent when none of the supplies is a battery of the machine that tells its charge.
std::optional<BatteryReading> batteryOf(std::span<const PowerSupply> supplies);

/// `sys` is `/sys`, or a folder like it.
std::optional<BatteryReading> readBattery(const std::filesystem::path& sys);

} // namespace kestrio
