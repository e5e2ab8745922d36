// The processes of an application, and what the optimizer does to them. Nothing is stopped or slowed before the journal
// says so.
//
// Belongs to the optimizer's queue. After each change the optimizer tells the safety net what it holds
// (`SafetyNet::record`), which confirms what was intended, or takes it back.
#pragma once

#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Platform/ProcessTable.h"

#include <cstdint>
#include <sys/types.h>
#include <unordered_map>
#include <vector>

namespace kestrio {

class SafetyNet;

class ProcessControl {
public:
    /// All of them outlive this.
    ProcessControl(ProcessTable& table, ProcessSignals& signals, SafetyNet& safetyNet);

    /// The process and all that it is responsible for, itself first and the others in the order of their listing. Empty
    /// when it is gone. A sweep over all processes; whom each belongs to is asked once, and again when it begins to run
    /// another program.
    std::vector<ProcessKey> processes(pid_t main);

    /// Stops the processes in order, and answers those that were. None when the first, the main process, may not be
    /// stopped or is gone, or when the journal cannot be written. Those that somebody else has stopped stay theirs.
    std::vector<ProcessKey> freeze(const std::vector<ProcessKey>& keys);

    /// Lets the processes continue from the last to the first, so that helpers run before the main process needs them.
    void resume(const std::vector<ProcessKey>& keys);

    /// Slows the processes that are not slowed yet, and answers those that were, with what to restore. None when the
    /// journal cannot be written.
    std::vector<SlowedProcess> slow(const std::vector<ProcessKey>& keys);

    /// Gives the processes their speed back, and to all that they started meanwhile.
    void restore(const std::vector<SlowedProcess>& slowed);

private:
    struct Known {
        std::uint64_t start = 0;
        std::uint64_t image = 0;
        pid_t responsible = 0;
    };

    pid_t responsible(pid_t process, const ProcessCounters& counters);
    std::vector<ProcessKey> stoppable(const std::vector<ProcessKey>& keys);
    std::vector<SlowedProcess> slowable(const std::vector<ProcessKey>& keys);

    ProcessTable& table_;
    ProcessSignals& signals_;
    SafetyNet& safetyNet_;
    std::unordered_map<pid_t, Known> known_;
};

} // namespace kestrio
