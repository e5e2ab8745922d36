// What the kernel's texts about one process say of its use of the machine. Pure functions over text, which may hold any
// bytes: a process chooses its own name. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace kestrio {

/// From `/proc/PID/stat`.
struct ProcessStat {
    std::string_view name; // points into the text; at most 15 bytes of any kind
    char state = '?';
    pid_t parent = 0;
    bool isKernelThread = false;
    std::uint64_t majorFaults = 0;
    std::uint64_t cpuTicks = 0;   // user and system time, threads that have ended among it
    std::uint64_t startTicks = 0; // since the start of the machine
    std::uint64_t startCode = 0;  // where the program and its stack lie; for those who may not know, 0 or 1
    std::uint64_t startStack = 0;
    std::optional<int> processor = {}; // that it last ran on

    friend bool operator==(const ProcessStat&, const ProcessStat&) = default;
};

/// Absent when a field up to the last that every kernel has is missing or no number.
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// From `/proc/PID/status`, sizes in bytes. Kernel threads and processes that have ended have no memory: all 0.
struct ProcessStatus {
    std::uint64_t resident = 0;
    std::uint64_t residentAnonymous = 0;
    std::uint64_t residentShared = 0;
    std::uint64_t swapped = 0;
    std::uint64_t voluntarySwitches = 0; // of the first thread

    /// What would be free without the process.
    std::uint64_t footprint() const { return residentAnonymous + residentShared + swapped; }

    friend bool operator==(const ProcessStatus&, const ProcessStatus&) = default;
};

ProcessStatus parseProcessStatus(std::string_view text);

/// From `/proc/PID/statm`, in pages. Cheap to read, and changes whenever the memory of the process moves.
struct ProcessPages {
    std::uint64_t size = 0;
    std::uint64_t resident = 0;
    std::uint64_t shared = 0; // of files and of memory shared with others

    friend bool operator==(const ProcessPages&, const ProcessPages&) = default;
};

std::optional<ProcessPages> parseProcessPages(std::string_view text);

/// From `/proc/PID/io`: bytes that went to and came from drives, not what the cache served.
struct ProcessDiskUse {
    std::uint64_t read = 0;
    std::uint64_t written = 0;

    friend bool operator==(const ProcessDiskUse&, const ProcessDiskUse&) = default;
};

std::optional<ProcessDiskUse> parseProcessDiskUse(std::string_view text);

} // namespace kestrio
