// The sensors of this machine, from `/sys` and the file system.
//
// Belongs to the queue of the sampler that owns it. The processor's sensors and the thermal zones are looked for at the
// first question about them; what is plugged in later is not seen, except batteries and the mains.
#pragma once

#include "Kestrio/Platform/Linux/ChipTemperatures.h"
#include "Kestrio/Platform/Linux/ThermalZones.h"
#include "Kestrio/Platform/Sensors.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace kestrio {

/// The room of the first of these folders whose file system can be written to: where the system itself is sealed, as
/// some distributions have it, its file system is always full and says nothing. Absent when there is none.
std::optional<DiskUsage> diskUsage(std::span<const std::filesystem::path> folders);

class LinuxSensors final : public Sensors {
public:
    struct Setup {
        std::filesystem::path sys = "/sys";
        std::vector<std::filesystem::path> systemFolders = {"/", "/var"};
        /// What the desktop's power profiles say, called on this reader's queue; absent where they say nothing. The
        /// firmware's own profile is asked then.
        std::function<std::optional<bool>()> isSavingPower = {};
    };
    explicit LinuxSensors(Setup setup);

    ThermalState thermalState() override;
    std::vector<double> chipTemperatures() override;
    std::optional<BatteryReading> battery() override;
    bool isLowPowerModeEnabled() override;
    std::optional<DiskUsage> systemDisk() override { return diskUsage(setup_.systemFolders); }

private:
    const Setup setup_;
    std::optional<ChipTemperatures> temperatures_;
    std::optional<ThermalZones> zones_;
};

} // namespace kestrio
