// Sensors in memory, for tests: each answers what the test last put into its fields. Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/Sensors.h"

namespace kestrio {

class ScriptedSensors final : public Sensors {
public:
    ThermalState thermal = ThermalState::nominal;
    std::vector<double> temperatures;
    std::optional<BatteryReading> charge;
    bool isSavingPower = false;
    std::optional<DiskUsage> disk;

    /// How often what costs something was asked for.
    int temperatureReads = 0;
    int diskReads = 0;

    ThermalState thermalState() override { return thermal; }
    std::vector<double> chipTemperatures() override {
        ++temperatureReads;
        return temperatures;
    }
    std::optional<BatteryReading> battery() override { return charge; }
    bool isLowPowerModeEnabled() override { return isSavingPower; }
    std::optional<DiskUsage> systemDisk() override {
        ++diskReads;
        return disk;
    }
};

} // namespace kestrio
