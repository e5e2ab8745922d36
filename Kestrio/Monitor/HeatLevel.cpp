#include "Kestrio/Monitor/HeatLevel.h"

namespace kestrio {

HeatLevel heatLevel(std::optional<double> temperature, ThermalState state) {
    if (state >= ThermalState::serious)
        return HeatLevel::throttling;
    if (!temperature)
        return state == ThermalState::fair ? HeatLevel::warm : HeatLevel::normal;
    if (*temperature < 45)
        return HeatLevel::cool;
    if (*temperature < 70)
        return HeatLevel::normal;
    return *temperature < 85 ? HeatLevel::warm : HeatLevel::hot;
}

std::string_view label(HeatLevel level) {
    switch (level) {
    case HeatLevel::cool: return "Cool";
    case HeatLevel::normal: return "Normal";
    case HeatLevel::warm: return "Warm";
    case HeatLevel::hot: return "Hot";
    case HeatLevel::throttling: return "Slowing down";
    }
    return {};
}

} // namespace kestrio
