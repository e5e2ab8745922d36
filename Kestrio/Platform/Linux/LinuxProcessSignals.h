// Stopping and slowing by signals, core affinity, scheduling policy and I/O class.
//
// Signals go through a process descriptor that is opened before the start is compared, so that no number can change
// hands in between. Slowing uses only what an ordinary user can take back: fewer cores, `SCHED_BATCH`, the idle I/O
// class. (Niceness and `SCHED_IDLE` can be given but not taken back; a thread with a policy of its own, such as the
// real-time one of a sound thread, could not get that back either, and keeps it.)
//
// Belongs to the optimizer's queue; holds no state but which cores are slow.
#pragma once

#include "Kestrio/Platform/Linux/ThreadPriorities.h"
#include "Kestrio/Platform/ProcessSignals.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace kestrio {

class LinuxProcessSignals final : public ProcessSignals {
public:
    struct Setup {
        /// Must show the numbers that system calls know.
        std::filesystem::path processes = "/proc";
        std::filesystem::path sys = "/sys";
    };

    explicit LinuxProcessSignals(Setup setup);

    ProcessCondition condition(ProcessKey process) override;
    bool stop(ProcessKey process) override;
    bool resume(ProcessKey process) override;
    std::optional<ProcessPriority> priority(ProcessKey process) override;
    bool slow(ProcessKey process) override;
    bool restore(ProcessKey process, const ProcessPriority& before) override;
    std::vector<ProcessKey> heirs(const ProcessPriority& before) override;

    /// The cores that slowed processes run on: the small ones, or on a machine of one class the last quarter, at least
    /// one.
    const std::vector<int>& slowCores() const { return slowCores_; }

private:
    struct Thread {
        pid_t number = 0;
        std::uint64_t start = 0;
    };

    bool isOurs(ProcessKey process) const;
    bool forEachThread(pid_t process, const std::function<bool(const Thread&)>& act) const;
    bool slowThread(pid_t thread) const;
    void restoreThread(pid_t thread, const ThreadPriority& before, const std::vector<int>& slowCores) const;
    std::vector<int> slowPartOf(const std::vector<int>& cores) const;
    bool isSlowed(pid_t thread) const;

    const Setup setup_;
    std::vector<int> allCores_;
    std::vector<int> slowCores_;
};

} // namespace kestrio
