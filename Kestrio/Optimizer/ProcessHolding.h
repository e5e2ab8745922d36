// How the optimizer takes hold of processes and lets go of them again: what it needs of the machine, and of the safety
// net under it.
//
// Called on the optimizer's queue. Nothing here waits or fails loudly: a process that ended, whose number is now
// another's or that is not ours to touch is passed over, and every other one is served. No signal is ever sent, and
// nothing is ever slowed, without comparing the process's start first.
#pragma once

#include "Kestrio/Platform/ProcessTable.h"

#include <cstddef>
#include <map>
#include <set>
#include <vector>

namespace kestrio {

using ProcessesByMain = std::map<pid_t, std::vector<ProcessKey>>;

class ProcessHolding {
public:
    virtual ~ProcessHolding() = default;

    /// The processes of the application with this main process, that one first. Empty when it has ended. A sweep over
    /// all processes of the machine.
    virtual std::vector<ProcessKey> processes(pid_t mainProcess) = 0;

    /// The same for several applications at once, those that ended left out; for asking at every pass. Whom a process
    /// belongs to may be remembered from the time before.
    virtual ProcessesByMain rememberedProcesses(const std::set<pid_t>& mainProcesses) = 0;

    /// Stops the processes in this order and answers those that are really stopped. What is about to be stopped is in
    /// the journal before the first signal; where the journal cannot be written nothing is stopped. Stopping one that
    /// is stopped already is no failure.
    virtual std::vector<ProcessKey> freeze(const std::vector<ProcessKey>& keys) = 0;

    /// Lets the processes go on, from the last to the first: helpers before the main process.
    virtual void resume(const std::vector<ProcessKey>& keys) = 0;

    /// Moves the processes to the efficiency cores and answers those that moved; journal first, as in `freeze`.
    virtual std::vector<ProcessKey> slow(const std::vector<ProcessKey>& keys) = 0;

    /// Gives the processes back the priority that they had before.
    virtual void restore(const std::vector<ProcessKey>& keys) = 0;

    /// What is held now, all of it: becomes the journal. What cannot be written is written the next time.
    virtual void record(const std::vector<ProcessKey>& frozen, const std::vector<ProcessKey>& slowed) = 0;

    /// Starts what gives everything back should this program die.
    virtual void startWatcher() = 0;

    /// Gives back what earlier runs left held; how many processes those were.
    virtual std::size_t recoverEarlierRuns() = 0;
};

} // namespace kestrio
