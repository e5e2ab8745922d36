// The processes of this machine, from `/proc`.
//
// Belongs to the queue of the scanner that owns it. A process that has not run since the last reading costs two system
// calls and no allocation: its clock is asked, and one small file that is kept open, which also tells it from a later
// process of the same number. Only one that has run is read in full.
//
// Two figures are what the kernel lets be had cheaply: each increase of CPU time counts wholly for the class of core
// that the process's first thread ran on last, and wake-ups are those of that thread. Energy it does not measure by
// process.
#pragma once

#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/KernelText.h"
#include "Kestrio/Platform/Linux/ProcessTexts.h"
#include "Kestrio/Platform/ProcessTable.h"

#include <dirent.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace kestrio {

class ApplicationIdentity;

class LinuxProcessTable final : public ProcessTable {
public:
    /// What a process has used of the processor, in nanoseconds, whoever owns it. Absent for one that has ended.
    using ProcessClock = std::function<std::optional<std::uint64_t>(pid_t)>;

    struct Setup {
        std::filesystem::path processes = "/proc";
        std::filesystem::path sys = "/sys";
        /// Without it the time is that of `stat`, in hundredths of a second, and every process is read in full.
        ProcessClock clock = {};
        /// How many files are kept open at most; the processes beyond take a little longer.
        std::size_t mostDescriptors = 0;
    };

    /// Of this machine. The clock is left out where `/proc` shows the processes of another namespace than ours; at most
    /// a quarter of the files that we may open are kept open.
    static Setup setupOfThisMachine();

    /// The identity may be null, in which case no process is an application; it must outlive this, on the same queue.
    LinuxProcessTable(Setup setup, ApplicationIdentity* identity);
    ~LinuxProcessTable() override;

    std::size_t activeProcessorCount() override { return cores_.count(); }
    std::vector<pid_t> processes() override;
    std::optional<ProcessCounters> counters(pid_t process) override;
    std::optional<pid_t> responsible(pid_t process) override;
    std::optional<std::string> programPath(pid_t process) override;
    std::optional<ProcessApplication> application(pid_t process) override;
    std::optional<ApplicationBundle> bundle(const std::string& path) override;

private:
    struct Known {
        ProcessCounters counters;
        ProcessPages pages;
        Descriptor pagesFile; // may be empty
        bool hasClock = false;
        bool isKernelThread = false;
        std::uint64_t listing = 0; // the last that it was in
    };
    using Table = std::unordered_map<pid_t, Known>;

    std::optional<std::string_view> read(pid_t process, const char* file);
    /// Its name points into the buffer, until the next reading.
    std::optional<ProcessStat> readStat(pid_t process);
    std::optional<ProcessPages> readPages(const Known& known, pid_t process);
    std::optional<ProcessCounters> unchanged(Known& known, pid_t process, std::optional<std::uint64_t> clock);
    bool readMemory(Known& known, pid_t process);
    bool readFully(Known& known, pid_t process, std::optional<std::uint64_t> clock);
    bool isSame(const Known& known, pid_t process);
    void keepOpen(Known& known, pid_t process);
    void closeFile(Known& known);
    Table::iterator forget(Table::iterator known);
    std::optional<std::string> unitApplication(pid_t process);
    std::string programName(pid_t process);

    const Setup setup_;
    const CoreClasses cores_;
    const std::uint64_t nanosPerTick_;
    ApplicationIdentity* const identity_;
    std::unique_ptr<DIR, int (*)(DIR*)> folder_;
    KernelTextBuffer buffer_;
    Table known_;
    std::size_t descriptors_ = 0; // kept open
    std::uint64_t listing_ = 0;
};

} // namespace kestrio
