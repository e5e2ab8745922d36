#include "Fuzz/Fuzz.h"
#include "Kestrio/Platform/Linux/ChipTemperatures.h"
#include "Kestrio/Platform/Linux/PowerSupplies.h"

#include <vector>

/// What drivers say about batteries, the mains and temperatures.
void kestrio::fuzz(std::string_view input) {
    parsedMillidegrees(input);
    chipSensorKind(input, input);
    const auto supply = parsePowerSupply("Battery", input);
    const std::vector<PowerSupply> supplies{supply, supply, parsePowerSupply("Mains", input)};
    if (const auto battery = batteryOf(supplies)) {
        require(battery->current >= 0 && battery->full > 0);
        require(!battery->minutesToEmpty || *battery->minutesToEmpty > 0);
        require(!battery->minutesToFull || *battery->minutesToFull > 0);
    }
}
