// The drives in this machine, from `/proc/diskstats` and `/sys/block`, and a file on one of them to measure it by.
//
// The counters belong to the queue of the sampler that owns this; a reading takes some 20 µs. Which devices are drives
// of the machine is looked up once per device. The file belongs to the thread that asked for it.
#pragma once

#include "Kestrio/Platform/Disks.h"
#include "Kestrio/Platform/Linux/KernelText.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct DiskLine {
    std::string_view device; // points into the text
    DiskCounters counters;

    friend bool operator==(const DiskLine&, const DiskLine&) = default;
};

/// The lines of `/proc/diskstats`, drives and their parts; malformed ones are left out.
std::vector<DiskLine> parseDiskStatistics(std::string_view text);

/// Whether a block device is a whole drive built into the machine. `sys` is `/sys`, or a folder like it.
bool isInternalDrive(const std::filesystem::path& sys, std::string_view device);

/// A file in the folder that is gone with its owner: it has no name from the start where the file system can do that,
/// and is unlinked at once elsewhere. Null where it cannot be made, and where the folder lies in memory.
std::unique_ptr<SpeedTestFile> makeSpeedTestFile(const std::filesystem::path& folder);

class LinuxDisks final : public Disks {
public:
    /// The folders for the test file, best first; those that cannot be used are passed over.
    explicit LinuxDisks(std::vector<std::filesystem::path> testFolders,
                        const std::filesystem::path& processes = "/proc", std::filesystem::path sys = "/sys");

    std::optional<DiskCounters> internalDrives() override;
    std::unique_ptr<SpeedTestFile> makeSpeedTestFile() override;

private:
    const std::vector<std::filesystem::path> testFolders_;
    const std::filesystem::path statistics_;
    const std::filesystem::path sys_;
    KernelTextBuffer buffer_;
    std::map<std::string, bool, std::less<>> isInternal_; // by device; those that are gone drop out
};

} // namespace kestrio
