// A process for tests to stop and slow, and how it stands. It ends with this value, with its children.
#pragma once

#include "Kestrio/Platform/Linux/ThreadPriorities.h"
#include "Kestrio/Platform/ProcessTable.h"
#include "Tests/Support/VirtualDisplay.h"

#include <map>
#include <vector>

namespace kestrio {

/// Of any process, by number; the start is 0 when there is none.
ProcessKey keyOf(pid_t process);

/// The letter of the kernel's: 'T' is stopped. Absent for a process that is gone.
std::optional<char> stateOf(pid_t process);

/// Of all its threads, as the kernel tells them.
std::map<pid_t, ThreadPriority> prioritiesOf(pid_t process);

class Victim {
public:
    /// Returns when its threads stand as they should; throws when it cannot be started.
    Victim();

    pid_t process() const { return program_.process(); }
    ProcessKey key() const { return keyOf(process()); }
    bool isStopped() const { return stateOf(process()) == 'T'; }
    std::map<pid_t, ThreadPriority> priorities() const { return prioritiesOf(process()); }
    /// As its threads stood at first.
    const std::map<pid_t, ThreadPriority>& usual() const { return usual_; }

    /// Starts a child or a thread, and waits for it; the number is 0 when it does not come.
    pid_t startChild() const;
    pid_t startThread() const;

    void kill() { program_.kill(); }

private:
    TestProgram program_;
    std::map<pid_t, ThreadPriority> usual_;
};

} // namespace kestrio
