#include "Kestrio/Platform/Linux/LinuxSensors.h"

#include "Kestrio/Platform/Linux/PowerSupplies.h"

#include <limits>
#include <sys/statvfs.h>

namespace kestrio {
namespace {

std::int64_t bytes(fsblkcnt_t blocks, unsigned long size) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    if (size > 0 && blocks > static_cast<std::uint64_t>(most) / size)
        return most;
    return static_cast<std::int64_t>(blocks * size);
}

} // namespace

std::optional<DiskUsage> diskUsage(std::span<const std::filesystem::path> folders) {
    for (const auto& folder : folders) {
        struct statvfs volume {};
        if (statvfs(folder.c_str(), &volume) == 0 && (volume.f_flag & ST_RDONLY) == 0 && volume.f_blocks > 0)
            return DiskUsage{bytes(volume.f_bavail, volume.f_frsize), bytes(volume.f_blocks, volume.f_frsize)};
    }
    return std::nullopt;
}

LinuxSensors::LinuxSensors(Setup setup) : setup_(std::move(setup)) {}

ThermalState LinuxSensors::thermalState() {
    if (!zones_)
        zones_.emplace(setup_.sys);
    return zones_->read();
}

std::vector<double> LinuxSensors::chipTemperatures() {
    if (!temperatures_)
        temperatures_.emplace(setup_.sys);
    return temperatures_->read();
}

std::optional<BatteryReading> LinuxSensors::battery() {
    return readBattery(setup_.sys);
}

bool LinuxSensors::isLowPowerModeEnabled() {
    if (setup_.isSavingPower)
        if (const auto isSaving = setup_.isSavingPower())
            return *isSaving;
    return kernelValue(setup_.sys / "firmware/acpi/platform_profile") == "low-power";
}

} // namespace kestrio
