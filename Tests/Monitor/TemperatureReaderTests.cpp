#include "Kestrio/Platform/Testing/ScriptedSensors.h"
#include "Kestrio/Resources/TemperatureReader.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(TemperatureReader, isTheMeanOfWhatCanBeTrue) {
    const struct {
        std::vector<double> temperatures;
        std::optional<double> mean;
    } rows[] = {
        {{}, {}},    {{50}, 50},  {{40, 50, 60}, 50},       {{10}, 10},           {{130}, 130},
        {{9.5}, {}}, {{131}, {}}, {{9.5, 40, 131, 50}, 45}, {{-273, 0, 255}, {}},
    };
    for (const auto& row : rows) {
        ScriptedSensors sensors;
        sensors.temperatures = row.temperatures;
        EXPECT_EQ(TemperatureReader(sensors).cpuTemperature(), row.mean) << testing::PrintToString(row.temperatures);
    }
}

} // namespace
} // namespace kestrio
