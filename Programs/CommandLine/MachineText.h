// What the machine is and how it stands, as lines for people or as data. Pure functions of their arguments.
#pragma once

#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Resources/DataSpeeds.h"
#include "Kestrio/Resources/SSDSpeedTest.h"
#include "Programs/CommandLine/SessionTable.h"
#include "TindraCore/ResourceMath.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

struct MachineReading {
    std::string chip; // may be empty
    std::int64_t efficiencyCores = 0;
    std::int64_t performanceCores = 1;
    struct Load {
        double all = 0; // 0 to 1
        tindra::CoreLoad byClass;
    };
    std::optional<Load> load = {};
    std::optional<MemoryStatistics> memory = {};
    MemoryPressure pressure = MemoryPressure::normal;
    std::optional<SwapUse> swap = {};
    std::optional<SSDTraffic> drives = {};
    std::optional<RAMTraffic> traffic = {};
    std::optional<double> topSpeed = {}; // bytes per second
    std::optional<SSDSpeedTest::Result> test = {};

    /// What cannot be told here, and why.
    struct Absence {
        std::string what;
        std::string why;
    };
    std::vector<Absence> absences = {};
};

/// Ends with a line feed. Sizes are in the words of the calendar's locale.
std::string machineText(const MachineReading& reading, const Calendar& calendar, const TableStyle& style);
nlohmann::ordered_json toJSON(const MachineReading& reading);

std::string testText(const SSDSpeedTest::Result& result, const Calendar& calendar);

} // namespace kestrio
