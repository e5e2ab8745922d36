#include "Fuzz/Fuzz.h"
#include "Kestrio/Link/MonitorReading.h"

#include <nlohmann/json.hpp>

/// What an agent of any version sends is a reading or none; a reading survives the way there and back.
void kestrio::fuzz(std::string_view input) {
    const auto reading = monitorReadingFromJSON(nlohmann::ordered_json::parse(input, nullptr, false));
    if (reading)
        require(monitorReadingFromJSON(nlohmann::ordered_json::parse(toJSON(*reading).dump())) == reading);
}
