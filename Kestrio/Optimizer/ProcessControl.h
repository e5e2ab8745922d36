// The processes of an application, and what the optimizer does to them. Nothing is stopped or slowed before the journal
// says so.
//
// Belongs to the optimizer's queue; holds nothing itself. After each change the optimizer tells the safety net what it
// holds (`SafetyNet::record`), which confirms what was intended, or takes it back.
#pragma once

#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Platform/ProcessTable.h"

#include <sys/types.h>
#include <vector>

namespace kestrio {

class SafetyNet;

class ProcessControl {
public:
    /// All of them outlive this.
    ProcessControl(ProcessTable& table, ProcessSignals& signals, SafetyNet& safetyNet);

    /// The process and all that it is responsible for, itself first and the others in the order of their listing. Empty
    /// when it is gone. A sweep over all processes: some ten milliseconds on a busy machine.
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
    std::vector<ProcessKey> stoppable(const std::vector<ProcessKey>& keys);
    std::vector<SlowedProcess> slowable(const std::vector<ProcessKey>& keys);

    ProcessTable& table_;
    ProcessSignals& signals_;
    SafetyNet& safetyNet_;
};

} // namespace kestrio
