// Seam: the processes of the machine, their counters, and which application each belongs to.
//
// Called on one queue, that of the scanner that owns it. The listing and the counters are read at every scan and take
// some microseconds per process; the other questions are asked once per process and take some ten. Nothing blocks, and
// every answer may be empty: a process ends between two questions, belongs to somebody else, or is not ours to see.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrio {

/// One process over time: its number may be used again, together with its start it is not.
struct ProcessKey {
    pid_t pid = 0;
    std::uint64_t start = 0; // on the host's own scale

    friend bool operator==(const ProcessKey&, const ProcessKey&) = default;
};

/// What a process has used since its start, and what it holds now.
struct ProcessCounters {
    std::uint64_t start = 0; // as in `ProcessKey`
    /// Another number when the process has begun to run another program, which changes whom it belongs to.
    std::uint64_t image = 0;
    std::uint64_t cpu = 0; // user and system time, nanoseconds
    std::uint64_t performanceCPU =
        0;                       // the part of it on performance cores; counts from when the process was first read
    std::uint64_t footprint = 0; // bytes that would be free without it, swapped and compressed ones among them
    std::uint64_t resident = 0;  // bytes in physical memory
    std::uint64_t pageins = 0;
    std::optional<std::uint64_t> diskRead = {};    // bytes; absent where it is not ours to see
    std::optional<std::uint64_t> diskWritten = {}; // bytes; the same
    std::optional<std::uint64_t> energy = {};      // nanojoules; absent where the host does not measure it
    std::uint64_t wakeups = 0;

    friend bool operator==(const ProcessCounters&, const ProcessCounters&) = default;
};

/// An installed application, as the host knows it.
struct ProcessApplication {
    std::string bundleIdentifier;
    /// What the person reads; may hold invisible marks. Absent when the host has no name for it.
    std::optional<std::string> localizedName;
    std::string path;

    friend bool operator==(const ProcessApplication&, const ProcessApplication&) = default;
};

/// A bundle at a path that exists.
struct ApplicationBundle {
    std::optional<std::string> bundleIdentifier;

    friend bool operator==(const ApplicationBundle&, const ApplicationBundle&) = default;
};

class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// How many logical cores are in use, at least 1.
    virtual std::size_t activeProcessorCount() = 0;

    /// The numbers of all processes. Empty when the host does not list them.
    virtual std::vector<pid_t> processes() = 0;

    /// Absent for a process that has ended or cannot be read.
    virtual std::optional<ProcessCounters> counters(pid_t process) = 0;

    /// The process that the host holds responsible for this one: the application that started a helper. Absent when
    /// it does not tell.
    virtual std::optional<pid_t> responsible(pid_t process) = 0;

    /// The path of the program that the process runs, in UTF-8. Absent when nothing tells it.
    virtual std::optional<std::string> programPath(pid_t process) = 0;

    /// The installed application that the process is, as opposed to any program. Absent for all others.
    virtual std::optional<ProcessApplication> application(pid_t process) = 0;

    /// The bundle of an application at this path. Absent when nothing is there.
    virtual std::optional<ApplicationBundle> bundle(const std::string& path) = 0;
};

} // namespace kestrio

template <>
struct std::hash<kestrio::ProcessKey> {
    std::size_t operator()(const kestrio::ProcessKey& key) const noexcept {
        // Numbers and starts both grow by small steps; multiplying spreads them over the whole width.
        constexpr std::uint64_t spread = 0x9E37'79B9'7F4A'7C15;
        return (static_cast<std::uint64_t>(key.pid) * spread) ^ ((key.start * spread) >> 17U);
    }
};
