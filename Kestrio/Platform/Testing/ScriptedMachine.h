// Counters of a machine in memory, for tests: each answers what the test last put into its fields. Belongs to the
// test's thread.
#pragma once

#include "Kestrio/Platform/Disks.h"
#include "Kestrio/Platform/KernelCounters.h"
#include "Kestrio/Platform/MemoryTraffic.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace kestrio {

class ScriptedKernelCounters final : public KernelCounters {
public:
    std::string chip;
    CoreCounts counts{0, 4};
    std::vector<CoreTime> times;
    std::optional<MemoryStatistics> statistics;
    std::optional<SwapUse> swapUse;
    MemoryPressure pressure = MemoryPressure::normal;

    /// How often what never changes was asked for.
    int constantReads = 0;

    std::string chipName() override {
        ++constantReads;
        return chip;
    }
    CoreCounts coreCounts() override {
        ++constantReads;
        return counts;
    }
    std::vector<CoreTime> coreTimes() override { return times; }
    std::optional<MemoryStatistics> memory() override { return statistics; }
    std::optional<SwapUse> swap() override { return swapUse; }
    MemoryPressure memoryPressure() override { return pressure; }
};

class ScriptedMemoryTraffic final : public MemoryTraffic {
public:
    std::optional<std::vector<MemoryChannel>> moved;

    std::optional<std::vector<MemoryChannel>> channels() override { return moved; }
};

/// Drives whose test file writes down what is done to it. The operation that `failing` names does not succeed.
class ScriptedDisks final : public Disks {
public:
    std::optional<DiskCounters> drives;
    bool givesFile = true;
    std::string failing;             // "write 2" is the second write; "flush", "rewind" and "read 1" likewise
    std::vector<std::string> done;   // the operations of all files so far, and "gone" for each that was dropped
    std::vector<std::byte> contents; // of the last file
    /// Called with each operation, before it is done: time can pass here.
    std::function<void(const std::string&)> before = [](const std::string&) {};

    std::optional<DiskCounters> internalDrives() override { return drives; }
    std::unique_ptr<SpeedTestFile> makeSpeedTestFile() override {
        contents.clear();
        return givesFile ? std::make_unique<File>(*this) : nullptr;
    }

private:
    class File final : public SpeedTestFile {
    public:
        explicit File(ScriptedDisks& disks) : disks_(disks) {}
        ~File() override { disks_.done.emplace_back("gone"); }
        File(const File&) = delete;
        File& operator=(const File&) = delete;

        bool write(std::span<const std::byte> block) override {
            disks_.contents.insert(disks_.contents.end(), block.begin(), block.end());
            return succeeds("write " + std::to_string(++writes_));
        }
        bool flush() override { return succeeds("flush"); }
        bool rewind() override { return succeeds("rewind"); }
        bool read(std::span<std::byte> block) override {
            const auto count = std::min(block.size(), disks_.contents.size());
            std::copy_n(disks_.contents.begin(), count, block.begin());
            return succeeds("read " + std::to_string(++reads_));
        }

    private:
        bool succeeds(const std::string& operation) {
            disks_.before(operation);
            disks_.done.push_back(operation);
            return operation != disks_.failing;
        }

        ScriptedDisks& disks_;
        int writes_ = 0;
        int reads_ = 0;
    };
};

} // namespace kestrio
