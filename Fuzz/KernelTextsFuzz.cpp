#include "Fuzz/Fuzz.h"
#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/LinuxDisks.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Platform/Linux/LinuxMemoryTraffic.h"

#include <algorithm>

/// The kernel's counters of the machine.
void kestrio::fuzz(std::string_view input) {
    const auto memory = parseMemoryInfo(input);
    const auto stall = parseMemoryStall(input);
    memoryPressure(stall, memory);
    require(!memory || memory->total > 0);
    parseSwapTraffic(input);
    parseCompressedDriveMemory(input);
    for (const auto& [core, time] : parseCoreTimes(input))
        require(core >= 0);
    for (const auto& line : parseDiskStatistics(input))
        require(!line.device.empty());
    const auto cores = parseCoreList(input);
    require(std::is_sorted(cores.begin(), cores.end()) && cores.size() <= 4096);
    parseFormatShift(input);
    parseBytesPerCount(input, "MiB");
    parseEventConfig(input, [](std::string_view name) { return parseFormatShift(name).value_or(63); });
}
