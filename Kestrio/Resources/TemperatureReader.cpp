#include "Kestrio/Resources/TemperatureReader.h"

namespace kestrio {

std::optional<double> TemperatureReader::cpuTemperature() {
    return mean(sensors_.chipTemperatures());
}

std::optional<double> TemperatureReader::mean(std::span<const double> temperatures) {
    double sum = 0;
    int count = 0;
    for (const double temperature : temperatures)
        if (temperature >= least && temperature <= most) {
            sum += temperature;
            ++count;
        }
    return count > 0 ? std::optional(sum / count) : std::nullopt;
}

} // namespace kestrio
