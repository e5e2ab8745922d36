#include "Kestrio/Monitor/HeatLevel.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(HeatLevel, isByTemperatureAndState) {
    using enum HeatLevel;
    const struct {
        std::optional<double> temperature;
        ThermalState state;
        HeatLevel level;
    } rows[] = {
        {{}, ThermalState::nominal, normal},     {{}, ThermalState::fair, warm},
        {{}, ThermalState::serious, throttling}, {{}, ThermalState::critical, throttling},
        {44.9, ThermalState::nominal, cool},     {45, ThermalState::nominal, normal},
        {69.9, ThermalState::nominal, normal},   {70, ThermalState::nominal, warm},
        {84.9, ThermalState::nominal, warm},     {85, ThermalState::nominal, hot},
        {44.9, ThermalState::fair, cool},        {60, ThermalState::fair, normal},
        {20, ThermalState::serious, throttling}, {20, ThermalState::critical, throttling},
    };
    for (const auto& row : rows)
        EXPECT_EQ(heatLevel(row.temperature, row.state), row.level)
            << row.temperature.value_or(-1) << " " << static_cast<int>(row.state);
}

TEST(HeatLevel, hasALabel) {
    const std::pair<HeatLevel, const char*> rows[] = {{HeatLevel::cool, "Cool"},
                                                      {HeatLevel::normal, "Normal"},
                                                      {HeatLevel::warm, "Warm"},
                                                      {HeatLevel::hot, "Hot"},
                                                      {HeatLevel::throttling, "Slowing down"}};
    for (const auto& [level, text] : rows)
        EXPECT_EQ(label(level), text);
}

} // namespace
} // namespace kestrio
