// How hot the machine is, in a word. Pure functions.
#pragma once

#include "Kestrio/Platform/Sensors.h"

#include <optional>
#include <string_view>

namespace kestrio {

enum class HeatLevel { cool, normal, warm, hot, throttling };

/// `temperature` of the chip in degrees Celsius. Once there is one it is believed before a state that is merely fair.
HeatLevel heatLevel(std::optional<double> temperature, ThermalState state);

std::string_view label(HeatLevel level);

} // namespace kestrio
