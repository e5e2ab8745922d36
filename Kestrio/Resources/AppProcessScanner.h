// Turns the machine's list of processes into a list of applications with what each of them uses.
//
// Not synchronised: each scanner belongs to the one serial queue that it is called from. The resource sampler and the
// system sampler have one each, with a baseline age of their own. A scan asks the table for the counters of every
// process; whom a process belongs to is looked up once per process, and once per program path.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/ProcessTable.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrio {

/// One application in one scan. What is a count or a share of time is since the scan before.
struct AppProcesses {
    std::string id; // the bundle identifier, else the bundle's path, else the program's
    std::string name;
    std::optional<std::string> appPath;
    std::optional<std::string> bundleID;
    double cpu = 0;                              // 1 is the whole machine
    double cpuCores = 0;                         // 1 is one core, fully used
    std::optional<double> pcoreShare = {};       // of CPU time on performance cores, 0 to 1; absent without CPU time
    std::optional<double> recentPcoreShare = {}; // the same over the last half-minute or so, later time weighing more
    std::uint64_t footprint = 0;                 // bytes
    std::uint64_t resident = 0;                  // bytes
    std::uint64_t pageins = 0;
    std::uint64_t diskRead = 0;    // bytes
    std::uint64_t diskWritten = 0; // bytes
    std::uint64_t energy = 0;      // nanojoules
    std::uint64_t wakeups = 0;
    std::vector<ProcessKey> processes; // in the order that they were visited

    friend bool operator==(const AppProcesses&, const AppProcesses&) = default;
};

class AppProcessScanner {
public:
    /// A baseline older than `maxBaselineAge` is thrown away rather than averaged over: the machine slept, or nobody
    /// asked. Table and clock must outlive the scanner.
    AppProcessScanner(ProcessTable& table, const Clock& clock, Seconds maxBaselineAge);

    struct Scan {
        std::vector<AppProcesses> apps; // in no particular order
        /// Whether there was a usable baseline. Without one all increases are 0 and all shares absent, and only memory
        /// and processes are true.
        bool hasCPU = false;
    };

    /// A process that ended since the last scan takes its last increase with it; one that cannot be read is left out.
    Scan scan();

    /// How many processes the last scan listed, those that could not be read among them.
    std::size_t processCount() const { return processCount_; }

    /// What the name of a program without an application shows: the last part of its path, without the vendor's prefix.
    static std::string programName(std::string_view path);

    /// The path of the outermost bundle that a program lies in, "/A/Name.app" for "/A/Name.app/Contents/MacOS/Name".
    /// Absent for a program outside of bundles.
    static std::optional<std::string> bundlePath(std::string_view path);

private:
    /// Whom a process is charged to.
    struct Owner {
        std::string key;
        std::string name;
        std::optional<std::string> appPath;
        std::optional<std::string> bundleID;
    };
    using SharedOwner = std::shared_ptr<const Owner>;

    /// A process as of the last scan that found it.
    struct Known {
        ProcessCounters counters;
        SharedOwner owner;
        std::uint64_t scan = 0; // that it was last found in
    };

    /// CPU time in nanoseconds, decaying.
    struct Split {
        double performance = 0;
        double total = 0;
    };
    struct Working {
        SharedOwner owner; // holds the key that this is found by
        AppProcesses app;
        std::uint64_t cpu = 0; // the scan's increases
        std::uint64_t performanceCPU = 0;
    };
    using Apps = std::unordered_map<std::string_view, Working>;

    SharedOwner ownerOf(pid_t process);
    Owner resolve(pid_t responsible, const std::string& path);
    void visit(pid_t process, std::uint64_t elapsed, bool hasCPU, Apps& apps);
    static void addIncreases(Working& into, const ProcessCounters& now, const ProcessCounters& before,
                             std::uint64_t elapsed);
    void decaySplits(std::uint64_t elapsed, bool hasCPU);
    void setShares(Apps& apps);
    void forgetEnded();

    ProcessTable& table_;
    const Clock& clock_;
    const Seconds maxBaselineAge_;
    const std::size_t cores_;
    std::unordered_map<ProcessKey, Known> previous_;
    std::optional<std::uint64_t> previousScan_; // time awake, nanoseconds
    std::uint64_t scans_ = 0;
    std::size_t processCount_ = 0;
    std::size_t appCount_ = 0;                            // of the last scan
    std::unordered_map<std::string, SharedOwner> owners_; // by program path
    std::unordered_map<std::string, Split> recentSplit_;  // by owner's key
};

} // namespace kestrio
