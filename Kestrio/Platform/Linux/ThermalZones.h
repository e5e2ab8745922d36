// How the machine copes with its heat, by two signs: the temperatures at which the kernel takes measures (the trip
// points of its thermal zones), and how often the processor slowed itself.
//
// Belongs to the queue of its reader. Making it reads the zones; a reading takes one small file per zone and package.
#pragma once

#include "Kestrio/Platform/Linux/KernelText.h"
#include "Kestrio/Platform/Sensors.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// Degrees Celsius at which something happens in a zone. Where there are several passive ones, the kernel begins to
/// regulate at the lowest and holds the zone at the highest.
struct TripPoints {
    std::optional<double> lowestPassive = {};
    std::optional<double> highestPassive = {};
    std::optional<double> critical = {}; // or "hot", from which the system is to save itself

    friend bool operator==(const TripPoints&, const TripPoints&) = default;
};

/// Takes one more point in. `type` is as the kernel has it; one at which only a fan starts is no sign, and neither is a
/// temperature that no processor is cooled at, which firmware puts where there is none.
TripPoints adding(TripPoints points, const std::string& type, double temperature);

/// Both ends of a span belong to the hotter state.
ThermalState thermalState(double temperature, const TripPoints& points);

class ThermalZones {
public:
    /// `sys` is `/sys`, or a folder like it.
    explicit ThermalZones(const std::filesystem::path& sys);

    /// The worst of all signs. A processor that slowed itself since the last reading is fair; one that did so over two
    /// readings in a row is serious.
    ThermalState read();

private:
    struct Zone {
        std::string temperatureFile;
        TripPoints points;
    };

    ThermalState hottestZone();
    ThermalState throttling();
    std::uint64_t throttleCount();

    std::vector<Zone> zones_;
    std::vector<std::string> throttleCountFiles_; // one per package
    std::optional<std::uint64_t> throttleCount_;  // as of the last reading
    bool wasThrottling_ = false;
    KernelTextBuffer buffer_;
};

} // namespace kestrio
