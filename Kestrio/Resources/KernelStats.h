// The machine's cores and memory as the resource log counts them.
//
// Belongs to the queue of the sampler that owns it, and must not outlive the counters. What never changes is read once,
// at the first question.
#pragma once

#include "Kestrio/Platform/KernelCounters.h"
#include "TindraCore/ResourceMath.h"

namespace kestrio {

class KernelStats {
public:
    /// Physical memory by use, in bytes. The five add up to the total, unless the first four exceed it.
    struct MemoryBreakdown {
        std::uint64_t apps = 0;
        std::uint64_t wired = 0;
        std::uint64_t compressed = 0;
        std::uint64_t cached = 0;
        std::uint64_t free = 0;

        friend bool operator==(const MemoryBreakdown&, const MemoryBreakdown&) = default;
    };

    explicit KernelStats(KernelCounters& counters) : counters_(counters) {}

    const std::string& chipName();
    std::int64_t efficiencyCores() { return static_cast<std::int64_t>(cores().efficiency); }   // 0 with one class
    std::int64_t performanceCores() { return static_cast<std::int64_t>(cores().performance); } // at least 1

    /// `free` is what the others leave of `total`, not what the kernel calls free.
    static MemoryBreakdown breakdown(const MemoryStatistics& statistics, std::uint64_t total);

    MemoryPressure pressure() { return counters_.memoryPressure(); }

    /// One per logical core, efficiency cores first, as `tindra::coreLoad` wants them. Empty when they cannot be read.
    std::vector<tindra::CoreTicks> coreTicks();

private:
    const CoreCounts& cores();

    KernelCounters& counters_;
    std::optional<std::string> chipName_;
    std::optional<CoreCounts> cores_;
};

/// The code by which the log stores a level: 1, 2, 4.
std::int64_t pressureCode(MemoryPressure pressure);

} // namespace kestrio
