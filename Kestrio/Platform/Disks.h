// Seam: the machine's own drives, their counters, and a file on one of them to measure its speed by.
//
// The counters are read on the sampler's queue once a tick and never block. The file belongs to one thread that may
// wait: each of its operations takes as long as the drive does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace kestrio {

/// Summed over the internal drives, since the machine started.
struct DiskCounters {
    std::uint64_t bytesRead = 0;
    std::uint64_t bytesWritten = 0;
    std::uint64_t operations = 0; // reads and writes
    std::uint64_t nanosBusy = 0;  // the time that all reads and all writes took, in nanoseconds

    friend bool operator==(const DiskCounters&, const DiskCounters&) = default;
};

/// An empty file that goes past the system's cache. It is gone when this is dropped and when the program ends, however
/// that comes about. Every operation is false when it did not do the whole of what it was asked for.
class SpeedTestFile {
public:
    /// What the memory that is read and written must be aligned to, and its size a multiple of.
    static constexpr std::size_t alignment = 16'384;

    virtual ~SpeedTestFile() = default;

    virtual bool write(std::span<const std::byte> block) = 0;
    /// Returns when everything is on the drive.
    virtual bool flush() = 0;
    virtual bool rewind() = 0;
    virtual bool read(std::span<std::byte> block) = 0;
};

class Disks {
public:
    virtual ~Disks() = default;

    /// Drives in the machine; none that is plugged in from outside, reached over a network, or made of memory or of
    /// other drives. Absent when there is no such drive or nothing tells.
    virtual std::optional<DiskCounters> internalDrives() = 0;

    /// Null where there is no room for one on a drive, or the cache cannot be gone past.
    virtual std::unique_ptr<SpeedTestFile> makeSpeedTestFile() = 0;
};

} // namespace kestrio
