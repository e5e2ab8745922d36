// Seam: the machine's cores and its memory, as the kernel counts them.
//
// Called on the sampler's queue once a tick; each question reads a few small files and never blocks. A counter that
// cannot be read is absent, and its readers go on without it. The cores and their names are told once per life of the
// program; what is plugged in later is not seen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// How many logical cores of each class there are. A machine with one class has performance cores alone.
struct CoreCounts {
    std::size_t efficiency = 0;
    std::size_t performance = 0;

    friend bool operator==(const CoreCounts&, const CoreCounts&) = default;
};

/// What one core has done since the machine started, in ticks.
struct CoreTime {
    std::uint64_t busy = 0;
    std::uint64_t total = 0; // busy and idle

    friend bool operator==(const CoreTime&, const CoreTime&) = default;
};

/// Physical memory by what it is used for, and the traffic of swap since the machine started. All in bytes.
struct MemoryStatistics {
    std::uint64_t total = 0;
    std::uint64_t internal = 0;  // what programs hold, besides files
    std::uint64_t purgeable = 0; // the part of it that is given up without asking
    std::uint64_t wired = 0;
    std::uint64_t compressor = 0; // occupied by compressed memory
    std::uint64_t external = 0;   // files kept in memory
    std::uint64_t swapIns = 0;
    std::uint64_t swapOuts = 0;

    friend bool operator==(const MemoryStatistics&, const MemoryStatistics&) = default;
};

struct SwapUse {
    std::uint64_t used = 0;  // bytes
    std::uint64_t total = 0; // bytes; 0 on a machine without swap

    friend bool operator==(const SwapUse&, const SwapUse&) = default;
};

enum class MemoryPressure { normal, warning, critical };

class KernelCounters {
public:
    virtual ~KernelCounters() = default;

    /// The processor's name as it gives it; empty where it does not.
    virtual std::string chipName() = 0;

    virtual CoreCounts coreCounts() = 0;

    /// One entry per core, efficiency cores first. Empty when the host does not tell.
    virtual std::vector<CoreTime> coreTimes() = 0;

    virtual std::optional<MemoryStatistics> memory() = 0;

    virtual std::optional<SwapUse> swap() = 0;

    /// Normal where it cannot be told.
    virtual MemoryPressure memoryPressure() = 0;
};

} // namespace kestrio
