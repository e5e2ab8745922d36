#include "Kestrio/Platform/Linux/ThermalZones.h"

#include "Kestrio/Platform/Linux/ChipTemperatures.h"
#include "Kestrio/Platform/Linux/CoreClasses.h"

#include <algorithm>
#include <set>
#include <utility>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

// Between a warm day and where silicon fails. Firmware writes 0, -273 and the like for "none".
constexpr double coolestTripPoint = 45;
constexpr double hottestTripPoint = 130;

/// How far below the point at which the machine slows itself it counts as getting warm.
constexpr double warmMargin = 5;

/// A zone of the machine as a whole, told by its firmware.
constexpr const char* firmwareZone = "acpitz";

/// More than any zone has.
constexpr int mostTripPoints = 32;

TripPoints readTripPoints(const fs::path& zone) {
    TripPoints points;
    for (int number = 0; number < mostTripPoints; ++number) {
        const auto stem = "trip_point_" + std::to_string(number);
        const auto type = kernelValue(zone / (stem + "_type"));
        if (!type)
            break;
        if (const auto temperature = parsedMillidegrees(kernelValue(zone / (stem + "_temp")).value_or("")))
            points = adding(points, *type, *temperature);
    }
    return points;
}

/// The package's count where the processor has one, else that of each core.
std::vector<std::string> throttleCountFiles(const fs::path& sys) {
    std::vector<std::string> files;
    std::set<std::string> packages;
    const auto cores = readCoreClasses(sys);
    std::error_code ignored;
    for (const auto* list : {&cores.efficiency, &cores.performance})
        for (const int core : *list) {
            const auto folder = sys / "devices/system/cpu" / ("cpu" + std::to_string(core));
            const auto ofPackage = folder / "thermal_throttle/package_throttle_count";
            const auto ofCore = folder / "thermal_throttle/core_throttle_count";
            if (!fs::exists(ofPackage, ignored)) {
                if (fs::exists(ofCore, ignored))
                    files.push_back(ofCore.string());
            } else if (packages.insert(kernelValue(folder / "topology/physical_package_id").value_or("")).second) {
                files.push_back(ofPackage.string());
            }
        }
    return files;
}

} // namespace

TripPoints adding(TripPoints points, const std::string& type, double temperature) {
    if (temperature < coolestTripPoint || temperature > hottestTripPoint)
        return points;
    if (type == "passive") {
        points.lowestPassive = std::min(points.lowestPassive.value_or(temperature), temperature);
        points.highestPassive = std::max(points.highestPassive.value_or(temperature), temperature);
    } else if (type == "hot" || type == "critical") {
        points.critical = std::min(points.critical.value_or(temperature), temperature);
    }
    return points;
}

ThermalState thermalState(double temperature, const TripPoints& points) {
    if (points.critical && temperature >= *points.critical)
        return ThermalState::critical;
    if (!points.lowestPassive || !points.highestPassive)
        return ThermalState::nominal;
    if (temperature >= *points.highestPassive)
        return ThermalState::serious;
    const auto warm = std::min(*points.lowestPassive, *points.highestPassive - warmMargin);
    return temperature >= warm ? ThermalState::fair : ThermalState::nominal;
}

ThermalZones::ThermalZones(const fs::path& sys) : throttleCountFiles_(throttleCountFiles(sys)) {
    std::error_code error;
    for (auto at = fs::directory_iterator(sys / "class/thermal", error); !error && at != fs::directory_iterator();
         at.increment(error)) {
        const auto& zone = at->path();
        if (!zone.filename().string().starts_with("thermal_zone"))
            continue;
        const auto type = kernelValue(zone / "type").value_or("");
        // In a zone that is switched off the kernel takes no measures, whatever its points say.
        if ((type != firmwareZone && !isProcessorZone(type)) || kernelValue(zone / "mode") == "disabled")
            continue;
        const auto points = readTripPoints(zone);
        if (points != TripPoints())
            zones_.push_back({(zone / "temp").string(), points});
    }
}

ThermalState ThermalZones::read() {
    return std::max(hottestZone(), throttling());
}

ThermalState ThermalZones::hottestZone() {
    auto hottest = ThermalState::nominal;
    for (const auto& zone : zones_)
        if (const auto text = buffer_.readPiece(zone.temperatureFile.c_str()))
            if (const auto temperature = parsedMillidegrees(*text))
                hottest = std::max(hottest, thermalState(*temperature, zone.points));
    return hottest;
}

ThermalState ThermalZones::throttling() {
    const auto count = throttleCount();
    const bool isThrottling = throttleCount_ && count > *throttleCount_;
    throttleCount_ = count;
    const bool wasThrottling = std::exchange(wasThrottling_, isThrottling);
    if (!isThrottling)
        return ThermalState::nominal;
    return wasThrottling ? ThermalState::serious : ThermalState::fair;
}

std::uint64_t ThermalZones::throttleCount() {
    std::uint64_t count = 0;
    for (const auto& file : throttleCountFiles_)
        if (const auto text = buffer_.readPiece(file.c_str()))
            count += leadingNumber(*text).value_or(0);
    return count;
}

} // namespace kestrio
