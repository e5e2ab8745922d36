// The processor's temperature out of what its sensors say.
//
// Belongs to the queue of the sampler that owns it, and must not outlive the sensors.
#pragma once

#include "Kestrio/Platform/Sensors.h"

#include <optional>
#include <span>

namespace kestrio {

class TemperatureReader {
public:
    /// What a sensor says outside of these, in degrees Celsius, it says because it is asleep or broken.
    static constexpr double least = 10;
    static constexpr double most = 130;

    explicit TemperatureReader(Sensors& sensors) : sensors_(sensors) {}

    /// In degrees Celsius; absent when no sensor says anything that can be true.
    std::optional<double> cpuTemperature();

    /// The mean of those that can be true.
    static std::optional<double> mean(std::span<const double> temperatures);

private:
    Sensors& sensors_;
};

} // namespace kestrio
