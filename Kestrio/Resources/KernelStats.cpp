#include "Kestrio/Resources/KernelStats.h"

#include <algorithm>

namespace kestrio {
namespace {

std::uint64_t difference(std::uint64_t from, std::uint64_t less) {
    return from - std::min(from, less);
}

} // namespace

const std::string& KernelStats::chipName() {
    if (!chipName_)
        chipName_ = counters_.chipName();
    return *chipName_;
}

const CoreCounts& KernelStats::cores() {
    if (!cores_) {
        cores_ = counters_.coreCounts();
        cores_->performance = std::max<std::size_t>(cores_->performance, 1);
    }
    return *cores_;
}

KernelStats::MemoryBreakdown KernelStats::breakdown(const MemoryStatistics& statistics, std::uint64_t total) {
    MemoryBreakdown memory{.apps = difference(statistics.internal, statistics.purgeable),
                           .wired = statistics.wired,
                           .compressed = statistics.compressor,
                           .cached = statistics.external + statistics.purgeable};
    memory.free = difference(total, memory.apps + memory.wired + memory.compressed + memory.cached);
    return memory;
}

std::vector<tindra::CoreTicks> KernelStats::coreTicks() {
    std::vector<tindra::CoreTicks> ticks;
    for (const auto& time : counters_.coreTimes())
        ticks.push_back({time.busy, time.total});
    return ticks;
}

std::int64_t pressureCode(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal: return 1;
    case MemoryPressure::warning: return 2;
    case MemoryPressure::critical: return 4;
    }
    return 1;
}

} // namespace kestrio
