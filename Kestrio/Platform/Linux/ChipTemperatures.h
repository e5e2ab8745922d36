// The temperature sensors on the processor's die, out of all that a machine has: by the drivers of processors
// (`coretemp`, `k10temp`, …), else by what a board calls its processor's sensor, else by the kernel's thermal zones.
//
// Belongs to the queue of its reader. Making it lists a folder per chip; reading takes one small file per sensor.
#pragma once

#include "Kestrio/Platform/Linux/KernelText.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

/// How well a sensor tells the heat of the die. Only those of the best kind that the machine has are read.
enum class ChipSensorKind {
    die,       // of a core, or of one of the dies
    processor, // of the processor as a whole
    zone,      // where the kernel tells no more than the zone that it cools
};

/// By the driver's name and the sensor's label, which may be empty. Absent for a sensor of anything else.
std::optional<ChipSensorKind> chipSensorKind(std::string_view driver, std::string_view label);

/// Whether a thermal zone of this type is about the processor.
bool isProcessorZone(std::string_view type);

/// "48500" is 48.5 degrees. Absent for what is no number.
std::optional<double> parsedMillidegrees(std::string_view text);

class ChipTemperatures {
public:
    static constexpr std::size_t mostSensors = 6;

    /// `sys` is `/sys`, or a folder like it.
    explicit ChipTemperatures(const std::filesystem::path& sys);

    /// In degrees Celsius; a sensor that cannot be read is left out.
    std::vector<double> read();

private:
    std::vector<std::string> files_;
    KernelTextBuffer buffer_;
};

} // namespace kestrio
