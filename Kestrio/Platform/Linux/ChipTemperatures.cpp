#include "Kestrio/Platform/Linux/ChipTemperatures.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <tuple>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view coreDriver = "coretemp";
constexpr auto dieDrivers = std::to_array<std::string_view>({"k10temp", "zenpower"});
/// In the names that boards give the sensors and zones of their processors, and in nobody else's.
constexpr auto processorWords = std::to_array<std::string_view>({"cpu", "soc", "core", "package", "pkg"});

struct Sensor {
    ChipSensorKind kind;
    std::string product;
    std::string file;
};

std::string lowercased(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

bool namesProcessor(std::string_view name) {
    const auto lower = lowercased(name);
    return std::any_of(processorWords.begin(), processorWords.end(),
                       [&](auto word) { return lower.find(word) != std::string::npos; });
}

/// The entries of a folder whose names begin so; none when there is no folder.
std::vector<fs::path> entries(const fs::path& folder, std::string_view prefix) {
    std::vector<fs::path> found;
    std::error_code error;
    for (auto at = fs::directory_iterator(folder, error); !error && at != fs::directory_iterator(); at.increment(error))
        if (at->path().filename().string().starts_with(prefix))
            found.push_back(at->path());
    return found;
}

void addSensors(const fs::path& chip, std::vector<Sensor>& sensors) {
    constexpr std::string_view inputSuffix = "_input";
    const auto driver = kernelValue(chip / "name").value_or("");
    for (const auto& file : entries(chip, "temp")) {
        const auto name = file.filename().string();
        if (!name.ends_with(inputSuffix))
            continue;
        const auto stem = name.substr(0, name.size() - inputSuffix.size());
        const auto label = kernelValue(chip / (stem + "_label")).value_or("");
        if (const auto kind = chipSensorKind(driver, label))
            sensors.push_back({*kind, fmt::format("{} {}", driver, label), file.string()});
    }
}

} // namespace

std::optional<ChipSensorKind> chipSensorKind(std::string_view driver, std::string_view label) {
    if (driver == coreDriver)
        return label.starts_with("Core ") ? ChipSensorKind::die : ChipSensorKind::processor;
    // "Tctl" steers the fan and is off by a constant on some processors.
    if (std::find(dieDrivers.begin(), dieDrivers.end(), driver) != dieDrivers.end())
        return label == "Tdie" || label.starts_with("Tccd") ? ChipSensorKind::die : ChipSensorKind::processor;
    return namesProcessor(driver) ? std::optional(ChipSensorKind::processor) : std::nullopt;
}

bool isProcessorZone(std::string_view type) {
    return namesProcessor(type);
}

std::optional<double> parsedMillidegrees(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.remove_suffix(1);
    const auto value = parsedNumber<std::int64_t>(text);
    return value ? std::optional(static_cast<double>(*value) / 1000) : std::nullopt;
}

ChipTemperatures::ChipTemperatures(const fs::path& sys) {
    std::vector<Sensor> sensors;
    for (const auto& chip : entries(sys / "class/hwmon", "hwmon"))
        addSensors(chip, sensors);
    for (const auto& zone : entries(sys / "class/thermal", "thermal_zone")) {
        const auto type = kernelValue(zone / "type").value_or("");
        if (isProcessorZone(type))
            sensors.push_back({ChipSensorKind::zone, type, (zone / "temp").string()});
    }
    std::sort(sensors.begin(), sensors.end(), [](const Sensor& a, const Sensor& b) {
        return std::tie(a.kind, a.product, a.file) < std::tie(b.kind, b.product, b.file);
    });
    for (const auto& sensor : sensors)
        if (sensor.kind == sensors.front().kind && files_.size() < mostSensors)
            files_.push_back(sensor.file);
}

std::vector<double> ChipTemperatures::read() {
    std::vector<double> temperatures;
    for (const auto& file : files_)
        if (const auto text = buffer_.readPiece(file.c_str()))
            if (const auto temperature = parsedMillidegrees(*text))
                temperatures.push_back(*temperature);
    return temperatures;
}

} // namespace kestrio
