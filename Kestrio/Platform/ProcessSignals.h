// Seam: what may be done to another process: stopping it and letting it continue, slowing it and giving it its speed
// back. Only processes of the person whose program this is are ever touched.
//
// Called on one queue, that of the optimizer. Each operation reads the process's start first and does nothing unless it
// is that of the key, so that a later process of the same number is left alone. Takes some microseconds for each
// process and each of its threads; nothing blocks. A failure is an answer, never an exception.
#pragma once

#include "Kestrio/Platform/ProcessTable.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// How a process stands, as far as stopping it goes.
enum class ProcessCondition {
    gone,        // it has ended; its number may belong to another
    untouchable, // somebody else's, or one whose stop would do harm: ourselves, who started us, a terminal's job in
                 // front
    stopped,     // by whomever
    running,
};

/// How a process stood before it was slowed: one line of words that only the host reads, for it to put back. An empty
/// one, or one that was damaged, stands for what processes usually have.
struct ProcessPriority {
    std::string words;

    friend bool operator==(const ProcessPriority&, const ProcessPriority&) = default;
};

class ProcessSignals {
public:
    virtual ~ProcessSignals() = default;

    virtual ProcessCondition condition(ProcessKey process) = 0;

    /// Stops a running process. True when it was told to; false, and nothing done, in any other condition.
    virtual bool stop(ProcessKey process) = 0;

    /// Lets a process continue that was stopped, and a running one be. True when it was told to.
    virtual bool resume(ProcessKey process) = 0;

    /// What `restore` has to be given after `slow`. Absent for a process that must not be slowed.
    virtual std::optional<ProcessPriority> priority(ProcessKey process) = 0;

    /// Moves the process, with all its threads, to the cores that save power and behind others in line. True when
    /// anything of it was slowed, or is already. Processes that it starts from then on are slow from their beginning:
    /// see `heirs`.
    virtual bool slow(ProcessKey process) = 0;

    /// Undoes what `slow` did, and only where it still stands: what the process has chosen itself since then stays.
    /// True when the process was there to be restored.
    virtual bool restore(ProcessKey process, const ProcessPriority& before) = 0;

    /// The processes that stand as `slow` leaves them and began after `before` was read: those that a slowed process
    /// started. Empty when `before` does not tell the moment.
    virtual std::vector<ProcessKey> heirs(const ProcessPriority& before) = 0;
};

} // namespace kestrio
