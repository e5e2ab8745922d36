// The cores and the memory of this machine, from `/proc` and `/sys`.
//
// Belongs to the queue of the sampler that owns it. A question reads one to three files, some 20 µs each, which do not
// block.
#pragma once

#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/KernelText.h"

#include <filesystem>
#include <string_view>
#include <utility>

namespace kestrio {

/// From `/proc/meminfo`, in bytes. What a kernel does not list is 0.
struct MemoryInfo {
    std::uint64_t total = 0;
    std::optional<std::uint64_t> available = {}; // for new programs without swapping; absent on very old kernels
    std::uint64_t anonymous = 0;
    std::uint64_t shared = 0;
    std::uint64_t unevictable = 0;
    std::uint64_t unreclaimableSlab = 0;
    std::uint64_t kernelStack = 0;
    std::uint64_t pageTables = 0;
    std::uint64_t zswap = 0; // that compressed swap takes
    std::uint64_t buffers = 0;
    std::uint64_t cached = 0; // files and `shared`
    std::uint64_t reclaimableSlab = 0;
    std::uint64_t swapTotal = 0;
    std::uint64_t swapFree = 0;

    friend bool operator==(const MemoryInfo&, const MemoryInfo&) = default;
};

/// Absent when the text does not tell the total.
std::optional<MemoryInfo> parseMemoryInfo(std::string_view text);

/// From `/proc/pressure/memory`: the share of the last ten seconds, in percent, in which some tasks, or all at once,
/// waited for memory.
struct MemoryStall {
    double some = 0;
    double full = 0;

    friend bool operator==(const MemoryStall&, const MemoryStall&) = default;
};

/// Absent when one of the two is missing or no number.
std::optional<MemoryStall> parseMemoryStall(std::string_view text);

/// The one place with the bounds. Either sign is enough: tasks that wait for memory, or little of it left. A machine
/// that tells neither is normal.
MemoryPressure memoryPressure(const std::optional<MemoryStall>& stall, const std::optional<MemoryInfo>& memory);

/// From `/proc/vmstat`, in pages since the machine started.
struct SwapTraffic {
    std::uint64_t pagesIn = 0;
    std::uint64_t pagesOut = 0;

    friend bool operator==(const SwapTraffic&, const SwapTraffic&) = default;
};

SwapTraffic parseSwapTraffic(std::string_view text);

/// The bytes of memory that a compressed drive in memory takes, from its `mm_stat`; absent when it does not tell.
std::optional<std::uint64_t> parseCompressedDriveMemory(std::string_view text);

/// The cores of `/proc/stat` by number. Waiting for a drive is idle time; the time of guests is in that of their hosts.
std::vector<std::pair<int, CoreTime>> parseCoreTimes(std::string_view text);

class LinuxKernelCounters final : public KernelCounters {
public:
    /// The folders are `/proc` and `/sys`, or like them.
    explicit LinuxKernelCounters(std::filesystem::path processes = "/proc", std::filesystem::path sys = "/sys");

    std::string chipName() override;
    CoreCounts coreCounts() override { return {cores_.efficiency.size(), cores_.performance.size()}; }
    std::vector<CoreTime> coreTimes() override;
    std::optional<MemoryStatistics> memory() override;
    std::optional<SwapUse> swap() override;
    MemoryPressure memoryPressure() override;

private:
    std::optional<MemoryInfo> memoryInfo();
    std::uint64_t compressedDrives();

    const std::filesystem::path processes_;
    const std::filesystem::path sys_;
    const CoreClasses cores_;
    const std::uint64_t pageSize_;
    std::vector<CoreTime> times_; // by class and number; a core that is switched off keeps its last
    KernelTextBuffer buffer_;
};

} // namespace kestrio
